// How far a long run has come.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace OrvUQL::Tool {

/// Says from time to time what a user at a terminal should know of a run that takes more than a second.
class Progress {
public:
    /// The run begins now. Says nothing unless standard error is a terminal.
    Progress();

    /// The line to show, if it is time for one; else empty. `fraction` is how much of the input has been read.
    std::string Tell(std::size_t records, std::size_t failures, std::optional<double> fraction);

private:
    using Clock = std::chrono::steady_clock;

    bool isShown;
    Clock::time_point begin;
    Clock::time_point next;
};

} // namespace OrvUQL::Tool
