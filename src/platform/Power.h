#pragma once

namespace OrvUQL::platform {

/// The double nearest to 10^n: 0 and infinity outside the range of doubles.
double PowerOfTen(int n) noexcept;

/// base^exponent, correctly rounded: the double nearest to the true value, the same digits on every platform.
double Power(double base, double exponent) noexcept;

} // namespace OrvUQL::platform
