// The system's source of random bits, as a test wants it. For programs that link FailingRandomPosix.cpp or
// FailingRandomWindows.cpp, which take the place of the system's function.
#pragma once

#include <cstdint>

namespace OrvUQL::Tests {

/// What the source gives from now on.
void RandomSourceGives(std::uint32_t bits);

/// It fails from now on, after it has written a part of what was asked for.
void RandomSourceFails(int code);

/// How often it was asked.
int RandomSourceCalls();

} // namespace OrvUQL::Tests
