// Where the engine says that an evaluation failed: at the innermost element whose own evaluation did.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

namespace OrvUQL::Tests {
namespace {

/// A host whose variable offers functions that deal with failures of their arguments:
///
///     $try(x)      the value of x, or 0 if that fails
///     $fails(x)    evaluates x and then fails, whatever came of it
///     $inner(x)    evaluates another query, which fails, before x; the value is that of x
///     $throws(x)   as $try, but the value throws std::bad_alloc when it is converted
class ErrorPositions : public CountedTest {
protected:
    void SetUp() override {
        CountedTest::SetUp();
        failing = host.Parse(L"         1 / 0");
        Plan plan;
        plan.label = "V";
        plan.invoke = [this](QueryEngine* engine, const wchar_t* name, const QueryElementList& args,
                             IError** err) -> IObject* {
            const OrvStringT function(name);
            if (function == L"inner") {
                EXPECT_EQ(engine->Evaluate(failing.Get(), nullptr), nullptr);
                EXPECT_EQ(engine->GetErrorPosition(), 11);
                return args[0]->Evaluate(engine, err);
            }
            Ref<IObject> value(args.empty() ? nullptr : args[0]->Evaluate(engine, nullptr));
            if (function == L"try") {
                return value ? value.Detach() : new ObjectInt(0);
            }
            if (function == L"throws") {
                Plan thrower;
                thrower.type = IObject::TypeInt;
                thrower.before = [](const std::string&) { throw std::bad_alloc(); };
                return new Witness(thrower);
            }
            if (err != nullptr) {
                *err = new Error(L"fails");
            }
            return nullptr;
        };
        host.engine.SetVariable(Ref<IObject>(new Witness(plan)).Get());
    }
    void TearDown() override {
        host.engine.SetVariable(nullptr);
        CountedTest::TearDown();
    }

    int Evaluate(IQueryElement& tree) {
        ErrorSlot error;
        const Ref<IObject> value(host.engine.Evaluate(&tree, error.Slot()));
        const int position = host.engine.GetErrorPosition();
        EXPECT_EQ(!value, position >= 0);
        // The position does not depend on whether anybody asks for the error.
        const Ref<IObject> quiet(host.engine.Evaluate(&tree, nullptr));
        EXPECT_EQ(host.engine.GetErrorPosition(), position);
        return position;
    }

    int Evaluate(const wchar_t* query) {
        const Ref<IQueryElement> tree = host.Parse(query);
        return tree ? Evaluate(*tree) : -2;
    }

    int EvaluateTree(IQueryElement* element) {
        const Ref<IQueryElement> tree(element);
        return Evaluate(*tree);
    }

    Host host;
    Ref<IQueryElement> failing;
};

struct Row {
    const wchar_t* query;
    int position;
};

TEST_F(ErrorPositions, Table) {
    constexpr Row rows[] = {
        // An operator fails where it stands, whichever operand it could not use.
        {L"1 / 0", 2},
        {L"  1   /0", 6},
        {L"1 + (2 / 0)", 7},
        {L"(1 \\ 0) + (2 / 0)", 3},
        {L"2147483647 + 1", 11},
        {L"'a' - 1", 4},
        {L"1 - 'a'", 2},
        {L"1 + 2 * 'a'", 6},
        {L"null + 1", 5},
        {L"-'a'", 0},
        {L"1 + -'a'", 4},
        {L"not 'x'", 0},
        {L" !'x'", 1},
        {L"'x' and true", 4},
        {L"true and 'x'", 5},
        {L"true or 'x' or 1", -1},
        {L"array() = array()", 8},
        {L"{1 mm} + {1 mm2}", 7},
        {L"{1 mm} < 1", 7},
        {L"'x' ? 1 : 2", 4},
        // The branch that fails, not the conditional.
        {L"true ? 1/0 : 2", 8},
        {L"false ? 1 : 2/0", 13},
        {L"false ? 1 : false ? 2 : 3/0", 25},
        {L"1/0 ? 1 : 2", 1},
        // Names stand at themselves, without a point.
        {L"Foo", 0},
        {L"  Foo(1)", 2},
        {L"5.Foo", 2},
        {L"5.ToString().Foo().Bar()", 13},
        {L"5.ToString().ToString().Foo", 24},
        {L"(1/0).ToString().Foo()", 2},
        {L".Foo", 1},
        {L"@Foo", 0},
        {L"1 + @Foo", 4},
        {L"#", 0},
        // Of a call that was reached its arguments' failures count ...
        {L"max(1, 2 / 0)", 9},
        {L"max(1, max(2, 3 / 0))", 16},
        {L"5.Radix(1/0)", 9},
        {L"iif(true, 1/0, 2)", 11},
        {L"iif(1/0, 1, 2)", 5},
        {L"max(1, Foo)", 7},
        // ... but what it cannot use is its own failure.
        {L"max(1, 'a')", 0},
        {L"1 + max(1, 'a')", 4},
        {L"round(1, 2, 3)", 0},
        {L"5.Radix()", 2},
        {L"5.Radix(1)", 2},
        {L"sqrt(-1)", 0},
        {L"iif('x', 1, 2)", 0},
        {L"min()", 0},
        // Groups fail where their parts do.
        {L"5[.Foo]", 3},
        {L"Foo[1]", 0},
        {L"5[1/0]", 3},
        {L"(1/0)[5]", 2},
        {L"5[6[.Foo]]", 5},
        // Nothing failed.
        {L"1", -1},
        {L"1 / 2", -1},
        {L"iif(true, 1, 1/0)", -1},
        {L"false and 1/0", -1},
        {L"null.Foo(1/0)", -1},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Evaluate(row.query), row.position) << Utf8(row.query);
    }
}

// What a host's function puts up with is no failure of the query.
TEST_F(ErrorPositions, OfFailuresThatSomebodyPutsUpWith) {
    constexpr Row rows[] = {
        {L"$try(1/0)", -1},
        {L"$try(1/0) + 1", -1},
        {L"$try(1/0) + 1/0", 13},
        {L"1/$try(1/0)", 1},
        {L"$try(1/0).Foo", 10},
        {L"$try(1/0) + Foo", 12},
        {L"$try(1/0) + 5.ToString().Foo", 25},
        {L"$try(1/0) - 'a'", 10},
        {L"$try(1/0) ? 1 : 'x' ? 2 : 3", 20},
        {L"max($try(1/0), 'a')", 0},
        {L"max($try(1/0), 2/0)", 16},
        {L"5[$try(1/0)].Foo", 13},
        {L"not $try(1/0) and 'x'", 14},
        {L"$inner(1) + 1", -1},
        {L"$inner(2/0) + 1", 8},
        {L"$inner(1).Foo", 10},
        {L"1 + $fails(1)", 4},
        {L"$fails()", 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Evaluate(row.query), row.position) << Utf8(row.query);
    }
}

// The end of memory is a failure of the element at work, whatever failed and was put up with before.
TEST_F(ErrorPositions, OfTheEndOfMemory) {
    constexpr Row rows[] = {
        {L"$throws(1) + 1", 11},   {L"-$throws(1)", 0},   {L"$throws(1) ? 1 : 2", 11}, {L"not $throws(1)", 0},
        {L"$throws(1/0) + 1", 13}, {L"-$throws(1/0)", 0}, {L"max(1, $throws(1))", 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Evaluate(row.query), row.position) << Utf8(row.query);
    }
}

TEST_F(ErrorPositions, OfTheEndOfMemoryInsideOfAnOperator) {
    EXPECT_EQ(Evaluate(L"1 + 2 * $throws(1)"), 6);
    EXPECT_EQ(Evaluate(L"not (1 + 2 * (-$throws(1)))"), 14);
}

TEST_F(ErrorPositions, OfAHostsElements) {
    EXPECT_EQ(EvaluateTree(Failing(L"failed", 7)), 7);
    EXPECT_EQ(EvaluateTree(Failing(nullptr, 7)), 7);
    EXPECT_EQ(EvaluateTree(Binary(Literal(1), L"+", Failing(L"failed", 7), 3)), 7);
    EXPECT_EQ(EvaluateTree(Binary(Failing(L"failed", 7), L"+", Failing(L"failed", 8), 3)), 7);
    EXPECT_EQ(EvaluateTree(Unary(L"-", Failing(L"failed", 7), 3)), 7);
    EXPECT_EQ(EvaluateTree(Ternary(Truth(true), Failing(L"failed", 7), Null(), 3)), 7);
    EXPECT_EQ(EvaluateTree(Member(Failing(L"failed", 7), L"x", {}, 3)), 7);
    EXPECT_EQ(EvaluateTree(Name(L"max", {Literal(1), Failing(L"failed", 7)}, 3)), 7);
    EXPECT_EQ(EvaluateTree(Name(L"iif", {Truth(true), Failing(L"failed", 7), Null()}, 3)), 7);
    EXPECT_EQ(EvaluateTree(Group(Failing(L"failed", 7), Null(), 3)), 7);
    EXPECT_EQ(EvaluateTree(Group(Null(), Failing(L"failed", 7), 3)), 7);
    EXPECT_EQ(EvaluateTree(Array({Null(), Failing(L"failed", 7)}, 3)), 7);
    // Behind something that was put up with, too.
    const Ref<IQueryElement> tree(Binary(host.Parse(L"$try(1/0)").Detach(), L"+", Failing(L"failed", 7), 3));
    EXPECT_EQ(Evaluate(*tree), 7);
}

TEST_F(ErrorPositions, OfUnknownOperators) {
    EXPECT_EQ(EvaluateTree(Binary(Literal(1, 1), L"unknown", Literal(2, 2), 3)), 3);
    EXPECT_EQ(EvaluateTree(Unary(L"unknown", Literal(2, 2), 3)), 3);
    EXPECT_EQ(EvaluateTree(Ternary(Truth(true), Null(), Null(), 3, L"unknown")), 3);
    EXPECT_EQ(EvaluateTree(Unary(L"-", Binary(Literal(1), L"unknown", Literal(2), 5), 3)), 5);
}

TEST_F(ErrorPositions, AreOfTheLastEvaluationOrParse) {
    const Ref<IQueryElement> good = host.Parse(L"1");
    const Ref<IQueryElement> bad = host.Parse(L"1 / 0");
    EXPECT_EQ(host.engine.GetErrorPosition(), -1);
    EXPECT_EQ(host.engine.Evaluate(bad.Get(), nullptr), nullptr);
    EXPECT_EQ(host.engine.GetErrorPosition(), 2);
    const Ref<IObject> value(host.engine.Evaluate(good.Get(), nullptr));
    EXPECT_EQ(host.engine.GetErrorPosition(), -1);
    EXPECT_EQ(host.engine.Evaluate(bad.Get(), nullptr), nullptr);
    EXPECT_EQ(host.engine.ParseQuery(L"a b c", nullptr), nullptr);
    EXPECT_EQ(host.engine.GetErrorPosition(), 2);
    EXPECT_EQ(host.engine.ParseQuery(L"a + b c", nullptr), nullptr);
    EXPECT_EQ(host.engine.GetErrorPosition(), 6);
    const Ref<IQueryElement> another = host.Parse(L"2");
    EXPECT_EQ(host.engine.GetErrorPosition(), -1);
}

TEST_F(ErrorPositions, InLongChains) {
    std::wstring query;
    for (int term = 0; term < 1000; ++term) {
        query += L"1 + ";
    }
    query += L"1 / 0";
    const int position = static_cast<int>(query.size()) - 3;
    for (int term = 0; term < 1000; ++term) {
        query += L" + 1";
    }
    EXPECT_EQ(Evaluate(query.c_str()), position);

    query = L"5";
    for (int call = 0; call < 100; ++call) {
        query += L".This()";
    }
    query += L".Foo";
    const int call = static_cast<int>(query.size()) - 3;
    query += L".This().This()";
    EXPECT_EQ(Evaluate(query.c_str()), call);
}

} // namespace
} // namespace OrvUQL::Tests
