// The context that an expression argument sees: a value of its own, which a host may make too.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostTest.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using Iterator = HostTest;

TEST_F(Iterator, TakesAReferenceToEachField) {
    const Ref<CountedObject> lasteval = Make<CountedObject>();
    const Ref<CountedObject> item = Make<CountedObject>();
    const Ref<CountedObject> index = Make<CountedObject>();
    const Ref<CountedObject> data = Make<CountedObject>();
    {
        const Ref<ObjectIterator> iterator = Make<ObjectIterator>(lasteval.Get(), item.Get(), index.Get(), data.Get());
        for (const CountedObject* const field : {lasteval.Get(), item.Get(), index.Get(), data.Get()}) {
            EXPECT_EQ(field->References(), 2);
        }
    }
    for (const CountedObject* const field : {lasteval.Get(), item.Get(), index.Get(), data.Get()}) {
        EXPECT_EQ(field->References(), 1);
    }
}

TEST_F(Iterator, HandsItsFieldsOut) {
    const Ref<CountedObject> lasteval = Make<CountedObject>();
    const Ref<CountedObject> item = Make<CountedObject>();
    const Ref<CountedObject> index = Make<CountedObject>();
    const Ref<CountedObject> data = Make<CountedObject>();
    SetValue(new ObjectIterator(lasteval.Get(), item.Get(), index.Get(), data.Get()));
    const struct {
        const wchar_t* query;
        const CountedObject* field;
    } rows[] = {
        {L"@lasteval", lasteval.Get()},   {L"@item", item.Get()}, {L"@index", index.Get()}, {L"@data", data.Get()},
        {L"@LastEval()", lasteval.Get()}, {L"@ITEM", item.Get()}, {L"@Index", index.Get()}, {L"@DATA()", data.Get()},
    };
    for (const auto& row : rows) {
        const Ref<IObject> value = Evaluate(row.query);
        EXPECT_EQ(value.Get(), row.field) << Utf8(row.query);
        EXPECT_EQ(row.field->References(), 3) << Utf8(row.query);
    }
}

TEST_F(Iterator, AnswersNothingForFieldsThatAreNull) {
    SetValue(new ObjectIterator(nullptr, nullptr, nullptr, nullptr));
    for (const wchar_t* const query : {L"@lasteval", L"@item", L"@index", L"@data", L"@item.Foo", L"1 + @index"}) {
        EXPECT_EQ(Run(query), "!") << Utf8(query);
    }
}

TEST_F(Iterator, IsNoArrayAndHasNoText) {
    const Ref<ObjectIterator> iterator = Make<ObjectIterator>(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(iterator->GetType(), IObject::TypeGlobal) << "the code of the global functions, deliberately";
    EXPECT_EQ(iterator->GetTypeName(), L"iterator");
    EXPECT_FALSE(iterator->IsStaticInstance());
    EXPECT_FALSE(iterator->IsNull());
    EXPECT_FALSE(iterator->IsUnit());
    EXPECT_EQ(dynamic_cast<const ObjectArrayBase*>(static_cast<const IObject*>(iterator.Get())), nullptr);
    EXPECT_EQ(ToText(*iterator), "");
    EXPECT_EQ(ToInt(*iterator), "! Cannot convert string '' to Integer");
    EXPECT_EQ(ToNumeric(*iterator), "! Cannot convert string '' to a number");
    EXPECT_EQ(ToBool(*iterator), "! Cannot convert string '' to Boolean");
    EXPECT_EQ(ChangeType(*iterator, IObject::TypeString), "string ");
}

TEST_F(Iterator, HasTheMethodsOfEveryValue) {
    SetValue(new ObjectIterator(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(Run(L"@TypeName"), "string iterator");
    EXPECT_EQ(Run(L"@IsNumeric"), "bool false");
    EXPECT_EQ(Run(L"@IsNull"), "bool false");
    EXPECT_EQ(Run(L"@This.ToString"), "string ");
    EXPECT_EQ(Run(L"@Count"), "! Identifier 'Count' is not a method of 'iterator'");
    EXPECT_EQ(Run(L"@item(1)"), "! Too many parameters specified for method item. It expects only 0");
    EXPECT_EQ(Run(L"@help"), "string iterator.lasteval()\riterator.item()\riterator.index()\riterator.data()\r"
                             "iterator.ToBool()\riterator.ToInt()\riterator.ToDouble()\riterator.ToString()\r"
                             "iterator.TypeName() {Static}\riterator.This()\riterator.IsNumeric()\riterator.IsNull()");
}

TEST_F(Iterator, DoesNotCompare) {
    SetValue(new ObjectIterator(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(Run(L"@This = @This"),
              "! Cannot compare object 'iterator' to object 'iterator'. Incompatible types for this operation");
    EXPECT_EQ(Run(L"@This = null"), "bool false");
}

// Member-wise, as arrays do it: the copy has no references of its own.
TEST_F(Iterator, CopiesMemberWise) {
    const Ref<CountedObject> item = Make<CountedObject>();
    Probe<ObjectIterator>* const iterator = new Probe<ObjectIterator>(nullptr, item.Get(), nullptr, item.Get());
    iterator->AddRef();
    Probe<ObjectIterator>* const copy = new Probe<ObjectIterator>(*iterator);
    EXPECT_EQ(item->References(), 3);
    EXPECT_EQ(copy->References(), 2);
    item->AddRef(); // what the copy will release
    item->AddRef();
    copy->Release();
    copy->Release();
    EXPECT_EQ(item->References(), 3);
    iterator->Release();
    iterator->Release();
    EXPECT_EQ(item->References(), 1);
}

TEST_F(Iterator, IsNestedAsDeepAsOneLikes) {
    const Ref<CountedObject> innermost = Make<CountedObject>();
    Ref<IObject> value(innermost.Share());
    for (int level = 0; level < 1000000; ++level) {
        value.Reset(new ObjectIterator(value.Get(), nullptr, nullptr, nullptr));
    }
    EXPECT_EQ(innermost->References(), 2);
    value.Reset();
    EXPECT_EQ(innermost->References(), 1) << "and released without a stack as deep";
}

// A host may put one in place for an expression of its own.
TEST_F(Iterator, ServesAsAVariableOfAHost) {
    const Ref<ObjectInt> item = Make<ObjectInt>(20);
    const Ref<ObjectInt> index = Make<ObjectInt>(3);
    const Ref<ObjectIterator> iterator = Make<ObjectIterator>(nullptr, item.Get(), index.Get(), nullptr);
    ASSERT_TRUE(host.engine.PushVariable(iterator.Get()));
    EXPECT_EQ(Run(L"$item + $index"), "int 23");
    EXPECT_EQ(Run(L"array(1).Convert($item).First + $item"), "int 21");
    EXPECT_EQ(Run(L"$lasteval"), "!");
    host.engine.PopVariable();
    EXPECT_EQ(Run(L"$item"), "! Invalid use of '$item' in the current context at position 0");
}

} // namespace
} // namespace OrvUQL::Tests
