// The comparison rules on ints, doubles and texts.

#include "eval/Verdicts.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace OrvUQL::Tests {
namespace {

using ScalarComparison = VerdictTest;

TEST_F(ScalarComparison, Codes) {
    EXPECT_EQ(static_cast<int>(OperNone), 0);
    EXPECT_EQ(static_cast<int>(OperGreater), 1);
    EXPECT_EQ(static_cast<int>(OperGreaterEqual), 2);
    EXPECT_EQ(static_cast<int>(OperLess), 3);
    EXPECT_EQ(static_cast<int>(OperLessEqual), 4);
    EXPECT_EQ(static_cast<int>(OperEqual), 5);
    EXPECT_EQ(static_cast<int>(OperStrictEqual), 6);
    EXPECT_EQ(static_cast<int>(OperNotEqual), 7);
}

TEST_F(ScalarComparison, OfInts) {
    EXPECT_EQ(Ints(2, 1), intGreater);
    EXPECT_EQ(Ints(1, 2), intLess);
    EXPECT_EQ(Ints(2, 2), intEqual);
    EXPECT_EQ(Ints(-1, 1), intLess);
    EXPECT_EQ(Ints(INT_MIN, INT_MAX), intLess);
    EXPECT_EQ(Ints(INT_MAX, INT_MIN), intGreater);
    EXPECT_EQ(Ints(INT_MIN, INT_MIN), intEqual);
    for (const int op : {-1, 0, 8, 100, INT_MIN, INT_MAX}) {
        EXPECT_FALSE(engine.CompareInts(static_cast<EOperType>(op), 1, 1)) << op;
    }
}

TEST_F(ScalarComparison, OfDoubles) {
    EXPECT_EQ(Doubles(2, 1, 0), intGreater);
    EXPECT_EQ(Doubles(1, 2, 0), intLess);
    EXPECT_EQ(Doubles(2, 2, 0), intEqual);
    EXPECT_EQ(Doubles(0.0, -0.0, 0), intEqual);
    EXPECT_EQ(Doubles(0.1 + 0.2, 0.3, 0), intGreater);
    const double least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(Doubles(least, 0, 0), intGreater);
}

// The lenient codes allow the tolerance, its bound included; the order and "==" do not.
TEST_F(ScalarComparison, OfDoublesWithTolerance) {
    EXPECT_EQ(Doubles(2, 1, 1), "ffTTffTfff");
    EXPECT_EQ(Doubles(1, 2, 1), "ffffTTTfff");
    EXPECT_EQ(Doubles(1, 2, 0.5), intLess);
    EXPECT_EQ(Doubles(1, 1, 0.5), intEqual);
    EXPECT_EQ(Doubles(1, 1.5, 0.5), "ffffTTTfff") << "just at the bound";
    EXPECT_EQ(Doubles(1, std::nextafter(1.5, 2), 0.5), intLess) << "just beyond";
    EXPECT_EQ(Doubles(1, 1, -1), "fffTfTfTTf") << "no difference is as small as that";
    EXPECT_EQ(Doubles(1, 100, std::numeric_limits<double>::infinity()), "ffffTTTfff");
}

TEST_F(ScalarComparison, OfNoNumbers) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double tolerance : {0.0, 1.0, infinity}) {
        EXPECT_EQ(Doubles(nan, nan, tolerance), unordered);
        EXPECT_EQ(Doubles(nan, 1, tolerance), unordered);
        EXPECT_EQ(Doubles(1, nan, tolerance), unordered);
        EXPECT_EQ(Doubles(nan, infinity, tolerance), unordered);
    }
    EXPECT_EQ(Doubles(1, 1, nan), "fffTfTfTff");
}

// The difference of equal infinities is no number, so they are equal only strictly, and not unequal either.
TEST_F(ScalarComparison, OfInfinities) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Doubles(infinity, infinity, 0), "fffTfTfTff");
    EXPECT_EQ(Doubles(-infinity, -infinity, 0), "fffTfTfTff");
    EXPECT_EQ(Doubles(infinity, -infinity, 0), intGreater);
    EXPECT_EQ(Doubles(1, infinity, 0), intLess);
    EXPECT_EQ(Doubles(infinity, infinity, infinity), "fffTfTfTff");
}

TEST_F(ScalarComparison, OfStrings) {
    EXPECT_EQ(Strings(L"b", L"a"), intGreater);
    EXPECT_EQ(Strings(L"a", L"b"), intLess);
    EXPECT_EQ(Strings(L"a", L"a"), intEqual);
    EXPECT_EQ(Strings(L"", L""), intEqual);
    EXPECT_EQ(Strings(L"", L"a"), intLess);
    EXPECT_EQ(Strings(L"ab", L"a"), intGreater);
    EXPECT_EQ(Strings(L"10", L"9"), intLess) << "texts, not numbers";
}

// Letter case counts for the order and for "==", not for "=" and "<>".
TEST_F(ScalarComparison, OfStringsThatDifferInCase) {
    EXPECT_EQ(Strings(L"abc", L"ABC"), "ffTTffTfff");
    EXPECT_EQ(Strings(L"ABC", L"abc"), "ffffTTTfff");
    EXPECT_EQ(Strings(L"\u00e4", L"\u00c4"), "ffTTffTfff");
    EXPECT_EQ(Strings(L"a", L"B"), intGreater) << "small letters come after all capitals";
    EXPECT_EQ(Strings(L"Z", L"a"), intLess);
}

TEST_F(ScalarComparison, OfStringsWithNul) {
    const OrvStringT a(L"a\0b", 3);
    const OrvStringT b(L"a\0c", 3);
    EXPECT_TRUE(engine.CompareStrings(OperLess, a, b));
    EXPECT_FALSE(engine.CompareStrings(OperEqual, a, b));
    EXPECT_TRUE(engine.CompareStrings(OperStrictEqual, a, OrvStringT(L"a\0b", 3)));
    EXPECT_TRUE(engine.CompareStrings(OperEqual, a, OrvStringT(L"A\0B", 3)));
}

} // namespace
} // namespace OrvUQL::Tests
