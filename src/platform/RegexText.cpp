// The functions of OrvUtils::String over regular expressions.

#include "platform/Regex.h"

#include <algorithm>

namespace OrvUtils::String {

using OrvUQL::platform::RegexMatcher;
using OrvUQL::platform::RegexOptions;
using OrvUQL::platform::RegexSpan;

namespace {

bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

/// Appends a match in the notation of std::match_results::format.
void AppendFormatted(OrvStringT& out, std::wstring_view format, const RegexMatcher& matcher) {
    const std::vector<RegexSpan>& groups = matcher.Groups();
    const auto append = [&](const RegexSpan& span) { out += matcher.Text(span); };
    for (;;) {
        const std::size_t dollar = format.find(L'$');
        out += format.substr(0, dollar);
        if (dollar == std::wstring_view::npos) {
            return;
        }
        format.remove_prefix(dollar + 1);
        const wchar_t unit = format.empty() ? L'\0' : format.front();
        if (unit == L'$') {
            out += unit;
        } else if (unit == L'&') {
            append(groups[0]);
        } else if (unit == L'`') {
            append(matcher.Before());
        } else if (unit == L'\'') {
            append(matcher.Rest());
        } else if (IsDigit(unit)) {
            auto number = static_cast<std::size_t>(unit - L'0');
            if (format.size() > 1 && IsDigit(format[1])) {
                // Two digits always belong together, also where there are fewer than ten groups.
                number = number * 10 + static_cast<std::size_t>(format[1] - L'0');
                format.remove_prefix(1);
            }
            if (number < groups.size()) {
                append(groups[number]); // empty if it took no part
            }
        } else {
            out += L'$';
            continue;
        }
        format.remove_prefix(1);
    }
}

} // namespace

RegEx CreateRegEx(const OrvStringT& pattern, std::regex_constants::syntax_option_type options) {
    RegexOptions chosen;
    chosen.ignoreCase = (options & std::regex_constants::icase) != 0;
    chosen.withoutGroups = (options & std::regex_constants::nosubs) != 0;
    return RegEx(pattern.View(), chosen);
}

std::vector<OrvStringT> GetGroups(const RegexMatcher& matcher) {
    std::vector<OrvStringT> texts;
    texts.reserve(matcher.Groups().size());
    for (const RegexSpan& span : matcher.Groups()) {
        texts.emplace_back(matcher.Text(span));
    }
    return texts;
}

bool MatchRegEx(const OrvStringT& text, const RegEx& expression) { return RegexMatcher(expression, text).MatchAll(); }

bool MatchRegEx(const OrvStringT& text, std::vector<OrvStringT>& groups, const RegEx& expression) {
    RegexMatcher matcher(expression, text);
    if (!matcher.MatchAll()) {
        return false;
    }
    groups = GetGroups(matcher);
    return true;
}

bool SearchRegEx(const OrvStringT& text, const RegEx& expression) { return RegexMatcher(expression, text).Next(); }

bool SearchRegEx(const OrvStringT& text, std::vector<OrvStringT>& groups, const RegEx& expression) {
    RegexMatcher matcher(expression, text);
    if (!matcher.Next()) {
        return false;
    }
    groups = GetGroups(matcher);
    return true;
}

OrvStringT ReplaceRegEx(const OrvStringT& text, const RegEx& expression, const OrvStringT& format) {
    RegexMatcher matcher(expression, text);
    if (!matcher.Next()) {
        return text;
    }
    OrvStringT out;
    do {
        out += matcher.Text(matcher.Before());
        AppendFormatted(out, format, matcher);
    } while (matcher.Next());
    out += matcher.Text(matcher.Rest());
    return out;
}

} // namespace OrvUtils::String
