#include "platform/FailingRandom.h"

#include <algorithm>
#include <cstring>

namespace OrvUQL::Tests {

namespace {

std::uint32_t given = 0;
int failure = 0;
int calls = 0;

} // namespace

void RandomSourceGives(std::uint32_t bits) {
    given = bits;
    failure = 0;
}

void RandomSourceFails(int code) { failure = code; }

int RandomSourceCalls() { return calls; }

int AskRandomSource(void* buffer, std::size_t length) noexcept {
    ++calls;
    if (failure != 0) {
        std::memset(buffer, 0x55, length / 2);
        return failure;
    }
    std::memcpy(buffer, &given, std::min(length, sizeof given));
    return 0;
}

} // namespace OrvUQL::Tests
