#include "platform/CaseMap.h"

#include <algorithm>

namespace OrvUQL::platform {

namespace {

#include "platform/CaseMapTable.inc"

wchar_t Map(wchar_t unit, const std::uint8_t (&rows)[1024]) noexcept {
    const auto code = static_cast<std::uint32_t>(unit);
    if (code > 0xFFFFu) {
        return unit; // no code unit: a view that never was a text
    }
    return static_cast<wchar_t>((code + caseDistances[rows[code >> 6]][code & 63u]) & 0xFFFFu);
}

wchar_t ToUpperAscii(wchar_t unit) noexcept {
    return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - 0x20) : unit;
}

} // namespace

wchar_t MapToUpper(wchar_t unit) noexcept { return Map(unit, upperRows); }

wchar_t MapToLower(wchar_t unit) noexcept { return Map(unit, lowerRows); }

bool EqualsIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](wchar_t x, wchar_t y) { return x == y || ToUpperUnit(x) == ToUpperUnit(y); });
}

bool EqualsIgnoreCaseAscii(std::wstring_view a, std::wstring_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](wchar_t x, wchar_t y) { return x == y || ToUpperAscii(x) == ToUpperAscii(y); });
}

int CompareIgnoreCase(std::wstring_view a, std::wstring_view b) noexcept {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (a[i] != b[i]) {
            const wchar_t x = ToUpperUnit(a[i]);
            const wchar_t y = ToUpperUnit(b[i]);
            if (x != y) {
                return x < y ? -1 : 1;
            }
        }
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

} // namespace OrvUQL::platform
