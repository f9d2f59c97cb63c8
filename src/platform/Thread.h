#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

/// What the library keeps for each thread, and how much of the thread's stack is left.
namespace OrvUQL::platform {

// ---- the parts of a thread's state ----

/// The free blocks of one size; see Pool.h.
struct PoolList {
    struct Block {
        Block* next;
    };
    Block* head = nullptr;
    int room = 0; ///< how many more blocks the list takes; nothing before the thread's first use and after its end
};

// Blocks of 8, 24, 40, ... bytes: heaps keep 8 bytes of their own beside each block and deal in multiples of 16.
inline constexpr std::size_t poolStep = 16;
inline constexpr std::size_t poolSmallest = 8;
inline constexpr std::size_t poolClasses = 9;

/// The list for blocks of at least `size` bytes, and how large its blocks are.
constexpr std::size_t PoolClass(std::size_t size) noexcept { return (size + poolStep - poolSmallest - 1) / poolStep; }
constexpr std::size_t PoolBlockSize(std::size_t list) noexcept { return list * poolStep + poolSmallest; }

/// Objects whose last reference went away while the stack was short, waiting in the order in which that happened.
class PendingReleases {
public:
    /// False when memory for the queue ends; the object is then not taken.
    bool Push(void* object) noexcept;

    /// The oldest object, or null. The queue gives its memory back when the last one leaves.
    void* Pop() noexcept;

    bool IsEmpty() const noexcept { return count == 0; }

private:
    void** ring = nullptr;
    std::size_t capacity = 0; // a power of two, or 0
    std::size_t first = 0;
    std::size_t count = 0;

    bool Grow() noexcept;
};

/// One for each thread. Constant initialisation and no destructor: reaching it is one addition to the thread pointer,
/// and it is there before the thread's first object and after its last.
struct ThreadState {
    // The thread's own stack. Size 0 sends the first question to the function that looks the bounds up.
    std::uintptr_t stackLow = 0;
    std::uintptr_t stackSize = 0;

    // The true lowest address of the own stack where only a part of it is used, and the switched stack seen last.
    std::uintptr_t stackEnd = 0;
    std::uintptr_t foreignLow = 0;
    std::uintptr_t foreignTop = 0;
    bool stackKnown = false;

    bool poolOpen = false;
    bool poolClosed = false;
    PoolList pool[poolClasses];

    /// Counts the failures for want of memory or stack, for those who are told only that something failed.
    unsigned shortages = 0;

    int releaseDepth = 0;
    PendingReleases pendingReleases;
};

static_assert(std::is_trivially_destructible_v<ThreadState>);

#if defined(_WIN32)
ThreadState& CurrentThread() noexcept;
#else
// initial-exec: no call into the dynamic loader. The state is small enough for the space that loaders keep for libraries
// that are opened later.
extern constinit thread_local ThreadState threadState __attribute__((tls_model("initial-exec")));

inline ThreadState& CurrentThread() noexcept {
    ThreadState* state = &threadState;
#if defined(__SANITIZE_ADDRESS__) || defined(ORVUQL_SANITIZED)
    // In a program, ld turns the addition that makes this address into an instruction that sets no flags, while g++ lets
    // the null check of -fsanitize=undefined read the addition's. Here the check has to look at the address itself.
    asm("" : "+r"(state));
#endif
    return *state;
}
#endif

// ---- the stack ----

/// What a recursion leaves to those who do not ask: formatting, the C++ library, a host's own code.
inline constexpr std::size_t stackReserve = 64 * 1024;

/// How much of a stack without a limit is used, below the first frame seen on it. Only the end of memory, or whatever is
/// mapped next, would stop a recursion there, and either would end the process.
inline constexpr std::size_t unlimitedStackSize = std::size_t{64} * 1024 * 1024;

/// A stack that is not the thread's own (a coroutine's, a signal's) does not tell its bounds. It is taken to reach 64 KiB
/// below the first frame seen on it, a quarter of which stands for the reserve.
inline constexpr std::size_t foreignStackSize = 64 * 1024;
inline constexpr std::size_t foreignStackReserve = 16 * 1024;

/// An address in the caller's frame.
#if defined(_MSC_VER) && !defined(__clang__)
#define ORVUQL_FRAME_ADDRESS() reinterpret_cast<std::uintptr_t>(_AddressOfReturnAddress())
#else
#define ORVUQL_FRAME_ADDRESS() reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0))
#endif

/// HasStack for a frame outside the bounds known so far.
bool HasStackElsewhere(std::uintptr_t frame, std::size_t reserve) noexcept;

/// Whether more than `reserve` bytes are left below the caller's frame. Every function that recurses as deep as its input
/// says asks this first.
inline bool HasStack(std::size_t reserve = stackReserve) noexcept {
    const std::uintptr_t frame = ORVUQL_FRAME_ADDRESS();
    const ThreadState& thread = CurrentThread();
    const std::uintptr_t left = frame - thread.stackLow;
    if (left < thread.stackSize) {
        return left > reserve;
    }
    return HasStackElsewhere(frame, reserve);
}

// ---- for the other files of this folder; each system has its own implementation ----

/// The calling thread's stack. Size 0: the system does not tell.
struct StackBounds {
    std::uintptr_t low = 0;
    std::uintptr_t size = 0;
    bool isUnlimited = false; ///< it may grow to `size` as long as nothing else is in the way
};
StackBounds GetStackBounds() noexcept;

/// Has ClosePool called when the calling thread ends.
void CallAtThreadExit() noexcept;

} // namespace OrvUQL::platform
