// How an engine sees a pair of operands: the type that decides, and the units that they become.

#include "eval/Witness.h"
#include "support/CountedUnits.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <limits>

namespace OrvUQL::Tests {
namespace {

class Operands : public WitnessTest {
protected:
    static Ref<Witness> OfType(int type) {
        Plan plan;
        plan.label = std::to_string(type);
        plan.type = static_cast<IObject::EType>(type);
        return Make<Witness>(plan);
    }

    QueryEngine engine;
};

// In words: the first of null, global object, unit, string, double, int, bool that either has; else "other", which is
// the global object's code.
constexpr int reduced[10][10] = {
    // right: null bool int double string array unit COM global expression
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, // null
    {0, 1, 2, 3, 4, 1, 6, 1, 8, 1}, // bool
    {0, 2, 2, 3, 4, 2, 6, 2, 8, 2}, // int
    {0, 3, 3, 3, 4, 3, 6, 3, 8, 3}, // double
    {0, 4, 4, 4, 4, 4, 6, 4, 8, 4}, // string
    {0, 1, 2, 3, 4, 8, 6, 8, 8, 8}, // array
    {0, 6, 6, 6, 6, 6, 6, 6, 8, 6}, // unit
    {0, 1, 2, 3, 4, 8, 6, 8, 8, 8}, // COM
    {0, 8, 8, 8, 8, 8, 8, 8, 8, 8}, // global
    {0, 1, 2, 3, 4, 8, 6, 8, 8, 8}, // expression
};

TEST_F(Operands, EachPairOfTypes) {
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            const Ref<Witness> a = OfType(left);
            const Ref<Witness> b = OfType(right);
            EXPECT_EQ(static_cast<int>(engine.GetOperandType(a.Get(), b.Get())), reduced[left][right])
                << left << " and " << right;
            EXPECT_EQ(a->GetPlan().label, std::to_string(left));
            EXPECT_EQ(References(*a), 1) << "lent";
        }
    }
    EXPECT_TRUE(TakeLog().empty()) << "only the types are asked for";
}

TEST_F(Operands, UnknownTypesAreOthers) {
    for (const int type : {-1, 10, 100, 1 << 30}) {
        const Ref<Witness> strange = OfType(type);
        for (int other = 0; other < 10; ++other) {
            const Ref<Witness> known = OfType(other);
            const int expected = reduced[IObject::TypeArray][other];
            EXPECT_EQ(static_cast<int>(engine.GetOperandType(strange.Get(), known.Get())), expected) << type;
            EXPECT_EQ(static_cast<int>(engine.GetOperandType(known.Get(), strange.Get())), expected) << type;
        }
        EXPECT_EQ(static_cast<int>(engine.GetOperandType(strange.Get(), strange.Get())), 8);
    }
}

// It is the code that counts, not what the object says elsewhere.
TEST_F(Operands, OnlyTheTypeCodeCounts) {
    Plan plan;
    plan.type = IObject::TypeInt;
    plan.isNull = true;
    plan.isUnit = true;
    const Ref<Witness> odd = Make<Witness>(plan);
    EXPECT_EQ(engine.GetOperandType(odd.Get(), odd.Get()), IObject::TypeInt);
}

TEST_F(Operands, TheLibrarysValues) {
    const Ref<ObjectNull> null = Make<ObjectNull>();
    const Ref<ObjectBool> boolean = Make<ObjectBool>(true);
    const Ref<ObjectInt> integer = Make<ObjectInt>(1);
    const Ref<ObjectDouble> number = Make<ObjectDouble>(1.0);
    const Ref<ObjectString> text = Make<ObjectString>(L"a");
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList());
    const Ref<ObjectUnit> unit = Make<ObjectUnit>(nullptr, 1.0, 1, false);
    const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
    const Ref<ObjectExpression> expression = Make<ObjectExpression>(nullptr);
    IObject* const values[] = {null.Get(),  boolean.Get(), integer.Get(), number.Get(), text.Get(),
                               array.Get(), unit.Get(),    nullptr,       global.Get(), expression.Get()};
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            if (values[left] != nullptr && values[right] != nullptr) {
                EXPECT_EQ(static_cast<int>(engine.GetOperandType(values[left], values[right])), reduced[left][right])
                    << left << " and " << right;
            }
        }
    }
}

// ---- units ----

/// Two catalogues: lengths (a: factor 10; the other unit b is made by hand) and weights.
class UnitPairs : public Operands {
protected:
    void SetUp() override {
        Operands::SetUp();
        lengths = Make<CountedUnitFactory>(OrvStringT(L"Lengths"), OrvStringT(L"inch"), 10.0);
        weights = Make<CountedUnitFactory>(OrvStringT(L"Weights"), OrvStringT(L"pound"), 5.0);
    }
    void TearDown() override {
        lengths.Reset();
        weights.Reset();
        Operands::TearDown();
    }

    Ref<Probe<ObjectUnit>> Length(double value, int power = 1) {
        const Ref<IUnitDefinition> definition(lengths->FindUnit(1));
        return Make<Probe<ObjectUnit>>(definition.Get(), value, power, true);
    }
    Ref<Probe<ObjectUnit>> Foot(double value, int power = 1) {
        const Ref<IUnitDefinition> definition(new CountedUnitDefinition(2, OrvStringT(L"foot"), 30.0, lengths.Get()));
        return Make<Probe<ObjectUnit>>(definition.Get(), value, power, true);
    }
    Ref<Probe<ObjectUnit>> Weight(double value) {
        const Ref<IUnitDefinition> definition(weights->FindUnit(1));
        return Make<Probe<ObjectUnit>>(definition.Get(), value, 1, true);
    }

    struct Pair {
        UnitRef left;
        UnitRef right;
    };
    /// The units, or the message in `message`.
    Pair Get(IObject& left, IObject& right) {
        IUnit* const untouched = reinterpret_cast<IUnit*>(this);
        IUnit* leftUnit = untouched;
        IUnit* rightUnit = untouched;
        ErrorSlot error;
        message.clear();
        const bool succeeded = engine.GetUnitOperands(&left, &right, &leftUnit, &rightUnit, error.Slot());
        EXPECT_TRUE(!succeeded || error.IsEmpty());
        {
            IUnit* quietLeft = nullptr;
            IUnit* quietRight = nullptr;
            EXPECT_EQ(engine.GetUnitOperands(&left, &right, &quietLeft, &quietRight, nullptr), succeeded);
            const Pair quiet{UnitRef(quietLeft), UnitRef(quietRight)};
        }
        if (!succeeded) {
            EXPECT_EQ(leftUnit, untouched) << "nothing is handed out";
            EXPECT_EQ(rightUnit, untouched) << "nothing is handed out";
            message = error.Message();
            return {};
        }
        return {UnitRef(leftUnit), UnitRef(rightUnit)};
    }

    Ref<CountedUnitFactory> lengths;
    Ref<CountedUnitFactory> weights;
    std::string message;
};

TEST_F(UnitPairs, OfOneCategoryStayAsTheyAre) {
    const Ref<Probe<ObjectUnit>> left = Length(2);
    const Ref<Probe<ObjectUnit>> right = Foot(3, 2);
    const Pair units = Get(*left, *right);
    EXPECT_EQ(units.left.Get(), left->GetUnitInterface());
    EXPECT_EQ(units.right.Get(), right->GetUnitInterface());
    EXPECT_EQ(left->References(), 2) << "handed out with a reference";
    EXPECT_EQ(right->References(), 2);
    EXPECT_EQ(units.right->GetPower(), 2) << "powers need not agree here";
}

TEST_F(UnitPairs, NumbersBecomeUnitsOfPowerNought) {
    const Ref<Probe<ObjectUnit>> unit = Length(2);
    const Ref<Probe<ObjectInt>> integer = Make<Probe<ObjectInt>>(7);
    const Ref<Probe<ObjectDouble>> number = Make<Probe<ObjectDouble>>(2.5);
    {
        const Pair units = Get(*unit, *integer);
        ASSERT_TRUE(units.right);
        EXPECT_EQ(units.right->GetValue(), 7.0) << "the number itself, not so many of the unit";
        EXPECT_EQ(units.right->GetPower(), 0);
        EXPECT_EQ(units.right->GetUnitDefinition(), unit->GetUnitDefinition());
        EXPECT_EQ(integer->References(), 1);
    }
    {
        const Pair units = Get(*number, *unit);
        ASSERT_TRUE(units.left);
        EXPECT_EQ(units.left->GetValue(), 2.5);
        EXPECT_EQ(units.left->GetPower(), 0);
        EXPECT_EQ(units.left->GetUnitDefinition(), unit->GetUnitDefinition());
        EXPECT_EQ(units.right.Get(), unit->GetUnitInterface());
    }
    EXPECT_EQ(unit->References(), 1);
}

TEST_F(UnitPairs, OfTwoCategoriesFail) {
    const Ref<Probe<ObjectUnit>> length = Length(2);
    const Ref<Probe<ObjectUnit>> weight = Weight(3);
    Get(*length, *weight);
    EXPECT_EQ(message, "Cannot convert unit 'pound' of category 'Weights' to category 'Lengths'");
    EXPECT_EQ(length->References(), 1) << "the left unit was given back";
    Get(*weight, *length);
    EXPECT_EQ(message, "Cannot convert unit 'inch' of category 'Lengths' to category 'Weights'");
    EXPECT_EQ(weight->References(), 1);
}

TEST_F(UnitPairs, OtherValuesAreNoUnits) {
    const Ref<Probe<ObjectUnit>> length = Length(2);
    const Ref<Probe<ObjectString>> text = Make<Probe<ObjectString>>(L"5");
    const Ref<Probe<ObjectBool>> boolean = Make<Probe<ObjectBool>>(true);
    Get(*length, *text);
    EXPECT_EQ(message, "Cannot convert value '5' of type 'string' to type 'Unit'");
    Get(*text, *length);
    EXPECT_EQ(message, "Cannot convert value '5' of type 'string' to type 'Unit'");
    Get(*boolean, *length);
    EXPECT_EQ(message, "Cannot convert value 'true' of type 'bool' to type 'Unit'");
    EXPECT_EQ(length->References(), 1);
    EXPECT_EQ(text->References(), 1);
}

TEST_F(UnitPairs, WithoutAnyUnitFail) {
    const Ref<Probe<ObjectInt>> integer = Make<Probe<ObjectInt>>(7);
    Get(*integer, *integer);
    EXPECT_EQ(message, "Internal error");
}

// The one that says that it is a unit is asked for its face, the right one where the left does not.
TEST_F(UnitPairs, AskTheFaceOfTheOneThatIsAUnit) {
    const Ref<Probe<ObjectUnit>> length = Length(2);
    Plan plan;
    plan.label = "X";
    plan.isUnit = true;
    const Ref<Witness> faceless = Make<Witness>(plan);
    Get(*faceless, *length);
    EXPECT_EQ(message, "Internal error") << "it says that it is one, and has no face";
    Get(*length, *faceless);
    EXPECT_EQ(message, "(none)") << "here the left face decides, and the witness has no unit to give";
    EXPECT_EQ(TakeLog(), (Log{"X.ToUnit", "X.ToUnit"}));
    EXPECT_EQ(length->References(), 1);

    plan.isUnit = false;
    plan.face = length->GetUnitInterface();
    plan.unit = [&] { return length->ToUnit(nullptr, nullptr); };
    const Ref<Witness> faced = Make<Witness>(plan);
    const Ref<Probe<ObjectInt>> integer = Make<Probe<ObjectInt>>(7);
    Get(*faced, *integer);
    EXPECT_EQ(message, "Internal error") << "the left is no unit, and the right has no face";
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(UnitPairs, OrderOfConversionsAndWhatFailureGivesBack) {
    const Ref<Probe<ObjectUnit>> length = Length(2);
    Plan left;
    left.label = "L";
    left.isUnit = true;
    left.face = length->GetUnitInterface();
    left.unit = [&]() -> IUnit* {
        length->AddRef();
        return length->GetUnitInterface();
    };
    Plan right = left;
    right.label = "R";
    {
        const Ref<Witness> a = Make<Witness>(left);
        const Ref<Witness> b = Make<Witness>(right);
        const Pair units = Get(*a, *b);
        EXPECT_TRUE(units.left);
        EXPECT_EQ(length->References(), 3);
        EXPECT_EQ(TakeLog(), (Log{"L.ToUnit", "R.ToUnit", "L.ToUnit", "R.ToUnit"}));
    }
    right.failing = {"ToUnit"};
    {
        const Ref<Witness> a = Make<Witness>(left);
        const Ref<Witness> b = Make<Witness>(right);
        Get(*a, *b);
        EXPECT_EQ(message, "R: ToUnit");
        EXPECT_EQ(length->References(), 1);
        TakeLog();
        Get(*b, *a);
        EXPECT_EQ(message, "R: ToUnit");
        EXPECT_EQ(TakeLog(), (Log{"R.ToUnit", "R.ToUnit"})) << "the right operand is not asked any more";
    }
    EXPECT_EQ(length->References(), 1);
}

} // namespace
} // namespace OrvUQL::Tests
