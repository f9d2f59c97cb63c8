#include "platform/Regex.h"

#include "platform/Meter.h"
#include "platform/RegexCache.h"
#include "platform/RegexProgram.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace OrvUQL::platform {

namespace {

constexpr std::uint64_t baseSteps = 50'000'000;
constexpr std::uint64_t stepsPerUnit = 50;

/// How much of the caller's stack a match takes before it goes to one of its own. Coming back from far down, only to
/// begin again elsewhere, costs more than the switch.
constexpr std::uintptr_t borrowedStack = 1024 * 1024;

constexpr std::size_t smallestStack = 1024 * 1024;

} // namespace

Regex::Regex(std::wstring_view pattern, RegexOptions options) : program(GetCachedRegex(pattern, options)) {
    // As if it had been compiled: what an evaluation takes does not depend on those before it.
    if (Meter* const meter = CurrentThread().meter) {
        meter->Note(program->States() / statesPerStep);
    }
}

Regex::Regex(const Regex& other) noexcept : program(other.program) { program->AddRef(); }

Regex& Regex::operator=(const Regex& other) noexcept {
    other.program->AddRef();
    std::exchange(program, other.program)->Release();
    return *this;
}

Regex::~Regex() { program->Release(); }

RegexMatcher::RegexMatcher(const Regex& regex, std::wstring_view matchedText) : expression(regex), text(matchedText) {
    guard.steps = baseSteps + stepsPerUnit * text.size();
    guard.price = regex.Program().StepPrice();
}

bool RegexMatcher::MatchAll() { return RunMetered(0, std::regex_constants::match_default, true); }

bool RegexMatcher::Next() {
    if (!isStarted) {
        isStarted = true;
        return Search(0, stepFlags);
    }
    if (isAtEnd) {
        return false;
    }
    const RegexSpan last = groups[0];
    previousEnd = last.End();
    std::size_t start = last.End();
    if (last.length == 0) {
        if (start == text.size()) {
            isAtEnd = true;
            return false;
        }
        // Something longer may begin where the empty match is. (That this is asked without match_prev_avail at first is
        // the standard's way.)
        if (Search(start, stepFlags | std::regex_constants::match_not_null | std::regex_constants::match_continuous)) {
            return true;
        }
        isAtEnd = false;
        ++start;
    }
    stepFlags |= std::regex_constants::match_prev_avail;
    return Search(start, stepFlags);
}

RegexSpan RegexMatcher::Rest() const noexcept { return {restStart, text.size() - restStart, true}; }

bool RegexMatcher::Search(std::size_t start, std::regex_constants::match_flag_type flags) {
    if (!RunMetered(start, flags, false)) {
        isAtEnd = true;
        return false;
    }
    restStart = groups[0].End();
    return true;
}

/// Charges the thread's meter, if it has one, for the steps that the match takes, also if it is given up.
bool RegexMatcher::RunMetered(std::size_t start, std::regex_constants::match_flag_type flags, bool wholeText) {
    if (CurrentThread().meter == nullptr) {
        return Run(start, flags, wholeText);
    }
    struct Bill {
        const RegexGuard& guard;
        std::uint64_t before;
        ~Bill() { CurrentThread().meter->Note((before - guard.steps) / matcherStepsPerStep); }
    };
    bool found = false;
    {
        const Bill bill{guard, guard.steps};
        found = Run(start, flags, wholeText);
    }
    Charge(0);
    return found;
}

bool RegexMatcher::Run(std::size_t start, std::regex_constants::match_flag_type flags, bool wholeText) {
    const RegexProgram& program = expression.Program();
    if (const RegexSequence* const sequence = program.Sequence()) {
        return RunSequence(*sequence, start, flags, wholeText);
    }
    guard.steps -= std::min(guard.steps, program.StartPrice());
    if (!stack.IsOpen()) {
        const std::uintptr_t here = RegexGuard::StackPointer();
        const std::uintptr_t low = GetUsableStackLow() + program.FrameReserve();
        if (here > low) {
            const std::uint64_t steps = guard.steps;
            const std::uintptr_t limit = here - low > borrowedStack ? here - borrowedStack : low;
            try {
                return RunOnce(limit, start, flags, wholeText);
            } catch (const std::regex_error& error) {
                if (error.code() != std::regex_constants::error_stack) {
                    throw;
                }
            }
            guard.steps = steps; // the outcome must be the same for a caller with more stack
        }
        const std::size_t least = smallestStack + program.FrameReserve();
        if (!stack.Open(std::max(SwitchedStack::GetMaximum(), least), least)) {
            throw std::regex_error(std::regex_constants::error_stack);
        }
    }
    bool found = false;
    stack.Run(
        [&] { found = RunOnce(stack.GetLow() + stackReserve + program.FrameReserve(), start, flags, wholeText); });
    return found;
}

bool RegexMatcher::RunSequence(const RegexSequence& sequence, std::size_t start,
                               std::regex_constants::match_flag_type flags, bool wholeText) {
    RegexSequence::Search search = {text, start};
    search.isContinuous = (flags & std::regex_constants::match_continuous) != 0;
    search.isNotEmpty = (flags & std::regex_constants::match_not_null) != 0;
    search.isWhole = wholeText;
    search.steps = guard.steps;
    const std::optional<RegexSequence::Match> match = sequence.Find(search);
    guard.steps = search.steps;
    if (match) {
        groups.assign(1, {match->start, match->end - match->start, true});
    }
    return match.has_value();
}

bool RegexMatcher::RunOnce(std::uintptr_t limit, std::size_t start, std::regex_constants::match_flag_type flags,
                           bool wholeText) {
    guard.Restart(limit);
    struct Finish {
        RegexGuard& guard;
        ~Finish() { guard.Finish(); }
    } const finish{guard};
    const RegexIterator first(text.data() + start, &guard);
    const RegexIterator last(text.data() + text.size(), &guard);
    const bool found = expression.Program().Execute(first, last, results, flags, wholeText);
    if (guard.lack != RegexGuard::Lack::None) {
        throw std::regex_error(guard.lack == RegexGuard::Lack::Stack ? std::regex_constants::error_stack
                                                                     : std::regex_constants::error_complexity);
    }
    if (!found) {
        return false;
    }
    groups.resize(results.size());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const auto& result = results[i];
        groups[i].isMatched = result.matched;
        groups[i].start = static_cast<std::size_t>(result.first.Position() - text.data());
        groups[i].length = static_cast<std::size_t>(result.second - result.first);
    }
    return true;
}

} // namespace OrvUQL::platform
