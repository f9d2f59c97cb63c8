#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>

namespace {

/// A view that claims more units than any text can have; nobody may read it.
std::wstring_view TooLong() {
    static const wchar_t unit = L'x';
    return std::wstring_view(&unit, static_cast<std::size_t>(INT_MAX) + 1);
}

} // namespace

TEST(OrvStringChange, Append) {
    OrvStringT text;
    text.Append(L"ab").Append(L'c').Append(OrvStringT(L"de")).Append(std::wstring_view(L"fg"));
    text += L"h";
    text += L'i';
    text += OrvStringT(L"j");
    text += std::wstring_view(L"k");
    EXPECT_EQ(text, L"abcdefghijk");
    text += static_cast<const wchar_t*>(nullptr);
    text += OrvStringT();
    EXPECT_EQ(text.GetLength(), 11);
    EXPECT_EQ(text.GetString()[11], L'\0');
}

TEST(OrvStringChange, AppendKeepsNul) {
    OrvStringT text(L"a");
    text += L'\0';
    text += std::wstring_view(L"\0b", 2);
    ASSERT_EQ(text.GetLength(), 4);
    EXPECT_EQ(text, std::wstring_view(L"a\0\0b", 4));
}

TEST(OrvStringChange, AppendOfPartsOfItself) {
    OrvStringT text(L"abc");
    for (int i = 0; i < 12; ++i) { // through several buffers
        const std::wstring expected = std::wstring(text.View()) + std::wstring(text.View().substr(1));
        text += text.View().substr(1);
        ASSERT_EQ(text, expected);
    }
    OrvStringT twice(L"xy");
    twice += twice;
    twice += twice.GetString();
    EXPECT_EQ(twice, L"xyxyxyxy");
}

TEST(OrvStringChange, AppendToAnEmptyTextShares) {
    const OrvStringT text(L"some text");
    OrvStringT other;
    other += text;
    EXPECT_EQ(other.GetString(), text.GetString());
    EXPECT_EQ(other.Append(L'!'), L"some text!");
    EXPECT_EQ(text, L"some text");
}

TEST(OrvStringChange, AMillionAppendsMoveTheTextAFewTimes) {
    constexpr int count = 1'000'000;
    OrvStringT text;
    const wchar_t* where = text.GetString();
    int moves = 0;
    for (int i = 0; i < count; ++i) {
        text += static_cast<wchar_t>(L'a' + i % 26);
        moves += text.GetString() != where ? 1 : 0;
        where = text.GetString();
    }
    ASSERT_EQ(text.GetLength(), count);
    EXPECT_LT(moves, 50); // growing by half each time: log 1000000 to the base 1.5 is 34
    EXPECT_EQ(text[0], L'a');
    EXPECT_EQ(text[count - 1], static_cast<wchar_t>(L'a' + (count - 1) % 26));
    EXPECT_EQ(text[count], L'\0');
}

TEST(OrvStringChange, AChainOfAdditionsGrowsInPlace) {
    constexpr int count = 100'000;
    OrvStringT text(L"-");
    const wchar_t* where = text.GetString();
    int moves = 0;
    for (int i = 0; i < count; ++i) {
        text = std::move(text) + L"ab";
        moves += text.GetString() != where ? 1 : 0;
        where = text.GetString();
    }
    EXPECT_EQ(text.GetLength(), 1 + 2 * count);
    EXPECT_LT(moves, 50);
}

TEST(OrvStringChange, ReserveKeepsTheTextInPlace) {
    OrvStringT text(L"ab");
    text.Reserve(1000);
    EXPECT_EQ(text, L"ab");
    const wchar_t* const where = text.GetString();
    for (int i = 0; i < 998; ++i) {
        text += L'x';
    }
    EXPECT_EQ(text.GetString(), where);
    text.Reserve(10);
    text.Reserve(-1);
    text.Reserve(INT_MIN);
    EXPECT_EQ(text.GetString(), where);
    EXPECT_EQ(text.GetLength(), 1000);
}

TEST(OrvStringChange, ReserveOfASharedTextMakesItPrivate) {
    const OrvStringT kept(L"abc");
    OrvStringT text = kept;
    text.Reserve(1);
    EXPECT_EQ(text, L"abc");
    EXPECT_NE(text.GetString(), kept.GetString());
}

TEST(OrvStringChange, ClearKeepsAPrivateBuffer) {
    OrvStringT text(L"something");
    const wchar_t* const where = text.GetString();
    text.Clear();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetString()[0], L'\0');
    text += L"short";
    EXPECT_EQ(text.GetString(), where);
    EXPECT_EQ(text, L"short");
    OrvStringT shared = text;
    shared.Clear();
    EXPECT_TRUE(shared.IsEmpty());
    EXPECT_EQ(text, L"short");
}

TEST(OrvStringChange, DeleteClamps) {
    const auto deleted = [](int start, int count) {
        OrvStringT text(L"Hello");
        const int length = text.Delete(start, count);
        EXPECT_EQ(length, text.GetLength());
        EXPECT_EQ(text.GetString()[length], L'\0');
        OrvStringT shared(L"Hello");
        const OrvStringT kept = shared;
        shared.Delete(start, count);
        EXPECT_EQ(shared, text);
        EXPECT_EQ(kept, L"Hello");
        return text;
    };
    EXPECT_EQ(deleted(0, 1), L"ello");
    EXPECT_EQ(deleted(1, 2), L"Hlo");
    EXPECT_EQ(deleted(4, 1), L"Hell");
    EXPECT_EQ(deleted(4, 9), L"Hell");
    EXPECT_EQ(deleted(5, 1), L"Hello");
    EXPECT_EQ(deleted(6, 1), L"Hello");
    EXPECT_EQ(deleted(0, 5), L"");
    EXPECT_EQ(deleted(0, INT_MAX), L"");
    EXPECT_EQ(deleted(1, INT_MAX), L"H");
    EXPECT_EQ(deleted(-3, 1), L"ello");
    EXPECT_EQ(deleted(INT_MIN, 1), L"ello");
    EXPECT_EQ(deleted(1, 0), L"Hello");
    EXPECT_EQ(deleted(1, -1), L"Hello");
    EXPECT_EQ(deleted(INT_MAX, INT_MAX), L"Hello");
    OrvStringT text(L"Hello");
    EXPECT_EQ(text.Delete(1), 4); // one unit unless told otherwise
    EXPECT_EQ(text, L"Hllo");
}

TEST(OrvStringChange, InsertClamps) {
    const auto inserted = [](int index) {
        OrvStringT text(L"ac");
        EXPECT_EQ(text.Insert(index, L"b"), 3);
        return text;
    };
    EXPECT_EQ(inserted(0), L"bac");
    EXPECT_EQ(inserted(1), L"abc");
    EXPECT_EQ(inserted(2), L"acb");
    EXPECT_EQ(inserted(3), L"acb");
    EXPECT_EQ(inserted(INT_MAX), L"acb");
    EXPECT_EQ(inserted(-1), L"bac");
    EXPECT_EQ(inserted(INT_MIN), L"bac");
    OrvStringT text(L"ac");
    EXPECT_EQ(text.Insert(1, L""), 2);
    EXPECT_EQ(text, L"ac");
}

TEST(OrvStringChange, InsertOfItselfAndInPlace) {
    OrvStringT text(L"abc");
    text.Reserve(100);
    const wchar_t* const where = text.GetString();
    text.Insert(1, L"XY");
    EXPECT_EQ(text.GetString(), where);
    EXPECT_EQ(text, L"aXYbc");
    text.Insert(2, text);
    EXPECT_EQ(text, L"aXaXYbcYbc");
    text.Insert(0, text.View().substr(8));
    EXPECT_EQ(text, L"bcaXaXYbcYbc");
}

TEST(OrvStringChange, Replace) {
    const auto replaced = [](const wchar_t* text, const wchar_t* oldText, const wchar_t* newText, int expected,
                             OrvStringT::ECompareCase compareCase = OrvStringT::CaseSensitive) {
        OrvStringT result(text);
        EXPECT_EQ(result.Replace(oldText, newText, compareCase), expected) << oldText;
        return result;
    };
    EXPECT_EQ(replaced(L"a,b,c", L",", L";", 2), L"a;b;c");
    EXPECT_EQ(replaced(L"a,b,c", L",", L"", 2), L"abc");
    EXPECT_EQ(replaced(L"a,b,c", L",", L" and ", 2), L"a and b and c");
    EXPECT_EQ(replaced(L"aaaa", L"aa", L"a", 2), L"aa"); // from the left, without overlap, and not again
    EXPECT_EQ(replaced(L"aaa", L"aa", L"b", 1), L"ba");
    EXPECT_EQ(replaced(L"abc", L"x", L"y", 0), L"abc");
    EXPECT_EQ(replaced(L"abc", L"", L"y", 0), L"abc");
    EXPECT_EQ(replaced(L"", L"x", L"y", 0), L"");
    EXPECT_EQ(replaced(L"abc", L"abc", L"", 1), L"");
    EXPECT_EQ(replaced(L"Hello", L"L", L"x", 0), L"Hello");
    EXPECT_EQ(replaced(L"Hello", L"L", L"x", 2, OrvStringT::CaseInsensitive), L"Hexxo");
    EXPECT_EQ(replaced(L"\u00C9\u00E9e", L"\u00E9", L"-", 2, OrvStringT::CaseInsensitive), L"--e");
}

TEST(OrvStringChange, ReplaceWithPartsOfItself) {
    OrvStringT text(L"a-b");
    EXPECT_EQ(text.Replace(text.View().substr(1, 1), text), 1);
    EXPECT_EQ(text, L"aa-bb");
}

TEST(OrvStringChange, ReplaceThatFindsNothingKeepsTheBuffer) {
    const OrvStringT kept(L"abc");
    OrvStringT text = kept;
    EXPECT_EQ(text.Replace(L"x", L"y"), 0);
    EXPECT_EQ(text.GetString(), kept.GetString());
}

TEST(OrvStringChange, ReplaceOfEveryUnitOfALongText) {
    constexpr int count = 1'000'000;
    OrvStringT text(L'a', count);
    EXPECT_EQ(text.Replace(L"a", L"bc"), count);
    ASSERT_EQ(text.GetLength(), 2 * count);
    EXPECT_EQ(text.Left(4), L"bcbc");
    EXPECT_EQ(text.Right(3), L"cbc");
    EXPECT_EQ(text.Replace(L"b", L""), count);
    EXPECT_EQ(text, OrvStringT(L'c', count));
}

TEST(OrvStringChange, CaseMapping) {
    OrvStringT text(L"Gr\u00FC\u00DFe, \u0131\u017F!");
    text.MakeUpper();
    EXPECT_EQ(text, L"GR\u00DC\u00DFE, IS!"); // sharp s has no single capital, so the length stays
    text.MakeLower();
    EXPECT_EQ(text, L"gr\u00FC\u00DFe, is!");
    EXPECT_EQ(text.GetLength(), 10);
}

TEST(OrvStringChange, CaseMappingThatChangesNothingKeepsTheBuffer) {
    const OrvStringT kept(L"ABC 123");
    OrvStringT text = kept;
    EXPECT_EQ(text.MakeUpper().GetString(), kept.GetString());
    const OrvStringT lower(L"abc 123");
    text = lower;
    EXPECT_EQ(text.MakeLower().GetString(), lower.GetString());
}

TEST(OrvStringChange, TrimOfWhiteSpace) {
    const wchar_t* const text = L" \t\n\v\f\r\u00A0\u1680\u2000\u200A\u2028\u2029\u202F\u205F\u3000a b\u3000\r ";
    EXPECT_EQ(OrvStringT(text).Trim(), L"a b");
    EXPECT_EQ(OrvStringT(text).TrimLeft(), L"a b\u3000\r ");
    EXPECT_EQ(OrvStringT(L"  a b\u3000\r ").TrimRight(), L"  a b");
    EXPECT_EQ(OrvStringT(L" \t ").Trim(), L"");
    EXPECT_EQ(OrvStringT(L" \t ").TrimLeft(), L"");
    EXPECT_EQ(OrvStringT(L" \t ").TrimRight(), L"");
    EXPECT_EQ(OrvStringT().Trim(), L"");
    for (const wchar_t* const kept : {L"\u200B", L"\uFEFF", L"\u180E", L"\u0085", L"\u001F"}) {
        EXPECT_EQ(OrvStringT(kept).Trim(), kept);
    }
}

TEST(OrvStringChange, TrimOfASet) {
    EXPECT_EQ(OrvStringT(L"xxhixy").Trim(L"xy"), L"hi");
    EXPECT_EQ(OrvStringT(L"xxhixy").TrimLeft(L"xy"), L"hixy");
    EXPECT_EQ(OrvStringT(L"xxhixy").TrimRight(L"xy"), L"xxhi");
    EXPECT_EQ(OrvStringT(L"xyx").Trim(L"xy"), L"");
    EXPECT_EQ(OrvStringT(L" a ").Trim(L""), L" a ");
    EXPECT_EQ(OrvStringT(L"Xa").Trim(L"x"), L"Xa"); // case counts
    EXPECT_EQ(OrvStringT(L"\0a\0", 3).Trim(std::wstring_view(L"\0", 1)), L"a");
    EXPECT_EQ(OrvStringT(L"\U0001F600a").Trim(L"\U0001F600"), L"a");
}

TEST(OrvStringChange, TrimThatCutsNothingKeepsTheBuffer) {
    const OrvStringT kept(L"a b");
    OrvStringT text = kept;
    EXPECT_EQ(text.Trim().GetString(), kept.GetString());
    EXPECT_EQ(text.Trim(L"x").GetString(), kept.GetString());
}

TEST(OrvStringChange, TooLongIsAnErrorAndLeavesTheText) {
    OrvStringT text(L"kept");
    EXPECT_THROW(text.Append(TooLong()), std::length_error);
    EXPECT_THROW(text += TooLong(), std::length_error);
    EXPECT_THROW(text.Insert(0, TooLong()), std::length_error);
    EXPECT_THROW(OrvStringT{TooLong()}, std::length_error);
    EXPECT_EQ(text, L"kept");
}

TEST(OrvStringChange, ReplacementThatWouldBeTooLongIsAnErrorAndLeavesTheText) {
    OrvStringT text(L'a', 1 << 16);
    const OrvStringT replacement(L'b', 1 << 15);
    EXPECT_THROW(text.Replace(L"a", replacement), std::length_error); // 2^31 units, one too many
    EXPECT_EQ(text, OrvStringT(L'a', 1 << 16));
}
