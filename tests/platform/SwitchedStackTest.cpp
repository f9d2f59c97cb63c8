#include "platform/SwitchedStack.h"

#include "platform/Thread.h"
#include "support/StackThread.h"
#include "support/StackUse.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

using namespace OrvUQL::platform;
using OrvUQL::Tests::Descend;

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// Recurses while HasStack allows it.
__attribute__((noinline)) int DescendWhileThereIsStack() {
    volatile char frame[1024];
    frame[0] = 1;
    return HasStack() ? DescendWhileThereIsStack() + frame[0] : 0;
}

} // namespace

TEST(SwitchedStack, RunsOnAStackOfItsOwn) {
    SwitchedStack stack;
    EXPECT_FALSE(stack.IsOpen());
    ASSERT_TRUE(stack.Open(32 * mebibyte, mebibyte));
    int frames = 0;
    std::uintptr_t inside = 0;
    OrvUQL::Tests::RunOnThread(OrvUQL::Tests::smallStack, [&] {
        stack.Run([&] {
            inside = ORVUQL_FRAME_ADDRESS();
            frames = Descend(16 * mebibyte);
        });
    });
    EXPECT_GE(frames, 16 * 1024);
    EXPECT_GT(inside, stack.GetLow());
    EXPECT_LE(inside, stack.GetLow() + 32 * mebibyte);
}

TEST(SwitchedStack, ThrowsWhatIsThrownInside) {
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    for (int i = 0; i < 3; ++i) {
        try {
            stack.Run([] { throw std::runtime_error("from inside"); });
            FAIL() << "nothing was thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "from inside");
        }
    }
    EXPECT_THROW(stack.Run([] { throw 7; }), int);
    bool ran = false;
    stack.Run([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(SwitchedStack, RunsWhileAnExceptionIsHandled) {
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    try {
        throw std::runtime_error("outer");
    } catch (const std::runtime_error&) {
        std::string inner;
        stack.Run([&] {
            try {
                throw std::runtime_error("inner");
            } catch (const std::runtime_error& error) {
                inner = error.what();
            }
        });
        EXPECT_EQ(inner, "inner");
        EXPECT_THROW(throw, std::runtime_error);
    }
}

TEST(SwitchedStack, OneWithinAnother) {
    SwitchedStack outer;
    SwitchedStack inner;
    ASSERT_TRUE(outer.Open(4 * mebibyte, mebibyte));
    ASSERT_TRUE(inner.Open(4 * mebibyte, mebibyte));
    int depths[3] = {};
    outer.Run([&] {
        inner.Run([&] { depths[0] = DescendWhileThereIsStack(); });
        depths[1] = DescendWhileThereIsStack();
        EXPECT_THROW(inner.Run([] { throw 1; }), int);
        depths[2] = DescendWhileThereIsStack();
    });
    for (const int depth : depths) {
        EXPECT_GT(depth, 1024) << "HasStack knows the bounds of each";
        EXPECT_LT(depth, 4 * 1024);
    }
}

TEST(SwitchedStack, ThreadsOwnStackIsKnownAgainAfterwards) {
    OrvUQL::Tests::RunOnThread(OrvUQL::Tests::smallStack, [] {
        SwitchedStack stack;
        ASSERT_TRUE(stack.Open(4 * mebibyte, mebibyte));
        stack.Run([] { EXPECT_TRUE(HasStack()); });
        EXPECT_TRUE(HasStack());
        EXPECT_FALSE(HasStack(OrvUQL::Tests::smallStack));
        const int depth = DescendWhileThereIsStack();
        EXPECT_LT(depth, 256);
    });
}

TEST(SwitchedStack, IsEmptyAfterClose) {
    SwitchedStack stack;
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    stack.Close();
    EXPECT_FALSE(stack.IsOpen());
    stack.Close();
    ASSERT_TRUE(stack.Open(mebibyte, mebibyte));
    EXPECT_TRUE(stack.IsOpen());
}

TEST(SwitchedStack, MaximumIsAFractionOfTheMachine) {
    EXPECT_GE(SwitchedStack::GetMaximum(), 16 * mebibyte);
    EXPECT_LE(SwitchedStack::GetMaximum(), 1024 * mebibyte);
}
