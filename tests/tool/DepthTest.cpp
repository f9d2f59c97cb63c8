// Depth comes from the input, and must not be what ends the process.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

std::string Repeat(std::string_view text, int times) {
    std::string result;
    for (int time = 0; time < times; ++time) {
        result += text;
    }
    return result;
}

constexpr int million = 1'000'000;

TEST(UqlDepth, AMillionArrays) {
    const std::string json = Repeat("[", million) + Repeat("]", million);
    EXPECT_TRUE(RunUql({"-o", "json", "@this", "-"}, json) == Prints(json + "\n"));
    EXPECT_TRUE(RunUql({"@this", "-"}, json) == Prints(Repeat("(", million) + Repeat(")", million) + "\n"));
}

TEST(UqlDepth, AMillionObjects) {
    const std::string json = Repeat("{\"a\":", million) + "1" + Repeat("}", million);
    EXPECT_TRUE(RunUql({"-o", "json", "@this", "-"}, json) == Prints(json + "\n"));
    EXPECT_TRUE(RunUql({"@this", "-"}, json) == Prints(json + "\n"));
}

TEST(UqlDepth, ObjectsAndArraysInTurn) {
    const std::string json = Repeat("[{\"a\":", million / 2) + "1" + Repeat("}]", million / 2);
    EXPECT_TRUE(RunUql({"-o", "json", "@this", "-"}, json) == Prints(json + "\n"));
    EXPECT_TRUE(RunUql({"@this", "-"}, json) == Prints("(" + json.substr(1, json.size() - 2) + ")\n"));
}

TEST(UqlDepth, AMillionBracketsThatNobodyCloses) {
    const UqlRun run = RunUql({"@this", "-"}, Repeat("[", million));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.substr(0, 33), "uql: -: line 1, column 1000001: s");
}

TEST(UqlDepth, AMillionTerms) { EXPECT_EQ(RunUql({"-f", "-"}, "0" + Repeat(" + 1", million)), Prints("1000000\n")); }

} // namespace
} // namespace OrvUQL::Tests
