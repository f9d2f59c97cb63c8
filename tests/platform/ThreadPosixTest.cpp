#include "platform/Thread.h"
#include "support/Coroutine.h"
#include "support/StackUse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace OrvUQL::platform;
using OrvUQL::Tests::Coroutine;
using OrvUQL::Tests::UseStackDownTo;

// Stacks of every kind: small and great ones, one without a limit, and switched ones.

namespace {

/// Runs a function on a thread with that much stack.
[[maybe_unused]] void RunWithStack(std::size_t size, std::function<void()> run) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    pthread_t thread{};
    const auto start = [](void* function) -> void* {
        (*static_cast<std::function<void()>*>(function))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, start, &run), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

/// Recurses until the stack runs short, uses part of the reserve there, and returns how deep it came.
__attribute__((noinline)) std::uintptr_t Descend(std::uintptr_t top, std::size_t reserve, std::size_t leaf) {
    const std::uintptr_t here = ORVUQL_FRAME_ADDRESS();
    if (!HasStack(reserve)) {
        UseStackDownTo(here - leaf);
        return top - here;
    }
    volatile char frame[200];
    frame[0] = 1;
    const std::uintptr_t depth = Descend(top, reserve, leaf);
    frame[1] = frame[0];
    return depth;
}

std::uintptr_t DepthFromHere(std::size_t reserve, std::size_t leaf) {
    return Descend(ORVUQL_FRAME_ADDRESS(), reserve, leaf);
}

} // namespace

// The thread sanitizer takes a part of each stack for itself, and its books have room for 64 Ki calls.
#if !defined(ORVUQL_THREAD_SANITIZER)

TEST(Thread, RecursionEndsAboveTheReserveOfASmallStack) {
    RunWithStack(256 * 1024, [] {
        ASSERT_TRUE(HasStack());
        const std::uintptr_t depth = DepthFromHere(stackReserve, stackReserve - 8 * 1024);
        EXPECT_GT(depth, 120u * 1024);
        EXPECT_LT(depth, 193u * 1024);
        EXPECT_FALSE(HasStack(256 * 1024));
        EXPECT_TRUE(HasStack(100 * 1024));
    });
}

TEST(Thread, RecursionUsesAGreatStack) {
    RunWithStack(std::size_t{512} * 1024 * 1024,
                 [] { EXPECT_GT(DepthFromHere(stackReserve, 1024), std::uintptr_t{500} * 1024 * 1024); });
}

TEST(Thread, RecursionEndsOnAnUnlimitedStack) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
        if (setrlimit(RLIMIT_STACK, &unlimited) != 0) {
            // Only a process that has the right to may raise the limit; the stack then is what it was.
            _exit(DepthFromHere(stackReserve, 1024) > 0 ? 0 : 1);
        }
        CurrentThread() = ThreadState();
        const std::uintptr_t depth = DepthFromHere(stackReserve, stackReserve - 8 * 1024);
        _exit(depth > unlimitedStackSize - 1024 * 1024 && depth < unlimitedStackSize ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(Thread, FirstQuestionMayComeFromASwitchedStack) {
    RunWithStack(256 * 1024, [] {
        std::uintptr_t depth = 0;
        Coroutine coroutine(256 * 1024, [&depth](Coroutine&) { depth = DepthFromHere(stackReserve, 1024); });
        coroutine.Enter();
        EXPECT_GT(depth, 40u * 1024);
        EXPECT_LT(depth, foreignStackSize);
        EXPECT_GT(DepthFromHere(stackReserve, 1024), 120u * 1024);
    });
}

#endif

TEST(Thread, SwitchedStackIsUsedForSixtyFourKibibytes) {
    std::uintptr_t depth = 0;
    Coroutine coroutine(512 * 1024, [&depth](Coroutine&) {
        EXPECT_TRUE(HasStack());
        depth = DepthFromHere(stackReserve, foreignStackReserve - 4 * 1024);
    });
    coroutine.Enter();
    EXPECT_GT(depth, 40u * 1024);
    EXPECT_LT(depth, foreignStackSize);
    EXPECT_TRUE(HasStack()); // back on the thread's own
}

TEST(Thread, ManySwitchedStacksInTurn) {
    std::vector<std::unique_ptr<Coroutine>> coroutines;
    std::vector<std::uintptr_t> depths;
    for (int i = 0; i < 8; ++i) {
        coroutines.push_back(std::make_unique<Coroutine>(256 * 1024, [&depths](Coroutine& self) {
            for (int round = 0; round < 3; ++round) {
                depths.push_back(DepthFromHere(stackReserve, 1024));
                self.Leave();
            }
        }));
    }
    for (int round = 0; round < 3; ++round) {
        for (const auto& coroutine : coroutines) {
            coroutine->Enter();
            EXPECT_TRUE(HasStack());
        }
    }
    ASSERT_EQ(depths.size(), 24u);
    for (const std::uintptr_t depth : depths) {
        EXPECT_GT(depth, 40u * 1024);
        EXPECT_LT(depth, foreignStackSize);
    }
}
