// Patterns and subjects by chance: such as people write, such as nobody writes, and such as are no patterns.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace OrvUQL::Tests {

/// The same sequence for the same seed, on every platform. ASCII only.
class RegexPatternGenerator {
public:
    explicit RegexPatternGenerator(unsigned seed) : random(seed) {}

    /// Mostly well-formed; one in eight is a sequence of bits of patterns in any order.
    std::wstring Pattern() {
        budget = 8;
        return Below(8) == 0 ? Fragments() : Alternatives(0);
    }

    std::wstring Subject() {
        std::wstring subject;
        for (std::size_t length = Below(11); length > 0; --length) {
            subject += units[Below(units.size())];
        }
        return subject;
    }

    std::wstring Format() {
        static constexpr std::wstring_view parts[] = {L"$&", L"$1", L"$2", L"$01", L"$10", L"$$", L"$`",
                                                      L"$'", L"$",  L"x",  L"$x",  L"3",   L"$0", L"$99"};
        std::wstring format;
        for (std::size_t count = Below(5); count > 0; --count) {
            format += Pick(parts);
        }
        return format;
    }

    std::size_t Below(std::size_t bound) { return random() % bound; }

private:
    std::mt19937 random;
    int budget = 0;

    static constexpr std::wstring_view units = L"aaabbbcABZz019__ -,.\n\tk";

    template <std::size_t count> std::wstring_view Pick(const std::wstring_view (&choices)[count]) {
        return choices[Below(count)];
    }

    std::wstring Alternatives(int depth) {
        std::wstring pattern = Sequence(depth);
        while (Below(5) == 0) {
            pattern += L'|';
            pattern += Sequence(depth);
        }
        return pattern;
    }

    std::wstring Sequence(int depth) {
        std::wstring pattern;
        for (std::size_t count = Below(4); count > 0 && budget > 0; --count) {
            pattern += Term(depth);
        }
        return pattern;
    }

    std::wstring Term(int depth) {
        static constexpr std::wstring_view assertions[] = {L"^", L"$", L"\\b", L"\\B"};
        --budget;
        if (Below(10) == 0) {
            return std::wstring(Pick(assertions));
        }
        if (depth < 3 && Below(12) == 0) {
            return (Below(2) == 0 ? L"(?=" : L"(?!") + Alternatives(depth + 1) + L")";
        }
        const std::wstring atom = Atom(depth);
        // Repeats of repeats take a time that is exponential in their nesting.
        const bool isGroup = atom.size() > 2 && atom[0] == L'(';
        return isGroup ? atom + GroupQuantifier(depth) : atom + Quantifier();
    }

    std::wstring Atom(int depth) {
        static constexpr std::wstring_view classes[] = {L"\\d",   L"\\D",     L"\\w", L"\\W",  L"\\s", L"\\S",
                                                        L"\\x61", L"\\u0062", L"\\n", L"\\t",  L"\\.", L"\\-",
                                                        L"\\0",   L"\\1",     L"\\2", L"\\ck", L"\\q"};
        switch (Below(8)) {
        case 0:
            return L".";
        case 1:
            return Bracket();
        case 2:
            return std::wstring(Pick(classes));
        case 3:
        case 4:
            if (depth < 3) {
                return Group(depth);
            }
            [[fallthrough]];
        default:
            return std::wstring(1, L"aabbcABz1_ ]}"[Below(13)]);
        }
    }

    std::wstring Group(int depth) { return (Below(3) == 0 ? L"(?:" : L"(") + Alternatives(depth + 1) + L")"; }

    std::wstring GroupQuantifier(int depth) {
        static constexpr std::wstring_view outermost[] = {L"*", L"+", L"*?", L"+?", L"{2,}"};
        static constexpr std::wstring_view any[] = {L"?", L"??", L"{2}", L"{0}", L"{1,2}"};
        if (Below(3) != 0) {
            return {};
        }
        return std::wstring(depth == 0 && Below(2) == 0 ? Pick(outermost) : Pick(any));
    }

    std::wstring Quantifier() {
        static constexpr std::wstring_view quantifiers[] = {L"*",  L"+",      L"?",     L"*?",   L"+?",  L"??",
                                                            L"**", L"{2}",    L"{0,2}", L"{1,}", L"{0}", L"{1,3}?",
                                                            L"+*", L"{2}{2}", L"{0,}?", L"?{2}"};
        return Below(3) == 0 ? std::wstring(Pick(quantifiers)) : std::wstring();
    }

    std::wstring Bracket() {
        static constexpr std::wstring_view items[] = {
            L"a-c",       L"A-C",         L"0-9",        L"a",         L"B",         L"_",         L"-",
            L"k-m",       L"[:alpha:]",   L"[:upper:]",  L"[:lower:]", L"[:digit:]", L"[:space:]", L"[:punct:]",
            L"[:blank:]", L"[:xdigit:]",  L"[:alnum:]",  L"[:cntrl:]", L"[:print:]", L"[:graph:]", L"[:w:]",
            L"[=a=]",     L"[.b.]",       L"[.hyphen.]", L"\\d",       L"\\D",       L"\\w",       L"\\S",
            L"\\b",       L"\\x41-\\x5a", L"Z-a",        L"--0",       L"^",         L"[",         L".",
            L"*",         L"\\]",         L" -,",        L"A-z",       L"\\n"};
        std::wstring bracket = Below(3) == 0 ? L"[^" : L"[";
        for (std::size_t count = Below(4); count > 0; --count) {
            bracket += Pick(items);
        }
        return bracket + L"]";
    }

    std::wstring Fragments() {
        static constexpr std::wstring_view fragments[] = {
            L"(",   L")", L"[",   L"]", L"{",         L"}",     L"*",   L"+",   L"?",   L"|",   L"^",
            L"$",   L".", L"\\",  L"a", L"b",         L"1",     L",",   L"(?:", L"(?=", L"(?!", L"\\d",
            L"\\1", L"-", L"\\b", L":", L"[:alpha:]", L"{1,2}", L"a-c", L"(a)", L"\\x4"};
        std::wstring pattern;
        for (std::size_t count = 1 + Below(6); count > 0; --count) {
            pattern += Pick(fragments);
        }
        return pattern;
    }
};

} // namespace OrvUQL::Tests
