// Number texts by chance: such as programs write, such as people may write, and such as are no numbers.
#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace OrvUQL::Tests {

/// The same sequence for the same seed, on every platform.
class NumberTextGenerator {
public:
    explicit NumberTextGenerator(unsigned seed) : random(seed) {}

    /// At most 100 units, and no exponent of more than nine digits: what has to be read the same by whoever reads it.
    std::wstring Text() {
        std::wstring text;
        switch (Below(8)) {
        case 0:
        case 1:
            text = Plain();
            break;
        case 2:
            text = Around(Pattern());
            break;
        case 3:
            text = Fragments();
            break;
        default:
            text = Around(Decimal(3));
            break;
        }
        if (Below(4) == 0) {
            Mutate(text);
        }
        ShortenExponents(text);
        return text.substr(0, 100);
    }

    /// Any length, any exponent.
    std::wstring LongText() {
        std::wstring text = Text();
        for (std::size_t count = 1 + Below(3); count > 0; --count) {
            text.insert(Below(text.size() + 1), Digits(Below(4) == 0 ? 900 : 30));
        }
        return text;
    }

    std::size_t Below(std::size_t bound) { return random() % bound; }

private:
    std::mt19937 random;

    template <std::size_t count> std::wstring_view Pick(const std::wstring_view (&choices)[count]) {
        return choices[Below(count)];
    }

    std::wstring Digits(std::size_t greatestCount) {
        static constexpr std::wstring_view known[] = {L"0",          L"00",         L"1",         L"9",
                                                      L"2147483647", L"2147483648", L"214748364", L"4294967296"};
        if (Below(4) == 0 && greatestCount >= 10) {
            return std::wstring(Pick(known));
        }
        const std::size_t count = 1 + Below(Below(4) == 0 ? greatestCount : 1 + greatestCount / 6);
        if (Below(8) == 0) {
            return std::wstring(count, L"09"[Below(2)]);
        }
        std::wstring digits;
        while (digits.size() < count) {
            digits += static_cast<wchar_t>(L'0' + Below(10));
        }
        return digits;
    }

    std::wstring Exponent() {
        std::wstring exponent(1, L"eE"[Below(2)]);
        exponent += L"+-  "[Below(4)];
        if (exponent.back() == L' ') {
            exponent.pop_back();
        }
        return exponent + Digits(Below(2) == 0 ? 4 : 2);
    }

    /// In the form of printf and of most languages.
    std::wstring Plain() {
        std::wstring text = Below(3) == 0 ? L"-" : L"";
        text += Digits(24);
        if (Below(2) == 0) {
            text += L"." + Digits(24);
        }
        return Below(3) == 0 ? text + Exponent() : text;
    }

    /// Pieces of a decimal number in an order that is often right.
    std::wstring Decimal(std::size_t pieces) {
        std::wstring text = Below(8) == 0 ? L"" : Digits(12);
        for (std::size_t count = Below(pieces + 1); count > 0; --count) {
            if (Below(2) == 0) {
                text += L"," + Digits(3);
            }
            if (Below(2) == 0) {
                text += L"." + (Below(4) == 0 ? L"" : Digits(12));
            }
            if (Below(4) == 0) {
                text += Exponent();
            }
            if (Below(8) == 0) {
                text += L"," + Digits(4);
            }
        }
        return text;
    }

    std::wstring Pattern() {
        static constexpr std::wstring_view known[] = {L"0", L"7fffffff", L"80000000", L"FFFFFFFF", L"100000000"};
        static constexpr std::wstring_view prefixes[] = {L"&H", L"&h", L"&O", L"&o", L"&"};
        std::wstring text(Pick(prefixes));
        if (Below(4) == 0) {
            return text.append(Pick(known));
        }
        const bool octal = Below(2) == 0;
        for (std::size_t count = Below(14); count > 0; --count) {
            text += octal ? static_cast<wchar_t>(L'0' + Below(8)) : L"0123456789abcdefABCDEF"[Below(22)];
        }
        return text;
    }

    /// Signs, parentheses, currency and white space before a number and behind it.
    std::wstring Around(const std::wstring& number) {
        static constexpr std::wstring_view before[] = {L"",  L"",       L"",   L"-",       L"+",      L"(",
                                                       L" ", L"\u00A4", L"\t", L"\u00A0 ", L"\u2003", L"\u0085"};
        static constexpr std::wstring_view after[] = {L"",  L"",  L"",       L"-",  L"+",       L")",
                                                      L" ", L",", L"\u00A4", L"\n", L"\u3000 ", L"\uFEFF"};
        std::wstring text;
        for (std::size_t count = Below(4); count > 0; --count) {
            text += Pick(before);
        }
        text += number;
        if (text.find(L'(') != std::wstring::npos && Below(4) != 0) {
            text += L')';
        }
        for (std::size_t count = Below(3); count > 0; --count) {
            text += Pick(after);
        }
        return text;
    }

    wchar_t Unit() {
        static constexpr std::wstring_view units = L"0123456789..,,eE+-() \t\u00A4&HhOoxXfF$%_'d\u00A0\u2009\uFF11";
        return units[Below(units.size())];
    }

    std::wstring Fragments() {
        std::wstring text;
        for (std::size_t count = Below(9); count > 0; --count) {
            text += Unit();
        }
        return text;
    }

    /// Takes away what a mutation has made too long.
    static void ShortenExponents(std::wstring& text) {
        for (std::size_t at = text.find_first_of(L"eE"); at < text.size(); at = text.find_first_of(L"eE", at)) {
            at = text.find_first_not_of(L",+-", at + 1);
            const std::size_t end = text.find_first_not_of(L"0123456789", at);
            const std::size_t count = (end < text.size() ? end : text.size()) - at;
            if (at < text.size() && count > 9) {
                text.erase(at, count - 9);
            }
        }
    }

    void Mutate(std::wstring& text) {
        const std::size_t at = Below(text.size() + 1);
        switch (Below(3)) {
        case 0:
            text.insert(at, 1, Unit());
            break;
        case 1:
            text.erase(at, 1);
            break;
        default:
            if (at < text.size()) {
                text[at] = Unit();
            }
            break;
        }
    }
};

} // namespace OrvUQL::Tests
