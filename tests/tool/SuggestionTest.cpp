// "did you mean": of the names that could stand there, the one that is meant most likely, or none.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

/// The name that is suggested where the query fails; empty if none is.
std::string Suggest(std::vector<std::string> arguments, std::string_view input = {}) {
    const UqlRun run = RunUql(arguments, input);
    EXPECT_EQ(run.status, 1) << run.out;
    constexpr std::string_view before = "  did you mean '";
    constexpr std::string_view behind = "'?\n";
    const std::size_t begin = run.err.find(before);
    if (begin == std::string::npos) {
        return std::string();
    }
    const std::size_t name = begin + before.size();
    EXPECT_EQ(run.err.substr(run.err.size() - behind.size()), behind);
    return run.err.substr(name, run.err.size() - behind.size() - name);
}

TEST(UqlSuggestion, StandsBelowTheCaret) {
    EXPECT_EQ(RunUql({"'abc'.Lenght()"}), Fails("uql: Identifier 'Lenght' is not a method of 'string'\n"
                                                "  'abc'.Lenght()\n"
                                                "        ^\n"
                                                "  did you mean 'Length'?\n"));
}

TEST(UqlSuggestion, MethodsAreThoseOfTheValuesType) {
    EXPECT_EQ(Suggest({"'abc'.lenth"}), "Length");
    EXPECT_EQ(Suggest({"'abc'.StartWith('a')"}), "StartsWith");
    EXPECT_EQ(Suggest({"(5).Rount()"}), ""); // ints do not have it
    EXPECT_EQ(Suggest({"(5.5).Rount()"}), "Round");
    EXPECT_EQ(Suggest({"(1 = 1).TypeNmae()"}), "TypeName");
    EXPECT_EQ(Suggest({"array(1).Fitler($item)"}), "Filter");
    EXPECT_EQ(Suggest({"{1 cm}.Covert('in')"}), "Convert");
    EXPECT_EQ(Suggest({"array(1).Convert($indx)"}), "$index");
    EXPECT_EQ(Suggest({"--props", "'x'", "1"}), ""); // something else that fails
    EXPECT_EQ(Suggest({"--props", "\"abc\"", "@lenght"}), "@Length");
    EXPECT_EQ(Suggest({"--var", "\"abc\"", "$lenght"}), "$Length");
}

TEST(UqlSuggestion, FunctionsAreTheGlobalOnes) {
    EXPECT_EQ(Suggest({"sqr(4)"}), "sqrt");
    EXPECT_EQ(Suggest({"1 + rouund(2.5)"}), "round");
    EXPECT_EQ(Suggest({"maxx(1, 2)"}), "max");
}

TEST(UqlSuggestion, UnitsAreTheKnownOnes) {
    EXPECT_EQ(Suggest({"{1 inn}"}), "in");
    EXPECT_EQ(Suggest({"{1 cm}.Convert('mmm')"}), "mm");
    EXPECT_EQ(Suggest({"--no-units", "{1 inn}"}), "");
    EXPECT_EQ(Suggest({"{1 furlong}"}), "");
}

TEST(UqlSuggestion, AMemberThatIsNotThereIsSuggestedWhereItsNullFails) {
    const std::string record = R"({"price": 2, "size": {"length": 3, "größe": 1}})";
    EXPECT_EQ(Suggest({"--props", record, "@prise * 2"}), "@price");
    EXPECT_EQ(Suggest({"--props", record, "2 * @size.lenght"}), "length");
    EXPECT_EQ(Suggest({"--props", record, "2 * @weight"}), "");
    EXPECT_EQ(Suggest({"--props", record, "@price / (@price - 2)"}), ""); // they are there; it is another failure
    EXPECT_EQ(Suggest({"2 * @nmae", "-"}, "{\"name\": 1}"), "@name");
    // A null that nobody minds is none of it.
    EXPECT_EQ(RunUql({"--props", record, "@prise"}), Prints("null\n"));
    EXPECT_EQ(RunUql({"--props", record, "@prise = null"}), Prints("true\n"));
}

TEST(UqlSuggestion, RecordsHaveItToo) {
    EXPECT_EQ(RunUql({"@a.Rount()", "-"}, "{\"a\": 1.5}"), Fails("uql: -: record 1: Identifier 'Rount' is not a method "
                                                                 "of 'double'\n  @a.Rount()\n     ^\n"
                                                                 "  did you mean 'Round'?\n"));
}

TEST(UqlSuggestion, LetterCaseAndNeighboursExchangedCountLittle) {
    EXPECT_EQ(Suggest({"'abc'.TOUPEPR()"}), "ToUpper");
    EXPECT_EQ(Suggest({"'abc'.elngth()"}), "Length");
}

TEST(UqlSuggestion, WhatIsTooFarIsNotSuggested) {
    EXPECT_EQ(Suggest({"'abc'.Foo()"}), "");
    EXPECT_EQ(Suggest({"(5).Ab()"}), "Abs");
    EXPECT_EQ(Suggest({"(5).A()"}), "");
    EXPECT_EQ(Suggest({"'abc'." + std::string(100'000, 'x') + "()"}), "");
}

TEST(UqlSuggestion, OfSeveralTheFirstInTheListing) {
    // CharAt and CharCodeAt, LTrim and RTrim: the nearer one, then the earlier one.
    EXPECT_EQ(Suggest({"'abc'.ChrAt(0)"}), "CharAt");
    EXPECT_EQ(Suggest({"'abc'.XTrim()"}), "Trim");
}

TEST(UqlSuggestion, TheLibrarysMessagesAreAsTheyWere) {
    EXPECT_EQ(RunUql({"test", "-"}, "? 'abc'.Lenght()\n! Identifier 'Lenght' is not a method of 'string'\n").status, 0);
}

} // namespace
} // namespace OrvUQL::Tests
