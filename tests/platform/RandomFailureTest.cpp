// `rnd`, with a system that gives random bits, and with one that does not: then the C library's generator serves, as it
// is seeded, and nothing is reported.
//
// A program of its own, since it replaces a function of the system.

#include "platform/FailingRandom.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

namespace OrvUQL::Tests {
namespace {

constexpr int failures[] = {EINTR, EIO, ENOSYS, EFAULT, EAGAIN};

/// 32 bits of the 15 that the C library's generator has on every system.
std::uint32_t ScaledRuntimeBits() {
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::rand() & 0x7fff) * 4294967295u / 32767u);
}

TEST(Random, BitsAreTheSystems) {
    Host host;
    RandomSourceGives(0xFFFFFFFF);
    EXPECT_EQ(host.Run(L"rnd()"), "int 2147483647");
    EXPECT_EQ(host.Run(L"rnd(10)"), "int 10");
    EXPECT_EQ(host.Run(L"rnd(0)"), "int 0");
    RandomSourceGives(0xFFFFFFFE);
    EXPECT_EQ(host.Run(L"rnd()"), "int 2147483647");
    EXPECT_EQ(host.Run(L"rnd(10)"), "int 9");
    RandomSourceGives(0x80000000);
    EXPECT_EQ(host.Run(L"rnd()"), "int 1073741824");
    EXPECT_EQ(host.Run(L"rnd(10)"), "int 5");
    RandomSourceGives(0);
    EXPECT_EQ(host.Run(L"rnd(2147483647)"), "int 0");
    EXPECT_GT(RandomSourceCalls(), 0);
}

TEST(Random, WithoutTheSystemsTheyAreTheRuntimes) {
    Host host;
    const Ref<IQueryElement> any = host.Parse(L"rnd()");
    const Ref<IQueryElement> limited = host.Parse(L"rnd(1000)");
    for (const int failure : failures) {
        RandomSourceFails(failure);
        const int before = RandomSourceCalls();
        for (unsigned seed = 1; seed < 20; ++seed) {
            std::srand(seed);
            const std::uint32_t bits = ScaledRuntimeBits();
            std::srand(seed);
            ErrorSlot error;
            const Ref<IObject> value(host.engine.Evaluate(any.Get(), error.Slot()));
            EXPECT_EQ(Describe(value.Get()), "int " + std::to_string(bits >> 1)) << failure;
            std::srand(seed);
            const Ref<IObject> small(host.engine.Evaluate(limited.Get(), error.Slot()));
            EXPECT_EQ(Describe(small.Get()), "int " + std::to_string(1000ull * bits / 4294967295u)) << failure;
            EXPECT_TRUE(error.IsEmpty()) << error.Message();
        }
        EXPECT_EQ(RandomSourceCalls() - before, 38) << "asked each time: it may be there again";
    }
    RandomSourceGives(0x80000000);
    EXPECT_EQ(host.Run(L"rnd()"), "int 1073741824");
}

} // namespace
} // namespace OrvUQL::Tests
