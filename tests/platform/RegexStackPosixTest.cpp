// Matching where the stack is not the thread's own, or has come to its end.

#include "platform/Regex.h"
#include "platform/Thread.h"
#include "support/Coroutine.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

using namespace OrvUQL::platform;
using OrvUQL::Tests::Coroutine;

namespace {

/// Alternatives, which take the matcher's recursion, over texts of some and of many units.
void ExpectMatches() {
    const Regex expression(L"(a|bc)+d", {});
    EXPECT_TRUE(RegexMatcher(expression, L"abcad").MatchAll());
    EXPECT_FALSE(RegexMatcher(expression, L"abcab").MatchAll());
    const std::wstring text = std::wstring(20'000, L'a') + L"d";
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
