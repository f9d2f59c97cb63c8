// The comparison rules, on values and on the scalars inside of them.
#pragma once

#include "core/Value.h"

#include <cmath>
#include <cstdint>

namespace OrvUQL::detail {

/// For which orders of two numbers a comparison holds: a bit for less, one for equal, one for greater. `op` must be one
/// of the enumerators.
constexpr std::uint8_t VerdictsOf(EOperType op) noexcept {
    // A byte for each comparison: no branch that depends on the data.
    constexpr std::uint64_t less = 1;
    constexpr std::uint64_t equal = 2;
    constexpr std::uint64_t greater = 4;
    constexpr std::uint64_t verdicts = greater << 8 * OperGreater | (greater | equal) << 8 * OperGreaterEqual |
                                       less << 8 * OperLess | (less | equal) << 8 * OperLessEqual |
                                       equal << 8 * OperEqual | equal << 8 * OperStrictEqual |
                                       (less | greater) << 8 * OperNotEqual;
    static_assert(OperNone == 0 && OperNotEqual == 7);
    return static_cast<std::uint8_t>(verdicts >> 8u * static_cast<unsigned>(op));
}

/// What the verdicts tell of two ints.
inline bool IsVerdict(std::uint8_t verdicts, int a, int b) noexcept {
    const unsigned order = static_cast<unsigned>(a > b) + static_cast<unsigned>(a >= b);
    return (verdicts >> order & 1u) != 0;
}

inline bool CompareInts(EOperType op, int a, int b) noexcept {
    return static_cast<unsigned>(op) < 8u && IsVerdict(VerdictsOf(op), a, b);
}

inline bool CompareDoubles(EOperType op, double a, double b, double tolerance) noexcept {
    switch (op) {
    case OperGreater:
        return a > b;
    case OperGreaterEqual:
        return a >= b;
    case OperLess:
        return a < b;
    case OperLessEqual:
        return a <= b;
    case OperEqual: // of two equal infinities the difference is a NaN: false
        return std::fabs(a - b) <= tolerance;
    case OperStrictEqual:
        return a == b;
    case OperNotEqual:
        return std::fabs(a - b) > tolerance;
    default:
        return false;
    }
}

bool CompareStrings(EOperType op, const OrvStringT& a, const OrvStringT& b) noexcept;

/// True when a verdict was reached, which is then in `result`. The values stay the caller's. May throw std::bad_alloc.
bool CompareValues(EOperType op, const Value& left, const Value& right, int unitPrecision, bool& result, IError** err);

} // namespace OrvUQL::detail
