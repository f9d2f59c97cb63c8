// The readers of JSON give the same values and the same errors, whatever they read.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// Each query over the records with each reader; a record that fails does not end the run.
void ExpectSame(const std::string& json, const std::vector<std::string>& queries) {
    for (const std::string& query : queries) {
        for (const char* format : {"json", "typed"}) {
            const UqlRun fast = RunUql({"-o", format, "--keep-going", query, "-"}, json);
            const UqlRun plain = RunUql({"-o", format, "--keep-going", "--json-reader", "nlohmann", query, "-"}, json);
            EXPECT_EQ(fast.status, plain.status) << query;
            EXPECT_TRUE(fast.out == plain.out) << query;
            EXPECT_TRUE(fast.err == plain.err) << query << fast.err.substr(0, 500) << plain.err.substr(0, 500);
        }
    }
}

TEST(UqlJsonReaders, AgreeAboutScalars) {
    std::string json;
    for (const char* text : {"0",
                             "-0",
                             "-0.0",
                             "1",
                             "-1",
                             "2147483647",
                             "2147483648",
                             "-2147483648",
                             "-2147483649",
                             "9007199254740993",
                             "9223372036854775807",
                             "9223372036854775808",
                             "-9223372036854775808",
                             "-9223372036854775809",
                             "18446744073709551615",
                             "18446744073709551616",
                             "123456789012345678901234567890",
                             "1.0",
                             "1e3",
                             "1E+3",
                             "1e-7",
                             "0.1",
                             "4.9e-324",
                             "2.2250738585072011e-308",
                             "1e-999",
                             "1.7976931348623157e308",
                             "1.7976931348623159e308",
                             "1e309",
                             "-1e999",
                             "1e22",
                             "8.41e21",
                             "9007199254740993.0",
                             "true",
                             "false",
                             "null",
                             "\"\"",
                             "\"a\\u0000b\"",
                             "\"\\ud83d\\ude00\"",
                             "\"\\ud83d\"",
                             "\"\\ude00\"",
                             "\"\\ud83d\\ud83d\\ude00\"",
                             "\"\\u00e4\\/\\b\\f\\n\\r\\t\"",
                             "\"\\x\"",
                             "\"\x01\"",
                             "\"\x7F\"",
                             "\"\xC3\xA4\"",
                             "\"\xFF\"",
                             "[]",
                             "{}",
                             "[[],{}]",
                             "01",
                             "1.",
                             ".5",
                             "+1",
                             "1e",
                             "-",
                             "tru",
                             "nul",
                             "NaN",
                             "Infinity",
                             "[1,]",
                             "{\"a\":1,}",
                             "{\"a\"}",
                             "[1 2]",
                             "//",
                             "\xC2\xA0 1"}) {
        json += text;
        json += '\n';
    }
    ExpectSame(json, {"@this", "@this.ToString()", "@IsNumeric", "@this = 1"});
}

TEST(UqlJsonReaders, AgreeAboutMembers) {
    const std::string json = R"({"a": 1, "b": 2, "a": 3}
{"A": 1, "a": [2], "á": {"x": 1}, "Á": 5, "a": "x"}
{"NAME": 1, "Name": {"first": "n"}, "name": [1, {"a": 2}, [3, [4, {}]]]}
{"": 7, "a b": 8, "Keys": 9, "get": 10, "help": 11, "ToString": 12}
{"a": {"a": {"a": {"a": null, "A": 1}}}, "ſ": 1, "ı": 2, "ß": 3}
{"\u0061": 1, "a": 2, "a\u0000": 3}
{"k1":1,"k2":2,"k3":3,"k4":4,"k5":5,"k6":6,"k7":7,"k8":8,"k9":9,"k10":10,"k11":11,"k12":12,"k13":13,"k14":14,"k15":15,"k16":16,"k17":17,"k18":18,"k3":"again","K3":"upper","k20":{}}
[{"a": 1}, {"a": 2}]
)";
    ExpectSame(json, {"@this",
                      "@a",
                      "@A",
                      "@b",
                      "@name",
                      "@nAME",
                      "@Name.first",
                      "@NAME",
                      "@Keys",
                      "@Get('')",
                      "@Get('a b')",
                      "@Get('KEYS')",
                      "@Get('á')",
                      "@Get('Á')",
                      "@Get('S')",
                      "@Get('I')",
                      "@Get('ſ')",
                      "@k3",
                      "@K3",
                      "@k20",
                      "@Get('K17')",
                      "@a.a.a.A",
                      "@a.a",
                      "@this[.a.ToString() + .a.ToString()]",
                      "@name.Last",
                      "@help",
                      "@ToString",
                      "@a.ToString()",
                      "@Name[.first]",
                      "@Convert($item.a)",
                      "@a(1)",
                      "@a = @a"});
}

TEST(UqlJsonReaders, AgreeAboutMutatedDocuments) {
    const std::string seedText =
        R"({"id": 17, "name": "bolt \"M8\" \u00e4\ud83d\ude00", "price": -0.25e2, "tags": ["a", [], {"b": null}], "on": true})";
    const std::string replacements = "{}[]\",:\\ \n01-+.eEtfnu/\x80\xFF\xC3x";
    std::mt19937 random(12345);
    std::string json;
    for (int round = 0; round < 3'000; ++round) {
        std::string text = seedText;
        for (auto change = random() % 3 + 1; change != 0; --change) {
            const std::size_t place = random() % text.size();
            switch (random() % 3) {
            case 0:
                text[place] = replacements[random() % replacements.size()];
                break;
            case 1:
                text.erase(place, 1 + random() % 4);
                break;
            default:
                text.insert(place, 1, replacements[random() % replacements.size()]);
            }
        }
        json += text;
        json += round % 7 == 0 ? "\n\n" : "\n";
    }
    ExpectSame(json, {"@this", "@name", "@price + 1", "@tags.Count"});
}

} // namespace
} // namespace OrvUQL::Tests
