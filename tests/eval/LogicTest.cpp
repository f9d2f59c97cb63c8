// and, or, not, and the conditional: truth, and what is not evaluated.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <limits>

namespace OrvUQL::Tests {
namespace {

using Logic = CountedTest;
using Conditionals = CountedTest;

/// A value and its truth; "" for those that have none.
struct Operand {
    const char* name;
    IQueryElement* (*make)();
    const char* truth;
    const char* message;
};

const Operand operands[] = {
    {"true", [] { return Truth(true); }, "true", nullptr},
    {"false", [] { return Truth(false); }, "false", nullptr},
    {"null", [] { return Null(); }, "false", nullptr},
    {"1", [] { return Literal(1); }, "true", nullptr},
    {"-1", [] { return Literal(-1); }, "true", nullptr},
    {"0", [] { return Literal(0); }, "false", nullptr},
    {"0.1", [] { return Literal(0.1); }, "true", nullptr},
    {"0.0", [] { return Literal(0.0); }, "false", nullptr},
    {"-0.0", [] { return Literal(-0.0); }, "false", nullptr},
    {"NaN", [] { return Literal(std::numeric_limits<double>::quiet_NaN()); }, "true", nullptr},
    {"'true'", [] { return Literal(L"true"); }, "true", nullptr},
    {"'FALSE'", [] { return Literal(L"FALSE"); }, "false", nullptr},
    {"'1'", [] { return Literal(L"1"); }, "true", nullptr},
    {"'0'", [] { return Literal(L"0"); }, "false", nullptr},
    {"' 0.0 '", [] { return Literal(L" 0.0 "); }, "false", nullptr},
    {"'yes'", [] { return Literal(L"yes"); }, "", "! Cannot convert string 'yes' to Boolean"},
    {"''", [] { return Literal(L""); }, "", "! Cannot convert string '' to Boolean"},
    {"array", [] { return Array({}); }, "", "! Cannot convert string '()' to Boolean"},
    {"array(0)", [] { return Array({Literal(0)}); }, "false", nullptr},
    {"unit", [] { return Literal(new ObjectUnit(nullptr, 2.0, 2, false)); }, "",
     "! Cannot convert string '2 \xc2\xb2' to Boolean"},
    {"unit of power 0", [] { return Literal(new ObjectUnit(nullptr, 2.0, 0, false)); }, "true", nullptr},
    {"global", [] { return Literal(new ObjectGlobal()); }, "", "! Cannot convert string '' to Boolean"},
    {"expression", [] { return Literal(new ObjectExpression(nullptr)); }, "", "!"},
};

std::string Evaluate(IQueryElement* element) {
    QueryEngine engine;
    const Ref<IQueryElement> tree(element);
    return Attempt([&](IError** err) { return engine.Evaluate(tree.Get(), err); });
}

std::string Bool(bool value) { return value ? "bool true" : "bool false"; }

TEST_F(Logic, EachPairOfOperands) {
    for (const Operand& left : operands) {
        for (const Operand& right : operands) {
            const std::string what = std::string(left.name) + " and/or " + right.name;
            const bool l = std::string(left.truth) == "true";
            const bool r = std::string(right.truth) == "true";
            for (const bool isAnd : {true, false}) {
                const bool decided = l != isAnd; // by the left alone
                const std::string expected = left.message != nullptr    ? left.message
                                             : decided                  ? Bool(l)
                                             : right.message != nullptr ? right.message
                                                                        : Bool(r);
                EXPECT_EQ(Evaluate(Binary(left.make(), isAnd ? L"and" : L"or", right.make())), expected) << what;
                EXPECT_EQ(Evaluate(Binary(left.make(), isAnd ? L"&" : L"|", right.make())), expected) << what;
            }
        }
    }
}

TEST_F(Logic, Negation) {
    for (const Operand& operand : operands) {
        const std::string expected =
            operand.message != nullptr ? operand.message : Bool(std::string(operand.truth) != "true");
        EXPECT_EQ(Evaluate(Unary(L"not", operand.make())), expected) << operand.name;
        EXPECT_EQ(Evaluate(Unary(L"!", operand.make())), expected) << operand.name;
    }
}

TEST_F(Logic, EvaluatesTheRightOperandOnlyWhereItDecides) {
    QueryEngine engine;
    for (const bool isAnd : {true, false}) {
        for (const bool left : {true, false}) {
            CountedElement* const first = new CountedElement(new ObjectBool(left));
            CountedElement* const second = new CountedElement(new ObjectBool(true));
            const Ref<IQueryElement> tree(Binary(first, isAnd ? L"and" : L"or", second));
            for (int round = 1; round <= 3; ++round) {
                const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
                EXPECT_EQ(Describe(value.Get()), Bool(isAnd ? left : true));
                EXPECT_EQ(first->Evaluations(), round);
                EXPECT_EQ(second->Evaluations(), left == isAnd ? round : 0);
            }
        }
    }
}

// In a chain each operand is looked at until the rest cannot matter to its own operator; there is no jump to the end.
TEST_F(Logic, ChainsDecideOperatorByOperator) {
    QueryEngine engine;
    CountedElement* const a = new CountedElement(new ObjectBool(false));
    CountedElement* const b = new CountedElement(new ObjectBool(true));
    CountedElement* const c = new CountedElement(new ObjectBool(true));
    CountedElement* const d = new CountedElement(new ObjectBool(false));
    // (((a and b) or c) or d): false, b not asked; c asked and true; d not asked.
    const Ref<IQueryElement> tree(Binary(Binary(Binary(a, L"and", b), L"or", c), L"or", d));
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "bool true");
    EXPECT_EQ(a->Evaluations(), 1);
    EXPECT_EQ(b->Evaluations(), 0);
    EXPECT_EQ(c->Evaluations(), 1);
    EXPECT_EQ(d->Evaluations(), 0);
}

TEST_F(Logic, WhatIsNotEvaluatedCannotFail) {
    EXPECT_EQ(Evaluate(Binary(Truth(false), L"and", Failing())), "bool false");
    EXPECT_EQ(Evaluate(Binary(Truth(true), L"or", Failing())), "bool true");
    EXPECT_EQ(Evaluate(Binary(Truth(true), L"and", Failing())), "! failed");
    EXPECT_EQ(Evaluate(Binary(Truth(false), L"or", Failing())), "! failed");
    EXPECT_EQ(Evaluate(Binary(Failing(), L"and", Truth(true))), "! failed");
}

// Whatever the operands are, the result is a bool, and a new one.
TEST_F(Logic, ResultsAreNewBools) {
    QueryEngine engine;
    const Ref<IQueryElement> tree(Binary(Truth(true), L"or", Truth(true)));
    const auto& literal = dynamic_cast<const ElementObject&>(*dynamic_cast<const OperatorBinary&>(*tree).GetLeft());
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_NE(value.Get(), literal.GetValue());
    EXPECT_EQ(References(*value), 1);
    EXPECT_EQ(Evaluate(Binary(Literal(5), L"or", Literal(7))), "bool true");
    EXPECT_EQ(Evaluate(Binary(Null(), L"and", Literal(7))), "bool false");
}

// ---- the conditional ----

TEST_F(Conditionals, ChooseByEachKindOfCondition) {
    for (const Operand& operand : operands) {
        const std::string expected = operand.message != nullptr             ? operand.message
                                     : std::string(operand.truth) == "true" ? "string yes"
                                                                            : "string no";
        EXPECT_EQ(Evaluate(Ternary(operand.make(), Literal(L"yes"), Literal(L"no"))), expected) << operand.name;
    }
}

TEST_F(Conditionals, EvaluateOneBranchOnly) {
    QueryEngine engine;
    for (const bool truth : {true, false}) {
        CountedElement* const condition = new CountedElement(new ObjectBool(truth));
        CountedElement* const first = new CountedElement(new ObjectInt(1));
        CountedElement* const second = new CountedElement(new ObjectInt(2));
        const Ref<IQueryElement> tree(Ternary(condition, first, second));
        for (int round = 1; round <= 3; ++round) {
            const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
            EXPECT_EQ(Describe(value.Get()), truth ? "int 1" : "int 2");
            EXPECT_EQ(condition->Evaluations(), round);
            EXPECT_EQ(first->Evaluations(), truth ? round : 0);
            EXPECT_EQ(second->Evaluations(), truth ? 0 : round);
        }
    }
    EXPECT_EQ(Evaluate(Ternary(Truth(true), Literal(1), Failing())), "int 1");
    EXPECT_EQ(Evaluate(Ternary(Truth(false), Failing(), Literal(2))), "int 2");
    EXPECT_EQ(Evaluate(Ternary(Truth(true), Failing(), Literal(2))), "! failed");
    EXPECT_EQ(Evaluate(Ternary(Failing(L"condition"), Failing(), Failing())), "! condition");
}

// The branch's value itself, not a copy.
TEST_F(Conditionals, HandTheBranchsValueOn) {
    QueryEngine engine;
    const Ref<CountedObject> value = Make<CountedObject>();
    const Ref<IQueryElement> tree(Ternary(Truth(true), Literal(value.Share()), Null()));
    const Ref<IObject> result(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(result.Get(), value.Get());
    EXPECT_EQ(value->References(), 3);
    // Also where the conditional is an operand.
    EXPECT_EQ(Evaluate(Binary(Ternary(Truth(false), Literal(1), Literal(2)), L"+", Literal(3))), "int 5");
    EXPECT_EQ(Evaluate(Unary(L"-", Ternary(Truth(true), Literal(1.5), Literal(2)))), "double -1.5");
}

TEST_F(Conditionals, Chain) {
    Host host;
    const wchar_t* const query = L"$a() ? 1 : $b() ? 2 : $c() ? 3 : 4";
    const Ref<IQueryElement> tree = host.Parse(query);
    for (int answer = 1; answer <= 4; ++answer) {
        int asked = 0;
        Plan plan;
        plan.invoke = [&](QueryEngine*, const wchar_t* name, const QueryElementList&, IError**) -> IObject* {
            EXPECT_EQ(name[0], L'a' + asked) << "in order";
            return new ObjectBool(++asked == answer);
        };
        host.engine.SetVariable(Ref<IObject>(new Witness(plan)).Get());
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(Describe(value.Get()), "int " + std::to_string(answer));
        EXPECT_EQ(asked, answer < 4 ? answer : 3);
    }
    host.engine.SetVariable(nullptr);
}

TEST_F(Conditionals, NestInEachPlace) {
    Host host;
    EXPECT_EQ(host.Run(L"(true ? false : true) ? 1 : 2"), "int 2");
    EXPECT_EQ(host.Run(L"true ? false ? 1 : 2 : 3"), "int 2");
    EXPECT_EQ(host.Run(L"true ? true ? true ? 1 : 2 : 3 : 4"), "int 1");
    EXPECT_EQ(host.Run(L"false ? 1 : true ? false ? 2 : 3 : 4"), "int 3");
    EXPECT_EQ(host.Run(L"false ? 1 : 'x' ? 2 : 3"), "! Cannot convert string 'x' to Boolean");
    EXPECT_EQ(host.Run(L"true ? 1 : 'x' ? 2 : 3"), "int 1");
}

} // namespace
} // namespace OrvUQL::Tests
