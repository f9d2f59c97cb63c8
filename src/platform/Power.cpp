#include "platform/Power.h"

#include "platform/PowerSteps.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

namespace OrvUQL::platform {

namespace {

constexpr int greatestInTable = 22;

constexpr std::array<double, 2 * greatestInTable + 1> powersOfTen{
    1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8,
    1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,  1e7,
    1e8,   1e9,   1e10,  1e11,  1e12,  1e13,  1e14,  1e15,  1e16,  1e17,  1e18,  1e19,  1e20,  1e21, 1e22};

/// Of a positive finite base, to a finite exponent.
double PositivePower(double base, double exponent) noexcept {
    // What a single operation of the processor rounds correctly.
    if (exponent == 1.0) {
        return base;
    }
    if (exponent == -1.0) {
        return 1.0 / base;
    }
    if (exponent == 0.5) {
        return std::sqrt(base);
    }
    // A few factors are multiplied sooner than a logarithm is taken.
    if (exponent == 3.0 || exponent == 4.0) {
        return AccuratePower(base, exponent);
    }
    const std::optional<double> quick = QuickPower(base, exponent);
    return quick ? *quick : AccuratePower(base, exponent);
}

} // namespace

double PowerOfTen(int n) noexcept {
    if (n >= -greatestInTable && n <= greatestInTable) {
        return powersOfTen[static_cast<std::size_t>(n + greatestInTable)];
    }
    if (n > std::numeric_limits<double>::max_exponent10) {
        return std::numeric_limits<double>::infinity();
    }
    if (n < -323) { // 10^-324 is less than half of the smallest double
        return 0.0;
    }
    char text[8] = {'1', 'e'};
    const char* const end = std::to_chars(text + 2, text + sizeof text, n).ptr;
    double power = 0.0;
    std::from_chars(text, end, power);
    return power;
}

// C libraries differ in the last digits of a power, so none of them is asked.
double Power(double base, double exponent) noexcept {
    if (exponent == 2.0) {
        return base * base;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (base > 0.0 && base < infinity && std::fabs(exponent) < infinity) {
        return PositivePower(base, exponent);
    }
    if (exponent == 0.0 || base == 1.0) {
        return 1.0; // also of what is no number
    }
    if (std::isnan(base) || std::isnan(exponent)) {
        return base + exponent;
    }
    const double size = std::fabs(base);
    if (std::fabs(exponent) == infinity) {
        if (size == 1.0) {
            return 1.0;
        }
        return (size > 1.0) == (exponent > 0.0) ? infinity : 0.0;
    }
    double sign = 1.0;
    bool isWhole = true;
    if (std::signbit(base)) {
        isWhole = exponent == std::trunc(exponent);
        sign = isWhole && std::fmod(exponent, 2.0) != 0.0 ? -1.0 : 1.0;
    }
    if (size == 0.0 || size == infinity) {
        return sign * ((size == 0.0) == (exponent > 0.0) ? 0.0 : infinity);
    }
    return isWhole ? sign * PositivePower(size, exponent) : std::numeric_limits<double>::quiet_NaN();
}

} // namespace OrvUQL::platform
