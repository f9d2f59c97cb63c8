#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Reads a pattern before the standard library does, which names some mistakes wrongly, takes hours over some patterns
/// and recurses too deep over others.
namespace OrvUQL::platform {

struct RegexOptions {
    bool ignoreCase = false;    ///< compare the upper-case mappings of units
    bool withoutGroups = false; ///< ( is (?: and no back reference is valid

    friend bool operator==(const RegexOptions& a, const RegexOptions& b) noexcept {
        return a.ignoreCase == b.ignoreCase && a.withoutGroups == b.withoutGroups;
    }
};

// What patterns may ask for. What lies beyond is error_complexity, on every machine and on every stack alike.

/// States of the compiled expression: about one for each character and each character that { } repeats.
inline constexpr std::size_t maxRegexStates = 50'000;
/// States that only link others; the time that the standard library's compiler takes is quadratic in these.
inline constexpr std::size_t maxRegexLinks = 12'000;
/// With a lookahead, each attempt of which takes memory for all states.
inline constexpr std::size_t maxRegexStatesWithLookahead = 2'000;
/// Parentheses, and lookaheads, inside of one another.
inline constexpr std::size_t maxRegexNesting = 1'000;
inline constexpr std::size_t maxRegexLookaheadNesting = 16;
/// Ways through empty alternatives that lead to a back reference; only patterns like (?:|){20}\1 have more than a few.
inline constexpr std::size_t maxRegexUnguardedPaths = 1'000;

/// What a pattern asks for.
struct RegexSyntax {
    std::wstring pattern;         ///< for the standard library's compiler
    std::size_t states = 0;       ///< never fewer than the compiled expression has
    std::size_t terms = 0;        ///< as far as the compiler recurses for a sequence
    std::size_t nesting = 0;      ///< and for parentheses
    std::size_t unguarded = 0;    ///< frames between two steps of the matcher that ask the guard, at most
    std::uint64_t stepPrice = 1;  ///< of a step that may take longer than others
    std::uint64_t startPrice = 0; ///< of beginning a match
};

/// Throws std::regex_error for a pattern that is none, or that asks for too much.
RegexSyntax ReadRegexSyntax(std::wstring_view pattern, RegexOptions options);

/// std::regex_constants::error_syntax of Microsoft's library, for which g++ has no name.
inline constexpr int regexErrorSyntax = 14;

} // namespace OrvUQL::platform
