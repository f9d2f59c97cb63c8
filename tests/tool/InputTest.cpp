// Inputs of many records.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(UqlInput, TheQueryIsEvaluatedForEachDocument) {
    const TestFile lines("{\"a\": 1}\n{\"a\": 2}\n\n{\"a\": 3}\n");
    EXPECT_EQ(RunUql({"@a * 10", lines.GetPath()}), Prints("10\n20\n30\n"));
    const TestFile one("{\n  \"a\": 1\n}");
    EXPECT_EQ(RunUql({"@a", one.GetPath()}), Prints("1\n"));
    const TestFile none(" \n");
    EXPECT_EQ(RunUql({"@a", none.GetPath()}), Prints(""));
    const TestFile empty("");
    EXPECT_EQ(RunUql({"@a", empty.GetPath()}), Prints(""));
}

TEST(UqlInput, DocumentsMayStandSideBySide) {
    EXPECT_EQ(RunUql({"@this", "-"}, R"(1 2"x"[3]{"a":4}null true[]{}"y"5)"),
              Prints("1\n2\nx\n(3)\n{\"a\":4}\nnull\ntrue\n()\n{}\ny\n5\n"));
    EXPECT_EQ(RunUql({"@this", "-"}, R"(["]","\\","\"]"]["}"]{"}":"{"}["["])"),
              Prints("(],\\,\"])\n(})\n{\"}\":\"{\"}\n([)\n"));
}

TEST(UqlInput, InputsAreReadOneAfterTheOther) {
    const TestFile first("1 2");
    const TestFile second("3");
    EXPECT_EQ(RunUql({"@this", first.GetPath(), "-", second.GetPath()}, "10 11"), Prints("1\n2\n10\n11\n3\n"));
}

TEST(UqlInput, AByteOrderMarkAtTheHeadIsSkipped) {
    EXPECT_EQ(RunUql({"@this", "-"}, "\xEF\xBB\xBF[1]"), Prints("(1)\n"));
    EXPECT_EQ(RunUql({"@this", "-"}, "\xEF\xBB\xBF"), Prints(""));
    EXPECT_EQ(RunUql({"@this", "-"}, "\xEF\xBB").status, 1);
}

TEST(UqlInput, DocumentsMayBeCutAnywhereByTheBuffer) {
    // Every length of document meets every place of the buffer's end, in and between strings, escapes and numbers.
    std::string json;
    std::string expected;
    for (int number = 0; number < 40'000; ++number) {
        const std::string text(static_cast<std::size_t>(number % 37), 'x');
        json += R"({"n":)";
        json += std::to_string(number) + R"(,"t":")" + text + R"(\"]}\\"})" + (number % 3 == 0 ? "\n" : "");
        expected += std::to_string(number) + text + "\"]}\\\n";
    }
    EXPECT_EQ(RunUql({"@n + @t", "-"}, json), Prints(expected));
}

TEST(UqlInput, ADocumentMayBeLargerThanTheBuffer) {
    const std::string text(3'000'000, 'x');
    EXPECT_EQ(RunUql({"@a.Length() + @b", "-"}, "{\"a\":\"" + text + "\",\"b\":1} {\"a\":\"\",\"b\":7}"),
              Prints("3000001\n7\n"));
    std::string array = "[0";
    for (int number = 1; number < 200'000; ++number) {
        array += ',';
        array += std::to_string(number);
    }
    EXPECT_EQ(RunUql({"-o", "json", "@this", "-"}, array + "]"), Prints(array + "]\n"));
}

TEST(UqlInput, ADocumentMayBeVeryLarge) {
    const std::string text(200'000'000, 'x');
    EXPECT_EQ(RunUql({"@a.Length() + @b", "-"}, "{\"a\":\"" + text + "\",\"b\":1}\n{\"a\":\"\",\"b\":7}\n"),
              Prints("200000001\n7\n"));
}

TEST(UqlInput, ARecordThatFailsEndsTheRun) {
    const TestFile input("{\"a\": 1}\n{\"a\": 0}\n{\"a\": 2}\n");
    EXPECT_EQ(RunUql({"6 / @a", input.GetPath()}),
              Fails("uql: " + input.GetPath() + ": record 2: Division By Zero\n  6 / @a\n    ^\n", "6\n"));
    EXPECT_EQ(RunUql({"6 / @this", "-"}, "1 0 2"),
              Fails("uql: -: record 2: Division By Zero\n  6 / @this\n    ^\n", "6\n"));
}

TEST(UqlInput, KeepGoingGoesOnBehindARecordThatFails) {
    const TestFile first("1 0 2");
    const TestFile second("0 3");
    EXPECT_EQ(RunUql({"--keep-going", "6 / @this", first.GetPath(), second.GetPath()}),
              Fails("uql: " + first.GetPath() + ": record 2: Division By Zero\n  6 / @this\n    ^\n" +
                        "uql: " + second.GetPath() + ": record 1: Division By Zero\n  6 / @this\n    ^\n" +
                        "uql: 2 of 5 records failed\n",
                    "6\n3\n2\n"));
}

TEST(UqlInput, AFailureWithoutAMessageIsReportedToo) {
    EXPECT_EQ(RunUql({"@this << 1", "-"}, "null"),
              Fails("uql: -: record 1: the query has no value\n  @this << 1\n        ^\n"));
}

TEST(UqlInput, RecordsBeforeMalformedJsonAreAnswered) {
    const TestFile input("{\"a\": 1}\n{\"a\": 2}\n{\"a\" 3}\n{\"a\": 4}\n");
    const UqlRun run = RunUql({"@a", input.GetPath()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "1\n2\n");
    EXPECT_THAT(run.err, StartsWith("uql: " + input.GetPath() + ":3:6: record 3: "));
}

TEST(UqlInput, KeepGoingGoesOnWithTheNextInputBehindMalformedJson) {
    const TestFile bad("1 ] 2");
    const TestFile good("3");
    const UqlRun stopped = RunUql({"@this", bad.GetPath(), good.GetPath()});
    EXPECT_EQ(stopped.status, 1);
    EXPECT_EQ(stopped.out, "1\n");
    const UqlRun run = RunUql({"--keep-going", "@this", bad.GetPath(), "/no/such/file", good.GetPath()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "1\n3\n");
    EXPECT_THAT(run.err, StartsWith("uql: " + bad.GetPath() + ":1:3: record 2: "));
    EXPECT_THAT(run.err, HasSubstr("uql: /no/such/file: " + GetMissingFileReason() + "\n"));
}

struct Malformed {
    const char* text;
    std::size_t line;
    std::size_t column;
};

void PrintTo(const Malformed& malformed, std::ostream* out) { *out << malformed.text; }

class UqlMalformedInput : public testing::TestWithParam<Malformed> {};

TEST_P(UqlMalformedInput, IsReportedWithItsPlace) {
    const Malformed& malformed = GetParam();
    const UqlRun run = RunUql({"1", "-"}, malformed.text);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("uql: -:" + std::to_string(malformed.line) + ":" +
                                    std::to_string(malformed.column) + ": record 1: "));
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1);
}

INSTANTIATE_TEST_SUITE_P(UqlInput, UqlMalformedInput,
                         testing::Values(Malformed{"{", 1, 2}, Malformed{"[1,]", 1, 4}, Malformed{"[1 2]", 1, 4},
                                         Malformed{"]", 1, 1}, Malformed{",1", 1, 1}, Malformed{"{\"a\":1,}", 1, 8},
                                         Malformed{"{a:1}", 1, 2}, Malformed{"{\n \"a\": 1,\n \"b\" 2}", 3, 6},
                                         Malformed{"'a'", 1, 1}, Malformed{"[1}", 1, 3}, Malformed{"\"a\nb\"", 1, 3},
                                         Malformed{"\"\\x\"", 1, 3}, Malformed{"\"\\", 1, 3},
                                         Malformed{"\"\\u12g4\"", 1, 6}, Malformed{"+1", 1, 1}, Malformed{".5", 1, 1},
                                         Malformed{"01", 1, 2}, Malformed{"1.", 1, 3}, Malformed{"1e", 1, 3},
                                         Malformed{"-", 1, 2}, Malformed{"truE", 1, 4}, Malformed{"nul", 1, 4},
                                         Malformed{"truex", 1, 5}, Malformed{"NaN", 1, 1}, Malformed{"/* */ 1", 1, 1},
                                         Malformed{"\"\\ud800\"", 1, 8}, Malformed{"\"\\udc00\"", 1, 7},
                                         Malformed{"1e999", 1, 5}, Malformed{"[0, -1e400 ]", 1, 10},
                                         Malformed{"[\"\xC3\" x]", 1, 6}, Malformed{"\xFF", 1, 1}));

TEST(UqlInput, WhatCannotBeReadIsReported) {
    EXPECT_EQ(RunUql({"1", "/no/such/file"}), Fails("uql: /no/such/file: " + GetMissingFileReason() + "\n"));
    EXPECT_EQ(RunUql({"1", "/"}), Fails("uql: /: " + GetDirectoryReason() + "\n"));
}

TEST(UqlInput, AQueryThatDoesNotParseReadsNothing) {
    EXPECT_EQ(RunUql({"1 +", "/no/such/file"}),
              Fails("uql: Error parsing query: Unexpected end of line at position 4\n  1 +\n     ^\n"));
}

TEST(UqlInput, ResultsAreThereBeforeMoreInputIsWaitedFor) {
    for (const char* jobs : {"1", "3"}) {
        RunningUql uql({"-j", jobs, "@a + 1", "-"}, RunningUql::ToPipe);
        uql.Write("{\"a\": 1}\n");
        EXPECT_EQ(uql.ReadLine(), "2\n");
        uql.Write("{\"a\": 5}{\"a\"");
        EXPECT_EQ(uql.ReadLine(), "6\n");
        uql.Write(": 7}");
        EXPECT_EQ(uql.ReadLine(), "8\n");
        EXPECT_EQ(uql.Wait(), Prints(""));
    }
}

} // namespace
} // namespace OrvUQL::Tests
