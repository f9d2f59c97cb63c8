#include "parser/Token.h"

#include "platform/CaseMap.h"

#include <array>

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

/// What a token is whose first character this is, names and "!" apart.
constexpr TokenKind KindOf(wchar_t first) noexcept {
    if (IsNameLetter(first)) {
        return TokenName;
    }
    if (IsDigit(first)) {
        return TokenNumber;
    }
    switch (first) {
    case L'\0':
        return TokenEnd;
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
        return TokenBang;
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

constexpr std::array<TokenKind, 128> MakeKinds() noexcept {
    std::array<TokenKind, 128> kinds{};
    for (std::size_t unit = 0; unit < kinds.size(); ++unit) {
        kinds[unit] = KindOf(static_cast<wchar_t>(unit));
    }
    return kinds;
}

constexpr std::array<TokenKind, 128> asciiKinds = MakeKinds();

} // namespace

void ReadToken(ParseCursor& cursor, Token& token) noexcept {
    SkipSpaces(cursor);
    const wchar_t* const begin = cursor.text + cursor.position;
    const auto first = static_cast<std::uint32_t>(*begin);
    const TokenKind kind = first < asciiKinds.size() ? asciiKinds[first] : TokenOther;
    switch (kind) {
    case TokenName: {
        const std::wstring_view text = PeekTokenView(cursor);
        token.Set(NameKind(text), text);
        return;
    }
    case TokenNumber:
    case TokenString:
        token.Set(kind, PeekTokenView(cursor));
        return;
    default:
        token.kind = kind == TokenBang && begin[1] == L'=' ? TokenNotEqual : kind;
        token.begin = begin;
        token.size = kind == TokenEnd ? 0 : 1;
        return;
    }
}

} // namespace OrvUQL
