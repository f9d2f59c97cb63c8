// Evaluation on several threads.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

TEST(UqlJobs, OutputStaysInOrder) {
    std::string json;
    std::string expected;
    for (int number = 0; number < 20'000; ++number) {
        const std::string text = std::to_string(number);
        json += R"({"n":)";
        json += text + ",\"s\":\"" + std::string(static_cast<std::size_t>(number % 50), 's') + "\"}\n";
        expected += text + ":" + std::to_string(number % 50) + "\n";
    }
    for (const char* jobs : {"1", "2", "7"}) {
        EXPECT_EQ(RunUql({"-j", jobs, "@n + ':' + @s.Length()", "-"}, json), Prints(expected)) << jobs << " jobs";
    }
}

TEST(UqlJobs, FailuresStayInOrderToo) {
    std::string json;
    for (int number = 0; number < 3'000; ++number) {
        json += number % 500 == 499 ? "0\n" : "1\n";
    }
    const UqlRun one = RunUql({"--keep-going", "1 / @this", "-"}, json);
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(RunUql({"-j", "4", "--keep-going", "1 / @this", "-"}, json), one);
    EXPECT_EQ(RunUql({"-j", "4", "1 / @this", "-"}, json), RunUql({"1 / @this", "-"}, json));
}

TEST(UqlJobs, NothingBehindAFailureIsPrinted) {
    std::string json;
    std::string expected;
    for (int number = 0; number < 1'000; ++number) {
        json += "1\n";
        expected += "1\n";
    }
    EXPECT_EQ(RunUql({"-j", "4", "1 / @this", "-"}, json + "0\n" + json),
              Fails("uql: -: record 1001: Division By Zero\n  1 / @this\n    ^\n", expected));
}

TEST(UqlJobs, MalformedJsonEndsItsLineAlone) {
    // Lines of a thousand documents, so that batches begin and end within them.
    std::string json;
    std::string expected;
    for (int number = 0; number < 10'000; ++number) {
        json += number == 2'500 ? "{\"a\" 1}" : number == 7'500 ? "]" : std::to_string(number);
        json += number % 1'000 == 999 ? '\n' : ' ';
        const bool isSkipped = (number >= 2'500 && number < 3'000) || (number >= 7'500 && number < 8'000);
        expected += isSkipped ? "" : std::to_string(number) + "\n";
    }
    const TestFile bad(json);
    const TestFile good("\"good\"");
    const std::vector<std::string> inputs = {"--keep-going", "@this", bad.GetPath(), good.GetPath()};
    const UqlRun one = RunUql(inputs);
    EXPECT_EQ(one.out, expected + "good\n");
    EXPECT_THAT(one.err, testing::HasSubstr(bad.GetPath() + ":3:2506: record 2501: "));
    EXPECT_THAT(one.err, testing::HasSubstr(bad.GetPath() + ":8:2501: record 7002: "));
    EXPECT_THAT(one.err, testing::EndsWith("uql: 2 of 9003 records failed\n"));
    std::vector<std::string> parallel = {"-j", "3"};
    parallel.insert(parallel.end(), inputs.begin(), inputs.end());
    EXPECT_EQ(RunUql(parallel), one);
    EXPECT_EQ(RunUql({"-j", "3", "@this", bad.GetPath(), good.GetPath()}),
              RunUql({"@this", bad.GetPath(), good.GetPath()}));
}

TEST(UqlJobs, OptionsHoldForEveryThread) {
    std::string json;
    std::string expected;
    for (int number = 0; number < 200; ++number) {
        json += "1 ";
        expected += "bool\tfalse\n";
    }
    EXPECT_EQ(RunUql({"-j", "3", "-o", "typed", "--precision", "2", "--var", "{\"a\":1}",
                      "{1 mm} = {1.4 mm} or $a <> 1", "-"},
                     json),
              Prints(expected));
}

} // namespace
} // namespace OrvUQL::Tests
