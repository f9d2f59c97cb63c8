// What is wrong with a pattern, and what is too much of one.

#include "platform/RegexSyntax.h"

#include "platform/Regex.h"
#include "support/Print.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

using namespace OrvUQL::platform;
using namespace std::regex_constants;

namespace {

constexpr int accepted = -1;

/// The error that a pattern is refused with. What is accepted must also compile.
int Code(const std::wstring& pattern, RegexOptions options = {}) {
    try {
        ReadRegexSyntax(pattern, options);
    } catch (const std::regex_error& error) {
        return error.code();
    }
    EXPECT_NO_THROW(Regex(pattern, options)) << OrvStringT(pattern).ToUtf8();
    return accepted;
}

std::wstring Repeat(std::wstring_view text, std::size_t count) {
    std::wstring all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

struct Row {
    const wchar_t* pattern;
    int code;
};

void Check(const std::vector<Row>& rows, RegexOptions options = {}) {
    for (const Row& row : rows) {
        EXPECT_EQ(Code(row.pattern, options), row.code) << OrvStringT(row.pattern).ToUtf8();
    }
}

} // namespace

TEST(RegexSyntax, Repeats) {
    Check({{L"*a", error_badrepeat},
           {L"+a", error_badrepeat},
           {L"?", error_badrepeat},
           {L"{", error_badrepeat},
           {L"{2}", error_badrepeat},
           {L"a|*b", error_badrepeat},
           {L"(*a)", error_badrepeat},
           {L"(?:+)", error_badrepeat},
           {L"(?=?)", error_badrepeat},
           {L"^*", error_badrepeat},
           {L"$+", error_badrepeat},
           {L"\\b?", error_badrepeat},
           {L"(?=a)*", error_badrepeat},
           {L"(?!a){2}", error_badrepeat},
           {L"a**", accepted},
           {L"a*?", accepted},
           {L"a*??", accepted},
           {L"a{2}{3}", accepted},
           {L"(a)*", accepted},
           {L"()*", accepted},
           {L"[a]*", accepted},
           {L"\\d+", accepted},
           {L".?", accepted}});
}

TEST(RegexSyntax, Groups) {
    Check({{L"(a", error_paren},
           {L"a)", error_paren},
           {L")", error_paren},
           {L"((a)", error_paren},
           {L"(?", error_paren},
           {L"(?:", error_paren},
           {L"(", error_paren},
           {L"(?=a", error_paren},
           {L"(?<n>a)", regexErrorSyntax},
           {L"(?<=a)", regexErrorSyntax},
           {L"(?<!a)", regexErrorSyntax},
           {L"(?>a)", regexErrorSyntax},
           {L"(?i)", regexErrorSyntax},
           {L"(?", error_paren},
           {L"()", accepted},
           {L"(|)", accepted},
           {L"(?:)", accepted},
           {L"(?!)", accepted}});
}

TEST(RegexSyntax, Escapes) {
    Check({{L"\\", error_escape},       {L"a\\", error_escape},      {L"\\p{L}", error_escape},
           {L"\\P{Lu}", error_escape},  {L"\\x", error_escape},      {L"\\x4", error_escape},
           {L"\\xg0", error_escape},    {L"\\u123", error_escape},   {L"\\c", error_escape},
           {L"[\\", error_escape},      {L"[\\B]", error_escape},    {L"[\\1]", error_escape},
           {L"[\\x]", error_escape},    {L"\\p", accepted},          {L"\\p{2}", accepted},
           {L"\\d{x}", error_badbrace}, {L"\\.{x}", error_badbrace}, {L"\\x41{x}", error_badbrace},
           {L"\\cA", accepted},         {L"\\0", accepted},          {L"[\\b\\0]", accepted}});
}

TEST(RegexSyntax, BackReferences) {
    Check({{L"\\9", error_backref},
           {L"\\1", error_backref},
           {L"\\1(a)", error_backref},
           {L"(\\1)", error_backref},
           {L"(a)\\2", error_backref},
           {L"(a)\\10", error_backref},
           {L"((a)\\1)", error_backref},
           {L"(?:a)\\1", error_backref},
           {L"(a)\\4294967297", error_backref},
           {L"(a)\\1", accepted},
           {L"((a)\\2)", accepted},
           {L"(?=(a))\\1", accepted}});
    Check({{L"(a)\\1", error_backref}, {L"(a)(b)", accepted}}, {false, true});
}

TEST(RegexSyntax, Counts) {
    Check({{L"a{", error_brace},
           {L"a{1", error_brace},
           {L"a{1,", error_brace},
           {L"a{1,2", error_brace},
           {L"a{2,1}", error_badbrace},
           {L"a{x}", error_badbrace},
           {L"a{}", error_badbrace},
           {L"a{,2}", error_badbrace},
           {L"a{1,2,3}", error_badbrace},
           {L"a{1 }", error_badbrace},
           {L"a{-1}", error_badbrace},
           {L"a{0}", accepted},
           {L"a{0,0}", accepted},
           {L"a}", accepted},
           {L"a{00000000000000000002}", accepted}});
}

TEST(RegexSyntax, Brackets) {
    Check({{L"[a", error_brack},
           {L"[", error_brack},
           {L"[^", error_brack},
           {L"[[", error_brack},
           {L"[a-", error_brack},
           {L"[b-a]", error_range},
           {L"[\\d-a]", error_range},
           {L"[a-\\d]", error_range},
           {L"[[:alpha:]-z]", error_range},
           {L"[a-[:alpha:]]", error_range},
           {L"[\\u0062-\\x61]", error_range},
           {L"[[:foo:]]", error_ctype},
           {L"[[:alpha]", error_ctype},
           {L"[[:", error_ctype},
           {L"[[.foo.]]", error_collate},
           {L"[[=foo=]]", error_collate},
           {L"[[..]]", error_collate},
           {L"[]", accepted},
           {L"[^]", accepted},
           {L"]", accepted},
           {L"[a-]", accepted},
           {L"[-a]", accepted},
           {L"[--a]", accepted},
           {L"[\\d-]", accepted},
           {L"[a-c-e]", accepted},
           {L"[[.space.]-[.hyphen.]]", error_range},
           {L"[[.a.]-c]", accepted},
           {L"[[:ALPHA:]]", accepted},
           {L"[[:w:]]", accepted},
           {L"[[.left-square-bracket.]]", accepted},
           {L"[[.vertical-line.]]", accepted},
           {L"[[.NUL.][.DEL.]]", accepted}});
    Check({{L"[b-A]", error_range}, {L"[A-b]", accepted}, {L"[\\u0000-\\uffff]", accepted}}, {true, false});
}

TEST(RegexSyntax, TheFirstMistakeCounts) {
    Check({{L"*(", error_badrepeat}, {L"(*", error_badrepeat}, {L"[b-a](", error_range}, {L"a{1}{", error_brace}});
}

// Exactly at each limit, and one beyond.

TEST(RegexSyntax, States) {
    const std::size_t most = maxRegexStates - 6; // beside those that any pattern has
    EXPECT_EQ(Code(std::wstring(most, L'a')), accepted);
    EXPECT_EQ(Code(std::wstring(most + 1, L'a')), error_complexity);
    EXPECT_EQ(Code(std::wstring(100'000, L'a')), error_complexity);
    EXPECT_EQ(Code(L"a{49990}"), accepted);
    EXPECT_EQ(Code(L"a{50000}"), error_complexity);
    EXPECT_EQ(Code(L"(a{200}){200}"), accepted);
    EXPECT_EQ(Code(L"(a{300}){300}"), error_complexity);
    EXPECT_EQ(Code(L"a{1000000000000000000000}"), error_complexity);
    EXPECT_EQ(Code(L"a{0,18446744073709551616}"), error_complexity);
    EXPECT_EQ(Code(L"a" + Repeat(L"{1}", 30)), error_complexity) << "each doubles it";
}

TEST(RegexSyntax, StatesWithALookahead) {
    const std::size_t most = maxRegexStatesWithLookahead - 10;
    EXPECT_EQ(Code(L"(?=b)" + std::wstring(most, L'a')), accepted);
    EXPECT_EQ(Code(L"(?=b)" + std::wstring(most + 10, L'a')), error_complexity);
}

TEST(RegexSyntax, Links) {
    EXPECT_EQ(Code(Repeat(L"a|", 5'900)), accepted);
    EXPECT_EQ(Code(Repeat(L"a|", 6'100)), error_complexity);
    EXPECT_EQ(Code(L"(?:){48000}"), error_complexity);
}

TEST(RegexSyntax, Nesting) {
    const auto nested = [](std::size_t depth) { return Repeat(L"(", depth) + L"a" + Repeat(L")", depth); };
    EXPECT_EQ(Code(nested(maxRegexNesting)), accepted);
    EXPECT_EQ(Code(nested(maxRegexNesting + 1)), error_complexity);
    EXPECT_EQ(Code(nested(50'000)), error_complexity);
    EXPECT_EQ(Code(Repeat(L"(", 50'000)), error_paren);
    EXPECT_EQ(Code(Repeat(L"()", 5'000)), accepted) << "one after the other";
}

TEST(RegexSyntax, NestingOfLookaheads) {
    const auto nested = [](std::size_t depth) { return Repeat(L"(?=", depth) + L"a" + Repeat(L")", depth); };
    EXPECT_EQ(Code(nested(maxRegexLookaheadNesting)), accepted);
    EXPECT_EQ(Code(nested(maxRegexLookaheadNesting + 1)), error_complexity);
    EXPECT_EQ(Code(Repeat(L"(?=a)", 100)), accepted);
}

TEST(RegexSyntax, WaysToABackReference) {
    EXPECT_EQ(Code(L"(?:(z)|)(?:|){9}\\1"), accepted);
    EXPECT_EQ(Code(L"(?:(z)|)(?:|){10}\\1"), error_complexity);
    EXPECT_EQ(Code(L"(?:(z)|)(?:|){28}\\1"), error_complexity);
    EXPECT_EQ(Code(L"(?:(z)|)(?:(?:|){28}\\1a|b)"), error_complexity);
    EXPECT_EQ(Code(L"(?:|){28}"), accepted) << "no back reference: each way asks the guard at its end";
    EXPECT_EQ(Code(L"([ab])(?:a|b){2000}\\1"), accepted) << "each letter asks the guard";
    EXPECT_EQ(Code(L"(['\"])(?:[^\\\\]|\\\\.)*\\1"), accepted);
}

TEST(RegexSyntax, NoFewerStatesThanTheCompilerMakes) {
    // It refuses more than 100,000 itself, with an error of its own. A pattern just below the library's limit must be
    // far from that.
    for (const wchar_t* part : {L"a?", L"(a)", L"[ab]*", L"a{0,3}", L"(?:a|b)", L"a+?", L"^", L"\\b"}) {
        for (std::size_t count = 16'384; count > 0; count /= 2) {
            const std::wstring pattern = Repeat(part, count);
            const int code = Code(pattern);
            EXPECT_TRUE(code == accepted || code == error_complexity) << OrvStringT(part).ToUtf8() << " x " << count;
            if (code == accepted) {
                break;
            }
        }
    }
}

TEST(RegexSyntax, IgnoringCaseARangeIsOneOfUpperCaseMappings) {
    const RegexOptions ignoreCase{true, false};
    EXPECT_EQ(ReadRegexSyntax(L"x[a-z]y", ignoreCase).pattern, L"x[\\u0041-\\u005a]y");
    EXPECT_EQ(ReadRegexSyntax(L"[0-9]", ignoreCase).pattern, L"[\\u0030-\\u0039]");
    EXPECT_EQ(ReadRegexSyntax(L"[Z-a_]", ignoreCase).pattern, L"[\\u005a-\\u0060\\u0041-\\u0041_]");
    EXPECT_EQ(ReadRegexSyntax(L"[-a-c-e]", ignoreCase).pattern, L"[-\\u0041-\\u0043-e]");
    EXPECT_EQ(ReadRegexSyntax(L"[a-z]", {}).pattern, L"[a-z]");
}
