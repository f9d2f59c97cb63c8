#include "Explanation.h"

#include "ElementView.h"

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t toldOutcomes = 3;
constexpr std::size_t textLimit = 100;

template <class Element> Ref<Element> Share(Element* element) {
    element->AddRef();
    return Ref<Element>(element);
}

} // namespace

/// Stands in the copy for one element of the original.
class Explanation::Recorder : public RefCountImpl<IQueryElement> {
public:
    Recorder(Explanation& explanation, Record& elementRecord, Ref<IQueryElement> element)
        : owner(explanation), record(elementRecord), inner(std::move(element)) {}
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder() override { ReleaseNested(inner.Detach()); }

    EType GetType() const override { return inner->GetType(); }
    int GetStringPosition() const override { return inner->GetStringPosition(); }

    IObject* Evaluate(QueryEngine* engine, IError** err) const override {
        Ref<IError> error; // also where the caller does not want to know
        Ref<IObject> value(inner->Evaluate(engine, error.Receive()));
        owner.Note(record, value.Get(), error.Get());
        if (err != nullptr && error) {
            *err = error.Detach();
        }
        return value.Detach();
    }

private:
    Explanation& owner;
    Record& record;
    Ref<IQueryElement> inner;
};

Explanation::Explanation(IQueryElement* tree) : original(Share(tree)), copy(Copy(tree, 0)) {}

Explanation::~Explanation() = default;

IQueryElement* Explanation::Copy(IQueryElement* element, int depth) {
    if (element == nullptr) {
        return nullptr;
    }
    if (depth > deepest) {
        element->AddRef();
        return element;
    }
    Ref<IQueryElement> inner(CopyInner(element, depth));
    return new Recorder(*this, records[element], std::move(inner));
}

/// The element itself, as it is, over copies of its children. (Recursion ends at `deepest`.)
IQueryElement* Explanation::CopyInner(IQueryElement* element, int depth) {
    const auto copyList = [&](const QueryElementList& list) {
        QueryElementList copies;
        copies.reserve(list.size());
        for (IQueryElement* const item : list) {
            copies.push_back(Copy(item, depth + 1));
        }
        return copies;
    };
    const auto child = [&](IQueryElement* part) { return Ref<IQueryElement>(Copy(part, depth + 1)); };
    const int position = element->GetStringPosition();
    if (const auto* const method = dynamic_cast<const ElementMethod*>(element)) {
        QueryElementList arguments = copyList(method->GetArguments());
        Ref<IQueryElement> parent = child(method->GetParent());
        return new ElementMethod(parent.Detach(), method->GetName(), arguments, method->IsMember(), position);
    }
    if (const auto* const group = dynamic_cast<const ElementGroup*>(element)) {
        Ref<IQueryElement> source = child(group->GetSource());
        Ref<IQueryElement> inner = child(group->GetInner());
        return new ElementGroup(source.Detach(), inner.Detach(), position);
    }
    if (const auto* const array = dynamic_cast<const ElementArray*>(element)) {
        return new ElementArray(copyList(array->GetItems()), position);
    }
    if (const auto* const unary = dynamic_cast<const OperatorUnary*>(element)) {
        Ref<IQueryElement> operand = child(unary->GetOperand());
        return new OperatorUnary(unary->GetOperator(), operand.Detach(), position);
    }
    if (const auto* const binary = dynamic_cast<const OperatorBinary*>(element)) {
        Ref<IQueryElement> left = child(binary->GetLeft());
        Ref<IQueryElement> right = child(binary->GetRight());
        return new OperatorBinary(binary->GetOperator(), left.Detach(), right.Detach(), position);
    }
    if (const auto* const ternary = dynamic_cast<const OperatorTernary*>(element)) {
        Ref<IQueryElement> condition = child(ternary->GetCondition());
        Ref<IQueryElement> first = child(ternary->GetFirst());
        Ref<IQueryElement> second = child(ternary->GetSecond());
        return new OperatorTernary(ternary->GetOperator(), condition.Detach(), first.Detach(), second.Detach(),
                                   position);
    }
    element->AddRef(); // a value, or somebody's own: what is below that is his
    return element;
}

IObject* Explanation::Evaluate(QueryEngine& engine, IError** err) {
    for (auto& entry : records) {
        entry.second = Record();
    }
    isFailing = false;
    return engine.Evaluate(copy.Get(), err);
}

void Explanation::Note(Record& record, const IObject* value, IError* error) {
    const bool isCause = !isFailing;
    isFailing = value == nullptr;
    if (++record.count > toldOutcomes) {
        return;
    }
    // At once: a value such as the iterator tells something else when the next item's turn comes.
    Outcome outcome;
    if (value != nullptr) {
        outcome.isValue = true;
        outcome.type = value->GetTypeName().ToUtf8();
        outcome.text = ValueToLine(*value, textLimit);
        outcome.json = ValueToJson(*value);
    } else {
        outcome.isCause = isCause;
        outcome.error = error == nullptr ? "no value" : error->GetMessageW().ToUtf8();
    }
    record.first.push_back(std::move(outcome));
}

/// A type is named once for several values of it.
std::string Explanation::Describe(const Outcome& outcome, const std::string& typeBefore) {
    if (!outcome.isValue) {
        return outcome.isCause ? "error: " + outcome.error : "failed";
    }
    if (outcome.type == "null") {
        return outcome.type;
    }
    if (outcome.type == typeBefore) {
        return outcome.text;
    }
    return outcome.text.empty() ? outcome.type : outcome.type + " " + outcome.text;
}

std::string Explanation::GetText(const IQueryElement& element) const {
    const auto found = records.find(&element);
    if (found == records.end()) {
        return "not recorded";
    }
    const Record& record = found->second;
    if (record.count == 0) {
        return "not evaluated";
    }
    std::string text = record.count == 1 ? "" : std::to_string(record.count) + " times: ";
    std::string type;
    const char* separator = "";
    for (const Outcome& outcome : record.first) {
        text += separator + Describe(outcome, type);
        type = outcome.type;
        separator = ", ";
    }
    return record.count > record.first.size() ? text + ", ..." : text;
}

std::string Explanation::GetJson(const IQueryElement& element) const {
    const auto found = records.find(&element);
    if (found == records.end()) {
        return ",\"recorded\":false";
    }
    const Record& record = found->second;
    std::string json = ",\"evaluated\":" + std::to_string(record.count) + ",\"results\":[";
    const char* separator = "";
    for (const Outcome& outcome : record.first) {
        json += separator;
        if (outcome.isValue) {
            json += "{\"type\":" + QuoteJson(OrvStringT::FromUtf8(outcome.type)) + ",\"value\":" + outcome.json + "}";
        } else {
            json += "{\"error\":" + QuoteJson(OrvStringT::FromUtf8(outcome.error)) + "}";
        }
        separator = ",";
    }
    return json + "]";
}

} // namespace OrvUQL::Tool
