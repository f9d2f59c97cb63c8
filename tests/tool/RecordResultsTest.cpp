// What becomes of the results of records: on failure, as a filter, one by one.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(UqlOnError, NullPrintsALineForEachRecord) {
    const std::string json = "1\n0\n\"x\"\n]\n2\n";
    const UqlRun run = RunUql({"--on-error", "null", "6 / @this", "-"}, json);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "6\nnull\nnull\nnull\n3\n");
    EXPECT_THAT(run.err, StartsWith("uql: -: record 2: Division By Zero\n"));
    EXPECT_THAT(run.err, HasSubstr("uql: -:4:1: record 4: "));
    EXPECT_THAT(run.err, EndsWith("uql: 3 of 5 records failed\n"));
    EXPECT_EQ(RunUql({"--on-error", "null", "-j", "3", "6 / @this", "-"}, json), run);
    EXPECT_EQ(RunUql({"--on-error", "null", "-o", "json", "6 / @this", "-"}, json).out, run.out);
    EXPECT_EQ(RunUql({"--on-error", "null", "-o", "typed", "6 / @this", "-"}, json).out,
              "double\t6\nnull\tnull\nnull\tnull\nnull\tnull\ndouble\t3\n");
}

TEST(UqlOnError, SkipIsWhatKeepGoingDoes) {
    const std::string json = "1 0 2";
    const UqlRun run = RunUql({"--on-error", "skip", "6 / @this", "-"}, json);
    EXPECT_EQ(run,
              Fails("uql: -: record 2: Division By Zero\n  6 / @this\n    ^\nuql: 1 of 3 records failed\n", "6\n3\n"));
    EXPECT_EQ(RunUql({"--keep-going", "6 / @this", "-"}, json), run);
}

TEST(UqlOnError, FailEndsTheRunWithoutASummary) {
    const UqlRun run = RunUql({"--on-error", "fail", "6 / @this", "-"}, "1 0 2");
    EXPECT_EQ(run, Fails("uql: -: record 2: Division By Zero\n  6 / @this\n    ^\n", "6\n"));
    EXPECT_EQ(RunUql({"6 / @this", "-"}, "1 0 2"), run);
}

TEST(UqlOnError, AnInputThatCannotBeReadIsNoRecord) {
    const TestFile good("1");
    EXPECT_EQ(
        RunUql({"--on-error", "skip", "@this", "/no/such/file", "/", good.GetPath()}),
        Fails("uql: /no/such/file: " + GetMissingFileReason() + "\nuql: /: " + GetDirectoryReason() + "\n", "1\n"));
}

TEST(UqlFilter, PrintsRecordsAsTheyStand) {
    const std::string json = "{\"a\": 1,  \"b\":1.50}\n{\"a\":2}\n\n{ \"a\" :\n 3 }  {\"a\": 0}\n{\"a\":\"\xC3\"}";
    EXPECT_EQ(RunUql({"--filter", "@a.IsNumeric and @a <> 2", "-"}, json).out,
              "{\"a\": 1,  \"b\":1.50}\n{ \"a\" :\n 3 }\n{\"a\": 0}\n");
    EXPECT_EQ(RunUql({"--filter", "@a.TypeName = 'string'", "-"}, json).out, "{\"a\":\"\xC3\"}\n");
    EXPECT_EQ(RunUql({"--filter", "@b = 1", "-"}, "{}\n{}"), Prints(""));
}

TEST(UqlFilter, TheQueryHasToBeACondition) {
    EXPECT_EQ(RunUql({"--filter", "@this", "-"}, "true\n1\n"),
              Fails("uql: -: record 2: the condition is of type 'int', not 'bool'\n", "true\n"));
    EXPECT_EQ(RunUql({"--filter", "--on-error", "skip", "@this", "-"}, "\"true\"\nnull\nfalse\ntrue\n"),
              Fails("uql: -: record 1: the condition is of type 'string', not 'bool'\n"
                    "uql: -: record 2: the condition is of type 'null', not 'bool'\nuql: 2 of 4 records failed\n",
                    "true\n"));
}

TEST(UqlFilter, KeepsTheOrderOnSeveralThreads) {
    std::string json;
    std::string expected;
    for (int number = 0; number < 20'000; ++number) {
        const std::string record = R"({"n":)" + std::to_string(number) + "}\n";
        json += record;
        expected += number % 10 == 3 ? record : "";
    }
    EXPECT_EQ(RunUql({"--filter", "-j", "3", "@n.ToString().EndsWith('3')", "-"}, json), Prints(expected));
}

TEST(UqlUnbuffered, EachResultIsWrittenAtOnce) {
    for (const char* jobs : {"1", "3"}) {
        // A file is there as a whole: nothing is waited for that would write what there is.
        std::string json;
        for (int number = 0; number < 2'000; ++number) {
            json += std::to_string(number) + "\n";
        }
        std::string expected;
        RunningUql uql({"--unbuffered", "-j", jobs, "@this * 2", "-"}, RunningUql::ToPipe);
        uql.Write(json);
        for (int number = 0; number < 2'000; ++number) {
            EXPECT_EQ(uql.ReadLine(), std::to_string(number * 2) + "\n");
        }
        EXPECT_EQ(uql.Wait(), Prints(""));
    }
}

TEST(UqlRecordOptions, WhatDoesNotGoTogetherIsRefused) {
    const auto misuse = [](const std::string& message) {
        return UqlRun{2, "", "uql: " + message + "\nTry `uql --help`.\n"};
    };
    EXPECT_EQ(RunUql({"--keep-going", "--on-error", "null", "1", "-"}),
              misuse("--keep-going and --on-error exclude each other"));
    EXPECT_EQ(RunUql({"--filter", "--on-error", "null", "1", "-"}),
              misuse("--filter and --on-error null exclude each other"));
    EXPECT_EQ(RunUql({"--filter", "-o", "json", "1", "-"}), misuse("--filter and -o exclude each other"));
    EXPECT_EQ(RunUql({"--filter", "1"}), misuse("--filter needs INPUT"));
    EXPECT_EQ(RunUql({"--on-error", "maybe", "1", "-"}).status, 2);
    EXPECT_EQ(RunUql({"--json-reader", "other", "1", "-"}).status, 2);
}

} // namespace
} // namespace OrvUQL::Tests
