#include "platform/Thread.h"

#include <gtest/gtest.h>

#include <thread>

using namespace OrvUQL::platform;

namespace {

__attribute__((noinline)) std::uintptr_t Descend(std::uintptr_t top) {
    const std::uintptr_t here = ORVUQL_FRAME_ADDRESS();
    if (!HasStack()) {
        return top - here;
    }
    volatile char frame[200];
    frame[0] = 1;
    const std::uintptr_t depth = Descend(top);
    frame[1] = frame[0];
    return depth;
}

} // namespace

TEST(Thread, StateIsOnePerThread) {
    ThreadState* const mine = &CurrentThread();
    EXPECT_EQ(mine, &CurrentThread());
    std::thread([mine] { EXPECT_NE(mine, &CurrentThread()); }).join();
}

TEST(Thread, BoundsHoldTheFrame) {
    const auto check = [] {
        const StackBounds bounds = GetStackBounds();
        const std::uintptr_t frame = ORVUQL_FRAME_ADDRESS();
        EXPECT_GT(frame, bounds.low);
        EXPECT_LT(frame - bounds.low, bounds.size);
    };
    check();
    std::thread(check).join();
}

TEST(Thread, RecursionEnds) {
    const auto check = [] {
        EXPECT_TRUE(HasStack());
        EXPECT_GT(Descend(ORVUQL_FRAME_ADDRESS()), 128u * 1024);
        EXPECT_TRUE(HasStack());
    };
    check();
    std::thread(check).join();
}

TEST(Thread, ReserveIsWhatIsAskedFor) {
    EXPECT_TRUE(HasStack(0));
    EXPECT_FALSE(HasStack(GetStackBounds().size));
}

TEST(PendingReleases, FirstInFirstOut) {
    PendingReleases pending;
    int objects[1000];
    EXPECT_TRUE(pending.IsEmpty());
    EXPECT_EQ(pending.Pop(), nullptr);
    for (int round = 0; round < 3; ++round) {
        std::size_t in = 0;
        std::size_t out = 0;
        while (out < 1000) { // three in, one out, until all are in
            for (int i = 0; i < 3 && in < 1000; ++i) {
                ASSERT_TRUE(pending.Push(&objects[in++]));
            }
            ASSERT_EQ(pending.Pop(), &objects[out++]);
        }
        EXPECT_TRUE(pending.IsEmpty());
        EXPECT_EQ(pending.Pop(), nullptr);
    }
}
