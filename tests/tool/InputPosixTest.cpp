// What is special about inputs and outputs on POSIX systems.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace OrvUQL::Tests {
namespace {

TEST(UqlInput, AReaderThatGoesAwayIsNothingToComplainAbout) {
    std::string json;
    for (int number = 0; number < 100'000; ++number) {
        json += "1\n";
    }
    const TestFile input(json);
    const UqlRun killed = RunningUql({"@this", input.GetPath()}, RunningUql::ToClosedPipe).Wait();
    EXPECT_EQ(killed.err, "");
    EXPECT_EQ(killed.status, -SIGPIPE);
    const auto before = std::signal(SIGPIPE, SIG_IGN); // which a program hands down to those that it starts
    const UqlRun failed = RunningUql({"@this", input.GetPath()}, RunningUql::ToClosedPipe).Wait();
    std::signal(SIGPIPE, before);
    EXPECT_EQ(failed, Fails(""));
}

} // namespace
} // namespace OrvUQL::Tests
