#include "parser/Parser.h"

#include "OrvUQL/Operators.h"

#include "core/KnownNames.h"
#include "platform/TextUnits.h"
#include "platform/Thread.h"

#include <limits>
#include <vector>

namespace OrvUQL {

using namespace std::string_view_literals;

namespace {

constexpr std::uint32_t conditionStop =
    TokenEnd | TokenCloseBracket | TokenCloseParenthesis | TokenComma | TokenColon | TokenQuestion;
constexpr std::uint32_t logicOperators = TokenAnd | TokenOr;
constexpr std::uint32_t comparisonStop = conditionStop | logicOperators | TokenNot | TokenBang;
constexpr std::uint32_t comparisonOperators = TokenLess | TokenGreater | TokenEqual | TokenNotEqual;
constexpr std::uint32_t sumStop = comparisonStop | comparisonOperators;
constexpr std::uint32_t sumOperators = TokenPlus | TokenMinus;
constexpr std::uint32_t termStop = sumStop | sumOperators;
constexpr std::uint32_t negations = TokenNot | TokenBang | TokenNotEqual;

/// An operator's text as written; the common ones without a copy.
OrvStringT OperatorText(std::wstring_view text) {
    if (text.size() == 1) {
        switch (text[0]) {
        case L'+':
            return ORV_TEXT(L"+");
        case L'-':
            return ORV_TEXT(L"-");
        case L'*':
            return ORV_TEXT(L"*");
        case L'/':
            return ORV_TEXT(L"/");
        case L'\\':
            return ORV_TEXT(L"\\");
        case L'^':
            return ORV_TEXT(L"^");
        case L'=':
            return ORV_TEXT(L"=");
        case L'<':
            return ORV_TEXT(L"<");
        case L'>':
            return ORV_TEXT(L">");
        case L'&':
            return ORV_TEXT(L"&");
        case L'|':
            return ORV_TEXT(L"|");
        case L'!':
            return ORV_TEXT(L"!");
        }
    }
    if (text.size() == 2) {
        switch (text[0]) {
        case L'<':
            return text[1] == L'='   ? OrvStringT(ORV_TEXT(L"<="))
                   : text[1] == L'>' ? OrvStringT(ORV_TEXT(L"<>"))
                                     : OrvStringT(text);
        case L'>':
            return text[1] == L'=' ? OrvStringT(ORV_TEXT(L">=")) : OrvStringT(text);
        case L'=':
            return text[1] == L'=' ? OrvStringT(ORV_TEXT(L"==")) : OrvStringT(text);
        case L'!':
            return text[1] == L'=' ? OrvStringT(ORV_TEXT(L"!=")) : OrvStringT(text);
        default:
            break;
        }
    }
    return detail::NameText(text); // "and", "or", "not"
}

// The makers take the operands over only when the node is there.

Parser::Element MakeUnary(const OrvStringT& op, Parser::Element& operand, int position) {
    Parser::Element node(new OperatorUnary(op, operand.Get(), position));
    operand.Detach();
    return node;
}

Parser::Element MakeBinary(const OrvStringT& op, Parser::Element& left, Parser::Element& right, int position) {
    Parser::Element node(new OperatorBinary(op, left.Get(), right.Get(), position));
    left.Detach();
    right.Detach();
    return node;
}

Parser::Element MakeTernary(Parser::Element& condition, Parser::Element& first, Parser::Element& second, int position) {
    Parser::Element node(new OperatorTernary(ORV_TEXT(L"?"), condition.Get(), first.Get(), second.Get(), position));
    condition.Detach();
    first.Detach();
    second.Detach();
    return node;
}

} // namespace

// A chain ends where a looser level may go on.
const Parser::Level Parser::levels[] = {
    {&Parser::ParsePrimary, TokenPower, termStop | TokenMultiply},
    {&Parser::ParsePower, TokenMultiply, termStop},
    {&Parser::ParseSigned, sumOperators, sumStop},
    {&Parser::ParseSum, comparisonOperators, comparisonStop},
    {&Parser::ParseComparison, logicOperators, conditionStop},
};

Parser::Parser(QueryEngine* owner, const wchar_t* text, IError** errorSlot) noexcept
    : engine(owner), err(errorSlot), cursor{0, text} {}

void Parser::MoveTo(int position) noexcept {
    cursor.position = position;
    ReadToken(cursor, token);
}

Parser::Element Parser::ReportUnexpected() {
    if (Is(TokenEnd)) {
        return Report(message::unexpectedEnd);
    }
    return Report(message::unexpectedToken, token.Text());
}

IQueryElement* Parser::Parse() {
    MoveTo(0);
    Element tree = ParseCondition();
    if (tree && !Is(TokenEnd)) {
        tree = ReportUnexpected();
    }
    return tree.Detach();
}

Parser::Element Parser::ParseCondition() {
    if (!platform::HasStack()) {
        return Report(message::internalError);
    }
    Element condition = ParseChain(LogicLevel);
    return condition && Is(TokenQuestion) ? ParseDecisions(std::move(condition)) : std::move(condition);
}

/// What follows a condition. Each last branch is a condition itself: they are gathered and joined from the end.
Parser::Element Parser::ParseDecisions(Element condition) {
    struct Decision {
        Element condition;
        Element first;
        int position;
    };
    std::vector<Decision> decisions;
    Element last = std::move(condition);
    while (last && Is(TokenQuestion)) {
        const int position = cursor.position;
        Advance();
        Element first = ParseCondition();
        if (!first) {
            return first;
        }
        if (!Is(TokenColon)) {
            return Report(message::colonExpected);
        }
        Advance();
        decisions.push_back({std::move(last), std::move(first), position});
        last = ParseChain(LogicLevel);
    }
    for (; last && !decisions.empty(); decisions.pop_back()) {
        Decision& decision = decisions.back();
        last = MakeTernary(decision.condition, decision.first, last, decision.position);
    }
    return last;
}

Parser::Element Parser::ParseChain(LevelNumber level) {
    const Level* at = &levels[level];
    Element left;
    if (Is(negations | sumOperators)) { // or what is no operand at all
        left = (this->*at->parseOperand)();
    } else {
        left = ParsePrimary();
        at = levels;
    }
    for (;; ++at) {
        if (left && !Is(at->stop)) {
            left = ParseChainRest(std::move(left), *at);
        }
        if (at == &levels[level]) {
            return left;
        }
    }
}

Parser::Element Parser::ParseChainRest(Element left, const Level& level) {
    while (left && !Is(level.stop)) {
        if (!Is(level.operators)) {
            return ReportUnexpected();
        }
        const int position = cursor.position;
        const OrvStringT op = ReadOperator();
        Element right = (this->*level.parseOperand)();
        if (!right) {
            return right;
        }
        left = MakeBinary(op, left, right, position);
    }
    return left;
}

/// An operator in front is of the whole chain behind it.
Parser::Element Parser::ParsePrefixed(std::uint32_t prefixes, LevelNumber level) {
    if (!Is(prefixes)) {
        return ParseChain(level);
    }
    const OrvStringT op = OperatorText(token.Text());
    const int position = cursor.position;
    Advance();
    Element operand = ParseChain(level);
    return operand ? MakeUnary(op, operand, position) : std::move(operand);
}

/// `not a = b` is `not (a = b)`.
Parser::Element Parser::ParseComparison() { return ParsePrefixed(negations, ComparisonLevel); }

Parser::Element Parser::ParseSum() { return ParseChain(SumLevel); }

/// `-a*b` is `-(a*b)`.
Parser::Element Parser::ParseSigned() { return ParsePrefixed(sumOperators, TermLevel); }

Parser::Element Parser::ParsePower() { return ParseChain(PowerLevel); }

/// The operator at the cursor. A comparison takes a second character that belongs to it: "=" behind any, "<" and ">"
/// behind any but "!". What they mean together is decided later; some of them mean nothing.
OrvStringT Parser::ReadOperator() {
    int size = token.size;
    if (Is(comparisonOperators)) {
        const wchar_t second = token.begin[1];
        if (second == L'=' || (!Is(TokenNotEqual) && (second == L'<' || second == L'>'))) {
            size = 2;
        }
    }
    OrvStringT op = OperatorText(std::wstring_view(token.begin, static_cast<std::size_t>(size)));
    MoveTo(cursor.position + size);
    return op;
}

IQueryElement* QueryEngine::ParseQuery(const wchar_t* text, IError** err) {
    errorPosition = -1;
    int position = 0;
    IQueryElement* const tree = Guarded(err, [&]() -> IQueryElement* {
        // The text is parsed where it stands, unless it has elements that are no code units: they are split, so that
        // positions count the same everywhere.
        const std::wstring_view view(text == nullptr ? L"" : text);
        if (view.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
            throw std::length_error("query");
        }
        const OrvStringT units(platform::HasWide(view) ? OrvStringT(view) : OrvStringT());
        Parser parser(this, units.IsEmpty() ? view.data() : units.GetString(), err);
        IQueryElement* const result = parser.Parse();
        position = parser.GetPosition();
        return result;
    });
    errorPosition = tree == nullptr ? position : -1; // a catalogue may have parsed something in between
    return tree;
}

} // namespace OrvUQL
