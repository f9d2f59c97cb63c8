#include "platform/Thread.h"

#include "platform/Pool.h"

#include <cstdlib>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace OrvUQL::platform {

constinit thread_local ThreadState threadState;

StackBounds GetStackBounds() noexcept {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return {};
    }
    void* address = nullptr;
    std::size_t size = 0;
    const bool known = pthread_attr_getstack(&attributes, &address, &size) == 0;
    pthread_attr_destroy(&attributes);
    if (!known) {
        return {};
    }
    // Only the first thread's stack grows on demand; the limit of the others is the size that they were made with.
    rlimit limit{};
    const bool isUnlimited =
        gettid() == getpid() && getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
    return {reinterpret_cast<std::uintptr_t>(address), size, isUnlimited};
}

bool HasMemoryForThreadExit() noexcept {
    // What is too large for the blocks that an allocator keeps ready for one size, so that it can be divided anew.
    // (volatile: or compilers leave both calls out.)
    void* volatile const block = std::malloc(4096);
    std::free(block);
    return block != nullptr;
}

bool CallAtThreadExit() noexcept {
    if (!HasMemoryForThreadExit()) {
        return false;
    }
    // A destructor of the language rather than a key of the thread library: it also runs for the main thread, and it
    // keeps the library loaded as long as a thread has it ahead.
    struct Closer {
        ~Closer() { ClosePool(); }
    };
    thread_local const Closer closer;
    static_cast<void>(closer);
    return true;
}

} // namespace OrvUQL::platform
