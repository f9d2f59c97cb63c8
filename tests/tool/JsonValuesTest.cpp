// JSON as values of the language.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

/// The query's value over one JSON document, as "type\ttext".
UqlRun Read(const std::string& json, const std::string& query) {
    return RunUql({"-o", "typed", "--props", json, "-e", query});
}

/// The document as a value, printed as JSON.
UqlRun Echo(const std::string& json) { return RunUql({"-o", "json", "-e", "@this", "-"}, json); }

TEST(UqlJsonValues, ScalarsAreTheLanguagesOwn) {
    EXPECT_EQ(Read("null", "@this"), Prints("null\tnull\n"));
    EXPECT_EQ(Read("true", "@this"), Prints("bool\ttrue\n"));
    EXPECT_EQ(Read("false", "@this"), Prints("bool\tfalse\n"));
    EXPECT_EQ(Read("\"abc\"", "@Length"), Prints("int\t3\n"));
    EXPECT_EQ(Read(" \n[1, \"a\"]\t\r\n", "@this"), Prints("array\t(1,a)\n"));
}

TEST(UqlJsonValues, IntegersOf32BitsAreInts) {
    EXPECT_EQ(Read("0", "@this"), Prints("int\t0\n"));
    EXPECT_EQ(Read("-0", "@this"), Prints("int\t0\n"));
    EXPECT_EQ(Read("2147483647", "@this"), Prints("int\t2147483647\n"));
    EXPECT_EQ(Read("-2147483648", "@this"), Prints("int\t-2147483648\n"));
}

TEST(UqlJsonValues, AllOtherNumbersAreDoubles) {
    EXPECT_EQ(Read("2147483648", "@this"), Prints("double\t2147483648\n"));
    EXPECT_EQ(Read("-2147483649", "@this"), Prints("double\t-2147483649\n"));
    EXPECT_EQ(Read("1.0", "@this"), Prints("double\t1\n"));
    EXPECT_EQ(Read("1e3", "@this"), Prints("double\t1000\n"));
    EXPECT_EQ(Read("-0.0", "@this"), Prints("double\t-0\n"));
    EXPECT_EQ(Read("0.1", "@this"), Prints("double\t0.1\n"));
    EXPECT_EQ(Read("1E-7", "@this"), Prints("double\t1e-07\n"));
    EXPECT_EQ(Read("9007199254740993", "@this"), Prints("double\t9007199254740992\n")); // 2^53 + 1
    EXPECT_EQ(Read("18446744073709551616", "@this"), Prints("double\t18446744073709552000\n"));
    EXPECT_EQ(Read("-9223372036854775809", "@this"), Prints("double\t-9223372036854776000\n"));
    EXPECT_EQ(Read("123456789012345678901234567890", "@this"), Prints("double\t1.2345678901234568e+29\n"));
}

TEST(UqlJsonValues, StringsDecodeTheirEscapes) {
    EXPECT_EQ(Echo(R"("\"\\\/\b\f\n\r\tA\u0041\u00e4")"), Prints("\"\\\"\\\\/\\b\\f\\n\\r\\tAAä\"\n"));
    EXPECT_EQ(Read(R"("\ud83d\ude00")", "@Length"), Prints("int\t2\n")); // code units
    EXPECT_EQ(Read(R"("a\u0000b")", "@Length"), Prints("int\t3\n"));
    EXPECT_EQ(Echo(R"("a\u0000b")"), Prints("\"a\\u0000b\"\n"));
    EXPECT_EQ(Echo("\"ä€😀\""), Prints("\"ä€😀\"\n"));
}

TEST(UqlJsonValues, ObjectsHaveTheirMembersAsMethods) {
    EXPECT_EQ(Read(R"({"order": {"total": 5}})", "@order.total + 1"), Prints("int\t6\n"));
    EXPECT_EQ(Read(R"({"order": {"total": 5}})", "@order"), Prints("object\t{\"total\":5}\n"));
    EXPECT_EQ(Read(R"({"order": {"total": 5}})", "@order[.total * 2]"), Prints("int\t10\n"));
    EXPECT_EQ(Read(R"({"a": 1})", "@a()"), Prints("int\t1\n"));
}

TEST(UqlJsonValues, AMemberIsFoundAsWrittenAndThenWithoutRegardToCase) {
    const std::string json = R"({"NAME": 1, "name": 2, "Name": 3})";
    EXPECT_EQ(Read(json, "@name"), Prints("int\t2\n"));
    EXPECT_EQ(Read(json, "@Name"), Prints("int\t3\n"));
    EXPECT_EQ(Read(json, "@nAmE"), Prints("int\t1\n"));
    EXPECT_EQ(Read(json, "@Get('Name')"), Prints("int\t3\n"));
    EXPECT_EQ(Read(R"({"Größe": 1})", "@Get('GRÖßE')"), Prints("int\t1\n"));
}

TEST(UqlJsonValues, AMissingMemberIsNull) {
    EXPECT_EQ(Read(R"({"a": 1})", "@b"), Prints("null\tnull\n"));
    EXPECT_EQ(Read(R"({"a": 1})", "@b.c.d"), Prints("null\tnull\n"));
    EXPECT_EQ(Read("{}", "@a"), Prints("null\tnull\n"));
    EXPECT_EQ(Read("{}", "@Get('')"), Prints("null\tnull\n"));
    EXPECT_EQ(Read(R"({"a": 1})", "@ab"), Prints("null\tnull\n"));
}

TEST(UqlJsonValues, MembersTakeNoArguments) {
    EXPECT_EQ(Read(R"({"a": 1})", "@a(2)"),
              Fails("uql: Too many parameters specified for method a. It expects only 0\n  @a(2)\n  ^\n"));
}

TEST(UqlJsonValues, TheMethodsOfEveryValueComeBeforeTheMembers) {
    const std::string json = R"({"ToString": 1, "typename": 2, "Get": 3, "keys": 4, "help": 5, "a b": 6, "": 7})";
    EXPECT_EQ(Read(json, "@TypeName"), Prints("string\tobject\n"));
    EXPECT_EQ(Read(json, "@Keys"), Prints("array\t(ToString,typename,Get,keys,help,a b,)\n"));
    EXPECT_EQ(Read(json, "@Get('typename')"), Prints("int\t2\n"));
    EXPECT_EQ(Read(json, "@get('get')"), Prints("int\t3\n"));
    EXPECT_EQ(Read(json, "@Get('a b')"), Prints("int\t6\n"));
    EXPECT_EQ(Read(json, "@Get('')"), Prints("int\t7\n"));
    EXPECT_EQ(Read(json, "@IsNull"), Prints("bool\tfalse\n"));
    EXPECT_EQ(Read(json, "@This.Get('help')"), Prints("int\t5\n"));
    EXPECT_EQ(Read(json, "@Get()"), Fails("uql: Parameter 1 of method 'Get' is not optional\n  @Get()\n  ^\n"));
}

TEST(UqlJsonValues, HelpListsTheMethodsOfAnObject) {
    EXPECT_EQ(RunUql({"--props", R"({"a": 1})", "@help"}),
              Prints("object.Get(string)\robject.Keys()\robject.ToBool()\robject.ToInt()\robject.ToDouble()\r"
                     "object.ToString()\robject.TypeName() {Static}\robject.This()\robject.IsNumeric()\r"
                     "object.IsNull()\n"));
}

TEST(UqlJsonValues, ObjectsPrintAsCompactJson) {
    EXPECT_EQ(Read(R"( { "b" : 1.0 , "a" : [ 1 , "x/\"ä" , null ] , "A" : { } , "" : true } )", "@this"),
              Prints("object\t{\"b\":1,\"a\":[1,\"x/\\\"ä\",null],\"A\":{},\"\":true}\n"));
    EXPECT_EQ(Read(R"([{"a": [1]}, 2])", "@this"), Prints("array\t({\"a\":[1]},2)\n"));
}

TEST(UqlJsonValues, OfDuplicateMembersTheLastWins) {
    EXPECT_EQ(Echo(R"({"a": 1, "b": 2, "a": 3})"), Prints("{\"a\":3,\"b\":2}\n"));
    EXPECT_EQ(Echo(R"({"a": 1, "a": [2], "b": 3, "a": "x", "b": 4})"), Prints("{\"a\":\"x\",\"b\":4}\n"));
    EXPECT_EQ(Read(R"({"a": 1, "a": 2})", "@a"), Prints("int\t2\n"));
    EXPECT_EQ(Read(R"({"a": 1, "\u0061": 2})", "@Keys"), Prints("array\t(a)\n"));
}

TEST(UqlJsonValues, ObjectsDoNotCompare) {
    EXPECT_EQ(RunUql({"--props", R"({"a": {}, "b": {}})", "@a = @b"}),
              Fails("uql: Cannot compare object 'object' to object 'object'. Incompatible types for this operation\n"
                    "  @a = @b\n     ^\n"));
}

TEST(UqlJsonValues, MembersOfLargeObjectsAreFoundLikeThoseOfSmallOnes) {
    std::string json = "{";
    for (int number = 0; number < 500; ++number) {
        const std::string text = std::to_string(number);
        json += "\"Key";
        json += text + "\": " + text + ", ";
    }
    json += R"("KEY7": "upper", "last": "end"})";
    EXPECT_EQ(RunUql({"--props", json,
                      "@Key499 + '|' + @KEY499 + '|' + @Key7 + '|' + @KEY7 + '|' + @key7 + '|' + "
                      "@last + '|' + @LAST + '|' + @key500.ToString()"}),
              Prints("499|499|7|upper|7|end|end|null\n"));
}

TEST(UqlJsonValues, RecordsWithTheSameNamesInAnotherOrderKeepTheirOwn) {
    EXPECT_EQ(RunUql({"@a.ToString() + ',' + @b.ToString() + ',' + @this.ToString()", "-"},
                     R"({"a":1,"b":2} {"b":1,"a":2} {"a":3} {"a":4,"b":5,"a":6} {"a":7,"b":8})"),
              Prints("1,2,{\"a\":1,\"b\":2}\n2,1,{\"b\":1,\"a\":2}\n3,null,{\"a\":3}\n6,5,{\"a\":6,\"b\":5}\n"
                     "7,8,{\"a\":7,\"b\":8}\n"));
}

TEST(UqlJsonValues, ManyDifferentNamesAreNoTrouble) {
    // More than a reader remembers.
    std::string json;
    std::string expected;
    for (int number = 0; number < 30'000; ++number) {
        const std::string text = std::to_string(number);
        json += R"({"k)";
        json += text + "\":" + text + ",\"same\":" + text + "}\n";
        expected += text + "\n";
    }
    EXPECT_EQ(RunUql({"@same", "-"}, json), Prints(expected));
}

} // namespace
} // namespace OrvUQL::Tests
