// Groups and arrays: `source[inner]`, and lists of elements.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/Host.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

using GroupElements = CountedTest;
using ArrayElements = CountedTest;

/// Looks at the engine while an inner element is evaluated.
class Observer : public RefCountImpl<IQueryElement> {
public:
    explicit Observer(IObject* elementResult) : result(elementResult) { Counted::Begin(); }
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    ~Observer() override {
        if (result != nullptr) {
            result->Release();
        }
        Counted::End({});
    }

    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return 0; }
    IObject* Evaluate(QueryEngine* engine, IError**) const override {
        parent = engine->GetGroupParent();
        references = parent == nullptr ? 0 : References(*parent);
        if (result != nullptr) {
            result->AddRef();
        }
        return result;
    }

    mutable IObject* parent = nullptr;
    mutable int references = 0;

private:
    IObject* result;
};

TEST_F(GroupElements, TheSourcesValueIsTheGroupParentInside) {
    QueryEngine engine;
    CountedObject* const source = new CountedObject("source");
    Observer* const observer = new Observer(new ObjectInt(7));
    const Ref<IQueryElement> group(Group(Literal(source), observer));
    const Ref<IObject> value(engine.Evaluate(group.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "int 7") << "the inner result, as it is";
    EXPECT_EQ(observer->parent, source);
    EXPECT_EQ(engine.GetGroupParent(), nullptr);
    EXPECT_EQ(source->References(), 1) << "only the literal's";
}

TEST_F(GroupElements, HaveNoValueWithoutAnEngine) {
    CountedObject* const source = new CountedObject("source");
    const Ref<IQueryElement> group(Group(Literal(source), Literal(new ObjectInt(7))));
    ErrorSlot error;
    EXPECT_EQ(group->Evaluate(nullptr, error.Slot()), nullptr) << "there is nowhere to keep the source";
    EXPECT_EQ(error.Message(), "Internal error");
    EXPECT_EQ(source->References(), 1) << "only the literal's";
}

TEST_F(GroupElements, TheValueIsTheEnginesAlone) {
    QueryEngine engine;
    Observer* const observer = new Observer(new ObjectInt(7));
    const Ref<IQueryElement> group(Group(new WitnessElement({}), observer));
    const Ref<IObject> value(engine.Evaluate(group.Get(), nullptr));
    EXPECT_EQ(observer->references, 1);
    EXPECT_EQ(Counted::live, 2) << "the elements; the source's value went with its group";
}

TEST_F(GroupElements, TheResultIsTheInnerValueItself) {
    QueryEngine engine;
    CountedObject* const inner = new CountedObject();
    const Ref<IQueryElement> group(Group(Literal(1), Literal(inner)));
    const Ref<IObject> value(engine.Evaluate(group.Get(), nullptr));
    EXPECT_EQ(value.Get(), inner);
    EXPECT_EQ(inner->References(), 2);
}

TEST_F(GroupElements, TheFormerGroupParentComesBack) {
    QueryEngine engine;
    const Ref<CountedObject> outer = Make<CountedObject>();
    engine.SetGroupParent(outer.Get());
    Observer* const inside = new Observer(new ObjectInt(1));
    Observer* const beside = new Observer(new ObjectInt(2));
    CountedObject* const source = new CountedObject();
    const Ref<IQueryElement> tree(Binary(Group(Literal(source), inside), L"+", beside));
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(inside->parent, source);
    EXPECT_EQ(beside->parent, outer.Get());
    EXPECT_EQ(engine.GetGroupParent(), outer.Get());
    EXPECT_EQ(outer->References(), 2);
    engine.SetGroupParent(nullptr);
}

TEST_F(GroupElements, Nest) {
    QueryEngine engine;
    CountedObject* const outer = new CountedObject("outer");
    CountedObject* const inner = new CountedObject("inner");
    Observer* const deep = new Observer(new ObjectInt(1));
    Observer* const after = new Observer(new ObjectInt(2));
    const Ref<IQueryElement> tree(Group(Literal(outer), Binary(Group(Literal(inner), deep), L"+", after)));
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "int 3");
    EXPECT_EQ(deep->parent, inner);
    EXPECT_EQ(after->parent, outer);
    EXPECT_EQ(engine.GetGroupParent(), nullptr);
}

// The source of a group sees the outer group parent, not its own value.
TEST_F(GroupElements, TheSourceIsEvaluatedOutside) {
    QueryEngine engine;
    const Ref<CountedObject> outer = Make<CountedObject>();
    engine.SetGroupParent(outer.Get());
    CountedObject* const value = new CountedObject();
    Observer* const source = new Observer(value);
    Observer* const inner = new Observer(new ObjectInt(1));
    const Ref<IQueryElement> group(Group(source, inner));
    const Ref<IObject> result(engine.Evaluate(group.Get(), nullptr));
    EXPECT_EQ(source->parent, outer.Get());
    EXPECT_EQ(inner->parent, value);
    engine.SetGroupParent(nullptr);
}

TEST_F(GroupElements, AFailedSourceLeavesTheSlotUntouched) {
    QueryEngine engine;
    const Ref<CountedObject> outer = Make<CountedObject>();
    engine.SetGroupParent(outer.Get());
    Observer* const inner = new Observer(new ObjectInt(1));
    const Ref<IQueryElement> group(Group(Failing(L"no source"), inner));
    ErrorSlot error;
    EXPECT_EQ(engine.Evaluate(group.Get(), error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "no source");
    EXPECT_EQ(inner->parent, nullptr) << "the inner element was not evaluated";
    EXPECT_EQ(engine.GetGroupParent(), outer.Get());
    EXPECT_EQ(outer->References(), 2);
    engine.PopGroupParent();
    EXPECT_EQ(engine.GetGroupParent(), nullptr) << "nothing was put aside";
}

TEST_F(GroupElements, AFailedInnerElementPopsToo) {
    QueryEngine engine;
    const Ref<CountedObject> outer = Make<CountedObject>();
    engine.SetGroupParent(outer.Get());
    const Ref<IQueryElement> group(Group(Literal(new CountedObject()), Failing(L"no inner")));
    ErrorSlot error;
    EXPECT_EQ(engine.Evaluate(group.Get(), error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "no inner");
    EXPECT_EQ(engine.GetGroupParent(), outer.Get());
    engine.SetGroupParent(nullptr);
}

TEST_F(GroupElements, PointsAddressTheInnermostSource) {
    Host host;
    EXPECT_EQ(host.Run(L"5[.ToString() + (2.5)[.ToString()] + .TypeName()]"), "string 52.5int");
    EXPECT_EQ(host.Run(L"5[.Abs() + .Abs()].ToString()"), "string 10");
    EXPECT_EQ(host.Run(L"(-5)[.Abs()]"), "int 5");
    EXPECT_EQ(host.Run(L"null[.a.b.c]"), "null null");
    EXPECT_EQ(host.Run(L"7[8][.ToString()]"), "string 8");
    EXPECT_EQ(host.Run(L"5[.Foo]"), "! Identifier 'Foo' is not a method of 'int'");
}

// ---- arrays ----

TEST_F(ArrayElements, HoldTheItemsValuesInOrder) {
    QueryEngine engine;
    CountedObject* const own = new CountedObject("", L"own");
    const Ref<IQueryElement> array(
        Array({Literal(1), nullptr, Literal(L"two"), Literal(own), Binary(Literal(1), L"+", Literal(2)), nullptr}));
    const Ref<IObject> value(engine.Evaluate(array.Get(), nullptr));
    const auto& items = dynamic_cast<const ObjectArray&>(*value);
    EXPECT_EQ(Describe(value.Get()), "array (1,null,two,own,3,null)");
    ASSERT_EQ(items.GetCount(), 6);
    EXPECT_EQ(items.GetObjectList()[3], own);
    EXPECT_EQ(own->References(), 2);
    EXPECT_EQ(References(*value), 1);
    // A null item is a null value, each a new one.
    ASSERT_NE(items.GetObjectList()[1], nullptr);
    EXPECT_TRUE(items.GetObjectList()[1]->IsNull());
    EXPECT_NE(items.GetObjectList()[1], items.GetObjectList()[5]);
    EXPECT_EQ(References(*items.GetObjectList()[1]), 1);
}

TEST_F(ArrayElements, MayBeEmpty) {
    QueryEngine engine;
    const Ref<IQueryElement> array(Array({}));
    const Ref<IObject> value(engine.Evaluate(array.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "array ()");
}

TEST_F(ArrayElements, EndWithTheFirstItemThatFails) {
    QueryEngine engine;
    CountedElement* const first = new CountedElement(new CountedObject("value"), "first");
    CountedElement* const last = new CountedElement(new ObjectInt(3), "last");
    CountedObject* const value = new CountedObject();
    const Ref<IQueryElement> array(Array({first, Literal(value), nullptr, Failing(L"third failed"), last}));
    ErrorSlot error;
    EXPECT_EQ(engine.Evaluate(array.Get(), error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "third failed");
    EXPECT_EQ(first->Evaluations(), 1);
    EXPECT_EQ(last->Evaluations(), 0);
    EXPECT_EQ(value->References(), 1) << "what was gathered is released";
}

TEST_F(ArrayElements, MakeANewArrayEachTime) {
    QueryEngine engine;
    const Ref<IQueryElement> array(Array({Literal(1)}));
    const Ref<IObject> first(engine.Evaluate(array.Get(), nullptr));
    const Ref<IObject> second(engine.Evaluate(array.Get(), nullptr));
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(dynamic_cast<const ObjectArray&>(*first).GetObjectList()[0],
              dynamic_cast<const ObjectArray&>(*second).GetObjectList()[0])
        << "a literal is its own value";
}

TEST_F(ArrayElements, StandAnywhereInATree) {
    Host host;
    const Ref<IQueryElement> sum(Binary(Array({Literal(1), Literal(2)}), L"+", Literal(L"!")));
    EXPECT_EQ(host.Run(*sum), "string (1,2)!");
    const Ref<IQueryElement> nested(Array({Array({Literal(1)}), Array({nullptr})}));
    EXPECT_EQ(host.Run(*nested), "array ((1),(null))");
    const Ref<IQueryElement> method(Member(Array({Literal(1)}), L"TypeName"));
    EXPECT_EQ(host.Run(*method), "string array");
    const Ref<IQueryElement> argument(Name(L"iif", {Truth(true), Array({Literal(1)}), Literal(2)}));
    EXPECT_EQ(host.Run(*argument), "array (1)");
}

} // namespace
} // namespace OrvUQL::Tests
