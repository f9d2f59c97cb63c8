#pragma once

namespace OrvUQL::platform {

/// The double nearest to 10^n: 0 and infinity outside the range of doubles.
double PowerOfTen(int n) noexcept;

/// base^exponent. Exact wherever the exact result is a double, which not every C runtime's pow achieves.
double Power(double base, double exponent) noexcept;

} // namespace OrvUQL::platform
