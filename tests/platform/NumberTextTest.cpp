#include "platform/NumberText.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using namespace OrvUQL::platform;

namespace {

std::wstring Integer(int value, int radix) {
    wchar_t buffer[integerTextUnits];
    const int length = FormatInteger(value, radix, buffer);
    EXPECT_EQ(buffer[length], L'\0');
    return std::wstring(buffer, static_cast<std::size_t>(length));
}

std::wstring Double(double value) {
    wchar_t buffer[doubleTextUnits];
    const int length = FormatDouble(value, buffer);
    EXPECT_LT(length, doubleTextUnits);
    EXPECT_EQ(buffer[length], L'\0');
    const std::wstring text(buffer, static_cast<std::size_t>(length));
    EXPECT_EQ(OrvUtils::String::ToStringW(value), text);
    return text;
}

} // namespace

TEST(NumberText, Integers) {
    EXPECT_EQ(Integer(0, 10), L"0");
    EXPECT_EQ(Integer(-5, 10), L"-5");
    EXPECT_EQ(Integer(INT_MAX, 10), L"2147483647");
    EXPECT_EQ(Integer(INT_MIN, 10), L"-2147483648");
}

TEST(NumberText, IntegersInOtherRadixes) {
    EXPECT_EQ(Integer(255, 16), L"ff");
    EXPECT_EQ(Integer(5, 2), L"101");
    EXPECT_EQ(Integer(35, 36), L"z");
    EXPECT_EQ(Integer(0, 2), L"0");
    EXPECT_EQ(Integer(9, 9), L"10");
    // Outside radix 10 a negative value is its 32-bit pattern.
    EXPECT_EQ(Integer(-1, 16), L"ffffffff");
    EXPECT_EQ(Integer(-1, 2), std::wstring(32, L'1'));
    EXPECT_EQ(Integer(-1, 8), L"37777777777");
    EXPECT_EQ(Integer(-1, 36), L"1z141z3");
    EXPECT_EQ(Integer(-1, 11), L"1904440553");
    EXPECT_EQ(Integer(INT_MIN, 16), L"80000000");
    EXPECT_EQ(Integer(INT_MIN, 2), L"1" + std::wstring(31, L'0'));
}

TEST(NumberText, DoublesInPlainNotation) {
    EXPECT_EQ(Double(0.0), L"0");
    EXPECT_EQ(Double(-0.0), L"-0");
    EXPECT_EQ(Double(1.0), L"1");
    EXPECT_EQ(Double(-1.5), L"-1.5");
    EXPECT_EQ(Double(0.1), L"0.1");
    EXPECT_EQ(Double(0.1 + 0.2), L"0.30000000000000004");
    EXPECT_EQ(Double(100000.0), L"100000");
    EXPECT_EQ(Double(1e20), L"100000000000000000000");
    EXPECT_EQ(Double(4294967296.0), L"4294967296");
    EXPECT_EQ(Double(9007199254740993.0), L"9007199254740992");
    EXPECT_EQ(Double(123456789012345678901.0), L"123456789012345680000"); // shortest digits, then zeros
    EXPECT_EQ(Double(1.0 / 3), L"0.3333333333333333");
    EXPECT_EQ(Double(57.29577951308232), L"57.29577951308232");
    EXPECT_EQ(Double(123.456), L"123.456");
}

TEST(NumberText, DoublesAtTheBoundariesOfPlainNotation) {
    EXPECT_EQ(Double(1e21), L"1e+21");
    EXPECT_EQ(Double(-1e21), L"-1e+21");
    EXPECT_EQ(Double(std::nextafter(1e21, 0)), L"999999999999999900000");
    EXPECT_EQ(Double(1e-6), L"0.000001");
    EXPECT_EQ(Double(std::nextafter(1e-6, 0)), L"9.999999999999997e-07");
    EXPECT_EQ(Double(1.5e-6), L"0.0000015");
    EXPECT_EQ(Double(-1.2345678901234567e-6), L"-0.0000012345678901234567"); // the longest text there is
}

TEST(NumberText, DoublesInScientificNotation) {
    EXPECT_EQ(Double(1.5e-7), L"1.5e-07");
    EXPECT_EQ(Double(1e-10), L"1e-10");
    EXPECT_EQ(Double(1e22), L"1e+22");
    EXPECT_EQ(Double(1.5e300), L"1.5e+300");
    EXPECT_EQ(Double(DBL_MAX), L"1.7976931348623157e+308");
    EXPECT_EQ(Double(-DBL_MAX), L"-1.7976931348623157e+308");
    EXPECT_EQ(Double(DBL_MIN), L"2.2250738585072014e-308");
    EXPECT_EQ(Double(DBL_TRUE_MIN), L"5e-324");
}

TEST(NumberText, DoublesThatAreNoNumbers) {
    EXPECT_EQ(Double(INFINITY), L"inf");
    EXPECT_EQ(Double(-INFINITY), L"-inf");
    EXPECT_EQ(Double(std::numeric_limits<double>::quiet_NaN()), L"nan");
    EXPECT_EQ(Double(-std::numeric_limits<double>::quiet_NaN()), L"nan");
}

TEST(NumberText, DoublesReadBack) {
    std::mt19937_64 random(42);
    int longest = 0;
    for (int i = 0; i < 100'000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) {
            continue;
        }
        wchar_t buffer[doubleTextUnits];
        const int length = FormatDouble(value, buffer);
        longest = length > longest ? length : longest;
        double back = 0;
        ASSERT_TRUE(ParseDouble(std::wstring_view(buffer, static_cast<std::size_t>(length)), back)) << value;
        ASSERT_EQ(std::memcmp(&back, &value, sizeof value), 0) << value;
    }
    EXPECT_LE(longest, 25);
}

TEST(NumberText, EveryTextOfAPlainDoubleIsShortest) {
    std::mt19937_64 random(43);
    for (int i = 0; i < 20'000; ++i) {
        const double value = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 80) - 70);
        const std::wstring text = Double(value);
        double back = 0;
        ASSERT_TRUE(ParseDouble(text, back));
        ASSERT_EQ(back, value);
        char printed[64]; // with one digit less the C library's text does not read back
        std::size_t digits = 0;
        bool leading = true;
        for (const wchar_t unit : text.substr(0, text.find(L'e'))) {
            leading = leading && !(unit >= L'1' && unit <= L'9');
            digits += unit >= L'0' && unit <= L'9' && !leading ? 1u : 0u;
        }
        if (digits > 1 && digits < 17 && text.find(L'.') != std::wstring::npos) {
            std::snprintf(printed, sizeof printed, "%.*e", static_cast<int>(digits) - 2, value);
            ASSERT_NE(std::strtod(printed, nullptr), value) << printed;
        }
    }
}

TEST(NumberText, AppendTo) {
    OrvStringT text(L"[");
    AppendTo(text, 42);
    text += L',';
    AppendTo(text, INT_MIN);
    text += L',';
    AppendTo(text, 1.5);
    text += L',';
    AppendTo(text, true);
    text += L',';
    AppendTo(text, false);
    EXPECT_EQ(text, L"[42,-2147483648,1.5,true,false");
}
