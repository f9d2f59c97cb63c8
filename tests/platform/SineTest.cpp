#include "platform/Sine.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace OrvUQL::platform;

namespace {

struct Angle {
    double angle;
    double sine;
    double cosine;
};

// The doubles nearest to the exact values, from a computation with 113 bits.
constexpr Angle angles[] = {
    {0.0, 0.0, 1.0},
    {1e-10, 1e-10, 1.0},
    {0.1, 0.099833416646828155, 0.99500416527802582},
    {0.5, 0.47942553860420301, 0.87758256189037276},
    {0.78539816339744828, 0.70710678118654746, 0.70710678118654757},
    {1.0, 0.8414709848078965, 0.54030230586813977},
    {1.5707963267948966, 1.0, 6.123233995736766e-17},
    {2.0, 0.90929742682568171, -0.41614683654714241},
    {3.1415926535897931, 1.2246467991473532e-16, -1.0},
    {-3.5, 0.35078322768961984, -0.93645668729079634},
    {6.2831853071795862, -2.4492935982947064e-16, 1.0},
    {22.0, -0.0088513092904038762, -0.99996082639463713},
    {355.0, -3.0144353359488451e-05, -0.99999999954565899},
    {12345.678, -0.70408131375338157, 0.7101193587160628},
    {1e6, -0.34999350217129294, 0.93675212753314474},
    {-1e6, 0.34999350217129294, 0.93675212753314474},
    {1e15, 0.85827279317023586, -0.51319373778697031},
    {1e22, -0.85220084976718879, 0.52321478539513899},
    {1e300, -0.81788191211590855, -0.57538611195754907},
};

} // namespace

TEST(Sine, IsRightToTheLastDigits) {
    for (const Angle& row : angles) {
        EXPECT_DOUBLE_EQ(Sine(row.angle), row.sine) << row.angle; // at most four units in the last place
        EXPECT_DOUBLE_EQ(Cosine(row.angle), row.cosine) << row.angle;
    }
}

TEST(Sine, HasTheSymmetriesOfTheFunctions) {
    for (double angle = 0.0; angle < 1000.0; angle += 0.37) {
        EXPECT_EQ(Sine(-angle), -Sine(angle));
        EXPECT_EQ(Cosine(-angle), Cosine(angle));
        EXPECT_NEAR(Sine(angle) * Sine(angle) + Cosine(angle) * Cosine(angle), 1.0, 1e-15) << angle;
    }
    EXPECT_TRUE(std::signbit(Sine(-0.0)));
}

TEST(Sine, IsNoNumberForWhatIsNoAngle) {
    for (const double angle : {INFINITY, -INFINITY, NAN}) {
        EXPECT_TRUE(std::isnan(Sine(angle)));
        EXPECT_TRUE(std::isnan(Cosine(angle)));
    }
}
