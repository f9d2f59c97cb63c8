#include "platform/FailingRandom.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

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

/// In place of the C library's, for the whole process.
extern "C" int getentropy(void* buffer, std::size_t length) noexcept {
    ++calls;
    if (failure != 0) {
        std::memset(buffer, 0x55, length / 2);
        errno = failure;
        return -1;
    }
    std::memcpy(buffer, &given, length < sizeof given ? length : sizeof given);
    return 0;
}
