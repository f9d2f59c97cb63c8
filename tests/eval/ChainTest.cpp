// Chains as long as generators write them, on a small stack: parsed, evaluated twice and released without recursion.

#include "eval/Nodes.h"
#include "support/Effort.h"
#include "support/Host.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

constexpr int million = PartOf(1000000);
constexpr int hundredThousand = PartOf(100000);

OrvStringT Repeat(const wchar_t* text, int count) {
    OrvStringT all;
    for (int round = 0; round < count; ++round) {
        all += text;
    }
    return all;
}

/// A query made of a beginning, `count` times a repeated part, and an end.
struct Chain {
    const wchar_t* begin;
    const wchar_t* part;
    const wchar_t* end;
    std::string value;
};

void RunChain(const Chain& chain, int count) {
    OrvStringT query = chain.begin;
    query += Repeat(chain.part, count);
    query += chain.end;
    RunOnThread(smallStack, [&] {
        Host host;
        ErrorSlot error;
        Ref<IQueryElement> tree(host.engine.ParseQuery(query.GetString(), error.Slot()));
        ASSERT_TRUE(tree) << Utf8(query.Left(40)) << ": " << error.Message();
        for (int round = 0; round < 2; ++round) {
            const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
            ASSERT_TRUE(value) << Utf8(query.Left(40)) << ": " << error.Message();
            EXPECT_EQ(Describe(value.Get()), chain.value) << Utf8(query.Left(40));
        }
        tree.Reset();
    });
}

TEST(Chains, OfAMillionOperators) {
    const std::string count = std::to_string(million);
    const std::string more = std::to_string(million + 1);
    const Chain chains[] = {
        {L"1", L"+1", L"", "int " + more},
        {L"0", L"-1", L"", "int -" + count},
        {L"1", L"*1", L"", "int 1"},
        {L"1", L"^1", L"", "double 1"},
        {L"true", L" and true", L" and false", "bool false"},
        {L"false", L" or false", L" or true", "bool true"},
        {L"1", L"=1", L"", "bool true"},
        {L"0", L"<1<2", L"", "bool true"},
    };
    for (const Chain& chain : chains) {
        RunChain(chain, million);
    }
}

TEST(Chains, OfMixedOperators) {
    const Chain chains[] = {
        {L"0", L" + 1.0", L"", "double " + std::to_string(hundredThousand)},
        {L"1", L"/1", L"", "double 1"},
        {L"7", L"\\1", L"", "int 7"},
        {L"true", L" and true", L"", "bool true"},
        {L"false", L"|false", L"&true", "bool false"},
        {L"true", L"==true", L"", "bool true"},
        {L"1", L"+1-1", L"", "int 1"},
        {L"1", L"+2*3-6", L"", "int 1"},
        {L"-1", L"+1-1", L"", "int -1"},
        {L"not 1", L"=1", L"", "bool false"},
        {L"true", L" and not false", L"", "bool true"},
        {L"1", L" + (1) - max(1, 1)", L"", "int 1"},
    };
    for (const Chain& chain : chains) {
        RunChain(chain, hundredThousand);
    }
}

// The result grows in place: what is added to a text costs what it is long, not what the text is long.
TEST(Chains, OfAMillionTexts) {
    const Chain chain = {L"''", L"+'a'", L"", "string " + std::string(static_cast<std::size_t>(million), 'a')};
    RunChain(chain, million);
}

TEST(Chains, OfConditionals) {
    const Chain chains[] = {
        {L"", L"false ? 1 : ", L"2", "int 2"},
        {L"", L"false ? 1 : ", L"true ? 3 : 2", "int 3"},
        {L"1 + (", L"1 = 2 ? 'no' : ", L"2)", "int 3"},
        {L"true ? 7 : ", L"1 ? 1 : ", L"2", "int 7"},
    };
    for (const Chain& chain : chains) {
        RunChain(chain, hundredThousand);
    }
}

TEST(Chains, OfCalls) {
    const Chain chains[] = {
        {L"'a'", L".ToString()", L"", "string a"}, {L"5", L".This", L"", "int 5"},
        {L"null", L".a.b(1)", L"", "null null"},   {L"-5", L".This()", L".Abs()", "int -5"},
        {L"5[", L".This()", L"]", "int 5"},        {L"5", L".This()", L"[.This()]", "int 5"},
    };
    for (const Chain& chain : chains) {
        RunChain(chain, hundredThousand);
    }
}

// Arguments and items are lists, of any length.
TEST(Chains, OfArguments) {
    RunChain({L"max(0", L",1", L")", "int 1"}, million);
    RunChain({L"null.f(0", L",1+1", L")", "null null"}, hundredThousand);
}

// The chains go through trees made by hand just so: each node's left side, parent or last branch is the next node.
TEST(Chains, MadeByHand) {
    RunOnThread(smallStack, [] {
        QueryEngine engine;
        IQueryElement* sum = Literal(0);
        IQueryElement* calls = Literal(5);
        IQueryElement* decisions = Literal(7);
        for (int round = 0; round < million; ++round) {
            sum = Binary(sum, L"+", Literal(1));
            calls = Member(calls, L"This");
            decisions = Ternary(Truth(false), Null(), decisions);
        }
        const struct {
            IQueryElement* tree;
            std::string value;
        } rows[] = {{sum, "int " + std::to_string(million)}, {calls, "int 5"}, {decisions, "int 7"}};
        for (const auto& row : rows) {
            const Ref<IQueryElement> tree(row.tree);
            for (int round = 0; round < 2; ++round) {
                const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
                ASSERT_TRUE(value) << row.value;
                EXPECT_EQ(Describe(value.Get()), row.value);
            }
        }
    });
}

// A chain that fails somewhere gives back what it had.
TEST(Chains, MayFailAnywhere) {
    OrvStringT query = Repeat(L"'a' + ", 1000);
    query += L"1/0";
    query += Repeat(L" + 'a'", 1000);
    Host host;
    EXPECT_EQ(host.Run(query.GetString()), "! Division By Zero");
    query = L"'a'";
    query += Repeat(L".This()", 1000);
    query += L".Foo";
    query += Repeat(L".This()", 1000);
    EXPECT_EQ(host.Run(query.GetString()), "! Identifier 'Foo' is not a method of 'string'");
}

// Chains inside of chains each keep their own place.
TEST(Chains, InsideOfChains) {
    Host host;
    const OrvStringT calls = Repeat(L".This()", 20);
    OrvStringT inner = L"(1";
    inner += Repeat(L" + 1", 20);
    inner += L")";
    OrvStringT query = L"0";
    for (int round = 0; round < 20; ++round) {
        query += L" + max(";
        query += inner;
        query += calls;
        query += L", 2";
        query += calls;
        query += L")";
        query += calls;
    }
    EXPECT_EQ(host.Run(query.GetString()), "int 420");
}

} // namespace
} // namespace OrvUQL::Tests
