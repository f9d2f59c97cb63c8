// What is special about inputs and outputs on POSIX systems.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
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

/// AddArray keeps references, deliberately: for a sanitizer that is a leak.
class LeaksAllowed {
public:
    LeaksAllowed() { ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1); }
    LeaksAllowed(const LeaksAllowed&) = delete;
    LeaksAllowed& operator=(const LeaksAllowed&) = delete;
    ~LeaksAllowed() { ::unsetenv("ASAN_OPTIONS"); }
};

TEST(UqlInput, AValueThatIsKeptStaysAsItIs) {
    const LeaksAllowed leaksAllowed;
    // The query's own value of one record while the next ones are read.
    std::string json;
    std::string expected;
    for (int number = 0; number < 1'000; ++number) {
        const std::string text = std::to_string(number);
        json += R"({"a":{"b":)" + text + R"(},"c":[)" + text + "]}\n";
        expected += R"([{"b":)" + text + "},[" + text + "]]\n";
    }
    EXPECT_EQ(RunUql({"-o", "json", "array(@a).AddArray(array(@c))", "-"}, json), Prints(expected));
}

} // namespace
} // namespace OrvUQL::Tests
