#include "platform/FailingRandom.h"

#include <cerrno>
#include <unistd.h>

/// In place of the C library's, for the whole process.
extern "C" int getentropy(void* buffer, std::size_t length) {
    const int failure = OrvUQL::Tests::AskRandomSource(buffer, length);
    if (failure != 0) {
        errno = failure;
        return -1;
    }
    return 0;
}
