// What a name is invoked on, and how.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/Host.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

/// An engine with a witness in each slot: G global, P property source, V variable, D group parent (what a point
/// addresses).
class NameElements : public WitnessTest {
protected:
    void SetUp() override {
        WitnessTest::SetUp();
        const auto set = [&](void (QueryEngine::*setter)(IObject*), const char* label) {
            const Ref<Witness> witness = MakeWitness(label);
            (engine.*setter)(witness.Get());
        };
        set(&QueryEngine::SetGlobal, "G");
        set(&QueryEngine::SetPropertySource, "P");
        set(&QueryEngine::SetVariable, "V");
        set(&QueryEngine::SetGroupParent, "D");
    }
    void TearDown() override {
        Empty();
        WitnessTest::TearDown();
    }

    static Ref<Witness> MakeWitness(const char* label) {
        Plan plan;
        plan.label = label;
        return Make<Witness>(plan);
    }

    void Empty() {
        engine.SetGlobal(nullptr);
        engine.SetPropertySource(nullptr);
        engine.SetVariable(nullptr);
        engine.SetGroupParent(nullptr);
    }

    /// Evaluates an element, which is taken over.
    std::string Evaluate(IQueryElement* element) {
        const Ref<IQueryElement> tree(element);
        return Attempt([&](IError** err) { return engine.Evaluate(tree.Get(), err); });
    }

    std::string Run(const wchar_t* query) {
        const Ref<IQueryElement> tree(engine.ParseQuery(query, nullptr));
        return tree ? Attempt([&](IError** err) { return engine.Evaluate(tree.Get(), err); }) : "does not parse";
    }

    QueryEngine engine;
};

TEST_F(NameElements, GoToTheSlotOfTheirPrefix) {
    EXPECT_EQ(Run(L"name"), "string G.name/0");
    EXPECT_EQ(Run(L"@name"), "string P.name/0");
    EXPECT_EQ(Run(L"$name"), "string V.name/0");
    EXPECT_EQ(Run(L".name"), "string D.name/0");
    EXPECT_EQ(Run(L"Name(1, 2)"), "string G.Name/2");
    EXPECT_EQ(Run(L"@Name(1, 2)"), "string P.Name/2");
    EXPECT_EQ(Run(L"$Name(, 2)"), "string V.Name/2");
    EXPECT_EQ(Run(L".Name(1)"), "string D.Name/1");
    // A sign alone is a name too, which is then empty; and so are characters without a meaning.
    EXPECT_EQ(Run(L"@"), "string P./0");
    EXPECT_EQ(Run(L"$()"), "string V./0");
    EXPECT_EQ(Run(L"#"), "string G.#/0");
    EXPECT_EQ(Run(L"@1"), "string P.1/0");
}

TEST_F(NameElements, BuiltByHand) {
    EXPECT_EQ(Evaluate(Name(L"name")), "string G.name/0");
    EXPECT_EQ(Evaluate(Member(nullptr, L"name")), "string D.name/0");
    // The first character decides before the member flag does.
    EXPECT_EQ(Evaluate(Member(nullptr, L"@name")), "string P.name/0");
    EXPECT_EQ(Evaluate(Member(nullptr, L"$name")), "string V.name/0");
    // Only the first character is a prefix, and only one of it.
    EXPECT_EQ(Evaluate(Name(L"@@name")), "string P.@name/0");
    EXPECT_EQ(Evaluate(Name(L"$@name")), "string V.@name/0");
    EXPECT_EQ(Evaluate(Name(L"a@b")), "string G.a@b/0");
    EXPECT_EQ(Evaluate(Name(L"")), "string G./0");
    EXPECT_EQ(Evaluate(Member(nullptr, L"")), "string D./0");
    EXPECT_EQ(Evaluate(Name(L"with blank")), "string G.with blank/0");
}

TEST_F(NameElements, WithAParentGoToItsValueAsWritten) {
    Plan plan;
    plan.label = "X";
    EXPECT_EQ(Evaluate(Member(new WitnessElement(plan), L"name")), "string X.name/0");
    // The flag says nothing where there is a parent, and neither does a prefix.
    QueryElementList none;
    EXPECT_EQ(Evaluate(new ElementMethod(new WitnessElement(plan), L"name", none, false, 0)), "string X.name/0");
    EXPECT_EQ(Evaluate(Member(new WitnessElement(plan), L"@name")), "string X.@name/0");
    EXPECT_EQ(Evaluate(Member(new WitnessElement(plan), L"$name")), "string X.$name/0");
}

TEST_F(NameElements, FollowAChangeOfParent) {
    Plan plan;
    plan.label = "X";
    QueryElementList none;
    const Ref<ElementMethod> method = Make<ElementMethod>(nullptr, L"@name", none, true, 0);
    const auto evaluate = [&] { return Attempt([&](IError** err) { return engine.Evaluate(method.Get(), err); }); };
    EXPECT_EQ(evaluate(), "string P.name/0");
    method->SetParentObject(new WitnessElement(plan));
    EXPECT_EQ(evaluate(), "string X.@name/0");
    // A library element and a chain of them too.
    method->SetParentObject(Literal(5));
    EXPECT_EQ(evaluate(), "! Identifier '@name' is not a method of 'int'");
    method->SetParentObject(Member(new WitnessElement(plan), L"y"));
    EXPECT_EQ(evaluate(), "! Identifier '@name' is not a method of 'string'");
    method->SetParentObject(nullptr);
    EXPECT_EQ(evaluate(), "string P.name/0");
}

TEST_F(NameElements, AnEmptySlotIsAnError) {
    Empty();
    EXPECT_EQ(Run(L"Name"), "! Invalid use of 'Name' in the current context at position 0");
    EXPECT_EQ(Run(L"  Name(1)"), "! Invalid use of 'Name' in the current context at position 2");
    // With the prefix as written, but without the point, which is no part of the name.
    EXPECT_EQ(Run(L"@x"), "! Invalid use of '@x' in the current context at position 0");
    EXPECT_EQ(Run(L" $x"), "! Invalid use of '$x' in the current context at position 1");
    EXPECT_EQ(Run(L".x"), "! Invalid use of 'x' in the current context at position 1");
    EXPECT_EQ(Run(L" . x"), "does not parse");
    EXPECT_EQ(Run(L" .x.y"), "! Invalid use of 'x' in the current context at position 2");
    EXPECT_EQ(Run(L"1 + @"), "! Invalid use of '@' in the current context at position 4");
    EXPECT_EQ(Run(L"#"), "! Invalid use of '#' in the current context at position 0");
    // The position is what the element says, whatever that is.
    EXPECT_EQ(Evaluate(Name(L"n", {}, -3)), "! Invalid use of 'n' in the current context at position -3");
    EXPECT_EQ(Evaluate(Member(nullptr, L"", {}, 7)), "! Invalid use of '' in the current context at position 7");
    // With a parent nobody looks at the slots.
    EXPECT_EQ(Run(L"5.ToInt().ToString()"), "string 5");
}

TEST_F(NameElements, EachSlotStandsForItself) {
    struct Row {
        const wchar_t* name;
        void (QueryEngine::*setter)(IObject*);
    };
    const Row rows[] = {{L"x", &QueryEngine::SetGlobal},
                        {L"@x", &QueryEngine::SetPropertySource},
                        {L"$x", &QueryEngine::SetVariable},
                        {L".x", &QueryEngine::SetGroupParent}};
    for (const Row& empty : rows) {
        (engine.*empty.setter)(nullptr);
        for (const Row& row : rows) {
            EXPECT_EQ(Run(row.name)[0] == '!', &row == &empty) << Utf8(row.name);
        }
        const Ref<Witness> witness = MakeWitness("W");
        (engine.*empty.setter)(witness.Get());
    }
}

TEST_F(NameElements, AParentWithoutAValueEndsTheCall) {
    EXPECT_EQ(Evaluate(Member(Failing(L"no parent"), L"name")), "! no parent");
    EXPECT_EQ(Evaluate(Member(Failing(nullptr), L"name")), "!");
    EXPECT_EQ(Evaluate(Member(Member(Failing(L"no parent"), L"a"), L"b")), "! no parent");
    EXPECT_EQ(Evaluate(Member(Name(L"f", {Failing()}), L"ToString")), "string G.f/1") << "arguments are not evaluated";
    EXPECT_EQ(TakeLog(), (Log{"G.Invoke(f/1)", "G.Invoke(f/1)"}));
}

TEST_F(NameElements, AFailedCallEndsTheChain) {
    Plan plan;
    plan.label = "X";
    plan.failing = {"Invoke"};
    EXPECT_EQ(Evaluate(Member(Member(new WitnessElement(plan), L"a"), L"b")), "! X: Invoke");
    EXPECT_EQ(TakeLog(), (Log{"X.Evaluate", "X.Invoke(a/0)", "X.Evaluate", "X.Invoke(a/0)"}));
}

// A call is handed its arguments as they stand: nothing is evaluated on the way.
TEST_F(NameElements, ArgumentsAreHandedOverUnevaluated) {
    const Ref<CountedElement> argument = Make<CountedElement>(new ObjectInt(1));
    const QueryElementList* seen = nullptr;
    Plan plan;
    plan.label = "X";
    plan.invoke = [&](QueryEngine* calling, const wchar_t* name, const QueryElementList& args, IError**) -> IObject* {
        EXPECT_EQ(calling, &engine);
        EXPECT_EQ(OrvStringT(name), L"name");
        seen = &args;
        return new ObjectNull();
    };
    const Ref<Witness> global = Make<Witness>(plan);
    engine.SetGlobal(global.Get());
    const Ref<IQueryElement> call(Name(L"name", {argument.Share(), nullptr, argument.Share()}));
    const Ref<IObject> value(engine.Evaluate(call.Get(), nullptr));
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen, &dynamic_cast<const ElementMethod&>(*call).GetArguments());
    ASSERT_EQ(seen->size(), 3U);
    EXPECT_EQ((*seen)[0], argument.Get());
    EXPECT_EQ((*seen)[1], nullptr);
    EXPECT_EQ((*seen)[2], argument.Get());
    EXPECT_EQ(argument->Evaluations(), 0);
    EXPECT_EQ(argument->References(), 3);
}

TEST_F(NameElements, TheResultIsHandedOnAsItIs) {
    const Ref<CountedObject> result = Make<CountedObject>();
    Plan plan;
    plan.label = "X";
    plan.invoke = [&](QueryEngine*, const wchar_t*, const QueryElementList&, IError**) -> IObject* {
        return result.Share();
    };
    const Ref<Witness> global = Make<Witness>(plan);
    engine.SetGlobal(global.Get());
    const Ref<IQueryElement> call(Name(L"name"));
    const Ref<IObject> value(engine.Evaluate(call.Get(), nullptr));
    EXPECT_EQ(value.Get(), result.Get());
    EXPECT_EQ(result->References(), 2);
}

// For the time of the call the object has one more owner, so that it may even empty the slot from which it was called.
TEST_F(NameElements, TheTargetLivesThroughTheCall) {
    using Setter = void (QueryEngine::*)(IObject*);
    struct Row {
        const wchar_t* name;
        Setter setter;
    };
    const Row rows[] = {{L"x", &QueryEngine::SetGlobal},
                        {L"@x", &QueryEngine::SetPropertySource},
                        {L"$x", &QueryEngine::SetVariable},
                        {L".x", &QueryEngine::SetGroupParent}};
    for (const Row& row : rows) {
        Witness* self = nullptr;
        int during = 0;
        int after = 0;
        Plan plan;
        plan.label = "X";
        plan.invoke = [&](QueryEngine* calling, const wchar_t*, const QueryElementList&, IError**) -> IObject* {
            during = References(*self);
            (calling->*row.setter)(nullptr);
            after = References(*self);
            return new ObjectString(self->ToString());
        };
        self = new Witness(plan);
        (engine.*row.setter)(self);
        self->Release();
        const Ref<IQueryElement> tree(engine.ParseQuery(row.name, nullptr));
        const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(Describe(value.Get()), "string text");
        EXPECT_EQ(during, 2) << Utf8(row.name);
        EXPECT_EQ(after, 1) << Utf8(row.name);
        EXPECT_EQ(Counted::live, 3) << "the target is gone with the call, of " << Utf8(row.name);
        const Ref<Witness> next = MakeWitness("W");
        (engine.*row.setter)(next.Get());
    }
}

// The value of a parent has no other owner than the call.
TEST_F(NameElements, AParentsValueIsReleasedAfterTheCall) {
    const Ref<CountedObject> value = Make<CountedObject>("", L"text");
    int during = 0;
    Plan plan;
    plan.label = "X";
    Witness* last = nullptr;
    plan.invoke = [&](QueryEngine*, const wchar_t*, const QueryElementList&, IError**) -> IObject* {
        during = References(*last);
        return value.Share();
    };
    last = new Witness(plan);
    Ref<IQueryElement> chain(Member(Literal(last), L"a"));
    {
        const Ref<IObject> result(engine.Evaluate(chain.Get(), nullptr));
        EXPECT_EQ(during, 2) << "the literal's and the call's";
        EXPECT_EQ(References(*last), 1);
        EXPECT_EQ(value->References(), 2);
    }
    // In the middle of a chain a result is gone as soon as the next name was invoked on it.
    Ref<IQueryElement> longer(Member(Member(chain.Share(), L"ToString"), L"ToString"));
    const Ref<IObject> result(engine.Evaluate(longer.Get(), nullptr));
    EXPECT_EQ(Describe(result.Get()), "string text");
    EXPECT_EQ(value->References(), 1);
}

TEST_F(NameElements, EvaluatedWithoutAnEngineFindNoSlot) {
    ErrorSlot error;
    const Ref<IQueryElement> name(Name(L"x", {}, 4));
    EXPECT_EQ(name->Evaluate(nullptr, error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "Invalid use of 'x' in the current context at position 4");
    const Ref<IQueryElement> method(Member(Literal(5), L"ToString"));
    const Ref<IObject> value(method->Evaluate(nullptr, nullptr));
    EXPECT_EQ(Describe(value.Get()), "string 5");
}

// One element, called on values of different classes in turn, finds each class's own method.
TEST_F(NameElements, OneElementServesValuesOfEveryClass) {
    std::vector<Ref<IObject>> values;
    values.push_back(Ref<IObject>(new ObjectInt(-5)));
    values.push_back(Ref<IObject>(new ObjectDouble(-2.5)));
    values.push_back(Ref<IObject>(new ObjectString(L"-7")));
    values.push_back(Ref<IObject>(new ObjectNull()));
    values.push_back(Ref<IObject>(new CountedObject("", L"text")));
    values.push_back(Ref<IObject>(new ObjectInt()));
    const char* const expected[] = {
        "int 5",
        "double 2.5",
        "! Identifier 'aBS' is not a method of 'string'",
        "null null",
        "! Identifier 'aBS' is not a method of 'counted'",
        "! Unable to call non-static method 'aBS' of class 'int' without a class instance",
    };
    std::size_t current = 0;
    Plan plan;
    plan.label = "G";
    plan.invoke = [&](QueryEngine*, const wchar_t*, const QueryElementList&, IError**) -> IObject* {
        return values[current].Share();
    };
    const Ref<Witness> global = Make<Witness>(plan);
    engine.SetGlobal(global.Get());
    const Ref<IQueryElement> tree(engine.ParseQuery(L"value.aBS()", nullptr));
    for (std::size_t round = 0; round < 60; ++round) {
        current = round * 7 % values.size();
        EXPECT_EQ(Attempt([&](IError** err) { return engine.Evaluate(tree.Get(), err); }), expected[current]);
    }
    // And several times the same in a row.
    for (current = 0; current < values.size(); ++current) {
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(Attempt([&](IError** err) { return engine.Evaluate(tree.Get(), err); }), expected[current]);
        }
    }
    engine.SetGlobal(nullptr);
}

} // namespace
} // namespace OrvUQL::Tests
