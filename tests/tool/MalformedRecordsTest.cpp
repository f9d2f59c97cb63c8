// Where reading goes on behind text that is not JSON, and what is not UTF-8.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// Runs `@this` over the input with each reader of JSON and number of threads, which all have to agree.
UqlRun ReadOn(const std::string& json) {
    UqlRun run = RunUql({"-o", "json", "--keep-going", "@this", "-"}, json);
    EXPECT_EQ(RunUql({"-o", "json", "--keep-going", "--json-reader", "nlohmann", "@this", "-"}, json), run);
    EXPECT_EQ(RunUql({"-o", "json", "--keep-going", "-j", "3", "@this", "-"}, json), run);
    return run;
}

TEST(UqlMalformedRecords, ReadingGoesOnWithTheNextLine) {
    const UqlRun run = ReadOn("{\"a\":1}\n{\"a\" 2} 3\n{\"a\":4}\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "{\"a\":1}\n{\"a\":4}\n");
    EXPECT_THAT(run.err, StartsWith("uql: -:2:6: record 2: "));
    EXPECT_THAT(run.err, EndsWith("uql: 1 of 3 records failed\n"));
}

TEST(UqlMalformedRecords, ALineThatIsCutOffTakesNoOtherRecordAlong) {
    for (const char* broken : {"{\"a\":2", "[1,2", "{\"a\":", "{\"a\"", "{\"a\":2,", "{\"a\":[", "{", "[", "[[[", "[1,",
                               "{\"a\":[1,2}", "{\"a\":[1,2", "{\"a\":tru"}) {
        const UqlRun run = ReadOn("{\"a\":1}\n" + std::string(broken) + "\n{\"a\":3}\n{\"a\":[4,\"}\\\"\"]}\n[5]\n");
        EXPECT_EQ(run.out, "{\"a\":1}\n{\"a\":3}\n{\"a\":[4,\"}\\\"\"]}\n[5]\n") << broken;
        EXPECT_THAT(run.err, HasSubstr(": record 2: ")) << broken;
        EXPECT_THAT(run.err, EndsWith("uql: 1 of 5 records failed\n")) << broken;
    }
    EXPECT_EQ(ReadOn("{\"a\":1\n{\"a\":2}\n").out, "{\"a\":2}\n");
}

TEST(UqlMalformedRecords, AlsoAtTheEndOfInput) {
    for (const char* broken : {"{\"a\":", "[1,", "[", "{\"a\":["}) {
        for (const char* end : {"", "\n", "\r\n\n"}) {
            const UqlRun run = ReadOn("{\"a\":1}\n" + std::string(broken) + "\n{\"a\":3}" + end);
            EXPECT_EQ(run.out, "{\"a\":1}\n{\"a\":3}\n") << broken;
            const std::string place = "uql: -:2:" + std::to_string(std::string(broken).size() + 1);
            EXPECT_THAT(run.err, StartsWith(place + ": record 2: ")) << broken;
            EXPECT_THAT(run.err, EndsWith("uql: 1 of 3 records failed\n")) << broken;
        }
    }
    EXPECT_EQ(ReadOn("{\"a\":\n5").out, "5\n");
}

TEST(UqlMalformedRecords, LinesThatAreCutOffOneAfterTheOtherAreARecordEach) {
    const UqlRun run = ReadOn("{\"a\":\n{\"a\":3,\n[{\"b\":[\n{\"a\":4}\n{\"a\":\n{\"a\" 5}\n\"x\"\n");
    EXPECT_EQ(run.out, "{\"a\":4}\n\"x\"\n");
    EXPECT_THAT(run.err, StartsWith("uql: -:1:6: record 1: "));
    EXPECT_THAT(run.err, HasSubstr("uql: -:2:8: record 2: "));
    EXPECT_THAT(run.err, HasSubstr("uql: -:3:8: record 3: "));
    EXPECT_THAT(run.err, HasSubstr("uql: -:5:6: record 5: "));
    EXPECT_THAT(run.err, HasSubstr("uql: -:6:6: record 6: "));
    EXPECT_THAT(run.err, EndsWith("uql: 5 of 7 records failed\n"));
    EXPECT_EQ(ReadOn("{\"a\":\n{\"a\":3,\n{\"a\":4}\n").out, "{\"a\":4}\n");
    // A value behind a colon need not be an object for that.
    EXPECT_EQ(ReadOn("{\"a\":\n5\n\"b\"\n").out, "5\n\"b\"\n");
    EXPECT_EQ(ReadOn("[{\"a\":\n\"b\n6\n").out, "6\n");
}

TEST(UqlMalformedRecords, ALineThatIsCutOffNeedNotBeginWithItsRecord) {
    const UqlRun run = ReadOn("{\"a\":1} {\"a\":\n{\"a\":3}\n{\"a\":4}\n");
    EXPECT_EQ(run.out, "{\"a\":1}\n{\"a\":3}\n{\"a\":4}\n");
    EXPECT_THAT(run.err, StartsWith("uql: -:1:14: record 2: "));
}

TEST(UqlMalformedRecords, PartsOfADocumentOfSeveralLinesAreNoRecords) {
    // Each of these is one document with one mistake, and its lines begin at their first byte.
    for (const auto& [json, place] :
         {std::pair("[\n{\"a\":1},\n{\"a\":2} 3]\n", "3:9"), std::pair("[\n{\"a\":1}\n,{\"a\" 2}\n]\n", "3:7"),
          std::pair("{\"data\":\n[\n{\"a\":1},\n{\"a\":2}\n}\n", "5:1"), std::pair("[\n{\n\"a\": 1 2\n}\n]\n", "3:8"),
          std::pair("[\n1,\n2\n3\n]\n", "4:1"), std::pair("[\n{\"a\":1},\n", "3:1")}) {
        const UqlRun run = RunUql({"-o", "json", "@this", "-"}, json);
        EXPECT_EQ(run.out, "") << json;
        EXPECT_THAT(run.err, StartsWith("uql: -:" + std::string(place) + ": record 1: ")) << json;
    }
    // Too deep is too deep, on however many lines.
    std::string deep;
    for (int level = 0; level <= 10'000; ++level) {
        deep += "[\n";
    }
    EXPECT_EQ(RunUql({"@this", "-"}, deep), Fails("uql: -:10001:1: record 1: nested deeper than 10000 levels\n"));
}

TEST(UqlMalformedRecords, WhatLooksCutOffAllTheWayIsReadOnce) {
    // Read again from each line, this would be read a thousand million times.
    std::string json;
    for (int line = 0; line < 300'000; ++line) {
        json += line % 3 == 0 ? "{\"a\":\n" : line % 3 == 1 ? "[{\"b\":1}\n" : ",\n";
    }
    EXPECT_EQ(RunUql({"--keep-going", "@this", "-"}, json).status, 1);
}

TEST(UqlMalformedRecords, AMissingQuoteEndsWithItsLine) {
    const UqlRun run = ReadOn("{\"a\":\"x}\n{\"a\":2}\n\"y\n\"z\\\n3\n");
    EXPECT_EQ(run.out, "{\"a\":2}\n3\n");
    EXPECT_THAT(run.err, HasSubstr("uql: -:1:9: record 1: "));
    EXPECT_THAT(run.err, HasSubstr("uql: -:3:3: record 3: "));
    EXPECT_THAT(run.err, EndsWith("uql: 3 of 5 records failed\n"));
}

TEST(UqlMalformedRecords, DocumentsOfSeveralLinesAreBrokenWhereTheyCannotGoOn) {
    const UqlRun run = ReadOn("{\n  \"a\": [1,\n  2 3],\n  \"b\": 4\n}\n[7]\n");
    EXPECT_THAT(run.err, HasSubstr("uql: -:3:5: record 1: "));
    EXPECT_THAT(run.out, EndsWith("[7]\n"));
    // A word that is none does not hide where the document ends.
    const UqlRun word = ReadOn("[\n1,\ntru,\n2\n]\n[7]\n");
    EXPECT_EQ(word.out, "[7]\n");
    EXPECT_THAT(word.err, HasSubstr("uql: -:3:4: record 1: "));
    EXPECT_THAT(word.err, EndsWith("uql: 1 of 2 records failed\n"));
    EXPECT_THAT(ReadOn("[\n1,\n2").err, StartsWith("uql: -:3:2: record 1: "));
}

TEST(UqlMalformedRecords, DocumentsOfSeveralLinesMayBeWrittenInAnyWay) {
    EXPECT_EQ(ReadOn("{\n\"a\"\n:\n[\n]\n,\"b\":{}\n} [\r\n{ }\r\n,\ttrue , \"x]\\\"\"\n,-1.5\n]1\n2"),
              Prints("{\"a\":[],\"b\":{}}\n[{},true,\"x]\\\"\",-1.5]\n1\n2\n"));
}

TEST(UqlMalformedRecords, NumbersBeyondADoubleAreErrors) {
    const UqlRun run = ReadOn("{\"a\":1e999}\n{\"a\":-1e999}\n{\"a\":1e-999}\n{\"a\":1e308}\n");
    EXPECT_EQ(run.out, "{\"a\":0}\n{\"a\":1e+308}\n");
    EXPECT_THAT(run.err, StartsWith("uql: -:1:10: record 1: number overflow parsing '1e999'\n"));
}

TEST(UqlMalformedRecords, MalformedUtf8IsReplacedAndCounted) {
    EXPECT_EQ(ReadOn("\"a\xC3\"\n\"\x80\"\n\"\xED\xA0\x80\"\n\"\xC0\x80\"\n\"\xE2\x82\"\n\"\xF0\x9F\x98x\"\n"
                     "{\"\xFF\":\"\xF4\x90\x80\x80\"}\n\"good \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\"\n"),
              (UqlRun{0,
                      "\"a\xEF\xBF\xBD\"\n\"\xEF\xBF\xBD\"\n\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"\n"
                      "\"\xEF\xBF\xBD\xEF\xBF\xBD\"\n\"\xEF\xBF\xBD\"\n\"\xEF\xBF\xBDx\"\n"
                      "{\"\xEF\xBF\xBD\":\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"}\n"
                      "\"good \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\"\n",
                      "uql: -: warning: 14 pieces of malformed UTF-8 were replaced by U+FFFD\n"}));
    EXPECT_EQ(ReadOn("\"\xFF\""), (UqlRun{0, "\"\xEF\xBF\xBD\"\n",
                                          "uql: -: warning: 1 piece of malformed UTF-8 was replaced by U+FFFD\n"}));
}

TEST(UqlMalformedRecords, PlacesCountTheBytesOfTheFileAlsoWhereItIsNotUtf8) {
    const UqlRun run = ReadOn("{\"\xFF\xFF\": \"\xE2\x82\", x}\n");
    EXPECT_THAT(run.err, StartsWith("uql: -:1:14: record 1: "));
    EXPECT_EQ(run.out, "");
}

TEST(UqlMalformedRecords, EachInputIsWarnedOfOnItsOwn) {
    const TestFile first("\"\xFF\"");
    const TestFile second("\"\xFF\xFF\"");
    EXPECT_EQ(
        RunUql({"@Length", first.GetPath(), second.GetPath()}),
        (UqlRun{0, "1\n2\n",
                "uql: " + first.GetPath() + ": warning: 1 piece of malformed UTF-8 was replaced by U+FFFD\n" +
                    "uql: " + second.GetPath() + ": warning: 2 pieces of malformed UTF-8 were replaced by U+FFFD\n"}));
}

} // namespace
} // namespace OrvUQL::Tests
