#pragma once

#include <OrvUQL/OrvString.h>

#include "platform/RegexGuard.h"
#include "platform/RegexSyntax.h"
#include "platform/SwitchedStack.h"

#include <cstddef>
#include <regex>
#include <string_view>
#include <vector>

/// Regular expressions: the standard library's engine with the ECMAScript grammar, made safe for any pattern and any
/// text and independent of locales.
namespace OrvUQL::platform {

class RegexProgram;
class RegexSequence;

/// A compiled expression. Copies share it; it belongs to one thread.
class Regex {
public:
    /// Throws std::regex_error for a pattern that is none or that asks for too much. Expressions that the thread used
    /// lately are not compiled again.
    Regex(std::wstring_view pattern, RegexOptions options);

    /// Takes the reference over.
    explicit Regex(const RegexProgram* compiled) noexcept : program(compiled) {}
    Regex(const Regex& other) noexcept;
    Regex& operator=(const Regex& other) noexcept;
    ~Regex();

    const RegexProgram& Program() const noexcept { return *program; }

private:
    const RegexProgram* program;
};

/// A part of a text.
struct RegexSpan {
    std::size_t start = 0;
    std::size_t length = 0;
    bool isMatched = false; ///< false: a group that took no part in the match

    std::size_t End() const noexcept { return start + length; }
};

/// Matches one expression with one text, once or again and again.
///
/// All attempts together take 50 million steps and 50 more for each unit of the text at most (more than a second, less
/// than ten); then, or where the text needs a deeper recursion than a stack of its own can give, std::regex_error is
/// thrown, with error_complexity or error_stack. Whether a match is found never depends on how much stack the caller
/// has left.
class RegexMatcher {
public:
    /// The text is borrowed.
    RegexMatcher(const Regex& regex, std::wstring_view matchedText);
    RegexMatcher(const RegexMatcher&) = delete;
    RegexMatcher& operator=(const RegexMatcher&) = delete;

    /// Whether the whole text matches.
    bool MatchAll();

    /// Moves on to the next match, in the steps of std::regex_iterator. False when there is none.
    bool Next();

    /// The match found last: the whole first, then each group.
    const std::vector<RegexSpan>& Groups() const noexcept { return groups; }

    /// The text between the match before, or the text's begin, and this one.
    RegexSpan Before() const noexcept { return {previousEnd, groups[0].start - previousEnd, true}; }

    /// The text behind the last match found; the whole text if there was none.
    RegexSpan Rest() const noexcept;

    std::wstring_view Text(const RegexSpan& span) const noexcept { return text.substr(span.start, span.length); }

private:
    Regex expression;
    std::wstring_view text;
    RegexGuard guard;
    SwitchedStack stack;
    std::match_results<RegexIterator> results;
    std::vector<RegexSpan> groups;
    std::size_t previousEnd = 0; // of the match before the last
    std::size_t restStart = 0;
    bool isStarted = false;
    bool isAtEnd = false;
    std::regex_constants::match_flag_type stepFlags = std::regex_constants::match_default;

    bool Search(std::size_t start, std::regex_constants::match_flag_type flags);
    bool RunMetered(std::size_t start, std::regex_constants::match_flag_type flags, bool wholeText);
    bool Run(std::size_t start, std::regex_constants::match_flag_type flags, bool wholeText);
    bool RunSequence(const RegexSequence& sequence, std::size_t start, std::regex_constants::match_flag_type flags,
                     bool wholeText);
    bool RunOnce(std::uintptr_t limit, std::size_t start, std::regex_constants::match_flag_type flags, bool wholeText);
};

} // namespace OrvUQL::platform

/// The same for texts. All of these throw std::regex_error, and std::bad_alloc where memory ends.
namespace OrvUtils::String {

using RegEx = OrvUQL::platform::Regex;

/// Of the options, icase and nosubs make a difference; the grammar is ECMAScript's, and collate changes nothing.
RegEx CreateRegEx(const OrvStringT& pattern, std::regex_constants::syntax_option_type options);

/// Whether the whole text matches. `groups` then holds the whole and each group, empty where it took no part.
bool MatchRegEx(const OrvStringT& text, const RegEx& expression);
bool MatchRegEx(const OrvStringT& text, std::vector<OrvStringT>& groups, const RegEx& expression);

/// Whether some part of the text matches. `groups` is then of the first such part.
bool SearchRegEx(const OrvStringT& text, const RegEx& expression);
bool SearchRegEx(const OrvStringT& text, std::vector<OrvStringT>& groups, const RegEx& expression);

/// Replaces every match. In the format, $& is the match, $1 to $99 are its groups, $` and $' the text since the match
/// before and all text behind it, and $$ is a dollar.
OrvStringT ReplaceRegEx(const OrvStringT& text, const RegEx& expression, const OrvStringT& format);

/// The texts of a matcher's groups.
std::vector<OrvStringT> GetGroups(const OrvUQL::platform::RegexMatcher& matcher);

} // namespace OrvUtils::String
