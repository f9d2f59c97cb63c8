#include "ErrorReport.h"

#include <algorithm>

namespace OrvUQL::Tool {

namespace {

constexpr std::wstring_view lineBreaks = L"\r\n";
constexpr std::wstring_view blanks = L" \t\r\n";

bool IsLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

} // namespace

std::string FormatMessage(std::string_view message) { return "uql: " + std::string(message) + "\n"; }

std::string FormatCaret(const OrvStringT& query, int position) {
    if (position < 0) {
        return std::string();
    }
    const std::wstring_view text = query.View();
    std::size_t place = std::min(static_cast<std::size_t>(position), text.size());
    // What is missing at the end is missing behind the last line that holds something, not on an empty line below it.
    if (text.find_first_not_of(blanks, place) == std::wstring_view::npos) {
        const std::size_t last = text.find_last_not_of(blanks);
        const std::size_t lineEnd = text.find_first_of(lineBreaks, last == std::wstring_view::npos ? 0 : last);
        place = std::min(place, lineEnd);
    }
    const std::size_t previousBreak = place == 0 ? std::wstring_view::npos : text.find_last_of(lineBreaks, place - 1);
    const std::size_t begin = previousBreak == std::wstring_view::npos ? 0 : previousBreak + 1;
    const std::size_t end = std::min(text.find_first_of(lineBreaks, place), text.size());
    std::string report = "  " + OrvStringT(text.substr(begin, end - begin)).ToUtf8() + "\n  ";
    for (const wchar_t unit : text.substr(begin, place - begin)) {
        if (!IsLowSurrogate(unit)) { // a pair is one character
            report += unit == L'\t' ? '\t' : ' ';
        }
    }
    return report + "^\n";
}

std::string FormatSuggestion(const OrvStringT& name) {
    return name.IsEmpty() ? std::string() : std::string("  did you mean '") + name.ToUtf8() + "'?\n";
}

std::string GetFailureMessage(IError* error) {
    return error == nullptr ? "the query has no value" : error->GetMessageW().ToUtf8();
}

} // namespace OrvUQL::Tool
