// The options for automation objects on a system that has none.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(UqlCom, NeedsWindows) {
    const UqlRun com = RunUql({"--com", "Scripting.Dictionary", "@Count"});
    EXPECT_EQ(com, UqlRun({2, "", "uql: --com needs Windows\nTry `uql --help`.\n"}));
    const UqlRun variable = RunUql({"--com-var=Scripting.Dictionary", "$Count"});
    EXPECT_EQ(variable, UqlRun({2, "", "uql: --com-var needs Windows\nTry `uql --help`.\n"}));
    EXPECT_THAT(RunUql({"--help"}).out, Not(HasSubstr("PROGID")));
}

} // namespace
} // namespace OrvUQL::Tests
