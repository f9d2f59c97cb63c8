// The nodes of a tree: what they take over, keep and give back.

#include "eval/Nodes.h"
#include "eval/Witness.h"

#include <gtest/gtest.h>

#include <climits>
#include <type_traits>

namespace OrvUQL::Tests {
namespace {

using Elements = CountedTest;

static_assert(!std::is_copy_constructible_v<ElementObject> && !std::is_copy_assignable_v<ElementObject>);
static_assert(!std::is_copy_constructible_v<ElementMethod> && !std::is_copy_assignable_v<ElementMethod>);
static_assert(!std::is_copy_constructible_v<OperatorBinary> && !std::is_copy_assignable_v<OperatorBinary>);

Ref<CountedElement> MakeElement(const char* label) { return Make<CountedElement>(new ObjectInt(1), label); }

// ---- literals ----

TEST_F(Elements, LiteralTakesAReferenceIfAsked) {
    const Ref<CountedObject> value = Make<CountedObject>();
    {
        const Ref<ElementObject> element = Make<ElementObject>(value.Get(), 3, true);
        EXPECT_EQ(value->References(), 2);
        EXPECT_EQ(element->GetValue(), value.Get());
        EXPECT_EQ(value->References(), 2) << "lent";
    }
    EXPECT_EQ(value->References(), 1);
}

TEST_F(Elements, LiteralTakesTheCallersReferenceOverIfNot) {
    CountedObject* const value = new CountedObject("value");
    const Ref<ElementObject> element = Make<ElementObject>(value, 3, false);
    EXPECT_EQ(value->References(), 1);
    EXPECT_EQ(Counted::live, 1);
}

TEST_F(Elements, LiteralEvaluatesToItsValueWithOneMoreReference) {
    const Ref<CountedObject> value = Make<CountedObject>();
    const Ref<ElementObject> element = Make<ElementObject>(value.Get(), 3, true);
    const Ref<IObject> result(element->Evaluate(nullptr, nullptr));
    EXPECT_EQ(result.Get(), value.Get());
    EXPECT_EQ(value->References(), 3);
}

TEST_F(Elements, LiteralsOfEachKind) {
    const Ref<ElementObject> boolean = Make<ElementObject>(true, 1);
    EXPECT_EQ(Describe(boolean->GetValue()), "bool true");
    const Ref<ElementObject> integer = Make<ElementObject>(-7, 2);
    EXPECT_EQ(Describe(integer->GetValue()), "int -7");
    const Ref<ElementObject> number = Make<ElementObject>(0.5, 3);
    EXPECT_EQ(Describe(number->GetValue()), "double 0.5");
    const Ref<ElementObject> text = Make<ElementObject>(L"it's", 4);
    EXPECT_EQ(Describe(text->GetValue()), "string it's");
    for (const ElementObject* const element : {boolean.Get(), integer.Get(), number.Get(), text.Get()}) {
        EXPECT_EQ(References(*element->GetValue()), 1);
        EXPECT_FALSE(element->GetValue()->IsStaticInstance());
    }
}

TEST_F(Elements, LiteralOfNothingHasNoValue) {
    QueryEngine engine;
    const Ref<IQueryElement> nothing(Make<ElementObject>(static_cast<IObject*>(nullptr), 3, true).Detach());
    EXPECT_EQ(engine.Evaluate(nothing.Get(), nullptr), nullptr);
    const Ref<IQueryElement> sum(Binary(nothing.Share(), L"+", Literal(1)));
    EXPECT_EQ(engine.Evaluate(sum.Get(), nullptr), nullptr);
    const Ref<IQueryElement> member(Member(nothing.Share(), L"ToString"));
    EXPECT_EQ(engine.Evaluate(member.Get(), nullptr), nullptr);
}

// ---- kinds and positions ----

TEST_F(Elements, KindsAndPositions) {
    struct Row {
        Ref<IQueryElement> element;
        IQueryElement::EType type;
        int position;
    };
    Row rows[] = {
        {Ref<IQueryElement>(Literal(1, 11)), IQueryElement::Object, 11},
        {Ref<IQueryElement>(Name(L"n", {}, 12)), IQueryElement::Method, 12},
        {Ref<IQueryElement>(Unary(L"-", Literal(1), 13)), IQueryElement::Operator, 13},
        {Ref<IQueryElement>(Binary(Literal(1), L"+", Literal(1), 14)), IQueryElement::Operator, 14},
        {Ref<IQueryElement>(Ternary(Truth(true), Literal(1), Literal(1), 15)), IQueryElement::Operator, 15},
        {Ref<IQueryElement>(Group(Literal(1), Literal(1), 16)), IQueryElement::Group, 16},
        {Ref<IQueryElement>(Array({}, 17)), IQueryElement::Array, 17},
        // Positions are kept as they come.
        {Ref<IQueryElement>(Literal(1, -5)), IQueryElement::Object, -5},
        {Ref<IQueryElement>(Name(L"n", {}, INT_MAX)), IQueryElement::Method, INT_MAX},
        {Ref<IQueryElement>(Binary(Literal(1), L"+", Literal(1), INT_MIN)), IQueryElement::Operator, INT_MIN},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.element->GetType(), row.type);
        EXPECT_EQ(row.element->GetStringPosition(), row.position);
    }
}

TEST_F(Elements, TypeCodes) {
    EXPECT_EQ(static_cast<int>(IQueryElement::Object), 0);
    EXPECT_EQ(static_cast<int>(IQueryElement::Method), 1);
    EXPECT_EQ(static_cast<int>(IQueryElement::Operator), 2);
    EXPECT_EQ(static_cast<int>(IQueryElement::Group), 3);
    EXPECT_EQ(static_cast<int>(IQueryElement::Array), 4);
}

// ---- names ----

TEST_F(Elements, MethodTakesItsParentOverAndGivesItBack) {
    CountedElement* const parent = MakeElement("parent").Detach();
    {
        const Ref<IQueryElement> method(Member(parent, L"m"));
        EXPECT_EQ(parent->References(), 1);
        EXPECT_EQ(dynamic_cast<const ElementMethod&>(*method).GetParent(), parent);
    }
    EXPECT_EQ(Counted::gone, std::vector<std::string>{"parent"});
}

TEST_F(Elements, MethodMovesItsArgumentsOutOfTheList) {
    CountedElement* const first = MakeElement("first").Detach();
    CountedElement* const third = MakeElement("third").Detach();
    QueryElementList list{first, nullptr, third};
    {
        const Ref<ElementMethod> method = Make<ElementMethod>(nullptr, L"m", list, false, 0);
        EXPECT_TRUE(list.empty());
        EXPECT_EQ(first->References(), 1);
        ASSERT_EQ(method->GetArguments().size(), 3U);
        EXPECT_EQ(method->GetArguments()[0], first);
        EXPECT_EQ(method->GetArguments()[1], nullptr);
        EXPECT_EQ(method->GetArguments()[2], third);
        // The list is as good as new.
        list.push_back(MakeElement("other").Detach());
        EXPECT_EQ(method->GetArguments().size(), 3U);
    }
    EXPECT_EQ(Counted::live, 1);
    EXPECT_EQ(Counted::gone.size(), 2U);
}

TEST_F(Elements, MethodKeepsItsNameAsWritten) {
    wchar_t name[] = L"@Name";
    QueryElementList none;
    const Ref<ElementMethod> method = Make<ElementMethod>(nullptr, name, none, true, 0);
    name[1] = L'x';
    EXPECT_EQ(method->GetName(), L"@Name");
    EXPECT_TRUE(method->IsMember());
    EXPECT_EQ(method->GetParent(), nullptr);
}

TEST_F(Elements, SetParentReleasesTheOldOne) {
    QueryElementList none;
    const Ref<ElementMethod> method = Make<ElementMethod>(nullptr, L"m", none, true, 0);
    CountedElement* const first = MakeElement("first").Detach();
    method->SetParentObject(first);
    EXPECT_EQ(first->References(), 1);
    EXPECT_EQ(method->GetParent(), first);
    CountedElement* const second = MakeElement("second").Detach();
    method->SetParentObject(second);
    EXPECT_EQ(Counted::gone, std::vector<std::string>{"first"});
    EXPECT_EQ(method->GetParent(), second);
    method->SetParentObject(nullptr);
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(method->GetParent(), nullptr);
}

// ---- groups, arrays, operators ----

TEST_F(Elements, GroupTakesBothOver) {
    CountedElement* const source = MakeElement("source").Detach();
    CountedElement* const inner = MakeElement("inner").Detach();
    {
        const Ref<ElementGroup> group = Make<ElementGroup>(source, inner, 0);
        EXPECT_EQ(group->GetSource(), source);
        EXPECT_EQ(group->GetInner(), inner);
        EXPECT_EQ(source->References(), 1);
        EXPECT_EQ(inner->References(), 1);
    }
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"source", "inner"}));
}

TEST_F(Elements, GroupOfNothingCanGo) {
    Make<ElementGroup>(nullptr, nullptr, 0);
    Make<ElementGroup>(MakeElement("source").Detach(), nullptr, 0);
    Make<ElementGroup>(nullptr, MakeElement("inner").Detach(), 0);
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"source", "inner"}));
}

TEST_F(Elements, ArrayTakesReferencesOfItsOwn) {
    const Ref<CountedElement> first = MakeElement("first");
    const Ref<CountedElement> third = MakeElement("third");
    QueryElementList list{first.Share(), nullptr, third.Share()};
    {
        const Ref<ElementArray> array = Make<ElementArray>(list, 0);
        EXPECT_EQ(list.size(), 3U) << "the caller keeps its list";
        EXPECT_EQ(first->References(), 3);
        EXPECT_EQ(third->References(), 3);
        ASSERT_EQ(array->GetItems().size(), 3U);
        EXPECT_EQ(array->GetItems()[0], first.Get());
        EXPECT_EQ(array->GetItems()[1], nullptr);
        EXPECT_EQ(array->GetItems()[2], third.Get());
    }
    EXPECT_EQ(first->References(), 2);
    EXPECT_EQ(third->References(), 2);
}

TEST_F(Elements, OperatorsTakeTheirOperandsOver) {
    CountedElement* const only = MakeElement("only").Detach();
    const OrvStringT op(L"-");
    Ref<OperatorUnary> unary = Make<OperatorUnary>(op, only, 0);
    EXPECT_EQ(unary->GetOperand(), only);
    EXPECT_EQ(only->References(), 1);
    unary.Reset();
    EXPECT_EQ(Counted::gone, std::vector<std::string>{"only"});

    CountedElement* const left = MakeElement("left").Detach();
    CountedElement* const right = MakeElement("right").Detach();
    Ref<OperatorBinary> binary = Make<OperatorBinary>(op, left, right, 0);
    EXPECT_EQ(binary->GetLeft(), left);
    EXPECT_EQ(binary->GetRight(), right);
    EXPECT_EQ(left->References(), 1);
    EXPECT_EQ(right->References(), 1);
    binary.Reset();
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"only", "left", "right"}));

    CountedElement* const condition = MakeElement("condition").Detach();
    CountedElement* const first = MakeElement("first").Detach();
    CountedElement* const second = MakeElement("second").Detach();
    Ref<OperatorTernary> ternary = Make<OperatorTernary>(op, condition, first, second, 0);
    EXPECT_EQ(ternary->GetCondition(), condition);
    EXPECT_EQ(ternary->GetFirst(), first);
    EXPECT_EQ(ternary->GetSecond(), second);
    ternary.Reset();
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"only", "left", "right", "condition", "first", "second"}));
}

TEST_F(Elements, OperatorsKeepTheirTextAsWritten) {
    for (const wchar_t* const text : {L"and", L"AND", L"&", L"<=", L"=<", L"?", L"no operator", L""}) {
        const Ref<IQueryElement> unary(Unary(text, Literal(1)));
        EXPECT_EQ(dynamic_cast<const OperatorUnary&>(*unary).GetOperator(), text);
        const Ref<IQueryElement> binary(Binary(Literal(1), text, Literal(1)));
        EXPECT_EQ(dynamic_cast<const OperatorBinary&>(*binary).GetOperator(), text);
        const Ref<IQueryElement> ternary(Ternary(Literal(1), Literal(1), Literal(1), 0, text));
        EXPECT_EQ(dynamic_cast<const OperatorTernary&>(*ternary).GetOperator(), text);
    }
}

// ---- sharing ----

// One subtree under two parents belongs to both.
TEST_F(Elements, SubtreesMayBeShared) {
    QueryEngine engine;
    const Ref<CountedElement> shared = MakeElement("shared");
    {
        const Ref<IQueryElement> sum(Binary(shared.Share(), L"+", shared.Share()));
        EXPECT_EQ(shared->References(), 3);
        const Ref<IObject> value(engine.Evaluate(sum.Get(), nullptr));
        EXPECT_EQ(Describe(value.Get()), "int 2");
        EXPECT_EQ(shared->Evaluations(), 2);
    }
    EXPECT_EQ(shared->References(), 1);
}

TEST_F(Elements, ALibraryTreeMayBeSharedToo) {
    QueryEngine engine;
    const Ref<IQueryElement> product(Binary(Literal(3), L"*", Literal(4)));
    product->AddRef();
    product->AddRef();
    Ref<IQueryElement> tree(Binary(product.Get(), L"-", Unary(L"-", product.Get())));
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "int 24");
    tree.Reset();
    const Ref<IObject> alone(engine.Evaluate(product.Get(), nullptr));
    EXPECT_EQ(Describe(alone.Get()), "int 12");
}

} // namespace
} // namespace OrvUQL::Tests
