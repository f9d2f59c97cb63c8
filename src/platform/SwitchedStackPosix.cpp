#include "platform/SwitchedStack.h"

#include "platform/Thread.h"

#include <algorithm>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVUQL_ADDRESS_SANITIZER 1
#endif
#if __has_feature(thread_sanitizer)
#define ORVUQL_THREAD_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define ORVUQL_ADDRESS_SANITIZER 1
#endif
#if defined(__SANITIZE_THREAD__)
#define ORVUQL_THREAD_SANITIZER 1
#endif
#if defined(ORVUQL_ADDRESS_SANITIZER)
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(ORVUQL_THREAD_SANITIZER)
#include <sanitizer/tsan_interface.h>
#endif

// The thread sanitizer notes in the books of the current stack which functions are entered and left. One that is
// entered on one stack and left on the other must not be noted.
#if !defined(ORVUQL_THREAD_SANITIZER)
#define ORVUQL_CROSSES
#elif defined(__clang__)
#define ORVUQL_CROSSES __attribute__((disable_sanitizer_instrumentation))
#else
#define ORVUQL_CROSSES __attribute__((no_sanitize("thread")))
#endif

namespace OrvUQL::platform {

namespace {

/// Tells the sanitizers which stack the thread is on. Without them it does nothing.
class Crossing {
public:
    Crossing() = default;
    Crossing(const Crossing&) = delete;
    Crossing& operator=(const Crossing&) = delete;
#if defined(ORVUQL_THREAD_SANITIZER)
    ~Crossing() { __tsan_destroy_fiber(inner); }
#endif

    ORVUQL_CROSSES void BeforeEntering([[maybe_unused]] std::uintptr_t low, [[maybe_unused]] std::size_t size) {
#if defined(ORVUQL_ADDRESS_SANITIZER)
        __sanitizer_start_switch_fiber(&fakeStack, reinterpret_cast<void*>(low), size);
#endif
#if defined(ORVUQL_THREAD_SANITIZER)
        __tsan_switch_to_fiber(inner, 0);
#endif
    }
    void Entered() {
#if defined(ORVUQL_ADDRESS_SANITIZER)
        __sanitizer_finish_switch_fiber(nullptr, &outerLow, &outerSize);
#endif
    }
    ORVUQL_CROSSES void BeforeLeaving() {
#if defined(ORVUQL_ADDRESS_SANITIZER)
        // No fake stack is kept: nobody comes back.
        __sanitizer_start_switch_fiber(nullptr, outerLow, outerSize);
#endif
#if defined(ORVUQL_THREAD_SANITIZER)
        __tsan_switch_to_fiber(outer, 0);
#endif
    }
    void Left([[maybe_unused]] std::uintptr_t low, [[maybe_unused]] std::size_t size) {
#if defined(ORVUQL_ADDRESS_SANITIZER)
        __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
        // Frames that an exception left behind stay poisoned when they lie deeper than the sanitizer expects.
        __asan_unpoison_memory_region(reinterpret_cast<void*>(low), size);
#endif
    }

private:
#if defined(ORVUQL_ADDRESS_SANITIZER)
    void* fakeStack = nullptr;
    const void* outerLow = nullptr;
    std::size_t outerSize = 0;
#endif
#if defined(ORVUQL_THREAD_SANITIZER)
    void* outer = __tsan_get_current_fiber();
    void* inner = __tsan_create_fiber(0);
#endif
};

struct Entry {
    void (*function)(void*);
    void* argument;
    Crossing crossing{};
    ucontext_t inside{};
    ucontext_t outside{};
};

// makecontext passes ints.
ORVUQL_CROSSES void Begin(unsigned high, unsigned lower) {
    constexpr int half = 32;
    Entry& entry = *reinterpret_cast<Entry*>(std::uintptr_t{high} << half | lower);
    entry.crossing.Entered();
    entry.function(entry.argument);
    entry.crossing.BeforeLeaving();
}

/// HasStack takes the switched stack seen last for one of unknown size; this one's is known.
class KnownBounds {
public:
    KnownBounds(std::uintptr_t low, std::uintptr_t top) noexcept
        : outerLow(std::exchange(CurrentThread().foreignLow, low)),
          outerTop(std::exchange(CurrentThread().foreignTop, top)) {}
    KnownBounds(const KnownBounds&) = delete;
    KnownBounds& operator=(const KnownBounds&) = delete;
    ~KnownBounds() {
        CurrentThread().foreignLow = outerLow;
        CurrentThread().foreignTop = outerTop;
    }

private:
    std::uintptr_t outerLow;
    std::uintptr_t outerTop;
};

std::size_t PageSize() noexcept { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

} // namespace

bool SwitchedStack::Open(std::size_t size, std::size_t least) noexcept {
    Close();
    const std::size_t page = PageSize();
    for (std::size_t wanted = size; wanted >= least && wanted != 0; wanted /= 2) {
        const std::size_t rounded = (wanted + page - 1) / page * page + page;
        void* const mapped = ::mmap(nullptr, rounded, PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
        if (mapped == MAP_FAILED) {
            continue;
        }
        if (::mprotect(mapped, page, PROT_NONE) != 0) {
            ::munmap(mapped, rounded);
            return false;
        }
        memory = mapped;
        bytes = rounded;
        low = reinterpret_cast<std::uintptr_t>(mapped) + page;
        top = reinterpret_cast<std::uintptr_t>(mapped) + rounded;
        return true;
    }
    return false;
}

void SwitchedStack::Close() noexcept {
    if (memory != nullptr) {
        ::munmap(memory, bytes);
        memory = nullptr;
    }
}

void SwitchedStack::Switch(void (*function)(void*), void* argument) {
    Entry entry{function, argument};
    getcontext(&entry.inside);
    entry.inside.uc_stack.ss_sp = reinterpret_cast<void*>(low);
    entry.inside.uc_stack.ss_size = top - low;
    entry.inside.uc_link = &entry.outside;
    const auto self = reinterpret_cast<std::uintptr_t>(&entry);
    constexpr int half = 32;
    makecontext(&entry.inside, reinterpret_cast<void (*)()>(Begin), 2, static_cast<unsigned>(self >> half),
                static_cast<unsigned>(self));
    const KnownBounds bounds(low, top);
    entry.crossing.BeforeEntering(low, top - low);
    swapcontext(&entry.outside, &entry.inside);
    entry.crossing.Left(low, top - low);
}

std::size_t SwitchedStack::GetMaximum() noexcept {
    constexpr std::size_t most = std::size_t{1} << 30;
    const long pages = sysconf(_SC_PHYS_PAGES);
    return pages <= 0 ? most / 4 : std::min(most, static_cast<std::size_t>(pages) * PageSize() / 4);
}

} // namespace OrvUQL::platform
