// Exceptions of a host's own objects pass through: the engine's stacks are popped, every reference is given back, and
// the same tree works afterwards. Where memory ends the result is an error instead.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>

namespace OrvUQL::Tests {
namespace {

/// A tree in which one operation of the witness "X" throws.
struct Throwing {
    const char* operation;
    IObject::EType type;
    std::function<IQueryElement*(const Plan&)> tree;
};

IQueryElement* X(const Plan& plan) { return new WitnessElement(plan); }

const Throwing trees[] = {
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Binary(X(x), L"+", Literal(1)); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Binary(Literal(L"a"), L"+", X(x)); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Unary(L"-", X(x)); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Member(X(x), L"m"); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Ternary(X(x), Literal(1), Literal(2)); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Ternary(Truth(false), Literal(1), X(x)); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Group(X(x), Literal(1)); }},
    {"Evaluate", IObject::TypeInt, [](const Plan& x) { return Group(Literal(1), X(x)); }},
    {"Evaluate", IObject::TypeInt,
     [](const Plan& x) {
         return Array({Literal(1), X(x), Literal(2)});
     }},
    {"Evaluate", IObject::TypeInt,
     [](const Plan& x) {
         return Name(L"max", {Literal(1), X(x), Literal(2)});
     }},
    {"Evaluate", IObject::TypeInt,
     [](const Plan& x) {
         return Name(L"iif", {Truth(true), X(x), Literal(2)});
     }},
    {"Invoke", IObject::TypeGlobal, [](const Plan& x) { return Member(X(x), L"m"); }},
    {"Invoke", IObject::TypeGlobal,
     [](const Plan& x) {
         return Member(X(x), L"m", {Literal(1), nullptr});
     }},
    {"Invoke", IObject::TypeGlobal,
     [](const Plan& x) { return Member(Member(Member(X(x), L"m"), L"ToString"), L"ToString"); }},
    {"Invoke", IObject::TypeGlobal, [](const Plan& x) { return Group(X(x), Member(nullptr, L"m")); }},
    {"Invoke", IObject::TypeGlobal,
     [](const Plan& x) { return Group(X(x), Group(Literal(2), Group(X(x), Member(nullptr, L"m")))); }},
    {"ToBool", IObject::TypeGlobal, [](const Plan& x) { return Unary(L"not", X(x)); }},
    {"ToBool", IObject::TypeGlobal, [](const Plan& x) { return Binary(X(x), L"and", Literal(1)); }},
    {"ToBool", IObject::TypeGlobal, [](const Plan& x) { return Binary(Truth(false), L"or", X(x)); }},
    {"ToBool", IObject::TypeGlobal, [](const Plan& x) { return Ternary(X(x), Literal(1), Literal(2)); }},
    {"ToInt", IObject::TypeInt, [](const Plan& x) { return Binary(X(x), L"+", Literal(1)); }},
    {"ToInt", IObject::TypeInt, [](const Plan& x) { return Binary(Literal(1), L"+", X(x)); }},
    {"ToInt", IObject::TypeInt, [](const Plan& x) { return Binary(X(x), L"\\", X(x)); }},
    {"ToInt", IObject::TypeInt, [](const Plan& x) { return Binary(X(x), L"<", X(x)); }},
    {"ToInt", IObject::TypeInt, [](const Plan& x) { return Unary(L"-", X(x)); }},
    {"ToDouble", IObject::TypeDouble, [](const Plan& x) { return Binary(X(x), L"+", X(x)); }},
    {"ToDouble", IObject::TypeInt, [](const Plan& x) { return Binary(Literal(1), L"/", X(x)); }},
    {"ToDouble", IObject::TypeInt, [](const Plan& x) { return Binary(X(x), L"^", Literal(1)); }},
    {"ToDouble", IObject::TypeDouble, [](const Plan& x) { return Binary(Literal(1.5), L"=", X(x)); }},
    {"ToDouble", IObject::TypeDouble, [](const Plan& x) { return Unary(L"-", X(x)); }},
    {"ToString", IObject::TypeString, [](const Plan& x) { return Binary(X(x), L"+", X(x)); }},
    {"ToString", IObject::TypeString, [](const Plan& x) { return Binary(Literal(L"a"), L"+", X(x)); }},
    {"ToString", IObject::TypeString, [](const Plan& x) { return Binary(X(x), L"=", Literal(L"a")); }},
    {"ToNumeric", IObject::TypeInt, [](const Plan& x) { return Binary(X(x), L"-", Literal(1)); }},
    {"ToNumeric", IObject::TypeInt, [](const Plan& x) { return Binary(Literal(L"12"), L"*", X(x)); }},
    {"ToNumeric", IObject::TypeString, [](const Plan& x) { return Unary(L"-", X(x)); }},
    {"ToNumeric", IObject::TypeInt,
     [](const Plan& x) {
         return Name(L"max", {Literal(1), X(x)});
     }},
    {"CompareTo", IObject::TypeGlobal, [](const Plan& x) { return Binary(X(x), L"=", Literal(1)); }},
    {"CompareTo", IObject::TypeArray, [](const Plan& x) { return Binary(Array({Literal(1)}), L"=", X(x)); }},
    // Deep inside of everything at once.
    {"ToInt", IObject::TypeInt,
     [](const Plan& x) {
         return Binary(Literal(L"a"), L"+",
                       Group(Literal(1), Group(Literal(2), Name(L"max", {Literal(3), Unary(L"-", X(x))}))));
     }},
};

class Exceptions : public WitnessTest {
protected:
    /// A plan whose operation throws while `armed`.
    template <class Exception> Plan MakePlan(const Throwing& row, Exception exception) {
        Plan plan;
        plan.label = "X";
        plan.type = row.type;
        plan.numeric = [] { return new ObjectInt(6); };
        const std::string operation = row.operation;
        plan.before = [this, operation, exception](const std::string& now) {
            if (armed && now == operation) {
                ++thrown;
                throw exception;
            }
        };
        return plan;
    }

    /// The engine's state, which evaluation must leave as it was.
    struct Slots {
        IObject* global;
        IObject* source;
        IObject* variable;
        IObject* parent;
        bool operator==(const Slots& other) const {
            return global == other.global && source == other.source && variable == other.variable &&
                   parent == other.parent;
        }
    };
    Slots GetSlots() {
        return {host.engine.GetGlobal(), host.engine.GetPropertySource(), host.engine.GetVariable(),
                host.engine.GetGroupParent()};
    }

    /// Nothing was put aside and forgotten: one pop empties the slot.
    void ExpectEmptyStacks() {
        host.engine.PopGroupParent();
        EXPECT_EQ(host.engine.GetGroupParent(), nullptr);
        host.engine.PopVariable();
        EXPECT_EQ(host.engine.GetVariable(), nullptr);
    }

    Host host;
    bool armed = true;
    int thrown = 0;
};

TEST_F(Exceptions, PassThrough) {
    for (const Throwing& row : trees) {
        const Ref<IQueryElement> tree(row.tree(MakePlan(row, std::runtime_error("host's own"))));
        const int live = Counted::live;
        const Slots slots = GetSlots();
        for (const bool wanted : {true, false}) {
            thrown = 0;
            ErrorSlot error;
            try {
                const Ref<IObject> value(host.engine.Evaluate(tree.Get(), wanted ? error.Slot() : nullptr));
                ADD_FAILURE() << row.operation << " ate the exception and gave " << Describe(value.Get());
            } catch (const std::runtime_error& exception) {
                EXPECT_STREQ(exception.what(), "host's own");
            }
            EXPECT_EQ(thrown, 1) << row.operation;
            EXPECT_TRUE(error.IsEmpty()) << row.operation << ": " << error.Message();
            EXPECT_EQ(Counted::live, live) << row.operation << " left values behind";
            EXPECT_EQ(GetSlots(), slots) << row.operation;
        }
        // The same tree works when the host has recovered.
        armed = false;
        ErrorSlot error;
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
        EXPECT_TRUE(value) << row.operation << ": " << error.Message();
        EXPECT_EQ(GetSlots(), slots) << row.operation;
        armed = true;
        ExpectEmptyStacks();
    }
}

TEST_F(Exceptions, OfAnyTypePassThrough) {
    for (const Throwing& row : trees) {
        const Ref<IQueryElement> tree(row.tree(MakePlan(row, 42)));
        const int live = Counted::live;
        EXPECT_THROW(host.engine.Evaluate(tree.Get(), nullptr), int) << row.operation;
        EXPECT_EQ(Counted::live, live) << row.operation;
        ExpectEmptyStacks();
    }
}

template <class Exception> void ExpectInternalError(Host& host, IQueryElement& tree, const char* operation) {
    ErrorSlot error;
    try {
        const Ref<IObject> value(host.engine.Evaluate(&tree, error.Slot()));
        EXPECT_FALSE(value) << operation;
        EXPECT_EQ(error.Message(), "Internal error") << operation;
        EXPECT_GE(host.engine.GetErrorPosition(), 0) << operation;
        EXPECT_EQ(host.engine.Evaluate(&tree, nullptr), nullptr) << operation;
    } catch (const Exception&) {
        ADD_FAILURE() << "the end of memory in " << operation << " left the library as an exception";
    }
}

TEST_F(Exceptions, OfMemoryBecomeInternalErrors) {
    for (const Throwing& row : trees) {
        const Ref<IQueryElement> tree(row.tree(MakePlan(row, std::bad_alloc())));
        const int live = Counted::live;
        const Slots slots = GetSlots();
        ExpectInternalError<std::bad_alloc>(host, *tree, row.operation);
        EXPECT_EQ(Counted::live, live) << row.operation;
        EXPECT_EQ(GetSlots(), slots) << row.operation;
        ExpectEmptyStacks();
    }
}

TEST_F(Exceptions, OfLengthBecomeInternalErrors) {
    for (const Throwing& row : trees) {
        const Ref<IQueryElement> tree(row.tree(MakePlan(row, std::length_error("too long"))));
        const int live = Counted::live;
        ExpectInternalError<std::length_error>(host, *tree, row.operation);
        EXPECT_EQ(Counted::live, live) << row.operation;
        ExpectEmptyStacks();
    }
}

// A whole tree may be a host's element, with nothing of the library around it but the engine.
TEST_F(Exceptions, OfMemoryInTheRootElement) {
    Plan plan;
    plan.before = [](const std::string&) { throw std::bad_alloc(); };
    const Ref<IQueryElement> tree(new WitnessElement(plan));
    ExpectInternalError<std::bad_alloc>(host, *tree, "Evaluate of the root");
}

TEST_F(Exceptions, InTheRootElementPassThrough) {
    Plan plan;
    plan.before = [](const std::string&) { throw std::runtime_error("host's own"); };
    const Ref<IQueryElement> tree(new WitnessElement(plan));
    EXPECT_THROW(host.engine.Evaluate(tree.Get(), nullptr), std::runtime_error);
}

TEST_F(Exceptions, OfAFunctionOfTheHostPassThrough) {
    Plan plan;
    plan.label = "G";
    plan.before = [](const std::string&) { throw std::runtime_error("host's own"); };
    const Ref<Witness> global = Make<Witness>(plan);
    QueryEngine engine;
    engine.SetGlobal(global.Get());
    engine.SetPropertySource(global.Get());
    for (const wchar_t* const query :
         {L"f", L"@f", L"1[f]", L"2[3[@f + 1]]", L"5.Radix(f)", L"'a' + f(1).x", L"f ? 1 : 2"}) {
        const Ref<IQueryElement> tree(engine.ParseQuery(query, nullptr));
        EXPECT_THROW(engine.Evaluate(tree.Get(), nullptr), std::runtime_error) << Utf8(query);
        EXPECT_EQ(References(*global), 3) << Utf8(query);
        EXPECT_EQ(engine.GetGroupParent(), nullptr) << Utf8(query);
    }
}

// ---- while parsing ----

/// A catalogue that throws when it is asked.
template <class Exception> class ThrowingCatalogue : public RefCountImpl<IUnitFactory> {
public:
    explicit ThrowingCatalogue(Exception thrown) : exception(thrown) {}
    ORV_OVERLOADS2(
        IUnitDefinition* FindUnit(const wchar_t*) override { throw exception; },
        IUnitDefinition* FindUnit(int) override { throw exception; })
    OrvStringT GetUnitCategory() const override { return OrvStringT(); }

private:
    Exception exception;
};

TEST_F(Exceptions, OfACatalogue) {
    constexpr const wchar_t* query = L"a.b('c') ? x[d + {1 mm}] : 1";
    {
        QueryEngine engine;
        const Ref<IUnitFactory> units(new ThrowingCatalogue<std::runtime_error>(std::runtime_error("host's own")));
        engine.AddUnitFactory(units.Get());
        EXPECT_THROW(engine.ParseQuery(query, nullptr), std::runtime_error);
    }
    QueryEngine engine;
    const Ref<IUnitFactory> units(new ThrowingCatalogue<std::bad_alloc>(std::bad_alloc()));
    engine.AddUnitFactory(units.Get());
    ErrorSlot error;
    EXPECT_EQ(engine.ParseQuery(query, error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "Internal error");
    EXPECT_GE(engine.GetErrorPosition(), 0);
    const Ref<IQueryElement> tree(engine.ParseQuery(L"a.b", nullptr));
    EXPECT_TRUE(tree);
}

} // namespace
} // namespace OrvUQL::Tests
