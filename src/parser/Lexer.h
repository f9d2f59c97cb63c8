// Tokens of a query text. There is no list of tokens: the parser looks at the next one, decides, and moves on.
#pragma once

#include "OrvUQL/OrvString.h"

#include "core/Failure.h"

#include <string_view>

namespace OrvUQL {

/// Where the parser stands in a NUL-terminated text of UTF-16 code units.
struct ParseCursor {
    int position; ///< in code units, from 0
    const wchar_t* text;
};

/// Moves over TAB, LF, CR and SPACE; nothing else is white space in a query.
void SkipSpaces(ParseCursor& cursor) noexcept;

/// The token at the cursor, which stays where it is; empty at the end of the text. White space is not skipped. The
/// view lasts as long as the text.
///
/// A token is a number text, a string with its apostrophes, a name (letters A to Z, digits and "_", the first no
/// digit, "@" or "$" in front allowed), or any other single character.
std::wstring_view PeekTokenView(const ParseCursor& cursor) noexcept;
/// The same as a text of its own.
OrvStringT PeekToken(const ParseCursor& cursor);

/// Reads the characters of a number and moves behind them; empty if there are none. At a digit always at least that.
/// The text need not be a number that can be converted: "1e" and "1e5.5" are read as one.
std::wstring_view ReadNumberView(ParseCursor& cursor) noexcept;
OrvStringT ReadNumberText(ParseCursor& cursor);

/// Whether a token is one of a list's, which are separated by ";", in any letter case. The empty token never is.
bool IsTokenInList(std::wstring_view token, std::wstring_view list) noexcept;

/// Letters A to Z in either case and "_": of these names are made. Any other letter is a token of its own.
constexpr bool IsNameLetter(wchar_t unit) noexcept {
    return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z') || unit == L'_';
}

constexpr bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

/// Stores "Error parsing query: %1 at position %2" with the formatted message and the cursor's position counted from
/// 1. The one place where parse errors are made.
template <class... Inserts>
void ReportParseError(const ParseCursor& cursor, IError** err, const wchar_t* format, const Inserts&... inserts) {
    if (err != nullptr) {
        OrvStringT text;
        const OrvStringT own[] = {OrvStringT(inserts)..., OrvStringT()};
        const wchar_t* pointers[sizeof...(inserts) + 1] = {};
        for (std::size_t index = 0; index < sizeof...(inserts); ++index) {
            pointers[index] = own[index].GetString();
        }
        text.FormatInserts(format, pointers, static_cast<int>(sizeof...(inserts)));
        Fail(err, message::parseError, text, OrvUtils::String::ToStringW(cursor.position + 1));
    }
}

} // namespace OrvUQL
