// Standard output, and standard error beside it.
#pragma once

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
    void Write(std::string_view bytes) {
        buffer += bytes;
        if (buffer.size() >= writeSize) {
            Flush();
        }
    }
    /// Has to be called at the end: a destructor could not report that the disk is full.
    void Flush();
    void WriteError(std::string_view bytes);

private:
    static constexpr std::size_t writeSize = 64 * 1024;

    std::string buffer;
};

} // namespace OrvUQL::Tool
