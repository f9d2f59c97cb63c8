// An engine's context: slots and stacks, what it owns of them, and in which order it lets go.

#include "support/CountedUnits.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace OrvUQL::Tests {
namespace {

using EngineContext = CountedTest;

static_assert(std::has_virtual_destructor_v<QueryEngine>);

/// The four slots alike.
struct Slot {
    const char* name;
    void (QueryEngine::*set)(IObject*);
    IObject* (QueryEngine::*get)() const;
};

const Slot slots[] = {
    {"global", &QueryEngine::SetGlobal, &QueryEngine::GetGlobal},
    {"property source", &QueryEngine::SetPropertySource, &QueryEngine::GetPropertySource},
    {"group parent", &QueryEngine::SetGroupParent, &QueryEngine::GetGroupParent},
    {"variable", &QueryEngine::SetVariable, &QueryEngine::GetVariable},
};

/// The two slots with a stack.
struct Stack {
    const char* name;
    bool (QueryEngine::*push)(IObject*);
    void (QueryEngine::*pop)();
    void (QueryEngine::*set)(IObject*);
    IObject* (QueryEngine::*get)() const;
};

const Stack stacks[] = {
    {"group parent", &QueryEngine::PushGroupParent, &QueryEngine::PopGroupParent, &QueryEngine::SetGroupParent,
     &QueryEngine::GetGroupParent},
    {"variable", &QueryEngine::PushVariable, &QueryEngine::PopVariable, &QueryEngine::SetVariable,
     &QueryEngine::GetVariable},
};

TEST_F(EngineContext, IsMadeEmpty) {
    const QueryEngine engine;
    for (const Slot& slot : slots) {
        EXPECT_EQ((engine.*slot.get)(), nullptr) << slot.name;
    }
    EXPECT_EQ(engine.GetUnitPrecision(), 0);
    EXPECT_EQ(engine.GetErrorPosition(), -1);
    EXPECT_EQ(engine.FindUnit(L"mm"), nullptr);
}

// ---- slots ----

TEST_F(EngineContext, SlotsOwnOneReference) {
    for (const Slot& slot : slots) {
        const Ref<CountedObject> first = Make<CountedObject>();
        const Ref<CountedObject> second = Make<CountedObject>();
        {
            QueryEngine engine;
            (engine.*slot.set)(first.Get());
            EXPECT_EQ((engine.*slot.get)(), first.Get()) << slot.name;
            EXPECT_EQ(first->References(), 2) << slot.name << ": getters lend";
            for (const Slot& other : slots) {
                EXPECT_EQ((engine.*other.get)() == first.Get(), &other == &slot) << slot.name << ", " << other.name;
            }
            (engine.*slot.set)(second.Get());
            EXPECT_EQ(first->References(), 1) << slot.name;
            EXPECT_EQ(second->References(), 2) << slot.name;
            (engine.*slot.set)(nullptr);
            EXPECT_EQ((engine.*slot.get)(), nullptr) << slot.name;
            EXPECT_EQ(second->References(), 1) << slot.name;
            (engine.*slot.set)(nullptr);
            (engine.*slot.set)(first.Get());
        }
        EXPECT_EQ(first->References(), 1) << slot.name << ": the engine is gone";
    }
}

// The old reference goes before the new one is taken, so the object needs another owner; with one nothing changes.
TEST_F(EngineContext, SlotsMayBeSetToWhatTheyHold) {
    for (const Slot& slot : slots) {
        QueryEngine engine;
        const Ref<CountedObject> object = Make<CountedObject>();
        (engine.*slot.set)(object.Get());
        (engine.*slot.set)(object.Get());
        EXPECT_EQ((engine.*slot.get)(), object.Get()) << slot.name;
        EXPECT_EQ(object->References(), 2) << slot.name;
    }
}

/// Tells, when it goes, what an engine's slot held.
class LastLook : public CountedObject {
public:
    LastLook(const QueryEngine& watchedEngine, const Slot& watchedSlot, IObject*& seenObject)
        : engine(watchedEngine), slot(watchedSlot), seen(seenObject) {}
    LastLook(const LastLook&) = delete;
    LastLook& operator=(const LastLook&) = delete;
    ~LastLook() override { seen = (engine.*slot.get)(); }

private:
    const QueryEngine& engine;
    const Slot& slot;
    IObject*& seen;
};

// Deliberately in this order: the old object is released first, and the slot never holds what is gone.
TEST_F(EngineContext, SlotsReleaseTheOldObjectBeforeTheyHoldTheNew) {
    for (const Slot& slot : slots) {
        QueryEngine engine;
        const Ref<CountedObject> next = Make<CountedObject>();
        IObject* seen = next.Get();
        const auto last = new LastLook(engine, slot, seen);
        (engine.*slot.set)(last);
        last->Release();
        (engine.*slot.set)(next.Get());
        EXPECT_NE(seen, next.Get()) << slot.name;
        EXPECT_EQ((engine.*slot.get)(), next.Get()) << slot.name;
    }
}

// ---- stacks ----

TEST_F(EngineContext, PushAndPopPairUp) {
    for (const Stack& stack : stacks) {
        QueryEngine engine;
        const Ref<CountedObject> first = Make<CountedObject>();
        const Ref<CountedObject> second = Make<CountedObject>();
        EXPECT_TRUE((engine.*stack.push)(first.Get()));
        EXPECT_EQ((engine.*stack.get)(), first.Get());
        EXPECT_EQ(first->References(), 2);
        EXPECT_TRUE((engine.*stack.push)(second.Get()));
        EXPECT_EQ((engine.*stack.get)(), second.Get());
        EXPECT_EQ(first->References(), 2) << stack.name << ": its reference moved with it";
        EXPECT_EQ(second->References(), 2);
        (engine.*stack.pop)();
        EXPECT_EQ((engine.*stack.get)(), first.Get());
        EXPECT_EQ(first->References(), 2);
        EXPECT_EQ(second->References(), 1);
        (engine.*stack.pop)();
        EXPECT_EQ((engine.*stack.get)(), nullptr) << stack.name << ": as before the first push";
        EXPECT_EQ(first->References(), 1);
        (engine.*stack.pop)();
        EXPECT_EQ((engine.*stack.get)(), nullptr) << stack.name << ": one pop too many";
    }
}

TEST_F(EngineContext, PopBringsBackWhatWasSet) {
    for (const Stack& stack : stacks) {
        QueryEngine engine;
        const Ref<CountedObject> set = Make<CountedObject>();
        const Ref<CountedObject> pushed = Make<CountedObject>();
        const Ref<CountedObject> replaced = Make<CountedObject>();
        (engine.*stack.set)(set.Get());
        (engine.*stack.push)(pushed.Get());
        // Setting replaces the top only.
        (engine.*stack.set)(replaced.Get());
        EXPECT_EQ(pushed->References(), 1);
        EXPECT_EQ(set->References(), 2);
        (engine.*stack.pop)();
        EXPECT_EQ(replaced->References(), 1);
        EXPECT_EQ((engine.*stack.get)(), set.Get());
        (engine.*stack.pop)();
        EXPECT_EQ((engine.*stack.get)(), nullptr) << "a pop without a push empties the slot";
        EXPECT_EQ(set->References(), 1);
    }
}

TEST_F(EngineContext, NullMayBePushed) {
    for (const Stack& stack : stacks) {
        QueryEngine engine;
        const Ref<CountedObject> object = Make<CountedObject>();
        (engine.*stack.push)(object.Get());
        EXPECT_TRUE((engine.*stack.push)(nullptr));
        EXPECT_EQ((engine.*stack.get)(), nullptr);
        (engine.*stack.push)(object.Get());
        EXPECT_EQ(object->References(), 3);
        (engine.*stack.pop)();
        EXPECT_EQ((engine.*stack.get)(), nullptr);
        (engine.*stack.pop)();
        EXPECT_EQ((engine.*stack.get)(), object.Get());
    }
}

TEST_F(EngineContext, TheSameObjectMayBePushedAgain) {
    for (const Stack& stack : stacks) {
        QueryEngine engine;
        const Ref<CountedObject> object = Make<CountedObject>();
        for (int depth = 1; depth <= 1000; ++depth) {
            (engine.*stack.push)(object.Get());
            ASSERT_EQ(object->References(), depth + 1);
        }
        for (int depth = 1000; depth >= 1; --depth) {
            ASSERT_EQ((engine.*stack.get)(), object.Get());
            (engine.*stack.pop)();
            ASSERT_EQ(object->References(), depth);
        }
    }
}

TEST_F(EngineContext, StacksAreApart) {
    QueryEngine engine;
    const Ref<CountedObject> parent = Make<CountedObject>();
    const Ref<CountedObject> variable = Make<CountedObject>();
    engine.PushGroupParent(parent.Get());
    engine.PushVariable(variable.Get());
    engine.PopGroupParent();
    EXPECT_EQ(engine.GetVariable(), variable.Get());
    EXPECT_EQ(engine.GetGroupParent(), nullptr);
}

// ---- the end ----

TEST_F(EngineContext, ReleasesWhatItHoldsInOrder) {
    const auto object = [](const char* label) { return Make<CountedObject>(label); };
    {
        QueryEngine engine;
        // Set in another order than released.
        engine.SetVariable(object("variable 1").Get());
        engine.PushVariable(object("variable 2").Get());
        engine.PushVariable(object("variable 3").Get());
        engine.SetGroupParent(object("parent 1").Get());
        engine.PushGroupParent(object("parent 2").Get());
        engine.PushGroupParent(object("parent 3").Get());
        engine.SetPropertySource(object("source").Get());
        engine.SetGlobal(object("global").Get());
        for (const char* const label : {"units 1", "units 2"}) {
            const auto units = Make<CountedUnitFactory>(OrvStringT(L"c"), OrvStringT(L"u"), 1.0, std::string(label));
            engine.AddUnitFactory(units.Get());
        }
        EXPECT_TRUE(Counted::gone.empty());
    }
    // The last pushed object stands in the slot; the stacks hold those below it, the first pushed at the bottom.
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"units 1", "units 2", "parent 2", "parent 1", "variable 2",
                                                       "variable 1", "global", "source", "parent 3", "variable 3"}));
}

TEST_F(EngineContext, MayBeDeletedAsItsBase) {
    struct Derived : QueryEngine {
        explicit Derived(bool& goneFlag) : gone(goneFlag) {}
        ~Derived() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    const Ref<CountedObject> object = Make<CountedObject>();
    {
        const std::unique_ptr<QueryEngine> engine = std::make_unique<Derived>(gone);
        engine->SetGlobal(object.Get());
    }
    EXPECT_TRUE(gone);
    EXPECT_EQ(object->References(), 1);
}

// ---- copies ----

/// An engine with something everywhere.
struct FullEngine {
    FullEngine() {
        engine.SetGlobal(global.Get());
        engine.SetPropertySource(source.Get());
        engine.PushVariable(below.Get());
        engine.PushVariable(variable.Get());
        engine.PushGroupParent(below.Get());
        engine.PushGroupParent(parent.Get());
        engine.AddUnitFactory(units.Get());
        engine.SetUnitPrecision(7);
    }

    /// What the copy of an engine needs before it may go: it gives back what it never took.
    void AddReferencesForACopy() {
        for (CountedObject* const object : {global.Get(), source.Get(), variable.Get(), parent.Get()}) {
            object->AddRef();
        }
        below->AddRef();
        below->AddRef();
        units->AddRef();
    }

    void ExpectReferences(int more) const {
        for (const CountedObject* const object : {global.Get(), source.Get(), variable.Get(), parent.Get()}) {
            EXPECT_EQ(object->References(), 2 + more);
        }
        EXPECT_EQ(below->References(), 3 + 2 * more);
        EXPECT_EQ(units->References(), 2 + more);
    }

    void ExpectView(QueryEngine& copy) const {
        EXPECT_EQ(copy.GetGlobal(), global.Get());
        EXPECT_EQ(copy.GetPropertySource(), source.Get());
        EXPECT_EQ(copy.GetVariable(), variable.Get());
        EXPECT_EQ(copy.GetGroupParent(), parent.Get());
        EXPECT_EQ(copy.GetUnitPrecision(), 7);
        const Ref<IUnitDefinition> unit(copy.FindUnit(L"u"));
        EXPECT_TRUE(unit);
    }

    const Ref<CountedObject> global = Make<CountedObject>();
    const Ref<CountedObject> source = Make<CountedObject>();
    const Ref<CountedObject> variable = Make<CountedObject>();
    const Ref<CountedObject> parent = Make<CountedObject>();
    const Ref<CountedObject> below = Make<CountedObject>();
    const Ref<CountedUnitFactory> units = Make<CountedUnitFactory>(OrvStringT(L"c"), OrvStringT(L"u"), 1.0);
    QueryEngine engine;
};

// Deliberate: a copy is a view of the same objects, and takes no references.
TEST_F(EngineContext, CopiesAreViewsWithoutReferences) {
    FullEngine full;
    {
        QueryEngine copy(full.engine);
        full.ExpectReferences(0);
        full.ExpectView(copy);
        full.AddReferencesForACopy();
    }
    full.ExpectReferences(0);
}

TEST_F(EngineContext, CopiesHaveTheStacksToo) {
    FullEngine full;
    {
        QueryEngine copy(full.engine);
        full.AddReferencesForACopy();
        copy.PopVariable();
        EXPECT_EQ(copy.GetVariable(), full.below.Get());
        EXPECT_EQ(full.engine.GetVariable(), full.variable.Get()) << "each has stacks of its own";
        copy.PopVariable();
        EXPECT_EQ(copy.GetVariable(), nullptr);
        copy.PopGroupParent();
        EXPECT_EQ(copy.GetGroupParent(), full.below.Get());
    }
    full.ExpectReferences(0);
}

// Assignment does not release what the target held, just as deliberately.
TEST_F(EngineContext, AssignmentDropsTheTargetsObjects) {
    FullEngine full;
    const Ref<CountedObject> old = Make<CountedObject>();
    const Ref<CountedUnitFactory> oldUnits = Make<CountedUnitFactory>(OrvStringT(L"c"), OrvStringT(L"v"), 1.0);
    {
        QueryEngine target;
        for (const Slot& slot : slots) {
            (target.*slot.set)(old.Get());
        }
        target.PushVariable(old.Get());
        target.PushGroupParent(old.Get());
        target.AddUnitFactory(oldUnits.Get());
        EXPECT_EQ(old->References(), 7);
        target = full.engine;
        EXPECT_EQ(old->References(), 7);
        EXPECT_EQ(oldUnits->References(), 2);
        full.ExpectReferences(0);
        full.ExpectView(target);
        EXPECT_EQ(target.FindUnit(L"v"), nullptr);
        full.AddReferencesForACopy();
    }
    full.ExpectReferences(0);
    EXPECT_EQ(old->References(), 7);
    for (int reference = 0; reference < 6; ++reference) {
        old->Release();
    }
    oldUnits->Release();
}

TEST_F(EngineContext, CopiesOfAnEmptyEngineAreEmpty) {
    QueryEngine engine;
    QueryEngine copy(engine);
    copy = engine;
    for (const Slot& slot : slots) {
        EXPECT_EQ((copy.*slot.get)(), nullptr);
    }
}

} // namespace
} // namespace OrvUQL::Tests
