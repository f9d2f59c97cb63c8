// Queries nested deeper than any stack: a value or an error, never the end of the process; and all that is nested as
// people nest it parses on a small stack.

#include "support/Host.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

constexpr std::size_t usualStack = 8 * 1024 * 1024;

#if defined(ORVUQL_ADDRESS_SANITIZER)
constexpr int excess = 100000; // with frames many times as large
constexpr int smallDepth = 10;
constexpr int usualDepth = 300;
#else
constexpr int excess = 1000000;
constexpr int smallDepth = 30;
constexpr int usualDepth = 1000;
#endif

/// One way to nest: `open` again and again, `middle`, `close` as often.
struct Nesting {
    const wchar_t* open;
    const wchar_t* middle;
    const wchar_t* close;
    const char* value; ///< whatever the depth, as long as there is one
};

constexpr Nesting nestings[] = {
    {L"(", L"7", L")", "int 7"},
    {L"max(", L"7", L")", "int 7"},
    {L"max(7,", L"7", L")", "int 7"},
    {L"7[", L"7", L"]", "int 7"},
    {L"(7[", L"7", L"])", "int 7"},
    {L"(not ", L"true", L")", nullptr},
    {L"not (", L"true", L")", nullptr},
    {L"!(!(", L"true", L"))", "bool true"},
    {L"-(-(", L"7", L"))", "int 7"},
    {L"true ? (", L"7", L") : 8", "int 7"},
    {L"false ? 8 : (", L"7", L")", "int 7"},
    {L"true ? true ? ", L"7", L" : 8 : 9", "int 7"},
    {L"(", L"true", L") ? true : false", "bool true"},
    {L"7 + 0 * (", L"7", L")", "int 7"},
    {L"true and (", L"true", L")", "bool true"},
    {L"1 = (", L"1", L")", nullptr},
    {L"1 ^ (", L"1", L")", "double 1"},
    {L"iif(true, ", L"7", L", 8)", "int 7"},
    {L"iif(false, 8, ", L"7", L")", "int 7"},
    {L"(7).This()[", L"7", L"]", "int 7"},
};

OrvStringT Repeat(const wchar_t* text, int count) {
    OrvStringT all;
    for (int round = 0; round < count; ++round) {
        all += text;
    }
    return all;
}

OrvStringT MakeQuery(const Nesting& nesting, int depth, bool closed) {
    OrvStringT query = Repeat(nesting.open, depth);
    query += nesting.middle;
    return closed ? query + Repeat(nesting.close, depth) : query;
}

/// Where the parser gave up: the stack ended inside of the openings.
void ExpectStackError(const std::string& message, const OrvStringT& query, int errorPosition) {
    const std::string expected = "Error parsing query: Internal error at position " + std::to_string(errorPosition + 1);
    EXPECT_EQ(message, expected) << Utf8(query.Left(40));
    EXPECT_GT(errorPosition, 0);
    EXPECT_LT(errorPosition, query.GetLength());
}

void Overflow(std::size_t stack) {
    for (const Nesting& nesting : nestings) {
        for (const bool closed : {true, false}) {
            const OrvStringT query = MakeQuery(nesting, excess, closed);
            RunOnThread(stack, [&] {
                QueryEngine engine;
                ErrorSlot error;
                const Ref<IQueryElement> tree(engine.ParseQuery(query.GetString(), error.Slot()));
                ASSERT_FALSE(tree) << Utf8(query.Left(40)) << ": no stack takes this";
                ExpectStackError(error.Message(), query, engine.GetErrorPosition());
                // The engine is as good as before.
                const Ref<IQueryElement> next(engine.ParseQuery(L"(1)", nullptr));
                EXPECT_TRUE(next);
            });
        }
    }
}

TEST(Nesting, BeyondTheUsualStackIsAnError) { Overflow(usualStack); }

TEST(Nesting, BeyondASmallStackIsAnError) { Overflow(smallStack); }

void ParseAndEvaluate(const Nesting& nesting, int depth) {
    Host host;
    const OrvStringT query = MakeQuery(nesting, depth, true);
    ErrorSlot error;
    Ref<IQueryElement> tree(host.engine.ParseQuery(query.GetString(), error.Slot()));
    ASSERT_TRUE(tree) << Utf8(query.Left(40)) << ": " << error.Message();
    for (int round = 0; round < 2; ++round) {
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
        ASSERT_TRUE(value) << Utf8(query.Left(40)) << ": " << error.Message();
        if (nesting.value != nullptr) {
            EXPECT_EQ(Describe(value.Get()), nesting.value) << Utf8(query.Left(40));
        }
    }
}

// What fits is not refused: the limit is the stack's, no number of levels.
TEST(Nesting, AsPeopleNestWorksOnASmallStack) {
    RunOnThread(smallStack, [] {
        for (const Nesting& nesting : nestings) {
            ParseAndEvaluate(nesting, smallDepth);
        }
    });
}

TEST(Nesting, HundredsOfLevelsWorkOnTheUsualStack) {
    RunOnThread(usualStack, [] {
        for (const Nesting& nesting : nestings) {
            ParseAndEvaluate(nesting, usualDepth);
        }
    });
}

// Each depth around the limit: whatever part of the work runs out of stack, it says so.
TEST(Nesting, EachDepthUpToTheEndOfASmallStack) {
    RunOnThread(smallStack, [] {
        Host host;
        for (const Nesting& nesting : nestings) {
            int parsed = 0;
            int evaluated = 0;
            for (int depth = 1; depth < 2000; depth += depth / 16 + 1) {
                const OrvStringT query = MakeQuery(nesting, depth, true);
                ErrorSlot error;
                const Ref<IQueryElement> tree(host.engine.ParseQuery(query.GetString(), error.Slot()));
                if (!tree) {
                    ExpectStackError(error.Message(), query, host.engine.GetErrorPosition());
                    continue;
                }
                ++parsed;
                const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
                if (value) {
                    ++evaluated;
                } else {
                    EXPECT_EQ(error.Message(), "Internal error") << Utf8(query.Left(40));
                    EXPECT_GE(host.engine.GetErrorPosition(), 0);
                }
            }
            EXPECT_GT(parsed, 0);
            EXPECT_GE(parsed, evaluated);
        }
    });
}

} // namespace
} // namespace OrvUQL::Tests
