// Ctrl-C, pressed at a console.
#include "tool/LongRun.h"
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
    const TestFile input(LongRun::MakeRecords());
    for (const char* jobs : {"1", "2"}) {
        const UqlRun run =
            InterruptUqlAtTerminal({"-j", jobs, "--unbuffered", LongRun::query, input.GetPath()}, "1001\n");
        EXPECT_EQ(run.status, interrupted);
        EXPECT_THAT(run.out, StartsWith("1001\n"));
        EXPECT_THAT(run.out, HasSubstr("\nuql: interrupted: 0 of "));
    }
}

} // namespace
} // namespace OrvUQL::Tests
