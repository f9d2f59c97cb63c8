// Ctrl-C.
#pragma once

#include <atomic>

namespace OrvUQL::Tool {

/// As long as it lives, the user's wish to end what the program does is noted instead of ending the program; a second
/// one ends it. There may be one at a time, and what an earlier one has noted is forgotten. A program that was started
/// with the signal ignored goes on ignoring it.
class InterruptWatch {
public:
    InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

    /// Whether the user wants it to end. Whoever waits for input then waits no longer: it looks as if it had ended.
    static bool IsInterrupted();

    /// What IsInterrupted() reads.
    static const std::atomic<bool>& GetFlag();

    /// Ends the process as it would have ended if nobody had watched.
    [[noreturn]] static void EndProcess();

    /// A descriptor that can be read once the user wants the program to end; -1 if there is none.
    static int GetDescriptor();
};

} // namespace OrvUQL::Tool
