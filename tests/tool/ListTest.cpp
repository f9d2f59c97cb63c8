// What `--list` and `--version` tell.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(UqlList, MethodsOfATypeAreThoseOfItsHelp) {
    for (const auto& [type, value] : std::vector<std::pair<std::string, std::string>>{{"null", "null"},
                                                                                      {"bool", "true"},
                                                                                      {"int", "(1)"},
                                                                                      {"double", "(1.5)"},
                                                                                      {"string", "'a'"},
                                                                                      {"array", "array()"},
                                                                                      {"unit", "{1 cm}"}}) {
        std::string help = RunUql({value + ".help()"}).out;
        std::replace(help.begin(), help.end(), '\r', '\n');
        EXPECT_EQ(RunUql({"--list", "methods", type}), Prints(help));
    }
    EXPECT_THAT(RunUql({"--list", "methods", "ARRAY"}).out, StartsWith("array.Count()\n"));
    EXPECT_THAT(RunUql({"--list", "methods", "object"}).out, StartsWith("object.Get(string)\nobject.Keys()\n"));
    EXPECT_EQ(RunUql({"--list", "methods", "iterator"}).out.substr(0, 9), "iterator.");
}

TEST(UqlList, MethodsWithoutATypeAreThoseOfAll) {
    const std::string all = RunUql({"--list", "methods"}).out;
    for (const char* const line : {"null.ToBool()", "int.Abs()", "string.SubStr(int, [int])", "array.Join(",
                                   "unit.Unit()", "object.Keys()", "int.TypeName() {Static}"}) {
        EXPECT_THAT(all, HasSubstr(line));
    }
    EXPECT_THAT(all, Not(HasSubstr("global.")));
}

TEST(UqlList, FunctionsAreCalledByTheirNames) {
    EXPECT_THAT(RunUql({"--list", "functions"}).out,
                testing::AllOf(StartsWith("bool()\n"), HasSubstr("\nsqrt(double)\n"),
                               HasSubstr("\niif(bool, expression, expression)\n")));
}

TEST(UqlList, UnitsHaveTheirSizes) {
    EXPECT_THAT(RunUql({"--list", "units"}).out, HasSubstr("\nin  0.0254 m\ncm  0.01 m\nmm  0.001 m\n"));
    EXPECT_THAT(RunUql({"--list", "units", "--resolution", "1000"}).out, StartsWith("px  1 m\n"));
}

TEST(UqlList, AnUnknownTypeIsAnError) {
    const UqlRun run = RunUql({"--list", "methods", "strin"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "uql: there is no type 'strin'\n  did you mean 'string'?\n");
    EXPECT_EQ(RunUql({"--list"}).err, "uql: --list needs one of methods, functions and units\nTry `uql --help`.\n");
    EXPECT_EQ(RunUql({"--list", "types"}).status, 2);
    EXPECT_EQ(RunUql({"--list", "units", "x"}).status, 2);
    EXPECT_EQ(RunUql({"--list", "methods", "int", "x"}).status, 2);
}

TEST(UqlVersion, TellsWhatItWasBuiltWith) {
    const UqlRun run = RunUql({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, StartsWith("uql " UQL_VERSION "\nlibrary: OrvUQL " UQL_VERSION "\ncompiler: "));
    for (const char* const fact : {"\nsystem: ", "\nbuild type: ", "\nJSON reader: ", "\nline editor: "}) {
        EXPECT_THAT(run.out, HasSubstr(fact));
    }
    EXPECT_EQ(RunUql({"tree", "--version"}), run);
}

} // namespace
} // namespace OrvUQL::Tests
