#pragma once

namespace OrvUQL::platform {

/// The unevaluated sum of two doubles, about 106 bits: `low` is less than half a unit in the last place of `high`,
/// which is thus the nearest double. For intermediate results of middling size: nothing here minds overflow.
///
/// Every operation on two doubles is followed by the recovery of its rounding error, by the classical methods of Dekker
/// and Knuth; they need no fused multiplication, which not every processor and runtime has. A source that uses them is
/// compiled with -ffp-contract=off, lest the compiler fuse operations on its own where the processor can.
struct DoublePair {
    double high = 0.0;
    double low = 0.0;
};

/// a + b, without error.
constexpr DoublePair TwoSum(double a, double b) noexcept {
    const double sum = a + b;
    const double fromB = sum - a;
    return {sum, (a - (sum - fromB)) + (b - fromB)};
}

/// The same where |a| >= |b| or a is 0.
constexpr DoublePair QuickTwoSum(double a, double b) noexcept {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// a * b, without error.
constexpr DoublePair TwoProduct(double a, double b) noexcept {
    constexpr double splitter = 134217729.0; // 2^27 + 1: the halves have 26 bits, their products are exact
    const double wideA = splitter * a;
    const double highA = wideA - (wideA - a);
    const double lowA = a - highA;
    const double wideB = splitter * b;
    const double highB = wideB - (wideB - b);
    const double lowB = b - highB;
    const double product = a * b;
    return {product, ((highA * highB - product) + highA * lowB + lowA * highB) + lowA * lowB};
}

constexpr DoublePair operator-(DoublePair a) noexcept { return {-a.high, -a.low}; }

constexpr DoublePair operator+(DoublePair a, DoublePair b) noexcept {
    const DoublePair highs = TwoSum(a.high, b.high);
    const DoublePair lows = TwoSum(a.low, b.low);
    const DoublePair sum = QuickTwoSum(highs.high, highs.low + lows.high);
    return QuickTwoSum(sum.high, sum.low + lows.low);
}

constexpr DoublePair operator+(double a, DoublePair b) noexcept {
    const DoublePair sum = TwoSum(a, b.high);
    return QuickTwoSum(sum.high, sum.low + b.low);
}

constexpr DoublePair operator*(DoublePair a, DoublePair b) noexcept {
    const DoublePair product = TwoProduct(a.high, b.high);
    return QuickTwoSum(product.high, product.low + (a.high * b.low + a.low * b.high));
}

constexpr DoublePair operator*(double a, DoublePair b) noexcept {
    const DoublePair product = TwoProduct(a, b.high);
    return QuickTwoSum(product.high, product.low + a * b.low);
}

constexpr DoublePair operator/(DoublePair a, DoublePair b) noexcept {
    const double first = a.high / b.high;
    const DoublePair rest = a + -(first * b);
    const double second = rest.high / b.high;
    const DoublePair last = rest + -(second * b);
    const DoublePair quotient = QuickTwoSum(first, second);
    return QuickTwoSum(quotient.high, quotient.low + last.high / b.high);
}

} // namespace OrvUQL::platform
