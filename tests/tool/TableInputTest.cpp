// Tables and lines of text as input.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;

class UqlTableInput : public testing::Test {
protected:
    void SetUp() override {
        const UqlRun run = RunUql({"--csv", "1", "-"}, "a\n");
        if (run.status != 0) {
            EXPECT_EQ(run,
                      (UqlRun{2, "", "uql: --csv and --tsv are not supported by this build\nTry `uql --help`.\n"}));
            GTEST_SKIP() << "this build has no libcsv";
        }
    }

    static UqlRun ReadCsv(const std::string& table) {
        return RunUql({"--csv", "-o", "json", "--keep-going", "@this", "-"}, table);
    }
};

TEST_F(UqlTableInput, RowsAreObjectsOfStrings) {
    EXPECT_EQ(ReadCsv("name,qty\nbolt,5\nnut,\n"),
              Prints("{\"name\":\"bolt\",\"qty\":\"5\"}\n{\"name\":\"nut\",\"qty\":\"\"}\n"));
    EXPECT_EQ(RunUql({"--csv", "-o", "typed", "@qty", "-"}, "name,qty\nbolt,5\n"), Prints("string\t5\n"));
    EXPECT_EQ(RunUql({"--csv", "@this.TypeName + ' ' + @Keys + ' ' + @QTY.ToUpper + ' ' + @none.ToString", "-"},
                     "name,qty\nbolt,5\n"),
              Prints("object (name,qty) 5 null\n"));
    EXPECT_EQ(RunUql({"--csv", "@Get('unit price')", "-"}, "unit price,\n7,8\n"), Prints("7\n"));
    EXPECT_EQ(RunUql({"--tsv", "@b", "-"}, "a\tb\n1,\t2,\"\n"), Prints("2,\"\n"));
}

TEST_F(UqlTableInput, FieldsInQuotesMayHoldAnything) {
    EXPECT_EQ(ReadCsv("a,\"b,\"\"c\"\"\"\n\"1\n2\",\"x,\r\n\ny\"\n\"\"\"\",''\n"),
              Prints("{\"a\":\"1\\n2\",\"b,\\\"c\\\"\":\"x,\\r\\n\\ny\"}\n{\"a\":\"\\\"\",\"b,\\\"c\\\"\":\"''\"}\n"));
    // A quote within a field begins nothing.
    EXPECT_EQ(ReadCsv("a,b\n5\" nail,6\"\n"), Prints("{\"a\":\"5\\\" nail\",\"b\":\"6\\\"\"}\n"));
}

TEST_F(UqlTableInput, BlanksBelongToTheirField) {
    EXPECT_EQ(ReadCsv("a , b\n 1,2 \n"), Prints("{\"a \":\" 1\",\" b\":\"2 \"}\n"));
}

TEST_F(UqlTableInput, LinesMayEndInAnyWay) {
    const UqlRun expected = Prints("{\"a\":\"1\",\"b\":\"2\"}\n{\"a\":\"3\",\"b\":\"4\"}\n");
    EXPECT_EQ(ReadCsv("a,b\r\n1,2\r\n3,4"), expected);
    EXPECT_EQ(ReadCsv("a,b\r1,2\r3,4\r"), expected);
    EXPECT_EQ(ReadCsv("\n\na,b\n\n1,2\n\r\n3,4\n\n"), expected);
    EXPECT_EQ(ReadCsv("\xEF\xBB\xBF\"a\",b\n1,2\n3,4\n"), expected);
    EXPECT_EQ(ReadCsv(""), Prints(""));
    EXPECT_EQ(ReadCsv("a,b"), Prints(""));
}

TEST_F(UqlTableInput, AShortRowIsFilledUpAndALongOneIsAnError) {
    EXPECT_EQ(ReadCsv("a,b,c\n1\n1,2,3,4\n\"x\ny\",2,3\n1,2,3,4,5\n"),
              Fails("uql: -:3:1: record 2: the row has 4 fields, the header 3 fields\n"
                    "uql: -:6:1: record 4: the row has 5 fields, the header 3 fields\nuql: 2 of 4 records failed\n",
                    "{\"a\":\"1\",\"b\":null,\"c\":null}\n{\"a\":\"x\\ny\",\"b\":\"2\",\"c\":\"3\"}\n"));
}

TEST_F(UqlTableInput, AQuoteThatIsNotClosedIsAnError) {
    EXPECT_EQ(ReadCsv("a,b\n1,2\n\"3,4\n5,6\n"),
              Fails("uql: -:3:1: record 2: a quote is not closed\nuql: 1 of 2 records failed\n",
                    "{\"a\":\"1\",\"b\":\"2\"}\n"));
}

TEST_F(UqlTableInput, OfColumnsOfTheSameNameTheLastCounts) {
    EXPECT_EQ(ReadCsv("a,b,a\n1,2,3\n1,2\n"), Prints("{\"a\":\"3\",\"b\":\"2\"}\n{\"a\":null,\"b\":\"2\"}\n"));
    EXPECT_EQ(RunUql({"--csv", "@a", "-"}, "a,b,a\n1,2,3\n"), Prints("3\n"));
}

TEST_F(UqlTableInput, EachInputHasItsHeader) {
    const TestFile first("a,b\n1,2\n", ".csv");
    const TestFile second("b,a\n3,4\n", ".csv");
    for (const char* jobs : {"1", "3"}) {
        EXPECT_EQ(RunUql({"--csv", "-j", jobs, "@a + ' ' + @b", first.GetPath(), second.GetPath()}),
                  Prints("1 2\n4 3\n"));
    }
}

TEST_F(UqlTableInput, AFilterKeepsTheHeaderAndRowsAsTheyStand) {
    EXPECT_EQ(RunUql({"--csv", "--filter", "@b.ToInt() > 1", "-"}, "a,\"b\"\r\n\"x\r\ny\",\"2\"\r\nz,1\r\n"),
              Prints("a,\"b\"\n\"x\r\ny\",\"2\"\n"));
    EXPECT_EQ(RunUql({"--csv", "--filter", "1 = 1", "-"}, "a,b\n"), Prints("a,b\n"));
}

TEST_F(UqlTableInput, MalformedUtf8IsReplacedAndCounted) {
    EXPECT_EQ(RunUql({"--csv", "-o", "json", "@this", "-"}, "a\n\xFFx\n"),
              (UqlRun{0, "{\"a\":\"\xEF\xBF\xBDx\"}\n",
                      "uql: -: warning: 1 piece of malformed UTF-8 was replaced by U+FFFD\n"}));
}

TEST_F(UqlTableInput, RowsMayBeCutAnywhereByTheBuffer) {
    std::string table = "n,t\n";
    std::string expected;
    for (int number = 0; number < 40'000; ++number) {
        const std::string text(static_cast<std::size_t>(number % 37), 'x');
        table += std::to_string(number) + ",\"" + text + "\"\"\n,\"" + (number % 3 == 0 ? "\r\n" : "\n");
        expected += std::to_string(number) + text + "\"\n,\n";
    }
    EXPECT_EQ(RunUql({"--csv", "@n + @t", "-"}, table), Prints(expected));
    EXPECT_EQ(RunUql({"--csv", "-j", "3", "@n + @t", "-"}, table), Prints(expected));
}

TEST(UqlRawInput, EachLineIsAString) {
    EXPECT_EQ(RunUql({"--raw-input", "-o", "json", "$this", "-"}, "a b\r\n\n\"c\"\xFF\n last"),
              (UqlRun{0, "\"a b\"\n\"\"\n\"\\\"c\\\"\xEF\xBF\xBD\"\n\" last\"\n",
                      "uql: -: warning: 1 piece of malformed UTF-8 was replaced by U+FFFD\n"}));
    EXPECT_EQ(RunUql({"--raw-input", "$Length + $ToUpper", "-"}, "abc\nx\n"), Prints("3ABC\n1X\n"));
    EXPECT_EQ(RunUql({"--raw-input", "$Length", "-"}, std::string("a\0b\n", 4)), Prints("3\n"));
    EXPECT_EQ(RunUql({"--raw-input", "$this", "-"}, ""), Prints(""));
    EXPECT_EQ(RunUql({"--raw-input", "$this", "-"}, "\xEF\xBB\xBF"
                                                    "a\n"),
              Prints("a\n"));
}

TEST(UqlRawInput, LinesMayBeFilteredAsTheyStand) {
    EXPECT_EQ(RunUql({"--raw-input", "--filter", "$Contains('a')", "-"}, "a\xFF\r\nb\nba"),
              (UqlRun{0, "a\xFF\r\nba\n", "uql: -: warning: 1 piece of malformed UTF-8 was replaced by U+FFFD\n"}));
}

TEST(UqlRawInput, LinesAreCountedAsRecords) {
    EXPECT_EQ(RunUql({"--raw-input", "--on-error", "null", "1 / $ToInt()", "-"}, "1\nx\n"),
              Fails("uql: -: record 2: Cannot convert string 'x' to Integer\n  1 / $ToInt()\n      ^\n"
                    "uql: 1 of 2 records failed\n",
                    "1\nnull\n"));
}

TEST(UqlRecordFormats, ExcludeWhatTheyCannotGoWith) {
    const auto misuse = [](const std::string& message) {
        return UqlRun{2, "", "uql: " + message + "\nTry `uql --help`.\n"};
    };
    EXPECT_EQ(RunUql({"--csv", "--raw-input", "1", "-"}), misuse("--csv, --tsv and --raw-input exclude each other"));
    EXPECT_EQ(RunUql({"--raw-input", "--var", "1", "1", "-"}), misuse("--raw-input excludes --var and --com-var"));
    EXPECT_EQ(RunUql({"--raw-input", "--arg", "a", "1", "1", "-"}), misuse("--raw-input excludes --arg and --argjson"));
    EXPECT_EQ(RunUql({"--raw-input", "1"}), misuse("--raw-input needs INPUT"));
}

TEST(UqlArguments, AreMembersOfTheVariable) {
    EXPECT_EQ(
        RunUql({"--arg", "name", "x y", "--argjson", "list", "[1, {\"a\": 2}]", "-o", "typed", "$list.Last.a + 1"}),
        Prints("int\t3\n"));
    EXPECT_EQ(RunUql({"--arg", "n", "5", "-o", "typed", "$n"}), Prints("string\t5\n"));
    EXPECT_EQ(RunUql({"--arg", "n", "-5", "--argjson", "m", "-6", "-e", "$n + $m"}), Prints("-5-6\n"));
    EXPECT_EQ(RunUql({"--arg", "n", "5", "-o", "json", "$this"}), Prints("{\"n\":\"5\"}\n"));
    EXPECT_EQ(RunUql({"--argjson", "least", "2", "-j", "2", "--filter", "@this >= $least", "-"}, "1 2 3"),
              Prints("2\n3\n"));
}

TEST(UqlArguments, WhatIsWrongWithThemIsSaid) {
    const auto misuse = [](const std::string& message) {
        return UqlRun{2, "", "uql: " + message + "\nTry `uql --help`.\n"};
    };
    EXPECT_EQ(RunUql({"--arg", "a", "1", "--var", "1", "1"}),
              misuse("--arg and --argjson exclude --var and --com-var"));
    EXPECT_EQ(RunUql({"--arg", "a", "1", "--argjson", "a", "1", "1"}), misuse("the argument 'a' is given twice"));
    EXPECT_EQ(RunUql({"--arg", "a"}).status, 2);
    const UqlRun run = RunUql({"--argjson", "a", "{", "1"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("uql: the argument 'a': line 1, column 2: "));
}

} // namespace
} // namespace OrvUQL::Tests
