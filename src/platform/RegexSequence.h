#pragma once

#include "platform/RegexSyntax.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Patterns such as \d+ or [a-z]\w*: characters and sets of them, one after the other, each perhaps repeated. They are
/// matched here, in the way of ECMAScript as for all patterns, without the standard library, whose matcher is made for
/// more and takes ten times as long.
namespace OrvUQL::platform {

class RegexSequence {
public:
    /// None for a pattern that has more to it: groups, alternatives, assertions, lazy repeats, names of classes, or
    /// letters without case. The pattern must be one.
    static std::optional<RegexSequence> Read(std::wstring_view pattern, RegexOptions options);

    struct Match {
        std::size_t start;
        std::size_t end;
    };

    /// What to look for, and how long.
    struct Search {
        std::wstring_view text;
        std::size_t start;         ///< of the first attempt
        bool isContinuous = false; ///< there is only this one
        bool isWhole = false;      ///< and it has to reach the end of the text
        bool isNotEmpty = false;   ///< a match has a length
        std::uint64_t steps = 0;   ///< at most; what is left of them is returned
    };

    /// The first match, or none. Throws std::regex_error with error_complexity where the steps do not suffice.
    std::optional<Match> Find(Search& search) const;

private:
    /// A set of units: the bits of the ASCII ones, and what decides for all others.
    struct Set {
        std::uint64_t ascii[2] = {0, 0};
        std::vector<std::pair<wchar_t, wchar_t>> ranges; ///< beyond ASCII, ends included
        bool takesSpaces = false;                        ///< those beyond ASCII
        bool takesNoSpaces = false;                      ///< all beyond ASCII that are none
        bool isNegated = false;                          ///< whatever the rest says is not in it

        void Add(wchar_t first, wchar_t last);
        void AddClass(wchar_t letter);
        bool Contains(wchar_t unit) const noexcept;
    };

    struct Term {
        Set set;
        std::size_t least = 1;
        std::size_t most = 1;
    };

    class Reader;

    std::vector<Term> terms;

    bool MatchFrom(std::size_t term, std::size_t at, std::size_t begin, Search& search, std::size_t& end) const;
};

} // namespace OrvUQL::platform
