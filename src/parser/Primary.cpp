// The innermost level of the grammar: values, names, calls, members and groups.

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "core/InlineList.h"
#include "core/KnownNames.h"
#include "parser/Parser.h"
#include "platform/CaseMap.h"

namespace OrvUQL {

using namespace std::string_view_literals;

namespace {

constexpr std::uint32_t noValue = TokenEnd | TokenCloseBracket | TokenCloseParenthesis | TokenComma | TokenColon |
                                  TokenQuestion | TokenAnd | TokenOr | TokenNot | TokenBang | TokenNotEqual |
                                  TokenLess | TokenGreater | TokenEqual | TokenPlus | TokenMinus | TokenMultiply |
                                  TokenPower;

/// A literal whose value's reference is handed over.
Parser::Element MakeLiteral(IObject* value, int position) {
    Reference<IObject> owned(value);
    Parser::Element element(new ElementObject(value, position, false));
    owned.Detach();
    return element;
}

/// Short runs of decimal digits, which most numbers are, need none of the rules of number texts.
bool ReadPlainInt(std::wstring_view text, int& value) noexcept {
    if (text.size() > 9) {
        return false;
    }
    int number = 0;
    for (const wchar_t unit : text) {
        if (!IsDigit(unit)) {
            return false;
        }
        number = number * 10 + static_cast<int>(unit - L'0');
    }
    value = number;
    return true;
}

} // namespace

Parser::Element Parser::ParsePrimary() {
    if (Is(noValue)) {
        return ReportUnexpected();
    }
    Element result;
    if (!Is(TokenDot)) {
        result = ParseValue();
        if (result && Is(TokenOpenBracket)) {
            result = ParseGroup(std::move(result));
        }
        if (!result) {
            return result;
        }
    }
    if (Is(TokenDot)) {
        result = ParseMembers(std::move(result));
    }
    if (result && Is(TokenOpenBracket)) {
        result = ParseGroup(std::move(result));
    }
    return result;
}

Parser::Element Parser::ParseValue() {
    switch (token.kind) {
    case TokenOpenParenthesis:
        return ParseParenthesis();
    case TokenString:
        return ParseString();
    case TokenNumber:
        return ParseNumber();
    case TokenOpenBrace:
        return ParseUnit();
    default:
        break;
    }
    const int position = cursor.position;
    if (platform::EqualsIgnoreCaseAscii(token.Text(), L"true"sv)) {
        Advance();
        return Element(new ElementObject(true, position));
    }
    if (platform::EqualsIgnoreCaseAscii(token.Text(), L"false"sv)) {
        Advance();
        return Element(new ElementObject(false, position));
    }
    if (platform::EqualsIgnoreCaseAscii(token.Text(), L"null"sv)) {
        Advance();
        return MakeLiteral(new ObjectNull(), position);
    }
    // A name, or a character that no rule takes: such a name fails when it is evaluated.
    return ParseMethod(Element(), false);
}

/// Parentheses leave no trace in the tree.
Parser::Element Parser::ParseParenthesis() {
    Advance();
    Element inner = ParseCondition();
    if (!inner) {
        return inner;
    }
    if (!Is(TokenCloseParenthesis)) {
        return Report(message::parenthesisExpected);
    }
    Advance();
    return inner;
}

Parser::Element Parser::ParseString() {
    const std::wstring_view text = token.Text();
    const std::size_t lastOther = text.find_last_not_of(L'\'');
    if (lastOther != std::wstring_view::npos && (text.size() - lastOther - 1) % 2 == 0) {
        return Report(message::unterminatedString);
    }
    // Between the first and the last apostrophe; of a lone one at the end of the text nothing remains.
    OrvStringT value(text.size() < 2 ? std::wstring_view() : text.substr(1, text.size() - 2));
    value.Replace(L"''", L"'");
    const int position = cursor.position;
    Advance();
    return MakeLiteral(new ObjectString(std::move(value)), position);
}

Parser::Element Parser::ParseNumber() {
    const int position = cursor.position;
    int plain = 0;
    if (ReadPlainInt(token.Text(), plain)) {
        Advance();
        return Element(new ElementObject(plain, position));
    }
    const Reference<ObjectString> text(new ObjectString(OrvStringT(token.Text())));
    IObject* const value = text->ToNumeric(err);
    if (value == nullptr) {
        return Element();
    }
    Advance();
    return MakeLiteral(value, position);
}

Parser::Element Parser::ParseGroup(Element source) {
    const int position = cursor.position;
    Advance();
    Element inner = ParseCondition();
    if (!inner) {
        return inner;
    }
    if (!Is(TokenCloseBracket)) {
        return Report(message::bracketExpected);
    }
    Advance();
    Element group(new ElementGroup(source.Get(), inner.Get(), position));
    source.Detach();
    inner.Detach();
    return group;
}

Parser::Element Parser::ParseMembers(Element source) {
    while (Is(TokenDot)) {
        // The name follows at once: what stands behind the "." is looked at without skipping white space.
        ++cursor.position;
        token.Set(TokenName, PeekTokenView(cursor));
        if (token.size == 0) {
            return Report(message::unexpectedEnd);
        }
        if (!IsNameLetter(token.begin[0])) {
            return Report(message::unexpectedToken, token.Text());
        }
        source = ParseMethod(std::move(source), true);
        if (!source) {
            break;
        }
    }
    return source;
}

Parser::Element Parser::ParseMethod(Element parent, bool member) {
    OrvStringT name = detail::NameText(token.Text());
    const int position = cursor.position;
    Advance();
    InlineList<QueryElementList, 16> arguments; // the element's own list is as long as it has to be
    if (Is(TokenOpenParenthesis) && !ParseArguments(arguments)) {
        return Element();
    }
    Element method(new ElementMethod(parent.Get(), std::move(name), arguments, member, position));
    parent.Detach();
    return method;
}

bool Parser::ParseArguments(QueryElementList& arguments) {
    Advance();
    if (Is(TokenEnd)) {
        Report(message::parenthesisExpected);
        return false;
    }
    if (Is(TokenCloseParenthesis)) {
        Advance();
        return true;
    }
    if (Is(TokenComma)) {
        arguments.push_back(nullptr); // an omitted first argument; only the first can be left out
        Advance();
    }
    for (;;) {
        Element argument = ParseCondition();
        if (!argument) {
            return false;
        }
        arguments.push_back(argument.Get());
        argument.Detach();
        if (Is(TokenCloseParenthesis)) {
            Advance();
            return true;
        }
        if (!Is(TokenComma)) {
            Report(message::parenthesisExpected);
            return false;
        }
        Advance();
    }
}

} // namespace OrvUQL
