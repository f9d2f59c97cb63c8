// The number rules that values of several classes share.
#pragma once

#include "OrvUQL/ObjectBase.h"

namespace OrvUQL {

/// A double as an int: false if it lies outside of -2147483648 to 2147483647, tested before it is rounded half away
/// from zero. A NaN passes and gives -2147483648, as the processor's truncating conversion does.
bool DoubleToInt(double number, int& out) noexcept;

/// Rounds to 0 to 15 decimals as floor(x / 10^-n +- 0.5) * 10^-n. Deliberately asymmetric: the 0.5 is subtracted from
/// a negative number and the floor taken as well, so that -2.4 gives -3 and -2.6 gives -4.
double RoundToDecimals(double number, int decimals) noexcept;

/// Reads the optional number of decimals of a rounding method (null: 0); outside of 0 to 15 "Rounding precision must be
/// between 0 and 15".
bool ReadRoundingPrecision(IObject* param, int& decimals, IError** err);

/// A new string: `value` in a radix of 2 to 36, else "The radix must be between 2 and 36". Outside of radix 10 a
/// negative value is its 32-bit pattern. With a width greater than the text's length "0" is inserted at the front,
/// also before a minus sign, deliberately.
IObject* MakeRadixText(int value, int radix, int width, IError** err);

} // namespace OrvUQL
