// Results in the three output formats.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

UqlRun Json(const std::string& query) { return RunUql({"-o", "json", "-e", query}); }
UqlRun Typed(const std::string& query) { return RunUql({"-o", "typed", "-e", query}); }

TEST(UqlPrinting, TextIsTheDefault) {
    EXPECT_EQ(RunUql({"1.50"}), Prints("1.5\n"));
    EXPECT_EQ(RunUql({"-o", "text", "'it''s'"}), Prints("it's\n"));
    EXPECT_EQ(RunUql({"null"}), Prints("null\n"));
    EXPECT_EQ(RunUql({"''"}), Prints("\n"));
    EXPECT_EQ(RunUql({"array(1, 'b', null)"}), Prints("(1,b,null)\n"));
}

TEST(UqlPrinting, TypedPutsTheTypeInFront) {
    EXPECT_EQ(Typed("1"), Prints("int\t1\n"));
    EXPECT_EQ(Typed("1.0"), Prints("double\t1\n"));
    EXPECT_EQ(Typed("{2 cm}"), Prints("unit\t2 cm\n"));
    EXPECT_EQ(Typed("1 = 1"), Prints("bool\ttrue\n"));
}

TEST(UqlPrinting, LineBreaksInAValueArePrintedAsTheyAre) {
    EXPECT_EQ(RunUql({"'a' + chr(10) + 'b' + chr(13) + 'c'"}), Prints("a\nb\rc\n"));
}

TEST(UqlPrinting, TextIsUtf8) {
    EXPECT_EQ(RunUql({"'ä€😀'"}), Prints("ä€😀\n"));
    EXPECT_EQ(RunUql({"chr(55357)"}), Prints("\xEF\xBF\xBD\n")); // an unpaired surrogate has no UTF-8
}

TEST(UqlPrinting, JsonOfScalars) {
    EXPECT_EQ(Json("null"), Prints("null\n"));
    EXPECT_EQ(Json("1 = 1"), Prints("true\n"));
    EXPECT_EQ(Json("1 = 2"), Prints("false\n"));
    EXPECT_EQ(Json("-(2147483647) - 1"), Prints("-2147483648\n"));
    EXPECT_EQ(Json("1.5"), Prints("1.5\n"));
    EXPECT_EQ(Json("1e300"), Prints("1e+300\n"));
}

TEST(UqlPrinting, JsonOfStrings) {
    EXPECT_EQ(Json("'s'"), Prints("\"s\"\n"));
    EXPECT_EQ(Json("'\"\\/ä😀'"), Prints("\"\\\"\\\\/ä😀\"\n"));
    EXPECT_EQ(Json("chr(8) + chr(9) + chr(10) + chr(12) + chr(13) + chr(0) + chr(31) + chr(127)"),
              Prints("\"\\b\\t\\n\\f\\r\\u0000\\u001f\x7F\"\n"));
}

TEST(UqlPrinting, JsonOfWhatJsonHasNoFormForIsNull) {
    EXPECT_EQ(Json("1e308 * 10"), Prints("null\n"));
    EXPECT_EQ(Json("-(1e308 * 10)"), Prints("null\n"));
    EXPECT_EQ(Json("1e308 * 10 - 1e308 * 10"), Prints("null\n"));
    EXPECT_EQ(Json("array(1e308 * 10, 1)"), Prints("[null,1]\n"));
}

TEST(UqlPrinting, JsonOfUnits) {
    EXPECT_EQ(Json("{2.54 cm}"), Prints("{\"value\":2.54,\"unit\":\"cm\",\"power\":1}\n"));
    EXPECT_EQ(Json("{2 in²}"), Prints("{\"value\":2,\"unit\":\"in\",\"power\":2}\n"));
    EXPECT_EQ(Json("array({1 mm})"), Prints("[{\"value\":1,\"unit\":\"mm\",\"power\":1}]\n"));
}

TEST(UqlPrinting, JsonOfNestedValues) {
    EXPECT_EQ(Json("array()"), Prints("[]\n"));
    EXPECT_EQ(Json("array(1, array('x', array()), 1.5)"), Prints("[1,[\"x\",[]],1.5]\n"));
    EXPECT_EQ(RunUql({"-o", "json", "array(@this, 1)", "--props", R"({ "b" : [ {} , { "a" : null } ] })"}),
              Prints("[{\"b\":[{},{\"a\":null}]},1]\n"));
}

TEST(UqlPrinting, WhatCannotBeWrittenIsReported) {
    RunningUql uql({"1"}, RunningUql::ToUnwritable);
    EXPECT_EQ(uql.Wait(), Fails("uql: standard output: " + GetUnwritableReason() + "\n"));
}

} // namespace
} // namespace OrvUQL::Tests
