// Where reading goes on behind text that is not JSON, and what is not UTF-8.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

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
