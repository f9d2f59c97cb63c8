// Arrays: what they hold and how they read. Their methods have tests of their own.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "support/Effort.h"
#include "support/Host.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

using Array = CountedTest;

TEST_F(Array, TakesReferencesOfItsOwn) {
    CountedObject* const item = new CountedObject("item");
    ObjectList list{item, nullptr, item};
    item->AddRef(); // one for each entry
    const Ref<ObjectArray> array = Make<ObjectArray>(list);
    EXPECT_EQ(item->References(), 4);
    EXPECT_EQ(list.size(), 3u) << "the list stays the caller's";
    list.ReleaseAll();
    EXPECT_EQ(item->References(), 2);
    EXPECT_EQ(array->GetCount(), 3);
}

TEST_F(Array, TakesAListOverThatIsMovedIn) {
    CountedObject* const item = new CountedObject("item");
    ObjectList list{item, nullptr};
    const Ref<ObjectArray> array = Make<ObjectArray>(std::move(list));
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(item->References(), 1);
    EXPECT_EQ(array->GetCount(), 2);
}

TEST_F(Array, ReleasesItsItemsFrontToBack) {
    Make<ObjectArray>(ObjectList{new CountedObject("first"), nullptr, new CountedObject("second")});
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"first", "second"}));
}

TEST_F(Array, HandsItemsOutWithAReference) {
    CountedObject* const item = new CountedObject();
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{item, nullptr});
    const Ref<IObject> handed(array->GetItem(0));
    EXPECT_EQ(handed.Get(), item);
    EXPECT_EQ(item->References(), 2);
    EXPECT_EQ(array->GetItem(1), nullptr) << "an empty slot stays empty";
}

TEST_F(Array, LendsItsList) {
    CountedObject* const item = new CountedObject();
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{nullptr, item});
    const ObjectList& list = array->GetObjectList();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0], nullptr);
    EXPECT_EQ(list[1], item);
    EXPECT_EQ(item->References(), 1);
}

TEST_F(Array, MayBeEmpty) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList());
    EXPECT_EQ(array->GetCount(), 0);
    EXPECT_EQ(array->ToString(), L"()");
    EXPECT_EQ(array->GetType(), IObject::TypeArray);
    EXPECT_EQ(array->GetTypeName(), L"array");
    EXPECT_FALSE(array->IsStaticInstance());
}

// As lists do it, for those who know what they are doing: the copy shares the items and has no reference of its own.
TEST_F(Array, CopiesMemberWise) {
    CountedObject* const item = new CountedObject();
    Probe<ObjectArray>* const array = new Probe<ObjectArray>(ObjectList{item});
    array->AddRef();
    Probe<ObjectArray>* const copy = new Probe<ObjectArray>(*array);
    EXPECT_EQ(copy->References(), 2);
    EXPECT_EQ(copy->GetCount(), 1);
    EXPECT_EQ(item->References(), 1);
    item->AddRef(); // what the copy will release
    copy->Release();
    copy->Release();
    array->Release();
    array->Release();
}

// ---- its text ----

/// An array of these items, as text.
std::string TextOf(ObjectList items) { return Utf8(Make<ObjectArray>(std::move(items))->ToString()); }

TEST_F(Array, ReadsAsItsItemsInParentheses) {
    EXPECT_EQ(TextOf({new ObjectInt(1), new ObjectInt(2), new ObjectInt(3)}), "(1,2,3)");
    EXPECT_EQ(TextOf({new ObjectString(L"a b"), new ObjectDouble(1.5), new ObjectBool(true), new ObjectNull()}),
              "(a b,1.5,true,null)");
    EXPECT_EQ(TextOf({new ObjectString(L"")}), "()");
    EXPECT_EQ(TextOf({new ObjectString(L"(,)"), new ObjectString(L"'")}), "((,),')") << "nothing is quoted";
}

TEST_F(Array, ReadsEmptyForEmptySlots) {
    EXPECT_EQ(TextOf({nullptr}), "()");
    EXPECT_EQ(TextOf({nullptr, nullptr}), "(,)");
    EXPECT_EQ(TextOf({new ObjectInt(1), nullptr, new ObjectExpression(nullptr)}), "(1,,<expression>)");
}

/// A host's value whose text cannot be had.
class Mute : public CountedObject {
public:
    explicit Mute(EType code) : CountedObject("", ORV_TEXT(L"mute"), code) {}
    bool ToString(OrvStringT&, IError** err) const override {
        EXPECT_EQ(err, nullptr) << "nobody wants to know why";
        return false;
    }
    using CountedObject::ToString;
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"mute"); }
};

TEST_F(Array, ReadsTheTypeOfItemsWithoutAText) {
    EXPECT_EQ(TextOf({new Mute(IObject::TypeGlobal), new ObjectExpression(nullptr), nullptr}),
              "(<mute>,<expression>,)");
}

// Whatever kind of value a host makes its own: it may refuse to be read.
TEST_F(Array, ReadsTheTypeOfMuteItemsOfAnyKind) {
    for (int type = IObject::TypeNull; type <= IObject::TypeExpression; ++type) {
        EXPECT_EQ(TextOf({new Mute(static_cast<IObject::EType>(type)), new ObjectInt(1)}), "(<mute>,1)") << type;
    }
}

TEST_F(Array, ReadsItemsThroughTheirConversion) {
    class TwoTexts : public CountedObject {
    public:
        OrvStringT ToString() const override { return ORV_TEXT(L"display"); }
        bool ToString(OrvStringT& out, IError**) const override {
            out = ORV_TEXT(L"conversion");
            return true;
        }
    };
    EXPECT_EQ(TextOf({new TwoTexts()}), "(conversion)");
}

TEST_F(Array, ReadsArraysInItInParenthesesOfTheirOwn) {
    EXPECT_EQ(TextOf({new ObjectArray(ObjectList{new ObjectInt(1), new ObjectArray(ObjectList())}), nullptr,
                      new ObjectArray(ObjectList{nullptr, new ObjectInt(2)})}),
              "((1,()),,(,2))");
    EXPECT_EQ(TextOf({new Probe<ObjectArray>(ObjectList{new ObjectInt(1)}), new ObjectInt(2)}), "((1),2)");
}

TEST_F(Array, IsConvertedByItsText) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{new ObjectInt(1), nullptr, new ObjectInt(2)});
    EXPECT_EQ(ToText(*array), "(1,,2)");
    EXPECT_EQ(Call(*array, L"ToString"), "string (1,,2)");
    EXPECT_EQ(ChangeType(*array, IObject::TypeString), "string (1,,2)");
}

/// Depth arrays around an int.
IObject* Nest(int depth) {
    IObject* value = new ObjectInt(7);
    for (int level = 0; level < depth; ++level) {
        value = new ObjectArray(ObjectList{value});
    }
    return value;
}

TEST_F(Array, ReadsAMillionDeep) {
    constexpr int depth = PartOf(1000000);
    const auto read = [] {
        const Ref<IObject> array(Nest(depth));
        OrvStringT text;
        ASSERT_TRUE(array->ToString(text, nullptr));
        ASSERT_EQ(text.GetLength(), 2 * depth + 1);
        EXPECT_EQ(text[0], L'(');
        EXPECT_EQ(text[depth - 1], L'(');
        EXPECT_EQ(text[depth], L'7');
        EXPECT_EQ(text[depth + 1], L')');
        EXPECT_EQ(text[2 * depth], L')');
    };
    read();
    RunOnThread(smallStack, read);
}

TEST_F(Array, IsConvertedAMillionDeep) {
    RunOnThread(smallStack, [] {
        const Ref<IObject> array(Nest(PartOf(1000000)));
        bool boolean = true;
        ErrorSlot error;
        EXPECT_FALSE(array->ToBool(boolean, error.Slot()));
        EXPECT_EQ(error.Message().substr(0, 28), "Cannot convert string '(((((");
    });
}

// ---- arrays of a host ----

/// The numbers from 1 to a count, made when they are asked for.
class Numbers : public ObjectArrayBase {
public:
    explicit Numbers(int numberCount) : count(numberCount) { Counted::Begin(); }
    ~Numbers() override { Counted::End({}); }
    int GetCount() const override { return count; }
    IObject* GetItem(int index) const override { return index == 1 ? nullptr : new ObjectInt(index + 1); }

private:
    int count;
};

TEST_F(Array, OfAHostReadsLikeTheLibrarys) {
    const Ref<Numbers> numbers = Make<Numbers>(4);
    EXPECT_EQ(numbers->GetType(), IObject::TypeArray);
    EXPECT_EQ(ToText(*numbers), "(1,,3,4)");
    EXPECT_EQ(ToText(*Make<Numbers>(0)), "()");
    EXPECT_EQ(TextOf({new Numbers(1), new Numbers(3)}), "((1),(1,,3))");
    EXPECT_EQ(Call(*numbers, L"TypeName"), "string array");
}

/// An array of a host with one item. Nothing keeps the library from having to ask it for its text.
class Box : public ObjectArrayBase {
public:
    explicit Box(IObject* boxItem) : item(boxItem) {}
    ~Box() override { ReleaseNested(item); }
    int GetCount() const override { return 1; }
    IObject* GetItem(int) const override {
        item->AddRef();
        return item;
    }

private:
    IObject* item;
};

/// Boxes around an int. The library has to ask each for its text, which asks the next.
Ref<IObject> NestBoxes(int depth) {
    IObject* value = new ObjectInt(7);
    for (int level = 0; level < depth; ++level) {
        value = new Box(value);
    }
    return Ref<IObject>(value);
}

// The stack ends somewhere on the way in; half a text would be worse than none.
TEST_F(Array, OfAHostNestedBeyondTheStackIsAnErrorAndNoCrash) {
    const auto beginning = [](const std::string& outcome) { return outcome.substr(0, 40); };
    const auto read = [&] {
        const Ref<IObject> box = NestBoxes(PartOf(1000000));
        EXPECT_EQ(beginning(ToText(*box)), "! Internal error");
        EXPECT_EQ(beginning(ToDouble(*box)), "! Internal error");
        EXPECT_EQ(beginning(Call(*box, L"ToString")), "! Internal error");
    };
    read();
    RunOnThread(smallStack, read);
}

TEST_F(Array, OfAHostReadsAsDeepAsPeopleNest) {
    RunOnThread(smallStack,
                [] { EXPECT_EQ(ToText(*NestBoxes(50)), std::string(50, '(') + "7" + std::string(50, ')')); });
}

} // namespace
} // namespace OrvUQL::Tests
