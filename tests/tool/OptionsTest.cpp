// What the command line means.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(UqlOptions, EvaluatesTheFirstArgument) { EXPECT_EQ(RunUql({"'abc'.Length() + 2 * 3"}), Prints("9\n")); }

TEST(UqlOptions, AQueryMayBeginWithAMinusSign) {
    EXPECT_EQ(RunUql({"-(1) * 2"}), Prints("-2\n"));
    EXPECT_EQ(RunUql({"-1"}), Prints("-1\n"));
    EXPECT_EQ(RunUql({"-sqrt(4)"}), Prints("-2\n"));
    // Not the option -e, -f, -o or -j with something attached.
    EXPECT_EQ(RunUql({"-'5'.Length()"}), Prints("-1\n"));
    EXPECT_EQ(RunUql({"-false"}).status, RunUql({"-e", "-false"}).status);
    EXPECT_EQ(RunUql({"-false"}).out, RunUql({"-e", "-false"}).out);
}

TEST(UqlOptions, NothingIsAnOptionBehindTwoMinusSigns) {
    EXPECT_EQ(RunUql({"--", "-1"}), Prints("-1\n"));
    EXPECT_EQ(RunUql({"-o", "typed", "--", "-1"}), Prints("int\t-1\n"));
    const TestFile input("1 2");
    EXPECT_EQ(RunUql({"--", "-1", input.GetPath()}), Prints("-1\n-1\n"));
    EXPECT_EQ(RunUql({"--"}).status, 2);
}

TEST(UqlOptions, OptionsMayStandBeforeAndBehindTheQuery) {
    EXPECT_EQ(RunUql({"-o", "typed", "1 + 1"}), Prints("int\t2\n"));
    EXPECT_EQ(RunUql({"1 + 1", "-o", "typed"}), Prints("int\t2\n"));
    EXPECT_EQ(RunUql({"--precision", "3", "-1", "-o", "json"}), Prints("-1\n"));
    EXPECT_EQ(RunUql({"--precision=3", "-1"}), Prints("-1\n"));
    EXPECT_EQ(RunUql({"-j4", "-1"}), Prints("-1\n"));
}

TEST(UqlOptions, AnOptionTakesTheNextArgumentWhateverItIs) {
    EXPECT_EQ(RunUql({"--props", "-5", "@this"}), Prints("-5\n"));
    EXPECT_EQ(RunUql({"-e", "-1"}), Prints("-1\n"));
    EXPECT_EQ(RunUql({"-e", "-e"}), RunUql({"-(e)"})); // the number e, negated
}

TEST(UqlOptions, EGivesAQueryThatCouldBeTakenForACommand) {
    EXPECT_EQ(RunUql({"-e", "test"}), Fails("uql: Identifier 'test' is not a method of 'global'\n  test\n  ^\n"));
    const TestFile input("1 2");
    EXPECT_EQ(RunUql({"-e", "@this * 2", input.GetPath()}), Prints("2\n4\n"));
    EXPECT_EQ(RunUql({input.GetPath(), "-e", "@this * 2"}), Prints("2\n4\n"));
}

TEST(UqlOptions, FReadsTheQueryFromAFile) {
    const TestFile query("1 +\n  2\n", ".uql");
    EXPECT_EQ(RunUql({"-f", query.GetPath()}), Prints("3\n"));
    EXPECT_EQ(RunUql({"-f", "-"}, "'ä' + 1\n"), Prints("ä1\n"));
    const TestFile marked("\xEF\xBB\xBF"
                          "1 + 1",
                          ".uql");
    EXPECT_EQ(RunUql({"-f", marked.GetPath()}), Prints("2\n"));
    const TestFile input("5");
    EXPECT_EQ(RunUql({"-f", query.GetPath(), input.GetPath()}), Prints("3\n"));
    EXPECT_EQ(RunUql({"-f", "/no/such/file"}), Fails("uql: /no/such/file: " + GetMissingFileReason() + "\n"));
}

TEST(UqlOptions, AQueryWithANulCharacterIsNotCutShort) {
    EXPECT_EQ(RunUql({"-f", "-"}, std::string_view("1\0 + 1", 6)), Fails("uql: the query holds a NUL character\n"));
}

TEST(UqlOptions, PropsSetsThePropertySource) {
    EXPECT_EQ(RunUql({"--props", R"({"a": 5})", "@a"}), Prints("5\n"));
    EXPECT_EQ(RunUql({"--props=[1,2]", "@count"}).status, RunUql({"--props", "[1,2]", "@count"}).status);
    EXPECT_EQ(RunUql({"@this", "--props", "'"}).status, 1);
    const TestFile json("\xEF\xBB\xBF"
                        R"({"a": "from a file"})");
    EXPECT_EQ(RunUql({"--props", "@" + json.GetPath(), "@a"}), Prints("from a file\n"));
    EXPECT_EQ(RunUql({"--props", "@-", "@a"}, R"({"a": 1})"), Prints("1\n"));
    EXPECT_EQ(RunUql({"--props", "@/no/such/file", "@a"}),
              Fails("uql: /no/such/file: " + GetMissingFileReason() + "\n"));
}

TEST(UqlOptions, PropsNullIsTheNullValueAndNotNothing) {
    EXPECT_EQ(RunUql({"-o", "typed", "--props", "null", "@anything"}), Prints("null\tnull\n"));
    EXPECT_EQ(RunUql({"@anything"}),
              Fails("uql: Invalid use of '@anything' in the current context at position 0\n  @anything\n  ^\n"));
}

TEST(UqlOptions, VarSetsTheCurrentVariable) {
    EXPECT_EQ(RunUql({"--var", R"({"b": 2})", "$b + 1"}), Prints("3\n"));
    const TestFile json("[7]");
    EXPECT_EQ(RunUql({"--var", "@" + json.GetPath(), "$this"}), Prints("(7)\n"));
    const TestFile input("1 2");
    EXPECT_EQ(RunUql({"--var", "10", "$this + @this", input.GetPath()}), Prints("11\n12\n"));
}

TEST(UqlOptions, LengthsAreKnownUnlessNoUnitsIsGiven) {
    EXPECT_EQ(RunUql({"{2.54 cm} = {1 in}"}), Prints("true\n"));
    EXPECT_EQ(RunUql({"--no-units", "{1 in}"}),
              Fails("uql: Error parsing query: Unknown unit name 'in' at position 4\n  {1 in}\n     ^\n"));
}

TEST(UqlOptions, ResolutionIsPixelsInAKilometre) {
    EXPECT_EQ(RunUql({"{1 px}.BaseValue()"}), Prints("846.6666395733\n")); // 300 pixels an inch, nearly
    EXPECT_EQ(RunUql({"--resolution", "1000", "{1 px}.Convert('m').Value()"}), Prints("1\n"));
    EXPECT_EQ(RunUql({"--resolution", "-1", "1"}).status, 2);
    EXPECT_EQ(RunUql({"--resolution", "x", "1"}).status, 2);
}

TEST(UqlOptions, PrecisionIsTheUnitPrecision) {
    EXPECT_EQ(RunUql({"{1 mm} = {1.4 mm}"}), Prints("true\n"));
    EXPECT_EQ(RunUql({"--precision", "2", "{1 mm} = {1.4 mm}"}), Prints("false\n"));
    EXPECT_EQ(RunUql({"--precision", "1.5", "1"}).status, 2);
}

TEST(UqlOptions, HelpNamesEveryOption) {
    const UqlRun help = RunUql({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    for (const char* option :
         {"-e QUERY", "-f FILE", "--props JSON", "--var JSON", "--resolution N", "--no-units", "--precision N",
          "-o FORMAT", "-j N", "--keep-going", "-h,--help", "--version", "uql test FILE...", "Exit status"}) {
        EXPECT_THAT(help.out, HasSubstr(option));
    }
    EXPECT_EQ(RunUql({"-h"}), help);
    EXPECT_EQ(RunUql({"1 +", "--help"}), help);
}

TEST(UqlOptions, HelpOfTestTellsTheFormat) {
    const UqlRun help = RunUql({"test", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_THAT(help.out, StartsWith("Usage: uql test FILE...\n"));
    for (const char* line :
         {"set units 0", "set precision 3", "set props ", "set var ", "set global off", "?e ", "~ double"}) {
        EXPECT_THAT(help.out, HasSubstr(line));
    }
}

TEST(UqlOptions, NoArgumentsPrintTheUsage) {
    const UqlRun run = RunUql({});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("Usage: uql [OPTIONS] QUERY [INPUT...]\n"));
}

struct Misuse {
    std::vector<std::string> arguments;
    const char* message;
};

class UqlMisuse : public testing::TestWithParam<Misuse> {};

TEST_P(UqlMisuse, EndsWithStatus2) {
    const UqlRun run = RunUql(GetParam().arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("uql: ") + GetParam().message + "\nTry `uql --help`.\n");
}

INSTANTIATE_TEST_SUITE_P(
    UqlOptions, UqlMisuse,
    testing::Values(Misuse{{"-o", "typed"}, "a query is missing"},
                    Misuse{{"-e", "1", "-f", "file"}, "-e and -f exclude each other"},
                    Misuse{{"-e"}, "-e: 1 required QUERY missing"},
                    Misuse{{"1", "--no-such-option"}, "The following argument was not expected: --no-such-option"},
                    Misuse{{"1", "-o", "xml"}, "-o: xml not in {text,typed,json}"},
                    Misuse{{"-j", "0", "1"}, "-j: Value 0 not in range 1 to 1024"},
                    Misuse{{"--props", "1", "1", "file"}, "--props and INPUT exclude each other"},
                    Misuse{{"-f", "-", "-"}, "standard input can be read only once"},
                    Misuse{{"--props", "@-", "--var", "@-", "1"}, "standard input can be read only once"},
                    Misuse{{"test"}, "test: a file is missing"}));

} // namespace
} // namespace OrvUQL::Tests
