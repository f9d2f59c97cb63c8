// The methods of arrays that evaluate nothing: references, empty slots, arrays of a host. (What they compute for arrays
// that a query can make is in tests/conformance.)

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostArrays.h"
#include "values/HostTest.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

using ArrayMethods = HostTest;

// ---- the items themselves are handed on ----

TEST_F(ArrayMethods, HandOutTheItemItself) {
    CountedObject* const first = new CountedObject();
    CountedObject* const last = new CountedObject();
    SetItems({first, last});
    EXPECT_EQ(Evaluate(L"@Item(1)").Get(), first);
    EXPECT_EQ(Evaluate(L"@Item(2)").Get(), last);
    EXPECT_EQ(Evaluate(L"@First").Get(), first);
    EXPECT_EQ(Evaluate(L"@Last").Get(), last);
    {
        const Ref<IObject> handed = Evaluate(L"@First");
        EXPECT_EQ(first->References(), 2);
    }
    EXPECT_EQ(first->References(), 1);
    EXPECT_EQ(last->References(), 1);
}

TEST_F(ArrayMethods, AddTheArgumentItself) {
    CountedObject* const item = new CountedObject("item");
    const Ref<CountedObject> added = Make<CountedObject>("added");
    SetItems({item, nullptr});
    SetArgument(added.Share());
    {
        const Ref<IObject> result = Evaluate(L"@Add($First)");
        const ObjectList& items = Items(result);
        ASSERT_EQ(items.size(), 3u);
        EXPECT_EQ(items[0], item);
        EXPECT_EQ(items[1], nullptr) << "an empty slot stays one";
        EXPECT_EQ(items[2], added.Get());
        EXPECT_EQ(ReferencesOf(result.Get()), 1);
        EXPECT_EQ(item->References(), 2);
        EXPECT_EQ(added->References(), 3) << "ours, the variable's, the result's";
    }
    EXPECT_EQ(item->References(), 1);
    EXPECT_EQ(added->References(), 2);
    host.engine.SetVariable(nullptr);
    EXPECT_EQ(added->References(), 1);
}

TEST_F(ArrayMethods, AddAnArrayToItself) {
    Probe<ObjectArray>* const array = new Probe<ObjectArray>(ObjectList{new ObjectInt(1)});
    SetValue(array);
    {
        const Ref<IObject> result = Evaluate(L"@Add(@This)");
        EXPECT_EQ(Describe(result.Get()), "array (1,(1))");
        EXPECT_EQ(Items(result)[1], array);
        EXPECT_EQ(array->References(), 2);
        EXPECT_EQ(array->GetCount(), 1);
    }
    EXPECT_EQ(array->References(), 1) << "the result was the only other holder";
}

TEST_F(ArrayMethods, FindComparesAndKeepsNothing) {
    CountedObject* const item = new CountedObject("", ORV_TEXT(L"abc"), IObject::TypeString);
    SetItems({new ObjectInt(7), item});
    EXPECT_EQ(Run(L"@Find('ABC')"), "bool true");
    EXPECT_EQ(Run(L"@IndexOf('abc')"), "int 2");
    EXPECT_EQ(Run(L"@IndexOf('x')"), "int 0");
    EXPECT_EQ(item->References(), 1);
}

/// A host's value that compares as it is told and remembers what it was asked.
class Comparable : public CountedObject {
public:
    using CountedObject::CountedObject;
    bool CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const override {
        lastOperation = op;
        lastOther = other;
        lastReversed = reversed;
        ++comparisons;
        if (fails) {
            if (err != nullptr) {
                *err = Error::Create(L"incomparable");
            }
            return false;
        }
        result = verdict;
        return true;
    }
    mutable EOperType lastOperation = OperNone;
    mutable const IObject* lastOther = nullptr;
    mutable bool lastReversed = false;
    mutable int comparisons = 0;
    bool fails = false;
    bool verdict = false;
};

TEST_F(ArrayMethods, FindPutsTheItemOnTheLeft) {
    Comparable* const item = new Comparable();
    Comparable* const sought = new Comparable();
    SetItems({item});
    SetArgument(sought);
    EXPECT_EQ(Run(L"@Find($First)"), "bool false");
    EXPECT_EQ(item->comparisons, 2) << "once with and once without a place for the error";
    EXPECT_EQ(item->lastOperation, OperEqual);
    EXPECT_EQ(item->lastOther, sought);
    EXPECT_FALSE(item->lastReversed);
    EXPECT_EQ(sought->comparisons, 0);
    item->verdict = true;
    EXPECT_EQ(Run(L"@IndexOf($First)"), "int 1");
    item->fails = true;
    EXPECT_EQ(Run(L"@Find($First)"), "! incomparable");
    EXPECT_EQ(Run(L"@IndexOf($First)"), "! incomparable");
}

TEST_F(ArrayMethods, FindStopsAtTheFirstEqualItem) {
    HostArray* const numbers = MakeNumbers(10);
    SetValue(numbers);
    ErrorSlot error;
    EXPECT_EQ(Describe(host.Evaluate(L"@IndexOf(3)", error.Slot()).Get()), "int 3");
    EXPECT_EQ(numbers->asked, 3);
    EXPECT_EQ(Describe(host.Evaluate(L"@Find(1)", error.Slot()).Get()), "bool true");
    EXPECT_EQ(numbers->asked, 4);
}

// ---- empty slots ----

TEST_F(ArrayMethods, ShowNullForAnEmptySlot) {
    SetItems({nullptr, new ObjectInt(5), nullptr});
    EXPECT_EQ(Run(L"@Count"), "int 3");
    EXPECT_EQ(Run(L"@Empty"), "bool false");
    EXPECT_EQ(Run(L"@Item(1)"), "null null");
    EXPECT_EQ(Run(L"@Item(2)"), "int 5");
    EXPECT_EQ(Run(L"@First"), "null null");
    EXPECT_EQ(Run(L"@Last"), "null null");
    EXPECT_EQ(Run(L"@ToString"), "string (,5,)");
    SetItems({nullptr});
    EXPECT_EQ(Run(L"@Count"), "int 1");
    EXPECT_EQ(Run(L"@Empty"), "bool false");
    EXPECT_EQ(Run(L"@First.IsNull"), "bool true");
}

TEST_F(ArrayMethods, JoinEmptySlotsWithTheirSeparators) {
    SetItems({new ObjectInt(1), nullptr, new ObjectInt(3)});
    EXPECT_EQ(Run(L"@Join('-')"), "string 1--3");
    SetItems({nullptr, nullptr});
    EXPECT_EQ(Run(L"@Join('-')"), "string -");
    SetItems({nullptr});
    EXPECT_EQ(Run(L"@Join('-')"), "string ");
}

TEST_F(ArrayMethods, FindNothingInEmptySlots) {
    SetItems({nullptr, new ObjectInt(5), nullptr});
    EXPECT_EQ(Run(L"@Find(null)"), "bool false") << "an empty slot is no null value";
    EXPECT_EQ(Run(L"@IndexOf(null)"), "int 0");
    EXPECT_EQ(Run(L"@IndexOf(5)"), "int 2") << "it counts as a position";
}

// ---- items without a text ----

TEST_F(ArrayMethods, JoinFailsWithTheItem) {
    SetItems({new ObjectInt(1), new ObjectExpression(nullptr), new ObjectInt(2)});
    EXPECT_EQ(Run(L"@Join(',')"), "!") << "an expression says nothing";
    EXPECT_EQ(Run(L"@ToString"), "string (1,<expression>,2)");
    SetItems({new ObjectInt(1), new Stubborn()});
    EXPECT_EQ(Run(L"@Join(',')"), "! no text");
}

TEST_F(ArrayMethods, CallNothingOnAnExpression) {
    SetItems({new ObjectExpression(nullptr)});
    EXPECT_EQ(Run(L"@First.TypeName"), "!");
    EXPECT_EQ(Run(L"@Find(1)"), "!") << "its conversions fail without a word";
}

// ---- arguments that are not what the signature promises ----

TEST_F(ArrayMethods, ReportConversionsThatFail) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{new ObjectInt(1)});
    EXPECT_EQ(CallHandler(*array, L"Item", L"Item", {new Stubborn()}), "! no int");
    EXPECT_EQ(CallHandler(*array, L"Join", L"Join", {new Stubborn()}), "! no text");
    EXPECT_EQ(CallHandler(*array, L"Item", L"Item", {new ObjectString(L"1")}), "int 1");
    EXPECT_EQ(CallHandler(*array, L"AddArray", L"AddArray", {new Stubborn()}), "! The parameter must be an array");
}

TEST_F(ArrayMethods, KnowTheirNames) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{new ObjectInt(5), new ObjectInt(7)});
    EXPECT_EQ(CallHandler(*array, L"Find", L"INDEXOF", {new ObjectInt(7)}), "int 2");
    EXPECT_EQ(CallHandler(*array, L"IndexOf", L"find", {new ObjectInt(7)}), "bool true");
    EXPECT_EQ(CallHandler(*array, L"IndexOf", L"Has", {new ObjectInt(8)}), "bool false");
}

// ---- arrays of a host ----

TEST_F(ArrayMethods, ServeArraysOfAHost) {
    SetValue(MakeNumbers(4, [](int index) { return index == 1; }));
    EXPECT_EQ(Run(L"@Count"), "int 4");
    EXPECT_EQ(Run(L"@Item(3)"), "int 3");
    EXPECT_EQ(Run(L"@Item(2)"), "null null");
    EXPECT_EQ(Run(L"@Item(0)"), "null null") << "nobody is asked";
    EXPECT_EQ(Run(L"@Item(5)"), "null null");
    EXPECT_EQ(Run(L"@First + @Last"), "int 5");
    EXPECT_EQ(Run(L"@Join(';')"), "string 1;;3;4");
    EXPECT_EQ(Run(L"@Add(5)"), "array (1,,3,4,5)");
    EXPECT_EQ(Run(L"@IndexOf(3)"), "int 3");
    EXPECT_EQ(Run(L"@Find(2)"), "bool false");
    SetValue(MakeNumbers(0));
    EXPECT_EQ(Run(L"@Empty"), "bool true");
    EXPECT_EQ(Run(L"@First"), "null null");
    EXPECT_EQ(Run(L"@Last"), "null null");
    EXPECT_EQ(Run(L"@Add(1)"), "array (1)");
    EXPECT_EQ(Run(L"@Join(',')"), "string ");
}

TEST_F(ArrayMethods, TakeANegativeCountForNone) {
    SetValue(MakeNumbers(-1));
    EXPECT_EQ(Run(L"@Count"), "int -1");
    EXPECT_EQ(Run(L"@Empty"), "bool false") << "only a count of 0 is empty";
    EXPECT_EQ(Run(L"@First"), "null null");
    EXPECT_EQ(Run(L"@Last"), "null null");
    EXPECT_EQ(Run(L"@Item(1)"), "null null");
    EXPECT_EQ(Run(L"@Join(',')"), "string ");
    EXPECT_EQ(Run(L"@Find(1)"), "bool false");
    EXPECT_EQ(Run(L"@ToString"), "string ()");
}

TEST_F(ArrayMethods, ReleaseItemsThatAHostMakes) {
    SetValue(new HostArray(5, [](int index) -> IObject* {
        return new CountedObject("", ORV_TEXT(L"x"), index == 4 ? IObject::TypeInt : IObject::TypeString);
    }));
    const int live = Counted::live;
    for (const wchar_t* const query : {L"@Join(',')", L"@Find('y')", L"@IndexOf('X')", L"@Item(2)", L"@First", L"@Last",
                                       L"@Add(1)", L"@ToString", L"@Find(array())"}) {
        Evaluate(query);
        EXPECT_EQ(Counted::live, live) << Utf8(query);
    }
}

// An array over a collection that shrinks while it is read is never asked for what is gone.
TEST_F(ArrayMethods, DoNotReadBehindTheEndOfAShrinkingArray) {
    for (const wchar_t* const query : {L"@Join(',')", L"@Add(0)", L"@Find(0)", L"@IndexOf(0)", L"@ToString"}) {
        HostArray* array = nullptr;
        array = new HostArray(5, [&array](int index) -> IObject* {
            array->count = 2;
            return new ObjectInt(index + 1);
        });
        SetValue(array);
        SCOPED_TRACE(Utf8(query));
        EXPECT_TRUE(Evaluate(query));
        EXPECT_EQ(array->asked, 2);
    }
}

// ---- exceptions of a host's array ----

/// Throws at the third item; the items before are counted.
template <class Exception> HostArray* MakeThrowing(Exception exception) {
    return new HostArray(5, [exception](int index) -> IObject* {
        if (index == 2) {
            throw exception;
        }
        return new CountedObject("", ORV_TEXT(L"x"), IObject::TypeString);
    });
}

constexpr const wchar_t* readingQueries[] = {L"@Join(',')", L"@Add(1)", L"@Find('y')", L"@IndexOf('y')", L"@Item(3)"};

TEST_F(ArrayMethods, LetExceptionsPass) {
    SetValue(MakeThrowing(std::runtime_error("host's own")));
    const int live = Counted::live;
    for (const wchar_t* const query : readingQueries) {
        EXPECT_THROW(Evaluate(query), std::runtime_error) << Utf8(query);
        EXPECT_EQ(Counted::live, live) << Utf8(query);
    }
}

TEST_F(ArrayMethods, TurnTheEndOfMemoryIntoAnError) {
    for (const bool isLength : {false, true}) {
        SetValue(isLength ? MakeThrowing(std::length_error("too long")) : MakeThrowing(std::bad_alloc()));
        const int live = Counted::live;
        for (const wchar_t* const query : readingQueries) {
            EXPECT_EQ(Run(query), "! Internal error") << Utf8(query);
            EXPECT_EQ(Counted::live, live) << Utf8(query);
        }
    }
}

} // namespace
} // namespace OrvUQL::Tests
