// What is typed and shown at a terminal.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(UqlTerminal, EachLineOfAHelpListingIsShown) {
    EXPECT_THAT(RunUqlAtTerminal({"(1 = 1).help()"}).out, HasSubstr("bool.ToBool()\nbool.ToInt()\n"));
    // Which elsewhere is printed as it is.
    EXPECT_THAT(RunUql({"(1 = 1).help()"}).out, StartsWith("bool.ToBool()\rbool.ToInt()\rb"));
}

TEST(UqlTerminal, ResultsAndErrorsAreShown) {
    const UqlRun good = RunUqlAtTerminal({"'ä€' + 1"});
    EXPECT_EQ(good.status, 0);
    EXPECT_THAT(good.out, HasSubstr("ä€1\n"));
    const UqlRun bad = RunUqlAtTerminal({"'ä€' + 1 / 0"});
    EXPECT_EQ(bad.status, 1);
    EXPECT_THAT(bad.out, HasSubstr("uql: Division By Zero\n  'ä€' + 1 / 0\n           ^\n"));
}

TEST(UqlTerminal, AQueryMayBeTyped) {
    const UqlRun run = RunUqlAtTerminal({"-o", "json", "-f", "-"}, "'ä\n€' +\n\n2\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, EndsWith("\"ä\\n€2\"\n")); // the Enter key is one line feed
}

TEST(UqlTerminal, EachLineOfInputIsAnswered) {
    const UqlRun run = RunUqlAtTerminal({"'<' + @this + '>'", "-"}, "1 2\n[3\n]\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("<1>\n<2>\n"));
    EXPECT_THAT(run.out, HasSubstr("<(3)>\n"));
}

} // namespace
} // namespace OrvUQL::Tests
