#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <climits>

namespace {

constexpr auto caseless = OrvStringT::CaseInsensitive;

} // namespace

TEST(OrvStringSearch, CompareCaseValues) {
    EXPECT_EQ(OrvStringT::CaseSensitive, 0);
    EXPECT_EQ(OrvStringT::CaseInsensitive, 1);
}

TEST(OrvStringSearch, Find) {
    const OrvStringT text(L"Hello");
    EXPECT_EQ(text.Find(L"l"), 2);
    EXPECT_EQ(text.Find(L"l", 3), 3);
    EXPECT_EQ(text.Find(L"l", 4), -1);
    EXPECT_EQ(text.Find(L"lo"), 3);
    EXPECT_EQ(text.Find(L"Hello"), 0);
    EXPECT_EQ(text.Find(L"Hello!"), -1);
    EXPECT_EQ(text.Find(L"z"), -1);
    EXPECT_EQ(text.Find(L"H", -7), 0);
    EXPECT_EQ(text.Find(L"H", INT_MIN), 0);
    EXPECT_EQ(text.Find(L"o", 5), -1);
    EXPECT_EQ(text.Find(L"o", INT_MAX), -1);
    EXPECT_EQ(text.Find(L"L"), -1);
    EXPECT_EQ(OrvStringT().Find(L"x"), -1);
}

TEST(OrvStringSearch, FindOfTheEmptyText) {
    const OrvStringT text(L"abc");
    EXPECT_EQ(text.Find(L""), 0);
    EXPECT_EQ(text.Find(L"", 2), 2);
    EXPECT_EQ(text.Find(L"", 3), 3);
    EXPECT_EQ(text.Find(L"", 4), -1);
    EXPECT_EQ(text.Find(L"", -1), 0);
    EXPECT_EQ(OrvStringT().Find(L""), 0);
}

TEST(OrvStringSearch, FindIgnoringCase) {
    const OrvStringT text(L"Stra\u00DFe \u00C9t\u00E9");
    EXPECT_EQ(text.Find(L"T", 0, caseless), 1);
    EXPECT_EQ(text.Find(L"\u00E9T\u00C9", 0, caseless), 7);
    EXPECT_EQ(text.Find(L"ss", 0, caseless), -1);
    EXPECT_EQ(text.Find(L"STRA\u00DFE", 0, caseless), 0);
    EXPECT_EQ(text.Find(L"t", 2, caseless), 8);
}

TEST(OrvStringSearch, FindCountsCodeUnits) {
    const OrvStringT text(L"\U0001F600x\U0001F601");
    EXPECT_EQ(text.Find(L"x"), 2);
    EXPECT_EQ(text.Find(L"\U0001F601"), 3);
    EXPECT_EQ(text.Find(L"\xDE00"), 1);
    EXPECT_EQ(OrvStringT(L"a\0b", 3).Find(std::wstring_view(L"\0b", 2)), 1);
}

// What makes the plain search give up: the second part of the pattern fits everywhere, and the first nearly.
TEST(OrvStringSearch, FindBehindManyThatNearlyFit) {
    for (int size = 1; size <= 100; ++size) {
        const OrvStringT pattern = OrvStringT(L'a', size) + L"b";
        OrvStringT text;
        for (int i = 0; i < 30; ++i) {
            text += OrvStringT(L'a', size - 1) + L"b";
        }
        const int length = text.GetLength();
        EXPECT_EQ(text.Find(pattern), -1) << size;
        EXPECT_EQ((text + pattern + pattern).Find(pattern), length) << size;
        EXPECT_EQ((text + pattern + pattern).Find(pattern, length + 1), length + size + 1) << size;
        EXPECT_EQ((text + pattern).Find(OrvStringT(L'A', size) + L"B", 0, caseless), length) << size;
    }
}

TEST(OrvStringSearch, FindTakesLinearTime) {
    // A plain search compares length^2 / 4 units here, which takes minutes.
    constexpr int length = 1'000'000;
    const OrvStringT text(L'a', length);
    const OrvStringT pattern = OrvStringT(L'a', length / 2) + L"b";
    EXPECT_EQ(text.Find(pattern), -1);
    EXPECT_EQ((text + L"b").Find(pattern), length - length / 2);
    EXPECT_EQ(text.Find(pattern, 0, caseless), -1);
    OrvStringT replaced = text + L"b";
    EXPECT_EQ(replaced.Replace(pattern, L"c"), 1);
    EXPECT_EQ(replaced.GetLength(), length - length / 2 + 1);
}

TEST(OrvStringSearch, Compare) {
    const OrvStringT text(L"abc");
    EXPECT_EQ(text.Compare(L"abc"), 0);
    EXPECT_EQ(text.Compare(L"abd"), -1);
    EXPECT_EQ(text.Compare(L"abb"), 1);
    EXPECT_EQ(text.Compare(L"ab"), 1);
    EXPECT_EQ(text.Compare(L"abcd"), -1);
    EXPECT_EQ(text.Compare(L""), 1);
    EXPECT_EQ(OrvStringT().Compare(L""), 0);
    EXPECT_EQ(text.Compare(L"ABC"), 1);
    EXPECT_EQ(text.Compare(L"ABC", caseless), 0);
    EXPECT_EQ(text.Compare(L"ABD", caseless), -1);
    EXPECT_EQ(OrvStringT(L"a\0b", 3).Compare(std::wstring_view(L"a\0c", 3)), -1);
}

TEST(OrvStringSearch, OrderIsByCodeUnit) {
    // By code point the emoji would come last.
    EXPECT_EQ(OrvStringT(L"\U0001F600").Compare(L"\uFFFD"), -1);
    EXPECT_EQ(OrvStringT(L"\uFFFD").Compare(L"\U0001F600"), 1);
    EXPECT_EQ(OrvStringT(L"\u00E9").Compare(L"z"), 1);
    EXPECT_EQ(OrvStringT(L"Z").Compare(L"a"), -1);
}

TEST(OrvStringSearch, CompareWithCodePointsAboveTheBasicPlane) {
    const OrvStringT text(L"a\xD83D\xDE00");
    EXPECT_EQ(text.Compare(L"a\U0001F600"), 0);
    EXPECT_EQ(text.Compare(L"a\U0001F600", caseless), 0);
    EXPECT_EQ(text.Compare(L"a\U0001F601"), -1);
    EXPECT_EQ(text.Compare(L"a\U0001F5FF"), 1);
    EXPECT_EQ(text.Compare(L"a\U0001F600b"), -1);
    EXPECT_EQ(OrvStringT(L"a\xD83D").Compare(L"a\U0001F600"), -1);
    EXPECT_EQ(OrvStringT(L"ab").Compare(L"a\U0001F600"), -1);
}

TEST(OrvStringSearch, CompareNoCase) {
    const auto compared = [](const wchar_t* a, const wchar_t* b) {
        const int result = OrvStringT(a).CompareNoCase(b);
        EXPECT_EQ(OrvStringT(b).CompareNoCase(a), -result);
        return result;
    };
    EXPECT_EQ(compared(L"Length", L"LENGTH"), 0);
    EXPECT_EQ(compared(L"\u00E9", L"\u00C9"), 0);
    EXPECT_EQ(compared(L"\u0131", L"i"), 0);      // dotless i, by its capital
    EXPECT_EQ(compared(L"\u0130", L"i"), 1);      // I with a dot is its own capital
    EXPECT_EQ(compared(L"\u017F", L"S"), 0);      // long s
    EXPECT_EQ(compared(L"\u00B5", L"\u03BC"), 0); // micro sign and mu
    EXPECT_EQ(compared(L"\u00DF", L"ss"), 1);
    EXPECT_EQ(compared(L"_", L"a"), 1); // 005F lies above A, below a
    EXPECT_EQ(compared(L"a", L"B"), -1);
    EXPECT_EQ(compared(L"ab", L"A"), 1);
}
