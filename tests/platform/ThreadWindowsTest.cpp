#include "platform/Pool.h"
#include "platform/Thread.h"
#include "support/StackThread.h"
#include "support/StackUse.h"

#include <gtest/gtest.h>

#include <vector>

#include <windows.h>

using namespace OrvUQL::platform;
using OrvUQL::Tests::RunOnThread;
using OrvUQL::Tests::UseStackDownTo;

// What a thread keeps on this system, and its stack: small and great ones, and fibers'.
//
// The size that a fiber is made with is the least it gets: Wine makes no stack smaller than a mebibyte.

namespace {

/// Recurses until the stack runs short, uses all of the reserve there but a little, and returns how deep it came.
__attribute__((noinline)) std::uintptr_t Descend(std::uintptr_t top, std::size_t leaf) {
    const std::uintptr_t here = ORVUQL_FRAME_ADDRESS();
    if (!HasStack()) {
        UseStackDownTo(here - leaf);
        return top - here;
    }
    volatile char frame[200];
    frame[0] = 1;
    const std::uintptr_t depth = Descend(top, leaf);
    frame[1] = frame[0];
    return depth;
}

/// A recursion that was stopped where it should have been: it used all that was there but the reserve.
void ExpectRecursionUsesTheStack() {
    const std::uintptr_t here = ORVUQL_FRAME_ADDRESS();
    const std::uintptr_t left = here - GetStackBounds().low;
    const std::uintptr_t depth = Descend(here, stackReserve - 8 * 1024);
    EXPECT_LT(depth, left - stackReserve + 1024);
    EXPECT_GT(depth, left - stackReserve - 4 * 1024);
}

/// A fiber of the host's, which lets a recursion run until the stack is short each time it is entered.
class RecursingFiber {
public:
    explicit RecursingFiber(std::size_t reserve) : handle(CreateFiberEx(0, reserve, 0, Serve, this)) {}
    RecursingFiber(const RecursingFiber&) = delete;
    RecursingFiber& operator=(const RecursingFiber&) = delete;
    ~RecursingFiber() { DeleteFiber(handle); }

    /// Returns the stack's size.
    std::size_t Enter() {
        caller = GetCurrentFiber();
        SwitchToFiber(handle);
        return size;
    }

private:
    void* handle;
    void* caller = nullptr;
    std::size_t size = 0;

    static void WINAPI Serve(void* parameter) {
        auto& self = *static_cast<RecursingFiber*>(parameter);
        for (;;) {
            self.size = GetStackBounds().size;
            ExpectRecursionUsesTheStack();
            SwitchToFiber(self.caller);
        }
    }
};

/// What happens on a thread after the library's own part of its end.
struct Late {
    void* block = nullptr;
    bool isClosed = false;
    bool isDone = false;
};
std::atomic<Late*> late{nullptr};

void WINAPI OnThreadEventLate(void*, DWORD reason, void*) {
    if (reason != DLL_THREAD_DETACH) {
        return;
    }
    if (Late* const mine = late.exchange(nullptr)) {
        mine->isClosed = CurrentThread().poolClosed;
        PoolFree(mine->block, 48);
        PoolFree(PoolAllocate(48), 48);
        const PoolList& list = CurrentThread().pool[PoolClass(48)];
        mine->isDone = list.head == nullptr && list.room == 0;
    }
}

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;

} // namespace

// Behind the library's in the order of names.
extern "C" __attribute__((section(".CRT$XLX"), used)) const PIMAGE_TLS_CALLBACK orvuqlLateCallback = OnThreadEventLate;

TEST(Thread, RecursionEndsAboveTheReserveOfASmallStack) {
    RunOnThread(256 * kibibyte, [] {
        EXPECT_LE(GetStackBounds().size, mebibyte);
        ASSERT_TRUE(HasStack());
        ExpectRecursionUsesTheStack();
        EXPECT_FALSE(HasStack(256 * kibibyte));
        EXPECT_TRUE(HasStack(100 * kibibyte));
    });
}

TEST(Thread, RecursionUsesAGreatStack) {
    RunOnThread(128 * mebibyte, [] {
        EXPECT_GT(GetStackBounds().size, 127 * mebibyte);
        ExpectRecursionUsesTheStack();
    });
}

TEST(Thread, BoundsAreThoseOfTheSystem) {
    RunOnThread(512 * kibibyte, [] {
        const StackBounds bounds = GetStackBounds();
        MEMORY_BASIC_INFORMATION memory{};
        ASSERT_NE(VirtualQuery(reinterpret_cast<void*>(ORVUQL_FRAME_ADDRESS()), &memory, sizeof memory), 0u);
        EXPECT_EQ(bounds.low, reinterpret_cast<std::uintptr_t>(memory.AllocationBase) + stackGuard);
        EXPECT_EQ(bounds.low + bounds.size, reinterpret_cast<std::uintptr_t>(memory.BaseAddress) + memory.RegionSize);
    });
}

TEST(Thread, FibersStacksAreKnown) {
    RunOnThread(256 * kibibyte, [] {
        ASSERT_NE(ConvertThreadToFiber(nullptr), nullptr);
        {
            RecursingFiber small(256 * kibibyte);
            RecursingFiber great(4 * mebibyte);
            for (int round = 0; round < 3; ++round) {
                EXPECT_LE(small.Enter(), mebibyte);
                EXPECT_GT(great.Enter(), 3 * mebibyte);
                ExpectRecursionUsesTheStack();
            }
        }
        ConvertFiberToThread();
    });
}

TEST(Thread, AFibersStackWhereAnotherWas) {
    // A smaller stack may lie within the place of a greater one that is gone.
    RunOnThread(256 * kibibyte, [] {
        ASSERT_NE(ConvertThreadToFiber(nullptr), nullptr);
        for (int round = 0; round < 20; ++round) {
            EXPECT_GT(RecursingFiber(4 * mebibyte).Enter(), 3 * mebibyte);
            EXPECT_LE(RecursingFiber(256 * kibibyte).Enter(), mebibyte);
        }
        ConvertFiberToThread();
    });
}

TEST(Thread, StateStaysWithTheThreadInItsFibers) {
    RunOnThread(256 * kibibyte, [] {
        struct Seen {
            void* caller;
            const ThreadState* state;
        } seen{ConvertThreadToFiber(nullptr), nullptr};
        ASSERT_NE(seen.caller, nullptr);
        void* const fiber = CreateFiber(
            64 * kibibyte,
            [](void* parameter) {
                auto& inside = *static_cast<Seen*>(parameter);
                inside.state = &CurrentThread();
                SwitchToFiber(inside.caller);
            },
            &seen);
        ASSERT_NE(fiber, nullptr);
        SwitchToFiber(fiber);
        DeleteFiber(fiber);
        EXPECT_EQ(seen.state, &CurrentThread());
        ConvertFiberToThread();
    });
}

TEST(Thread, StateIsFreshOnEachThread) {
    for (int i = 0; i < 100; ++i) {
        RunOnThread(256 * kibibyte, [] {
            ThreadState& state = CurrentThread();
            EXPECT_EQ(state.shortages, 0u);
            EXPECT_FALSE(state.poolOpen);
            EXPECT_FALSE(state.poolClosed);
            state.shortages = 7;
            PoolFree(PoolAllocate(48), 48);
        });
    }
}

TEST(Thread, LastErrorIsTheCallers) {
    // A host asks for it when texts and values that it used in the call are already gone.
    RunOnThread(256 * kibibyte, [] {
        SetLastError(ERROR_FILE_NOT_FOUND);
        CurrentThread().shortages += 1;
        EXPECT_TRUE(HasStack());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
        PoolFree(PoolAllocate(48), 48); // opens the lists
        PoolFree(PoolAllocate(48), 48);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    });
}

TEST(Pool, ListsAreGivenBackWhenAThreadEnds) {
    // Each thread leaves many blocks: with what they kept, the process would grow by a thread's worth each time.
    const auto useLists = [] {
        std::vector<void*> blocks;
        for (int i = 0; i < poolRoom; ++i) {
            for (std::size_t list = 0; list < poolClasses; ++list) {
                blocks.push_back(PoolAllocate(PoolBlockSize(list)));
            }
        }
        std::size_t list = 0;
        for (void* const block : blocks) {
            PoolFree(block, PoolBlockSize(list));
            list = (list + 1) % poolClasses;
        }
    };
    const auto countHeap = [] {
        std::size_t busy = 0;
        _HEAPINFO info{};
        info._pentry = nullptr;
        while (_heapwalk(&info) == _HEAPOK) {
            busy += info._useflag == _USEDENTRY ? 1 : 0;
        }
        return busy;
    };
    RunOnThread(256 * kibibyte, useLists);
    const std::size_t before = countHeap();
    for (int i = 0; i < 10; ++i) {
        RunOnThread(256 * kibibyte, useLists);
    }
    EXPECT_LT(countHeap(), before + 100);
    EXPECT_GT(before, 0u);
}

TEST(Pool, BlocksMayBeFreedAfterTheListsAreGone) {
    Late mine;
    RunOnThread(256 * kibibyte, [&mine] {
        PoolFree(PoolAllocate(48), 48); // opens the lists
        mine.block = PoolAllocate(48);
        late = &mine;
    });
    EXPECT_TRUE(mine.isClosed);
    EXPECT_TRUE(mine.isDone);
}
