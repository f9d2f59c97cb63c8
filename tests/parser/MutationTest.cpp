// Queries with something missing or something too much: each parses or fails properly, and nothing is left behind.
// The sanitizers look for leaks; the units and their definitions count themselves.

#include "parser/ParseCheck.h"
#include "parser/QueryGenerator.h"
#include "support/CountedUnits.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

constexpr std::uint32_t seed = 7;

constexpr const wchar_t* queries[] = {
    L"a",
    L"1 + 2 * 3 - 4 / 5 \\ 6 ^ 7",
    L"-1 + -2 * 3 - +4",
    L"2 ^ (3 ^ 2)",
    L"'abc'.Length() + 2 * 3",
    L"'it''s' + '''' + ''",
    L"a ? b : c ? d : e",
    L"a ? b ? c : d : e",
    L"not a = b and !c <> d or e",
    L"a<b<=c>d>=e=f==g!=h=<i=>j<>k><l<<m>>n",
    L"a and b or c & d | e",
    L"x.y(1, 2).z",
    L"x[.a = 1].b[.c]",
    L".a.b(c)[d]",
    L"@name.x + $x.name",
    L"@p.a($v, .m)",
    L"f(,a,b)",
    L"f( , a )",
    L"f(g(h(1, (2), -3)), 'x')",
    L"((((a))))",
    L"{2.54 kg} + {10 kg\u00b2} - {1 kg^-2} * {.5kg3}",
    L"-{1e3 kg ^ -12 } / 2",
    L"{1 kg 99}.Value",
    L"0x1F + 0XfF + 1e5 + 1.5e-5 + 1E+5",
    L"5.Radix(2) + 1.5.Round()",
    L"true or FALSE and Null.IsNull()",
    L"iif(a > 0, 'pos', 'neg')",
    L"max(1, min(2, 3.5), sqrt(4))",
    L"array(1, 'a', null, array(2, 3))",
    L"[(a) + #.b",
    L" \t\r\n a \t\r\n + \t\r\n b \t\r\n ",
    L"null.a.b.c(d).e",
    L"x.not.and.or().true",
    L"(a or b) and not (c = d) ? x[.y + 1] : {1 kg}.Power()",
    L"'\u00e4\u20ac\U0001f600' + \u00e4",
};

/// As many queries as are to be tried, the written ones first.
std::vector<OrvStringT> Queries() {
    constexpr std::size_t count = 200;
    std::vector<OrvStringT> all(std::begin(queries), std::end(queries));
    QueryGenerator generator(seed);
    while (all.size() < count) {
        std::string text = generator.Make().text;
        if (text.size() <= 60) {
            // This host knows other units.
            for (const char* const name : {"cm", "mm", "in"}) {
                for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name)) {
                    text.replace(at, 2, "kg");
                }
            }
            all.push_back(OrvStringT::FromUtf8(text));
        }
    }
    return all;
}

class Mutations : public CountedTest {
protected:
    void SetUp() override {
        CountedTest::SetUp();
        const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
        engine.SetGlobal(global.Get());
        const Ref<CountedUnitFactory> units =
            Make<CountedUnitFactory>(OrvStringT(L"Weights"), OrvStringT(L"kg"), 1000.0);
        engine.AddUnitFactory(units.Get());
    }
    void TearDown() override {
        EXPECT_EQ(Counted::live, 1) << "all but the catalogue";
        host.reset();
        CountedTest::TearDown();
    }

    /// Parses a text and, if that succeeds, evaluates it twice.
    void Try(const OrvStringT& text) {
        ErrorSlot error;
        Ref<IQueryElement> tree(engine.ParseQuery(text.GetString(), error.Slot()));
        if (!tree) {
            ++failures;
            const std::string message = error.Message();
            EXPECT_TRUE(message.find("Error parsing query: ") == 0 || message.find("Cannot convert string '") == 0)
                << Utf8(text) << ": " << message;
            EXPECT_GE(engine.GetErrorPosition(), 0) << Utf8(text);
            EXPECT_LE(engine.GetErrorPosition(), text.GetLength()) << Utf8(text);
        } else {
            ++successes;
            EXPECT_TRUE(error.IsEmpty()) << Utf8(text) << ": " << error.Message();
            const std::string first = Outcome(*tree);
            EXPECT_EQ(Outcome(*tree), first) << Utf8(text);
            tree.Reset();
        }
        ASSERT_EQ(Counted::live, 1) << Utf8(text) << " left units behind";
    }

    std::string Outcome(IQueryElement& tree) {
        ErrorSlot error;
        const Ref<IObject> value(engine.Evaluate(&tree, error.Slot()));
        return value ? Describe(value.Get()) : "! " + error.Message();
    }

    std::optional<QueryEngine> host{std::in_place};
    QueryEngine& engine = *host;
    int successes = 0;
    int failures = 0;
};

TEST_F(Mutations, QueriesThemselvesParse) {
    for (const OrvStringT& query : Queries()) {
        Try(query);
        ASSERT_EQ(failures, 0) << Utf8(query);
    }
    EXPECT_EQ(successes, 200);
}

TEST_F(Mutations, EachPrefix) {
    for (const OrvStringT& query : Queries()) {
        for (int length = 0; length < query.GetLength(); ++length) {
            Try(query.Left(length));
        }
    }
    EXPECT_GT(successes, 500);
    EXPECT_GT(failures, 500);
}

TEST_F(Mutations, EachCharacterLeftOut) {
    for (const OrvStringT& query : Queries()) {
        for (int position = 0; position < query.GetLength(); ++position) {
            OrvStringT text = query;
            text.Delete(position);
            Try(text);
        }
    }
    EXPECT_GT(successes, 500);
    EXPECT_GT(failures, 500);
}

TEST_F(Mutations, EachCharacterPutInAnywhere) {
    for (const OrvStringT& query : Queries()) {
        for (int position = 0; position <= query.GetLength(); ++position) {
            for (const wchar_t unit : std::wstring_view(L" '()[]{},.:?!&|<>=+-*/\\^@$#0ex_\u00b2\u00e4")) {
                OrvStringT text = query;
                text.Insert(position, std::wstring_view(&unit, 1));
                Try(text);
            }
        }
    }
    EXPECT_GT(successes, 10000);
    EXPECT_GT(failures, 10000);
}

TEST_F(Mutations, EachPairOfNeighboursSwapped) {
    for (const OrvStringT& query : Queries()) {
        for (int position = 0; position + 1 < query.GetLength(); ++position) {
            OrvStringT text = query.Left(position);
            text += query.Mid(position + 1, 1);
            text += query.Mid(position, 1);
            text += query.Mid(position + 2);
            Try(text);
        }
    }
    EXPECT_GT(successes, 500);
    EXPECT_GT(failures, 500);
}

} // namespace
} // namespace OrvUQL::Tests
