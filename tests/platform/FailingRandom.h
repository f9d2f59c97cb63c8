// The system's source of random bits, as a test wants it. For programs that link FailingRandomPosix.cpp or
// FailingRandomWindows.cpp, whose function takes the place of the system's.
#pragma once

#include <cstddef>
#include <cstdint>

namespace OrvUQL::Tests {

/// What the source gives from now on.
void RandomSourceGives(std::uint32_t bits);

/// It fails from now on, after it has written a part of what was asked for.
void RandomSourceFails(int code);

/// How often it was asked.
int RandomSourceCalls();

/// What the function in the system's place does. 0, or the code of the failure.
int AskRandomSource(void* buffer, std::size_t length) noexcept;

} // namespace OrvUQL::Tests
