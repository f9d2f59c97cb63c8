#include "platform/RegexSequence.h"

#include "platform/RegexTraits.h"

#include <algorithm>
#include <limits>
#include <regex>

namespace OrvUQL::platform {

namespace {

constexpr std::size_t endless = std::numeric_limits<std::size_t>::max();

/// A term recurses once, and more terms than this are nothing that people write.
constexpr std::size_t maxTerms = 32;

constexpr std::uint32_t lastAscii = 0x7F;

bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

bool IsAsciiLetter(wchar_t unit) noexcept { return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z'); }

/// Takes a step, or throws.
void Step(std::uint64_t& steps) {
    if (steps == 0) {
        throw std::regex_error(std::regex_constants::error_complexity);
    }
    --steps;
}

} // namespace

// ---- sets ----

void RegexSequence::Set::Add(wchar_t firstUnit, wchar_t lastUnit) {
    const auto first = static_cast<std::uint32_t>(firstUnit);
    const auto last = static_cast<std::uint32_t>(lastUnit);
    for (std::uint32_t code = first; code <= std::min(last, lastAscii); ++code) {
        ascii[code >> 6] |= std::uint64_t{1} << (code & 63u);
    }
    if (last > lastAscii) {
        ranges.emplace_back(static_cast<wchar_t>(std::max(first, lastAscii + 1)), lastUnit);
    }
}

/// Of \d, \w, \s, or in upper case of what is not in them.
void RegexSequence::Set::AddClass(wchar_t letter) {
    const bool isNot = letter <= L'Z';
    const wchar_t lower = isNot ? static_cast<wchar_t>(letter + (L'a' - L'A')) : letter;
    const RegexClasses classes = lower == L'd'   ? regexClass::digit
                                 : lower == L'w' ? regexClass::word
                                                 : regexClass::space;
    for (std::uint32_t code = 0; code <= lastAscii; ++code) {
        const auto unit = static_cast<wchar_t>(code);
        if (IsInRegexClasses(unit, classes) != isNot) {
            Add(unit, unit);
        }
    }
    if (lower == L's') {
        (isNot ? takesNoSpaces : takesSpaces) = true;
    } else if (isNot) {
        takesSpaces = takesNoSpaces = true;
    }
}

bool RegexSequence::Set::Contains(wchar_t unit) const noexcept {
    const auto code = static_cast<std::uint32_t>(unit);
    bool isIn = false;
    if (code <= lastAscii) {
        isIn = (ascii[code >> 6] >> (code & 63u) & 1u) != 0;
    } else {
        isIn = (IsWhiteSpace(unit) ? takesSpaces : takesNoSpaces) ||
               std::any_of(ranges.begin(), ranges.end(),
                           [unit](const auto& range) { return unit >= range.first && unit <= range.second; });
    }
    return isIn != isNegated;
}

// ---- reading ----

class RegexSequence::Reader {
public:
    explicit Reader(std::wstring_view pattern) : text(pattern) {}

    /// False if the pattern is none for a sequence.
    bool Read(std::vector<Term>& out) {
        while (at < text.size()) {
            Term term;
            if (out.size() == maxTerms || !ReadSet(term.set) || !ReadQuantifier(term)) {
                return false;
            }
            out.push_back(std::move(term));
        }
        return true;
    }

private:
    std::wstring_view text;
    std::size_t at = 0;

    bool NextIs(wchar_t unit) const noexcept { return at < text.size() && text[at] == unit; }
    bool Take(wchar_t unit) noexcept {
        if (!NextIs(unit)) {
            return false;
        }
        ++at;
        return true;
    }

    bool ReadSet(Set& set) {
        const wchar_t unit = text[at++];
        switch (unit) {
        case L'.':
            set.Add(L'\n', L'\n');
            set.Add(L'\r', L'\r');
            set.Add(0x2028, 0x2029);
            set.isNegated = true;
            return true;
        case L'\\':
            return ReadEscape(set);
        case L'[':
            return ReadBracket(set);
        case L'(':
        case L')':
        case L'|':
        case L'^':
        case L'$':
        case L'*':
        case L'+':
        case L'?':
        case L'{':
            return false;
        default:
            set.Add(unit, unit);
            return true;
        }
    }

    /// A class of characters goes into the set, as does a single one.
    bool ReadEscape(Set& set) {
        if (at == text.size()) {
            return false;
        }
        const wchar_t letter = text[at++];
        wchar_t unit = letter;
        switch (letter) {
        case L'd':
        case L'D':
        case L's':
        case L'S':
        case L'w':
        case L'W':
            set.AddClass(letter);
            return true;
        case L'n':
            unit = L'\n';
            break;
        case L'r':
            unit = L'\r';
            break;
        case L't':
            unit = L'\t';
            break;
        default:
            // Punctuation stands for itself; other letters and digits have meanings of their own.
            if (static_cast<std::uint32_t>(letter) > lastAscii || IsAsciiLetter(letter) || IsDigit(letter) ||
                letter == L'_') {
                return false;
            }
            break;
        }
        set.Add(unit, unit);
        return true;
    }

    /// Units, ranges of them, and escapes. A dash that is neither between two units nor first or last is for others.
    bool ReadBracket(Set& set) {
        set.isNegated = Take(L'^');
        const std::size_t first = at;
        for (; at < text.size() && text[at] != L']';) {
            const wchar_t unit = text[at++];
            if (unit == L'[') {
                return false;
            }
            if (unit == L'\\') {
                if (!ReadEscape(set) || NextIs(L'-')) {
                    return false;
                }
                continue;
            }
            if (unit == L'-' && at - 1 != first && !NextIs(L']')) {
                return false;
            }
            if (unit == L'-' || !NextIs(L'-')) {
                if (unit == L'-' && at - 1 == first && NextIs(L'-')) {
                    return false;
                }
                set.Add(unit, unit);
                continue;
            }
            ++at; // the dash
            if (at == text.size()) {
                return false;
            }
            const wchar_t last = text[at];
            if (last == L']') {
                set.Add(unit, unit);
                set.Add(L'-', L'-');
                continue;
            }
            if (last == L'[' || last == L'\\' || last == L'-' || last < unit) {
                return false;
            }
            set.Add(unit, last);
            ++at;
            if (NextIs(L'-')) {
                return false;
            }
        }
        return at != first && Take(L']');
    }

    bool ReadQuantifier(Term& term) {
        if (Take(L'*')) {
            term.least = 0;
            term.most = endless;
        } else if (Take(L'+')) {
            term.most = endless;
        } else if (Take(L'?')) {
            term.least = 0;
        } else if (Take(L'{')) {
            std::size_t least = 0;
            if (!ReadNumber(least)) {
                return false;
            }
            std::size_t most = least;
            if (Take(L',') && !ReadNumber(most)) {
                most = endless;
            }
            if (!Take(L'}')) {
                return false;
            }
            term.least = least;
            term.most = most;
        } else {
            return true;
        }
        return !NextIs(L'?') && !NextIs(L'*') && !NextIs(L'+') && !NextIs(L'{');
    }

    bool ReadNumber(std::size_t& number) noexcept {
        constexpr std::size_t greatNumber = 100'000; // more than a pattern may ask for
        const std::size_t first = at;
        for (number = 0; at < text.size() && IsDigit(text[at]); ++at) {
            number = std::min(greatNumber, number * 10 + static_cast<std::size_t>(text[at] - L'0'));
        }
        return at != first;
    }
};

std::optional<RegexSequence> RegexSequence::Read(std::wstring_view pattern, RegexOptions options) {
    std::optional<RegexSequence> sequence(std::in_place);
    if (options.ignoreCase || !Reader(pattern).Read(sequence->terms)) {
        sequence.reset();
    }
    return sequence;
}

// ---- matching ----

std::optional<RegexSequence::Match> RegexSequence::Find(Search& search) const {
    const bool hasFirst = !terms.empty() && terms.front().least > 0;
    for (std::size_t start = search.start;; ++start) {
        if (hasFirst && !search.isContinuous && !search.isWhole) {
            const Set& first = terms.front().set;
            while (start < search.text.size() && !first.Contains(search.text[start])) {
                Step(search.steps);
                ++start;
            }
        }
        if (start > search.text.size()) {
            return std::nullopt;
        }
        std::size_t end = 0;
        if (MatchFrom(0, start, start, search, end)) {
            return Match{start, end};
        }
        if (search.isContinuous || search.isWhole || start == search.text.size()) {
            return std::nullopt;
        }
    }
}

/// As often as the text allows, and where what follows does not match then, less often.
bool RegexSequence::MatchFrom(std::size_t term, std::size_t at, std::size_t begin, Search& search,
                              std::size_t& end) const {
    const std::wstring_view text = search.text;
    for (; term < terms.size(); ++term) {
        const Term& current = terms[term];
        const std::size_t room = std::min(current.most, text.size() - at);
        std::size_t count = 0;
        while (count < room && current.set.Contains(text[at + count])) {
            Step(search.steps);
            ++count;
        }
        if (count < current.least) {
            Step(search.steps);
            return false;
        }
        if (current.least == current.most) { // no other way
            at += count;
            continue;
        }
        for (;; --count) {
            Step(search.steps);
            if (MatchFrom(term + 1, at + count, begin, search, end)) {
                return true;
            }
            if (count == current.least) {
                return false;
            }
        }
    }
    if ((search.isNotEmpty && at == begin) || (search.isWhole && at != text.size())) {
        return false;
    }
    end = at;
    return true;
}

} // namespace OrvUQL::platform
