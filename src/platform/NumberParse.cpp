#include "platform/CaseMap.h"
#include "platform/NumberText.h"

#include <charconv>
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
// The oddities are OLE Automation's and are kept, so that a text is the same number everywhere: separators in the exponent;
// digits that follow a separator behind the exponent count as digits of the number (1e3,0 is 10000); several signs in the
// exponent or behind the number; a minus before &H that has no effect.
namespace OrvUQL::platform {

namespace {

constexpr wchar_t currencySign = 0xA4;

// OLE Automation counts the control character NEL among the spaces.
bool IsSpace(wchar_t unit) noexcept { return IsWhiteSpace(unit) || unit == 0x85; }

bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

/// The value of a digit or letter in radix 36, or 36.
int DigitValue(wchar_t unit) noexcept {
    if (IsDigit(unit)) {
        return unit - L'0';
    }
    if (unit >= L'a' && unit <= L'z') {
        return unit - L'a' + 10;
    }
    if (unit >= L'A' && unit <= L'Z') {
        return unit - L'A' + 10;
    }
    return 36;
}

/// An unsigned decimal number: 0.d1d2d3... times a power of ten, with the digits as ASCII text.
class Decimal {
public:
    /// Takes the next digit; `behindPoint` says on which side of the decimal point it stands.
    void Add(wchar_t digit, bool behindPoint) noexcept {
        if (count == 0 && digit == L'0') {
            point -= behindPoint ? 1 : 0;
            return;
        }
        point += behindPoint ? 0 : 1;
        if (count < greatestCount) {
            text[count++] = static_cast<char>(digit);
        } else if (digit != L'0') {
            more = true;
        }
    }

    void Scale(std::int64_t exponent) noexcept { point += exponent; }

    /// The number as an integer, if it is one and at most `limit`, which is below 10^10.
    bool ToInteger(std::int64_t limit, std::int64_t& value) const noexcept {
        std::size_t significant = count;
        while (significant > 0 && text[significant - 1] == '0') {
            --significant;
        }
        if (significant == 0 && !more) {
            value = 0;
            return point >= 0; // 0e-1 counts as a fraction
        }
        if (more || point < static_cast<std::int64_t>(significant) || point > 10) {
            return false;
        }
        value = 0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(point); ++i) {
            value = value * 10 + (i < significant ? text[i] - '0' : 0);
        }
        return value <= limit;
    }

    /// The nearest double. False if that is infinite.
    bool ToDouble(double& value) noexcept {
        if (count == 0 || point < -330) {
            value = 0.0;
            return true;
        }
        if (point > 310) {
            return false;
        }
        char* end = text + count;
        std::int64_t exponent = point - static_cast<std::int64_t>(count);
        if (more) { // one digit for all that were left out: the number is not on the boundary that the kept ones show
            *end++ = '1';
            --exponent;
        }
        *end++ = 'e';
        end = std::to_chars(end, text + sizeof text, exponent).ptr;
        double result = 0.0;
        if (std::from_chars(text, end, result).ec == std::errc::result_out_of_range) {
            if (point > 0) {
                return false;
            }
            result = 0.0; // below the smallest denormal
        }
        if (result > std::numeric_limits<double>::max()) {
            return false;
        }
        value = result;
        return true;
    }

private:
    // No double needs more digits to tell on which side of the middle between two neighbours a number lies; for what
    // follows it is enough to know whether there was anything.
    static constexpr std::size_t greatestCount = 800;

    char text[greatestCount + 32]; // the rest is room for the exponent
    std::size_t count = 0;
    std::int64_t point = 0; // digits before the decimal point; negative: zeros behind it
    bool more = false;
};

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
        if (Here() == L',') {
            return false;
        }
        for (; at < end; ++at) {
            if (IsDigit(*at)) {
                decimal.Add(*at, hasPoint);
                hasDigit = true;
            } else if (*at == L'.' && !hasPoint && !hasExponent) {
                hasPoint = true;
            } else if ((*at == L'e' || *at == L'E') && !hasExponent && !hasCurrency) {
                hasExponent = true;
                if (!ReadExponent()) {
                    return false;
                }
            } else if (*at != L',') {
                break;
            }
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

bool ParseDouble(std::wstring_view text, double& value) noexcept {
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

NumberKind ParseNumber(std::wstring_view text, int& intValue, double& doubleValue) noexcept {
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

std::uint32_t ParseUnsigned(std::wstring_view text, int base, std::size_t& used) noexcept {
    used = 0;
    if (base < 0 || base == 1 || base > 36) {
        return 0;
    }
    const auto unitAt = [text](std::size_t i) { return i < text.size() ? text[i] : L'\0'; };
    std::size_t at = 0;
    while (unitAt(at) == L' ' || (unitAt(at) >= L'\t' && unitAt(at) <= L'\r')) {
        ++at;
    }
    const bool negative = unitAt(at) == L'-';
    if (negative || unitAt(at) == L'+') {
        ++at;
    }
    // "0x" without a digit behind it is the number 0 and an x that is not read.
    if ((base == 0 || base == 16) && unitAt(at) == L'0' && (unitAt(at + 1) == L'x' || unitAt(at + 1) == L'X') &&
        DigitValue(unitAt(at + 2)) < 16) {
        at += 2;
        base = 16;
    } else if (base == 0) {
        base = unitAt(at) == L'0' ? 8 : 10;
    }
    constexpr std::uint64_t greatest = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t value = 0;
    const std::size_t first = at;
    for (; DigitValue(unitAt(at)) < base; ++at) {
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(DigitValue(unitAt(at)));
        value = value > greatest ? greatest + 1 : value;
    }
    if (at == first) {
        return 0;
    }
    used = at;
    if (value > greatest) {
        return static_cast<std::uint32_t>(greatest);
    }
    return static_cast<std::uint32_t>(negative ? 0 - value : value);
}

} // namespace OrvUQL::platform
