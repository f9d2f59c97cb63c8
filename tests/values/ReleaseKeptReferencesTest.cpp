// The references that AddArray and Unique keep, given back when the evaluation is over.

#include "support/Attempt.h"
#include "values/HostArrays.h"
#include "values/KeptReferences.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

class ReleaseKeptReferences : public KeptReferences {
protected:
    void SetUp() override {
        KeptReferences::SetUp();
        host.engine.SetReleaseKeptReferences(true);
    }
};

TEST_F(ReleaseKeptReferences, IsOffAtFirst) {
    EXPECT_FALSE(QueryEngine().GetReleaseKeptReferences());
    EXPECT_TRUE(host.engine.GetReleaseKeptReferences());
    host.engine.SetReleaseKeptReferences(false);
    IObject* const item = Watch(new CountedObject());
    SetItems({item});
    Evaluate(L"@Unique()");
    EXPECT_EQ(Held(item), 2) << "kept for ever";
}

TEST_F(ReleaseKeptReferences, OfAddArray) {
    IObject* const first = Watch(new CountedObject());
    IObject* const second = Watch(new CountedObject());
    SetItems({first});
    SetArgument(new ObjectArray(ObjectList{second}));
    {
        const Ref<IObject> result = Evaluate(L"@AddArray($First)");
        EXPECT_EQ(Held(first), 2) << "the array's and the result's";
        EXPECT_EQ(Held(second), 2);
    }
    EXPECT_EQ(Held(first), 1);
    EXPECT_EQ(Held(second), 1);
}

TEST_F(ReleaseKeptReferences, OfUnique) {
    IObject* const kept = WatchInt(3);
    IObject* const repeated = WatchInt(3);
    SetItems({kept, nullptr, repeated});
    {
        const Ref<IObject> result = Evaluate(L"@Unique()");
        EXPECT_EQ(Items(result).size(), 2u);
        EXPECT_EQ(Held(kept), 2);
        EXPECT_EQ(Held(repeated), 1);
    }
    EXPECT_EQ(Held(kept), 1);
}

TEST_F(ReleaseKeptReferences, AlsoWhereAScalarIsTakenOutOrNothingComesOfIt) {
    IObject* const item = WatchInt(3);
    SetItems({item});
    const Ref<IQueryElement> count = host.Parse(L"@Unique().Count()");
    int number = 0;
    EXPECT_TRUE(host.engine.EvaluateTo(count.Get(), number, nullptr));
    EXPECT_EQ(Held(item), 1);
    Run(L"@Unique().Nonsense()");
    EXPECT_EQ(Held(item), 1);
}

/// Evaluates a query of its own when it is asked for something, and looks at a value then.
class Evaluating : public CountedObject {
public:
    Evaluating(IQueryElement* query, IObject* value) : tree(query), watched(value) {}
    IObject* Invoke(QueryEngine* engine, const wchar_t*, const QueryElementList&, IError** err) override {
        IObject* const result = engine->Evaluate(tree, err);
        references = ReferencesOf(watched);
        return result;
    }
    int references = 0;

private:
    IQueryElement* tree;
    IObject* watched;
};

TEST_F(ReleaseKeptReferences, NotBeforeTheOutermostEvaluationIsOver) {
    IObject* const item = WatchInt(3);
    SetArgument(new ObjectArray(ObjectList{item}));
    const Ref<IQueryElement> inner = host.Parse(L"$First.Unique().Count()");
    const Ref<Evaluating> object = Make<Evaluating>(inner.Get(), item);
    const int before = ReferencesOf(item);
    host.engine.SetPropertySource(object.Get());
    EXPECT_EQ(Describe(Evaluate(L"@x + 1").Get()), "int 2");
    EXPECT_EQ(object->references, before + 1) << "while the outer one was under way";
    EXPECT_EQ(ReferencesOf(item), before);
}

/// Evaluates a query when it goes.
class LastWord : public CountedObject {
public:
    LastWord(QueryEngine& usedEngine, IQueryElement* query) : engine(usedEngine), tree(query) {}
    ~LastWord() override { Ref<IObject>(engine.Evaluate(tree, nullptr)); }

private:
    QueryEngine& engine;
    IQueryElement* tree;
};

TEST_F(ReleaseKeptReferences, WhatGoesThenMayEvaluate) {
    const Ref<IQueryElement> inner = host.Parse(L"array(1, 2).AddArray(array(3))");
    SetItems({new LastWord(host.engine, inner.Get())});
    const Ref<IQueryElement> tree = host.Parse(L"@This.AddArray(array(1)).Count()");
    Ref<IObject> count(host.engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(count.Get()), "int 2");
    SetItems({});
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(ReleaseKeptReferences, AHostsOwnCallKeepsThemAsEver) {
    IObject* const item = WatchInt(3);
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{item});
    Ref<IObject>(array->Invoke(&host.engine, L"Unique", QueryElementList(), nullptr));
    EXPECT_EQ(Held(item), 2) << "there is no evaluation whose end could be waited for";
}

} // namespace
} // namespace OrvUQL::Tests
