// Patterns and texts that would crash the standard library's matcher or keep it busy for ever. Each ends within
// seconds, in a result or in an error, and in the same one on a small stack as on a large one.

#include "platform/Meter.h"
#include "platform/Regex.h"
#include "support/Effort.h"
#include "support/Print.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

using namespace OrvUQL::platform;
using namespace std::regex_constants;
using OrvUQL::EvaluationLimits;
using OrvUQL::Tests::PartOf;
using OrvUQL::Tests::RunOnThread;
using OrvUQL::Tests::smallStack;

namespace {

constexpr std::size_t largeStack = 8 * 1024 * 1024;

/// Where programs run slowly, only on the one that asks for more.
std::vector<std::size_t> Stacks() {
    return PartOf(2) == 2 ? std::vector<std::size_t>{smallStack, largeStack} : std::vector<std::size_t>{smallStack};
}

std::wstring Repeat(std::wstring_view text, std::size_t count) {
    std::wstring all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

/// "match", "none", or "error " and the code. That each ends is counted, not timed, for machines differ and sanitizers
/// cost: without bounds some would take years.
std::string Outcome(const std::wstring& pattern, const std::wstring& text, bool wholeText = false) {
    try {
        const Regex expression(pattern, {});
        const std::uint64_t mostSteps = 50'000'000 + 50 * text.size();
        const Meter meter{EvaluationLimits()};
        const struct Check {
            const Meter& meter;
            std::uint64_t mostSteps;
            ~Check() { EXPECT_LE(meter.GetUsage().steps, mostSteps / matcherStepsPerStep); }
        } check{meter, mostSteps};
        RegexMatcher matcher(expression, text);
        return (wholeText ? matcher.MatchAll() : matcher.Next()) ? "match" : "none";
    } catch (const std::regex_error& error) {
        return "error " + std::to_string(error.code());
    }
}

const std::string tooComplex = "error " + std::to_string(error_complexity);
const std::string tooDeep = "error " + std::to_string(error_stack);

class RegexHostile : public ::testing::TestWithParam<std::size_t> {
protected:
    static void OnStack(const std::function<void()>& body) { RunOnThread(GetParam(), body); }
};

} // namespace

TEST_P(RegexHostile, HonestTextsOfAnyLengthMatch) {
    OnStack([] {
        const std::wstring text = Repeat(L"ab", 75'000);
        EXPECT_EQ(Outcome(L".*", text, true), "match");
        EXPECT_EQ(Outcome(L"(a|b)*", text, true), "match");
        EXPECT_EQ(Outcome(L"[^,]*", text, true), "match");
        EXPECT_EQ(Outcome(L"[^,]*,", text), tooComplex) << "tried from each of 150,000 places";
        EXPECT_EQ(Outcome(L"\\w+$", text), "match");
        EXPECT_EQ(Outcome(L".*?b$", text), "match");
    });
}

TEST_P(RegexHostile, GroupsOfALongMatch) {
    OnStack([] {
        const std::wstring text = Repeat(L"ab", 75'000);
        RegexMatcher matcher(Regex(L"(.*)(b)", {}), text);
        ASSERT_TRUE(matcher.MatchAll());
        EXPECT_EQ(matcher.Groups()[1].length, text.size() - 1);
        EXPECT_EQ(matcher.Groups()[2].start, text.size() - 1);
    });
}

TEST_P(RegexHostile, ManyLongMatchesInOneText) {
    OnStack([] {
        const std::wstring text = Repeat(std::wstring(20'000, L'a') + L",", 10);
        RegexMatcher matcher(Regex(L"(a|b)+", {}), text);
        int count = 0;
        while (matcher.Next()) {
            EXPECT_EQ(matcher.Groups()[0].length, 20'000u);
            ++count;
        }
        EXPECT_EQ(count, 10);
    });
}

TEST_P(RegexHostile, AMillionCharacters) {
    OnStack([] {
        const std::wstring text(1'000'000, L'a');
        const std::string outcome = Outcome(L"(a|b)*", text, true);
        EXPECT_TRUE(outcome == "match" || outcome == tooDeep) << outcome;
        EXPECT_EQ(Outcome(L"a", text), "match");
        EXPECT_EQ(Outcome(L"b", text), "none");
    });
}

TEST_P(RegexHostile, NearMisses) {
    OnStack([] {
        EXPECT_EQ(Outcome(L"(a+)+$", std::wstring(40, L'a') + L"!"), tooComplex);
        EXPECT_EQ(Outcome(L"(a|aa)+$", std::wstring(60, L'a') + L"!"), tooComplex);
        EXPECT_EQ(Outcome(L"(.*)*x", std::wstring(60, L'a')), tooComplex);
        const std::string outcome = Outcome(L"(a+)+$", std::wstring(1'000'000, L'a') + L"!");
        EXPECT_TRUE(outcome == tooComplex || outcome == tooDeep) << outcome;
    });
}

TEST_P(RegexHostile, BackReferencesInLoops) {
    OnStack([] {
        EXPECT_EQ(Outcome(L"(a*)(\\1)*$", std::wstring(3'000, L'a') + L"b"), tooComplex);
        EXPECT_EQ(Outcome(L"(?:(a*)\\1)*b", std::wstring(2'000, L'a')), tooComplex);
        EXPECT_EQ(Outcome(L"(?:(z)|)(?:|){28}\\1", L"a"), tooComplex);
        EXPECT_EQ(Outcome(L"(?:(z)|)(?:|){9}\\1", std::wstring(100, L'a')), "none");
        EXPECT_EQ(Outcome(L"(a{1,1000})\\1", std::wstring(2'000, L'a'), true), "match");
    });
}

TEST_P(RegexHostile, LongPatterns) {
    OnStack([] {
        const std::wstring text(100'000, L'a');
        EXPECT_EQ(Outcome(text, text), tooComplex);
        EXPECT_EQ(Outcome(std::wstring(40'000, L'a'), text), "match");
        EXPECT_EQ(Outcome(Repeat(L"a|", 5'000) + L"b", text + L"c"), "match");
        EXPECT_EQ(Outcome(Repeat(L"xa|", 3'900) + L"b", std::wstring(1'000, L'a') + L"b"), "match")
            << "a frame for each alternative";
        EXPECT_EQ(Outcome(Repeat(L"a??", 3'000) + L"b", std::wstring(30, L'a')), tooComplex)
            << "a frame for each lazy repeat";
        EXPECT_EQ(Outcome(L"(?:|){64}b", L"a"), tooComplex);
        EXPECT_EQ(Outcome(L"(?:){5000}", L"a"), "match");
        EXPECT_EQ(Outcome(L"(a{100}){100}", text), "match");
    });
}

TEST_P(RegexHostile, DeepPatterns) {
    OnStack([] {
        const auto nested = [](std::size_t depth, std::wstring_view close) {
            return Repeat(L"(", depth) + L"a" + Repeat(close, depth);
        };
        EXPECT_EQ(Outcome(nested(50'000, L")"), L"a"), tooComplex);
        EXPECT_EQ(Outcome(nested(1'000, L")"), L"a"), "match");
        EXPECT_EQ(Outcome(nested(1'000, L")?"), L"a"), "match");
        EXPECT_EQ(Outcome(nested(20, L")*"), std::wstring(30, L'a') + L"!", true), tooComplex);
        EXPECT_EQ(Outcome(Repeat(L"(", 50'000), L"a"), "error " + std::to_string(error_paren));
    });
}

TEST_P(RegexHostile, Lookaheads) {
    OnStack([] {
        EXPECT_EQ(Outcome(L"(?:(?=.*x)a)*", std::wstring(100'000, L'a'), true), "none");
        EXPECT_EQ(Outcome(L"(?:(?=a*)a)*b", std::wstring(100'000, L'a')), tooComplex);
        EXPECT_EQ(Outcome(Repeat(L"(?=", 16) + L"a" + Repeat(L"*)", 16) + L"a", L"a"),
                  "error " + std::to_string(error_badrepeat));
    });
}

TEST_P(RegexHostile, LongBrackets) {
    OnStack([] {
        std::wstring bracket = L"[";
        for (int unit = 0x4000; unit < 0x8000; unit += 4) {
            bracket += static_cast<wchar_t>(unit);
            bracket += L'-';
            bracket += static_cast<wchar_t>(unit + 2);
        }
        bracket += L"]";
        EXPECT_EQ(Outcome(bracket, std::wstring(10'000, L'a')), "none");
        EXPECT_EQ(Outcome(L"(" + bracket + L"|a)*$", std::wstring(10'000, L'a') + L"!"), tooComplex);
    });
}

INSTANTIATE_TEST_SUITE_P(Stacks, RegexHostile, ::testing::ValuesIn(Stacks()),
                         [](const auto& stack) { return std::to_string(stack.param / 1024) + "KiB"; });

TEST(RegexBounds, AreTheWholeCalls) {
    // Each match alone is far within the bounds; a hundred thousand of them are not.
    const std::wstring text = Repeat(std::wstring(18, L'a') + L"!", 4'000);
    RegexMatcher matcher(Regex(L"(a+)+$|!", {}), text);
    EXPECT_THROW(
        {
            while (matcher.Next()) {}
        },
        std::regex_error);
}

TEST(RegexBounds, MatcherGoesOnAfterAnError) {
    const Regex expression(L"(a+)+$", {});
    EXPECT_THROW(RegexMatcher(expression, std::wstring(40, L'a') + L"!").Next(), std::regex_error);
    const std::wstring text(40, L'a');
    EXPECT_TRUE(RegexMatcher(expression, text).Next());
}
