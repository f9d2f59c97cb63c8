// Kinds of tokens, as sets of bits, so that each level of the grammar can hold its lists of stop tokens.
#pragma once

#include "parser/Lexer.h"

namespace OrvUQL {

enum TokenKind : std::uint32_t {
    TokenEnd = 1u << 0,
    TokenCloseBracket = 1u << 1,
    TokenCloseParenthesis = 1u << 2,
    TokenComma = 1u << 3,
    TokenColon = 1u << 4,
    TokenQuestion = 1u << 5,
    TokenAnd = 1u << 6,  ///< "&", "and"
    TokenOr = 1u << 7,   ///< "|", "or"
    TokenNot = 1u << 8,  ///< "not"
    TokenBang = 1u << 9, ///< "!" that no "=" follows
    TokenLess = 1u << 10,
    TokenGreater = 1u << 11,
    TokenEqual = 1u << 12,
    TokenPlus = 1u << 13,
    TokenMinus = 1u << 14,
    TokenMultiply = 1u << 15, ///< "*", "/", "\"
    TokenPower = 1u << 16,
    TokenDot = 1u << 17,
    TokenOpenParenthesis = 1u << 18,
    TokenOpenBracket = 1u << 19,
    TokenOpenBrace = 1u << 20,
    TokenString = 1u << 21,
    TokenNumber = 1u << 22,
    TokenName = 1u << 23,
    TokenNotEqual = 1u << 24, ///< "!" in front of "=": still a token of one character
    TokenOther = 1u << 25,    ///< a character that the language has no use for
};

/// A token and where it stands. Set and read member by member, and not copied: what was written in two pieces and is
/// read as one makes the processor wait.
struct Token {
    TokenKind kind = TokenEnd;
    int size = 0; ///< in code units
    const wchar_t* begin = nullptr;

    std::wstring_view Text() const noexcept { return std::wstring_view(begin, static_cast<std::size_t>(size)); }
    void Set(TokenKind newKind, std::wstring_view text) noexcept {
        kind = newKind;
        begin = text.data();
        size = static_cast<int>(text.size());
    }
};

/// Skips white space, so that the cursor stands at the token, and tells what it is.
void ReadToken(ParseCursor& cursor, Token& token) noexcept;

} // namespace OrvUQL
