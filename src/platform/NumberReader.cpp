#include "platform/NumberReader.h"

#include "platform/CaseMap.h"
#include "platform/Decimal.h"
#include "platform/Digit.h"

#include <limits>

// What OLE Automation accepts, as a grammar (white space may stand between the parts of prefix and suffix):
//
//     number   = prefix ( decimal / hex / octal ) suffix
//     prefix   = at most one each of "+" "-" "(" and the currency sign, in any order
//     decimal  = 1*( digit / "," / "." / exponent )     no "," first, one ".", behind it one exponent, some digit
//     exponent = "e" *( "," / "+" / "-" ) 1*digit
//     hex      = "&H" 1*hexdigit               octal = "&O" 1*octdigit      both without a currency sign
//     suffix   = *( "+" / "-" / ")" / "," / currency )     a sign unless the prefix has the same one, ")" if it has "("
//
// The oddities are OLE Automation's and are kept, so that a text is the same number everywhere: separators in the
// exponent; digits that follow a separator behind the exponent count as digits of the number (1e3,0 is 10000); several
// signs in the exponent or behind the number; a minus before &H that has no effect; a zero whose digits behind a
// separator are places, all but one, which may make up for a negative exponent (0e-1,00 is the int 0 and 0e-1 a
// double).
namespace OrvUQL::platform {

namespace {

constexpr wchar_t currencySign = 0xA4;

// OLE Automation counts the control character NEL among the spaces.
bool IsSpace(wchar_t unit) noexcept { return IsWhiteSpace(unit) || unit == 0x85; }

/// One number text, read from its first unit to its last.
class NumberReader {
public:
    explicit NumberReader(std::wstring_view text) noexcept : at(text.data()), end(text.data() + text.size()) {}

    /// False if the text is no number.
    bool Read() noexcept {
        ReadPrefix();
        const bool read = Here() == L'&' ? ReadPattern() : ReadDecimal();
        return read && ReadSuffix();
    }

    Decimal decimal;
    bool negative = false;
    bool hasPoint = false;

    bool isPattern = false; // &H or &O: the number is `pattern`, whatever the sign
    std::int32_t pattern = 0;

private:
    const wchar_t* at;
    const wchar_t* end;
    bool leadingPlus = false;
    bool leadingMinus = false;
    bool open = false;
    bool hasCurrency = false;

    wchar_t Here() const noexcept { return at < end ? *at : L'\0'; }

    bool Take(wchar_t unit, bool& flag) noexcept {
        if (flag || Here() != unit) {
            return false;
        }
        flag = true;
        ++at;
        return true;
    }

    bool TakeSpace() noexcept {
        if (at == end || !IsSpace(*at)) {
            return false;
        }
        ++at;
        return true;
    }

    void ReadPrefix() noexcept {
        while (TakeSpace() || Take(L'+', leadingPlus) || Take(L'-', leadingMinus) || Take(L'(', open) ||
               Take(currencySign, hasCurrency)) {}
        negative = leadingMinus || open;
    }

    bool ReadPattern() noexcept {
        ++at;
        const wchar_t letter = ToUpperUnit(Here());
        const int bits = letter == L'H' ? 4 : letter == L'O' ? 3 : 0;
        if (bits == 0 || hasCurrency) {
            return false;
        }
        const wchar_t* const first = ++at;
        std::uint64_t value = 0;
        for (; at < end && DigitValue(*at) < 1 << bits; ++at) {
            value = value << bits | static_cast<unsigned>(DigitValue(*at));
            if (value > std::numeric_limits<std::uint32_t>::max()) {
                return false;
            }
        }
        isPattern = true;
        pattern = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
        return at > first;
    }

    bool ReadDecimal() noexcept {
        bool hasDigit = false;
        bool hasExponent = false;
        bool hasSeparator = false;
        std::int64_t zerosBefore = 0; // the first separator
        if (Here() == L',') {
            return false;
        }
        for (; at < end; ++at) {
            if (IsDigit(*at)) {
                decimal.Add(static_cast<char>(*at), hasPoint);
                hasDigit = true;
            } else if (*at == L'.' && !hasPoint && !hasExponent) {
                hasPoint = true;
            } else if ((*at == L'e' || *at == L'E') && !hasExponent && !hasCurrency) {
                hasExponent = true;
                if (!ReadExponent()) {
                    return false;
                }
            } else if (*at == L',') {
                zerosBefore = hasSeparator ? zerosBefore : decimal.GetLeadingZeros();
                hasSeparator = true;
            } else {
                break;
            }
        }
        if (hasSeparator && decimal.IsZero() && decimal.GetLeadingZeros() > zerosBefore) {
            decimal.Scale(decimal.GetLeadingZeros() - zerosBefore - 1);
        }
        return hasDigit;
    }

    /// Reads from the letter to the last digit, on which `at` then stands.
    bool ReadExponent() noexcept {
        constexpr std::int64_t greatest = 1'000'000'000'000; // more than any number of digits could make up for
        std::int64_t exponent = 0;
        bool negativeExponent = false;
        for (++at; Here() == L',' || Here() == L'+' || Here() == L'-'; ++at) {
            negativeExponent = negativeExponent || *at == L'-';
        }
        if (!IsDigit(Here())) {
            return false;
        }
        for (; IsDigit(Here()); ++at) {
            exponent = exponent * 10 + (*at - L'0');
            exponent = exponent > greatest ? greatest : exponent;
        }
        --at;
        decimal.Scale(negativeExponent ? -exponent : exponent);
        return true;
    }

    bool ReadSuffix() noexcept {
        bool closed = false;
        for (; at < end; ++at) {
            if (*at == L'-' && !leadingMinus) {
                negative = true;
            } else if (*at == L')' && open) {
                closed = true;
            } else if (isPattern && (*at == currencySign || *at == L',')) {
                return false;
            } else if (*at != currencySign && *at != L',' && !(*at == L'+' && !leadingPlus) && !IsSpace(*at)) {
                return false;
            }
        }
        return open == closed;
    }
};

} // namespace

bool ReadDouble(std::wstring_view text, double& value) noexcept {
    NumberReader number(text);
    if (!number.Read()) {
        return false;
    }
    if (number.isPattern) {
        value = number.pattern;
        return true;
    }
    double result = 0.0;
    if (!number.decimal.ToDouble(result)) {
        return false;
    }
    value = number.negative ? -result : result;
    return true;
}

NumberKind ReadNumber(std::wstring_view text, int& intValue, double& doubleValue) noexcept {
    NumberReader number(text);
    if (!number.Read()) {
        return NumberKind::None;
    }
    if (number.isPattern) {
        intValue = number.pattern;
        return NumberKind::Int;
    }
    const std::int64_t limit = std::int64_t{std::numeric_limits<int>::max()} + (number.negative ? 1 : 0);
    std::int64_t whole = 0;
    if (!number.hasPoint && number.decimal.ToInteger(limit, whole)) {
        intValue = static_cast<int>(number.negative ? -whole : whole);
        return NumberKind::Int;
    }
    double result = 0.0;
    if (!number.decimal.ToDouble(result)) {
        return NumberKind::None;
    }
    doubleValue = number.negative ? -result : result;
    return NumberKind::Double;
}

} // namespace OrvUQL::platform
