// Patterns that are sequences of sets with repeats, as most patterns are: the matcher, and whatever shorter way it
// takes for them, against the standard library's own.

#include "fuzz/Fuzzing.h"
#include "platform/Regex.h"

#include <iterator>
#include <optional>
#include <regex>
#include <string>

using namespace OrvUQL::platform;
using namespace std::regex_constants;

namespace OrvUQL::Tests {
namespace {

std::wstring MakePattern(Choices& choices) {
    // The last ones of either list are for patterns that have more to them than a sequence of sets.
    static constexpr const wchar_t* atoms[] = {L"a",
                                               L"b",
                                               L"c",
                                               L"A",
                                               L"1",
                                               L" ",
                                               L",",
                                               L"-",
                                               L".",
                                               L"\\d",
                                               L"\\w",
                                               L"\\s",
                                               L"\\D",
                                               L"\\W",
                                               L"\\S",
                                               L"[a-c]",
                                               L"[^a-c]",
                                               L"[A-Za-z]",
                                               L"[0-9]",
                                               L"[^,]",
                                               L"[ab1]",
                                               L"[\\d.]",
                                               L"[\\w-]",
                                               L"[^\\s]",
                                               L"\\.",
                                               L"\\x61",
                                               L"\\t",
                                               L"[a-cA-C]",
                                               L"[-,]",
                                               L"[Z]",
                                               L"[^\\W1]",
                                               L"[\\D]",
                                               L"[]",
                                               L"[^]",
                                               L"\\u0062",
                                               L"[\\x41-\\x5a]",
                                               L"\\cJ",
                                               L"\\0",
                                               L"[[:alpha:]]",
                                               L"[^[:digit:]]",
                                               L"[[:upper:]b]",
                                               L"(?:a)",
                                               L"(b)",
                                               L"([a-c])",
                                               L"(a+)",
                                               L"(\\d+)",
                                               L"(a|b)",
                                               L"\\1"};
    static constexpr std::size_t simpleAtoms = 38;
    static constexpr const wchar_t* repeats[] = {L"",    L"",      L"*",    L"+",     L"?",     L"{2}",
                                                 L"{0}", L"{1,2}", L"{0,}", L"{0,1}", L"{3,4}", L"{1,}",
                                                 L"*?",  L"+?",    L"??",   L"{2,}?", L"{1,3}?"};
    static constexpr std::size_t simpleRepeats = 12;
    const bool isSimple = choices.Below(4) != 3;
    std::wstring pattern;
    if (!isSimple && choices.OneIn(6)) {
        pattern += L'^';
    }
    const std::size_t count = choices.Below(7);
    for (std::size_t term = 0; term < count; ++term) {
        const std::wstring atom = atoms[choices.Below(isSimple ? simpleAtoms : std::size(atoms))];
        pattern += atom;
        // A repeat of what repeats is exponential in the other library's time.
        if (atom[0] != L'(') {
            pattern += repeats[choices.Below(isSimple ? simpleRepeats : std::size(repeats))];
        }
        if (!isSimple && choices.OneIn(24)) {
            pattern += choices.Pick({L"|", L"\\b", L"\\B", L"(?=b)", L"(?!a)"});
        }
    }
    if (!isSimple && choices.OneIn(6)) {
        pattern += L'$';
    }
    return pattern;
}

std::wstring MakeText(Choices& choices) {
    static constexpr std::wstring_view units = L"aaabbccABZ019_ -,.\n\tk";
    std::wstring text;
    const std::size_t length = choices.Below(20);
    for (std::size_t index = 0; index < length; ++index) {
        text += units[choices.Below(units.size())];
    }
    return text;
}

void Append(std::wstring& all, bool isMatched, std::size_t start, std::size_t length) {
    all += isMatched ? std::to_wstring(start) + L"+" + std::to_wstring(length) + L" " : L"- ";
}

std::wstring Standard(const std::wregex& expression, const std::wstring& text) {
    const auto describe = [&](const std::wsmatch& match) {
        std::wstring all = L"(";
        for (const auto& group : match) {
            Append(all, group.matched, static_cast<std::size_t>(group.first - text.begin()),
                   static_cast<std::size_t>(group.length()));
        }
        return all + L")";
    };
    std::wstring all;
    std::wsmatch whole;
    if (std::regex_match(text, whole, expression)) {
        all += L"=" + describe(whole);
    }
    for (std::wsregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        all += describe(*match);
    }
    return all + L" " + std::regex_replace(text, expression, L"<$&|$1>");
}

std::wstring Ours(const Regex& expression, const std::wstring& text) {
    const auto describe = [](const RegexMatcher& matcher) {
        std::wstring all = L"(";
        for (const RegexSpan& group : matcher.Groups()) {
            Append(all, group.isMatched, group.start, group.length);
        }
        return all + L")";
    };
    std::wstring all;
    RegexMatcher whole(expression, text);
    if (whole.MatchAll()) {
        all += L"=" + describe(whole);
    }
    for (RegexMatcher matcher(expression, text); matcher.Next();) {
        all += describe(matcher);
    }
    all += L" ";
    all += OrvUtils::String::ReplaceRegEx(OrvStringT(text), expression, ORV_TEXT(L"<$&|$1>")).View();
    return all;
}

std::optional<std::wregex> CompileStandard(const std::wstring& pattern, syntax_option_type options) {
    try {
        return std::wregex(pattern, options);
    } catch (const std::regex_error&) {
        return std::nullopt;
    }
}

std::optional<Regex> CompileOurs(const std::wstring& pattern, syntax_option_type options) {
    try {
        return OrvUtils::String::CreateRegEx(OrvStringT(pattern), options);
    } catch (const std::regex_error&) {
        return std::nullopt;
    }
}

} // namespace
} // namespace OrvUQL::Tests

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace OrvUQL::Tests;
    Choices choices(data, size);
    syntax_option_type options = ECMAScript | collate;
    options |= choices.OneIn(4) ? icase : ECMAScript;
    options |= choices.OneIn(8) ? nosubs : ECMAScript;
    const std::wstring pattern = MakePattern(choices);
    const std::string shown = OrvStringT(pattern).ToUtf8();
    const std::optional<std::wregex> standard = CompileStandard(pattern, options);
    const std::optional<Regex> ours = CompileOurs(pattern, options);
    Expect(standard.has_value() == ours.has_value(), "one refuses the pattern", shown);
    for (int round = 0; standard && round < 4; ++round) {
        const std::wstring text = MakeText(choices);
        ExpectSame(OrvStringT(Ours(*ours, text)).ToUtf8(), OrvStringT(Standard(*standard, text)).ToUtf8(),
                   "the matches differ", shown + "\n" + OrvStringT(text).ToUtf8());
    }
    return 0;
}
