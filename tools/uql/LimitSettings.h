// Bounds for evaluations, as users give them.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// What an evaluation may take. Nothing: as much as it likes.
struct LimitSettings {
    std::optional<std::uint64_t> steps;
    std::optional<std::size_t> memory; ///< in bytes
    std::optional<double> seconds;

    bool HasAny() const { return steps || memory || seconds; }

    /// As the engine takes them.
    EvaluationLimits MakeLimits() const;

    /// Each reads a limit and returns what is wrong with the text; empty: nothing. A number above 0, of bytes also with
    /// k, M or G behind it, for 1024 of them and so on, of seconds also a fraction.
    std::string ReadSteps(std::string_view text);
    std::string ReadMemory(std::string_view text);
    std::string ReadSeconds(std::string_view text);
};

} // namespace OrvUQL::Tool
