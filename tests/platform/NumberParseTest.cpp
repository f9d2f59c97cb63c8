#include "platform/NumberReader.h"

#include <gtest/gtest.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <string>
#include <vector>

using namespace OrvUQL::platform;

namespace {

constexpr auto none = NumberKind::None;
constexpr auto isInt = NumberKind::Int;
constexpr auto isDouble = NumberKind::Double;

struct NumberRow {
    std::wstring text;
    double value; ///< for a text that is a number
    NumberKind kind;
};

std::uint64_t Bits(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

std::string Named(const std::wstring& text) { return OrvStringT(text).ToUtf8(); }

/// One way to read numbers: the one that values use, or the library's own where the system can be asked.
struct Reader {
    const char* name;
    bool (*readDouble)(std::wstring_view text, double& value) noexcept;
    NumberKind (*readNumber)(std::wstring_view text, int& intValue, double& doubleValue) noexcept;
};

constexpr Reader readers[] = {{"parsed", ParseDouble, ParseNumber}, {"read", ReadDouble, ReadNumber}};

void ExpectRow(const NumberRow& row, const Reader& reader) {
    SCOPED_TRACE(Named(row.text) + ", " + reader.name);
    double asDouble = 77.5;
    EXPECT_EQ(reader.readDouble(row.text, asDouble), row.kind != none);
    EXPECT_EQ(Bits(asDouble), Bits(row.kind == none ? 77.5 : row.value)) << asDouble;

    int asInt = 77;
    double number = 77.5;
    EXPECT_EQ(reader.readNumber(row.text, asInt, number), row.kind);
    EXPECT_EQ(asInt, row.kind == isInt ? static_cast<int>(row.value) : 77);
    EXPECT_EQ(Bits(number), Bits(row.kind == isDouble ? row.value : 77.5)) << number;
}

void ExpectRows(const std::vector<NumberRow>& rows) {
    for (const NumberRow& row : rows) {
        for (const Reader& reader : readers) {
            ExpectRow(row, reader);
        }
    }
}

void ExpectNoNumbers(const std::vector<std::wstring>& texts) {
    for (const std::wstring& text : texts) {
        ExpectRows({{text, 0, none}});
    }
}

double FromChars(const std::string& text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

} // namespace

TEST(NumberParse, NothingIsNoNumber) { ExpectNoNumbers({L"", L" ", L" \t\r\n ", std::wstring(1, L'\0')}); }

TEST(NumberParse, SignsBefore) {
    ExpectRows({{L"0", 0, isInt},
                {L"+5", 5, isInt},
                {L"-5", -5, isInt},
                {L"- 5", -5, isInt},
                {L"+ 5", 5, isInt},
                {L"+-5", -5, isInt},
                {L"-+5", -5, isInt},
                {L"+ - 5", -5, isInt}});
    ExpectNoNumbers({L"--5", L"++5", L"+-+5", L"+", L"-", L"+-"});
}

TEST(NumberParse, SignsBehind) {
    ExpectRows({{L"5-", -5, isInt},
                {L"5+", 5, isInt},
                {L"5 -", -5, isInt},
                {L"5- ", -5, isInt},
                {L"+5-", -5, isInt},
                {L"-5+", -5, isInt},
                {L"5.-", -5, isDouble}});
    ExpectNoNumbers({L"-5-", L"+5+", L"5-5"});
}

TEST(NumberParse, Parentheses) {
    ExpectRows({{L"(5)", -5, isInt},
                {L"( 5 )", -5, isInt},
                {L"(-5)", -5, isInt},
                {L"(+5)", -5, isInt},
                {L"(1e3)", -1000, isInt},
                {L"-(5)", -5, isInt},
                {L"(5)-", -5, isInt},
                {L"(5) -", -5, isInt},
                {L"(1.5)", -1.5, isDouble},
                {L"(5-)", -5, isInt}});
    ExpectNoNumbers({L"(5", L"5)", L"()", L"((5))", L"5(", L")5(", L"(", L")", L"-(5", L"(-5", L"(5-"});
}

TEST(NumberParse, Separators) {
    ExpectRows({{L"1,234", 1234, isInt},
                {L"1,2,3", 123, isInt},
                {L"1,,2", 12, isInt},
                {L"5,", 5, isInt},
                {L"1.5,5", 1.55, isDouble},
                {L"1,234.5e2", 123450, isDouble},
                {L"0,5", 5, isInt},
                {L"1,.5", 1.5, isDouble},
                {L"1.,5", 1.5, isDouble}});
    ExpectNoNumbers({L",5", L",", L"-,5"});
}

TEST(NumberParse, ADecimalPointMakesADouble) {
    ExpectRows({{L".5", 0.5, isDouble},
                {L"5.", 5, isDouble},
                {L"12.50", 12.5, isDouble},
                {L"12.0", 12, isDouble},
                {L"2147483647.0", 2147483647, isDouble},
                {L"1.5e1", 15, isDouble},
                {L"0.0", 0.0, isDouble},
                {L"-0.0", -0.0, isDouble},
                {L"-0.", -0.0, isDouble},
                {L"2.0", 2, isDouble},
                {L"1.0e3", 1000, isDouble}});
    ExpectNoNumbers({L".", L"-.", L"1.2.3", L"..5", L"5..", L"."});
}

TEST(NumberParse, Exponents) {
    ExpectRows({{L"1e3", 1000, isInt},
                {L"1E3", 1000, isInt},
                {L"1e+3", 1000, isInt},
                {L"1e9", 1e9, isInt},
                {L"1e0000000005", 100000, isInt},
                {L"1e-3", 0.001, isDouble},
                {L"1e10", 1e10, isDouble},
                {L"0e0", 0, isInt},
                {L"0e5", 0, isInt},
                {L"10e-1", 1, isInt},
                {L"100e-1", 10, isInt},
                {L"15e-1", 1.5, isDouble},
                {L"0e-1", 0, isDouble},
                {L"1e00", 1, isInt}});
    ExpectNoNumbers(
        {L"1e", L"1e+", L"1e 3", L"1 e3", L"e3", L"1e3.5", L"1e5.5", L"1d3", L"1e-", L"1ee3", L"1e3e", L".e5"});
}

TEST(NumberParse, OdditiesOfExponentsAreKept) {
    // OLE Automation reads these so: a digit behind a separator belongs to the number, not to the exponent.
    ExpectRows({{L"1e3,0", 10000, isInt},
                {L"1,e3", 1000, isInt},
                {L"1.5e1,5", 15.5, isDouble},
                {L"1e,5", 100000, isInt},
                {L"1e+-3", 0.001, isDouble},
                {L"5--", -5, isInt},
                {L"(5))", -5, isInt},
                {L"5 ,", 5, isInt}});
    ExpectNoNumbers({L"1e3,0e2", L"1e3,5.5"});
    // Of a zero's digits behind a separator all but one are places, and whole numbers are ints.
    ExpectRows({{L"0,0e-1", 0, isDouble},
                {L"0,00e-1", 0, isInt},
                {L"0e-1,00", 0, isInt},
                {L"00,0e-1,0", 0, isInt},
                {L"0e-3,00", 0, isDouble},
                {L"0.0e-1,000", 0, isDouble}});
}

TEST(NumberParse, NegativeZero) {
    double value = 1;
    EXPECT_TRUE(ParseDouble(L"-0", value));
    EXPECT_EQ(Bits(value), Bits(-0.0));
    int number = 1;
    EXPECT_EQ(ParseNumber(L"-0", number, value), isInt);
    EXPECT_EQ(number, 0);
}

TEST(NumberParse, RangeOfDoubles) {
    ExpectRows({{L"1e308", 1e308, isDouble},
                {L"1.7976931348623157e308", 1.7976931348623157e308, isDouble},
                {L"-1.7976931348623158e308", -1.7976931348623157e308, isDouble},
                {L"5e-324", 5e-324, isDouble},
                {L"4.9e-324", 5e-324, isDouble},
                {L"2.4703282292062327e-324", 0, isDouble},
                {L"2.4703282292062328e-324", 5e-324, isDouble},
                {L"1e-400", 0, isDouble},
                {L"-1.0e-400", -0.0, isDouble},
                {L"1e-99999999999999999999", 0, isDouble},
                {L"2.2250738585072014e-308", 2.2250738585072014e-308, isDouble},
                {L"0e99999999999999999999", 0, isInt}});
    ExpectNoNumbers({L"1e400", L"1.8e308", L"1.7976931348623159e308", L"-1e400", L"1e99999999999999999999"});
    ExpectNoNumbers({std::wstring(400, L'9')});
}

TEST(NumberParse, RangeOfInts) {
    ExpectRows({{L"2147483647", 2147483647, isInt},
                {L"-2147483648", -2147483648.0, isInt},
                {L"(2147483648)", -2147483648.0, isInt},
                {L"2147483648-", -2147483648.0, isInt},
                {L"2147483648", 2147483648.0, isDouble},
                {L"-2147483649", -2147483649.0, isDouble},
                {L"3000000000", 3e9, isDouble},
                {L"21474836470e-1", 2147483647, isInt},
                {L"21474836480e-1", 2147483648.0, isDouble},
                {L"2147483647e0", 2147483647, isInt},
                {L"00000000000000000000000000000042", 42, isInt}});
}

TEST(NumberParse, ManyDigits) {
    // Halfway between two doubles, then one digit far behind that decides.
    ExpectRows({{L"9007199254740993", 9007199254740992.0, isDouble},
                {L"9007199254740993.0000000000000000000000000000000001", 9007199254740994.0, isDouble},
                {std::wstring(100, L'1'), FromChars(std::string(100, '1')), isDouble},
                {std::wstring(309, L'1'), FromChars(std::string(309, '1')), isDouble}});
    for (const std::size_t zeros : {100u, 790u, 800u, 5000u}) {
        const std::wstring tail = L"." + std::wstring(zeros, L'0');
        ExpectRows({{L"9007199254740993" + tail + L"1", 9007199254740994.0, isDouble},
                    {L"9007199254740993" + tail, 9007199254740992.0, isDouble},
                    {L"0" + tail + L"1e" + std::to_wstring(zeros), 0.1, isDouble},
                    {std::wstring(zeros, L'0') + L"7", 7, isInt},
                    {L"3" + std::wstring(zeros, L'0') + L"e-" + std::to_wstring(zeros), 3, isInt}});
    }
}

TEST(NumberParse, HexadecimalAndOctal) {
    ExpectRows({{L"&H10", 16, isInt},
                {L"&h10", 16, isInt},
                {L"&O17", 15, isInt},
                {L"&o17", 15, isInt},
                {L"-&H10", 16, isInt},
                {L"&H10-", 16, isInt},
                {L"(&H10)", 16, isInt},
                {L"&HaBc", 0xABC, isInt},
                {L"&H1e3", 0x1E3, isInt},
                {L"&H7FFFFFFF", 2147483647, isInt},
                {L"&H80000000", -2147483648.0, isInt},
                {L"&HFFFFFFFF", -1, isInt},
                {L"&O37777777777", -1, isInt},
                {L"&H0000000000010", 16, isInt},
                {L" &H10 ", 16, isInt}});
    ExpectNoNumbers({L"&H", L"&HG", L"&O8", L"&17", L"&", L"&H100000000", L"&O40000000000", L"&HFFFFFFFFFFFFFFFFF",
                     L"& H1", L"&H 10", L"&H1,0", L"&H1.", L"\u00A4&H10", L"&H10\u00A4", L"0x10", L"(&H10", L"5&"});
}

TEST(NumberParse, CurrencySign) {
    ExpectRows({{L"\u00A45", 5, isInt},
                {L"5\u00A4", 5, isInt},
                {L"5 \u00A4", 5, isInt},
                {L"\u00A4 5", 5, isInt},
                {L"-\u00A45", -5, isInt},
                {L"\u00A4-5", -5, isInt},
                {L"(\u00A45)", -5, isInt},
                {L"\u00A4.5", 0.5, isDouble},
                {L"5e1\u00A4", 50, isInt}});
    ExpectNoNumbers({L"\u00A4", L"\u00A4\u00A45", L"\u00A45e1"});
}

TEST(NumberParse, NoNumbers) {
    ExpectNoNumbers({L"$5", L"5%", L"12abc", L"abc", L"1_000", L"inf", L"nan", L"Infinity", L"-inf", L"\uFF15",
                     L"\u0663", L"0x1F", L"'5'", L"5f", L"1 2", L"1 234", L"1e3 4"});
    ExpectNoNumbers({std::wstring(L"5\0", 2), std::wstring(L"5\0006", 3)});
}

TEST(NumberParse, WhiteSpaceAround) {
    for (const wchar_t space :
         std::wstring_view(L"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2003\u200A\u2028\u2029\u202F\u205F\u3000")) {
        const std::wstring spaces(2, space);
        ExpectRows({{spaces + L"42", 42, isInt},
                    {L"42" + spaces, 42, isInt},
                    {spaces + L"-" + spaces + L"4.5" + spaces, -4.5, isDouble}});
        ExpectNoNumbers({L"4" + spaces + L"2", spaces});
    }
    ExpectNoNumbers({L"\uFEFF5", L"5\u200B", L"\u180E5", L"\u001F5"});
}

TEST(NumberParse, LikeFromCharsForGeneratedTexts) {
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 200'000; ++i) {
        std::string text;
        const int digits = 1 + static_cast<int>(random() % (i % 16 == 0 ? 120 : 20));
        const int point = static_cast<int>(random() % 40);
        for (int d = 0; d < digits; ++d) {
            text += d == point ? "." : "";
            text += static_cast<char>('0' + random() % 10);
        }
        text += point < digits ? "" : ".";
        if (random() % 4 != 0) {
            text += "e" + std::to_string(static_cast<int>(random() % 700) - 360);
        }
        double expected = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), expected);
        const bool zeros = text.find_first_of("123456789") >= text.find('e');
        const bool overflow = result.ec != std::errc() && !zeros && text.find("e-") == std::string::npos;
        double value = 0;
        ASSERT_EQ(ParseDouble(OrvStringT::FromUtf8(text), value), !overflow) << text;
        if (result.ec == std::errc()) {
            ASSERT_EQ(Bits(value), Bits(expected)) << text;
        } else if (!overflow) {
            ASSERT_EQ(Bits(value), Bits(0.0)) << text;
        }
    }
}

TEST(NumberParse, EveryIntComesBack) {
    std::mt19937 random(7);
    for (int i = 0; i < 200'000; ++i) {
        const int expected = static_cast<int>(random() >> random() % 32);
        const std::wstring text = std::to_wstring(expected);
        int value = 0;
        double number = 0;
        ASSERT_EQ(ParseNumber(text, value, number), isInt) << expected;
        ASSERT_EQ(value, expected);
        ASSERT_TRUE(ParseDouble(text, number));
        ASSERT_EQ(number, expected);
    }
}

TEST(NumberParse, NoLocaleIsAsked) {
    struct CommaPoint : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    const std::string cLocale = std::setlocale(LC_ALL, nullptr);
    for (const char* const name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            break;
        }
    }
    ExpectRows({{L"1.5", 1.5, isDouble}, {L"1,5", 15, isInt}});
    std::setlocale(LC_ALL, cLocale.c_str());
    std::locale::global(before);
}

// ---- wcstoul with 32 bits ----

namespace {

struct UnsignedRow {
    const wchar_t* text;
    int base;
    std::uint32_t value;
    std::size_t used;
};

} // namespace

TEST(ParseUnsigned, Rows) {
    const std::vector<UnsignedRow> rows = {
        {L"", 10, 0, 0},
        {L"12abc", 10, 12, 2},
        {L"abc", 10, 0, 0},
        {L"-5", 10, 4294967291u, 2},
        {L"+5", 10, 5, 2},
        {L"+-5", 10, 0, 0},
        {L"- 5", 10, 0, 0},
        {L" \t\n\v\f\r42", 10, 42, 8},
        {L"\u00A042", 10, 0, 0},
        {L"4294967295", 10, 4294967295u, 10},
        {L"4294967296", 10, 4294967295u, 10},
        {L"99999999999999999999999999", 10, 4294967295u, 26},
        {L"-4294967295", 10, 1, 11},
        {L"-99999999999", 10, 4294967295u, 12}, // saturated, not negated
        {L"0x1F", 0, 31, 4},
        {L"0X1f", 0, 31, 4},
        {L"0x1F", 16, 31, 4},
        {L"-0x1", 0, 4294967295u, 4},
        {L"0xFFFFFFFF", 0, 4294967295u, 10},
        {L"0x100000000", 0, 4294967295u, 11},
        {L"0x1G", 0, 1, 3},
        {L"0x", 0, 0, 1}, // a zero, and an x that is not read
        {L"0x", 16, 0, 1},
        {L"0xg", 16, 0, 1},
        {L"0x1F", 10, 0, 1},
        {L"0x1F", 36, 0x21u * 36 * 36 + 1 * 36 + 15, 4}, // x is a digit there
        {L"017", 0, 15, 3},
        {L"08", 0, 0, 1},
        {L"0", 0, 0, 1},
        {L"9", 0, 9, 1},
        {L"017", 10, 17, 3},
        {L"ff", 16, 255, 2},
        {L"FF", 16, 255, 2},
        {L"fg", 16, 15, 1},
        {L"1012", 2, 5, 3},
        {L"0b11", 2, 0, 1},
        {L"zz", 36, 1295, 2},
        {L"z", 35, 0, 0},
        {L"7", 1, 0, 0},
        {L"7", -1, 0, 0},
        {L"7", 37, 0, 0},
        {L"\uFF15", 10, 0, 0},
    };
    for (const UnsignedRow& row : rows) {
        std::size_t used = 99;
        EXPECT_EQ(ParseUnsigned(row.text, row.base, used), row.value) << Named(row.text) << " base " << row.base;
        EXPECT_EQ(used, row.used) << Named(row.text) << " base " << row.base;
    }
}

TEST(ParseUnsigned, StopsAtTheEndOfTheView) {
    std::size_t used = 0;
    EXPECT_EQ(ParseUnsigned(std::wstring_view(L"0x1F").substr(0, 2), 0, used), 0u);
    EXPECT_EQ(used, 1u);
    EXPECT_EQ(ParseUnsigned(std::wstring_view(L"123").substr(0, 2), 10, used), 12u);
    EXPECT_EQ(used, 2u);
    EXPECT_EQ(ParseUnsigned(std::wstring_view(L"1\0002", 3), 10, used), 1u);
    EXPECT_EQ(used, 1u);
}
