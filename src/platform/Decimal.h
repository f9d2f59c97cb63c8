#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace OrvUQL::platform {

/// An unsigned decimal number of any length: 0.d1d2d3... times a power of ten, with the digits as ASCII text. Whoever
/// reads a number's text fills it digit by digit; what the number is as an integer or a double is decided here, once
/// for every reader.
class Decimal {
public:
    /// Takes the next digit, '0' to '9'; `behindPoint` says on which side of the decimal point it stands.
    void Add(char digit, bool behindPoint) noexcept {
        if (count == 0 && digit == '0') {
            point -= behindPoint ? 1 : 0;
            ++leadingZeros;
            return;
        }
        point += behindPoint ? 0 : 1;
        if (count < greatestCount) {
            text[count++] = digit;
        } else if (digit != '0') {
            more = true;
        }
    }

    bool IsZero() const noexcept { return count == 0; }

    /// How many zeros were added before any other digit.
    std::int64_t GetLeadingZeros() const noexcept { return leadingZeros; }

    /// Multiplies by a power of ten.
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

    /// The nearest double. False if that is infinite. May write behind the digits, so the number is used up.
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
        value = result;
        return true;
    }

private:
    // No double needs more digits to tell on which side of the middle between two neighbours a number lies; for what
    // follows it is enough to know whether there was anything.
    static constexpr std::size_t greatestCount = 800;

    char text[greatestCount + 32]; // the rest is room for the exponent
    std::size_t count = 0;
    std::int64_t leadingZeros = 0;
    std::int64_t point = 0; // digits before the decimal point; negative: zeros behind it
    bool more = false;
};

} // namespace OrvUQL::platform
