#include "LimitSettings.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace OrvUQL::Tool {

namespace {

/// False if the text is no number above 0, or one that is too large.
template <class Number> bool ReadNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0;
}

std::string Refuse(std::string_view text, const char* expected) {
    return "'" + std::string(text) + "' is not a number of " + expected;
}

} // namespace

EvaluationLimits LimitSettings::MakeLimits() const {
    EvaluationLimits limits;
    limits.steps = steps.value_or(EvaluationLimits::unlimitedSteps);
    limits.memory = memory.value_or(EvaluationLimits::unlimitedMemory);
    // What is beyond the clock's range is no limit.
    constexpr double mostSeconds = 9e9;
    if (seconds && *seconds < mostSeconds) {
        limits.nanoseconds = static_cast<std::int64_t>(std::ceil(*seconds * 1e9));
    }
    return limits;
}

std::string LimitSettings::ReadSteps(std::string_view text) {
    std::uint64_t number = 0;
    if (!ReadNumber(text, number)) {
        return Refuse(text, "steps");
    }
    steps = number;
    return std::string();
}

std::string LimitSettings::ReadMemory(std::string_view text) {
    constexpr std::string_view prefixes = "kMG";
    std::string_view digits = text;
    int shift = 0;
    if (const std::size_t prefix = text.empty() ? std::string_view::npos : prefixes.find(text.back());
        prefix != std::string_view::npos) {
        shift = 10 * (static_cast<int>(prefix) + 1);
        digits.remove_suffix(1);
    }
    std::size_t number = 0;
    if (!ReadNumber(digits, number) || number > EvaluationLimits::unlimitedMemory >> shift) {
        return Refuse(text, "bytes");
    }
    memory = number << shift;
    return std::string();
}

std::string LimitSettings::ReadSeconds(std::string_view text) {
    double number = 0.0;
    if (!ReadNumber(text, number) || !std::isfinite(number)) {
        return Refuse(text, "seconds");
    }
    seconds = number;
    return std::string();
}

} // namespace OrvUQL::Tool
