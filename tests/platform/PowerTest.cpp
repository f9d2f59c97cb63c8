#include "platform/Power.h"

#include "platform/PowerSteps.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <string>

using namespace OrvUQL::platform;

TEST(Power, PowersOfTenAreTheNearestDoubles) {
    for (int n = -330; n <= 308; ++n) {
        EXPECT_EQ(PowerOfTen(n), std::strtod(("1e" + std::to_string(n)).c_str(), nullptr)) << n;
    }
}

TEST(Power, PowersOfTenOutsideTheRangeOfDoubles) {
    EXPECT_EQ(PowerOfTen(309), INFINITY);
    EXPECT_EQ(PowerOfTen(INT_MAX), INFINITY);
    EXPECT_EQ(PowerOfTen(-324), 0.0);
    EXPECT_EQ(PowerOfTen(INT_MIN), 0.0);
}

TEST(Power, ExactWhereTheResultIsADouble) {
    for (int base = 2; base <= 20; ++base) {
        double expected = 1;
        for (int n = 0; expected <= 9007199254740992.0; ++n, expected *= base) {
            EXPECT_EQ(Power(base, n), expected) << base << "^" << n;
            EXPECT_EQ(Power(-base, n), n % 2 == 0 ? expected : -expected) << -base << "^" << n;
        }
    }
    for (int n = 0; n <= 22; ++n) {
        EXPECT_EQ(Power(10, n), PowerOfTen(n)) << n;
    }
    for (int n = -1074; n <= 1023; ++n) {
        EXPECT_EQ(Power(2, n), std::ldexp(1.0, n)) << n;
    }
    EXPECT_EQ(Power(2.25, 0.5), 1.5);
    EXPECT_EQ(Power(1e6, 0.5), 1000.0);
}

TEST(Power, SpecialValues) {
    EXPECT_EQ(Power(0, 0), 1.0);
    EXPECT_EQ(Power(0, -1), INFINITY);
    EXPECT_TRUE(std::isnan(Power(-8, 1.0 / 3)));
    EXPECT_EQ(Power(10, 400), INFINITY);
    EXPECT_EQ(Power(10, -400), 0.0);
}

// The accurate way is taken where the quick one does not know the last digit, which is never so far out. It holds there
// all the same.
TEST(Power, AccuratelyOutsideTheRangeOfDoubles) {
    EXPECT_EQ(AccuratePower(10, 400), INFINITY);
    EXPECT_EQ(AccuratePower(10, 400.5), INFINITY);
    EXPECT_EQ(AccuratePower(10, 310.5), INFINITY);
    EXPECT_EQ(AccuratePower(10, -400.5), 0.0);
    EXPECT_EQ(AccuratePower(10, -325.5), 0.0);
}
