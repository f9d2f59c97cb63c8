#include <OrvUQL/OrvString.h>

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>
#include <vector>

namespace {

OrvStringT Inserted(const wchar_t* format, std::vector<const wchar_t*> inserts = {}) {
    OrvStringT text(L"old");
    text.FormatInserts(format, inserts.data(), static_cast<int>(inserts.size()));
    return text;
}

/// With what follows the template as inserts, and the next argument after those that were used.
OrvStringT Listed(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    OrvStringT text;
    text.FormatMessageV(format, &args);
    text += L"|";
    text += va_arg(args, const wchar_t*);
    va_end(args);
    return text;
}

} // namespace

TEST(OrvStringInserts, Numbered) {
    EXPECT_EQ(Inserted(L"Identifier '%1' is not a method of '%2'", {L"Foo", L"Integer"}),
              L"Identifier 'Foo' is not a method of 'Integer'");
    EXPECT_EQ(Inserted(L"%2%1%2", {L"a", L"b"}), L"bab");
    EXPECT_EQ(Inserted(L"no inserts", {L"a"}), L"no inserts");
    EXPECT_EQ(Inserted(L""), L"");
    EXPECT_EQ(Inserted(nullptr), L"");
}

TEST(OrvStringInserts, MissingAndNullInsertsAreEmpty) {
    EXPECT_EQ(Inserted(L"<%1|%2|%3>", {L"a", nullptr}), L"<a||>");
    EXPECT_EQ(Inserted(L"<%1>"), L"<>");
    OrvStringT text;
    text.FormatInserts(L"<%1>", nullptr, 1);
    EXPECT_EQ(text, L"<>");
}

TEST(OrvStringInserts, TwoDigits) {
    std::vector<std::wstring> texts;
    std::vector<const wchar_t*> inserts;
    for (int i = 1; i <= 99; ++i) {
        texts.push_back(std::to_wstring(i));
    }
    for (const std::wstring& text : texts) {
        inserts.push_back(text.c_str());
    }
    EXPECT_EQ(Inserted(L"%1 %9 %10 %42 %99", inserts), L"1 9 10 42 99");
    EXPECT_EQ(Inserted(L"%123", inserts), L"123"); // the twelfth insert, then a 3
    EXPECT_EQ(Inserted(L"%1%0", inserts), L"1");
}

TEST(OrvStringInserts, Escapes) {
    EXPECT_EQ(Inserted(L"100%%"), L"100%");
    EXPECT_EQ(Inserted(L"%%1", {L"a"}), L"%1");
    EXPECT_EQ(Inserted(L"a%nb%rc%td%be"), L"a\r\nb\rc\td e");
    EXPECT_EQ(Inserted(L"%.%!% x"), L".! x");
    EXPECT_EQ(Inserted(L"%q%'"), L"q'");
    EXPECT_EQ(Inserted(L"end%"), L"end%");
    EXPECT_EQ(Inserted(L"kept%0lost%1", {L"a"}), L"kept");
    EXPECT_EQ(Inserted(L"line\nline\r\nline"), L"line\nline\r\nline");
}

TEST(OrvStringInserts, InsertsAreNotExpandedAgain) { EXPECT_EQ(Inserted(L"<%1>", {L"%2%%%0"}), L"<%2%%%0>"); }

TEST(OrvStringInserts, Specifications) {
    EXPECT_EQ(Inserted(L"<%1!s!>", {L"abc"}), L"<abc>");
    EXPECT_EQ(Inserted(L"<%1!ls!%1!ws!>", {L"abc"}), L"<abcabc>");
    EXPECT_EQ(Inserted(L"<%1!6s!>", {L"abc"}), L"<   abc>");
    EXPECT_EQ(Inserted(L"<%1!-6s!>", {L"abc"}), L"<abc   >");
    EXPECT_EQ(Inserted(L"<%1!.2s!>", {L"abc"}), L"<ab>");
    EXPECT_EQ(Inserted(L"<%1!-4.1s!>", {L"abc"}), L"<a   >");
    EXPECT_EQ(Inserted(L"Hello %1!", {L"you"}), L"Hello you!");
    EXPECT_EQ(Inserted(L"%1!d!", {L"you"}), L"you!d!");
}

TEST(OrvStringInserts, SurrogatesAndTheTextItself) {
    EXPECT_EQ(Inserted(L"%1", {L"\U0001F600"}), L"\xD83D\xDE00");
    OrvStringT text(L"self");
    const wchar_t* const self = text.GetString();
    text.FormatInserts(L"%1-%1", &self, 1);
    EXPECT_EQ(text, L"self-self");
}

TEST(OrvStringInserts, ArgumentListIsReadUpToTheHighestNumber) {
    EXPECT_EQ(Listed(L"%2 before %1", L"a", L"b", L"next"), L"b before a|next");
    EXPECT_EQ(Listed(L"%3", L"a", L"b", L"c", L"next"), L"c|next");
    EXPECT_EQ(Listed(L"none", L"next"), L"none|next");
    EXPECT_EQ(Listed(L"%1%0%2", L"a", L"next"), L"a|next");
    EXPECT_EQ(Listed(L"%1", static_cast<const wchar_t*>(nullptr), L"next"), L"|next");
}
