// Trees made by hand, nested deeper than any stack in every way there is: operators inside of operators take none of
// it, everything else ends in an error where the stack does, and releasing takes none.

#include "eval/Nodes.h"
#include "support/Effort.h"
#include "support/Host.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>

namespace OrvUQL::Tests {
namespace {

constexpr std::size_t usualStack = 8 * 1024 * 1024;

// Even the smallest frame, so many times, is more than the usual stack.
constexpr int excess = 200000;

constexpr int million = PartOf(1000000);

/// One more node around a tree, which is taken over.
struct Wrapping {
    const char* name;
    std::function<IQueryElement*(IQueryElement*)> wrap;
    const char* value;    ///< of 7 wrapped a few times
    bool recurses = true; ///< evaluation needs stack for each
};

const Wrapping wrappings[] = {
    {"operand of -", [](IQueryElement* e) { return Unary(L"-", Unary(L"-", e)); }, "int 7", false},
    {"operand of not", [](IQueryElement* e) { return Unary(L"not", e); }, nullptr, false},
    {"right of +", [](IQueryElement* e) { return Binary(Literal(0), L"+", e); }, "int 7", false},
    {"right of and", [](IQueryElement* e) { return Binary(Truth(true), L"and", e); }, "bool true", false},
    {"right of =", [](IQueryElement* e) { return Binary(Literal(7), L"=", e); }, nullptr, false},
    {"condition", [](IQueryElement* e) { return Ternary(e, Literal(7), Literal(8)); }, "int 7", false},
    {"branch", [](IQueryElement* e) { return Unary(L"+", Ternary(Truth(true), e, Literal(8))); }, "int 7", false},
    {"argument", [](IQueryElement* e) { return Name(L"max", {e}); }, "int 7"},
    {"second argument",
     [](IQueryElement* e) {
         return Name(L"max", {Literal(0), e});
     },
     "int 7"},
    {"unevaluated argument",
     [](IQueryElement* e) {
         return Name(L"iif", {Truth(true), e, Null()});
     },
     "int 7"},
    {"source of a group", [](IQueryElement* e) { return Group(e, Member(nullptr, L"This")); }, "int 7"},
    {"inside of a group", [](IQueryElement* e) { return Group(Literal(0), e); }, "int 7"},
    {"item", [](IQueryElement* e) { return Array({e}); }, nullptr},
    {"parent under an operator", [](IQueryElement* e) { return Member(Unary(L"-", e), L"Abs"); }, "int 7"},
    {"left under a sign", [](IQueryElement* e) { return Binary(Unary(L"+", e), L"+", Literal(0)); }, "int 7", false},
};

IQueryElement* Nest(const Wrapping& wrapping, int depth) {
    IQueryElement* tree = Literal(7);
    for (int round = 0; round < depth; ++round) {
        tree = wrapping.wrap(tree);
    }
    return tree;
}

void Overflow(std::size_t stack, int depth) {
    RunOnThread(stack, [depth] {
        Host host;
        for (const Wrapping& wrapping : wrappings) {
            Ref<IQueryElement> tree(Nest(wrapping, depth));
            for (int round = 0; round < 2; ++round) {
                ErrorSlot error;
                const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
                EXPECT_EQ(static_cast<bool>(value), !wrapping.recurses) << wrapping.name;
                EXPECT_EQ(error.Message(), wrapping.recurses ? "Internal error" : "(none)") << wrapping.name;
                if (value && wrapping.value != nullptr) {
                    EXPECT_EQ(Describe(value.Get()), wrapping.value) << wrapping.name;
                }
                EXPECT_EQ(host.engine.GetGroupParent(), nullptr) << wrapping.name;
            }
            tree.Reset();
            EXPECT_EQ(host.Run(L"-(1 + 2) * 3"), "int -9") << "the engine is as good as before";
        }
    });
}

TEST(DeepTrees, BeyondASmallStackAreErrors) { Overflow(smallStack, PartOf(excess)); }

TEST(DeepTrees, BeyondTheUsualStackAreErrors) { Overflow(usualStack, excess); }

TEST(DeepTrees, ThatFitAreEvaluated) {
    RunOnThread(smallStack, [] {
        Host host;
        for (const Wrapping& wrapping : wrappings) {
            const Ref<IQueryElement> tree(Nest(wrapping, 20));
            ErrorSlot error;
            const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
            ASSERT_TRUE(value) << wrapping.name << ": " << error.Message();
            if (wrapping.value != nullptr) {
                EXPECT_EQ(Describe(value.Get()), wrapping.value) << wrapping.name;
            }
        }
    });
}

// Nobody needs to evaluate a tree for it to go.
TEST(DeepTrees, AreReleasedOnASmallStack) {
    for (const Wrapping& wrapping : wrappings) {
        IQueryElement* const tree = Nest(wrapping, PartOf(excess));
        RunOnThread(smallStack, [&] { tree->Release(); });
    }
}

TEST(DeepTrees, OfEveryKindMixed) {
    RunOnThread(smallStack, [] {
        Host host;
        IQueryElement* tree = Literal(7);
        for (int round = 0; round < million; ++round) {
            tree = wrappings[static_cast<std::size_t>(round) % std::size(wrappings)].wrap(tree);
        }
        const Ref<IQueryElement> all(tree);
        ErrorSlot error;
        const Ref<IObject> value(host.engine.Evaluate(all.Get(), error.Slot()));
        EXPECT_FALSE(value);
        EXPECT_EQ(error.Message(), "Internal error");
    });
}

using ReleaseOrder = CountedTest;

// What is nested a few times, as people do, goes at once and in its natural order: the outer first, then what it held
// from the left to the right.
TEST_F(ReleaseOrder, ShallowTreesGoInTheirNaturalOrder) {
    const auto leaf = [](const char* label) { return new CountedElement(new ObjectInt(1), label); };
    IQueryElement* const tree =
        Binary(Member(leaf("parent"), L"m", {leaf("argument 1"), leaf("argument 2")}), L"+",
               Group(Unary(L"-", leaf("operand")), Ternary(leaf("condition"), leaf("first"), leaf("second"))));
    tree->Release();
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"parent", "argument 1", "argument 2", "operand", "condition",
                                                       "first", "second"}));
}

} // namespace
} // namespace OrvUQL::Tests
