#pragma once

namespace OrvUQL::platform {

/// Sine and cosine of an angle in radians, right to the last digits for great angles too, which not every C library's
/// are. A NaN for infinity and NaN.
double Sine(double angle) noexcept;
double Cosine(double angle) noexcept;

} // namespace OrvUQL::platform
