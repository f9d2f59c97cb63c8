#include "platform/CaseMap.h"

#include <gtest/gtest.h>

#include <vector>

using namespace OrvUQL::platform;

namespace {

struct CaseRow {
    wchar_t unit;
    wchar_t upper;
    wchar_t lower;
};

} // namespace

TEST(CaseMap, Mappings) {
    const std::vector<CaseRow> rows = {
        {L'a', L'A', L'a'},       {L'Z', L'Z', L'z'},       {L'@', L'@', L'@'}, {L'[', L'[', L'['},
        {L'`', L'`', L'`'},       {L'{', L'{', L'{'},       {L'0', L'0', L'0'}, {L'\0', L'\0', L'\0'},
        {0x7F, 0x7F, 0x7F},       {0xC9, 0xC9, 0xE9},       {0xE9, 0xC9, 0xE9}, // E with acute
        {0xDF, 0xDF, 0xDF},                                                     // sharp s: no single capital
        {0x1E9E, 0x1E9E, 0xDF},                                                 // capital sharp s
        {0x0131, L'I', 0x0131},                                                 // dotless i
        {0x0130, 0x0130, L'i'},                                                 // I with a dot
        {0x017F, L'S', 0x017F},                                                 // long s
        {0xB5, 0x039C, 0xB5},                                                   // micro sign: capital mu
        {0xFF, 0x0178, 0xFF},                                                   // y with diaeresis
        {0xD7, 0xD7, 0xD7},       {0xF7, 0xF7, 0xF7},       // times and divided by lie among the letters
        {0x0391, 0x0391, 0x03B1}, {0x03C2, 0x03A3, 0x03C2}, // final sigma
        {0x0416, 0x0416, 0x0436}, {0x0450, 0x0400, 0x0450}, // Cyrillic
        {0x01C4, 0x01C4, 0x01C6}, {0x01C5, 0x01C4, 0x01C6}, // DZ with caron, its title case
        {0x01C6, 0x01C4, 0x01C6},                           //
        {0x212A, 0x212A, L'k'},   {0x2126, 0x2126, 0x03C9}, // Kelvin and Ohm signs
        {0x2170, 0x2160, 0x2170}, {0x24D0, 0x24B6, 0x24D0}, // Roman numeral, circled a
        {0x10D0, 0x1C90, 0x10D0}, {0x13A0, 0x13A0, 0xAB70}, // Georgian, Cherokee
        {0xAB70, 0x13A0, 0xAB70}, {0xFF41, 0xFF21, 0xFF41}, // Cherokee, full-width a
        {0xFB00, 0xFB00, 0xFB00}, {0x1F80, 0x1F88, 0x1F80}, // ligature ff, Greek with iota below
        {0xA64B, 0xA64A, 0xA64B}, {0x1C88, 0xA64A, 0x1C88}, // monograph uk
        {0xD83D, 0xD83D, 0xD83D}, {0xDE00, 0xDE00, 0xDE00}, // surrogates
        {0x4E2D, 0x4E2D, 0x4E2D}, {0xFFFF, 0xFFFF, 0xFFFF},
    };
    for (const CaseRow& row : rows) {
        EXPECT_EQ(ToUpperUnit(row.unit), row.upper) << std::hex << static_cast<unsigned>(row.unit);
        EXPECT_EQ(ToLowerUnit(row.unit), row.lower) << std::hex << static_cast<unsigned>(row.unit);
    }
}

TEST(CaseMap, MappingsStayWithinOneUnitAndAreStable) {
    int letters = 0;
    for (int code = 0; code <= 0xFFFF; ++code) {
        const auto unit = static_cast<wchar_t>(code);
        const wchar_t upper = ToUpperUnit(unit);
        const wchar_t lower = ToLowerUnit(unit);
        ASSERT_LE(static_cast<unsigned>(upper), 0xFFFFu);
        ASSERT_LE(static_cast<unsigned>(lower), 0xFFFFu);
        ASSERT_EQ(ToUpperUnit(upper), upper) << std::hex << code;
        ASSERT_EQ(ToLowerUnit(lower), lower) << std::hex << code;
        letters += upper != unit || lower != unit ? 1 : 0;
    }
    EXPECT_GT(letters, 2000);
}

TEST(CaseMap, WhatIsNoCodeUnitStays) {
    if (sizeof(wchar_t) > 2) {
        EXPECT_EQ(ToUpperUnit(static_cast<wchar_t>(0x10428)), static_cast<wchar_t>(0x10428));
        EXPECT_EQ(ToLowerUnit(static_cast<wchar_t>(-1)), static_cast<wchar_t>(-1));
        EXPECT_FALSE(IsWhiteSpace(static_cast<wchar_t>(0x10020)));
    }
}

TEST(CaseMap, WhiteSpace) {
    const std::wstring_view spaces = L"\t\n\v\f\r \u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008"
                                     L"\u2009\u200A\u2028\u2029\u202F\u205F\u3000";
    int found = 0;
    for (int code = 0; code <= 0xFFFF; ++code) {
        const auto unit = static_cast<wchar_t>(code);
        const bool expected = spaces.find(unit) != std::wstring_view::npos;
        ASSERT_EQ(IsWhiteSpace(unit), expected) << std::hex << code;
        found += expected ? 1 : 0;
    }
    EXPECT_EQ(found, 24);
}

TEST(CaseMap, EqualsIgnoreCase) {
    EXPECT_TRUE(EqualsIgnoreCase(L"Length", L"lENGTH"));
    EXPECT_TRUE(EqualsIgnoreCase(L"", L""));
    EXPECT_FALSE(EqualsIgnoreCase(L"abc", L"ab"));
    EXPECT_FALSE(EqualsIgnoreCase(L"ab", L"abc"));
    EXPECT_TRUE(EqualsIgnoreCase(L"\u00E9\u017F\u0131", L"\u00C9sI"));
    EXPECT_FALSE(EqualsIgnoreCase(L"\u0130", L"i"));
    EXPECT_FALSE(EqualsIgnoreCase(L"@", L"`"));
}

TEST(CaseMap, EqualsIgnoreCaseAscii) {
    EXPECT_TRUE(EqualsIgnoreCaseAscii(L"help", L"HeLP"));
    EXPECT_FALSE(EqualsIgnoreCaseAscii(L"help", L"hel"));
    EXPECT_FALSE(EqualsIgnoreCaseAscii(L"\u017F", L"s"));
    EXPECT_FALSE(EqualsIgnoreCaseAscii(L"\u00E9", L"\u00C9"));
    EXPECT_TRUE(EqualsIgnoreCaseAscii(L"\u00E9", L"\u00E9"));
    EXPECT_FALSE(EqualsIgnoreCaseAscii(L"[", L"{"));
}

TEST(CaseMap, CompareIgnoreCase) {
    EXPECT_EQ(CompareIgnoreCase(L"abc", L"ABC"), 0);
    EXPECT_EQ(CompareIgnoreCase(L"abc", L"ABD"), -1);
    EXPECT_EQ(CompareIgnoreCase(L"abd", L"ABC"), 1);
    EXPECT_EQ(CompareIgnoreCase(L"ab", L"ABC"), -1);
    EXPECT_EQ(CompareIgnoreCase(L"_", L"a"), 1); // the order is that of the capitals
    EXPECT_EQ(CompareIgnoreCase(L"", L""), 0);
}
