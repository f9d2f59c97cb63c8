#include "platform/RegexTraits.h"

namespace OrvUQL::platform {

namespace {

struct ClassName {
    std::wstring_view name;
    RegexClasses classes;
};

constexpr ClassName classNames[] = {
    {L"alnum", regexClass::alpha | regexClass::digit},
    {L"alpha", regexClass::alpha},
    {L"blank", regexClass::blank},
    {L"cntrl", regexClass::control},
    {L"d", regexClass::digit},
    {L"digit", regexClass::digit},
    {L"graph", regexClass::graph},
    {L"lower", regexClass::lower},
    {L"print", regexClass::graph | regexClass::blankCharacter},
    {L"punct", regexClass::punctuation},
    {L"s", regexClass::space},
    {L"space", regexClass::space},
    {L"upper", regexClass::upper},
    {L"w", regexClass::word},
    {L"xdigit", regexClass::hexDigit},
};

// POSIX's names of the ASCII characters, by their codes, but for the letters, which are their own names.
constexpr std::wstring_view namesBeforeUpper[] = {
    L"NUL",
    L"SOH",
    L"STX",
    L"ETX",
    L"EOT",
    L"ENQ",
    L"ACK",
    L"alert",
    L"backspace",
    L"tab",
    L"newline",
    L"vertical-tab",
    L"form-feed",
    L"carriage-return",
    L"SO",
    L"SI",
    L"DLE",
    L"DC1",
    L"DC2",
    L"DC3",
    L"DC4",
    L"NAK",
    L"SYN",
    L"ETB",
    L"CAN",
    L"EM",
    L"SUB",
    L"ESC",
    L"IS4",
    L"IS3",
    L"IS2",
    L"IS1",
    L"space",
    L"exclamation-mark",
    L"quotation-mark",
    L"number-sign",
    L"dollar-sign",
    L"percent-sign",
    L"ampersand",
    L"apostrophe",
    L"left-parenthesis",
    L"right-parenthesis",
    L"asterisk",
    L"plus-sign",
    L"comma",
    L"hyphen",
    L"period",
    L"slash",
    L"zero",
    L"one",
    L"two",
    L"three",
    L"four",
    L"five",
    L"six",
    L"seven",
    L"eight",
    L"nine",
    L"colon",
    L"semicolon",
    L"less-than-sign",
    L"equals-sign",
    L"greater-than-sign",
    L"question-mark",
    L"commercial-at",
};
constexpr std::wstring_view namesAfterUpper[] = {
    L"left-square-bracket", L"backslash", L"right-square-bracket", L"circumflex", L"underscore", L"grave-accent",
};
constexpr std::wstring_view namesAfterLower[] = {
    L"left-curly-bracket", L"vertical-line", L"right-curly-bracket", L"tilde", L"DEL",
};

template <std::size_t count>
bool FindName(const std::wstring_view (&names)[count], std::wstring_view name, int first, std::wstring& found) {
    for (std::size_t i = 0; i < count; ++i) {
        if (names[i] == name) {
            found.assign(1, static_cast<wchar_t>(first + static_cast<int>(i)));
            return true;
        }
    }
    return false;
}

/// The scanner of patterns tells special characters and digits apart by this facet.
class AsciiFacet : public std::ctype<wchar_t> {
protected:
    bool do_is(mask classes, wchar_t unit) const override {
        const auto code = static_cast<std::uint32_t>(unit);
        return code < 128u && (std::ctype<char>::classic_table()[code] & classes) != 0;
    }
    char do_narrow(wchar_t unit, char otherwise) const override {
        const auto code = static_cast<std::uint32_t>(unit);
        return code < 128u ? static_cast<char>(code) : otherwise;
    }
    wchar_t do_toupper(wchar_t unit) const override { return ToUpperUnit(unit); }
    wchar_t do_tolower(wchar_t unit) const override { return ToLowerUnit(unit); }
};

} // namespace

RegexClasses FindRegexClasses(std::wstring_view name, bool ignoreCase) noexcept {
    for (const ClassName& known : classNames) {
        if (EqualsIgnoreCaseAscii(known.name, name)) {
            const bool hasCase = known.classes == regexClass::upper || known.classes == regexClass::lower;
            return ignoreCase && hasCase ? regexClass::alpha : known.classes;
        }
    }
    return 0;
}

std::wstring FindCollatingElement(std::wstring_view name) {
    if (name.size() == 1) {
        return std::wstring(name);
    }
    std::wstring found;
    if (!FindName(namesBeforeUpper, name, 0, found) && !FindName(namesAfterUpper, name, L'Z' + 1, found)) {
        FindName(namesAfterLower, name, L'z' + 1, found);
    }
    return found;
}

const std::locale& RegexLocale() {
    // Never destroyed: a host's static objects may match until the very end.
    static const std::locale& locale = *new std::locale(std::locale::classic(), new AsciiFacet);
    return locale;
}

} // namespace OrvUQL::platform
