// What an evaluation may take: steps, memory, time.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// An evaluation that would take hours, and little memory.
const std::string hours = "'x'.Repeat(2000).ToCharArray().Convert('x'.Repeat(2000).ToCharArray().Convert("
                          "'x'.Repeat(2000).ToCharArray().Convert($index * 2).Count()).Count()).Count()";

std::string Message(const std::string& what) { return "uql: Evaluation limit exceeded: " + what + "\n"; }

TEST(UqlLimits, StepsAreBounded) {
    const UqlRun run = RunUql({"--max-steps", "100000", hours});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith(Message("steps") + "  'x'"));
    EXPECT_EQ(RunUql({"--max-steps", "10", "1 + 2"}), Prints("3\n"));
    EXPECT_THAT(RunUql({"--max-steps", "1", "1 + 2 * 3"}).err, StartsWith(Message("steps")));
}

TEST(UqlLimits, MemoryIsBounded) {
    for (const char* bytes : {"1000000", "1000k", "1M"}) {
        EXPECT_THAT(RunUql({"--max-memory", bytes, "'x'.Repeat(2000000).Length()"}).err, StartsWith(Message("memory")));
        EXPECT_EQ(RunUql({"--max-memory", bytes, "'x'.Repeat(2000).Length()"}), Prints("2000\n"));
    }
    EXPECT_EQ(RunUql({"--max-memory", "1G", "'x'.Repeat(2000000).Length()"}), Prints("2000000\n"));
    EXPECT_THAT(RunUql({"--max-memory", "1G", "'x'.Repeat(2000000000).Length()"}).err, StartsWith(Message("memory")));
}

TEST(UqlLimits, TimeIsBounded) {
    EXPECT_THAT(RunUql({"--timeout", "0.05", hours}).err, StartsWith(Message("time")));
    EXPECT_EQ(RunUql({"--timeout", "1e300", "1"}), Prints("1\n"));
}

TEST(UqlLimits, AreForEachRecord) {
    std::string json;
    std::string answers;
    for (int number = 0; number < 1'000; ++number) {
        json += number == 500 ? "3000000\n" : "3\n";
        answers += number == 500 ? "null\n" : "\"xxx\"\n";
    }
    const TestFile input(json);
    for (const char* jobs : {"1", "3"}) {
        for (const std::vector<std::string>& limit :
             {std::vector<std::string>{"--max-memory", "1M"}, {"--max-steps", "1000"}}) {
            std::vector<std::string> arguments = limit;
            arguments.insert(arguments.end(),
                             {"-j", jobs, "-o", "json", "--on-error", "null", "'x'.Repeat(@this)", input.GetPath()});
            const UqlRun run = RunUql(arguments);
            EXPECT_EQ(run.status, 1);
            EXPECT_EQ(run.out, answers) << limit[0];
            EXPECT_THAT(run.err, StartsWith("uql: " + input.GetPath() + ": record 501: Evaluation limit exceeded: "));
            EXPECT_THAT(run.err, EndsWith("uql: 1 of 1000 records failed\n"));
        }
    }
}

TEST(UqlLimits, EndTheRunLikeOtherFailures) {
    EXPECT_EQ(RunUql({"--max-memory", "1M", "'x'.Repeat(@this).Length()", "-"}, "1 3000000 2"),
              Fails("uql: -: record 2: Evaluation limit exceeded: memory\n"
                    "  'x'.Repeat(@this).Length()\n"
                    "      ^\n",
                    "1\n"));
    EXPECT_EQ(
        RunUql({"--max-memory", "1M", "--keep-going", "--filter", "'x'.Repeat(@this).Length() > 1", "-"}, "1 3000000 2")
            .out,
        "2\n");
}

TEST(UqlLimits, NoNameIsSuggestedForThem) {
    EXPECT_THAT(RunUql({"--max-memory", "1M", "'x'.Repeat(3000000) + @prize", "-"}, "{\"price\": 1}").err,
                testing::Not(HasSubstr("did you mean")));
}

TEST(UqlLimits, AreForExplanationsToo) {
    const UqlRun run = RunUql({"explain", "--max-memory", "1M", "1 + 'x'.Repeat(3000000).Length()"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("error: Evaluation limit exceeded: memory\n"));
}

TEST(UqlLimits, ArePositiveNumbers) {
    EXPECT_THAT(RunUql({"--max-steps", "0", "1"}).err, HasSubstr("'0' is not a number of steps"));
    EXPECT_EQ(RunUql({"--max-steps", "-1", "1"}).status, 2);
    EXPECT_EQ(RunUql({"--max-steps", "1k", "1"}).status, 2);
    EXPECT_EQ(RunUql({"--max-steps", "99999999999999999999", "1"}).status, 2);
    EXPECT_THAT(RunUql({"--max-memory", "1T", "1"}).err, HasSubstr("'1T' is not a number of bytes"));
    EXPECT_EQ(RunUql({"--max-memory", "k", "1"}).status, 2);
    EXPECT_EQ(RunUql({"--max-memory", "99999999999G", "1"}).status, 2);
    EXPECT_THAT(RunUql({"--timeout", "0", "1"}).err, HasSubstr("'0' is not a number of seconds"));
    EXPECT_EQ(RunUql({"--timeout", "nan", "1"}).status, 2);
    EXPECT_EQ(RunUql({"--timeout", "1s", "1"}).status, 2);
}

TEST(UqlLimits, OfASessionMayBeChanged) {
    EXPECT_EQ(RunUql({"repl"}, ":limits\n:limits steps 2\n1\n1 + 2 + 3 + 4 + max(5, 6)\n:limits off\n1 + 2 + 3 + 4\n"),
              Fails("Evaluation limit exceeded: steps\n  1 + 2 + 3 + 4 + max(5, 6)\n        ^\n",
                    "steps   off\nmemory  off\ntime    off\nint 1\nint 10\n"));
    const UqlRun run = RunUql({"repl", "--timeout", "30", "--max-memory", "2M"},
                              ":limits time 1.5\n'x'.Repeat(3000).Length()\n:limits\n:limits memory off\n:limits\n");
    EXPECT_THAT(run.out, StartsWith("int 3000\nsteps   off\nmemory  2097152 bytes\ntime    1.5 s\n"
                                    "The last query took "));
    EXPECT_THAT(run.out, HasSubstr(" bytes.\nsteps   off\nmemory  off\ntime    1.5 s\n"));
    EXPECT_EQ(RunUql({"repl"}, ":limits steps\n").err, "'' is not a number of steps\n");
    EXPECT_EQ(RunUql({"repl"}, ":limits rows 3\n").err, ":limits [steps|memory|time N|off]\n");
}

} // namespace
} // namespace OrvUQL::Tests
