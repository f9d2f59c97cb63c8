// The matcher against the standard library's own, which it is to agree with wherever that one is right.

#include "platform/Regex.h"
#include "platform/RegexPatternGenerator.h"
#include "support/Effort.h"
#include "support/Print.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <optional>
#include <regex>
#include <string>

using namespace OrvUQL::platform;
using namespace std::regex_constants;
using OrvUQL::Tests::RegexPatternGenerator;

namespace {

/// std::wregex in the classic locale, which is the test program's.
class Standard {
public:
    Standard(const std::wstring& pattern, syntax_option_type options) : expression(pattern, options | collate) {}

    std::wstring Describe(const std::wstring& subject, const std::wstring& format) const {
        std::wstring all;
        std::wsmatch whole;
        if (std::regex_match(subject, whole, expression)) {
            all += L"=" + DescribeMatch(whole, subject);
        }
        const std::wsregex_iterator end;
        for (std::wsregex_iterator match(subject.begin(), subject.end(), expression); match != end; ++match) {
            all += DescribeMatch(*match, subject);
        }
        all += L" " + std::regex_replace(subject, expression, format);
        const std::wsregex_token_iterator last;
        for (std::wsregex_token_iterator piece(subject.begin(), subject.end(), expression, -1); piece != last;
             ++piece) {
            all += L"/" + piece->str();
        }
        return all;
    }

private:
    std::wregex expression;

    static std::wstring DescribeMatch(const std::wsmatch& match, const std::wstring& subject) {
        std::wstring text = L"(";
        for (const auto& group : match) {
            text += group.matched
                        ? std::to_wstring(group.first - subject.begin()) + L"+" + std::to_wstring(group.length())
                        : std::wstring(L"-");
            text += L" ";
        }
        return text + L")";
    }
};

class Library {
public:
    Library(const std::wstring& pattern, syntax_option_type options)
        : expression(OrvUtils::String::CreateRegEx(OrvStringT(pattern), options)) {}

    std::wstring Describe(const std::wstring& subject, const std::wstring& format) const {
        std::wstring all;
        RegexMatcher whole(expression, subject);
        if (whole.MatchAll()) {
            all += L"=" + DescribeMatch(whole);
        }
        RegexMatcher matcher(expression, subject);
        std::wstring pieces;
        bool isSplit = false;
        for (; matcher.Next(); isSplit = true) {
            all += DescribeMatch(matcher);
            pieces += L"/" + std::wstring(matcher.Text(matcher.Before()));
        }
        if (!isSplit || matcher.Rest().length != 0) {
            pieces += L"/" + std::wstring(matcher.Text(matcher.Rest()));
        }
        all += L" ";
        all += OrvUtils::String::ReplaceRegEx(OrvStringT(subject), expression, OrvStringT(format)).View();
        return all + pieces;
    }

private:
    Regex expression;

    static std::wstring DescribeMatch(const RegexMatcher& matcher) {
        std::wstring text = L"(";
        for (const RegexSpan& group : matcher.Groups()) {
            text += group.isMatched ? std::to_wstring(group.start) + L"+" + std::to_wstring(group.length)
                                    : std::wstring(L"-");
            text += L" ";
        }
        return text + L")";
    }
};

template <class Engine> std::optional<Engine> Compile(const std::wstring& pattern, syntax_option_type options) {
    try {
        return Engine(pattern, options);
    } catch (const std::regex_error&) {
        return std::nullopt;
    }
}

/// Whether the answer depends on the C library, which std::wregex asks for the class of a unit: that of Windows prints
/// the tab, and mingw-w64 finds no blank in it.
bool DiffersInC(const std::wstring& pattern, const std::wstring& subject) {
    const auto names = [&pattern](const wchar_t* name) { return pattern.find(name) != std::wstring::npos; };
    if (std::iswprint(L'\t') == 0) {
        return false;
    }
    return names(L"blank") || (names(L"print") && subject.find(L'\t') != std::wstring::npos);
}

std::string Utf8(const std::wstring& text) { return OrvStringT(text).ToUtf8(); }

} // namespace

TEST(RegexDifferential, AgreesWithTheStandardLibrary) {
    RegexPatternGenerator generator(20);
    const int patterns = OrvUQL::Tests::Effort(25'000);
    constexpr int subjectsEach = 4;
    int refused = 0;
    int matched = 0;
    int tooComplex = 0;
    for (int i = 0; i < patterns; ++i) {
        const std::wstring pattern = generator.Pattern();
        syntax_option_type options = ECMAScript;
        options |= generator.Below(2) == 0 ? icase : ECMAScript;
        options |= generator.Below(4) == 0 ? nosubs : ECMAScript;
        const auto standard = Compile<Standard>(pattern, options);
        const auto library = Compile<Library>(pattern, options);
        ASSERT_EQ(standard.has_value(), library.has_value()) << Utf8(pattern) << " options " << options;
        refused += standard ? 0 : 1;
        for (int j = 0; standard && j < subjectsEach; ++j) {
            const std::wstring subject = generator.Subject();
            if (DiffersInC(pattern, subject)) {
                continue;
            }
            const std::wstring format = generator.Format();
            std::wstring got;
            try {
                got = library->Describe(subject, format);
            } catch (const std::regex_error& error) {
                ASSERT_EQ(error.code(), error_complexity) << Utf8(pattern) << " on " << Utf8(subject);
                ++tooComplex; // the standard library would go on
                continue;
            }
            const std::wstring expected = standard->Describe(subject, format);
            ASSERT_EQ(Utf8(got), Utf8(expected)) << "pattern " << Utf8(pattern) << "\nsubject " << Utf8(subject)
                                                 << "\nformat " << Utf8(format) << "\noptions " << options;
            matched += expected.find(L'(') != std::wstring::npos ? 1 : 0;
        }
    }
    // Neither mostly mistakes nor mostly nothing found.
    EXPECT_LT(refused, patterns / 4);
    EXPECT_GT(refused, patterns / 100);
    EXPECT_LE(tooComplex, 5);
    EXPECT_GT(matched, patterns * subjectsEach / 3);
}
