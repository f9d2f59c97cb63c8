// Ctrl-C, pressed at a console.
#include "tool/TerminalWindows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// The status of a program that Ctrl-C has ended.
constexpr int interrupted = static_cast<int>(0xC000013A);

TEST(UqlInterrupt, EndsARunThatHasMuchToDo) {
    std::string record = "[1";
    for (int number = 0; number < 1'000; ++number) {
        record += ",1";
    }
    record += "]\n";
    std::string json;
    for (int number = 0; number < 2'000; ++number) {
        json += record;
    }
    const TestFile input(json);
    for (const char* jobs : {"1", "2"}) {
        // A million additions for each record: without the interruption it would take minutes.
        const UqlRun run = InterruptUqlAtTerminal(
            {"-j", jobs, "--unbuffered", "@Convert(@Convert($item + 1).Count).Count", input.GetPath()}, "1001\n");
        EXPECT_EQ(run.status, interrupted);
        EXPECT_THAT(run.out, StartsWith("1001\n"));
        EXPECT_THAT(run.out, HasSubstr("\nuql: interrupted: 0 of "));
    }
}

} // namespace
} // namespace OrvUQL::Tests
