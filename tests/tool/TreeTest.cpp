// The elements of a query, in text, as JSON and for Graphviz.
#include "support/Effort.h"
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string Repeat(std::string_view text, int times) {
    std::string result;
    for (int time = 0; time < times; ++time) {
        result += text;
    }
    return result;
}

std::size_t CountLines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(UqlTree, EveryElementIsALineWithItsPosition) {
    EXPECT_EQ(RunUql({"tree", "1 + 2 * x"}), Prints("2  operator +\n"
                                                    "0    left: int 1\n"
                                                    "6    right: operator *\n"
                                                    "4      left: int 2\n"
                                                    "8      right: name x\n"));
}

TEST(UqlTree, ThereIsALineForEveryClassOfElements) {
    EXPECT_EQ(RunUql({"tree", "not (@size.Length = 2.5) ? 'it''s' : {2 cm}[.Value(, true, null)]"}),
              Prints("25  operator ?\n"
                     " 0    condition: operator not\n"
                     "18      operand: operator =\n"
                     "11        left: name .Length\n"
                     " 5          target: name @size\n"
                     "20        right: double 2.5\n"
                     "27    first: string 'it''s'\n"
                     "43    second: group []\n"
                     "37      source: unit 2 cm\n"
                     "45      inner: name .Value\n"
                     "          argument 1: (left out)\n"
                     "53        argument 2: bool true\n"
                     "59        argument 3: null\n"));
}

TEST(UqlTree, AValueTakesOneLine) {
    EXPECT_EQ(RunUql({"tree", "-f", "-"}, "'a\tb\r\nc\x01'"), Prints("0  string 'a\\tb\\r\\nc?'\n"));
    EXPECT_EQ(RunUql({"tree", "'" + Repeat("x", 300) + "'"}), Prints("0  string '" + Repeat("x", 200) + "...\n"));
}

TEST(UqlTree, PositionsCountCodeUnits) {
    EXPECT_EQ(RunUql({"tree", "'😀' + 1"}), Prints("5  operator +\n0    left: string '😀'\n7    right: int 1\n"));
}

TEST(UqlTree, AsJsonItIsOneLine) {
    EXPECT_EQ(RunUql({"tree", "--format", "json", "-f(, 'ä\"')"}),
              Prints("{\"kind\":\"operator\",\"position\":0,\"operator\":\"-\",\"operand\":"
                     "{\"kind\":\"name\",\"position\":1,\"name\":\"f\",\"member\":false,\"arguments\":[null,"
                     "{\"kind\":\"value\",\"position\":5,\"type\":\"string\",\"value\":\"ä\\\"\"}]}}\n"));
    EXPECT_EQ(RunUql({"tree", "--format", "json", "@a.b ? 1.5 : {1 cm}[null]"}),
              Prints("{\"kind\":\"operator\",\"position\":5,\"operator\":\"?\",\"condition\":"
                     "{\"kind\":\"name\",\"position\":3,\"name\":\"b\",\"member\":true,\"arguments\":[],\"target\":"
                     "{\"kind\":\"name\",\"position\":0,\"name\":\"@a\",\"member\":false,\"arguments\":[]}},\"first\":"
                     "{\"kind\":\"value\",\"position\":7,\"type\":\"double\",\"value\":1.5},\"second\":"
                     "{\"kind\":\"group\",\"position\":19,\"source\":"
                     "{\"kind\":\"value\",\"position\":13,\"type\":\"unit\",\"value\":"
                     "{\"value\":1,\"unit\":\"cm\",\"power\":1}},\"inner\":"
                     "{\"kind\":\"value\",\"position\":20,\"type\":\"null\",\"value\":null}}}\n"));
}

TEST(UqlTree, JsonCanBeReadAgain) {
    const UqlRun tree = RunUql({"tree", "--format", "json", "iif(a.b(1) < 2, max(3, 4), -5)[.c]"});
    ASSERT_EQ(tree.status, 0);
    EXPECT_EQ(
        RunUql({"@inner.name + @source.arguments.Count() + @source.arguments.Item(1).left.target.name", "-"}, tree.out),
        Prints("c3a\n"));
}

TEST(UqlTree, ForGraphvizThereIsANodeAnElementAndAnEdgeAChild) {
    EXPECT_EQ(RunUql({"tree", "--format", "dot", "'\"\\' + 1"}),
              Prints("digraph query {\n"
                     "  node [shape=box];\n"
                     "  n0 [label=\"operator +\", tooltip=\"position 5\"];\n"
                     "  n1 [label=\"string '\\\"\\\\'\", tooltip=\"position 0\"];\n"
                     "  n0 -> n1 [label=\"left\"];\n"
                     "  n2 [label=\"int 1\", tooltip=\"position 7\"];\n"
                     "  n0 -> n2 [label=\"right\"];\n"
                     "}\n"));
}

TEST(UqlTree, AQueryThatCannotBeParsedIsAnError) {
    EXPECT_EQ(RunUql({"tree", "1 + * 2"}),
              Fails("uql: Error parsing query: Unexpected token '*' at position 5\n  1 + * 2\n      ^\n"));
    EXPECT_EQ(RunUql({"tree", "--no-units", "{1 in}"}).status, 1);
}

TEST(UqlTree, NeedsAQueryAndTakesNoInput) {
    EXPECT_EQ(RunUql({"tree"}).err, "uql: a query is missing\nTry `uql --help`.\n");
    EXPECT_EQ(RunUql({"tree", "1", "file"}).status, 2);
    EXPECT_EQ(RunUql({"tree", "--format", "xml", "1"}).status, 2);
    EXPECT_EQ(RunUql({"-e", "tree"}).status, 1); // a query, and no name that the global object knows
    EXPECT_THAT(RunUql({"tree", "--help"}).out, StartsWith("Usage: uql tree [OPTIONS] QUERY\n"));
}

TEST(UqlTree, AMillionTerms) {
    const int terms = Effort(1'000'000);
    const UqlRun text = RunUql({"tree", "-f", "-"}, "0" + Repeat(" + 1", terms));
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(CountLines(text.out), 2U * terms + 1U);
    EXPECT_THAT(text.out.substr(0, 200), StartsWith(std::to_string(4 * terms - 2) + "  operator +\n"));
    EXPECT_THAT(text.out, HasSubstr("[" + std::to_string(terms - 1) + "] left: operator +\n"));
}

TEST(UqlTree, AHundredThousandTermsInTheOtherFormats) {
    const std::string query = "0" + Repeat(" + 1", 100'000);
    const UqlRun json = RunUql({"tree", "--format", "json", "-f", "-"}, query);
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(std::count(json.out.begin(), json.out.end(), '{'), 200'001);
    EXPECT_EQ(std::count(json.out.begin(), json.out.end(), '}'), 200'001);
    const UqlRun dot = RunUql({"tree", "--format", "dot", "-f", "-"}, query);
    EXPECT_EQ(dot.status, 0);
    EXPECT_EQ(CountLines(dot.out), 2U + 200'001U + 200'000U + 1U);
}

TEST(UqlTree, AChainOfAHundredThousandBranchesAndCalls) {
    EXPECT_EQ(CountLines(RunUql({"tree", "-f", "-"}, Repeat("a ? 1 : ", 100'000) + "2").out), 300'001U);
    EXPECT_EQ(CountLines(RunUql({"tree", "-f", "-"}, "1" + Repeat(".Abs()", 100'000)).out), 100'001U);
}

} // namespace
} // namespace OrvUQL::Tests
