#include "platform/SwitchedStack.h"
#include "support/StackUse.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if !defined(ORVUQL_ADDRESS_SANITIZER) && !defined(ORVUQL_THREAD_SANITIZER) // which need more address space than that

using namespace OrvUQL::platform;
using OrvUQL::Tests::Descend;

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

} // namespace

TEST(SwitchedStack, TakesWhatTheSystemGives) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const rlimit limit{512 * mebibyte, 512 * mebibyte};
        SwitchedStack stack;
        bool good = setrlimit(RLIMIT_AS, &limit) == 0;
        good = good && stack.Open(8192 * mebibyte, mebibyte); // settles for less
        int frames = 0;
        if (good) {
            stack.Run([&] { frames = Descend(mebibyte / 2); });
        }
        good = good && frames > 0 && !stack.Open(8192 * mebibyte, 4096 * mebibyte) && !stack.IsOpen();
        _exit(good ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

#endif
