// What a long run shows at a terminal, with all that it overwrites.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Each with much to do; one of ten fails.
std::string MakeRecords(int count) {
    std::string items = "1";
    for (int number = 0; number < 300; ++number) {
        items += ",1";
    }
    std::string json;
    for (int number = 0; number < count; ++number) {
        json += "{\"list\":[" + items + "],\"divisor\":" + (number % 10 == 5 ? "0" : "1") + "}\n";
    }
    return json;
}

std::vector<std::string> MakeLongRun(const TestFile& input) {
    return {"--keep-going", "@list.Convert(@list.Convert($item + 1).Count).Count / @divisor", input.GetPath()};
}

TEST(UqlProgress, IsShownAtATerminalAndTakenAway) {
    // More records until it has taken more than a second.
    for (int count = 20; count <= 50'000; count *= 3) {
        const TestFile input(MakeRecords(count));
        const UqlRun run = RunUqlAtTerminal(MakeLongRun(input));
        EXPECT_EQ(run.status, 1);
        if (run.out.find(" a second") == std::string::npos) {
            continue;
        }
        EXPECT_THAT(run.out, testing::ContainsRegex("uql: [0-9]+ records, [0-9]+ a second, [0-9]+ failed, [0-9]+ %"));
        // The last one is overwritten before anything else is shown.
        const std::string last = run.out.substr(run.out.rfind(" %"));
        EXPECT_THAT(last, testing::ContainsRegex("^ % +"));
        EXPECT_THAT(last, HasSubstr(" records failed\n"));
        return;
    }
    FAIL() << "no progress was shown";
}

TEST(UqlProgress, IsNotShownElsewhere) {
    using Clock = std::chrono::steady_clock;
    std::chrono::duration<double> taken(0);
    for (int count = 20; taken.count() < 1.5; count *= 3) {
        const TestFile input(MakeRecords(count));
        const Clock::time_point begin = Clock::now();
        EXPECT_THAT(RunUql(MakeLongRun(input)).err, Not(HasSubstr("a second")));
        taken = Clock::now() - begin;
    }
}

TEST(UqlProgress, IsNotShownForShortRuns) {
    const TestFile input("1\n2\n");
    EXPECT_EQ(RunUqlAtTerminal({"@this", input.GetPath()}).out, "1\n2\n");
}

} // namespace
} // namespace OrvUQL::Tests
