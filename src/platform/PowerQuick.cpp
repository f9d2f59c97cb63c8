#include "platform/DoublePairSeries.h"
#include "platform/PowerSteps.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace OrvUQL::platform {

// base^exponent = exp(exponent * log(base)), with tables that leave little to the series. Only the greatest terms are
// computed as pairs of doubles, so that the error is some thousandths of a unit in the last place. In most cases the
// result is farther than that from the middle between two doubles, and then its rounding is certain.

namespace {

using Limits = std::numeric_limits<double>;
constexpr int fractionBits = Limits::digits - 1;

/// x rounded to a multiple of 2^-42. Below 2^10 sums of such numbers are exact, and so are their products by integers.
constexpr double Coarse(double x) noexcept {
    constexpr double shift = 0x1.8p10;
    return (x + shift) - shift;
}

/// A number as a sum: `high` has so few digits that its multiples are exact, `low` is the rest.
struct Split {
    double high;
    double low;
};

constexpr Split Coarse(DoublePair x) noexcept {
    const double high = Coarse(x.high);
    return {high, (x.high - high) + x.low};
}

/// The upper 26 bits of a number: the product of two such halves is exact.
double UpperHalf(double x) noexcept {
    constexpr int lowBits = 27;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) >> lowBits << lowBits);
}

// ---- logarithm ----

// Mantissas are taken from 0.709 to 1.418, in as many intervals. 1 is in the middle of its own.
constexpr int intervalBits = 7;
constexpr int intervals = 1 << intervalBits;
constexpr int intervalShift = fractionBits - intervalBits;
constexpr int intervalOfOne = 74;
constexpr std::uint64_t halfInterval = std::uint64_t{1} << (intervalShift - 1);
constexpr std::uint64_t leastMantissa = std::bit_cast<std::uint64_t>(1.0) - (2 * intervalOfOne + 1) * halfInterval;

struct LogRow {
    double inverse; ///< of the middle of the interval, nearly: a multiple of 2^-12
    Split log;      ///< -log(inverse)
};

constexpr auto logRows = [] {
    constexpr double steps = 4096.0;
    std::array<LogRow, intervals> rows{};
    for (int i = 0; i < intervals; ++i) {
        const auto middle =
            std::bit_cast<double>(leastMantissa + (2 * static_cast<std::uint64_t>(i) + 1) * halfInterval);
        const double inverse = static_cast<int>(steps / middle + 0.5) / steps;
        const DoublePair x = DoublePair{1.0 - inverse, 0.0} / DoublePair{1.0 + inverse, 0.0};
        rows[static_cast<std::size_t>(i)] = {inverse, Coarse(LogSeries(x, 24))};
    }
    return rows;
}();

constexpr Split coarseLn2 = Coarse(ln2);

/// The logarithm of a positive number that is not too small to have all its digits, with a relative error below 2^-67.
Split Log(double x) noexcept {
    const auto offset = static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(x) - leastMantissa);
    const double twos = static_cast<double>(offset >> fractionBits);
    const LogRow& row = logRows[static_cast<std::size_t>(offset >> intervalShift & (intervals - 1))];

    // mantissa = high + low, where high has so few digits that its product by the inverse and the square of that are
    // exact.
    const std::uint64_t mantissaBits =
        leastMantissa + (static_cast<std::uint64_t>(offset) & ((std::uint64_t{1} << fractionBits) - 1));
    constexpr int lowBits = 32;
    const auto mantissa = std::bit_cast<double>(mantissaBits);
    const auto high = std::bit_cast<double>((mantissaBits + (std::uint64_t{1} << (lowBits - 1))) >> lowBits << lowBits);
    const double rHigh = high * row.inverse - 1.0;
    const double rLow = (mantissa - high) * row.inverse;
    const double r = rHigh + rLow; // below 2^-7

    // log(1 + r) = r - r^2/2 + tail, added in the order of size. The first sum is exact; near 1 it is rHigh alone.
    const double r2 = r * r;
    const double tail = r * r2 *
                        ((1.0 / 3 - r * (1.0 / 4)) +
                         r2 * ((1.0 / 5 - r * (1.0 / 6)) + r2 * ((1.0 / 7 - r * (1.0 / 8)) + r2 * (1.0 / 9))));
    const double coarse = (twos * coarseLn2.high + row.log.high) + rHigh;
    const DoublePair withSquare = QuickTwoSum(coarse, -0.5 * (rHigh * rHigh));
    const DoublePair sum = TwoSum(withSquare.high, rLow);
    const double low =
        (sum.low + withSquare.low) + (twos * coarseLn2.low + row.log.low) - rLow * (rHigh + 0.5 * rLow) + tail;
    const double upper = UpperHalf(sum.high);
    return {upper, (sum.high - upper) + low};
}

// ---- exponential ----

constexpr int powerBits = 7;
constexpr int powerSteps = 1 << powerBits;

/// 2^(j/128)
constexpr auto powersOfTwo = [] {
    std::array<DoublePair, powerSteps> powers{};
    for (int j = 0; j < powerSteps; ++j) {
        powers[static_cast<std::size_t>(j)] = ExpSeries(static_cast<double>(j) / powerSteps * ln2, 28);
    }
    return powers;
}();

constexpr Split coarseStep = Coarse(1.0 / powerSteps * ln2);

/// What the errors can add up to in a result from 1 up to 2, of exp(x): three roundings of numbers up to 2^-7, and the
/// error of x itself. The other ones are some hundred times smaller.
double Margin(double x) noexcept { return 0x1.ap-60 + 0x1.8p-67 * std::fabs(x); }

} // namespace

std::optional<double> QuickPower(double base, double exponent) noexcept {
    if (base < Limits::min()) {
        return std::nullopt;
    }
    const Split log = Log(base);
    // The logarithms of the greatest and the smallest double are 709 and -745. What is computed here has all its
    // digits.
    const double rough = exponent * log.high;
    if (rough > 710.0) {
        return Limits::infinity();
    }
    if (rough < -746.0) {
        return 0.0;
    }
    if (std::fabs(rough) > 707.0) {
        return std::nullopt;
    }
    const double upper = UpperHalf(exponent);
    const double x = upper * log.high;
    const double xLow = upper * log.low + (exponent - upper) * (log.high + log.low);

    constexpr double stepsPerUnit = powerSteps / ln2.high;
    const int step = static_cast<int>(x * stepsPerUnit + std::copysign(0.5, x));
    const double steps = step;
    const double rHigh = x - steps * coarseStep.high; // exact
    const double rLow = xLow - steps * coarseStep.low;
    const double r = rHigh + rLow; // below 2^-8
    const double rRest = (rHigh - r) + rLow;
    const double r2 = r * r;
    const double tail = rRest + r2 * ((0.5 + r * (1.0 / 6)) + r2 * ((1.0 / 24 + r * (1.0 / 120)) + r2 * (1.0 / 720)));

    const DoublePair& power = powersOfTwo[static_cast<std::size_t>(step & (powerSteps - 1))];
    const DoublePair result = QuickTwoSum(power.high, power.high * (r + tail) + (power.low + power.low * r));
    const double margin = Margin(x);
    const double nearest = result.high + (result.low + margin);
    if (nearest != result.high + (result.low - margin)) {
        return std::nullopt;
    }
    const auto twos = static_cast<std::uint64_t>(static_cast<std::int64_t>(step >> powerBits));
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(nearest) + (twos << fractionBits));
}

} // namespace OrvUQL::platform
