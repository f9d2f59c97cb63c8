// The null value: it answers any call with itself.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "support/Host.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

using Null = CountedTest;

TEST_F(Null, IsNullAndNothingElse) {
    const ObjectNull null;
    EXPECT_TRUE(null.IsNull());
    EXPECT_FALSE(null.IsStaticInstance());
    EXPECT_FALSE(null.IsUnit());
    EXPECT_EQ(null.GetType(), IObject::TypeNull);
    EXPECT_EQ(null.GetTypeName(), L"null");
    EXPECT_EQ(null.ToString(), L"null");
}

TEST_F(Null, AnswersUnknownMethodsWithItself) {
    const Ref<Probe<ObjectNull>> null = Make<Probe<ObjectNull>>();
    QueryEngine engine;
    const QueryElementList none;
    const Ref<IObject> answer(null->Invoke(&engine, L"Foo", none, nullptr));
    EXPECT_EQ(answer.Get(), null.Get());
    EXPECT_EQ(null->References(), 2);
}

TEST_F(Null, DoesNotEvaluateTheArguments) {
    ObjectNull null;
    const Ref<CountedElement> argument = Make<CountedElement>(nullptr, "", 0, L"evaluated");
    EXPECT_EQ(Call(null, L"Foo", {argument.Share(), nullptr, argument.Share()}), "null null");
    EXPECT_EQ(argument->Evaluations(), 0);
    EXPECT_EQ(argument->References(), 1);
    Host host;
    EXPECT_EQ(host.Run(L"null.Foo(1 / 0).Bar(Nowhere).Baz"), "null null");
}

TEST_F(Null, HasTheMethodsOfEveryValue) {
    ObjectNull null;
    EXPECT_EQ(Call(null, L"IsNull"), "bool true");
    EXPECT_EQ(Call(null, L"IsNumeric"), "bool false");
    EXPECT_EQ(Call(null, L"ToString"), "string null");
    EXPECT_EQ(Call(null, L"TypeName"), "string null");
    EXPECT_EQ(Call(null, L"ToBool"), "bool false");
    EXPECT_EQ(Call(null, L"ToInt"), "! Cannot convert the object 'null' to type 'Int'");
    EXPECT_EQ(Call(null, L"ToDouble"), "! Cannot convert the object 'null' to type 'Double'");
    EXPECT_EQ(Call(null, L"This"), "null null");
    EXPECT_EQ(Call(null, L"ToString", {nullptr}),
              "! Too many parameters specified for method ToString. It expects only 0");
}

TEST_F(Null, AnswersWhatOtherValuesHave) {
    ObjectNull null;
    for (const wchar_t* const name : {L"Abs", L"Round", L"Radix", L"Length", L"Count", L"Value", L""}) {
        EXPECT_EQ(Call(null, name), "null null");
    }
}

} // namespace
} // namespace OrvUQL::Tests
