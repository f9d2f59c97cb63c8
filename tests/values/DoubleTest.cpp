// Doubles: values and the type object, absolute value and rounding.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace OrvUQL::Tests {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

IQueryElement* Int(int value) { return new ElementObject(value, 0); }

TEST(Double, IsAValueOrTheTypeObject) {
    const ObjectDouble value(0.1);
    EXPECT_EQ(value.GetValue(), 0.1);
    EXPECT_FALSE(value.IsStaticInstance());
    const ObjectDouble zero(0.0);
    EXPECT_FALSE(zero.IsStaticInstance());
    const ObjectDouble type;
    EXPECT_EQ(type.GetValue(), 0.0);
    EXPECT_TRUE(type.IsStaticInstance());
    EXPECT_EQ(type.GetTypeName(), L"double");
}

TEST(Double, HasAnAbsoluteValue) {
    const std::pair<double, const char*> rows[] = {
        {1.5, "double 1.5"}, {-1.5, "double 1.5"}, {-0.0, "double 0"}, {-infinity, "double inf"}, {nan, "double nan"},
    };
    for (const auto& [number, expected] : rows) {
        ObjectDouble value(number);
        EXPECT_EQ(Call(value, L"abs"), expected) << number;
    }
}

struct RoundRow {
    double value;
    int decimals;
    const char* result;
};

// x / 10^-n, a half added or taken away, the floor, times 10^-n, each step in doubles.
const RoundRow roundRows[] = {
    {2.4, 0, "2"},
    {2.5, 0, "3"},
    {2.6, 0, "3"},
    {0.5, 0, "1"},
    {0.49999999999999994, 0, "1"}, // the sum with 0.5 is 1
    {0.0, 0, "0"},
    {-0.0, 0, "0"},
    // Below zero the floor follows the half that was taken away: one lower than elsewhere but at the halves themselves.
    {-0.3, 0, "-1"},
    {-1.0, 0, "-2"},
    {-2.4, 0, "-3"},
    {-2.5, 0, "-3"},
    {-2.6, 0, "-4"},
    {-1.24, 1, "-1.3"},
    {-1.005, 2, "-1.01"},
    {1.25, 1, "1.3"},
    {1.005, 2, "1"},
    {2.675, 2, "2.68"},
    {1.23456, 2, "1.23"},
    {3.14159, 2, "3.14"},
    {0.3, 1, "0.30000000000000004"},
    {3.14159, 15, "3.1415900000000003"},
    {0.1, 15, "0.1"},
    {5.0, 15, "5"},
    {123456.789, 3, "123456.789"},
    {1e15, 2, "1000000000000000"},
    {1e300, 0, "1e+300"},
    {infinity, 2, "inf"},
    {-infinity, 2, "-inf"},
    {nan, 2, "nan"},
};

TEST(Double, RoundsToDecimals) {
    for (const RoundRow& row : roundRows) {
        SCOPED_TRACE(row.value);
        ObjectDouble value(row.value);
        EXPECT_EQ(Call(value, L"Round", {Int(row.decimals)}), std::string("double ") + row.result);
        if (row.decimals == 0) {
            EXPECT_EQ(Call(value, L"Round"), std::string("double ") + row.result);
            EXPECT_EQ(Call(value, L"Round", {nullptr}), std::string("double ") + row.result);
        }
    }
}

TEST(Double, RoundsTo0To15Decimals) {
    ObjectDouble value(3.14159);
    for (int decimals = 0; decimals <= 15; ++decimals) {
        EXPECT_EQ(Call(value, L"Round", {Int(decimals)}).substr(0, 8), "double 3") << decimals;
    }
    for (const int decimals : {16, 17, -1, -2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(Call(value, L"Round", {Int(decimals)}), "! Rounding precision must be between 0 and 15") << decimals;
    }
    EXPECT_EQ(Call(value, L"Round", {new ElementObject(L"2", 0)}), "double 3.14");
    EXPECT_EQ(Call(value, L"Round", {new ElementObject(1.5, 0)}), "double 3.14");
    EXPECT_EQ(Call(value, L"Round", {new ElementObject(L"x", 0)}), "! Cannot convert string 'x' to Integer");
    EXPECT_EQ(Call(value, L"Round", {new ElementObject(new ObjectNull(), 0, false)}),
              "! Cannot convert the object 'null' to type 'Int'");
}

} // namespace
} // namespace OrvUQL::Tests
