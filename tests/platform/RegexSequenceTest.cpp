// Simple patterns, which are matched without the standard library. That both agree on ASCII is tested with patterns by
// chance elsewhere; here is what is and is not such a pattern, and the units beyond ASCII.

#include "platform/RegexSequence.h"

#include "platform/Regex.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

using namespace OrvUQL::platform;

namespace {

bool IsSequence(std::wstring_view pattern) { return RegexSequence::Read(pattern, {}).has_value(); }

/// The matches in a text, as "start+length start+length".
std::string Matches(std::wstring_view pattern, std::wstring_view text) {
    RegexMatcher matcher(Regex(pattern, {}), text);
    std::string all;
    while (matcher.Next()) {
        const RegexSpan whole = matcher.Groups()[0];
        all += (all.empty() ? "" : " ") + std::to_string(whole.start) + "+" + std::to_string(whole.length);
    }
    return all;
}

} // namespace

TEST(RegexSequence, ServesSetsAndRepeats) {
    for (const wchar_t* pattern :
         {L"",       L"abc",       L"\\d+", L"[a-z]\\w*", L"[^,;]+",  L"a{2,3}",          L"a{2,}",  L"a{3}",
          L"a?b*c+", L".",         L"\\.",  L"[-a]",      L"[a-]",    L"[\\-a]",          L"[.*+?]", L"[\\d\\s_]",
          L"[^\\W]", L"\\t\\n\\r", L"]",    L"}",         L"\u00E4+", L"[\u0400-\u04FF]+"}) {
        EXPECT_TRUE(IsSequence(pattern)) << OrvStringT(pattern).ToUtf8();
    }
}

TEST(RegexSequence, LeavesTheRestToTheStandardLibrary) {
    for (const wchar_t* pattern :
         {L"(a)",         L"(?:a)",   L"a|b",     L"^a",      L"a$",      L"\\ba",  L"a+?",   L"a{2}?",
          L"[[:alpha:]]", L"[[.a.]]", L"[a-z-9]", L"[\\d-z]", L"[^\\w-]", L"[\\b]", L"\\x41", L"\\u0041",
          L"\\0",         L"\\cA",    L"[]",      L"[^]",     L"a**",     L"(?=a)"}) {
        EXPECT_FALSE(IsSequence(pattern)) << OrvStringT(pattern).ToUtf8();
    }
    EXPECT_FALSE(RegexSequence::Read(L"abc", {true, false}).has_value()) << "letter case";
    EXPECT_TRUE(RegexSequence::Read(L"abc", {false, true}).has_value());
    EXPECT_TRUE(IsSequence(std::wstring(32, L'a')));
    EXPECT_FALSE(IsSequence(std::wstring(33, L'a')));
}

TEST(RegexSequence, GivesBackWhatTheNextTermNeeds) {
    EXPECT_EQ(Matches(L"a*ab", L"aaab ab b"), "0+4 5+2");
    EXPECT_EQ(Matches(L"\\d+\\d\\d", L"12 123 1234567"), "3+3 7+7");
    EXPECT_EQ(Matches(L"a{2,3}a", L"aaaaaaa"), "0+4 4+3");
    EXPECT_EQ(Matches(L"a?a?aa", L"aaa"), "0+3");
    EXPECT_EQ(Matches(L"[ab]+b[ab]*a", L"abba bb"), "0+4");
}

TEST(RegexSequence, StepsOverEmptyMatchesAsTheStandardDoes) {
    EXPECT_EQ(Matches(L"", L"ab"), "0+0 1+0 2+0");
    EXPECT_EQ(Matches(L"b*", L"abbc"), "0+0 1+2 3+0 4+0");
    EXPECT_EQ(Matches(L"a?", L"aa"), "0+1 1+1 2+0");
    EXPECT_EQ(Matches(L"x{0}", L"x"), "0+0 1+0");
}

TEST(RegexSequence, TellsUnitsBeyondAscii) {
    EXPECT_EQ(Matches(L".", L"a\n\r\u2028\u2029\u00E4\xD83D\xDE00"), "0+1 5+1 6+1 7+1");
    EXPECT_EQ(Matches(L"\\s+", L"a\u00A0\u3000\u2003 b\u200B"), "1+4");
    EXPECT_EQ(Matches(L"\\S+", L"\u00A0\u00E4\u4E00\u2003b"), "1+2 4+1");
    EXPECT_EQ(Matches(L"\\w+", L"\u00E4b\u0661c"), "1+1 3+1") << "ASCII alone";
    EXPECT_EQ(Matches(L"\\W+", L"a\u00E4\u4E00b"), "1+2");
    EXPECT_EQ(Matches(L"\\d+", L"1\u0662\uFF13"), "0+1");
    EXPECT_EQ(Matches(L"\\D+", L"1\u0662\uFF13 2"), "1+3");
    EXPECT_EQ(Matches(L"[\u0410-\u042F]+", L"\u0409\u0410\u042F\u0430"), "1+2");
    EXPECT_EQ(Matches(L"[^\u00E4]+", L"a\u00E4\u00F6"), "0+1 2+1");
    EXPECT_EQ(Matches(L"[^\\s]+", L"a\u3000b"), "0+1 2+1");
    EXPECT_EQ(Matches(L"[x-\u00FF]+", L"wx~\u0080\u00FF\u0100"), "1+4");
    EXPECT_EQ(Matches(L"[^\\S]+", L"a\u3000 b"), "1+2");
}

// The same sets, by the standard library: in a group, which needs it.
TEST(RegexSequence, AgreesWithTheStandardLibraryOnEveryUnit) {
    const wchar_t* const sets[] = {L".",
                                   L"\\d",
                                   L"\\D",
                                   L"\\s",
                                   L"\\S",
                                   L"\\w",
                                   L"\\W",
                                   L"a",
                                   L"\\.",
                                   L"[^\\s]",
                                   L"[\\d\\s]",
                                   L"[a-z]",
                                   L"[\u00C0-\u017F]",
                                   L"[^\u2000-\u20FF_]",
                                   L"\u4E00"};
    std::wstring text;
    for (int code = 0; code < 0x3100; ++code) {
        text += static_cast<wchar_t>(code);
    }
    text += L"\x4E00\xD800\xDFFF\xFFFD\xFFFF";
    for (const std::wstring set : sets) {
        ASSERT_TRUE(IsSequence(set)) << OrvStringT(set).ToUtf8();
        EXPECT_EQ(Matches(set, text), Matches(L"(?:" + set + L")", text)) << OrvStringT(set).ToUtf8();
    }
}

TEST(RegexSequence, AgreesWithTheStandardLibraryOnPatternsByChance) {
    const wchar_t* const sets[] = {L"a", L"b", L".", L"[ab]", L"[^a]", L"\\w", L"\\s", L"[a-c]"};
    const wchar_t* const repeats[] = {L"", L"", L"*", L"+", L"?", L"{2}", L"{1,2}", L"{0,3}", L"{2,}"};
    std::mt19937 random(7);
    const auto below = [&](std::size_t bound) { return random() % bound; };
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::wstring pattern;
        for (std::size_t count = below(5); count > 0; --count) {
            pattern += sets[below(std::size(sets))];
            pattern += repeats[below(std::size(repeats))];
        }
        std::wstring text;
        for (std::size_t length = below(10); length > 0; --length) {
            text += L"aabbc \n"[below(7)];
        }
        ASSERT_TRUE(IsSequence(pattern)) << OrvStringT(pattern).ToUtf8();
        const std::wstring grouped = L"(?:" + pattern + L")";
        ASSERT_EQ(Matches(pattern, text), Matches(grouped, text)) << OrvStringT(pattern + L" on " + text).ToUtf8();
        ASSERT_EQ(RegexMatcher(Regex(pattern, {}), text).MatchAll(), RegexMatcher(Regex(grouped, {}), text).MatchAll())
            << OrvStringT(pattern + L" on " + text).ToUtf8();
        found += Matches(pattern, text).empty() ? 0 : 1;
    }
    EXPECT_GT(found, 5'000);
}

TEST(RegexSequence, EndsWhereItTakesTooLong) {
    const std::wstring text(2'000, L'a');
    const auto search = [&] { return RegexMatcher(Regex(L"a*a*a*a*b", {}), text).Next(); };
    try {
        search();
        ADD_FAILURE() << "found or not found";
    } catch (const std::regex_error& error) {
        EXPECT_EQ(error.code(), std::regex_constants::error_complexity);
    }
    EXPECT_FALSE(RegexMatcher(Regex(L"a*b", {}), text).Next());
}
