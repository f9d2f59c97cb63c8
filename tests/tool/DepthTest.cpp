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
constexpr int deepest = 10'000; // as documented

/// Runs the query with each reader of JSON, which have to agree.
UqlRun RunBoth(const std::string& query, const std::string& json, const std::string& format = "json") {
    UqlRun run = RunUql({"-o", format, query, "-"}, json);
    EXPECT_TRUE(RunUql({"-o", format, "--json-reader", "nlohmann", query, "-"}, json) == run);
    return run;
}

TEST(UqlDepth, ArraysDownToTheLimit) {
    const std::string json = Repeat("[", deepest) + Repeat("]", deepest);
    EXPECT_TRUE(RunBoth("@this", json) == Prints(json + "\n"));
    EXPECT_TRUE(RunBoth("@this", json, "text") == Prints(Repeat("(", deepest) + Repeat(")", deepest) + "\n"));
    EXPECT_TRUE(RunUql({"-o", "json", "--props", json, "@this"}) == Prints(json + "\n"));
}

TEST(UqlDepth, ObjectsDownToTheLimit) {
    const std::string json = Repeat("{\"a\":", deepest) + "1" + Repeat("}", deepest);
    EXPECT_TRUE(RunBoth("@this", json) == Prints(json + "\n"));
    EXPECT_TRUE(RunBoth("@this", json, "text") == Prints(json + "\n"));
    EXPECT_TRUE(RunBoth("@a" + Repeat(".a", deepest - 1), json) == Prints("1\n"));
}

TEST(UqlDepth, ObjectsAndArraysInTurnDownToTheLimit) {
    const std::string json = Repeat("[{\"a\":", deepest / 2) + "1" + Repeat("}]", deepest / 2);
    EXPECT_TRUE(RunBoth("@this", json) == Prints(json + "\n"));
    EXPECT_TRUE(RunBoth("@this", json, "text") == Prints("(" + json.substr(1, json.size() - 2) + ")\n"));
}

TEST(UqlDepth, WhatIsNestedDeeperIsAnError) {
    for (const int depth : {deepest + 1, 100'000}) {
        for (const char* opening : {"[", "{\"a\":"}) {
            const char* const closing = *opening == '[' ? "]" : "}";
            const std::string json = Repeat(opening, depth) + "1" + Repeat(closing, depth);
            const std::size_t column = std::string(opening).size() * deepest + 1;
            const std::string message = "nested deeper than 10000 levels\n";
            const std::string place = std::to_string(column) + ": ";
            EXPECT_EQ(RunBoth("@this", json), Fails("uql: -:1:" + place + "record 1: " + message));
            const TestFile file(json);
            EXPECT_EQ(RunUql({"--props", "@" + file.GetPath(), "@this"}),
                      Fails("uql: the property source: line 1, column " + place + message));
        }
    }
}

TEST(UqlDepth, WhatIsNestedDeeperEndsWithItsLine) {
    EXPECT_EQ(RunUql({"--keep-going", "@this", "-"}, Repeat("[", million) + "]\n7\n" + Repeat("[\n", 20'000)).out,
              "7\n");
}

TEST(UqlDepth, AMillionBracketsThatNobodyCloses) {
    EXPECT_EQ(RunBoth("@this", Repeat("[", million)),
              Fails("uql: -:1:10001: record 1: nested deeper than 10000 levels\n"));
}

TEST(UqlDepth, AMillionTerms) { EXPECT_EQ(RunUql({"-f", "-"}, "0" + Repeat(" + 1", million)), Prints("1000000\n")); }

} // namespace
} // namespace OrvUQL::Tests
