#include "platform/Power.h"

#include <cmath>

namespace OrvUQL::platform {

// The C library's error before rounding is far below half a unit in the last place, so what can be exact is exact.
double Power(double base, double exponent) noexcept { return std::pow(base, exponent); }

} // namespace OrvUQL::platform
