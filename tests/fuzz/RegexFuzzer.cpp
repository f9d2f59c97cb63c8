// Any pattern, text and format, on a line each: what is found lies in the text and in order, and the methods of the
// language give the same in every way.

#include "fuzz/FuzzHost.h"
#include "fuzz/Fuzzing.h"
#include "platform/Regex.h"
#include "support/Ref.h"

#include <algorithm>
#include <regex>
#include <string>

namespace OrvUQL::Tests {
namespace {

using platform::RegexMatcher;
using platform::RegexSpan;

/// A text for a query to hold.
std::wstring Quoted(std::wstring_view text) {
    std::wstring quoted = L"'";
    for (const wchar_t unit : text) {
        quoted.append(unit == L'\'' ? 2 : 1, unit);
    }
    return quoted + L"'";
}

void CheckSpans(const RegexMatcher& matcher, std::wstring_view text, const std::string& shown) {
    for (const RegexSpan& group : matcher.Groups()) {
        Expect(!group.isMatched || (group.start <= text.size() && group.length <= text.size() - group.start),
               "a group outside of the text", shown);
    }
    Expect(!matcher.Groups().empty() && matcher.Groups()[0].isMatched, "a match without its whole", shown);
}

/// Every match, as places. In between, takes the text apart by the matches: put together it is the text again.
std::string Matches(const platform::Regex& regex, std::wstring_view text, const std::string& shown) {
    std::string all;
    const auto describe = [&](const RegexMatcher& matcher) {
        CheckSpans(matcher, text, shown);
        for (const RegexSpan& group : matcher.Groups()) {
            all += group.isMatched ? std::to_string(group.start) + "+" + std::to_string(group.length) + " " : "- ";
        }
        all += "; ";
    };
    RegexMatcher whole(regex, text);
    if (whole.MatchAll()) {
        describe(whole);
        Expect(whole.Groups()[0].length == text.size(), "a match of the whole text is not the whole text", shown);
    }
    RegexMatcher matcher(regex, text);
    std::wstring together;
    std::size_t count = 0;
    while (matcher.Next()) {
        describe(matcher);
        together += matcher.Text(matcher.Before());
        Expect(together.size() == matcher.Groups()[0].start, "matches out of order", shown);
        together += matcher.Text(matcher.Groups()[0]);
        Expect(++count <= 2 * text.size() + 2, "more matches than places", shown);
    }
    together += matcher.Text(matcher.Rest());
    Expect(together == text, "the pieces are not the text", shown);
    return all;
}

/// A pattern in a group is the same pattern, but never one of those for which there is a shorter way.
void CheckPattern(const std::wstring& pattern, std::wstring_view text, std::regex_constants::syntax_option_type options,
                  const std::string& shown) {
    try {
        const auto regex = OrvUtils::String::CreateRegEx(OrvStringT(pattern), options);
        const std::string matches = Matches(regex, text, shown);
        const auto inGroup = OrvUtils::String::CreateRegEx(OrvStringT(L"(?:" + pattern + L")"), options);
        ExpectSame(matches, Matches(inGroup, text, shown), "other matches in a group", shown);
    } catch (const std::regex_error&) {
        // No pattern, or too much of one.
    }
}

/// Whether matching comes near the steps that it is given, which are seconds for each of many times here.
bool TakesLong(const std::wstring& pattern, const std::wstring& text) {
    QueryEngine engine;
    EvaluationLimits limits;
    limits.steps = 4'000;
    engine.SetLimits(limits);
    for (const wchar_t* const method : {L".RegMatch(", L".RegFind("}) {
        for (const wchar_t* const arguments : {L")", L", false)"}) {
            const std::wstring query = Quoted(text) + method + Quoted(pattern) + arguments;
            ErrorSlot error;
            const Ref<IQueryElement> tree(engine.ParseQuery(query.c_str(), error.Slot()));
            if (!tree) {
                continue;
            }
            const Ref<IObject> value(engine.Evaluate(tree.Get(), error.Slot()));
            if (!value && error.Message().find("limit exceeded") != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

} // namespace
} // namespace OrvUQL::Tests

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace OrvUQL::Tests;
    static FuzzHost host;
    const OrvStringT input = OrvStringT::FromUtf8({reinterpret_cast<const char*>(data), size});
    std::wstring parts[3];
    std::size_t part = 0;
    for (const wchar_t unit : input.View()) {
        if (unit == L'\n' && part < 2) {
            ++part;
        } else if (unit != 0) {
            parts[part] += unit;
        }
    }
    const std::wstring& pattern = parts[0];
    const std::wstring& text = parts[1];
    const std::wstring& format = parts[2];
    if (TakesLong(pattern, text)) {
        return 0;
    }
    const std::string shown = Utf8(input);
    for (const auto options : {std::regex_constants::ECMAScript, std::regex_constants::icase}) {
        ExpectNoLeak([&] { CheckPattern(pattern, text, options, shown); }, shown);
    }
    const std::wstring arguments = L"(" + Quoted(pattern);
    for (const wchar_t* const method : {L".RegMatchEx", L".RegContainsEx", L".RegSplit", L".RegFind"}) {
        host.CheckQuery(OrvStringT(Quoted(text) + method + arguments + L", false)"));
    }
    host.CheckQuery(OrvStringT(Quoted(text) + L".RegReplace" + arguments + L", " + Quoted(format) + L")"));
    host.CheckQuery(OrvStringT(Quoted(text) + L".RegReplaceEx" + arguments + L", $Item(1) + $Count)"));
    return 0;
}
