#include "JsonLines.h"

#include "JsonSyntax.h"
#include "JsonTokens.h"

#include <algorithm>

namespace OrvUQL::Tool {

namespace {

enum class LineKind {
    Complete, ///< a document
    CutOff,   ///< the beginning of one
    Neither,
};

bool IsOpening(char c) { return c == '{' || c == '['; }

bool BeginsValue(char c) { return IsOpening(c) || c == '"' || !EndsJsonScalar(c); }

bool IsBlank(std::string_view text) { return std::all_of(text.begin(), text.end(), IsJsonBlank); }

/// Outside of strings, as the end of a line in a document of several lines is.
bool EndsWithColon(std::string_view line) {
    while (!line.empty() && IsJsonBlank(line.back())) {
        line.remove_suffix(1);
    }
    return !line.empty() && line.back() == ':';
}

/// The place of the closing quote of the string that begins before `place`; the line's length if there is none.
std::size_t FindQuote(std::string_view line, std::size_t place) {
    while (place < line.size() && line[place] != '"') {
        place += line[place] == '\\' ? 2 : 1;
    }
    return std::min(place, line.size());
}

LineKind ReadLine(std::string_view line) {
    JsonTokens tokens;
    tokens.Begin();
    for (std::size_t place = 0; place < line.size();) {
        const char c = line[place++];
        bool isTaken = true;
        if (c == '"') {
            place = FindQuote(line, place) + 1;
            isTaken = place <= line.size() && tokens.TakeString();
        } else if (EndsJsonScalar(c)) {
            isTaken = IsJsonBlank(c) || tokens.TakePunctuation(c);
        } else {
            while (place < line.size() && !EndsJsonScalar(line[place])) {
                ++place;
            }
            isTaken = tokens.TakeScalar();
        }
        if (!isTaken) {
            return LineKind::Neither;
        }
    }
    return tokens.IsComplete() ? LineKind::Complete : LineKind::CutOff;
}

} // namespace

std::size_t FindCutOffLines(std::string_view text, std::optional<char> next) {
    constexpr std::size_t none = 0;
    std::size_t begin = text.find('\n') + 1;
    if (begin == 0) {
        return none;
    }
    // Whoever breaks lines to make a document readable does not do it behind a colon.
    bool followsColon = EndsWithColon(text.substr(0, begin));
    for (bool isSecond = true; begin < text.size(); isSecond = false) {
        if (!IsOpening(text[begin]) && !(isSecond && followsColon && BeginsValue(text[begin]))) {
            return none;
        }
        const std::size_t lineFeed = text.find('\n', begin);
        const bool isWhole = lineFeed != std::string_view::npos || !next;
        const std::string_view line = text.substr(begin, lineFeed - begin);
        const LineKind kind = isWhole ? ReadLine(line) : LineKind::Neither;
        if (kind == LineKind::Complete) {
            const bool isLast = IsBlank(text.substr(begin + line.size())) && (!next || BeginsValue(*next));
            return isLast ? begin : none;
        }
        if (lineFeed == std::string_view::npos) {
            return followsColon ? begin : none;
        }
        if (kind != LineKind::CutOff) {
            return none;
        }
        followsColon = EndsWithColon(line);
        begin = lineFeed + 1;
        if (begin == text.size()) {
            return next ? (IsOpening(*next) ? begin : none) : (followsColon ? begin : none);
        }
    }
    return none; // the second line is where nothing fits
}

} // namespace OrvUQL::Tool
