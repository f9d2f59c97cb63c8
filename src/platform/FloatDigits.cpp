#include "platform/FloatDigits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace OrvUQL::platform {

namespace {

// Beyond these every further decimal of every double is zero.
constexpr int decimalsOfFixed = 1074;
constexpr int decimalsOfScientific = 766;

int DecimalExponent(double value, int precision) noexcept {
    char text[decimalsOfScientific + 16];
    const char* const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, precision).ptr;
    const char* const letter = std::find(static_cast<const char*>(text), end, 'e');
    int exponent = 0;
    std::from_chars(letter[1] == '+' ? letter + 2 : letter + 1, end, exponent);
    return exponent;
}

} // namespace

FloatDigits WriteFloat(double value, char letter, int precision, bool alternate, FloatBuffer& buffer) noexcept {
    FloatDigits number;
    number.negative = std::signbit(value) && !std::isnan(value);
    number.finite = std::isfinite(value);
    value = std::fabs(value);
    if (!number.finite) {
        number.digits = std::isnan(value) ? "nan" : "inf";
        std::copy(number.digits.begin(), number.digits.end(), buffer.text);
        number.digits = std::string_view(buffer.text, 3);
        return number;
    }

    bool fixed = letter == 'f';
    if (letter == 'g') {
        const int significant = std::max(precision, 1);
        const int exponent = DecimalExponent(value, std::min(significant - 1, decimalsOfScientific));
        fixed = exponent >= -4 && exponent < significant;
        precision = fixed ? significant - 1 - exponent : significant - 1;
    }
    const int written = std::min(precision, fixed ? decimalsOfFixed : decimalsOfScientific);
    char* end = std::to_chars(buffer.text, buffer.text + sizeof buffer.text, value,
                              fixed ? std::chars_format::fixed : std::chars_format::scientific, written)
                    .ptr;
    char* digitsEnd = fixed ? end : std::find(buffer.text, end, 'e');
    number.exponent = std::string_view(digitsEnd, static_cast<std::size_t>(end - digitsEnd));
    number.trailingZeros = precision - written;

    const bool hasPoint = std::find(buffer.text, digitsEnd, '.') != digitsEnd;
    if (letter == 'g' && !alternate) {
        number.trailingZeros = 0;
        while (hasPoint && digitsEnd[-1] == '0') {
            --digitsEnd;
        }
        if (hasPoint && digitsEnd[-1] == '.') {
            --digitsEnd;
        }
    } else if (alternate && !hasPoint) {
        std::copy_backward(digitsEnd, end, end + 1);
        *digitsEnd = '.';
        number.exponent = std::string_view(digitsEnd + 1, number.exponent.size());
        ++digitsEnd;
    }
    number.digits = std::string_view(buffer.text, static_cast<std::size_t>(digitsEnd - buffer.text));
    return number;
}

} // namespace OrvUQL::platform
