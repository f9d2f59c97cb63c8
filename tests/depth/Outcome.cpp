#include "depth/Outcome.h"

#include "support/Host.h"

namespace OrvUQL::Tests {

namespace {

constexpr std::string_view parserOut = "! Error parsing query: Internal error at position ";
constexpr std::string_view expression = "! Error in regular expression: ";
constexpr std::string_view outOfStack = "! Internal error";
constexpr std::string_view nothing = "!";

Verdict Judge(const std::string& got, const std::string& right, Memory memory) {
    if (got == right) {
        return Verdict::Answer;
    }
    if (got == nothing && memory == Memory::Limited) {
        return Verdict::OutOfMemory;
    }
    if (got == outOfStack) {
        return memory == Memory::Limited ? Verdict::OutOfMemory : Verdict::StackInEvaluation;
    }
    if (got.compare(0, parserOut.size(), parserOut) == 0) {
        return memory == Memory::Limited ? Verdict::OutOfMemory : Verdict::StackInParsing;
    }
    if (got == std::string(expression) + "an attempted match failed because there was not enough memory available") {
        return Verdict::ExpressionTooDeep;
    }
    if (got == std::string(expression) + "an attempted match failed because it was too complex") {
        return Verdict::ExpressionTooComplex;
    }
    if (got == std::string(expression) +
                   "parsing a regular expression failed because there were not enough resources available") {
        return Verdict::ExpressionTooLarge;
    }
    return Verdict::Fault;
}

/// The value of a query, or its failure, as one line; the tree and the value are gone afterwards.
std::string Evaluate(const std::wstring& query) {
    Host host;
    host.engine.SetReleaseKeptReferences(true);
    ErrorSlot error;
    Ref<IQueryElement> tree(host.engine.ParseQuery(query.c_str(), error.Slot()));
    Ref<IObject> value(tree ? host.engine.Evaluate(tree.Get(), error.Slot()) : nullptr);
    tree.Reset();
    OrvStringT text;
    if (value && value->ToString(text, error.Slot())) { // which may take more than the value itself
        return Describe(value.Get());
    }
    return error.IsEmpty() ? std::string(nothing) : "! " + error.Message();
}

std::string Shortened(const std::string& text) {
    return text.size() < 200 ? text : text.substr(0, 150) + "... (" + std::to_string(text.size()) + " bytes)";
}

} // namespace

Outcome RunQuery(const Construct& construct, int size, const std::wstring& query, Memory memory) noexcept {
    try {
        const std::string got = Evaluate(query);
        const Verdict verdict = Judge(got, construct.answer(size), memory);
        return {verdict, verdict == Verdict::Fault ? Shortened(got) : std::string()};
    } catch (const std::bad_alloc&) {
        // Of this program's own texts, and of those that the library gives by value.
        return {memory == Memory::Limited ? Verdict::OutOfMemory : Verdict::Fault, "std::bad_alloc"};
    } catch (...) {
        return {Verdict::Fault, "an exception"};
    }
}

Outcome RunConstruct(const Construct& construct, int size) {
    return RunQuery(construct, size, construct.query(size), Memory::Enough);
}

bool MayEnd(const Construct& construct, Verdict verdict) {
    switch (verdict) {
    case Verdict::Answer:
        return true;
    case Verdict::StackInParsing:
    case Verdict::StackInEvaluation:
        return construct.ends == Ends::WithStack;
    case Verdict::ExpressionTooDeep:
    case Verdict::ExpressionTooComplex:
    case Verdict::ExpressionTooLarge:
        return construct.ends == Ends::WithExpression;
    default:
        return false;
    }
}

const char* NameOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Answer:
        return "the answer";
    case Verdict::StackInParsing:
        return "Error parsing query: Internal error";
    case Verdict::StackInEvaluation:
        return "Internal error";
    case Verdict::ExpressionTooDeep:
        return "not enough memory";
    case Verdict::ExpressionTooComplex:
        return "too complex";
    case Verdict::ExpressionTooLarge:
        return "not enough resources";
    case Verdict::OutOfMemory:
        return "out of memory";
    default:
        return "a fault";
    }
}

} // namespace OrvUQL::Tests
