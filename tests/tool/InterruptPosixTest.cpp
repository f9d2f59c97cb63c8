// Ctrl-C, as a signal.
#include "tool/LongRun.h"
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace OrvUQL::Tests {
namespace {

TEST(UqlInterrupt, EndsARunThatWaitsForInput) {
    for (const char* jobs : {"1", "3"}) {
        RunningUql uql({"-j", jobs, "--on-error", "null", "1 / @this", "-"}, RunningUql::ToPipe);
        uql.Write("1\n0\n");
        EXPECT_EQ(uql.ReadLine(), "1\n");
        EXPECT_EQ(uql.ReadLine(), "null\n");
        uql.Write("5"); // a record that is not complete
        uql.Interrupt();
        const UqlRun run = uql.Wait();
        EXPECT_EQ(run.status, -SIGINT);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "uql: -: record 2: Division By Zero\n  1 / @this\n    ^\n"
                           "uql: interrupted: 1 of 2 records failed\n");
    }
}

TEST(UqlInterrupt, EndsARunThatHasMuchToDo) {
    for (const char* jobs : {"1", "2"}) {
        const TestFile input(LongRun::MakeRecords());
        RunningUql uql({"-j", jobs, "--unbuffered", LongRun::query, input.GetPath()}, RunningUql::ToPipe);
        EXPECT_EQ(uql.ReadLine(), "1001\n");
        uql.Interrupt();
        const UqlRun run = uql.Wait();
        EXPECT_EQ(run.status, -SIGINT);
        EXPECT_EQ(run.err.substr(0, 23), "uql: interrupted: 0 of ");
        std::size_t lines = 1; // every record that counts was answered
        for (const char c : run.out) {
            lines += c == '\n' ? 1 : 0;
        }
        EXPECT_EQ(run.err, "uql: interrupted: 0 of " + std::to_string(lines) + (lines == 1 ? " record" : " records") +
                               " failed\n");
    }
}

TEST(UqlInterrupt, IsIgnoredWhereTheProgramWasToldTo) {
    const auto before = std::signal(SIGINT, SIG_IGN); // as of a program in the background
    RunningUql uql({"@this", "-"}, RunningUql::ToPipe);
    std::signal(SIGINT, before);
    uql.Write("1\n");
    EXPECT_EQ(uql.ReadLine(), "1\n");
    uql.Interrupt();
    uql.Write("2\n");
    EXPECT_EQ(uql.ReadLine(), "2\n");
    EXPECT_EQ(uql.Wait(), Prints(""));
}

} // namespace
} // namespace OrvUQL::Tests
