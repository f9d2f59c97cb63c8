// The comparison rules, on values and on the scalars inside of them.
#pragma once

#include "core/Value.h"

#include <cmath>

namespace OrvUQL::detail {

inline bool CompareInts(EOperType op, int a, int b) noexcept {
    switch (op) {
    case OperGreater:
        return a > b;
    case OperGreaterEqual:
        return a >= b;
    case OperLess:
        return a < b;
    case OperLessEqual:
        return a <= b;
    case OperEqual:
    case OperStrictEqual:
        return a == b;
    case OperNotEqual:
        return a != b;
    default:
        return false;
    }
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
