#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

/// What the library keeps for each thread, and how much of the thread's stack is left.
namespace OrvUQL::platform {

class Meter;

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

    /// Of the evaluation that is under way, if it has limits; see Meter.h.
    Meter* meter = nullptr;

    bool poolOpen = false;
    bool poolClosed = false;
    PoolList pool[poolClasses];

    /// Counts the failures for want of memory or stack, for those who are told only that something failed.
    unsigned shortages = 0;

    /// Arrays inside each other that are being turned into VARIANTs.
    int variantDepth = 0;

    int releaseDepth = 0;
    PendingReleases pendingReleases;
};

static_assert(std::is_trivially_destructible_v<ThreadState>);

#if defined(__MINGW32__)

// This compiler's own thread_local is a table behind a lock. A slot of TlsAlloc would have to be filled on each
// thread's first use, where memory may have ended, and emptied before its last. But Windows has what ELF systems
// have: each thread gets a copy of the section .tls of every program and DLL, from before its first instruction until
// after its last. The state lies in that section (ThreadWindows.cpp) and is reached as other compilers for Windows
// reach a thread_local: the thread's array of copies, the copy of this module, the place in it.
extern "C" ThreadState orvuqlThreadState;
extern "C" unsigned long _tls_index;

inline ThreadState& CurrentThread() noexcept {
    char** copies = nullptr;
    ThreadState* state = nullptr;
    // volatile: a fiber may have been moved to another thread since the last look.
    asm volatile("movq %%gs:0x58, %0" : "=r"(copies));
    asm("leaq orvuqlThreadState@SECREL32(%1), %0" : "=r"(state) : "r"(copies[_tls_index]));
    return *state;
}

#else

#if defined(_MSC_VER)
extern constinit thread_local ThreadState threadState;
#else
// initial-exec: no call into the dynamic loader. The state is small enough for the space that loaders keep for
// libraries that are opened later.
extern constinit thread_local ThreadState threadState __attribute__((tls_model("initial-exec")));
#endif

inline ThreadState& CurrentThread() noexcept {
    ThreadState* state = &threadState;
#if defined(__SANITIZE_ADDRESS__)
    // In a program, ld turns the addition that makes this address into an instruction that sets no flags, while g++
    // lets the null check of -fsanitize=undefined read the addition's. Here the check has to look at the address
    // itself.
    asm("" : "+r"(state));
#endif
    return *state;
}

#endif

// ---- the stack ----

/// What a recursion leaves to those who do not ask: formatting, the C++ library, a host's own code.
inline constexpr std::size_t stackReserve = 64 * 1024;

/// How much of a stack without a limit is used, below the first frame seen on it. Only the end of memory, or whatever
/// is mapped next, would stop a recursion there, and either would end the process.
inline constexpr std::size_t unlimitedStackSize = std::size_t{64} * 1024 * 1024;

/// A stack that is not the thread's own (a coroutine's, a signal's) does not tell its bounds. It is taken to reach 64
/// KiB below the first frame seen on it, a quarter of which stands for the reserve.
inline constexpr std::size_t foreignStackSize = 64 * 1024;
inline constexpr std::size_t foreignStackReserve = 16 * 1024;

/// An address in the caller's frame.
#if defined(_MSC_VER) && !defined(__clang__)
#define ORVUQL_FRAME_ADDRESS() reinterpret_cast<std::uintptr_t>(_AddressOfReturnAddress())
#elif defined(__MINGW32__)
// Asking for the frame's address gives every frame that contains it a frame pointer, and those are unwound wrongly
// there: registers of the caller come back changed after an exception.
#define ORVUQL_FRAME_ADDRESS() ::OrvUQL::platform::StackPointer()
inline std::uintptr_t StackPointer() noexcept {
    std::uintptr_t pointer = 0;
    asm volatile("movq %%rsp, %0" : "=r"(pointer));
    return pointer;
}
#else
#define ORVUQL_FRAME_ADDRESS() reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0))
#endif

/// A stack's lowest address and size. Size 0: the system does not tell.
struct StackBounds {
    std::uintptr_t low = 0;
    std::uintptr_t size = 0;
    bool isUnlimited = false; ///< it may grow to `size` as long as nothing else is in the way
};

/// The bounds known without a question to the system.
#if defined(_WIN32)

/// At a stack's end Windows keeps guard pages, with which it tells a thread that the stack is used up, and below them a
/// page that is never there.
inline constexpr std::size_t stackGuard = 16 * 1024;

// Windows keeps the bounds of the stack that a thread is on, a fiber's too, in the thread's block: the ends that
// GetCurrentThreadStackLimits tells. Looking there each time is as cheap as remembering, and stays true when a fiber's
// stack lies where another's has been.
inline StackBounds KnownStack() noexcept {
    std::uintptr_t low = 0;
    std::uintptr_t top = 0;
#if defined(_MSC_VER) && !defined(__clang__)
    low = __readgsqword(0x1478);
    top = __readgsqword(0x08);
#else
    asm volatile("movq %%gs:0x1478, %0" : "=r"(low));
    asm volatile("movq %%gs:0x08, %0" : "=r"(top));
#endif
    low += stackGuard;
    return {low, top - low};
}

#else

inline StackBounds KnownStack() noexcept {
    const ThreadState& thread = CurrentThread();
    return {thread.stackLow, thread.stackSize};
}

#endif

/// HasStack for a frame outside the bounds known so far.
bool HasStackElsewhere(std::uintptr_t frame, std::size_t reserve) noexcept;

/// Whether more than `reserve` bytes are left below the caller's frame. Every function that recurses as deep as its
/// input says asks this first.
inline bool HasStack(std::size_t reserve = stackReserve) noexcept {
    const std::uintptr_t frame = ORVUQL_FRAME_ADDRESS();
    const StackBounds stack = KnownStack();
    const std::uintptr_t left = frame - stack.low;
    if (left < stack.size) {
        return left > reserve;
    }
    return HasStackElsewhere(frame, reserve);
}

// ---- for the other files of this folder; each system has its own implementation ----

/// The calling thread's stack.
StackBounds GetStackBounds() noexcept;

/// Has ClosePool called when the calling thread ends. False if there is no memory to remember that.
bool CallAtThreadExit() noexcept;

/// Whether the system has the memory with which it remembers one more destructor of a thread_local object. To be asked
/// right before the object is made: some C libraries end the process where that memory is missing.
bool HasMemoryForThreadExit() noexcept;

} // namespace OrvUQL::platform
