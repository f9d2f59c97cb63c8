// The caret under the place of an error.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

UqlRun RunFile(const std::string& query) { return RunUql({"-f", "-"}, query); }

TEST(UqlErrorReport, AParseErrorPointsAtTheToken) {
    EXPECT_EQ(RunUql({"1 + * 2"}),
              Fails("uql: Error parsing query: Unexpected token '*' at position 5\n  1 + * 2\n      ^\n"));
    EXPECT_EQ(RunUql({""}), Fails("uql: Error parsing query: Unexpected end of line at position 1\n  \n  ^\n"));
    EXPECT_EQ(RunUql({"a ? b"}), Fails("uql: Error parsing query: ':' expected at position 6\n  a ? b\n       ^\n"));
}

TEST(UqlErrorReport, AnEvaluationErrorPointsAtTheElementThatFailed) {
    EXPECT_EQ(RunUql({"1 + 2 / 0"}), Fails("uql: Division By Zero\n  1 + 2 / 0\n        ^\n"));
    EXPECT_EQ(RunUql({"max(1, (-1).Foo())"}),
              Fails("uql: Identifier 'Foo' is not a method of 'int'\n  max(1, (-1).Foo())\n              ^\n"));
}

TEST(UqlErrorReport, AFailureWithoutAMessageSaysSo) {
    EXPECT_EQ(RunUql({"null << 1"}), Fails("uql: the query has no value\n  null << 1\n       ^\n"));
}

TEST(UqlErrorReport, OfSeveralLinesTheOneWithTheErrorIsShown) {
    EXPECT_EQ(RunFile("1 +\n2 / 0\n+ 3\n"), Fails("uql: Division By Zero\n  2 / 0\n    ^\n"));
    EXPECT_EQ(RunFile("1 +\r\n2 / 0\r\n+ 3\r\n"), Fails("uql: Division By Zero\n  2 / 0\n    ^\n"));
    EXPECT_EQ(RunFile("1 / 0\n"), Fails("uql: Division By Zero\n  1 / 0\n    ^\n"));
}

TEST(UqlErrorReport, WhatIsMissingAtTheEndIsMissingBehindTheLastText) {
    EXPECT_EQ(RunFile("1 +\n"),
              Fails("uql: Error parsing query: Unexpected end of line at position 5\n  1 +\n     ^\n"));
    EXPECT_EQ(RunFile("1 +  \n\n\n"),
              Fails("uql: Error parsing query: Unexpected end of line at position 9\n  1 +  \n       ^\n"));
    EXPECT_EQ(RunFile("\n\n"), Fails("uql: Error parsing query: Unexpected end of line at position 3\n  \n  ^\n"));
}

TEST(UqlErrorReport, TabsStandInBothLines) {
    EXPECT_EQ(RunFile("\t1\t/ 0"), Fails("uql: Division By Zero\n  \t1\t/ 0\n  \t \t^\n"));
}

TEST(UqlErrorReport, ASurrogatePairIsOneColumn) {
    EXPECT_EQ(RunUql({"'ä😀' + 1 / 0"}), Fails("uql: Division By Zero\n  'ä😀' + 1 / 0\n           ^\n"));
}

} // namespace
} // namespace OrvUQL::Tests
