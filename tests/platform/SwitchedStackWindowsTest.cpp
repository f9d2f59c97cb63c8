#include "platform/SwitchedStack.h"
#include "platform/Thread.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>
#include <stdexcept>

#include <windows.h>

using namespace OrvUQL::platform;

// What the stack's being a fiber could change for a host: its own fibers, and what belongs to a thread.

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// Throws through frames that have saved the caller's registers.
__attribute__((noinline)) double ThrowBelow(SwitchedStack& stack, double a, double b, double c) {
    double sum = a * b;
    try {
        stack.Run([&] {
            sum += c;
            throw std::runtime_error("from inside");
        });
    } catch (const std::runtime_error&) {
        sum += a;
    }
    return sum + b * c;
}

struct HostFiber {
    void* caller = nullptr;
    bool ran = false;
    bool isSameFiberAfterwards = false;
    bool hasStack = false;
};

void WINAPI RunInHostFiber(void* parameter) {
    HostFiber& host = *static_cast<HostFiber*>(parameter);
    void* const self = GetCurrentFiber();
    {
        SwitchedStack stack;
        if (stack.Open(mebibyte, mebibyte)) {
            stack.Run([&] { host.ran = true; });
            try {
                stack.Run([] { throw 1; });
            } catch (int) {
                host.isSameFiberAfterwards = IsThreadAFiber() != FALSE && GetCurrentFiber() == self;
            }
        }
        host.hasStack = HasStack();
    }
    SwitchToFiber(host.caller);
}

} // namespace

TEST(SwitchedStack, ThreadIsNoFiberAfterwards) {
    ASSERT_FALSE(IsThreadAFiber());
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    bool wasFiber = false;
    stack.Run([&] { wasFiber = IsThreadAFiber() != FALSE; });
    EXPECT_TRUE(wasFiber);
    EXPECT_FALSE(IsThreadAFiber());
    EXPECT_THROW(stack.Run([] { throw 1; }), int);
    EXPECT_FALSE(IsThreadAFiber());
}

TEST(SwitchedStack, RunsInAHostsFiber) {
    HostFiber host;
    OrvUQL::Tests::RunOnThread(OrvUQL::Tests::smallStack, [&] {
        host.caller = ConvertThreadToFiber(nullptr);
        ASSERT_NE(host.caller, nullptr);
        void* const fiber = CreateFiber(256 * 1024, RunInHostFiber, &host);
        ASSERT_NE(fiber, nullptr);
        SwitchToFiber(fiber);
        DeleteFiber(fiber);
        EXPECT_TRUE(IsThreadAFiber()) << "a thread that its host made a fiber stays one";
        ConvertFiberToThread();
    });
    EXPECT_TRUE(host.ran);
    EXPECT_TRUE(host.isSameFiberAfterwards);
    EXPECT_TRUE(host.hasStack);
}

TEST(SwitchedStack, ServesOneThreadAfterAnother) {
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(4 * mebibyte, mebibyte));
    for (int i = 0; i < 3; ++i) {
        DWORD inside = 0;
        DWORD outside = 0;
        OrvUQL::Tests::RunOnThread(OrvUQL::Tests::smallStack, [&] {
            outside = GetCurrentThreadId();
            stack.Run([&] { inside = GetCurrentThreadId(); });
        });
        EXPECT_EQ(inside, outside);
    }
}

TEST(SwitchedStack, FiberLocalValuesOfTheThreadAreKept) {
    const DWORD slot = FlsAlloc(nullptr);
    ASSERT_NE(slot, FLS_OUT_OF_INDEXES);
    int value = 0;
    ASSERT_TRUE(FlsSetValue(slot, &value));
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    stack.Run([slot] { FlsSetValue(slot, nullptr); });
    EXPECT_EQ(FlsGetValue(slot), &value);
    FlsFree(slot);
}

TEST(SwitchedStack, RegistersOfTheCallerSurviveAnException) {
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    volatile double one = 1.5;
    volatile double two = 2.25;
    const double a = one;
    const double b = two;
    double total = 0.0;
    for (int i = 0; i < 10; ++i) {
        total += ThrowBelow(stack, a, b, i);
    }
    EXPECT_EQ(total, 10 * (a * b + a) + 45 * (1 + b));
}

TEST(SwitchedStack, RoundingModeIsTheCallersAfterwards) {
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    stack.Run([] {}); // it then has a mode of its own
    ASSERT_EQ(std::fesetround(FE_DOWNWARD), 0);
    stack.Run([] {});
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(mode, FE_DOWNWARD);
}

TEST(SwitchedStack, RefusesWhatNoSystemHas) {
    SwitchedStack stack;
    constexpr std::size_t all = std::size_t{1} << 62;
    EXPECT_FALSE(stack.Open(all, all));
    EXPECT_FALSE(stack.IsOpen());
    EXPECT_FALSE(stack.Open(0, 0));
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    bool ran = false;
    stack.Run([&] { ran = true; });
    EXPECT_TRUE(ran);
}
