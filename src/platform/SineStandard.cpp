#include "platform/Sine.h"

#include <cmath>

namespace OrvUQL::platform {

double Sine(double angle) noexcept { return std::sin(angle); }

double Cosine(double angle) noexcept { return std::cos(angle); }

} // namespace OrvUQL::platform
