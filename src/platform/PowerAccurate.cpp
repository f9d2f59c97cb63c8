#include "platform/DoublePairSeries.h"
#include "platform/PowerSteps.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace OrvUQL::platform {

// In pairs of doubles base^exponent = exp(exponent * log(base)) has an error of less than 2^-90. Only then the result
// is rounded, once. Correct rounding could fail where the true value is as close as that to the middle between two
// doubles without being it, which for operands taken at random happens once in 10^11 times.

namespace {

// ---- tables ----

// A mantissa m between sqrt(1/2) and sqrt(2) times k/64, with the nearest k, is nearly 1.
constexpr int inverseSteps = 64;
constexpr int leastInverse = 45;
constexpr int greatestInverse = 91;

/// log(64/k)
constexpr auto inverseLogs = [] {
    std::array<DoublePair, greatestInverse - leastInverse + 1> logs{};
    for (int k = leastInverse; k <= greatestInverse; ++k) {
        const DoublePair x = DoublePair{static_cast<double>(inverseSteps - k), 0.0} /
                             DoublePair{static_cast<double>(inverseSteps + k), 0.0};
        logs[static_cast<std::size_t>(k - leastInverse)] = LogSeries(x, 24);
    }
    return logs;
}();

constexpr int powerSteps = 32;

/// 2^(j/32)
constexpr auto powersOfTwo = [] {
    std::array<DoublePair, powerSteps> powers{};
    for (int j = 0; j < powerSteps; ++j) {
        powers[static_cast<std::size_t>(j)] = ExpSeries(static_cast<double>(j) / powerSteps * ln2, 32);
    }
    return powers;
}();

/// 1/n and 1/n! where half the precision will not do.
template <int n> constexpr DoublePair inverse = DoublePair{1.0, 0.0} / DoublePair{static_cast<double>(n), 0.0};
template <int n> constexpr DoublePair inverseFactorial = inverseFactorial<n - 1>* inverse<n>;
template <> constexpr DoublePair inverseFactorial<0> = {1.0, 0.0};

// ---- a double's parts ----

using Limits = std::numeric_limits<double>;
constexpr int fractionBits = Limits::digits - 1;
constexpr int exponentBias = Limits::max_exponent - 1;

/// n for 2^n <= x < 2^(n+1), of a positive number that is not too small to have all its digits.
int ExponentOf(double x) noexcept {
    return static_cast<int>(std::bit_cast<std::uint64_t>(x) >> fractionBits) - exponentBias;
}

/// 2^n where that has all its digits.
double TwoTo(int n) noexcept {
    return std::bit_cast<double>(static_cast<std::uint64_t>(n + exponentBias) << fractionBits);
}

/// mantissa * 2^twos
struct Parts {
    double mantissa; ///< from 1 up to 2
    int twos;
};

Parts Split(double x) noexcept {
    int lifted = 0;
    if (x < Limits::min()) {
        x *= TwoTo(Limits::digits);
        lifted = Limits::digits;
    }
    const int twos = ExponentOf(x);
    return {x * TwoTo(-twos / 2) * TwoTo(-twos - -twos / 2), twos - lifted};
}

// ---- logarithm and exponential ----

/// The logarithm of a positive finite number.
DoublePair Log(double x) noexcept {
    auto [mantissa, twos] = Split(x);
    constexpr double sqrtTwo = 1.41421356237309505;
    if (mantissa > sqrtTwo) {
        mantissa /= 2.0;
        ++twos;
    }
    const int k = static_cast<int>(inverseSteps / mantissa + 0.5);
    const DoublePair product = TwoProduct(mantissa, static_cast<double>(k) / inverseSteps);
    const DoublePair r = QuickTwoSum(product.high - 1.0, product.low); // exact, and below 2^-6
    const DoublePair s = r / (2.0 + r);
    const DoublePair z = s * s; // below 2^-14: what is multiplied by a power of it needs the fewer digits
    const double tail = 1.0 / 9 + z.high * (1.0 / 11 + z.high * (1.0 / 13 + z.high * (1.0 / 15 + z.high * (1.0 / 17))));
    const DoublePair series = 1.0 + z * (inverse<3> + z * (inverse<5> + z * (inverse<7> + tail * z)));
    const DoublePair part = inverseLogs[static_cast<std::size_t>(k - leastInverse)] + 2.0 * (s * series);
    return static_cast<double>(twos) * ln2 + part;
}

/// value * 2^twos
struct Scaled {
    DoublePair value;
    int twos;
};

/// exp(x) for |x| below 1000.
Scaled Exp(DoublePair x) noexcept {
    constexpr double stepsPerUnit = powerSteps / ln2.high;
    const int step = static_cast<int>(x.high * stepsPerUnit + (x.high < 0.0 ? -0.5 : 0.5));
    const double steps = step;
    const DoublePair r = x + -(steps / powerSteps * ln2); // below 2^-6
    const double t = r.high;
    const double tail = inverseFactorial<7>.high +
                        t * (inverseFactorial<8>.high +
                             t * (inverseFactorial<9>.high +
                                  t * (inverseFactorial<10>.high +
                                       t * (inverseFactorial<11>.high +
                                            t * (inverseFactorial<12>.high + t * inverseFactorial<13>.high)))));
    DoublePair series = inverseFactorial<6> + tail * r;
    series = inverseFactorial<5> + r * series;
    series = inverseFactorial<4> + r * series;
    series = inverseFactorial<3> + r * series;
    series = inverseFactorial<2> + r * series;
    series = 1.0 + r * series;
    series = 1.0 + r * series;
    const int within = step & (powerSteps - 1);
    return {powersOfTwo[static_cast<std::size_t>(within)] * series, (step - within) / powerSteps};
}

// ---- whole exponents ----

/// x^n by multiplication, for a positive x and a small n, which may be negative.
Scaled WholePower(double x, int n) noexcept {
    const auto [mantissa, twos] = Split(x);
    const auto factors = static_cast<unsigned>(n < 0 ? -n : n);
    DoublePair product{factors == 0 ? 1.0 : mantissa, 0.0};
    for (unsigned bit = std::bit_floor(factors) >> 1; bit != 0; bit >>= 1) { // from the second binary digit down
        product = product * product;
        if ((factors & bit) != 0) {
            product = mantissa * product;
        }
    }
    if (n < 0) {
        product = DoublePair{1.0, 0.0} / product;
    }
    return {product, twos * n};
}

// ---- rounding ----

/// How near to the middle between two doubles a value is taken to be exactly there: more than the error, and far less
/// than any distance that such values have by chance.
constexpr double middle = 0x1p-86;

/// The double nearest to a positive value; to the even one of two.
double Round(Scaled scaled) noexcept {
    // From 1 up to 2, so that the exponent tells what the result is.
    const int normal = ExponentOf(scaled.value.high);
    const double high = scaled.value.high * TwoTo(-normal);
    const double low = scaled.value.low * TwoTo(-normal);
    const int twos = scaled.twos + normal;

    if (twos >= Limits::min_exponent - 1) {
        double nearest = high;
        // Below a power of two doubles lie closer together.
        const double half = high == 1.0 && low < 0.0 ? Limits::epsilon() / 4 : Limits::epsilon() / 2;
        if (std::fabs(low) > half - middle) {
            const auto bits = std::bit_cast<std::uint64_t>(high);
            if ((bits & 1) != 0) {
                nearest = std::bit_cast<double>(low > 0.0 ? bits + 1 : bits - 1);
            }
        }
        return twos > exponentBias ? Limits::infinity() : nearest * TwoTo(twos);
    }
    // The result has fewer digits than a double has room for: what counts is the distance to their last place.
    constexpr int leastTwos = Limits::min_exponent - Limits::digits; // of the smallest double
    if (twos < leastTwos - 1) {
        return 0.0;
    }
    const double unit = TwoTo(leastTwos - twos);
    const auto whole = static_cast<std::int64_t>(high / unit);
    const double beyondHalf = (high - static_cast<double>(whole) * unit - unit / 2) + low;
    const bool isUp = std::fabs(beyondHalf) < middle ? (whole & 1) != 0 : beyondHalf > 0.0;
    return static_cast<double>(isUp ? whole + 1 : whole) * Limits::denorm_min();
}

} // namespace

double AccuratePower(double base, double exponent) noexcept {
    constexpr double mostFactors = 64.0;
    if (std::fabs(exponent) <= mostFactors) {
        const int n = static_cast<int>(exponent);
        if (n == exponent) {
            return Round(WholePower(base, n));
        }
    }
    const DoublePair log = Log(base);
    const double rough = exponent * log.high;
    constexpr double beyondAll = 800.0; // the greatest and the smallest double have 709 and -745
    if (rough > beyondAll) {
        return Limits::infinity();
    }
    if (rough < -beyondAll) {
        return 0.0;
    }
    return Round(Exp(exponent * log));
}

} // namespace OrvUQL::platform
