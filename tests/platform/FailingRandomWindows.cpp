#include "platform/FailingRandom.h"

#include <cstring>

#include <windows.h>
// After windows.h, whose types it uses.
#include <bcrypt.h>

namespace {

std::uint32_t given = 0;
int failure = 0;
int calls = 0;

} // namespace

namespace OrvUQL::Tests {

void RandomSourceGives(std::uint32_t bits) {
    given = bits;
    failure = 0;
}

void RandomSourceFails(int code) { failure = code; }

int RandomSourceCalls() { return calls; }

} // namespace OrvUQL::Tests

/// In place of the system's, for a program that has the library in it.
extern "C" NTSTATUS WINAPI BCryptGenRandom(BCRYPT_ALG_HANDLE, PUCHAR buffer, ULONG length, ULONG) {
    ++calls;
    if (failure != 0) {
        std::memset(buffer, 0x55, length / 2);
        return static_cast<NTSTATUS>(0xC0000000u | static_cast<unsigned>(failure));
    }
    std::memcpy(buffer, &given, length < sizeof given ? length : sizeof given);
    return 0;
}
