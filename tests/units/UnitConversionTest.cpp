// Values as units, units as other units, and units rounded.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/CountedUnits.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace OrvUQL::Tests {
namespace {

class UnitConversion : public CountedTest {
protected:
    Ref<IUnitDefinition> Find(const wchar_t* name) { return Ref<IUnitDefinition>(catalogue->FindUnit(name)); }
    Ref<ObjectUnit> Of(double value, const wchar_t* name, int power = 1) {
        return Make<ObjectUnit>(Find(name).Get(), value, power, true);
    }
    /// What comes of converting a value, which is handed over, to a unit: its text and power, or the message.
    std::string ToUnit(IObject* value, IUnitDefinition* target) {
        const Ref<IObject> owned(value);
        ErrorSlot error;
        const UnitRef unit(value->ToUnit(target, error.Slot()));
        const UnitRef quiet(value->ToUnit(target, nullptr));
        EXPECT_EQ(static_cast<bool>(unit), static_cast<bool>(quiet));
        if (!unit) {
            return error.IsEmpty() ? "!" : "! " + error.Message();
        }
        EXPECT_TRUE(error.IsEmpty());
        return Utf8(unit->GetDisplayString()) + " power " + std::to_string(unit->GetPower());
    }
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
};

// ---- values as units ----

TEST_F(UnitConversion, OfAUnitOfTheCategoryIsTheValueItself) {
    const Ref<IUnitDefinition> inch = Find(L"in");
    const Ref<Probe<ObjectUnit>> value = Make<Probe<ObjectUnit>>(Find(L"cm").Get(), 2.5, 1, true);
    {
        const UnitRef unit(value->ToUnit(inch.Get(), nullptr));
        EXPECT_EQ(unit.Get(), static_cast<IUnit*>(value.Get()));
        EXPECT_EQ(value->References(), 2);
        EXPECT_EQ(unit->GetName(), L"cm") << "it keeps its own definition";
    }
    EXPECT_EQ(value->References(), 1);
    EXPECT_EQ(ToUnit(Of(3, L"cm", 2).Detach(), inch.Get()), "3 cm\xc2\xb2 power 2");
}

TEST_F(UnitConversion, GoesByTheTextOfTheCategory) {
    const Ref<LinearDimensionUnits> other = Make<LinearDimensionUnits>(1.0);
    const Ref<IUnitDefinition> otherInch(other->FindUnit(L"in"));
    EXPECT_EQ(ToUnit(Of(1, L"cm").Detach(), otherInch.Get()), "1 cm power 1");

    const Ref<CountedUnitFactory> lower = Make<CountedUnitFactory>(L"linear dimensions", L"u", 1.0);
    const Ref<IUnitDefinition> u(lower->FindUnit(L"u"));
    EXPECT_EQ(ToUnit(Of(1, L"cm").Detach(), u.Get()),
              "! Cannot convert unit 'cm' of category 'Linear Dimensions' to category 'linear dimensions'");
}

TEST_F(UnitConversion, OfAUnitOfAnotherCategoryFails) {
    const Ref<CountedUnitFactory> weights = Make<CountedUnitFactory>(L"Weights", L"g", 1.0);
    const Ref<IUnitDefinition> gram(weights->FindUnit(L"g"));
    EXPECT_EQ(ToUnit(Of(2, L"cm").Detach(), gram.Get()),
              "! Cannot convert unit 'cm' of category 'Linear Dimensions' to category 'Weights'");
    EXPECT_EQ(ToUnit(Of(2, L"cm", 2).Detach(), gram.Get()),
              "! Cannot convert unit 'cm\xc2\xb2' of category 'Linear Dimensions' to category 'Weights'");
    EXPECT_EQ(ToUnit(new ObjectUnit(gram.Get(), 1, -1, false), Find(L"in").Get()),
              "! Cannot convert unit 'g^-1' of category 'Weights' to category 'Linear Dimensions'");
    EXPECT_EQ(ToUnit(new ObjectUnit(nullptr, 1, 1, false), gram.Get()),
              "! Cannot convert unit '' of category '' to category 'Weights'");
}

// Beside a unit a plain number is a factor, and not so many of that unit.
TEST_F(UnitConversion, OfANumberHasPower0) {
    const Ref<IUnitDefinition> inch = Find(L"in");
    EXPECT_EQ(ToUnit(new ObjectInt(5), inch.Get()), "5 power 0");
    EXPECT_EQ(ToUnit(new ObjectDouble(-2.5), inch.Get()), "-2.5 power 0");
    EXPECT_EQ(ToUnit(new ObjectInt(5), nullptr), "5 power 0");
    const Ref<CountedUnitFactory> weights = Make<CountedUnitFactory>(L"Weights", L"g", 2.0);
    CountedUnitDefinition* const gram = new CountedUnitDefinition(1, L"g", 2.0, weights.Get());
    {
        const Ref<ObjectInt> number = Make<ObjectInt>(5);
        const UnitRef unit(number->ToUnit(gram, nullptr));
        ASSERT_TRUE(unit);
        EXPECT_EQ(unit->GetValue(), 5.0) << "the number itself, in base units";
        EXPECT_EQ(unit->GetFactor(), 2.0);
        EXPECT_EQ(unit->GetFactorValue(), 1.0);
        EXPECT_EQ(unit->GetUnitDefinition(), gram);
        EXPECT_EQ(unit->GetCategory(), L"Weights");
        EXPECT_NE(unit->GetObject(), static_cast<IObject*>(number.Get()));
        EXPECT_EQ(unit->GetObject()->GetType(), IObject::TypeUnit);
        EXPECT_EQ(gram->References(), 2);
    }
    EXPECT_EQ(gram->References(), 1);
    gram->Release();
}

TEST_F(UnitConversion, OfAnythingElseFails) {
    const Ref<IUnitDefinition> inch = Find(L"in");
    EXPECT_EQ(ToUnit(new ObjectBool(true), inch.Get()), "! Cannot convert value 'true' of type 'bool' to type 'Unit'");
    EXPECT_EQ(ToUnit(new ObjectString(L"5 cm"), inch.Get()),
              "! Cannot convert value '5 cm' of type 'string' to type 'Unit'");
    EXPECT_EQ(ToUnit(new ObjectString(L"5"), inch.Get()), "! Cannot convert value '5' of type 'string' to type 'Unit'");
    EXPECT_EQ(ToUnit(new ObjectNull(), inch.Get()), "! Cannot convert value 'null' of type 'null' to type 'Unit'");
    EXPECT_EQ(ToUnit(new ObjectArray(ObjectList{new ObjectInt(1)}), inch.Get()),
              "! Cannot convert value '(1)' of type 'array' to type 'Unit'");
    EXPECT_EQ(ToUnit(new ObjectGlobal(), inch.Get()), "! Cannot convert value '' of type 'global' to type 'Unit'");
    EXPECT_EQ(ToUnit(new CountedObject("", ORV_TEXT(L"text")), inch.Get()),
              "! Cannot convert value 'text' of type 'counted' to type 'Unit'");
    EXPECT_EQ(ToUnit(new ObjectExpression(nullptr), inch.Get()), "!");
}

// ---- Convert ----

IQueryElement* Name(const wchar_t* name) { return new ElementObject(name, 0); }

TEST_F(UnitConversion, KeepsBaseValueAndPower) {
    const Ref<ObjectUnit> length = Of(2.54, L"cm");
    EXPECT_EQ(Call(*length, L"Convert", {Name(L"in")}), "unit 1 in");
    EXPECT_EQ(Call(*length, L"convert", {Name(L"MM")}), "unit 25.4 mm");
    EXPECT_EQ(Call(*length, L"Convert", {Name(L"cm")}), "unit 2.54 cm");
    EXPECT_EQ(ToText(*length), "2.54 cm");
    QueryEngine engine;
    const QueryElementList args{Name(L"in")};
    const Ref<IObject> inch(length->Invoke(&engine, L"Convert", args, nullptr));
    ASSERT_TRUE(inch);
    const IUnit* const unit = inch->GetUnitInterface();
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->GetDisplayValue(), 1.0);
    EXPECT_EQ(unit->GetValue(), 254000.0);
    EXPECT_EQ(unit->GetPower(), 1);

    const Ref<ObjectUnit> area = Of(2.0, L"cm", 2);
    EXPECT_EQ(Call(*area, L"Convert", {Name(L"mm")}), "unit 200 mm\xc2\xb2");
    const Ref<ObjectUnit> inverse = Make<ObjectUnit>(Find(L"cm").Get(), 1.0, -1, false);
    const Ref<IObject> perMillimetre = [&] {
        const QueryElementList millimetre{Name(L"mm")};
        return Ref<IObject>(inverse->Invoke(&engine, L"Convert", millimetre, nullptr));
    }();
    ASSERT_TRUE(perMillimetre);
    EXPECT_EQ(perMillimetre->GetUnitInterface()->GetValue(), 1.0);
    EXPECT_EQ(perMillimetre->GetUnitInterface()->GetDisplayName(), L"mm^-1");
}

TEST_F(UnitConversion, AsksTheValuesOwnCatalogue) {
    const Ref<ObjectUnit> length = Of(1, L"cm");
    EXPECT_EQ(Call(*length, L"Convert", {Name(L"lightyear")}), "! Invalid unit name 'lightyear'");
    EXPECT_EQ(Call(*length, L"Convert", {Name(L"")}), "! Invalid unit name ''");
    EXPECT_EQ(Call(*length, L"Convert", {new ElementObject(5, 0)}), "! Invalid unit name '5'");
    EXPECT_EQ(Call(*length, L"Convert"), "! Parameter 1 of method 'Convert' is not optional");
    // What the engine knows does not matter, neither to find a unit nor to be in the way of one.
    QueryEngine engine;
    const Ref<CountedUnitFactory> weights = Make<CountedUnitFactory>(L"Weights", L"g", 1.0);
    engine.AddUnitFactory(weights.Get());
    EXPECT_EQ(Call(*length, L"Convert", {Name(L"g")}, &engine), "! Invalid unit name 'g'");
    EXPECT_EQ(weights->LookUps(), 0);
    EXPECT_EQ(Call(*length, L"Convert", {Name(L"mm")}, &engine), "unit 10 mm");

    const Ref<IUnitDefinition> gram(weights->FindUnit(L"g"));
    const Ref<ObjectUnit> weight = Make<ObjectUnit>(gram.Get(), 3, 1, true);
    EXPECT_EQ(Call(*weight, L"Convert", {Name(L"g")}), "unit 3 g");
    EXPECT_EQ(Call(*weight, L"Convert", {Name(L"cm")}), "! Invalid unit name 'cm'");
}

TEST_F(UnitConversion, LeavesNoDefinitionBehind) {
    const Ref<CountedUnitFactory> weights = Make<CountedUnitFactory>(L"Weights", L"g", 1.0);
    const Ref<IUnitDefinition> gram(weights->FindUnit(L"g"));
    const Ref<ObjectUnit> weight = Make<ObjectUnit>(gram.Get(), 3, 1, true);
    const int before = Counted::live;
    EXPECT_EQ(Call(*weight, L"Convert", {Name(L"g")}), "unit 3 g");
    EXPECT_EQ(Counted::live, before);
}

// ---- Round ----

struct RoundRow {
    double value;
    const wchar_t* unit;
    int power;
    int decimals;
    const char* text;
};

const RoundRow roundRows[] = {
    {1.25, L"cm", 1, 1, "1.3 cm"},
    {-1.24, L"cm", 1, 1, "-1.3 cm"},
    {2.4, L"cm", 1, 0, "2 cm"},
    {2.5, L"cm", 1, 0, "3 cm"},
    // Below zero one lower than elsewhere but at the halves, as doubles round.
    {-2.4, L"cm", 1, 0, "-3 cm"},
    {-2.5, L"cm", 1, 0, "-3 cm"},
    {-2.6, L"cm", 1, 0, "-4 cm"},
    {1.005, L"cm", 1, 2, "1 cm"},
    {0.0, L"cm", 1, 2, "0 cm"},
    {2.345, L"in", 2, 1, "2.3000000000000003 in\xc2\xb2"},
    {7.77, L"cm", 0, 1, "7.800000000000001"},
};

TEST_F(UnitConversion, RoundsInTheUnitThatIsShown) {
    for (const RoundRow& row : roundRows) {
        SCOPED_TRACE(row.value);
        const Ref<ObjectUnit> value = Of(row.value, row.unit, row.power);
        EXPECT_EQ(Call(*value, L"Round", {new ElementObject(row.decimals, 0)}), std::string("unit ") + row.text);
        if (row.decimals == 0) {
            EXPECT_EQ(Call(*value, L"Round"), std::string("unit ") + row.text);
            EXPECT_EQ(Call(*value, L"Round", {nullptr}), std::string("unit ") + row.text);
        }
    }
}

TEST_F(UnitConversion, RoundsToWholeUnitsNotToWholeBaseUnits) {
    const Ref<ObjectUnit> length = Of(2.54, L"cm");
    QueryEngine engine;
    const QueryElementList none;
    const Ref<IObject> rounded(length->Invoke(&engine, L"Round", none, nullptr));
    ASSERT_TRUE(rounded);
    EXPECT_EQ(rounded->GetUnitInterface()->GetValue(), 300000.0);
    EXPECT_EQ(rounded->GetUnitInterface()->GetUnitDefinition(), length->GetUnitDefinition());
    EXPECT_EQ(rounded->GetUnitInterface()->GetPower(), 1);
    EXPECT_EQ(length->GetValue(), 254000.0);
}

TEST_F(UnitConversion, RoundsTo0To15Decimals) {
    const Ref<ObjectUnit> length = Of(3.14159, L"cm");
    for (int decimals = 0; decimals <= 15; ++decimals) {
        EXPECT_EQ(Call(*length, L"Round", {new ElementObject(decimals, 0)}).substr(0, 6), "unit 3") << decimals;
    }
    for (const int decimals : {16, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(Call(*length, L"Round", {new ElementObject(decimals, 0)}),
                  "! Rounding precision must be between 0 and 15");
    }
    EXPECT_EQ(Call(*length, L"Round", {Name(L"x")}), "! Cannot convert string 'x' to Integer");
}

} // namespace
} // namespace OrvUQL::Tests
