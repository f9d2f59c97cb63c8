#include "parser/Token.h"

#include "platform/CaseMap.h"

namespace OrvUQL {

using namespace std::string_view_literals;

namespace {

/// The words that are operators. "true", "false" and "null" are names until the parser meets them where a value may
/// stand.
TokenKind NameKind(std::wstring_view name) noexcept {
    if (name.size() == 2) {
        return platform::EqualsIgnoreCaseAscii(name, L"or"sv) ? TokenOr : TokenName;
    }
    if (name.size() == 3) {
        if (platform::EqualsIgnoreCaseAscii(name, L"and"sv)) {
            return TokenAnd;
        }
        if (platform::EqualsIgnoreCaseAscii(name, L"not"sv)) {
            return TokenNot;
        }
    }
    return TokenName;
}

/// `token` is a view into a NUL-terminated text, so there is a character behind it.
TokenKind KindOf(std::wstring_view token) noexcept {
    if (token.empty()) {
        return TokenEnd;
    }
    const wchar_t first = token[0];
    if (IsNameLetter(first)) {
        return NameKind(token);
    }
    if (IsDigit(first)) {
        return TokenNumber;
    }
    switch (first) {
    case L'\'':
        return TokenString;
    case L'@':
    case L'$':
        return TokenName;
    case L']':
        return TokenCloseBracket;
    case L')':
        return TokenCloseParenthesis;
    case L',':
        return TokenComma;
    case L':':
        return TokenColon;
    case L'?':
        return TokenQuestion;
    case L'&':
        return TokenAnd;
    case L'|':
        return TokenOr;
    case L'!':
        return token.data()[1] == L'=' ? TokenNotEqual : TokenBang;
    case L'<':
        return TokenLess;
    case L'>':
        return TokenGreater;
    case L'=':
        return TokenEqual;
    case L'+':
        return TokenPlus;
    case L'-':
        return TokenMinus;
    case L'*':
    case L'/':
    case L'\\':
        return TokenMultiply;
    case L'^':
        return TokenPower;
    case L'.':
        return TokenDot;
    case L'(':
        return TokenOpenParenthesis;
    case L'[':
        return TokenOpenBracket;
    case L'{':
        return TokenOpenBrace;
    default:
        return TokenOther;
    }
}

} // namespace

Token ReadToken(ParseCursor& cursor) noexcept {
    SkipSpaces(cursor);
    const std::wstring_view text = PeekTokenView(cursor);
    return Token{KindOf(text), text};
}

} // namespace OrvUQL
