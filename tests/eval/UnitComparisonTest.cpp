// How values with units are compared: in the finer unit, and leniently within a tolerance.

#include "eval/Nodes.h"
#include "eval/Verdicts.h"

#include <gtest/gtest.h>

#include <climits>

namespace OrvUQL::Tests {
namespace {

class UnitComparison : public VerdictTest {
protected:
    Ref<ObjectUnit> Unit(double value, const wchar_t* name, int power = 1) {
        const Ref<IUnitDefinition> definition(units->FindUnit(name));
        return Make<ObjectUnit>(definition.Get(), value, power, true);
    }
    const Ref<LinearDimensionUnits> units = Make<LinearDimensionUnits>(0.0);
};

TEST_F(UnitComparison, InTheFinerUnit) {
    engine.SetUnitPrecision(9);
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *Unit(10, L"mm")), intEqual);
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *Unit(9, L"mm")), intGreater);
    EXPECT_EQ(Objects(*Unit(9, L"mm"), *Unit(1, L"cm")), intLess);
    EXPECT_EQ(Objects(*Unit(1, L"in"), *Unit(2.54, L"cm")), intEqual);
    EXPECT_EQ(Objects(*Unit(1, L"cm", 2), *Unit(100, L"mm", 2)), intEqual);
    EXPECT_EQ(Objects(*Unit(-1, L"cm"), *Unit(1, L"mm")), intLess);
    EXPECT_EQ(Objects(*Unit(1, L"cm", -1), *Unit(0.1, L"mm", -1)), intEqual);
}

// With precision 0 the tolerance is one whole unit of the finer operand, for the lenient codes alone.
TEST_F(UnitComparison, WithTolerance) {
    constexpr const char* lenientLess = "ffffTTTfff";
    EXPECT_EQ(Objects(*Unit(2.4, L"cm"), *Unit(3, L"cm")), lenientLess);
    EXPECT_EQ(Objects(*Unit(2, L"cm"), *Unit(3, L"cm")), lenientLess) << "just at the bound";
    EXPECT_EQ(Objects(*Unit(2, L"cm"), *Unit(3.5, L"cm")), intLess);
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *Unit(11, L"mm")), lenientLess) << "a millimetre, not a centimetre";
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *Unit(12, L"mm")), intLess);
    EXPECT_EQ(Objects(*Unit(12, L"mm"), *Unit(1, L"cm")), intGreater);
    EXPECT_EQ(Objects(*Unit(1, L"cm", 2), *Unit(101, L"mm", 2)), lenientLess) << "a square millimetre";
    EXPECT_EQ(Objects(*Unit(1, L"cm", 2), *Unit(102, L"mm", 2)), intLess);
    engine.SetUnitPrecision(3);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(2.0004, L"mm")), lenientLess);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(2.002, L"mm")), intLess);
    engine.SetUnitPrecision(-1);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(9, L"mm")), lenientLess);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(13, L"mm")), intLess);
    // Whatever the number: it is a power of ten.
    engine.SetUnitPrecision(INT_MAX);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(2.0004, L"mm")), intLess);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(2, L"mm")), intEqual);
    engine.SetUnitPrecision(INT_MIN + 1);
    EXPECT_EQ(Objects(*Unit(2, L"mm"), *Unit(2000, L"km")), lenientLess);
}

TEST_F(UnitComparison, NeedsEqualPowers) {
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *Unit(1, L"mm", 2)), "!!!!!!!!!!");
    EXPECT_EQ(message, "Incompatible unit powers of the operands: 'cm' and 'mm\xc2\xb2'");
    EXPECT_EQ(Objects(*Unit(1, L"mm", -1), *Unit(1, L"cm", 3)), "!!!!!!!!!!");
    EXPECT_EQ(message, "Incompatible unit powers of the operands: 'mm^-1' and 'cm\xc2\xb3'");
}

// A number has power 0.
TEST_F(UnitComparison, WithNumbers) {
    const Ref<ObjectInt> seven = Make<ObjectInt>(7);
    const Ref<ObjectDouble> half = Make<ObjectDouble>(0.5);
    EXPECT_EQ(Objects(*Unit(7, L"cm"), *seven), "!!!!!!!!!!");
    EXPECT_EQ(message, "Incompatible unit powers of the operands: 'cm' and 'cm^0'");
    EXPECT_EQ(Objects(*seven, *Unit(7, L"cm")), "!!!!!!!!!!");
    EXPECT_EQ(message, "Incompatible unit powers of the operands: 'cm^0' and 'cm'");
    engine.SetUnitPrecision(6);
    EXPECT_EQ(Objects(*Unit(7, L"cm", 0), *seven), intEqual);
    EXPECT_EQ(Objects(*half, *Unit(7, L"cm", 0)), intLess);
}

TEST_F(UnitComparison, WithOthers) {
    const Ref<ObjectString> text = Make<ObjectString>(L"1 cm");
    const Ref<ObjectBool> yes = Make<ObjectBool>(true);
    const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *text), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot convert value '1 cm' of type 'string' to type 'Unit'");
    EXPECT_EQ(Objects(*yes, *Unit(1, L"cm")), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot convert value 'true' of type 'bool' to type 'Unit'");
    EXPECT_EQ(Objects(*global, *Unit(1, L"cm")), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot compare object 'global' to object 'unit'. Incompatible types for this operation");
    EXPECT_EQ(Objects(*Unit(1, L"cm"), *global), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot compare object 'unit' to object 'global'. Incompatible types for this operation");
}

// The operators ask the engine that evaluates them, and without one take the precision 0.
TEST_F(UnitComparison, ByOperators) {
    const Ref<IQueryElement> tree(Binary(Literal(Unit(2.4, L"cm").Share()), L"=", Literal(Unit(3, L"cm").Share())));
    const auto evaluate = [&](QueryEngine* used) {
        const Ref<IObject> value(tree->Evaluate(used, nullptr));
        return Describe(value.Get());
    };
    EXPECT_EQ(evaluate(&engine), "bool true");
    engine.SetUnitPrecision(1);
    EXPECT_EQ(evaluate(&engine), "bool false");
    engine.SetUnitPrecision(0);
    EXPECT_EQ(evaluate(&engine), "bool true");
    EXPECT_EQ(evaluate(nullptr), "bool true");
}

TEST_F(UnitComparison, GivesItsUnitsBack) {
    const Ref<IUnitDefinition> definition(units->FindUnit(L"cm"));
    const Ref<Probe<ObjectUnit>> left = Make<Probe<ObjectUnit>>(definition.Get(), 1.0, 1, true);
    const Ref<Probe<ObjectUnit>> right = Make<Probe<ObjectUnit>>(definition.Get(), 1.0, 2, true);
    Objects(*left, *left);
    Objects(*left, *right);
    EXPECT_EQ(left->References(), 1);
    EXPECT_EQ(right->References(), 1);
}

} // namespace
} // namespace OrvUQL::Tests
