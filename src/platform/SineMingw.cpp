// mingw-w64's own sin and cos leave the angle to the processor's instruction, whose pi has 66 bits: sin(1e6) is wrong
// in the last digits, sin(1e22) in all of them. The system's C runtime has better ones, which are hidden behind those
// of the same name unless they are imported expressly.

#include "platform/Sine.h"

// <cmath> declares them otherwise and must not be included here.
extern "C" __declspec(dllimport) double sin(double);
extern "C" __declspec(dllimport) double cos(double);

namespace OrvUQL::platform {

// A caller that needs both gets both: inlined into one function, the two calls would become one of mingw-w64's sincos.

double Sine(double angle) noexcept { return sin(angle); }

double Cosine(double angle) noexcept { return cos(angle); }

} // namespace OrvUQL::platform
