#pragma once

#include <OrvUQL/OrvString.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

/// From what hosts write to UTF-16 code units. Where wchar_t has 16 bits there is nothing to do, and the compiler sees
/// it.
namespace OrvUQL::platform {

inline constexpr wchar_t replacementUnit = 0xFFFD;

/// Whether one element of a text is more than one code unit, or none at all.
inline constexpr bool IsWide(wchar_t element) noexcept { return static_cast<std::uint32_t>(element) >> 16 != 0; }

/// Whether a text has elements that are no code units.
inline bool HasWide(std::wstring_view text) noexcept {
    std::uint32_t all = 0; // looked at once, at the end, so that the loop takes many elements at a time
    if constexpr (sizeof(wchar_t) > 2) {
        for (const wchar_t element : text) {
            all |= static_cast<std::uint32_t>(element);
        }
    }
    return all > 0xFFFFu;
}

/// The code units of one element: one, or the two surrogates of a code point above U+FFFF.
struct UnitPair {
    wchar_t units[2];
    int count;

    explicit constexpr UnitPair(std::uint32_t code) noexcept : units{static_cast<wchar_t>(code), L'\0'}, count(1) {
        if (code > 0x10FFFFu) {
            units[0] = replacementUnit;
        } else if (code > 0xFFFFu) {
            units[0] = static_cast<wchar_t>(0xD7C0u + (code >> 10));
            units[1] = static_cast<wchar_t>(0xDC00u + (code & 0x3FFu));
            count = 2;
        }
    }
};

/// How many code units a text has.
inline std::size_t CountUnits(std::wstring_view text) noexcept {
    std::size_t count = text.size();
    if constexpr (sizeof(wchar_t) > 2) {
        for (const wchar_t element : text) {
            const auto code = static_cast<std::uint32_t>(element);
            count += code > 0xFFFFu && code <= 0x10FFFFu ? 1 : 0;
        }
    }
    return count;
}

/// An argument as code units: the argument itself, or a copy where elements have to be split.
class UnitText {
public:
    explicit UnitText(std::wstring_view text) : view(text) {
        if (HasWide(text)) {
            copy = OrvStringT(text);
            view = copy.View();
        }
    }

    UnitText(const UnitText&) = delete;
    UnitText& operator=(const UnitText&) = delete;

    std::wstring_view View() const noexcept { return view; }

private:
    OrvStringT copy;
    std::wstring_view view;
};

} // namespace OrvUQL::platform
