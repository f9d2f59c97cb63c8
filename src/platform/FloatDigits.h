#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace OrvUQL::platform {

/// The parts of a number's text in order. Zeros that only a great precision asks for are counted, not written.
struct FloatDigits {
    bool negative = false;
    bool finite = true;
    std::int64_t leadingZeros = 0;
    std::string_view digits; ///< with the decimal point
    std::int64_t trailingZeros = 0;
    std::string_view exponent; ///< with its letter
};

/// The longest that the C library's rules can ask for: 309 digits, the point, 1074 decimals, and an exponent.
struct FloatBuffer {
    char text[1408] = {};
};

/// The text of |value| as printf's %f, %e or %g (`letter`, lower case) writes it, correctly rounded; `alternate` is the
/// flag "#". The views point into the buffer.
FloatDigits WriteFloat(double value, char letter, int precision, bool alternate, FloatBuffer& buffer) noexcept;

} // namespace OrvUQL::platform
