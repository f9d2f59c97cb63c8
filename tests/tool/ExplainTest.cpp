// What came of every element of a query.
#include "support/Effort.h"
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::string Repeat(std::string_view text, int times) {
    std::string result;
    for (int time = 0; time < times; ++time) {
        result += text;
    }
    return result;
}

TEST(UqlExplain, EveryElementHasItsTypeAndValue) {
    EXPECT_EQ(RunUql({"explain", "'abc'.Length() + 2 * 1.5"}), Prints("15  operator +                double 6\n"
                                                                      " 6    left: name .Length      int 3\n"
                                                                      " 0      target: string 'abc'  string 'abc'\n"
                                                                      "19    right: operator *       double 3\n"
                                                                      "17      left: int 2           int 2\n"
                                                                      "21      right: double 1.5     double 1.5\n"));
    EXPECT_EQ(RunUql({"explain", "'abc'[.Length() + 1]"}), Prints(" 5  group []                int 4\n"
                                                                  " 0    source: string 'abc'  string 'abc'\n"
                                                                  "16    inner: operator +     int 4\n"
                                                                  " 7      left: name .Length  int 3\n"
                                                                  "18      right: int 1        int 1\n"));
    EXPECT_EQ(RunUql({"explain", "null"}), Prints("0  null  null\n"));
}

TEST(UqlExplain, WhatIsNotEvaluatedSaysSo) {
    EXPECT_EQ(RunUql({"explain", "1 < 2 ? 'yes' : no()"}), Prints(" 6  operator ?               string 'yes'\n"
                                                                  " 2    condition: operator <  bool true\n"
                                                                  " 0      left: int 1          int 1\n"
                                                                  " 4      right: int 2         int 2\n"
                                                                  " 8    first: string 'yes'    string 'yes'\n"
                                                                  "16    second: name no        not evaluated\n"));
    EXPECT_EQ(RunUql({"explain", "true or 1 / 0"}), Prints(" 5  operator or          bool true\n"
                                                           " 0    left: bool true    bool true\n"
                                                           "10    right: operator /  not evaluated\n"
                                                           " 8      left: int 1      not evaluated\n"
                                                           "12      right: int 0     not evaluated\n"));
    EXPECT_THAT(RunUql({"explain", "iif(false, 1 / 0, 'no')"}).out,
                HasSubstr("argument 2: operator /   not evaluated\n"));
}

TEST(UqlExplain, ExpressionsOfItemsTellHowOftenAndTheFirstThree) {
    EXPECT_EQ(RunUql({"explain", "array(5, 7).Convert($item + $index)"}),
              Prints("12  name .Convert             array (6,9)\n"
                     " 0    target: name array      array (5,7)\n"
                     " 6      argument 1: int 5     int 5\n"
                     " 9      argument 2: int 7     int 7\n"
                     "26    argument 1: operator +  2 times: int 6, 9\n"
                     "20      left: name $item      2 times: int 5, 7\n"
                     "28      right: name $index    2 times: int 1, 2\n"));
    EXPECT_THAT(RunUql({"explain", "array(1, 'x', 2.5, 3, 4).Convert($item)"}).out,
                HasSubstr("5 times: int 1, string 'x', double 2.5, ...\n"));
    // The iterator itself has another item each time; its text is empty.
    EXPECT_THAT(RunUql({"explain", "array(1, 2).ForEach(0, $This().item)"}).out, HasSubstr("2 times: int 1, 2\n"));
}

TEST(UqlExplain, TheElementWhereAFailureBeganHasTheError) {
    EXPECT_EQ(RunUql({"explain", "max(1, 2 / 0)"}), Fails("uql: Division By Zero\n  max(1, 2 / 0)\n           ^\n",
                                                          " 0  name max                  failed\n"
                                                          " 4    argument 1: int 1       int 1\n"
                                                          " 9    argument 2: operator /  error: Division By Zero\n"
                                                          " 7      left: int 2           int 2\n"
                                                          "11      right: int 0          int 0\n"));
    const UqlRun run = RunUql({"explain", "'x'.Foo().Length() = 'y'.Bar()"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "19  operator =                failed\n"
                       "10    left: name .Length      failed\n"
                       " 4      target: name .Foo     error: Identifier 'Foo' is not a method of 'string'\n"
                       " 0        target: string 'x'  string 'x'\n"
                       "25    right: name .Bar        not evaluated\n"
                       "21      target: string 'y'    not evaluated\n");
    EXPECT_EQ(RunUql({"explain", "null << 1"}).out, "5  operator <<     error: no value\n"
                                                    "0    left: null    null\n"
                                                    "8    right: int 1  int 1\n");
}

TEST(UqlExplain, ItGivesWhatEvaluationGives) {
    for (const char* const query :
         {"1 + 2 * 3 - 4 / 5", "'abc'.Length()", "max(1, 2, 3).ToString() + 'x'", "{2 cm} * {3 cm}",
          "array(3, 1, 2).Filter($item > 1).Join('-')", "not true or 1 <> 2 and 'a' = 'A'", "'a'[.ToUpper()]",
          "(1 = 1 ? 'x' : 'y').Repeat(3)", "-(2 ^ 10)", "'12'.RegReplaceEx('[0-9]', $ToInt() + 1)"}) {
        const UqlRun value = RunUql({"-o", "json", query});
        EXPECT_EQ(value.status, 0) << value.err;
        EXPECT_EQ(
            RunUql({"-o", "json", "@results.Item(1).value", "-"}, RunUql({"explain", "--format", "json", query}).out),
            value)
            << query;
    }
}

TEST(UqlExplain, AsJsonEachElementHasItsResults) {
    EXPECT_EQ(RunUql({"explain", "--format", "json", "true or x"}),
              Prints("{\"kind\":\"operator\",\"position\":5,\"operator\":\"or\",\"evaluated\":1,"
                     "\"results\":[{\"type\":\"bool\",\"value\":true}],\"left\":"
                     "{\"kind\":\"value\",\"position\":0,\"type\":\"bool\",\"value\":true,\"evaluated\":1,"
                     "\"results\":[{\"type\":\"bool\",\"value\":true}]},\"right\":"
                     "{\"kind\":\"name\",\"position\":8,\"name\":\"x\",\"member\":false,\"arguments\":[],"
                     "\"evaluated\":0,\"results\":[]}}\n"));
    const UqlRun failed = RunUql({"explain", "--format", "json", "1 + 2 / 0"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.out, HasSubstr("\"results\":[{\"error\":\"Division By Zero\"}],\"left\":"));
}

TEST(UqlExplain, ForGraphvizTheResultStandsBelowTheElement) {
    EXPECT_THAT(RunUql({"explain", "--format", "dot", "1 + 'x'"}).out,
                HasSubstr("n0 [label=\"operator +\\nstring '1x'\", tooltip=\"position 2\"];\n"));
}

TEST(UqlExplain, TheContextIsThatOfEvaluation) {
    EXPECT_EQ(RunUql({"explain", "--props", R"({"a": 2})", "--var", "3", "@a * $this"}),
              Prints("3  operator *           int 6\n"
                     "0    left: name @a      int 2\n"
                     "5    right: name $this  int 3\n"));
    EXPECT_THAT(RunUql({"explain", "--precision", "2", "{1 mm} = {1.4 mm}"}).out, HasSubstr("bool false\n"));
    EXPECT_EQ(RunUql({"explain", "--props", "{", "1"}).status, 1);
}

TEST(UqlExplain, RecordsAreExplainedOneByOne) {
    const UqlRun run = RunUql({"explain", "@a / 2", "-"}, "{\"a\": 4} {\"a\": \"x\"} {\"a\": 1}");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "-: record 1:\n"
                       "3  operator /       double 2\n"
                       "0    left: name @a  int 4\n"
                       "5    right: int 2   int 2\n"
                       "\n"
                       "-: record 2:\n"
                       "3  operator /       error: Cannot convert string 'x' to Double\n"
                       "0    left: name @a  string 'x'\n"
                       "5    right: int 2   int 2\n");
    EXPECT_THAT(run.err, StartsWith("uql: -: record 2: Cannot convert string 'x' to Double\n"));
    // What an element gave for one record is not told for the next.
    EXPECT_THAT(RunUql({"explain", "@this ? 1 : 2", "-"}, "true false").out,
                EndsWith(" 8    first: int 1           not evaluated\n"
                         "12    second: int 2          int 2\n"));
}

TEST(UqlExplain, InputMayHaveTheFormatsOfEvaluation) {
    EXPECT_EQ(RunUql({"explain", "--raw-input", "$Length()", "-"}, "abc\n"),
              Prints("-: record 1:\n0  name $Length  int 3\n"));
    EXPECT_EQ(RunUql({"explain", "--raw-input", "1"}).status, 2);
    EXPECT_EQ(RunUql({"explain", "1", "-"}, "1 [").err.substr(0, 10), "uql: -:1:4");
    if (RunUql({"--csv", "@a", "-"}, "a\n1\n").status == 0) { // not every build reads tables
        EXPECT_EQ(RunUql({"explain", "--csv", "@a + @b", "-"}, "a,b\n1,x\n"),
                  Prints("-: record 1:\n"
                         "3  operator +        string '1x'\n"
                         "0    left: name @a   string '1'\n"
                         "5    right: name @b  string 'x'\n"));
    }
}

TEST(UqlExplain, ChainsAreEvaluatedHoweverLong) {
    const int count = Effort(1'000'000);
    const UqlRun terms = RunUql({"explain", "-f", "-"}, "0" + Repeat(" + 1", count));
    EXPECT_EQ(terms.status, 0);
    EXPECT_THAT(terms.out.substr(0, 200), HasSubstr("operator +"));
    EXPECT_THAT(terms.out.substr(0, 200), HasSubstr("int " + std::to_string(count) + "\n"));
    EXPECT_THAT(terms.out, HasSubstr("not recorded\n")); // what is deeper than anybody reads
    const UqlRun branches = RunUql({"explain", "-f", "-"}, Repeat("false ? 1 : ", 100'000) + "2");
    EXPECT_EQ(branches.status, 0);
    EXPECT_THAT(branches.out.substr(0, 200), HasSubstr("int 2\n"));
    const UqlRun calls = RunUql({"explain", "-f", "-"}, "(-1)" + Repeat(".Abs()", 100'000));
    EXPECT_EQ(calls.status, 0);
    EXPECT_THAT(calls.out.substr(0, 200), HasSubstr("int 1\n"));
}

} // namespace
} // namespace OrvUQL::Tests
