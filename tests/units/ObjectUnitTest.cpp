// Values with a unit: their two magnitudes, their names, and how they read.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/CountedUnits.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace OrvUQL::Tests {
namespace {

class UnitValue : public CountedTest {
protected:
    Ref<IUnitDefinition> Find(const wchar_t* name) { return Ref<IUnitDefinition>(catalogue->FindUnit(name)); }
    /// A value of so many of these units.
    Ref<ObjectUnit> Of(double value, const wchar_t* name, int power = 1) {
        return Make<ObjectUnit>(Find(name).Get(), value, power, true);
    }
    const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
};

TEST_F(UnitValue, IsAValueAndAUnit) {
    const Ref<ObjectUnit> value = Of(2.54, L"cm");
    EXPECT_EQ(value->GetType(), IObject::TypeUnit);
    EXPECT_EQ(value->GetTypeName(), L"unit");
    EXPECT_TRUE(value->IsUnit());
    EXPECT_FALSE(value->IsNull());
    EXPECT_FALSE(value->IsStaticInstance());
    IObject& object = *value;
    IUnit* const unit = object.GetUnitInterface();
    EXPECT_EQ(unit, static_cast<IUnit*>(value.Get()));
    EXPECT_EQ(static_cast<const IObject&>(object).GetUnitInterface(), unit);
    EXPECT_EQ(unit->GetObject(), &object);
    EXPECT_EQ(static_cast<const IUnit*>(unit)->GetObject(), &object);
    // The names under which a host that includes windows.h finds it.
    EXPECT_EQ(unit->GetObjectA(), &object);
    EXPECT_EQ(unit->GetObjectW(), &object);
    EXPECT_EQ(static_cast<const IUnit*>(unit)->GetObjectA(), &object);
    EXPECT_EQ(static_cast<const IUnit*>(unit)->GetObjectW(), &object);
}

TEST_F(UnitValue, IsScaledToBaseUnitsOnce) {
    const Ref<IUnitDefinition> centimetre = Find(L"cm");
    const Ref<ObjectUnit> scaled = Make<ObjectUnit>(centimetre.Get(), 2.54, 1, true);
    EXPECT_EQ(scaled->GetValue(), 254000.0);
    EXPECT_EQ(scaled->GetDisplayValue(), 2.54);
    EXPECT_EQ(scaled->GetFactor(), 100000.0);
    EXPECT_EQ(scaled->GetFactorValue(), 100000.0);
    const Ref<ObjectUnit> base = Make<ObjectUnit>(centimetre.Get(), 254000.0, 1, false);
    EXPECT_EQ(base->GetValue(), 254000.0);
    EXPECT_EQ(base->GetDisplayValue(), 2.54);
}

TEST_F(UnitValue, IsScaledByThePowerOfTheFactor) {
    const struct {
        int power;
        double factorValue;
    } rows[] = {{0, 1.0}, {1, 1e5}, {2, 1e10}, {3, 1e15}, {4, 1e20}, {-1, 1e-5}, {-2, 1e-10}};
    for (const auto& row : rows) {
        const Ref<ObjectUnit> value = Of(2.0, L"cm", row.power);
        EXPECT_EQ(value->GetPower(), row.power);
        EXPECT_EQ(value->GetFactor(), 100000.0) << "of the unit itself";
        EXPECT_DOUBLE_EQ(value->GetFactorValue(), row.factorValue) << row.power;
        EXPECT_DOUBLE_EQ(value->GetValue(), 2.0 * row.factorValue) << row.power;
        EXPECT_DOUBLE_EQ(value->GetDisplayValue(), 2.0) << row.power;
    }
}

TEST_F(UnitValue, ShowsItsPower) {
    const struct {
        int power;
        const char* name;
        const char* text;
    } rows[] = {
        {1, "cm", "2.5 cm"},
        {2, "cm\xc2\xb2", "2.5 cm\xc2\xb2"},
        {3, "cm\xc2\xb3", "2.5 cm\xc2\xb3"},
        {4, "cm^4", "2.5 cm^4"},
        {-1, "cm^-1", "2.5 cm^-1"},
        {-2, "cm^-2", "2.5 cm^-2"},
        {10, "cm^10", "2.5 cm^10"},
        {0, "cm^0", "2.5"}, // a plain number, whatever it was
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.power);
        const Ref<IUnitDefinition> centimetre = Find(L"cm");
        const Ref<ObjectUnit> factor = Make<ObjectUnit>(centimetre.Get(), 1.0, row.power, true);
        const Ref<ObjectUnit> value = Make<ObjectUnit>(centimetre.Get(), 2.5 * factor->GetValue(), row.power, false);
        EXPECT_EQ(Utf8(value->GetName()), "cm");
        EXPECT_EQ(Utf8(value->GetDisplayName()), row.name);
        EXPECT_EQ(Utf8(value->GetDisplayString()), row.text);
        EXPECT_EQ(Utf8(value->ToString()), row.text);
        EXPECT_EQ(ToText(*value), row.text);
        EXPECT_EQ(Call(*value, L"ToString"), std::string("string ") + row.text);
    }
    const Ref<ObjectUnit> extreme = Of(0.0, L"un", std::numeric_limits<int>::min());
    EXPECT_EQ(extreme->GetDisplayName(), L"un^-2147483648");
}

// The number reads exactly as a double of its own would.
TEST_F(UnitValue, ShowsItsMagnitudeAsADouble) {
    const std::pair<double, const char*> rows[] = {
        {0.1, "0.1 un"},
        {1.0, "1 un"},
        {-0.0, "-0 un"},
        {1e21, "1e+21 un"},
        {1.5e-7, "1.5e-07 un"},
        {1e20, "100000000000000000000 un"},
        {std::numeric_limits<double>::infinity(), "inf un"},
        {std::numeric_limits<double>::quiet_NaN(), "nan un"},
    };
    for (const auto& [number, text] : rows) {
        EXPECT_EQ(ToText(*Of(number, L"un")), text);
    }
}

TEST_F(UnitValue, ShowsTheNameAsItsCatalogueWritesIt) {
    EXPECT_EQ(ToText(*Of(1, L"CM")), "1 cm");
    EXPECT_EQ(ToText(*Of(1, L"h")), "1 H");
}

TEST_F(UnitValue, HoldsItsDefinition) {
    const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(L"Weights", L"g", 2.0);
    CountedUnitDefinition* const gram = new CountedUnitDefinition(1, L"g", 2.0, factory.Get(), "gram");
    Ref<ObjectUnit> value = Make<ObjectUnit>(gram, 3.0, 1, true);
    EXPECT_EQ(gram->References(), 2);
    EXPECT_EQ(value->GetUnitDefinition(), gram);
    EXPECT_EQ(gram->References(), 2) << "it is lent";
    gram->Release();
    EXPECT_EQ(value->GetCategory(), L"Weights");
    EXPECT_EQ(value->GetValue(), 6.0);
    value.Reset();
    EXPECT_EQ(Counted::gone, std::vector<std::string>{"gram"});
}

TEST_F(UnitValue, MayHaveNoDefinition) {
    const Ref<ObjectUnit> value = Make<ObjectUnit>(nullptr, 2.5, 1, true);
    EXPECT_EQ(value->GetUnitDefinition(), nullptr);
    EXPECT_EQ(value->GetFactor(), 1.0);
    EXPECT_EQ(value->GetFactorValue(), 1.0);
    EXPECT_EQ(value->GetValue(), 2.5);
    EXPECT_EQ(value->GetDisplayValue(), 2.5);
    EXPECT_EQ(value->GetName(), L"");
    EXPECT_EQ(value->GetCategory(), L"");
    EXPECT_EQ(value->GetDisplayName(), L"");
    EXPECT_EQ(value->GetDisplayString(), L"2.5 ");
    const Ref<ObjectUnit> plain = Make<ObjectUnit>(nullptr, 2.5, 0, true);
    EXPECT_EQ(plain->GetDisplayString(), L"2.5");
    const Ref<ObjectUnit> square = Make<ObjectUnit>(nullptr, 2.5, 2, true);
    EXPECT_EQ(square->GetValue(), 2.5);
    EXPECT_EQ(Call(*value, L"Convert", {new ElementObject(L"cm", 0)}), "! Invalid unit name 'cm'");
    EXPECT_EQ(Call(*value, L"Round"), "unit 3 ");
}

TEST_F(UnitValue, TellsAboutItself) {
    const Ref<ObjectUnit> value = Of(2.54, L"cm", 1);
    EXPECT_EQ(Call(*value, L"Category"), "string Linear Dimensions");
    EXPECT_EQ(Call(*value, L"Power"), "int 1");
    EXPECT_EQ(Call(*value, L"Unit"), "string cm");
    EXPECT_EQ(Call(*value, L"DisplayUnit"), "string cm");
    EXPECT_EQ(Call(*value, L"Value"), "double 2.54");
    EXPECT_EQ(Call(*value, L"BaseValue"), "double 254000");
    const Ref<ObjectUnit> area = Of(3, L"cm", 2);
    EXPECT_EQ(Call(*area, L"power"), "int 2");
    EXPECT_EQ(Call(*area, L"unit"), "string cm");
    EXPECT_EQ(Call(*area, L"displayunit"), "string cm\xc2\xb2");
    EXPECT_EQ(Call(*area, L"value"), "double 3");
    EXPECT_EQ(Call(*area, L"basevalue"), "double 30000000000");
    EXPECT_EQ(Call(*area, L"typename"), "string unit");
    EXPECT_EQ(Call(*area, L"Foo"), "! Identifier 'Foo' is not a method of 'unit'");
    EXPECT_EQ(Call(*area, L"Value", {nullptr}), "! Too many parameters specified for method Value. It expects only 0");
}

} // namespace
} // namespace OrvUQL::Tests
