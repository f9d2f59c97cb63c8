// Arithmetic where one side has a unit: values in base units, powers, and in whose unit the result is.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/CountedUnits.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>

namespace OrvUQL::Tests {
namespace {

class UnitArithmetic : public WitnessTest {
protected:
    /// A unit value of the catalogue of lengths; `base` is in tenths of a micrometre, to the power.
    ObjectUnit* Unit(double base, const wchar_t* name, int power = 1) {
        const Ref<IUnitDefinition> definition(units->FindUnit(name));
        return new ObjectUnit(definition.Get(), base, power, false);
    }

    /// What comes of a tree: "BASE NAME POWER", or "! message".
    std::string Evaluate(IQueryElement* element) {
        Host host;
        const Ref<IQueryElement> tree(element);
        ErrorSlot error;
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
        const Ref<IObject> quiet(host.engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(!value, !quiet);
        if (!value) {
            return error.IsEmpty() ? "!" : "! " + error.Message();
        }
        EXPECT_EQ(References(*value), 1) << "a new value";
        const IUnit* const unit = value->GetUnitInterface();
        if (unit == nullptr) {
            return Describe(value.Get());
        }
        return Utf8(OrvUtils::String::ToStringW(unit->GetValue())) + " " + Utf8(unit->GetName()) + " " +
               std::to_string(unit->GetPower());
    }

    std::string Run(const wchar_t* query) {
        Host host;
        const Ref<IQueryElement> tree = host.Parse(query);
        return tree ? Evaluate(tree.Share()) : "does not parse";
    }

    const Ref<LinearDimensionUnits> units = Make<LinearDimensionUnits>(0.0);
};

struct Row {
    const wchar_t* query;
    const char* value;
};

TEST_F(UnitArithmetic, SumsAreInTheCoarserUnit) {
    constexpr Row rows[] = {
        {L"{1 cm} + {1 mm}", "110000 cm 1"},
        {L"{1 mm} + {1 cm}", "110000 cm 1"},
        {L"{1 cm} - {1 mm}", "90000 cm 1"},
        // Left minus right, whichever unit it is in.
        {L"{1 mm} - {1 cm}", "-90000 cm 1"},
        {L"{1 in} + {1 in}", "508000 in 1"},
        {L"{1 cm2} + {1 mm2}", "10100000000 cm 2"},
        {L"{1 cm^-1} - {2 cm^-1}", "-0.00001 cm -1"},
        // On equal factors the left one's.
        {L"{1 H} + {1 Q}", "5000 H 1"},
        {L"{1 Q} + {1 H}", "5000 Q 1"},
        {L"{1 Q} - {2 H}", "-2500 Q 1"},
        // Of power 0 too, so a number may be added to a plain ratio.
        {L"{1 m^0} + {2 mm^0}", "3 m 0"},
        {L"{1 m^0} + 2", "3 m 0"},
        {L"2.5 - {1 m^0}", "1.5 m 0"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Run(row.query), row.value) << Utf8(row.query);
    }
}

// The result is the difference from the coarser unit's side, turned around where that is the right one: so equal
// lengths differ by nought, and by negative nought there.
TEST_F(UnitArithmetic, DifferencesOfEqualLengths) {
    EXPECT_EQ(Run(L"{1 cm} - {10 mm}"), "0 cm 1");
    EXPECT_EQ(Run(L"{10 mm} - {1 cm}"), "-0 cm 1");
    EXPECT_EQ(Run(L"{1 cm} - {1 cm}"), "0 cm 1");
    EXPECT_EQ(Run(L"{1 Q} - {1 H}"), "0 Q 1");
}

TEST_F(UnitArithmetic, SumsNeedEqualPowers) {
    constexpr Row rows[] = {
        {L"{1 cm} + {1 mm2}", "! Incompatible unit powers of the operands: 'cm' and 'mm\xc2\xb2'"},
        {L"{1 mm3} - {1 cm}", "! Incompatible unit powers of the operands: 'mm\xc2\xb3' and 'cm'"},
        {L"{1 cm^-1} + {1 cm^4}", "! Incompatible unit powers of the operands: 'cm^-1' and 'cm^4'"},
        // A number has power 0 and the other one's unit.
        {L"{1 cm} + 1", "! Incompatible unit powers of the operands: 'cm' and 'cm^0'"},
        {L"1 + {1 cm}", "! Incompatible unit powers of the operands: 'cm^0' and 'cm'"},
        {L"{1 cm} - 1.5", "! Incompatible unit powers of the operands: 'cm' and 'cm^0'"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Run(row.query), row.value) << Utf8(row.query);
    }
}

TEST_F(UnitArithmetic, ProductsAndQuotients) {
    constexpr Row rows[] = {
        {L"{2 in} * {3 in}", "387096000000 in 2"},
        {L"{2 cm} * {3 mm}", "6000000000 cm 2"},
        {L"{3 mm} * {2 cm}", "6000000000 cm 2"},
        {L"{2 H} * {2 Q}", "25000000 H 2"},
        // A number is a factor.
        {L"{2 cm} * 3", "600000 cm 1"},
        {L"3 * {2 cm}", "600000 cm 1"},
        {L"{2 cm} * 1.5", "300000 cm 1"},
        {L"{2 un2} * (-1)", "-2 un 2"},
        {L"{6 cm} / {2 mm}", "30 cm 0"},
        {L"{2 mm} / {4 cm}", "0.05 cm 0"},
        {L"{6 un3} / {2 un}", "3 un 2"},
        {L"{6 cm} / 2", "300000 cm 1"},
        {L"1 / {2 un}", "0.5 un -1"},
        {L"{6 un^-1} / {2 un}", "3 un -2"},
        {L"{0 cm} / 2", "0 cm 1"},
        {L"{1 cm} / 0", "! Division By Zero"},
        {L"{1 cm} / 0.0", "! Division By Zero"},
        {L"{1 cm} / {0 mm}", "! Division By Zero"},
        {L"1 / {0 cm}", "! Division By Zero"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Run(row.query), row.value) << Utf8(row.query);
    }
}

TEST_F(UnitArithmetic, Powers) {
    constexpr Row rows[] = {
        {L"{3 un} ^ 2", "9 un 2"},
        {L"{3 un2} ^ 2", "9 un 4"},
        {L"{2 cm} ^ 2", "40000000000 cm 2"},
        {L"{2 cm} ^ 0", "1 cm 0"},
        {L"{2 un} ^ (-1)", "0.5 un -1"},
        {L"{2 un^-2} ^ (-3)", "0.125 un 6"},
        // The exponent is an int, rounded if need be.
        {L"{2 un} ^ 2.5", "8 un 3"},
        {L"{2 un} ^ '3'", "8 un 3"},
        {L"{2 un} ^ true", "2 un 1"},
        {L"{2 un} ^ {3 un^0}", "8 un 3"},
        {L"{2 un} ^ null", "! Cannot convert the object 'null' to type 'Int'"},
        {L"{2 un} ^ {1 un}", "! Cannot convert string '1 un' to Integer"},
        // On the right a unit is a text like any other, and no number.
        {L"2 ^ {1 cm}", "! Cannot convert string '1 cm' to Double"},
        {L"2 ^ {3 cm^0}", "double 8"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Run(row.query), row.value) << Utf8(row.query);
    }
}

TEST_F(UnitArithmetic, Signs) {
    EXPECT_EQ(Run(L"-{2 cm}"), "-200000 cm 1");
    EXPECT_EQ(Run(L"+{2 cm2}"), "20000000000 cm 2");
    EXPECT_EQ(Run(L"-{0 cm}"), "-0 cm 1");
    EXPECT_EQ(Run(L"-{3 un^0}"), "-3 un 0") << "still a unit";
}

TEST_F(UnitArithmetic, WithOthers) {
    constexpr Row rows[] = {
        {L"{1 cm} + 'a'", "! Cannot convert value 'a' of type 'string' to type 'Unit'"},
        {L"'a' + {1 cm}", "! Cannot convert value 'a' of type 'string' to type 'Unit'"},
        {L"{1 cm} * '2'", "! Cannot convert value '2' of type 'string' to type 'Unit'"},
        {L"{1 cm} - true", "! Cannot convert value 'true' of type 'bool' to type 'Unit'"},
        {L"array() / {1 cm}", "! Cannot convert value '()' of type 'array' to type 'Unit'"},
        // Null comes before units: then both are to be numbers.
        {L"{1 cm} + null", "! Cannot convert string '1 cm' to Integer"},
        {L"null + {1 cm}", "! Cannot convert the object 'null' to type 'Int'"},
        {L"{1 cm} - null", "! Cannot convert string '1 cm' to a number"},
        {L"{1 cm} / null", "! Cannot convert string '1 cm' to Double"},
        {L"{1 cm^0} + null", "! Cannot convert the object 'null' to type 'Int'"},
        // Integer division knows no units.
        {L"{6 cm} \\ 2", "! Cannot convert string '6 cm' to Integer"},
        {L"{7 cm^0} \\ 2", "int 3"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Run(row.query), row.value) << Utf8(row.query);
    }
    // A global object comes before units too: texts.
    EXPECT_EQ(Evaluate(Binary(Literal(Unit(1e5, L"cm")), L"+", Literal(new ObjectGlobal()))), "string 1 cm");
}

TEST_F(UnitArithmetic, OfTwoCategories) {
    const Ref<CountedUnitFactory> weights = Make<CountedUnitFactory>(OrvStringT(L"Weights"), OrvStringT(L"kg"), 1000.0);
    const auto weight = [&] {
        const Ref<IUnitDefinition> definition(weights->FindUnit(1));
        return Literal(new ObjectUnit(definition.Get(), 2.0, 1, true));
    };
    for (const wchar_t* const op : {L"+", L"-", L"*", L"/"}) {
        EXPECT_EQ(Evaluate(Binary(Literal(Unit(1e5, L"cm")), op, weight())),
                  "! Cannot convert unit 'kg' of category 'Weights' to category 'Linear Dimensions'");
        EXPECT_EQ(Evaluate(Binary(weight(), op, Literal(Unit(1e5, L"cm")))),
                  "! Cannot convert unit 'cm' of category 'Linear Dimensions' to category 'Weights'");
    }
    EXPECT_EQ(Counted::live, 1) << "the catalogue";
}

TEST_F(UnitArithmetic, PowersWrap) {
    const auto unit = [&](int power) { return Literal(Unit(2.0, L"un", power)); };
    EXPECT_EQ(Evaluate(Binary(unit(INT_MAX), L"*", unit(1))), "4 un -2147483648");
    EXPECT_EQ(Evaluate(Binary(unit(INT_MIN), L"*", unit(-1))), "4 un 2147483647");
    EXPECT_EQ(Evaluate(Binary(unit(INT_MIN), L"/", unit(1))), "1 un 2147483647");
    EXPECT_EQ(Evaluate(Binary(Literal(1), L"/", unit(INT_MIN))), "0.5 un -2147483648");
    EXPECT_EQ(Evaluate(Binary(unit(1 << 30), L"^", Literal(4))), "16 un 0");
    EXPECT_EQ(Evaluate(Binary(unit(INT_MIN), L"^", Literal(-1))), "0.5 un -2147483648");
}

TEST_F(UnitArithmetic, WithoutADefinition) {
    const auto bare = [](double value, int power) { return Literal(new ObjectUnit(nullptr, value, power, false)); };
    EXPECT_EQ(Evaluate(Binary(bare(2, 1), L"+", bare(3, 1))), "5  1");
    EXPECT_EQ(Evaluate(Binary(bare(2, 1), L"*", Literal(3))), "6  1");
    EXPECT_EQ(Evaluate(Binary(Literal(3), L"-", bare(2, 0))), "1  0");
    EXPECT_EQ(Evaluate(Unary(L"-", bare(2, 1))), "-2  1");
    EXPECT_EQ(Evaluate(Binary(bare(2, 3), L"^", Literal(2))), "4  6");
    EXPECT_EQ(Evaluate(Binary(bare(2, 1), L"+", bare(3, 2))),
              "! Incompatible unit powers of the operands: '' and '\xc2\xb2'");
}

// The result keeps the definition that it is in, and nothing else.
TEST_F(UnitArithmetic, ResultsKeepTheirDefinition) {
    const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(OrvStringT(L"Lengths"), OrvStringT(L"big"), 10.0);
    Ref<IUnitDefinition> big(factory->FindUnit(1));
    Ref<IUnitDefinition> little(new CountedUnitDefinition(2, OrvStringT(L"little"), 1.0, factory.Get()));
    QueryEngine engine;
    for (const wchar_t* const op : {L"+", L"-", L"*", L"/"}) {
        Ref<IQueryElement> tree(Binary(Literal(new ObjectUnit(little.Get(), 3.0, 1, true)), op,
                                       Literal(new ObjectUnit(big.Get(), 3.0, 1, true))));
        const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
        tree.Reset();
        EXPECT_EQ(value->GetUnitInterface()->GetUnitDefinition(), big.Get());
        EXPECT_EQ(dynamic_cast<const CountedUnitDefinition&>(*big).References(), 2);
        EXPECT_EQ(dynamic_cast<const CountedUnitDefinition&>(*little).References(), 1);
    }
    Ref<IQueryElement> negation(Unary(L"-", Literal(new ObjectUnit(little.Get(), 3.0, 1, true))));
    Ref<IObject> value(engine.Evaluate(negation.Get(), nullptr));
    negation.Reset();
    little.Reset();
    big.Reset();
    EXPECT_EQ(Counted::live, 2) << "the catalogue and the result's definition";
    EXPECT_EQ(Describe(value.Get()), "unit -3 little");
    value.Reset();
    EXPECT_EQ(Counted::live, 1);
}

// ---- a host's units ----

// A unit is who says so and has the face of one, whatever its class; the sign goes by the type's code.
TEST_F(UnitArithmetic, OfAHostsValues) {
    const Ref<ObjectUnit> unit(Unit(3.0, L"un"));
    Plan plan;
    plan.label = "X";
    plan.type = IObject::TypeUnit;
    plan.isUnit = true;
    plan.face = unit->GetUnitInterface();
    plan.unit = [&]() -> IUnit* {
        unit->AddRef();
        return unit->GetUnitInterface();
    };
    const auto x = [&] { return new WitnessElement(plan); };
    EXPECT_EQ(Evaluate(Binary(x(), L"+", Literal(Unit(4.0, L"un")))), "7 un 1");
    EXPECT_EQ(Evaluate(Binary(Literal(2), L"*", x())), "6 un 1");
    EXPECT_EQ(Evaluate(Binary(x(), L"/", x())), "1 un 0");
    EXPECT_EQ(Evaluate(Binary(x(), L"^", Literal(2))), "9 un 2");
    EXPECT_EQ(Evaluate(Unary(L"-", x())), "-3 un 1");
    EXPECT_EQ(References(*unit), 1) << "what ToUnit handed out came back";
    // Without the face: an internal error, and what the left side handed out comes back as well.
    plan.face = nullptr;
    for (const wchar_t* const op : {L"+", L"-", L"*", L"/", L"^", L"<"}) {
        EXPECT_EQ(Evaluate(Binary(x(), op, Literal(1))), "! Internal error") << Utf8(op);
    }
    EXPECT_EQ(Evaluate(Unary(L"-", x())), "! Internal error");
    EXPECT_EQ(References(*unit), 1);
    // ToUnit may fail on its own.
    plan.face = unit->GetUnitInterface();
    plan.failing = {"ToUnit"};
    EXPECT_EQ(Evaluate(Binary(x(), L"+", Literal(Unit(4.0, L"un")))), "! X: ToUnit");
    EXPECT_EQ(Evaluate(Binary(Literal(Unit(4.0, L"un")), L"+", x())), "! X: ToUnit");
}

} // namespace
} // namespace OrvUQL::Tests
