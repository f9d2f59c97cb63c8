// `uql test`.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

UqlRun RunTest(std::string_view text) { return RunUql({"test", "-"}, text); }

/// A run of one file whose cases all pass.
UqlRun Passes(int cases) { return Prints(std::to_string(cases) + " passed, 0 failed\n"); }

/// A run of a file with an error in it.
UqlRun IsMalformed(const std::string& message) { return Fails("uql: -:" + message + "\n", "0 passed, 0 failed\n"); }

TEST(UqlTest, ComparesTypeAndText) {
    EXPECT_EQ(RunTest("? 'abc'.Length() + 2 * 3\n= int 9\n? '  x '\n= string   x \n? {1 in}.IsNull()\n"
                      "! Error parsing query: Unknown unit name 'in' at position 4\n"),
              Passes(3));
    EXPECT_EQ(RunTest("? 9\n= double 9\n"),
              UqlRun({1, "-:1: ? 9\n  expected: double 9\n  got:      int 9\n0 passed, 1 failed\n", ""}));
    EXPECT_EQ(RunTest("? 'a'\n= string a \n"),
              UqlRun({1, "-:1: ? 'a'\n  expected: string a \n  got:      string a\n0 passed, 1 failed\n", ""}));
}

TEST(UqlTest, AnEmptyTextNeedsNoBlank) { EXPECT_EQ(RunTest("? ''\n= string\n? ''\n= string \n"), Passes(2)); }

TEST(UqlTest, ComparesMessages) {
    EXPECT_EQ(
        RunTest("? 1 / 0\n! Division By Zero\n? null.ToInt()\n! Cannot convert the object 'null' to type 'Int'\n"),
        Passes(2));
    EXPECT_EQ(RunTest("? 1 / 0\n! Division by zero\n"),
              UqlRun({1,
                      "-:1: ? 1 / 0\n  expected: ! Division by zero\n  got:      ! Division By Zero\n"
                      "0 passed, 1 failed\n",
                      ""}));
    EXPECT_EQ(RunTest("? 1\n! Division By Zero\n").out,
              "-:1: ? 1\n  expected: ! Division By Zero\n  got:      int 1\n0 passed, 1 failed\n");
    EXPECT_EQ(RunTest("? 1 / 0\n= int 1\n").out,
              "-:1: ? 1 / 0\n  expected: int 1\n  got:      ! Division By Zero\n0 passed, 1 failed\n");
}

TEST(UqlTest, ALoneExclamationMarkIsNeitherValueNorMessage) {
    EXPECT_EQ(RunTest("? null << 1\n!\n? null << 1\n! \n"), Passes(2));
    EXPECT_EQ(RunTest("? 1\n!\n").out,
              "-:1: ? 1\n  expected: neither a value nor a message\n  got:      int 1\n0 passed, 1 failed\n");
    EXPECT_EQ(RunTest("? 1 / 0\n!\n").out, "-:1: ? 1 / 0\n  expected: neither a value nor a message\n"
                                           "  got:      ! Division By Zero\n0 passed, 1 failed\n");
    EXPECT_EQ(RunTest("? null << 1\n! x\n").out, "-:1: ? null << 1\n  expected: ! x\n"
                                                 "  got:      neither a value nor a message\n0 passed, 1 failed\n");
}

TEST(UqlTest, ComparesNumbersWithinATolerance) {
    EXPECT_EQ(
        RunTest("? sin(1)\n~ double 0.8414709848078965\n? sin(1)\n~ double 0.8414709848079\n"
                "? sin(1)\n~ double 0.84 0.01\n? 100\n~ int 101 1e-2\n? -(100)\n~ int -101 0.01\n? 0.0\n~ double 0\n"),
        Passes(6));
    EXPECT_EQ(RunTest("? 1.0\n~ double 1.00000000001\n").out,
              "-:1: ? 1.0\n  expected: about double 1.00000000001\n  got:      double 1\n0 passed, 1 failed\n");
    EXPECT_EQ(RunTest("? 1.0\n~ double 1.1 0.01\n").status, 1);
    EXPECT_EQ(RunTest("? 1\n~ double 1\n").status, 1);
    EXPECT_EQ(RunTest("? 1e-300\n~ double 0 1\n").status, 1); // relative to nothing is nothing
    EXPECT_EQ(RunTest("? 1e308 * 10\n~ double 1 1e300\n").status, 1);
    EXPECT_EQ(RunTest("set units 0\n? {1 in}.Convert('cm')\n~ unit 2.54\n"), Passes(1));
}

TEST(UqlTest, DecodesEscapes) {
    EXPECT_EQ(
        RunTest("?e 'a\\nb\\\\'.Length()\n= int 4\n? 'a\\nb'.Length()\n= int 4\n"
                "? chr(10) + chr(9) + chr(13) + '\\' + chr(228) + chr(55357)\n= string \\n\\t\\r\\\\\\u00e4\\uD83D\n"
                "?e '\\ud83d\\ude00'\n= string 😀\n? chr(0)\n= string \\u0000\n"),
        Passes(5));
    EXPECT_EQ(RunTest("?e '\\t'\n= string x\n").out,
              "-:1: ?e '\\t'\n  expected: string x\n  got:      string \\t\n0 passed, 1 failed\n");
    EXPECT_EQ(
        RunTest("? chr(55357) + chr(1)\n= string x\n").out,
        "-:1: ? chr(55357) + chr(1)\n  expected: string x\n  got:      string \\uD83D\\u0001\n0 passed, 1 failed\n");
}

TEST(UqlTest, SettingsHoldUntilTheyAreChanged) {
    EXPECT_EQ(RunTest("set units 1000\n? {1 px}.Convert('m').Value()\n= double 1\n? {1 mm} = {1.4 mm}\n= bool true\n"
                      "set precision 2\n? {1 mm} = {1.4 mm}\n= bool false\n? {1 mm} = {1.4 mm}\n= bool false\n"
                      "set units off\n? {1 mm}\n! Error parsing query: Unknown unit name 'mm' at position 4\n"),
              Passes(5));
    EXPECT_EQ(RunTest("? @a\n! Invalid use of '@a' in the current context at position 0\n"
                      "set props {\"a\": 1}\n? @a\n= int 1\nset props null\n? @a\n= null null\n"
                      "set props off\n? @a\n! Invalid use of '@a' in the current context at position 0\n"
                      "set var [1, 2]\n? $this\n= array (1,2)\nset var off\n"
                      "? $b\n! Invalid use of '$b' in the current context at position 0\n"),
              Passes(6));
    EXPECT_EQ(RunTest("? abs(-1)\n! Identifier 'abs' is not a method of 'global'\nset global off\n"
                      "? pi\n! Invalid use of 'pi' in the current context at position 0\nset global on\n"
                      "? max(1, 2)\n= int 2\n"),
              Passes(3));
}

TEST(UqlTest, SettingsEndWithTheirFile) {
    const TestFile first("set global off\n? pi\n! Invalid use of 'pi' in the current context at position 0\n", ".uqlt");
    const TestFile second("? max(1, 2)\n= int 2\n", ".uqlt");
    EXPECT_EQ(RunUql({"test", first.GetPath(), second.GetPath()}), Passes(2));
}

TEST(UqlTest, CommentsAndBlankLinesAreIgnored) {
    EXPECT_EQ(RunTest("# ? 1\n\n \t\n? 1\n# between\n\n= int 1\n#\n"), Passes(1));
}

TEST(UqlTest, LineBreaksOfWindowsAndAByteOrderMarkAreIgnored) {
    EXPECT_EQ(RunTest("\xEF\xBB\xBF? 'a'\r\n= string a\r\n\r\n? 2\r\n= int 2"), Passes(2));
}

TEST(UqlTest, AQueryMayBeEmpty) {
    EXPECT_EQ(RunTest("?\n! Error parsing query: Unexpected end of line at position 1\n"
                      "? \n! Error parsing query: Unexpected end of line at position 1\n"
                      "?e \\t\n! Error parsing query: Unexpected end of line at position 2\n"),
              Passes(3));
}

TEST(UqlTest, FailuresNameFileAndLine) {
    const TestFile file("# first line\n? 1\n= int 1\n? 2\n= int 3\n", ".uqlt");
    EXPECT_EQ(RunUql({"test", file.GetPath()}),
              UqlRun({1, file.GetPath() + ":4: ? 2\n  expected: int 3\n  got:      int 2\n1 passed, 1 failed\n", ""}));
}

TEST(UqlTest, NothingRunIsAFailure) {
    EXPECT_EQ(RunTest(""), UqlRun({1, "0 passed, 0 failed\n", ""}));
    EXPECT_EQ(RunTest("# nothing\nset units 0\n"), UqlRun({1, "0 passed, 0 failed\n", ""}));
}

TEST(UqlTest, AMissingFileIsAnError) {
    const TestFile good("? 1\n= int 1\n", ".uqlt");
    EXPECT_EQ(RunUql({"test", "/no/such/file", good.GetPath()}),
              Fails("uql: /no/such/file: " + GetMissingFileReason() + "\n", "1 passed, 0 failed\n"));
}

TEST(UqlTest, AMalformedFileIsNotRunAndAnError) {
    const TestFile good("? 1\n= int 1\n", ".uqlt");
    const TestFile bad("? 1\n= int 1\nnonsense\n", ".uqlt");
    EXPECT_EQ(
        RunUql({"test", bad.GetPath(), good.GetPath()}),
        Fails("uql: " + bad.GetPath() + ":3: the line begins with none of # set ? ?e = ~ !\n", "1 passed, 0 failed\n"));
}

struct Malformed {
    const char* text;
    const char* error; ///< "LINE: MESSAGE"
};

void PrintTo(const Malformed& malformed, std::ostream* out) { *out << malformed.text; }

class UqlMalformedTest : public testing::TestWithParam<Malformed> {};

TEST_P(UqlMalformedTest, IsReportedWithItsLine) { EXPECT_EQ(RunTest(GetParam().text), IsMalformed(GetParam().error)); }

INSTANTIATE_TEST_SUITE_P(
    UqlTest, UqlMalformedTest,
    testing::Values(Malformed{"? 1\n", "1: the last query has no expectation"},
                    Malformed{"? 1\n? 2\n= int 2\n", "2: the query before this one has no expectation"},
                    Malformed{"= int 1\n", "1: an expectation without a query before it"},
                    Malformed{"? 1\n= int 1\n= int 1\n", "3: an expectation without a query before it"},
                    Malformed{"? 1\nset units 0\n= int 1\n", "2: a setting between a query and what it gives"},
                    Malformed{"?1\n= int 1\n", "1: the line begins with none of # set ? ?e = ~ !"},
                    Malformed{" ? 1\n= int 1\n", "1: the line begins with none of # set ? ?e = ~ !"},
                    Malformed{"?e \\q\n= int 1\n", "1: unknown escape '\\q'"},
                    Malformed{"?e \\u12\n= int 1\n", "1: unknown escape '\\u12'"},
                    Malformed{"?e \\u-001\n= int 1\n", "1: unknown escape '\\u-001'"},
                    Malformed{"?e \\\n= int 1\n", "1: unknown escape '\\'"},
                    Malformed{"? 1\n= int \\x\n", "2: unknown escape '\\x'"},
                    Malformed{"? 1\n! \\x\n", "2: unknown escape '\\x'"},
                    Malformed{"?e \\u0000\n= int 1\n", "1: a query ends at U+0000"},
                    Malformed{"? 1\n=\n", "2: a type name is missing"},
                    Malformed{"? 1\n= \n", "2: a type name is missing"},
                    Malformed{"? 1\n~ double\n", "2: a number is missing after the type name"},
                    Malformed{"? 1\n~ double inf\n", "2: a number is missing after the type name"},
                    Malformed{"? 1\n~ double 1 x\n", "2: the tolerance is no number from 0"},
                    Malformed{"? 1\n~ double 1 -1\n", "2: the tolerance is no number from 0"},
                    Malformed{"set units\n", "1: `set units` takes a resolution or off"},
                    Malformed{"set units on\n", "1: `set units` takes a resolution or off"},
                    Malformed{"set precision 1.5\n", "1: `set precision` takes an integer"},
                    Malformed{"set global yes\n", "1: `set global` takes on or off"},
                    Malformed{"set colour red\n", "1: there is no setting 'colour'"},
                    Malformed{"# \xFF\n", "1: the line is not UTF-8"}));

TEST(UqlTest, SettingsThatAreNoJsonAreErrors) {
    const UqlRun run = RunTest("\nset props {\"a\" 1}\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.substr(0, 63), "uql: -:2: `set props` takes JSON or off; column 6 of the JSON: ");
}

} // namespace
} // namespace OrvUQL::Tests
