// A host's own elements, and classes derived from the library's, anywhere in a tree.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <functional>

namespace OrvUQL::Tests {
namespace {

using HostElements = CountedTest;

/// Puts an element, taken over, somewhere into a tree and tells what the tree must give if the element gives 6.
struct Place {
    const char* name;
    std::function<IQueryElement*(IQueryElement*)> plant;
    const char* value;
};

const Place places[] = {
    {"left of +", [](IQueryElement* e) { return Binary(e, L"+", Literal(1)); }, "int 7"},
    {"right of +", [](IQueryElement* e) { return Binary(Literal(1), L"+", e); }, "int 7"},
    {"left of -", [](IQueryElement* e) { return Binary(e, L"-", Literal(1)); }, "int 5"},
    {"right of -", [](IQueryElement* e) { return Binary(Literal(1), L"-", e); }, "int -5"},
    {"left of *", [](IQueryElement* e) { return Binary(e, L"*", Literal(2)); }, "int 12"},
    {"right of *", [](IQueryElement* e) { return Binary(Literal(2), L"*", e); }, "int 12"},
    {"left of /", [](IQueryElement* e) { return Binary(e, L"/", Literal(4)); }, "double 1.5"},
    {"right of /", [](IQueryElement* e) { return Binary(Literal(3), L"/", e); }, "double 0.5"},
    {"left of \\", [](IQueryElement* e) { return Binary(e, L"\\", Literal(4)); }, "int 1"},
    {"right of \\", [](IQueryElement* e) { return Binary(Literal(13), L"\\", e); }, "int 2"},
    {"left of ^", [](IQueryElement* e) { return Binary(e, L"^", Literal(2)); }, "double 36"},
    {"right of ^", [](IQueryElement* e) { return Binary(Literal(2), L"^", e); }, "double 64"},
    {"left of <", [](IQueryElement* e) { return Binary(e, L"<", Literal(7)); }, "bool true"},
    {"right of <", [](IQueryElement* e) { return Binary(Literal(7), L"<", e); }, "bool false"},
    {"left of =", [](IQueryElement* e) { return Binary(e, L"=", Literal(6)); }, "bool true"},
    {"right of =", [](IQueryElement* e) { return Binary(Literal(6), L"==", e); }, "bool true"},
    {"left of and", [](IQueryElement* e) { return Binary(e, L"and", Truth(true)); }, "bool true"},
    {"right of and", [](IQueryElement* e) { return Binary(Truth(true), L"and", e); }, "bool true"},
    {"left of or", [](IQueryElement* e) { return Binary(e, L"or", Truth(false)); }, "bool true"},
    {"right of or", [](IQueryElement* e) { return Binary(Truth(false), L"or", e); }, "bool true"},
    {"behind -", [](IQueryElement* e) { return Unary(L"-", e); }, "int -6"},
    {"behind +", [](IQueryElement* e) { return Unary(L"+", e); }, "int 6"},
    {"behind not", [](IQueryElement* e) { return Unary(L"not", e); }, "bool false"},
    {"condition", [](IQueryElement* e) { return Ternary(e, Literal(1), Literal(2)); }, "int 1"},
    {"first branch", [](IQueryElement* e) { return Ternary(Truth(true), e, Literal(2)); }, "int 6"},
    {"second branch", [](IQueryElement* e) { return Ternary(Truth(false), Literal(1), e); }, "int 6"},
    {"parent", [](IQueryElement* e) { return Member(e, L"ToString"); }, "string 6"},
    {"parent of a chain", [](IQueryElement* e) { return Member(Member(e, L"ToString"), L"ToInt"); }, "int 6"},
    {"argument",
     [](IQueryElement* e) {
         return Name(L"max", {Literal(1), e});
     },
     "int 6"},
    {"unevaluated argument",
     [](IQueryElement* e) {
         return Name(L"iif", {Truth(true), e, Literal(1)});
     },
     "int 6"},
    {"source of a group", [](IQueryElement* e) { return Group(e, Member(nullptr, L"ToString")); }, "string 6"},
    {"inside of a group", [](IQueryElement* e) { return Group(Literal(1), e); }, "int 6"},
    {"item of an array",
     [](IQueryElement* e) {
         return Array({Literal(1), e});
     },
     "array (1,6)"},
    {"bottom of a chain of operators",
     [](IQueryElement* e) { return Binary(Binary(Binary(e, L"+", Literal(1)), L"*", Literal(2)), L"-", Literal(3)); },
     "int 11"},
    {"middle of a chain of operators",
     [](IQueryElement* e) { return Binary(Binary(Binary(Literal(1), L"+", Literal(1)), L"*", e), L"-", Literal(3)); },
     "int 9"},
    {"several places",
     [](IQueryElement* e) {
         e->AddRef();
         e->AddRef();
         return Unary(L"-", Ternary(Binary(Literal(1), L"<", Unary(L"+", e)), Binary(e, L"+", e), Null()));
     },
     "int -12"},
};

/// What makes an element that gives 6, or fails with "no value" if asked to.
struct Kind {
    const char* name;
    std::function<IQueryElement*(bool fails)> make;
};

IObject* Answer(bool fails, IError** err) {
    if (!fails) {
        return new ObjectInt(6);
    }
    if (err != nullptr) {
        *err = new Error(L"no value");
    }
    return nullptr;
}

/// A class of the library whose evaluation a host replaced. What its base would give is something else.
template <class Base> class Replaced : public Base {
public:
    template <class... Arguments>
    explicit Replaced(bool failing, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...), fails(failing) {
        Counted::Begin();
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;
    ~Replaced() override { Counted::End({}); }

    IObject* Evaluate(QueryEngine*, IError** err) const override { return Answer(fails, err); }

private:
    bool fails;
};

template <class Base, class... Arguments> IQueryElement* MakeReplaced(bool fails, Arguments... arguments) {
    return new Replaced<Base>(fails, arguments...);
}

IQueryElement* MakeReplacedMethod(bool fails) {
    QueryElementList none;
    return new Replaced<ElementMethod>(fails, Literal(1), L"Foo", none, true, 0);
}

const Kind kinds[] = {
    {"a host's element",
     [](bool fails) -> IQueryElement* { return fails ? Failing(L"no value") : new CountedElement(new ObjectInt(6)); }},
    {"ElementObject", [](bool fails) { return MakeReplaced<ElementObject>(fails, 1, 0); }},
    {"ElementMethod", [](bool fails) { return MakeReplacedMethod(fails); }},
    {"ElementGroup", [](bool fails) { return MakeReplaced<ElementGroup>(fails, Literal(1), Literal(2), 0); }},
    {"ElementArray", [](bool fails) { return MakeReplaced<ElementArray>(fails, QueryElementList(), 0); }},
    {"OperatorUnary", [](bool fails) { return MakeReplaced<OperatorUnary>(fails, OrvStringT(L"-"), Literal(1), 0); }},
    {"OperatorBinary",
     [](bool fails) { return MakeReplaced<OperatorBinary>(fails, OrvStringT(L"+"), Literal(1), Literal(1), 0); }},
    {"OperatorTernary",
     [](bool fails) {
         return MakeReplaced<OperatorTernary>(fails, OrvStringT(L"?"), Truth(true), Literal(1), Literal(2), 0);
     }},
};

TEST_F(HostElements, GiveTheirValueInEveryPlace) {
    Host host;
    for (const Kind& kind : kinds) {
        for (const Place& place : places) {
            const Ref<IQueryElement> tree(place.plant(kind.make(false)));
            EXPECT_EQ(host.Run(*tree), place.value) << kind.name << ", " << place.name;
            EXPECT_EQ(host.Run(*tree), place.value) << kind.name << ", " << place.name;
        }
    }
}

TEST_F(HostElements, FailInEveryPlace) {
    Host host;
    for (const Kind& kind : kinds) {
        for (const Place& place : places) {
            const Ref<IQueryElement> tree(place.plant(kind.make(true)));
            EXPECT_EQ(host.Run(*tree), "! no value") << kind.name << ", " << place.name;
        }
    }
}

TEST_F(HostElements, MayFailWithoutAMessage) {
    Host host;
    for (const Place& place : places) {
        const Ref<IQueryElement> tree(place.plant(Failing(nullptr)));
        EXPECT_EQ(host.Run(*tree), "!") << place.name;
    }
}

TEST_F(HostElements, MayBeTheWholeTree) {
    Host host;
    for (const Kind& kind : kinds) {
        const Ref<IQueryElement> value(kind.make(false));
        EXPECT_EQ(host.Run(*value), "int 6") << kind.name;
        const Ref<IQueryElement> failure(kind.make(true));
        EXPECT_EQ(host.Run(*failure), "! no value") << kind.name;
    }
}

// A subclass that only adds to what its base does.
class Logged : public OperatorBinary {
public:
    Logged(const wchar_t* text, IQueryElement* first, IQueryElement* second)
        : OperatorBinary(OrvStringT(text), first, second, 0) {}
    IObject* Evaluate(QueryEngine* engine, IError** err) const override {
        ++evaluations;
        return OperatorBinary::Evaluate(engine, err);
    }
    mutable int evaluations = 0;
};

TEST_F(HostElements, SubclassesMayCallTheirBase) {
    Host host;
    Logged* const inner = new Logged(L"+", Literal(1), Literal(2));
    Logged* const outer = new Logged(L"*", Binary(inner, L"-", Literal(10)), Literal(3));
    const Ref<IQueryElement> tree(Binary(outer, L"+", Literal(1)));
    const Ref<IObject> value(host.engine.Evaluate(tree.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), "int -20");
    EXPECT_EQ(inner->evaluations, 1);
    EXPECT_EQ(outer->evaluations, 1);
}

// A subclass of a value class is not taken for the class itself, even where the library keeps plain values without
// objects.
class Loud : public ObjectInt {
public:
    explicit Loud(int number) : ObjectInt(number) {}
    bool ToInt(int& out, IError**) const override {
        out = GetValue() * 100;
        return true;
    }
    bool ToBool(bool& out, IError**) const override {
        out = false;
        return true;
    }
    using ObjectInt::ToString;
    OrvStringT ToString() const override { return OrvStringT(L"loud"); }
};

TEST_F(HostElements, SubclassesOfValuesAnswerForThemselves) {
    Host host;
    const auto literal = [] { return Literal(new Loud(3)); };
    const auto run = [&](IQueryElement* element) {
        const Ref<IQueryElement> tree(element);
        return host.Run(*tree);
    };
    EXPECT_EQ(run(Binary(literal(), L"+", Literal(1))), "int 301");
    EXPECT_EQ(run(Binary(Literal(1), L"+", literal())), "int 301");
    EXPECT_EQ(run(Binary(literal(), L"+", literal())), "int 600");
    EXPECT_EQ(run(Binary(literal(), L"=", Literal(300))), "bool true");
    EXPECT_EQ(run(Binary(literal(), L"+", Literal(L"!"))), "string loud!");
    EXPECT_EQ(run(Binary(literal(), L"or", Truth(false))), "bool false");
    EXPECT_EQ(run(Unary(L"-", literal())), "int -300");
    EXPECT_EQ(run(Unary(L"not", literal())), "bool true");
    EXPECT_EQ(run(Ternary(literal(), Literal(1), Literal(2))), "int 2");
    EXPECT_EQ(run(Ternary(Truth(true), literal(), Literal(2))), "int loud");
}

} // namespace
} // namespace OrvUQL::Tests
