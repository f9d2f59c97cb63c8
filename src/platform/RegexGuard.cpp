#include "platform/RegexGuard.h"

#include "platform/Meter.h"

#include <algorithm>

namespace OrvUQL::platform {

namespace {

/// How many comparisons may follow after the match was given up. The frames that return ask a few times each.
constexpr std::uint64_t graceSteps = 20'000'000;

/// How many are taken from those put aside at once.
constexpr std::uint64_t stepsPerQuestion = 1'000'000;

/// How much deeper the matcher may get in that time.
constexpr std::uintptr_t graceStack = 16 * 1024;

} // namespace

/// Of what was put aside, if the meter allows what has been done since the match began. It is charged for that behind
/// the match: for as much, on every thread, as the match takes, whatever was tried on a stack that did not do.
bool RegexGuard::TakeMore() noexcept {
    Meter* const meter = CurrentThread().meter;
    const std::uint64_t done = first - (steps + aside);
    if (aside == 0 || (meter != nullptr && !meter->Allows(done / matcherStepsPerStep))) {
        return false;
    }
    const std::uint64_t more = std::min(aside, stepsPerQuestion);
    aside -= more;
    steps += more;
    return true;
}

bool RegexGuard::GiveUp() {
    const std::uintptr_t pointer = StackPointer();
    if (lack == Lack::None && pointer >= stackLimit) {
        while (steps < price && TakeMore()) {}
        if (steps >= price) {
            steps -= price;
            return true;
        }
    }
    if (lack == Lack::None) {
        lack = pointer < stackLimit ? Lack::Stack : Lack::Steps;
        steps = 0;
        aside = 0;
        grace = graceSteps;
        return false;
    }
    if (grace == 0 || pointer + graceStack < stackLimit) {
        throw std::regex_error(lack == Lack::Stack ? std::regex_constants::error_stack
                                                   : std::regex_constants::error_complexity);
    }
    --grace;
    return false;
}

} // namespace OrvUQL::platform
