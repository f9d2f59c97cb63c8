// Operator texts: what each means to which node. The parser makes only some of them; a host may write any.

#include "eval/Nodes.h"
#include "support/Host.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

using OperatorTexts = CountedTest;

std::string Evaluate(IQueryElement* element) {
    Host host;
    const Ref<IQueryElement> tree(element);
    return host.Run(*tree);
}

TEST_F(OperatorTexts, OfComparisons) {
    const struct {
        const wchar_t* text;
        EOperType type;
    } rows[] = {
        {L">", OperGreater},
        {L">=", OperGreaterEqual},
        {L"=>", OperGreaterEqual},
        {L"<", OperLess},
        {L"<=", OperLessEqual},
        {L"=<", OperLessEqual},
        {L"=", OperEqual},
        {L"==", OperStrictEqual},
        {L"<>", OperNotEqual},
        {L"><", OperNotEqual},
        {L"!=", OperNotEqual},
        // Anything else is none.
        {L"", OperNone},
        {L"+", OperNone},
        {L"!", OperNone},
        {L"&", OperNone},
        {L"=!", OperNone},
        {L"<<", OperNone},
        {L">>", OperNone},
        {L"!<", OperNone},
        {L"===", OperNone},
        {L"<=>", OperNone},
        {L"<= ", OperNone},
        {L" <", OperNone},
        {L"and", OperNone},
        {L"and=", OperNone},
        {L"lt", OperNone},
    };
    for (const auto& row : rows) {
        const Ref<IQueryElement> node(Binary(Literal(1), row.text, Literal(2)));
        EXPECT_EQ(dynamic_cast<const OperatorBinary&>(*node).GetCompareType(), row.type) << Utf8(row.text);
    }
}

TEST_F(OperatorTexts, OfBinaryOperators) {
    const struct {
        const wchar_t* text;
        const char* value; ///< of 7 OP 2
    } rows[] = {
        {L"+", "int 9"},
        {L"-", "int 5"},
        {L"*", "int 14"},
        {L"/", "double 3.5"},
        {L"\\", "int 3"},
        {L"^", "double 49"},
        {L"&", "bool true"},
        {L"|", "bool true"},
        // The words in any case.
        {L"and", "bool true"},
        {L"AND", "bool true"},
        {L"aNd", "bool true"},
        {L"or", "bool true"},
        {L"OR", "bool true"},
        {L"oR", "bool true"},
        {L">", "bool true"},
        {L">=", "bool true"},
        {L"=>", "bool true"},
        {L"<", "bool false"},
        {L"<=", "bool false"},
        {L"=<", "bool false"},
        {L"=", "bool false"},
        {L"==", "bool false"},
        {L"<>", "bool true"},
        {L"><", "bool true"},
        {L"!=", "bool true"},
        // Looks like a comparison and is none: ints are then neither equal nor unequal.
        {L"=!", "bool false"},
        {L"<<", "bool false"},
        {L">>", "bool false"},
        {L"===", "bool false"},
        {L"!<", "bool false"},
        {L"a=b", "bool false"},
        {L"and=", "bool false"},
        {L"->", "bool false"},
        // Unknown: no value, and no error either.
        {L"", "!"},
        {L"!", "!"},
        {L"not", "!"},
        {L"?", "!"},
        {L"&&", "!"},
        {L"||", "!"},
        {L"and ", "!"},
        {L" or", "!"},
        {L"xor", "!"},
        {L"++", "!"},
        {L"**", "!"},
        {L"%", "!"},
        {L"plus", "!"},
        {L"+ ", "!"},
        {L"\u00d7", "!"},
        {L"\uff0b", "!"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Evaluate(Binary(Literal(7), row.text, Literal(2))), row.value) << Utf8(row.text);
    }
}

// With two texts there is no verdict for a code that is none, but no failure either; with nulls there is none at all.
TEST_F(OperatorTexts, OfNoComparisonOnOtherTypes) {
    EXPECT_EQ(Evaluate(Binary(Literal(L"a"), L"=!", Literal(L"a"))), "bool false");
    EXPECT_EQ(Evaluate(Binary(Literal(1.5), L">>", Literal(1.5))), "bool false");
    EXPECT_EQ(Evaluate(Binary(Null(), L"=!", Null())), "!");
    EXPECT_EQ(Evaluate(Binary(Null(), L">>", Literal(1))), "!");
    EXPECT_EQ(Evaluate(Binary(Array({}), L"<<", Array({}))),
              "! Cannot compare object 'array' to object 'array'. Incompatible types for this operation");
}

TEST_F(OperatorTexts, OfUnaryOperators) {
    const struct {
        const wchar_t* text;
        const char* value; ///< of OP 7
    } rows[] = {
        {L"-", "int -7"},
        {L"+", "int 7"},
        {L"!", "bool false"},
        {L"not", "bool false"},
        {L"NOT", "bool false"},
        {L"nOt", "bool false"},
        {L"", "!"},
        {L"not ", "!"},
        {L"!!", "!"},
        {L"--", "!"},
        {L"~", "!"},
        {L"and", "!"},
        {L"=", "!"},
        {L"\u2212", "!"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Evaluate(Unary(row.text, Literal(7))), row.value) << Utf8(row.text);
    }
}

TEST_F(OperatorTexts, OfTernaryOperators) {
    EXPECT_EQ(Evaluate(Ternary(Truth(true), Literal(1), Literal(2), 0, L"?")), "int 1");
    for (const wchar_t* const text : {L"", L"??", L"? ", L":", L"?:", L"if"}) {
        EXPECT_EQ(Evaluate(Ternary(Truth(true), Literal(1), Literal(2), 0, text)), "!") << Utf8(text);
    }
}

// Operands are evaluated all the same, and their failures come first.
TEST_F(OperatorTexts, UnknownOnesEvaluateTheirOperands) {
    Host host;
    const Ref<CountedElement> left = Make<CountedElement>(new ObjectInt(1));
    const Ref<CountedElement> right = Make<CountedElement>(new ObjectInt(2));
    const Ref<CountedElement> third = Make<CountedElement>(new ObjectInt(3));
    const auto evaluate = [&](IQueryElement* element) {
        const Ref<IQueryElement> tree(element);
        EXPECT_EQ(host.engine.Evaluate(tree.Get(), nullptr), nullptr);
    };
    evaluate(Binary(left.Share(), L"unknown", right.Share()));
    EXPECT_EQ(left->Evaluations(), 1);
    EXPECT_EQ(right->Evaluations(), 1);
    evaluate(Unary(L"unknown", left.Share()));
    EXPECT_EQ(left->Evaluations(), 2);
    evaluate(Ternary(left.Share(), right.Share(), third.Share(), 0, L"unknown"));
    EXPECT_EQ(left->Evaluations(), 3) << "only the condition";
    EXPECT_EQ(right->Evaluations(), 1);
    EXPECT_EQ(third->Evaluations(), 0);
    EXPECT_EQ(Evaluate(Binary(Literal(1), L"unknown", Failing())), "! failed");
    EXPECT_EQ(Evaluate(Binary(Failing(), L"unknown", Failing(L"other"))), "! failed");
    EXPECT_EQ(Evaluate(Unary(L"unknown", Failing())), "! failed");
    EXPECT_EQ(Evaluate(Ternary(Failing(), Literal(1), Literal(2), 0, L"unknown")), "! failed");
}

// What an unknown operator leaves is nothing: whatever stands around it gets no value.
TEST_F(OperatorTexts, UnknownOnesEndWhatIsAroundThem) {
    const auto unknown = [] { return Binary(Literal(1), L"unknown", Literal(2)); };
    EXPECT_EQ(Evaluate(Binary(unknown(), L"+", Literal(1))), "!");
    EXPECT_EQ(Evaluate(Binary(Literal(L"a"), L"+", unknown())), "!");
    EXPECT_EQ(Evaluate(Unary(L"not", unknown())), "!");
    EXPECT_EQ(Evaluate(Ternary(unknown(), Literal(1), Literal(2))), "!");
    EXPECT_EQ(Evaluate(Ternary(Truth(false), Literal(1), unknown())), "!");
    EXPECT_EQ(Evaluate(Array({Literal(1), unknown()})), "!");
    EXPECT_EQ(Evaluate(Member(unknown(), L"ToString")), "!");
    EXPECT_EQ(Evaluate(Name(L"max", {Literal(1), unknown()})), "!");
    EXPECT_EQ(Evaluate(Group(unknown(), Literal(1))), "!");
    EXPECT_EQ(Evaluate(Group(Literal(1), unknown())), "!");
}

} // namespace
} // namespace OrvUQL::Tests
