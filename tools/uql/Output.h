// Standard output, and standard error beside it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Thrown where standard output takes no more. The message is empty if its reader has gone away (`uql ... | head`).
struct OutputFailed {
    std::string message;
};

/// Collects results and writes them in large pieces. Standard error is written at once, behind the results so far, so
/// that both stand in order where they go to the same place.
class Output {
public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() { ClearStatus(); } // also when results could not be written
    void Write(std::string_view bytes) {
        buffer += bytes;
        if (buffer.size() >= writeSize) {
            Flush();
        }
    }
    /// Has to be called at the end: a destructor could not report that the disk is full.
    void Flush();
    void WriteError(std::string_view bytes);
    /// Shows a line on standard error, which has to be a terminal, until anything else is written or another such line
    /// takes its place.
    void ShowStatus(std::string_view line);
    void ClearStatus();

private:
    static constexpr std::size_t writeSize = 64 * 1024;

    std::string buffer;
    std::size_t statusLength = 0; // of the line that is shown
};

} // namespace OrvUQL::Tool
