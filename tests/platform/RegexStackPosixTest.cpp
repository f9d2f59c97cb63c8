// Matching where the stack is not the thread's own, or has come to its end.

#include "platform/Regex.h"
#include "platform/Thread.h"
#include "support/Coroutine.h"
#include "support/StackUse.h"

#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace OrvUQL::platform;
using OrvUQL::Tests::Coroutine;
using OrvUQL::Tests::UseStackDownTo;

namespace {

/// Alternatives, which take the matcher's recursion, over texts of some and of many units.
void ExpectMatches() {
    const Regex expression(L"(a|bc)+d", {});
    EXPECT_TRUE(RegexMatcher(expression, L"abcad").MatchAll());
    EXPECT_FALSE(RegexMatcher(expression, L"abcab").MatchAll());
    const std::wstring text = std::wstring(5'000, L'a') + L"d"; // within the calls that the thread sanitizer can follow
    EXPECT_TRUE(RegexMatcher(expression, text).MatchAll());
}

/// Calls a function where hardly any stack is left.
__attribute__((noinline)) void CallAtTheEnd(const std::function<void()>& function) {
    volatile char frame[1000];
    frame[0] = 1;
    if (HasStack()) {
        CallAtTheEnd(function);
    } else {
        function();
    }
    frame[1] = frame[0];
}

} // namespace

TEST(RegexStack, OfAHostsCoroutine) {
    Coroutine coroutine(256 * 1024, [](Coroutine&) { ExpectMatches(); });
    coroutine.Enter();
    ExpectMatches(); // back on the thread's own
}

TEST(RegexStack, AtTheEndOfTheThreads) { CallAtTheEnd(ExpectMatches); }

TEST(RegexStack, AtTheEndOfAHostsCoroutine) {
    Coroutine coroutine(256 * 1024, [](Coroutine&) { CallAtTheEnd(ExpectMatches); });
    coroutine.Enter();
}

#if !defined(ORVUQL_ADDRESS_SANITIZER) && !defined(ORVUQL_THREAD_SANITIZER) // which take more

namespace {

/// Whether an expression's work is given up for want of a stack.
bool FindsNoStack(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::regex_error& error) {
        return error.code() == std::regex_constants::error_stack;
    }
    return false;
}

} // namespace

TEST(RegexStack, ThatTheSystemRefuses) {
    const Regex expression(L"(a|bc)+d", {});
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        bool good = false;
        CallAtTheEnd([&] {
            UseStackDownTo(ORVUQL_FRAME_ADDRESS() - stackReserve / 2); // the main thread's grows as it is used
            const rlimit nothing{1, 1};
            good = setrlimit(RLIMIT_AS, &nothing) == 0;
            good = good && FindsNoStack([&] { RegexMatcher(expression, L"abcad").MatchAll(); });
            good = good && FindsNoStack([] { const Regex made(L"(b|cd)+e", {}); });
        });
        _exit(good ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

#endif
