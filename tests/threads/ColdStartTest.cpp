// The first use of the library, by many threads at once. Whatever it makes only when it is needed (tables of methods,
// letters, memory of each thread) is then made while others ask for it.
//
// Each of these tests is a process of its own, for there is one first use in each.
#include "support/Host.h"
#include "threads/Workers.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

constexpr int threads = 8;

struct Expectation {
    const wchar_t* query;
    const char* outcome;
};

/// Every thread evaluates all queries on an engine of its own, each of them beginning at another one.
void ExpectOfAllThreads(const std::vector<Expectation>& expectations) {
    RunAtOnce(threads, [&](int number) {
        Host host;
        const std::size_t count = expectations.size();
        for (std::size_t i = 0; i < 2 * count; ++i) {
            const Expectation& expectation = expectations[(i + static_cast<std::size_t>(number)) % count];
            EXPECT_EQ(host.Run(expectation.query), expectation.outcome) << Utf8(expectation.query);
        }
    });
}

TEST(ColdStart, OfMethodTables) {
    ExpectOfAllThreads({
        {L"'abc'.Length()", "int 3"},
        {L"'Abc'.ToUpper()", "string ABC"},
        {L"array(1, 2, 3).Count", "int 3"},
        {L"array(1, 2, 3).Filter($Item > 1).Item(1)", "int 2"},
        {L"(1 = 1).TypeName", "string bool"},
        {L"1.5.Round()", "double 2"},
        {L"(-7).Abs()", "int 7"},
        {L"null.IsNull()", "bool true"},
        {L"max(1, 2)", "int 2"},
        {L"{2 cm}.Value", "double 2"},
        {L"array(3, 4).ForEach(10, $lasteval + $item)", "int 17"},
    });
}

TEST(ColdStart, OfOperatorsAndComparisons) {
    ExpectOfAllThreads({
        {L"1 + 2 * 3", "int 7"},
        {L"2 ^ 10", "double 1024"},
        {L"1 = 1.0", "bool true"},
        {L"'a' < 'b'", "bool true"},
        {L"1 == 1 and not (2 <> 2)", "bool true"},
        {L"7 \\ 2", "int 3"},
        {L"1 > 2 ? 'x' : 'y'", "string y"},
        {L"{1 in} > {2 cm}", "bool true"},
    });
}

TEST(ColdStart, OfRegularExpressions) {
    // The letters whose case matters, and the classes, are made on their first use.
    ExpectOfAllThreads({
        {L"'abc'.RegMatch('ABC', false)", "bool true"},
        {L"'x12y345'.RegReplace('[0-9]+', '#')", "string x#y#"},
        {L"'a-b_c'.RegSplit('[[:punct:]]').Count", "int 3"},
        {L"'2026-11-21'.RegReplaceEx('([0-9]+)-([0-9]+)', $Item(2) + '/' + $Item(3))", "string 2026/11-21"},
        {L"'\u00c4\u00d6'.RegContains('[\u00e0-\u00f6]', false)", "bool true"},
        {L"('a'.Repeat(12) + '!').RegMatch('(a+)+$')", "bool false"},
        {L"'a'.RegMatch('(')", "! Error in regular expression: the expression contained an unmatched '(' or ')'"},
    });
}

TEST(ColdStart, OfUnits) {
    ExpectOfAllThreads({
        {L"{1 in} + {1 cm}", "unit 1.3937007874015748 in"},
        {L"({2 m} * {3 m}).Value", "double 6"},
        {L"{79 cm} > {31 in}", "bool true"},
        {L"{1 km} = {1000 m}", "bool true"},
        {L"{1 furlongs}", "! Error parsing query: Unknown unit name 'furlongs' at position 4"},
    });
}

TEST(ColdStart, OfErrors) {
    ExpectOfAllThreads({
        {L"1 / 0", "! Division By Zero"},
        {L"'x' * 2", "! Cannot convert string 'x' to a number"},
        {L"nothing(1)", "! Identifier 'nothing' is not a method of 'global'"},
        {L"chr(65536)", "! Invalid character code: 65536"},
        {L"1 +", "! Error parsing query: Unexpected end of line at position 4"},
    });
}

TEST(ColdStart, OfNumbersAsText) {
    ExpectOfAllThreads({
        {L"0.1 + 0.2", "double 0.30000000000000004"},
        {L"'1e-7'.ToDouble()", "double 1e-07"},
        {L"1e300 * 10", "double 1e+301"},
        {L"radix(255, 16)", "string ff"},
        {L"'12.5' * 2", "double 25"},
    });
}

TEST(ColdStart, OfRandomNumbers) {
    std::array<std::set<std::string>, threads> seen;
    RunAtOnce(threads, [&](int number) {
        Host host;
        for (int i = 0; i < 200; ++i) {
            const Ref<IObject> value = host.Evaluate(L"rnd()");
            ASSERT_TRUE(value);
            seen[static_cast<std::size_t>(number)].insert(ToText(*value));
        }
    });
    std::set<std::string> all;
    for (const std::set<std::string>& some : seen) {
        all.insert(some.begin(), some.end());
    }
    // Of 1,600 numbers out of 2^31 two are alike in one run of some 1,700.
    EXPECT_GT(all.size(), 1590U);
}

TEST(ColdStart, OfTranslatedTexts) {
    std::array<const IResourceManager*, threads> found{};
    RunAtOnce(threads, [&](int number) {
        const IResourceManager& manager = IResourceManager::GetInst();
        found[static_cast<std::size_t>(number)] = &manager;
        EXPECT_EQ(manager.GetString(1), L"");
    });
    for (const IResourceManager* const manager : found) {
        EXPECT_EQ(manager, found[0]);
    }
}

} // namespace
} // namespace OrvUQL::Tests
