#include "platform/RegexGuard.h"

namespace OrvUQL::platform {

namespace {

/// How many comparisons may follow after the match was given up. The frames that return ask a few times each.
constexpr std::uint64_t graceSteps = 20'000'000;

/// How much deeper the matcher may get in that time.
constexpr std::uintptr_t graceStack = 16 * 1024;

} // namespace

bool RegexGuard::GiveUp() {
    const std::uintptr_t pointer = StackPointer();
    if (lack == Lack::None) {
        lack = pointer < stackLimit ? Lack::Stack : Lack::Steps;
        steps = 0;
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
