#pragma once

#include <cstdint>
#include <string_view>

/// Letter case and white space of single UTF-16 code units, from the tables of the Unicode standard and never from a
/// locale.
namespace OrvUQL::platform {

/// The mappings of units from U+0080 on; see CaseMapTable.inc.
wchar_t MapToUpper(wchar_t unit) noexcept;
wchar_t MapToLower(wchar_t unit) noexcept;

/// The simple upper-case mapping of a code unit: one unit to one unit, so surrogates and sharp s stay as they are.
inline wchar_t ToUpperUnit(wchar_t unit) noexcept {
    if (static_cast<std::uint32_t>(unit) < 0x80u) {
        return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - 0x20) : unit;
    }
    return MapToUpper(unit);
}

/// The simple lower-case mapping of a code unit.
inline wchar_t ToLowerUnit(wchar_t unit) noexcept {
    if (static_cast<std::uint32_t>(unit) < 0x80u) {
        return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 0x20) : unit;
    }
    return MapToLower(unit);
}

/// TAB to CR and the blank, U+00A0, U+1680, U+2000 to U+200A, U+2028, U+2029, U+202F, U+205F and U+3000.
inline bool IsWhiteSpace(wchar_t unit) noexcept {
    const auto code = static_cast<std::uint32_t>(unit);
    if (code < 0x80u) {
        return code == 0x20u || (code >= 0x09u && code <= 0x0Du);
    }
    return code == 0xA0u || code == 0x1680u || (code >= 0x2000u && code <= 0x200Au) || code == 0x2028u ||
           code == 0x2029u || code == 0x202Fu || code == 0x205Fu || code == 0x3000u;
}

/// Whether the upper-case mappings of two texts are the same.
bool EqualsIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept;

/// The same where only the letters A to Z have case.
bool EqualsIgnoreCaseAscii(std::wstring_view a, std::wstring_view b) noexcept;

/// The order of the upper-case mappings of two texts: -1, 0 or 1.
int CompareIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept;

} // namespace OrvUQL::platform
