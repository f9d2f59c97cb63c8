// The wrapper of an unevaluated argument: it keeps its element and does nothing else.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

using Expression = CountedTest;

TEST_F(Expression, KeepsItsElement) {
    CountedElement* const element = new CountedElement(nullptr, "element");
    const Ref<ObjectExpression> expression = Make<ObjectExpression>(element);
    EXPECT_EQ(element->References(), 2);
    EXPECT_EQ(expression->GetQueryElement(), element);
    EXPECT_EQ(element->References(), 2) << "it is lent";
    element->Release();
    EXPECT_EQ(expression->GetQueryElement(), element);
}

TEST_F(Expression, MayBeEmpty) {
    const Ref<ObjectExpression> expression = Make<ObjectExpression>(nullptr);
    EXPECT_EQ(expression->GetQueryElement(), nullptr);
}

TEST_F(Expression, HasATypeAndIsNothingElse) {
    const Ref<ObjectExpression> expression = Make<ObjectExpression>(nullptr);
    EXPECT_EQ(expression->GetType(), IObject::TypeExpression);
    EXPECT_EQ(expression->GetTypeName(), L"expression");
    EXPECT_FALSE(expression->IsNull());
    EXPECT_FALSE(expression->IsUnit());
    EXPECT_FALSE(expression->IsStaticInstance());
    EXPECT_EQ(expression->GetUnitInterface(), nullptr);
    EXPECT_EQ(static_cast<const ObjectExpression&>(*expression).GetUnitInterface(), nullptr);
}

// Whoever asked knows better what to say: an error that is already there must survive, and none may appear.
TEST_F(Expression, ConvertsToNothingAndSaysNothing) {
    CountedElement* const element = new CountedElement(new ObjectInt(5));
    ObjectExpression expression(element);
    const Ref<CountedObject> other = Make<CountedObject>();
    const Ref<IUnitDefinition> definition(new UnitDefinition(1, L"g", 1.0, nullptr));
    Error earlier(L"earlier");
    const QueryElementList args{new CountedElement(nullptr)};
    QueryEngine engine;
    for (IError* const before : {static_cast<IError*>(nullptr), static_cast<IError*>(&earlier)}) {
        IError* error = before;
        bool boolean = true;
        int integer = 17;
        double number = 17;
        OrvStringT text(L"text");
        bool verdict = true;
        EXPECT_FALSE(expression.ToBool(boolean, &error));
        EXPECT_FALSE(expression.ToInt(integer, &error));
        EXPECT_FALSE(expression.ToDouble(number, &error));
        EXPECT_FALSE(expression.ToString(text, &error));
        EXPECT_EQ(expression.ToNumeric(&error), nullptr);
        EXPECT_EQ(expression.ToUnit(definition.Get(), &error), nullptr);
        EXPECT_EQ(expression.ToUnit(nullptr, &error), nullptr);
        for (int type = 0; type <= 9; ++type) {
            EXPECT_EQ(expression.ChangeType(static_cast<IObject::EType>(type), &error), nullptr);
        }
        for (int op = 0; op <= 7; ++op) {
            EXPECT_FALSE(expression.CompareTo(static_cast<EOperType>(op), other.Get(), false, verdict, &error));
            EXPECT_FALSE(expression.CompareTo(static_cast<EOperType>(op), other.Get(), true, verdict, &error));
        }
        for (const wchar_t* const name : {L"help", L"ToString", L"TypeName", L"Foo", L""}) {
            EXPECT_EQ(expression.Invoke(&engine, name, args, &error), nullptr);
        }
        EXPECT_EQ(error, before);
    }
    EXPECT_EQ(element->Evaluations(), 0);
    element->Release();
}

TEST_F(Expression, DoesAllThatWithoutAPlaceForErrors) {
    ObjectExpression expression(nullptr);
    EXPECT_EQ(ToBool(expression), "!");
    EXPECT_EQ(ToInt(expression), "!");
    EXPECT_EQ(ToDouble(expression), "!");
    EXPECT_EQ(ToText(expression), "!");
    EXPECT_EQ(ToNumeric(expression), "!");
    EXPECT_EQ(ChangeType(expression, IObject::TypeString), "!");
    EXPECT_EQ(Call(expression, L"ToString"), "!");
}

// ---- reaching the element of an argument ----

/// Says that it is an expression, and is none.
class Pretender : public CountedObject {
public:
    Pretender() : CountedObject("", {}, TypeExpression) {}
};

TEST_F(Expression, IsKnownByItsClass) {
    CountedElement* const element = new CountedElement(nullptr);
    const Ref<ObjectExpression> expression = Make<ObjectExpression>(element);
    const Ref<Probe<ObjectExpression>> derived = Make<Probe<ObjectExpression>>(element);
    const Ref<ObjectExpression> empty = Make<ObjectExpression>(nullptr);
    element->Release();
    EXPECT_EQ(ObjectBase::GetQueryElement(expression.Get()), element);
    EXPECT_EQ(ObjectBase::GetQueryElement(derived.Get()), element);
    EXPECT_EQ(element->References(), 2) << "it is lent";
    EXPECT_EQ(ObjectBase::GetQueryElement(empty.Get()), nullptr);
    EXPECT_EQ(ObjectBase::GetQueryElement(nullptr), nullptr);

    const Ref<Pretender> pretender = Make<Pretender>();
    ASSERT_EQ(pretender->GetType(), IObject::TypeExpression);
    EXPECT_EQ(ObjectBase::GetQueryElement(pretender.Get()), nullptr);
    for (IObject* const object : {static_cast<IObject*>(new ObjectNull()), static_cast<IObject*>(new ObjectInt(9)),
                                  static_cast<IObject*>(new ObjectString(L"expression")),
                                  static_cast<IObject*>(new ObjectArray(ObjectList()))}) {
        EXPECT_EQ(ObjectBase::GetQueryElement(object), nullptr);
        object->Release();
    }
}

} // namespace
} // namespace OrvUQL::Tests
