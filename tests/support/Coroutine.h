// Stacks that a host switches by itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <sys/mman.h>
#include <ucontext.h>
#include <utility>
#if defined(ORVUQL_THREAD_SANITIZER)
#include <sanitizer/tsan_interface.h>
#define ORVUQL_CROSSES __attribute__((no_sanitize("thread"))) // is entered on one stack and left on another
#else
#define ORVUQL_CROSSES
#endif

namespace OrvUQL::Tests {

/// A function on a stack of its own that can be left and entered again.
class Coroutine {
public:
    Coroutine(std::size_t size, std::function<void(Coroutine&)> function) : body(std::move(function)), bytes(size) {
        memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        ::mprotect(memory, 4096, PROT_NONE);
        getcontext(&inside);
        inside.uc_stack.ss_sp = memory;
        inside.uc_stack.ss_size = bytes;
        inside.uc_link = &outside;
        const auto self = reinterpret_cast<std::uintptr_t>(this);
        makecontext(&inside, reinterpret_cast<void (*)()>(Start), 2, static_cast<unsigned>(self >> 32),
                    static_cast<unsigned>(self));
    }
    ~Coroutine() {
#if defined(ORVUQL_THREAD_SANITIZER)
        __tsan_destroy_fiber(fiber);
#endif
        ::munmap(memory, bytes);
    }
    Coroutine(const Coroutine&) = delete;
    Coroutine& operator=(const Coroutine&) = delete;

    void Enter() {
        TellSanitizer(true);
        swapcontext(&outside, &inside);
    }
    void Leave() {
        TellSanitizer(false);
        swapcontext(&inside, &outside);
    }

private:
    std::function<void(Coroutine&)> body;
    std::size_t bytes;
    void* memory = nullptr;
    ucontext_t inside{};
    ucontext_t outside{};
#if defined(ORVUQL_THREAD_SANITIZER)
    void* thread = nullptr;
    void* fiber = __tsan_create_fiber(0);
#endif

    ORVUQL_CROSSES static void Start(unsigned high, unsigned low) {
        auto* const self = reinterpret_cast<Coroutine*>(std::uintptr_t{high} << 32 | low);
        self->body(*self);
        self->TellSanitizer(false);
    }

    /// The thread sanitizer keeps books of each stack, and has to be told which one the thread is about to use.
    ORVUQL_CROSSES void TellSanitizer([[maybe_unused]] bool entering) {
#if defined(ORVUQL_THREAD_SANITIZER)
        if (entering) {
            thread = __tsan_get_current_fiber();
        }
        __tsan_switch_to_fiber(entering ? fiber : thread, 0);
#endif
    }
};

} // namespace OrvUQL::Tests
