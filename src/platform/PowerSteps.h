#pragma once

#include <optional>

namespace OrvUQL::platform {

// The two steps of Power, for a positive finite base and a finite exponent.

/// base^exponent if it is certain to which double it rounds, which it is for 99 of 100 operands; otherwise nothing.
std::optional<double> QuickPower(double base, double exponent) noexcept;

/// base^exponent, always, in ten times the time: 0 and infinity beyond the range of doubles.
double AccuratePower(double base, double exponent) noexcept;

} // namespace OrvUQL::platform
