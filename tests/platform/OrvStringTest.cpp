#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <type_traits>
#include <utility>

namespace {

constexpr bool wideUnits = sizeof(wchar_t) > 2;

OrvStringT Emoji() { return OrvStringT(L"\xD83D\xDE00"); }

} // namespace

TEST(OrvString, IsOnePointer) {
    EXPECT_EQ(sizeof(OrvStringT), sizeof(void*));
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<OrvStringT>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<OrvStringT>);
    EXPECT_TRUE(std::is_nothrow_copy_assignable_v<OrvStringT>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<OrvStringT>);
}

TEST(OrvString, DefaultIsEmptyAndTerminated) {
    const OrvStringT text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_EQ(text.GetString()[0], L'\0');
}

TEST(OrvString, FromPointer) {
    const OrvStringT text(L"abc");
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(text[0], L'a');
    EXPECT_EQ(text[2], L'c');
    EXPECT_EQ(text[3], L'\0');
    EXPECT_EQ(text, L"abc");
}

TEST(OrvString, FromNullIsEmpty) {
    const wchar_t* const none = nullptr;
    EXPECT_TRUE(OrvStringT(none).IsEmpty());
    EXPECT_TRUE(OrvStringT(none, 5).IsEmpty());
    EXPECT_TRUE(OrvStringT(std::wstring_view()).IsEmpty());
}

TEST(OrvString, FromPointerAndLengthKeepsNul) {
    const OrvStringT text(L"a\0b", 3);
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(text[1], L'\0');
    EXPECT_EQ(text[2], L'b');
    EXPECT_TRUE(OrvStringT(L"abc", 0).IsEmpty());
    EXPECT_TRUE(OrvStringT(L"abc", -1).IsEmpty());
}

TEST(OrvString, FromRepeatedUnit) {
    EXPECT_EQ(OrvStringT(L'x', 3), L"xxx");
    EXPECT_TRUE(OrvStringT(L'x', 0).IsEmpty());
    EXPECT_TRUE(OrvStringT(L'x', -3).IsEmpty());
    EXPECT_EQ(OrvStringT(L'\0', 1).GetLength(), 1);
}

TEST(OrvString, CodePointsAboveTheBasicPlaneAreSplitWhereTheyEnter) {
    const OrvStringT expected = OrvStringT(L"a") + Emoji() + L"b";
    EXPECT_EQ(expected.GetLength(), 4);
    EXPECT_EQ(OrvStringT(L"a\U0001F600b"), expected);
    EXPECT_EQ(OrvStringT(L"a\U0001F600b").GetLength(), 4);
    EXPECT_EQ(OrvStringT(std::wstring_view(L"a\U0001F600b")), expected);
    OrvStringT appended(L"a");
    appended += L"\U0001F600";
    appended += L'b';
    EXPECT_EQ(appended, expected);
    OrvStringT inserted(L"ab");
    EXPECT_EQ(inserted.Insert(1, L"\U0001F600"), 4);
    EXPECT_EQ(inserted, expected);
    OrvStringT replaced(L"axb");
    EXPECT_EQ(replaced.Replace(L"x", L"\U0001F600"), 1);
    EXPECT_EQ(replaced, expected);
}

TEST(OrvString, LastCodePointIsSplitAndWhatLiesAboveIsReplaced) {
    const OrvStringT last(L"\U0010FFFF");
    ASSERT_EQ(last.GetLength(), 2);
    EXPECT_EQ(last[0], 0xDBFF);
    EXPECT_EQ(last[1], 0xDFFF);
    if constexpr (wideUnits) {
        const wchar_t elements[] = {static_cast<wchar_t>(0x110000), L'a', static_cast<wchar_t>(-1), L'\0'};
        const OrvStringT text(elements);
        ASSERT_EQ(text.GetLength(), 3);
        EXPECT_EQ(text[0], 0xFFFD);
        EXPECT_EQ(text[2], 0xFFFD);
        OrvStringT unit;
        unit += static_cast<wchar_t>(0x1F600);
        EXPECT_EQ(unit, Emoji());
        EXPECT_EQ(OrvStringT(static_cast<wchar_t>(0x1F600), 2), Emoji() + Emoji());
    }
}

TEST(OrvString, UnpairedSurrogatesStay) {
    const wchar_t units[] = {0xDE00, 0xD83D, L'\0'};
    const OrvStringT text(units);
    ASSERT_EQ(text.GetLength(), 2);
    EXPECT_EQ(text[0], 0xDE00);
    EXPECT_EQ(text[1], 0xD83D);
}

TEST(OrvString, LiteralIsNeitherCopiedNorCounted) {
    const auto& literal = ORV_TEXT(L"int");
    const OrvStringT first = literal;
    const OrvStringT second = first;
    EXPECT_EQ(first.GetString(), literal.units);
    EXPECT_EQ(second.GetString(), literal.units);
    EXPECT_EQ(literal.header.refs, -1);
    EXPECT_EQ(first, L"int");
}

TEST(OrvString, SameLiteralExpressionIsOneText) {
    const auto name = [] { return OrvStringT(ORV_TEXT(L"double")); };
    EXPECT_EQ(name().GetString(), name().GetString());
}

TEST(OrvString, EmptyLiteral) {
    const OrvStringT text = ORV_TEXT(L"");
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetString()[0], L'\0');
}

TEST(OrvString, LiteralKeepsNul) {
    const OrvStringT text = ORV_TEXT(L"a\0b");
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(text[2], L'b');
}

TEST(OrvString, ChangingATextThatIsALiteralLeavesTheLiteral) {
    OrvStringT text = ORV_TEXT(L"abc");
    text.MakeUpper();
    OrvStringT other = ORV_TEXT(L"abc");
    EXPECT_EQ(text, L"ABC");
    EXPECT_EQ(other, L"abc");
}

TEST(OrvString, CopiesShareUntilOneChanges) {
    OrvStringT first(L"shared");
    OrvStringT second = first;
    EXPECT_EQ(first.GetString(), second.GetString());
    second += L'!';
    EXPECT_EQ(first, L"shared");
    EXPECT_EQ(second, L"shared!");
    EXPECT_NE(first.GetString(), second.GetString());
}

TEST(OrvString, EveryChangeOfASharedTextLeavesTheOther) {
    const OrvStringT kept(L"  a,b,c  ");
    const auto changed = [&kept](auto change) {
        OrvStringT text = kept;
        change(text);
        EXPECT_NE(text, kept);
        EXPECT_EQ(kept, L"  a,b,c  ");
    };
    changed([](OrvStringT& text) { text.MakeUpper(); });
    changed([](OrvStringT& text) { text.Trim(); });
    changed([](OrvStringT& text) { text.TrimLeft(); });
    changed([](OrvStringT& text) { text.TrimRight(L" "); });
    changed([](OrvStringT& text) { text.Delete(3); });
    changed([](OrvStringT& text) { text.Insert(3, L"x"); });
    changed([](OrvStringT& text) { text.Replace(L",", L";"); });
    changed([](OrvStringT& text) { text.Clear(); });
    changed([](OrvStringT& text) { text.Format(L"%d", 1); });
}

TEST(OrvString, Assignment) {
    OrvStringT text(L"one");
    OrvStringT& alias = text;
    text = alias;
    EXPECT_EQ(text, L"one");
    text = L"two";
    EXPECT_EQ(text, L"two");
    OrvStringT moved = std::move(text);
    EXPECT_EQ(moved, L"two");
    EXPECT_TRUE(text.IsEmpty()); // a moved-from text is the empty one
    text = moved;
    EXPECT_EQ(text.GetString(), moved.GetString());
    text = OrvStringT();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(moved, L"two");
}

TEST(OrvString, DetachMakesAPrivateCopyWhereThereIsSomethingShared) {
    const OrvStringT first(L"text");
    OrvStringT second = first;
    second.Detach();
    EXPECT_EQ(second, first);
    EXPECT_NE(second.GetString(), first.GetString());

    const wchar_t* const own = second.GetString();
    second.Detach();
    EXPECT_EQ(second.GetString(), own);

    OrvStringT literal = ORV_TEXT(L"text");
    const wchar_t* const units = literal.GetString();
    literal.Detach();
    EXPECT_EQ(literal.GetString(), units);
}

TEST(OrvString, BufferTravelsWithItsShare) {
    OrvStringT text(L"payload");
    const OrvStringT other = text;
    const wchar_t* const units = text.GetString();
    wchar_t* const buffer = text.ReleaseBuffer();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(buffer, units);
    const OrvStringT back = OrvStringT::AdoptBuffer(buffer);
    EXPECT_EQ(back.GetString(), units);
    EXPECT_EQ(back, other);
    EXPECT_TRUE(OrvStringT::AdoptBuffer(nullptr).IsEmpty());
    EXPECT_TRUE(OrvStringT::AdoptBuffer(OrvStringT().ReleaseBuffer()).IsEmpty());
}

// ---- parts ----

TEST(OrvString, LeftClamps) {
    const OrvStringT text(L"Hello");
    EXPECT_EQ(text.Left(2), L"He");
    EXPECT_EQ(text.Left(0), L"");
    EXPECT_EQ(text.Left(-1), L"");
    EXPECT_EQ(text.Left(5), L"Hello");
    EXPECT_EQ(text.Left(6), L"Hello");
    EXPECT_EQ(text.Left(INT_MAX), L"Hello");
    EXPECT_EQ(text.Left(INT_MIN), L"");
}

TEST(OrvString, RightClamps) {
    const OrvStringT text(L"Hello");
    EXPECT_EQ(text.Right(2), L"lo");
    EXPECT_EQ(text.Right(0), L"");
    EXPECT_EQ(text.Right(-1), L"");
    EXPECT_EQ(text.Right(5), L"Hello");
    EXPECT_EQ(text.Right(INT_MAX), L"Hello");
    EXPECT_EQ(text.Right(INT_MIN), L"");
}

TEST(OrvString, MidClamps) {
    const OrvStringT text(L"Hello");
    EXPECT_EQ(text.Mid(1), L"ello");
    EXPECT_EQ(text.Mid(5), L"");
    EXPECT_EQ(text.Mid(6), L"");
    EXPECT_EQ(text.Mid(-1), L"Hello");
    EXPECT_EQ(text.Mid(INT_MIN), L"Hello");
    EXPECT_EQ(text.Mid(INT_MAX), L"");
    EXPECT_EQ(text.Mid(1, 3), L"ell");
    EXPECT_EQ(text.Mid(1, 0), L"");
    EXPECT_EQ(text.Mid(1, -1), L"");
    EXPECT_EQ(text.Mid(1, INT_MAX), L"ello");
    EXPECT_EQ(text.Mid(-2, 3), L"Hel");
    EXPECT_EQ(text.Mid(4, 2), L"o");
    EXPECT_EQ(text.Mid(5, 1), L"");
}

TEST(OrvString, PartThatIsTheWholeSharesTheBuffer) {
    const OrvStringT text(L"Hello");
    EXPECT_EQ(text.Left(5).GetString(), text.GetString());
    EXPECT_EQ(text.Right(9).GetString(), text.GetString());
    EXPECT_EQ(text.Mid(0).GetString(), text.GetString());
    EXPECT_EQ(text.Mid(-1, 5).GetString(), text.GetString());
    EXPECT_NE(text.Left(4).GetString(), text.GetString());
}

TEST(OrvString, Views) {
    const OrvStringT text(L"a\0b", 3);
    const std::wstring_view view = text;
    EXPECT_EQ(view.size(), 3u);
    EXPECT_EQ(view.data(), text.GetString());
    EXPECT_EQ(text.View(), view);
}

// ---- operators ----

TEST(OrvString, Concatenation) {
    const OrvStringT a(L"a");
    const std::wstring_view view = L"v";
    EXPECT_EQ(a + a, L"aa");
    EXPECT_EQ(a + L"b", L"ab");
    EXPECT_EQ(a + view, L"av");
    EXPECT_EQ(a + L'c', L"ac");
    EXPECT_EQ(L"b" + a, L"ba");
    EXPECT_EQ(view + a, L"va");
    EXPECT_EQ(L'c' + a, L"ca");
    EXPECT_EQ(a + ORV_TEXT(L"lit"), L"alit");
    EXPECT_EQ(OrvStringT(L"x") + a + L"y" + L'z' + view, L"xayzv");
    EXPECT_EQ(a, L"a");
}

TEST(OrvString, ConcatenationWithTheEmptyTextShares) {
    const OrvStringT text(L"some text");
    EXPECT_EQ((OrvStringT() + text).GetString(), text.GetString());
    EXPECT_EQ((text + OrvStringT()).GetString(), text.GetString());
}

TEST(OrvString, Equality) {
    const OrvStringT text(L"ab");
    EXPECT_TRUE(text == OrvStringT(L"ab"));
    EXPECT_FALSE(text == OrvStringT(L"aB"));
    EXPECT_TRUE(text == L"ab");
    EXPECT_TRUE(L"ab" == text);
    EXPECT_FALSE(text == L"abc");
    EXPECT_FALSE(text == L"a");
    EXPECT_TRUE(text == std::wstring_view(L"ab"));
    EXPECT_TRUE(std::wstring_view(L"ab") == text);
    EXPECT_TRUE(text != L"x");
    EXPECT_TRUE(L"x" != text);
    EXPECT_TRUE(text != OrvStringT());
    EXPECT_TRUE(OrvStringT() == static_cast<const wchar_t*>(nullptr));
    EXPECT_FALSE(OrvStringT(L"a\0b", 3) == L"a");
    EXPECT_FALSE(OrvStringT(L"a\0b", 3) == OrvStringT(L"a\0c", 3));
}

TEST(OrvString, EqualityWithCodePointsAboveTheBasicPlane) {
    EXPECT_TRUE(Emoji() == L"\U0001F600");
    EXPECT_TRUE(L"\U0001F600" == Emoji());
    EXPECT_FALSE(Emoji() == L"\U0001F601");
    EXPECT_FALSE(OrvStringT(L"ab") == L"\U0001F600");
    EXPECT_FALSE(Emoji() == L"\xD83D");
}
