// AddArray: the items of two arrays, and a reference too many to each.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostArrays.h"
#include "values/KeptReferences.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using AddArray = KeptReferences;

TEST_F(AddArray, KeepsOneForEachItem) {
    IObject* const first = Watch(new CountedObject());
    IObject* const second = Watch(new CountedObject());
    SetItems({first});
    SetArgument(new ObjectArray(ObjectList{second}));
    {
        const Ref<IObject> result = Evaluate(L"@AddArray($First)");
        ASSERT_EQ(Items(result).size(), 2u);
        EXPECT_EQ(Items(result)[0], first);
        EXPECT_EQ(Items(result)[1], second);
        EXPECT_EQ(ReferencesOf(result.Get()), 1);
        EXPECT_EQ(Held(first), 3) << "the array's, the result's, and one";
        EXPECT_EQ(Held(second), 3);
    }
    EXPECT_EQ(Held(first), 2) << "the result has given back its own only";
    EXPECT_EQ(Held(second), 2);
    Evaluate(L"@AddArray($First)");
    EXPECT_EQ(Held(first), 3) << "and again with each call";
    EXPECT_EQ(Held(second), 3);
}

TEST_F(AddArray, KeepsOneForEachPlaceOfAnItem) {
    IObject* const item = Watch(new CountedObject());
    item->AddRef();
    SetItems({item, item});
    SetArgument(new ObjectArray(ObjectList()));
    Evaluate(L"@AddArray($First)");
    EXPECT_EQ(Held(item), 4);
    Evaluate(L"@AddArray(@This)");
    EXPECT_EQ(Held(item), 8);
}

TEST_F(AddArray, KeepsEmptySlotsEmpty) {
    IObject* const item = Watch(new CountedObject("", ORV_TEXT(L"x")));
    SetItems({nullptr, item});
    SetArgument(new ObjectArray(ObjectList{nullptr}));
    EXPECT_EQ(Describe(Evaluate(L"@AddArray($First)").Get()), "array (,x,)");
    EXPECT_EQ(Describe(Evaluate(L"$First.AddArray(@This)").Get()), "array (,,x)");
}

TEST_F(AddArray, ThatFailsKeepsNone) {
    IObject* const item = Watch(new CountedObject());
    SetItems({item});
    EXPECT_EQ(Run(L"@AddArray(5)"), "! The parameter must be an array");
    EXPECT_EQ(Run(L"@AddArray(1 / 0)"), "! Division By Zero");
    EXPECT_EQ(Held(item), 1);
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList());
    EXPECT_EQ(CallHandler(*array, L"AddArray", L"AddArray", {nullptr}), "! The parameter must be an array");
}

// The receiver and the argument stay as they were, and nothing of them is kept but their items.
TEST_F(AddArray, KeepsItemsOnlyAndNotTheArrays) {
    Probe<ObjectArray>* const receiver = Watch(new Probe<ObjectArray>(ObjectList{WatchInt(1)}));
    Probe<ObjectArray>* const argument = Watch(new Probe<ObjectArray>(ObjectList{WatchInt(2)}));
    SetValue(receiver);
    SetArgument(argument);
    EXPECT_EQ(Describe(Evaluate(L"@AddArray($First)").Get()), "array (1,2)");
    EXPECT_EQ(Held(receiver), 1);
    EXPECT_EQ(Held(argument), 1);
    EXPECT_EQ(receiver->GetCount(), 1);
    EXPECT_EQ(argument->GetCount(), 1);
}

TEST_F(AddArray, ReadsTheCountBeforeEachStep) {
    IObject* const item = Watch(new CountedObject("", ORV_TEXT(L"x")));
    const auto give = [item](int) {
        item->AddRef();
        return item;
    };
    HostArray* const shrinking = new HostArray(5, give);
    HostArray* const growing = new HostArray(1, give);
    shrinking->onCount = [shrinking] { shrinking->count = shrinking->asked < 2 ? 5 : 2; };
    growing->onCount = [growing] { growing->count = growing->asked == 0 ? 1 : 3; };
    SetValue(shrinking);
    SetArgument(growing);
    EXPECT_EQ(Describe(Evaluate(L"@AddArray($First)").Get()), "array (x,x,x,x,x)");
    EXPECT_EQ(shrinking->asked, 2);
    EXPECT_EQ(growing->asked, 3);
}

TEST_F(AddArray, OfAHostKeepsReferences) {
    std::vector<CountedObject*> made;
    SetValue(new HostArray(3, [&made](int index) -> IObject* {
        made.push_back(new CountedObject("made" + std::to_string(index)));
        return made.back();
    }));
    SetArgument(new ObjectArray(ObjectList()));
    Evaluate(L"@AddArray($First)");
    ASSERT_EQ(made.size(), 3u);
    EXPECT_EQ(Counted::gone, std::vector<std::string>{}) << "the items outlive the array and the result";
    for (CountedObject* const item : made) {
        EXPECT_EQ(item->References(), 1);
        item->Release();
    }
}

TEST_F(AddArray, LetsExceptionsPass) {
    IObject* const item = Watch(new CountedObject());
    SetItems({item});
    SetArgument(new HostArray(2, [](int) -> IObject* { throw std::runtime_error("host's own"); }));
    EXPECT_THROW(Evaluate(L"@AddArray($First)"), std::runtime_error);
    SetArgument(new HostArray(2, [](int) -> IObject* { throw std::bad_alloc(); }));
    EXPECT_EQ(Run(L"@AddArray($First)"), "! Internal error");
}

} // namespace
} // namespace OrvUQL::Tests
