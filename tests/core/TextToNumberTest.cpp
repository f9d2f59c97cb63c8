// Texts as numbers, as every value does it that has a text: what is accepted, and when a number is an int.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

namespace OrvUQL::Tests {
namespace {

constexpr std::optional<double> none;

struct Row {
    const wchar_t* text;
    std::optional<double> value; ///< what ToDouble gives; none: an error
    const char* number;          ///< what ToNumeric gives; null: an error
};

const Row rows[] = {
    {L"", none, nullptr},
    {L"  ", none, nullptr},
    {L"0", 0, "int 0"},
    {L"+5", 5, "int 5"},
    {L"-5", -5, "int -5"},
    {L"- 5", -5, "int -5"},
    {L"+ 5", 5, "int 5"},
    // A sign behind the number, and both signs before it.
    {L"5-", -5, "int -5"},
    {L"5+", 5, "int 5"},
    {L"5 -", -5, "int -5"},
    {L"-5-", none, nullptr},
    {L"--5", none, nullptr},
    {L"+-5", -5, "int -5"},
    {L"-+5", -5, "int -5"},
    // Parentheses.
    {L"(5)", -5, "int -5"},
    {L"( 5 )", -5, "int -5"},
    {L"(-5)", -5, "int -5"},
    {L"(+5)", -5, "int -5"},
    {L"-(5)", -5, "int -5"},
    {L"(5)-", -5, "int -5"},
    {L"(1e3)", -1000, "int -1000"},
    {L"(5", none, nullptr},
    {L"5)", none, nullptr},
    {L"()", none, nullptr},
    {L"((5))", none, nullptr},
    {L"5(", none, nullptr},
    // Thousands.
    {L"1,234", 1234, "int 1234"},
    {L"1,2,3", 123, "int 123"},
    {L"1,,2", 12, "int 12"},
    {L"5,", 5, "int 5"},
    {L",5", none, nullptr},
    {L"1.5,5", 1.55, "double 1.55"},
    {L"1e3,0", 10000, "int 10000"},
    {L"1,e3", 1000, "int 1000"},
    // A decimal point makes a double.
    {L".5", 0.5, "double 0.5"},
    {L"5.", 5, "double 5"},
    {L"12.50", 12.5, "double 12.5"},
    {L"12.0", 12, "double 12"},
    {L"2147483647.0", 2147483647.0, "double 2147483647"},
    {L"1.5e1", 15, "double 15"},
    {L"1,234.5e2", 123450, "double 123450"},
    {L"0.0", 0, "double 0"},
    {L"-0.0", -0.0, "double -0"},
    {L"-0.", -0.0, "double -0"},
    {L"0e0", 0, "int 0"},
    {L"0e5", 0, "int 0"},
    {L"10e-1", 1, "int 1"},
    {L"100e-1", 10, "int 10"},
    {L"15e-1", 1.5, "double 1.5"},
    {L".", none, nullptr},
    {L"-.", none, nullptr},
    {L"1.2.3", none, nullptr},
    // Exponents.
    {L"1e3", 1000, "int 1000"},
    {L"1E3", 1000, "int 1000"},
    {L"1e+3", 1000, "int 1000"},
    {L"1e9", 1e9, "int 1000000000"},
    {L"1e0000000005", 100000, "int 100000"},
    {L"1e-3", 0.001, "double 0.001"},
    {L"1e10", 1e10, "double 10000000000"},
    {L"1e", none, nullptr},
    {L"1e+", none, nullptr},
    {L"1e 3", none, nullptr},
    {L"1 e3", none, nullptr},
    {L"e3", none, nullptr},
    {L"1e3.5", none, nullptr},
    {L"1e5.5", none, nullptr},
    {L"1d3", none, nullptr},
    {L"1e400", none, nullptr},
    {L"1.8e308", none, nullptr},
    {L"1e-400", 0, "double 0"},
    {L"1.7976931348623157e308", 1.7976931348623157e308, "double 1.7976931348623157e+308"},
    {L"5e-324", 5e-324, "double 5e-324"},
    {L"4.9e-324", 5e-324, "double 5e-324"},
    {L"1e308", 1e308, "double 1e+308"},
    // Where an int ends.
    {L"2147483647", 2147483647.0, "int 2147483647"},
    {L"-2147483648", -2147483648.0, "int -2147483648"},
    {L"2147483648", 2147483648.0, "double 2147483648"},
    {L"-2147483649", -2147483649.0, "double -2147483649"},
    {L"3000000000", 3000000000.0, "double 3000000000"},
    {L"2147483647.4", 2147483647.4, "double 2147483647.4"},
    // Hexadecimal and octal.
    {L"&H10", 16, "int 16"},
    {L"&h1f", 31, "int 31"},
    {L"&O17", 15, "int 15"},
    {L"&o17", 15, "int 15"},
    {L"-&H10", 16, "int 16"},
    {L"&H80000000", -2147483648.0, "int -2147483648"},
    {L"&HFFFFFFFF", -1, "int -1"},
    {L"&H100000000", none, nullptr},
    {L"&H", none, nullptr},
    {L"&HG", none, nullptr},
    {L"&O8", none, nullptr},
    {L"&17", none, nullptr},
    // Currency.
    {L"\u00a45", 5, "int 5"},
    {L"5\u00a4", 5, "int 5"},
    {L"5 \u00a4", 5, "int 5"},
    {L"-\u00a45", -5, "int -5"},
    {L"(\u00a45)", -5, "int -5"},
    {L"\u00a4 5", 5, "int 5"},
    {L"\u00a4-5", -5, "int -5"},
    {L"$5", none, nullptr},
    // What is no number.
    {L"+", none, nullptr},
    {L"-", none, nullptr},
    {L"5%", none, nullptr},
    {L"12abc", none, nullptr},
    {L"abc", none, nullptr},
    {L"1_000", none, nullptr},
    {L"inf", none, nullptr},
    {L"nan", none, nullptr},
    {L"Infinity", none, nullptr},
    {L"\uff15", none, nullptr},
    {L"\u0663", none, nullptr},
    // White space.
    {L"  42  ", 42, "int 42"},
    {L"\t\n\v\f\r 42\u00a0\u2003", 42, "int 42"},
    {L"\ufeff42", none, nullptr},
    {L"1 2", none, nullptr},
    {L"1 234", none, nullptr},
    // Read for a number, and for nothing else.
    {L"0x10", none, "int 16"},
    {L"0X1f", none, "int 31"},
    {L"0x1F", none, "int 31"},
    {L"  0x1F  ", none, "int 31"},
    {L"0x7fffffff", none, "int 2147483647"},
    {L"0x80000000", none, "int -2147483648"},
    {L"0xFFFFFFFF", none, "int -1"},
    {L"0x100000000", none, "int -1"}, // saturates, without an error
    {L"0xFFFFFFFFFFFFFFFFFFFF", none, "int -1"},
    {L"0x", none, nullptr},
    {L"0x1G", none, nullptr},
    {L"0x-1", none, nullptr},
    {L"0x 1", none, nullptr},
    {L"-0x10", none, nullptr},
    {L"0b11", none, nullptr},
    {L"007", 7, "int 7"},
};

/// What ToInt makes of the number: half away from zero, the bounds tested first.
std::string Rounded(const std::string& text, double number) {
    if (number > 2147483647.0 || number < -2147483648.0) {
        return "! Data overflow occured while converting a floating point number " + text + " to integer";
    }
    return Utf8(OrvUtils::String::ToStringW(static_cast<int>(std::llround(number))));
}

TEST(TextToNumber, AcceptsWhatANumberMayLookLike) {
    for (const Row& row : rows) {
        const std::string text = Utf8(row.text);
        SCOPED_TRACE("'" + text + "'");
        const Ref<ObjectString> string = Make<ObjectString>(row.text);
        const std::string failure = "! Cannot convert string '" + text + "' to ";
        if (row.value) {
            EXPECT_EQ(ToDouble(*string), Utf8(OrvUtils::String::ToStringW(*row.value)));
            EXPECT_EQ(ToInt(*string), Rounded(text, *row.value));
            EXPECT_EQ(ToBool(*string), *row.value != 0 ? "true" : "false");
        } else {
            EXPECT_EQ(ToDouble(*string), failure + "Double");
            EXPECT_EQ(ToInt(*string), failure + "Integer");
            EXPECT_EQ(ToBool(*string), failure + "Boolean");
        }
        if (row.number != nullptr) {
            EXPECT_EQ(ToNumeric(*string), row.number);
        } else {
            OrvStringT trimmed(row.text);
            EXPECT_EQ(ToNumeric(*string), "! Cannot convert string '" + Utf8(trimmed.Trim()) + "' to a number");
        }
    }
}

TEST(TextToNumber, ReadsHundredsOfDigits) {
    const std::wstring zeros(400, L'0');
    EXPECT_EQ(ToNumeric(*Make<ObjectString>((L"1." + zeros).c_str())), "double 1");
    EXPECT_EQ(ToNumeric(*Make<ObjectString>((zeros + L"7").c_str())), "int 7");
    EXPECT_EQ(ToNumeric(*Make<ObjectString>((L"0." + zeros + L"1e401").c_str())), "double 1");
    EXPECT_EQ(ToNumeric(*Make<ObjectString>((L"12345678901234567890" + std::wstring(280, L'0')).c_str())),
              "double 1.2345678901234568e+299");
}

TEST(TextToNumber, KnowsExponentsBeyondAnyCounter) {
    for (const wchar_t* const text :
         {L"1e4294967297", L"1e2147483648", L"1e99999999999999999999", L"(1e4294967297)", L" 1e9223372036854775809"}) {
        const std::string trimmed = Utf8(OrvStringT(text).Trim());
        EXPECT_EQ(ToNumeric(*Make<ObjectString>(text)), "! Cannot convert string '" + trimmed + "' to a number");
        EXPECT_EQ(ToDouble(*Make<ObjectString>(text)), "! Cannot convert string '" + Utf8(text) + "' to Double");
    }
    EXPECT_EQ(ToNumeric(*Make<ObjectString>(L"1e-99999999999999999999")), "double 0");
    EXPECT_EQ(ToNumeric(*Make<ObjectString>(L"(1.5e-4294967297)")), "double -0");
    EXPECT_EQ(ToNumeric(*Make<ObjectString>(L"0e99999999999")), "int 0");
}

TEST(TextToNumber, TakesNoEndInsideOfATextForItsEnd) {
    for (const OrvStringT& text : {OrvStringT(L"5\0", 2), OrvStringT(L" 5\0006", 4), OrvStringT(L"\0", 1)}) {
        const Ref<ObjectString> string(new ObjectString(text));
        EXPECT_EQ(ToNumeric(*string).rfind("! Cannot convert string '", 0), 0u);
        EXPECT_EQ(ToDouble(*string).rfind("! Cannot convert string '", 0), 0u);
        EXPECT_EQ(ToInt(*string).rfind("! Cannot convert string '", 0), 0u);
        EXPECT_EQ(ToBool(*string).rfind("! Cannot convert string '", 0), 0u);
    }
}

TEST(TextToNumber, ReadsTrueAndFalseInAnyCaseAsBools) {
    for (const wchar_t* const text : {L"true", L"TRUE", L"True", L"tRuE"}) {
        EXPECT_EQ(ToBool(*Make<ObjectString>(text)), "true");
    }
    for (const wchar_t* const text : {L"false", L"FALSE", L"False"}) {
        EXPECT_EQ(ToBool(*Make<ObjectString>(text)), "false");
    }
    // Words are taken as they stand; blanks around a number are skipped.
    EXPECT_EQ(ToBool(*Make<ObjectString>(L" true")), "! Cannot convert string ' true' to Boolean");
    EXPECT_EQ(ToBool(*Make<ObjectString>(L"yes")), "! Cannot convert string 'yes' to Boolean");
    EXPECT_EQ(ToBool(*Make<ObjectString>(L"t")), "! Cannot convert string 't' to Boolean");
    EXPECT_EQ(ToBool(*Make<ObjectString>(L" 0 ")), "false");
}

TEST(TextToNumber, IsOpenToDerivedClasses) {
    class Reader : public ObjectString {
    public:
        using ObjectBase::StringToDouble;
    };
    OrvStringT text(L" 1.5 ");
    double number = 0;
    EXPECT_TRUE(Reader::StringToDouble(text, number, L"Length", nullptr));
    EXPECT_EQ(number, 1.5);
    text = L"long";
    ErrorSlot error;
    EXPECT_FALSE(Reader::StringToDouble(text, number, L"Length", error.Slot()));
    EXPECT_EQ(error.Message(), "Cannot convert string 'long' to Length");
    EXPECT_FALSE(Reader::StringToDouble(text, number, L"Length", nullptr));
}

} // namespace
} // namespace OrvUQL::Tests
