// Matching, one match after the other, and the functions for texts.

#include "platform/Regex.h"
#include "platform/RegexTraits.h"
#include "support/Print.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <regex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

using namespace OrvUQL::platform;
using namespace OrvUtils::String;
using namespace std::regex_constants;

namespace {

/// All matches as "start+length" with a bar in between.
std::string Walk(std::wstring_view pattern, std::wstring_view text, RegexOptions options = {}) {
    RegexMatcher matcher(Regex(pattern, options), text);
    std::string all;
    while (matcher.Next()) {
        const RegexSpan& match = matcher.Groups()[0];
        all += (all.empty() ? "" : "|") + std::to_string(match.start) + "+" + std::to_string(match.length);
    }
    EXPECT_FALSE(matcher.Next()) << "the end is the end";
    return all;
}

bool Matches(std::wstring_view pattern, std::wstring_view text, bool ignoreCase = false) {
    return RegexMatcher(Regex(pattern, {ignoreCase, false}), text).MatchAll();
}

/// A host's number punctuation that would change what digits are read as.
class OddPunctuation : public std::numpunct<wchar_t> {
protected:
    wchar_t do_thousands_sep() const override { return L'1'; }
    std::string do_grouping() const override { return "\1"; }
};

} // namespace

TEST(RegexMatcher, StepsFromMatchToMatch) {
    EXPECT_EQ(Walk(L"\\d+", L"a12b3"), "1+2|4+1");
    EXPECT_EQ(Walk(L"^.", L"hello"), "0+1") << "the second character is not at the begin";
    EXPECT_EQ(Walk(L".$", L"hello"), "4+1");
    EXPECT_EQ(Walk(L"", L"ab"), "0+0|1+0|2+0");
    EXPECT_EQ(Walk(L"", L""), "0+0");
    EXPECT_EQ(Walk(L"a*", L"baac"), "0+0|1+2|3+0|4+0");
    EXPECT_EQ(Walk(L"a*?", L"aa"), "0+0|0+1|1+0|1+1|2+0") << "behind an empty match comes the longer one at its place";
    EXPECT_EQ(Walk(L"\\b", L"ab cd"), "0+0|2+0|3+0|5+0");
    EXPECT_EQ(Walk(L"(?=b)", L"abab"), "1+0|3+0");
    EXPECT_EQ(Walk(L"x", L"abc"), "");
    EXPECT_EQ(Walk(L"aa", L"aaaaa"), "0+2|2+2");
}

TEST(RegexMatcher, TellsWhatIsBetweenMatches) {
    const std::wstring_view text = L"ab1cd2ef";
    RegexMatcher matcher(Regex(L"\\d", {}), text);
    EXPECT_EQ(matcher.Rest().length, text.size()) << "nothing was found yet";
    ASSERT_TRUE(matcher.Next());
    EXPECT_EQ(matcher.Text(matcher.Before()), L"ab");
    EXPECT_EQ(matcher.Text(matcher.Rest()), L"cd2ef");
    ASSERT_TRUE(matcher.Next());
    EXPECT_EQ(matcher.Text(matcher.Before()), L"cd");
    EXPECT_FALSE(matcher.Next());
    EXPECT_EQ(matcher.Text(matcher.Rest()), L"ef");
}

TEST(RegexMatcher, Groups) {
    RegexMatcher matcher(Regex(L"(a)|(b)(x)?", {}), L"b");
    ASSERT_TRUE(matcher.Next());
    ASSERT_EQ(matcher.Groups().size(), 4u);
    EXPECT_FALSE(matcher.Groups()[1].isMatched);
    EXPECT_TRUE(matcher.Groups()[2].isMatched);
    EXPECT_FALSE(matcher.Groups()[3].isMatched);
    EXPECT_EQ(matcher.Text(matcher.Groups()[1]), L"");
    RegexMatcher without(Regex(L"(a)|(b)(x)?", {false, true}), L"b");
    ASSERT_TRUE(without.MatchAll());
    EXPECT_EQ(without.Groups().size(), 1u);
}

TEST(RegexMatcher, TextsAndPatternsMayHoldNul) {
    const std::wstring_view text(L"a\0b", 3);
    EXPECT_TRUE(Matches(text, text));
    EXPECT_TRUE(Matches(L"a\\0b", text));
    EXPECT_TRUE(Matches(L"a.b", text));
    EXPECT_FALSE(Matches(L"a", text));
    EXPECT_TRUE(Matches(L"", std::wstring_view()));
}

TEST(RegexMatcher, ClassesAreThoseOfAsciiButForSpace) {
    const std::wstring_view spaces = L"\u00A0\u1680\u2000\u200A\u2028\u2029\u202F\u205F\u3000";
    for (int code = 0; code <= 0xFFFF; ++code) {
        const auto unit = static_cast<wchar_t>(code);
        const bool isAscii = code < 0x80;
        const bool isSpace = code == 0x20 || (code >= 9 && code <= 13) ||
                             spaces.find(unit) != std::wstring_view::npos || (code >= 0x2000 && code <= 0x200A);
        ASSERT_EQ(IsInRegexClasses(unit, regexClass::space), isSpace) << std::hex << code;
        if (!isAscii) {
            ASSERT_FALSE(IsInRegexClasses(unit, ~regexClass::space)) << std::hex << code;
        }
    }
    struct Row {
        const wchar_t* name;
        std::wstring_view members;
    };
    // The members of each class among these.
    const std::wstring_view some = L"aFgZ09_-~ \t\n\x01\x7F";
    for (const Row& row : std::vector<Row>{{L"alnum", L"aFgZ09"},
                                           {L"alpha", L"aFgZ"},
                                           {L"blank", L" \t"},
                                           {L"cntrl", L"\t\n\x01\x7F"},
                                           {L"digit", L"09"},
                                           {L"d", L"09"},
                                           {L"graph", L"aFgZ09_-~"},
                                           {L"lower", L"ag"},
                                           {L"print", L"aFgZ09_-~ "},
                                           {L"punct", L"_-~"},
                                           {L"s", L" \t\n"},
                                           {L"space", L" \t\n"},
                                           {L"upper", L"FZ"},
                                           {L"w", L"aFgZ09_"},
                                           {L"xdigit", L"aF09"},
                                           {L"Alpha", L"aFgZ"}}) {
        std::wstring found;
        for (const wchar_t unit : some) {
            if (IsInRegexClasses(unit, FindRegexClasses(row.name, false))) {
                found += unit;
            }
        }
        EXPECT_EQ(found, row.members) << OrvStringT(row.name).ToUtf8();
    }
    EXPECT_EQ(FindRegexClasses(L"foo", false), 0u);
    EXPECT_EQ(FindRegexClasses(L"", false), 0u);
    EXPECT_EQ(FindRegexClasses(L"upper", true), regexClass::alpha);
}

TEST(RegexMatcher, CollatingElements) {
    EXPECT_EQ(FindCollatingElement(L"hyphen"), L"-");
    EXPECT_EQ(FindCollatingElement(L"space"), L" ");
    EXPECT_EQ(FindCollatingElement(L"commercial-at"), L"@");
    EXPECT_EQ(FindCollatingElement(L"left-square-bracket"), L"[");
    EXPECT_EQ(FindCollatingElement(L"grave-accent"), L"`");
    EXPECT_EQ(FindCollatingElement(L"left-curly-bracket"), L"{");
    EXPECT_EQ(FindCollatingElement(L"DEL"), L"\x7F");
    EXPECT_EQ(FindCollatingElement(L"nine"), L"9");
    EXPECT_EQ(FindCollatingElement(L"NUL"), std::wstring(1, L'\0'));
    EXPECT_EQ(FindCollatingElement(L"IS1"), L"\x1F");
    EXPECT_EQ(FindCollatingElement(L"Q"), L"Q");
    EXPECT_EQ(FindCollatingElement(L"none such"), L"");
}

// Each pair of units is matched as the rule says: equal upper-case mappings.
TEST(RegexMatcher, IgnoringCaseComparesUpperCaseMappings) {
    const std::wstring_view units = L"aAzZ_[`{09\u00E9\u00C9\u00D7\u00F7\u00DF\u0131I\u0130\u017FsSkK\u212A\u00B5\u03BC"
                                    L"\u039C\u03C2\u03C3\u03A3\u01C4\u01C5\u01C6\u0434\u0414\uFF41\uFF21";
    for (const wchar_t a : units) {
        for (const wchar_t b : units) {
            const bool expected = ToUpperUnit(a) == ToUpperUnit(b);
            const std::wstring text(1, b);
            const std::wstring literal = (a < 0x80 ? L"\\" : L"") + std::wstring(1, a);
            std::wstring escape = L"\\u";
            for (int shift = 12; shift >= 0; shift -= 4) {
                escape += L"0123456789abcdef"[(static_cast<unsigned>(a) >> shift) & 15u];
            }
            ASSERT_EQ(Matches(escape, text, true), expected) << OrvStringT(escape + L" " + text).ToUtf8();
            ASSERT_EQ(Matches(L"[" + escape + L"]", text, true), expected) << OrvStringT(escape + L" " + text).ToUtf8();
            ASSERT_EQ(Matches(L"[" + escape + L"-" + escape + L"]", text, true), expected)
                << OrvStringT(escape + L" " + text).ToUtf8();
            ASSERT_EQ(Matches(L"(" + escape + L")\\1", text + std::wstring(1, a), true), expected);
            ASSERT_EQ(Matches(escape, text), a == b);
        }
    }
}

// A range holds a unit if any unit of the range has the same upper-case mapping.
TEST(RegexMatcher, IgnoringCaseInRanges) {
    struct Range {
        wchar_t first;
        wchar_t last;
    };
    for (const Range& range : std::vector<Range>{{L'a', L'z'},
                                                 {L'Z', L'a'},
                                                 {L'_', L'a'},
                                                 {L'A', L'Z'},
                                                 {L'!', L'~'},
                                                 {0xDF, 0xFF},
                                                 {0xE0, 0xF6},
                                                 {0x100, 0x17F},
                                                 {0x180, 0x250},
                                                 {0x3B1, 0x3C9},
                                                 {0x430, 0x44F},
                                                 {0x17F, 0x17F},
                                                 {0, 0xFFFF},
                                                 {0x2170, 0x2180}}) {
        std::vector<bool> held(0x10000);
        for (int code = range.first; code <= range.last; ++code) {
            held[static_cast<std::size_t>(ToUpperUnit(static_cast<wchar_t>(code)))] = true;
        }
        wchar_t pattern[32];
        std::swprintf(pattern, 32, L"[\\u%04x-\\u%04x]", static_cast<unsigned>(range.first),
                      static_cast<unsigned>(range.last));
        const Regex expression(pattern, {true, false});
        for (int code = 0; code <= 0x2200; ++code) {
            const wchar_t text[] = {static_cast<wchar_t>(code)};
            const bool expected = held[static_cast<std::size_t>(ToUpperUnit(text[0]))];
            ASSERT_EQ(RegexMatcher(expression, std::wstring_view(text, 1)).MatchAll(), expected)
                << OrvStringT(pattern).ToUtf8() << " " << std::hex << code;
        }
    }
}

TEST(RegexMatcher, NoLocaleMakesADifference) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new OddPunctuation));
    const char* const wanted[] = {"C.UTF-8", "C.utf8"};
    for (const char* name : wanted) {
        std::setlocale(LC_ALL, name);
        try {
            std::locale::global(std::locale(std::locale(name), new OddPunctuation));
        } catch (const std::runtime_error&) {
            continue; // this system has no such locale
        }
    }
    EXPECT_TRUE(Matches(L"a{11}b", L"aaaaaaaaaaab"));
    EXPECT_FALSE(Matches(L"\\w", L"\u00E9"));
    EXPECT_FALSE(Matches(L"[[:alpha:]]", L"\u00E9"));
    EXPECT_FALSE(Matches(L"[a-z]", L"Q"));
    EXPECT_TRUE(Matches(L"\u00C9", L"\u00E9", true));
    EXPECT_EQ(
        ReplaceRegEx(OrvStringT(L"abcdefghijkl"), CreateRegEx(OrvStringT(L"(.)"), ECMAScript), OrvStringT(L"$01")),
        L"abcdefghijkl");
    std::locale::global(before);
    std::setlocale(LC_ALL, "C");
}

TEST(RegexMatcher, FunctionsForTexts) {
    const OrvStringT text(L"k1:v1, k2:v2");
    const RegEx expression = CreateRegEx(OrvStringT(L"(\\w+):(\\w+)(;)?"), ECMAScript | collate);
    EXPECT_FALSE(MatchRegEx(text, expression));
    EXPECT_TRUE(SearchRegEx(text, expression));
    std::vector<OrvStringT> groups{OrvStringT(L"kept")};
    EXPECT_FALSE(MatchRegEx(text, groups, expression));
    EXPECT_EQ(groups, std::vector<OrvStringT>{OrvStringT(L"kept")}) << "filled on success only";
    EXPECT_TRUE(SearchRegEx(text, groups, expression));
    EXPECT_EQ(groups, (std::vector<OrvStringT>{L"k1:v1", L"k1", L"v1", L""}));
    EXPECT_TRUE(MatchRegEx(OrvStringT(L"a:b"), groups, expression));
    EXPECT_EQ(groups, (std::vector<OrvStringT>{L"a:b", L"a", L"b", L""}));
    EXPECT_EQ(ReplaceRegEx(text, expression, OrvStringT(L"$2=$1")), L"v1=k1, v2=k2");
    EXPECT_THROW(CreateRegEx(OrvStringT(L"("), ECMAScript), std::regex_error);
    EXPECT_TRUE(MatchRegEx(OrvStringT(L"K"), CreateRegEx(OrvStringT(L"k"), ECMAScript | icase)));
    MatchRegEx(OrvStringT(L"ab"), groups, CreateRegEx(OrvStringT(L"(a)(b)"), ECMAScript | nosubs));
    EXPECT_EQ(groups.size(), 1u);
}

// A thread keeps what it compiled; that must not show.
TEST(RegexMatcher, ManyExpressionsInTurn) {
    std::vector<Regex> held;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 40; ++i) {
            const std::wstring number = std::to_wstring(i);
            EXPECT_TRUE(Matches(L"x" + number + L"Y", L"x" + number + L"Y"));
            EXPECT_FALSE(Matches(L"x" + number + L"Y", L"x" + number + L"y"));
            EXPECT_TRUE(Matches(L"x" + number + L"Y", L"X" + number + L"y", true));
            held.emplace_back(L"x" + number + L"Y", RegexOptions{});
        }
    }
    Regex copy = held[5];
    copy = held[6];
    held.clear();
    EXPECT_TRUE(RegexMatcher(copy, L"x6Y").MatchAll());
    EXPECT_THROW(Regex(L"(", {}), std::regex_error);
    EXPECT_THROW(Regex(L"(", {}), std::regex_error) << "mistakes are not kept either";
}

TEST(RegexMatcher, WorksWhileItsThreadEnds) {
    std::thread([] {
        struct Late {
            ~Late() { EXPECT_TRUE(Matches(L"a+", L"aaa")); }
        };
        thread_local const Late late; // goes after what the library keeps for the thread
        static_cast<void>(late);
        EXPECT_TRUE(Matches(L"b+", L"bbb"));
    }).join();
}
