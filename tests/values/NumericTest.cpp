// What ints and doubles have in common: angles and texts in other radices.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Host.h"
#include "support/Ref.h"

#include <gtest/gtest.h>

#include <limits>

namespace OrvUQL::Tests {
namespace {

IQueryElement* Int(int value) { return new ElementObject(value, 0); }

struct RadixRow {
    int value;
    int radix;
    const char* text;
};

const RadixRow radixRows[] = {
    {0, 2, "0"},
    {0, 10, "0"},
    {255, 16, "ff"},
    {255, 2, "11111111"},
    {255, 10, "255"},
    {255, 36, "73"},
    {2147483647, 10, "2147483647"},
    {2147483647, 16, "7fffffff"},
    {2147483647, 36, "zik0zj"},
    // Below zero a sign in radix 10, elsewhere the pattern of 32 bits.
    {-5, 10, "-5"},
    {-1, 16, "ffffffff"},
    {-1, 2, "11111111111111111111111111111111"},
    {-1, 3, "102002022201221111210"},
    {-1, 36, "1z141z3"},
    {-2147483647 - 1, 10, "-2147483648"},
    {-2147483647 - 1, 2, "10000000000000000000000000000000"},
    {-2147483647 - 1, 35, "15v22un"},
};

TEST(Numeric, IsWrittenInAnyRadix) {
    for (const RadixRow& row : radixRows) {
        SCOPED_TRACE(row.value);
        ObjectInt number(row.value);
        EXPECT_EQ(Call(number, L"Radix", {Int(row.radix)}), std::string("string ") + row.text);
    }
}

TEST(Numeric, IsFilledWithZerosToAWidth) {
    ObjectInt five(5);
    EXPECT_EQ(Call(five, L"Radix", {Int(2), Int(8)}), "string 00000101");
    EXPECT_EQ(Call(five, L"Radix", {Int(2), Int(3)}), "string 101");
    EXPECT_EQ(Call(five, L"Radix", {Int(2), Int(2)}), "string 101") << "nothing is cut off";
    EXPECT_EQ(Call(five, L"Radix", {Int(2), Int(0)}), "string 101");
    EXPECT_EQ(Call(five, L"Radix", {Int(2), Int(-4)}), "string 101");
    EXPECT_EQ(Call(five, L"Radix", {Int(2), nullptr}), "string 101");
    EXPECT_EQ(Call(five, L"Radix", {Int(10), Int(100)}), "string " + std::string(99, '0') + "5");
    // The zeros go in front of the sign as well.
    ObjectInt minus(-5);
    EXPECT_EQ(Call(minus, L"Radix", {Int(10), Int(4)}), "string 00-5");
    EXPECT_EQ(Call(minus, L"Radix", {Int(10), Int(2)}), "string -5");
}

TEST(Numeric, HasRadicesFrom2To36) {
    ObjectInt number(35);
    EXPECT_EQ(Call(number, L"Radix", {Int(2)}), "string 100011");
    EXPECT_EQ(Call(number, L"Radix", {Int(36)}), "string z");
    for (const int radix : {1, 37, 0, -1, -2, 100, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(Call(number, L"Radix", {Int(radix)}), "! The radix must be between 2 and 36") << radix;
    }
}

TEST(Numeric, IsRoundedToAnIntForARadix) {
    ObjectDouble number(254.5);
    EXPECT_EQ(Call(number, L"Radix", {Int(16)}), "string ff");
    ObjectDouble minus(-0.5);
    EXPECT_EQ(Call(minus, L"Radix", {Int(16)}), "string ffffffff");
    ObjectDouble large(3e9);
    EXPECT_EQ(Call(large, L"Radix", {Int(16)}),
              "! Data overflow occured while converting a floating point number 3000000000 to integer");
}

TEST(Numeric, TakesTheRadixAsAnyIntMayBeGiven) {
    ObjectInt number(255);
    EXPECT_EQ(Call(number, L"Radix", {new ElementObject(L"16", 0)}), "string ff");
    EXPECT_EQ(Call(number, L"Radix", {new ElementObject(15.5, 0)}), "string ff");
    EXPECT_EQ(Call(number, L"Radix", {new ElementObject(L"x", 0)}), "! Cannot convert string 'x' to Integer");
    EXPECT_EQ(Call(number, L"Radix", {Int(16), new ElementObject(L"x", 0)}), "! Cannot convert string 'x' to Integer");
    EXPECT_EQ(Call(number, L"Radix"), "! Parameter 1 of method 'Radix' is not optional");
}

/// A host's number, which may be unknown.
class Reading : public ObjectNumeric {
public:
    Reading() : ObjectNumeric(false) {}
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"reading"); }
    EType GetType() const override { return TypeDouble; }
    bool ToDouble(double& out, IError** err) const override {
        if (isUnknown) {
            if (err != nullptr) {
                *err = new Error(L"no reading yet");
            }
            return false;
        }
        out = 180;
        return true;
    }

    bool isUnknown = false;
};

TEST(Numeric, OfAHostHasTheMethodsOfNumbers) {
    Host host;
    const Ref<Reading> reading = Make<Reading>();
    host.engine.SetVariable(reading.Get());
    EXPECT_EQ(host.Run(L"$ToRadians()"), "double 3.141592653589793");
    reading->isUnknown = true;
    EXPECT_EQ(host.Run(L"$ToRadians()"), "! no reading yet");
}

TEST(Numeric, OfAHostBecomesAUnit) {
    const Ref<Reading> reading = Make<Reading>();
    const Ref<LinearDimensionUnits> lengths = Make<LinearDimensionUnits>(0.0);
    const Ref<IUnitDefinition> inch(lengths->FindUnit(L"in"));
    ErrorSlot error;
    const UnitRef unit(reading->ToUnit(inch.Get(), error.Slot()));
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->GetPower(), 0);
    EXPECT_EQ(unit->GetValue(), 180);
    reading->isUnknown = true;
    EXPECT_EQ(reading->ToUnit(inch.Get(), error.Slot()), nullptr);
    EXPECT_EQ(error.Message(), "no reading yet");
}

TEST(Numeric, ConvertsAngles) {
    ObjectInt half(180);
    EXPECT_EQ(Call(half, L"ToRadians"), "double 3.141592653589793");
    ObjectInt one(1);
    EXPECT_EQ(Call(one, L"ToDegrees"), "double 57.29577951308232");
    ObjectDouble right(-90.0);
    EXPECT_EQ(Call(right, L"ToRadians"), "double -1.5707963267948966");
    ObjectDouble some(2.5);
    EXPECT_EQ(Call(some, L"ToDegrees"), "double 143.2394487827058");
    ObjectInt zero(0);
    EXPECT_EQ(Call(zero, L"ToRadians"), "double 0");
    ObjectDouble infinite(std::numeric_limits<double>::infinity());
    EXPECT_EQ(Call(infinite, L"ToDegrees"), "double inf");
}

} // namespace
} // namespace OrvUQL::Tests
