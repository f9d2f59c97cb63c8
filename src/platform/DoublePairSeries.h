#pragma once

#include "platform/DoublePair.h"

namespace OrvUQL::platform {

// For tables that the compiler computes.

inline constexpr DoublePair ln2{0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};

/// 2 * atanh(x), which is log((1 + x) / (1 - x)).
constexpr DoublePair LogSeries(DoublePair x, int terms) noexcept {
    const DoublePair square = x * x;
    DoublePair sum{};
    for (int k = terms - 1; k >= 0; --k) {
        sum = DoublePair{1.0, 0.0} / DoublePair{2.0 * k + 1.0, 0.0} + square * sum;
    }
    return 2.0 * (x * sum);
}

/// exp(x)
constexpr DoublePair ExpSeries(DoublePair x, int terms) noexcept {
    DoublePair sum{1.0, 0.0};
    for (int k = terms; k > 0; --k) {
        sum = 1.0 + (x * sum) / DoublePair{static_cast<double>(k), 0.0};
    }
    return sum;
}

} // namespace OrvUQL::platform
