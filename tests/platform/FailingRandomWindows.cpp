#include "platform/FailingRandom.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <bcrypt.h>

/// In place of the system's, for a program that has the library in it.
extern "C" NTSTATUS WINAPI BCryptGenRandom(BCRYPT_ALG_HANDLE, PUCHAR buffer, ULONG length, ULONG) {
    const int failure = OrvUQL::Tests::AskRandomSource(buffer, length);
    return failure == 0 ? 0 : static_cast<NTSTATUS>(0xC0000000u | static_cast<unsigned>(failure));
}
