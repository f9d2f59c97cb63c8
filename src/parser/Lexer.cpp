#include "parser/Lexer.h"

#include "platform/CaseMap.h"

namespace OrvUQL {

namespace {

constexpr wchar_t apostrophe = L'\'';

std::wstring_view ViewFrom(const wchar_t* begin, const wchar_t* end) noexcept {
    return std::wstring_view(begin, static_cast<std::size_t>(end - begin));
}

/// Behind the string that begins at `begin`: two apostrophes in a row stand for one inside of it. At the end of the
/// text the string just ends; the parser complains.
const wchar_t* EndOfString(const wchar_t* begin) noexcept {
    const wchar_t* end = begin + 1;
    for (; *end != L'\0'; ++end) {
        if (*end != apostrophe) {
            continue;
        }
        if (end[1] != apostrophe) {
            return end + 1;
        }
        ++end;
    }
    return end;
}

} // namespace

void SkipSpaces(ParseCursor& cursor) noexcept {
    const wchar_t* unit = cursor.text + cursor.position;
    while (*unit == L' ' || *unit == L'\t' || *unit == L'\n' || *unit == L'\r') {
        ++unit;
    }
    cursor.position = static_cast<int>(unit - cursor.text);
}

std::wstring_view ReadNumberView(ParseCursor& cursor) noexcept {
    const wchar_t* const begin = cursor.text + cursor.position;
    const wchar_t* end = begin;
    while (IsDigit(*end)) { // which is all of most numbers
        ++end;
    }
    bool hex = false;
    bool dot = false;
    bool exponent = false;
    for (;; ++end) {
        const wchar_t unit = *end;
        if (IsDigit(unit)) {
            continue;
        }
        if (unit == L'x' || unit == L'X') {
            if (end != begin + 1 || *begin != L'0') {
                break;
            }
            hex = true;
        } else if (hex) {
            if (!((unit >= L'a' && unit <= L'f') || (unit >= L'A' && unit <= L'F'))) {
                break;
            }
        } else if (unit == L'.') {
            // Only with a digit behind it, so that `5.Radix(2)` is a call. Deliberately also behind an exponent.
            if (dot || !IsDigit(end[1])) {
                break;
            }
            dot = true;
        } else if (unit == L'e' || unit == L'E') {
            if (exponent) {
                break;
            }
            exponent = true;
            if (end[1] == L'+' || end[1] == L'-') {
                ++end;
            }
        } else {
            break;
        }
    }
    cursor.position = static_cast<int>(end - cursor.text);
    return ViewFrom(begin, end);
}

OrvStringT ReadNumberText(ParseCursor& cursor) { return OrvStringT(ReadNumberView(cursor)); }

std::wstring_view PeekTokenView(const ParseCursor& cursor) noexcept {
    const wchar_t* const begin = cursor.text + cursor.position;
    const wchar_t first = *begin;
    if (IsDigit(first)) {
        ParseCursor copy = cursor;
        return ReadNumberView(copy);
    }
    if (first == apostrophe) {
        return ViewFrom(begin, EndOfString(begin));
    }
    if (first == L'\0') {
        return std::wstring_view();
    }
    const wchar_t* end = begin + 1;
    if (IsNameLetter(first) || first == L'@' || first == L'$') {
        while (IsNameLetter(*end) || IsDigit(*end)) {
            ++end;
        }
    }
    return ViewFrom(begin, end);
}

OrvStringT PeekToken(const ParseCursor& cursor) { return OrvStringT(PeekTokenView(cursor)); }

bool IsTokenInList(std::wstring_view token, std::wstring_view list) noexcept {
    if (token.empty()) {
        return false;
    }
    while (!list.empty()) {
        const std::size_t end = list.find(L';');
        if (platform::EqualsIgnoreCase(token, list.substr(0, end))) {
            return true;
        }
        list = end == std::wstring_view::npos ? std::wstring_view() : list.substr(end + 1);
    }
    return false;
}

} // namespace OrvUQL
