#pragma once

#include "platform/CaseMap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <string>
#include <string_view>

/// What the standard library's regular expressions ask about characters. The standard's own traits ask a locale, which
/// makes results depend on the host and costs a dynamic_cast for each character.
namespace OrvUQL::platform {

/// A set of character classes, one bit for each. All classes are those of ASCII but for white space, which is that of
/// IsWhiteSpace.
using RegexClasses = unsigned;

namespace regexClass {
inline constexpr RegexClasses upper = 1;
inline constexpr RegexClasses lower = 2;
inline constexpr RegexClasses digit = 4;
inline constexpr RegexClasses hexDigit = 8;
inline constexpr RegexClasses space = 16;
inline constexpr RegexClasses blank = 32;
inline constexpr RegexClasses control = 64;
inline constexpr RegexClasses punctuation = 128;
inline constexpr RegexClasses underscore = 256;
inline constexpr RegexClasses blankCharacter = 512;
inline constexpr RegexClasses alpha = upper | lower;
inline constexpr RegexClasses word = alpha | digit | underscore;
inline constexpr RegexClasses graph = alpha | digit | punctuation;
} // namespace regexClass

namespace detail {

constexpr RegexClasses ClassesOfAscii(int code) {
    RegexClasses classes = 0;
    const bool isUpper = code >= 'A' && code <= 'Z';
    const bool isLower = code >= 'a' && code <= 'z';
    const bool isDigit = code >= '0' && code <= '9';
    classes |= isUpper ? regexClass::upper : 0u;
    classes |= isLower ? regexClass::lower : 0u;
    classes |= isDigit ? regexClass::digit : 0u;
    classes |= isDigit || (code >= 'A' && code <= 'F') || (code >= 'a' && code <= 'f') ? regexClass::hexDigit : 0u;
    classes |= code == ' ' || (code >= '\t' && code <= '\r') ? regexClass::space : 0u;
    classes |= code == ' ' || code == '\t' ? regexClass::blank : 0u;
    classes |= code < ' ' || code == 0x7F ? regexClass::control : 0u;
    classes |= code > ' ' && code < 0x7F && !isUpper && !isLower && !isDigit ? regexClass::punctuation : 0u;
    classes |= code == '_' ? regexClass::underscore : 0u;
    classes |= code == ' ' ? regexClass::blankCharacter : 0u;
    return classes;
}

constexpr std::array<std::uint16_t, 128> MakeAsciiClasses() {
    std::array<std::uint16_t, 128> table{};
    for (int code = 0; code < 128; ++code) {
        table[static_cast<std::size_t>(code)] = static_cast<std::uint16_t>(ClassesOfAscii(code));
    }
    return table;
}

inline constexpr std::array<std::uint16_t, 128> asciiClasses = MakeAsciiClasses();

} // namespace detail

/// Whether a unit belongs to any of the classes.
inline bool IsInRegexClasses(wchar_t unit, RegexClasses classes) noexcept {
    const auto code = static_cast<std::uint32_t>(unit);
    if (code < 128u) {
        return (detail::asciiClasses[code] & classes) != 0;
    }
    return (classes & regexClass::space) != 0 && IsWhiteSpace(unit);
}

/// The classes that a name stands for: those of POSIX and d, s, w, in either case. 0 for an unknown name. Without
/// regard to case, upper and lower are alpha.
RegexClasses FindRegexClasses(std::wstring_view name, bool ignoreCase) noexcept;

/// The unit that a collating element's name stands for: POSIX's names of the ASCII characters, and any unit for itself.
/// The empty text for an unknown name.
std::wstring FindCollatingElement(std::wstring_view name);

/// The locale by which the standard library reads patterns: the classic one, but with no question to the C library,
/// whose answers change with setlocale on Windows.
const std::locale& RegexLocale();

/// The traits. With `fold`, units are compared by their upper-case mappings.
template <bool fold> class RegexTraits {
public:
    using char_type = wchar_t;
    using string_type = std::wstring;
    using locale_type = std::locale;
    using char_class_type = RegexClasses;

    static std::size_t length(const wchar_t* text) { return std::char_traits<wchar_t>::length(text); }

    wchar_t translate(wchar_t unit) const noexcept { return fold ? ToUpperUnit(unit) : unit; }
    wchar_t translate_nocase(wchar_t unit) const noexcept { return ToUpperUnit(unit); }

    /// What a text is compared by, in back references and ranges.
    template <class Iterator> std::wstring transform(Iterator first, Iterator last) const {
        std::wstring key = Copy(first, last);
        if constexpr (fold) {
            ToUpper(key);
        }
        return key;
    }

    /// What [[=a=]] compares by: never the case, not even where it matters otherwise.
    template <class Iterator> std::wstring transform_primary(Iterator first, Iterator last) const {
        std::wstring key = Copy(first, last);
        ToUpper(key);
        return key;
    }

    template <class Iterator> std::wstring lookup_collatename(Iterator first, Iterator last) const {
        return FindCollatingElement(Copy(first, last));
    }

    template <class Iterator>
    RegexClasses lookup_classname(Iterator first, Iterator last, bool ignoreCase = false) const {
        // Asked for "w" at each \b.
        if (last - first == 1 && *first == L'w') {
            return regexClass::word;
        }
        return FindRegexClasses(Copy(first, last), ignoreCase);
    }

    bool isctype(wchar_t unit, RegexClasses classes) const noexcept { return IsInRegexClasses(unit, classes); }

    int value(wchar_t unit, int radix) const noexcept {
        int digit = -1;
        if (unit >= L'0' && unit <= L'9') {
            digit = static_cast<int>(unit - L'0');
        } else if (unit >= L'a' && unit <= L'f') {
            digit = static_cast<int>(unit - L'a') + 10;
        } else if (unit >= L'A' && unit <= L'F') {
            digit = static_cast<int>(unit - L'A') + 10;
        }
        return digit < radix ? digit : -1;
    }

    std::locale imbue(const std::locale&) const { return RegexLocale(); }
    std::locale getloc() const { return RegexLocale(); }

private:
    // The units lie in one piece, whatever the iterator: no need to step through them.
    template <class Iterator> static std::wstring Copy(Iterator first, Iterator last) {
        const auto count = last - first;
        return count > 0 ? std::wstring(&*first, static_cast<std::size_t>(count)) : std::wstring();
    }

    static void ToUpper(std::wstring& text) noexcept {
        for (wchar_t& unit : text) {
            unit = ToUpperUnit(unit);
        }
    }
};

} // namespace OrvUQL::platform
