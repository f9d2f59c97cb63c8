#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <climits>

using OrvUtils::String::ToStringW;

TEST(ToString, Bools) {
    EXPECT_EQ(ToStringW(true), L"true");
    EXPECT_EQ(ToStringW(false), L"false");
    EXPECT_EQ(ToStringW(true).GetString(), ToStringW(true).GetString()); // a literal
}

TEST(ToString, Ints) {
    EXPECT_EQ(ToStringW(0), L"0");
    EXPECT_EQ(ToStringW(9), L"9");
    EXPECT_EQ(ToStringW(10), L"10");
    EXPECT_EQ(ToStringW(-1), L"-1");
    EXPECT_EQ(ToStringW(INT_MAX), L"2147483647");
    EXPECT_EQ(ToStringW(INT_MIN), L"-2147483648");
    EXPECT_EQ(ToStringW(7).GetString(), ToStringW(7).GetString());
}

TEST(ToString, Doubles) {
    EXPECT_EQ(ToStringW(4294967296.0), L"4294967296");
    EXPECT_EQ(ToStringW(0.1), L"0.1");
    EXPECT_EQ(ToStringW(-0.0), L"-0");
}
