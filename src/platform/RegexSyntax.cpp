#include "platform/RegexSyntax.h"

#include "platform/RegexCaseRange.h"
#include "platform/RegexTraits.h"
#include "platform/RegexWork.h"

#include <algorithm>
#include <regex>
#include <vector>

namespace OrvUQL::platform {

namespace {

using std::regex_constants::error_type;

[[noreturn]] void Fail(error_type code) { throw std::regex_error(code); }

bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

bool IsLetter(wchar_t unit) noexcept { return IsInRegexClasses(unit, regexClass::alpha); }

/// Repeat counts and group numbers end here: more than any pattern may have, and no overflow in any sum.
constexpr std::size_t greatNumber = 1'000'000;

/// The count of a repeat without an end.
constexpr std::size_t endless = greatNumber + 1;

/// The grammar is ECMAScript's as the standard library has it:
///
///     pattern  = sequence ("|" sequence)*
///     sequence = (assertion | atom quantifier*)*
///     atom     = character | "." | escape | bracket | "(" ["?:"] pattern ")"
///     assertion = "^" | "$" | "\b" | "\B" | "(?=" pattern ")" | "(?!" pattern ")"
///     quantifier = ("*" | "+" | "?" | "{" n ["," [m]] "}") ["?"]
class SyntaxReader {
public:
    SyntaxReader(std::wstring_view pattern, RegexOptions regexOptions) : text(pattern), options(regexOptions) {
        groups.push_back({GroupKind::Plain, 0, {}, {}, false});
    }

    RegexSyntax Read() {
        while (at < text.size()) {
            ReadTerm();
        }
        if (groups.size() > 1) {
            Fail(std::regex_constants::error_paren);
        }
        return Conclude();
    }

private:
    enum class GroupKind : unsigned char { Plain, Capture, Lookahead };

    /// An open parenthesis, or the whole pattern.
    struct Group {
        GroupKind kind;
        std::size_t number; // of a capture
        RegexWork branches; // all but the last
        RegexWork sequence; // the last, without its last term
        bool hasBranches;
    };

    struct Escape {
        enum class Kind : unsigned char { Unit, Classes, Assertion, Reference } kind;
        wchar_t unit;
    };

    struct BracketToken {
        enum class Kind : unsigned char { Unit, Symbol, Classes, Dash, End } kind;
        wchar_t unit;
        std::size_t start;
    };

    std::wstring_view text;
    RegexOptions options;
    std::size_t at = 0;

    std::vector<Group> groups;
    std::vector<bool> isClosed{false}; // of each capture; the whole match is open to the end
    RegexWork term;                    // the last one, to which a quantifier would belong
    bool isRepeatable = false;
    bool isOddEscape = false; // a letter was escaped that means nothing but itself

    std::size_t terms = 0;
    std::size_t nesting = 0;
    std::size_t lookaheads = 0;
    std::size_t lookaheadNesting = 0;
    std::size_t openLookaheads = 0;
    std::size_t repeats = 0;
    std::size_t widestBracket = 0;

    std::wstring rewritten; // the pattern up to `copied`, with ranges replaced
    std::size_t copied = 0;

    bool AtEnd() const noexcept { return at == text.size(); }
    bool NextIs(wchar_t unit) const noexcept { return !AtEnd() && text[at] == unit; }
    bool Take(wchar_t unit) noexcept {
        if (NextIs(unit)) {
            ++at;
            return true;
        }
        return false;
    }

    // ---- terms ----

    void ReadTerm() {
        const wchar_t unit = text[at++];
        switch (unit) {
        case L'\\':
            ReadEscapedTerm();
            break;
        case L'(':
            OpenGroup();
            break;
        case L')':
            CloseGroup();
            break;
        case L'[':
            ReadBracket();
            AddAtom(RegexWork::Guarded());
            break;
        case L'*':
        case L'+':
        case L'?':
        case L'{':
            ReadQuantifier(unit);
            break;
        case L'|':
            EndBranch();
            break;
        case L'^':
        case L'$':
            AddAssertion(RegexWork::Guarded().Sized(1, 0, 0));
            break;
        default:
            AddAtom(RegexWork::Guarded());
            break;
        }
    }

    void AddTerm(const RegexWork& work, bool repeatable) {
        Group& group = groups.back();
        group.sequence = group.sequence + term;
        term = work;
        isRepeatable = repeatable;
        isOddEscape = false;
        ++terms;
    }
    void AddAtom(const RegexWork& ways) { AddTerm(ways.Sized(1, 0, 0), true); }
    void AddAssertion(const RegexWork& work) { AddTerm(work, false); }

    void ReadEscapedTerm() {
        const std::size_t letter = at;
        const Escape escape = ReadEscape(false);
        switch (escape.kind) {
        case Escape::Kind::Assertion:
            AddAssertion(RegexWork::Guarded().Sized(1, 0, 0));
            return;
        case Escape::Kind::Reference:
            AddAtom(RegexWork::Reference());
            return;
        default:
            AddAtom(RegexWork::Guarded());
            isOddEscape = escape.kind == Escape::Kind::Unit && escape.unit == text[letter] && at == letter + 1 &&
                          IsLetter(escape.unit);
        }
    }

    Escape ReadEscape(bool inBracket) {
        if (AtEnd()) {
            Fail(std::regex_constants::error_escape);
        }
        const wchar_t unit = text[at++];
        switch (unit) {
        case L'0':
            return {Escape::Kind::Unit, L'\0'};
        case L'f':
            return {Escape::Kind::Unit, L'\f'};
        case L'n':
            return {Escape::Kind::Unit, L'\n'};
        case L'r':
            return {Escape::Kind::Unit, L'\r'};
        case L't':
            return {Escape::Kind::Unit, L'\t'};
        case L'v':
            return {Escape::Kind::Unit, L'\v'};
        case L'b':
            return inBracket ? Escape{Escape::Kind::Unit, L'\b'} : Escape{Escape::Kind::Assertion, unit};
        case L'B':
            return {Escape::Kind::Assertion, unit};
        case L'd':
        case L'D':
        case L's':
        case L'S':
        case L'w':
        case L'W':
            return {Escape::Kind::Classes, unit};
        case L'c':
            // The standard library takes the letter for itself and not for a control character.
            if (AtEnd()) {
                Fail(std::regex_constants::error_escape);
            }
            return {Escape::Kind::Unit, text[at++]};
        case L'x':
            return {Escape::Kind::Unit, ReadHexadecimal(2)};
        case L'u':
            return {Escape::Kind::Unit, ReadHexadecimal(4)};
        default:
            break;
        }
        if (!IsDigit(unit)) {
            return {Escape::Kind::Unit, unit};
        }
        --at;
        const std::size_t number = ReadNumber();
        if (!inBracket && (number >= isClosed.size() || !isClosed[number])) {
            Fail(std::regex_constants::error_backref);
        }
        return {Escape::Kind::Reference, unit};
    }

    wchar_t ReadHexadecimal(int digits) {
        int value = 0;
        for (int i = 0; i < digits; ++i) {
            const int digit = AtEnd() ? -1 : RegexTraits<false>().value(text[at], 16);
            if (digit < 0) {
                Fail(std::regex_constants::error_escape);
            }
            value = value * 16 + digit;
            ++at;
        }
        return static_cast<wchar_t>(value);
    }

    std::size_t ReadNumber() noexcept {
        std::size_t number = 0;
        for (; !AtEnd() && IsDigit(text[at]); ++at) {
            number = std::min(greatNumber, number * 10 + static_cast<std::size_t>(text[at] - L'0'));
        }
        return number;
    }

    // ---- groups ----

    void OpenGroup() {
        GroupKind kind = options.withoutGroups ? GroupKind::Plain : GroupKind::Capture;
        if (Take(L'?')) {
            if (AtEnd()) {
                Fail(std::regex_constants::error_paren);
            }
            const wchar_t unit = text[at++];
            if (unit != L':' && unit != L'=' && unit != L'!') {
                Fail(static_cast<error_type>(regexErrorSyntax));
            }
            kind = unit == L':' ? GroupKind::Plain : GroupKind::Lookahead;
        }
        std::size_t number = 0;
        if (kind == GroupKind::Capture) {
            number = isClosed.size();
            isClosed.push_back(false);
        } else if (kind == GroupKind::Lookahead) {
            ++lookaheads;
            lookaheadNesting = std::max(lookaheadNesting, ++openLookaheads);
        }
        AddTerm({}, false);
        groups.push_back({kind, number, {}, {}, false});
        nesting = std::max(nesting, groups.size() - 1);
    }

    void CloseGroup() {
        if (groups.size() == 1) {
            Fail(std::regex_constants::error_paren);
        }
        EndBranch();
        const Group group = groups.back();
        groups.pop_back();
        const RegexWork& inside = group.branches;
        switch (group.kind) {
        case GroupKind::Plain:
            AddTerm(inside.Sized(1, 1, 0), true);
            break;
        case GroupKind::Capture:
            isClosed[group.number] = true;
            AddTerm((RegexWork::Guarded() + inside + RegexWork::Guarded()).Sized(2, 0, 0), true);
            break;
        case GroupKind::Lookahead:
            --openLookaheads;
            // It is matched apart from the rest, and after that the guard is asked.
            AddTerm((RegexWork::Guarded() + inside + RegexWork::Guarded()).Sized(2, 0, 0), false);
            break;
        }
    }

    void EndBranch() {
        Group& group = groups.back();
        const RegexWork branch = (group.sequence + term).Sized(1, 1, 0);
        group.branches = group.hasBranches ? (group.branches | branch).Sized(2, 1, 1) : branch;
        group.hasBranches = true;
        group.sequence = {};
        term = {};
        isRepeatable = false;
    }

    // ---- quantifiers ----

    void ReadQuantifier(wchar_t unit) {
        if (!isRepeatable) {
            Fail(std::regex_constants::error_badrepeat);
        }
        std::size_t least = unit == L'+' ? 1 : 0;
        std::size_t most = unit == L'?' ? 1 : endless;
        if (unit == L'{') {
            ReadCounts(least, most);
        }
        const bool isLazy = Take(L'?');
        const RegexWork once = term.Ways();
        const RegexWork guarded = RegexWork::Guarded();
        // A lazy repeat asks the guard only after it has tried to do without.
        const RegexWork often =
            isLazy ? RegexWork() | (guarded + once + guarded) : guarded + (RegexWork() | (once + guarded));
        const RegexWork perhaps = isLazy ? RegexWork() | (guarded + once) : guarded + (once | RegexWork());
        const double lazyBranches = isLazy ? 1 : 0;
        if (unit != L'{') {
            const RegexWork ways = unit == L'?' ? perhaps : unit == L'*' ? often : once + often;
            term = ways.Sized(term.states + 2, term.links + 1, term.branches + lazyBranches);
            isOddEscape = false;
            return;
        }
        const bool isEndless = most == endless;
        const auto optional = static_cast<double>(isEndless ? 1 : most - least);
        const double copies = static_cast<double>(least) + optional;
        const RegexWork size =
            RegexWork().Sized(term.states * (copies + 1) + optional + 3, term.links * (copies + 1) + 2,
                              term.branches * (copies + 1) + (isLazy ? optional : 0));
        RegexWork ways;
        for (std::size_t i = 0; i < least && MayRepeat(); ++i) {
            ways = ways + once;
        }
        for (std::size_t i = 0; !isEndless && i < most - least && MayRepeat(); ++i) {
            ways = ways + perhaps;
        }
        if (isEndless) {
            ways = ways + often;
        }
        term = ways.Sized(size.states, size.links, size.branches);
        isOddEscape = false;
    }

    /// Each repetition is at least one state, so patterns that are accepted never come to the end of these.
    bool MayRepeat() noexcept { return repeats++ < maxRegexStates; }

    void ReadCounts(std::size_t& least, std::size_t& most) {
        if (AtEnd()) {
            Fail(std::regex_constants::error_brace);
        }
        if (!IsDigit(text[at])) {
            // \p{L} and its like
            Fail(isOddEscape ? std::regex_constants::error_escape : std::regex_constants::error_badbrace);
        }
        least = ReadNumber();
        most = least;
        if (Take(L',')) {
            most = !AtEnd() && IsDigit(text[at]) ? ReadNumber() : endless;
        }
        if (AtEnd()) {
            Fail(std::regex_constants::error_brace);
        }
        if (!Take(L'}') || most < least) {
            Fail(std::regex_constants::error_badbrace);
        }
    }

    // ---- brackets ----

    void ReadBracket() {
        enum class Last : unsigned char { None, Unit, Classes } last = Last::None;
        wchar_t lastUnit = 0;
        std::size_t lastStart = 0;
        std::size_t lists = 0; // what is searched one after the other for each unit
        const auto setLast = [&](const BracketToken& token) {
            last = Last::Unit;
            lastUnit = token.unit;
            lastStart = token.start;
        };
        Take(L'^');
        BracketToken token = ReadBracketToken();
        if (token.kind == BracketToken::Kind::Unit || token.kind == BracketToken::Kind::Dash) {
            setLast(token);
            token = ReadBracketToken();
        }
        while (token.kind != BracketToken::Kind::End) {
            if (token.kind == BracketToken::Kind::Classes) {
                last = Last::Classes;
                ++lists;
            } else if (token.kind != BracketToken::Kind::Dash) {
                setLast(token);
            } else {
                const BracketToken next = ReadBracketToken();
                if (next.kind == BracketToken::Kind::End) {
                    break; // stands for itself
                }
                if (last == Last::None) {
                    setLast(token);
                    token = next;
                    continue;
                }
                const bool isEnd = next.kind == BracketToken::Kind::Unit || next.kind == BracketToken::Kind::Dash;
                if (last == Last::Classes || !isEnd || lastUnit > next.unit) {
                    Fail(std::regex_constants::error_range);
                }
                lists += AddRange(lastUnit, next.unit, lastStart);
                last = Last::None;
            }
            token = ReadBracketToken();
        }
        widestBracket = std::max(widestBracket, lists);
    }

    /// Returns how many ranges became of the one.
    std::size_t AddRange(wchar_t first, wchar_t last, std::size_t start) {
        if (!options.ignoreCase) {
            return 1;
        }
        rewritten += text.substr(copied, start - copied);
        copied = at;
        return AppendUpperRanges(rewritten, first, last);
    }

    BracketToken ReadBracketToken() {
        const std::size_t start = at;
        if (AtEnd()) {
            Fail(std::regex_constants::error_brack);
        }
        const wchar_t unit = text[at++];
        if (unit == L']') {
            return {BracketToken::Kind::End, unit, start};
        }
        if (unit == L'-') {
            return {BracketToken::Kind::Dash, unit, start};
        }
        if (unit == L'[') {
            return ReadBracketName(start);
        }
        if (unit != L'\\') {
            return {BracketToken::Kind::Unit, unit, start};
        }
        const Escape escape = ReadEscape(true);
        if (escape.kind == Escape::Kind::Assertion || escape.kind == Escape::Kind::Reference) {
            Fail(std::regex_constants::error_escape);
        }
        const bool isUnit = escape.kind == Escape::Kind::Unit;
        return {isUnit ? BracketToken::Kind::Unit : BracketToken::Kind::Classes, escape.unit, start};
    }

    /// [:alpha:], [.hyphen.] and [=a=] behind their first bracket, which else stands for itself.
    BracketToken ReadBracketName(std::size_t start) {
        if (AtEnd()) {
            Fail(std::regex_constants::error_brack);
        }
        const wchar_t mark = text[at];
        if (mark != L':' && mark != L'.' && mark != L'=') {
            return {BracketToken::Kind::Unit, L'[', start};
        }
        const error_type mistake =
            mark == L':' ? std::regex_constants::error_ctype : std::regex_constants::error_collate;
        const std::size_t end = text.find(mark, ++at);
        if (end == std::wstring_view::npos || end + 1 >= text.size() || text[end + 1] != L']') {
            Fail(mistake);
        }
        const std::wstring_view name = text.substr(at, end - at);
        at = end + 2;
        if (mark == L':') {
            if (FindRegexClasses(name, options.ignoreCase) == 0) {
                Fail(mistake);
            }
            return {BracketToken::Kind::Classes, 0, start};
        }
        const std::wstring element = FindCollatingElement(name);
        if (element.empty()) {
            Fail(mistake);
        }
        return mark == L'.' ? BracketToken{BracketToken::Kind::Symbol, element[0], start}
                            : BracketToken{BracketToken::Kind::Classes, 0, start};
    }

    // ---- the whole ----

    RegexSyntax Conclude() {
        EndBranch();
        constexpr double frame = 5; // begin and end of the match, and what accepts it
        const RegexWork whole = (RegexWork::Guarded() + groups.back().branches).Sized(frame, 0, 0);
        const std::size_t most = lookaheads == 0 ? maxRegexStates : maxRegexStatesWithLookahead;
        if (whole.states > static_cast<double>(most) || whole.links > static_cast<double>(maxRegexLinks) ||
            whole.within > static_cast<double>(maxRegexUnguardedPaths) || nesting > maxRegexNesting ||
            lookaheadNesting > maxRegexLookaheadNesting) {
            Fail(std::regex_constants::error_complexity);
        }
        RegexSyntax syntax;
        rewritten += text.substr(copied);
        syntax.pattern = std::move(rewritten);
        syntax.states = static_cast<std::size_t>(whole.states);
        syntax.terms = terms;
        syntax.nesting = nesting;
        syntax.unguarded = static_cast<std::size_t>(whole.branches);
        syntax.startPrice = syntax.states / 4 + isClosed.size();
        // Most steps take the same time. Those that search a long list, clear the memory of a lookahead or follow many
        // ways without asking the guard do not, and all of such a pattern are taken to be as slow.
        constexpr std::size_t shortList = 64;
        constexpr std::size_t unitsPerStep = 4;
        syntax.stepPrice += widestBracket > shortList ? widestBracket / unitsPerStep : 0;
        syntax.stepPrice += lookaheads != 0 ? (syntax.states + isClosed.size()) / (2 * unitsPerStep) : 0;
        syntax.stepPrice += static_cast<std::uint64_t>(whole.within) / unitsPerStep;
        return syntax;
    }
};

} // namespace

RegexSyntax ReadRegexSyntax(std::wstring_view pattern, RegexOptions options) {
    return SyntaxReader(pattern, options).Read();
}

} // namespace OrvUQL::platform
