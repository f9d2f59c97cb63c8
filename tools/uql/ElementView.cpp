#include "ElementView.h"

#include "JsonWriter.h"
#include "Ref.h"

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t labelLimit = 200;

void Add(ElementView& view, const char* role, const IQueryElement* element) {
    view.children.push_back({{role, 0}, element});
}

void AddList(ElementView& view, const char* role, const QueryElementList& list) {
    int number = 0;
    for (const IQueryElement* const element : list) {
        view.children.push_back({{role, ++number}, element});
    }
}

void SetOperator(ElementView& view, const OrvStringT& text) {
    view.kind = "operator";
    view.label = "operator " + text.ToUtf8();
    view.json = ",\"operator\":" + QuoteJson(text);
}

void ViewValue(ElementView& view, const IObject* value) {
    view.kind = "value";
    if (value == nullptr) { // only where memory ends
        view.label = "value";
        return;
    }
    const OrvStringT type = value->GetTypeName();
    view.label = value->IsNull() ? "null" : type.ToUtf8() + " " + ValueToLine(*value, labelLimit);
    view.json = ",\"type\":" + QuoteJson(type) + ",\"value\":" + ValueToJson(*value);
}

void ViewName(ElementView& view, const ElementMethod& method) {
    view.kind = "name";
    view.label = std::string("name ") + (method.IsMember() ? "." : "") + method.GetName().ToUtf8();
    view.json = ",\"name\":" + QuoteJson(method.GetName()) + ",\"member\":" + (method.IsMember() ? "true" : "false");
    if (method.GetParent() != nullptr) {
        Add(view, "target", method.GetParent());
    }
    AddList(view, "argument", method.GetArguments());
    if (method.GetArguments().empty()) {
        view.json += ",\"arguments\":[]";
    }
}

} // namespace

ElementView ViewElement(const IQueryElement& element) {
    ElementView view;
    if (const auto* const literal = dynamic_cast<const ElementObject*>(&element)) {
        ViewValue(view, literal->GetValue());
    } else if (const auto* const method = dynamic_cast<const ElementMethod*>(&element)) {
        ViewName(view, *method);
    } else if (const auto* const group = dynamic_cast<const ElementGroup*>(&element)) {
        view.kind = "group";
        view.label = "group []";
        Add(view, "source", group->GetSource());
        Add(view, "inner", group->GetInner());
    } else if (const auto* const array = dynamic_cast<const ElementArray*>(&element)) {
        view.kind = "array";
        view.label = "array";
        AddList(view, "item", array->GetItems());
        view.json = array->GetItems().empty() ? ",\"items\":[]" : "";
    } else if (const auto* const unary = dynamic_cast<const OperatorUnary*>(&element)) {
        SetOperator(view, unary->GetOperator());
        Add(view, "operand", unary->GetOperand());
    } else if (const auto* const binary = dynamic_cast<const OperatorBinary*>(&element)) {
        SetOperator(view, binary->GetOperator());
        Add(view, "left", binary->GetLeft());
        Add(view, "right", binary->GetRight());
    } else if (const auto* const ternary = dynamic_cast<const OperatorTernary*>(&element)) {
        SetOperator(view, ternary->GetOperator());
        Add(view, "condition", ternary->GetCondition());
        Add(view, "first", ternary->GetFirst());
        Add(view, "second", ternary->GetSecond());
    } else {
        view.kind = "element";
        view.label = "element";
    }
    return view;
}

std::string QuoteJson(const OrvStringT& text) {
    const Ref<ObjectString> value(new ObjectString(text));
    return ValueToJson(*value);
}

std::string ValueToJson(const IObject& value) {
    OrvStringT json;
    AppendJson(json, value);
    return json.ToUtf8();
}

std::string ValueToLine(const IObject& value, std::size_t limit) {
    OrvStringT text;
    if (!value.ToString(text, nullptr)) {
        return "(no text)";
    }
    const bool isCut = text.View().size() > limit;
    if (isCut) {
        text = OrvStringT(text.View().substr(0, limit));
    }
    if (value.GetType() == IObject::TypeString) {
        text.Replace(L"'", L"''");
        text = OrvStringT(L"'") + text + (isCut ? L"" : L"'");
    }
    std::string line;
    // A backslash is no escape in the language and stays one; what would break the line does not.
    for (const char c : text.ToUtf8()) {
        switch (c) {
        case '\n':
            line += "\\n";
            break;
        case '\r':
            line += "\\r";
            break;
        case '\t':
            line += "\\t";
            break;
        default:
            line += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
        }
    }
    return isCut ? line + "..." : line;
}

} // namespace OrvUQL::Tool
