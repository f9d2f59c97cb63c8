// Files and streams as the operating system has them: the one seam of the command to the platform.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// A file that is read from its beginning to its end. "-" is standard input.
class InputFile {
public:
    /// Opens nothing yet.
    explicit InputFile(std::string filePath) : path(std::move(filePath)) {}
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&&) = delete;
    ~InputFile();

    /// False with the system's words in `error`.
    bool Open(std::string& error);
    /// Reads up to `size` bytes, as many as are there, and waits only if there are none. 0 at the end, -1 on failure.
    std::ptrdiff_t Read(char* buffer, std::size_t size, std::string& error);
    /// True if Read would have to wait for somebody to write.
    bool WouldWait() const;

    /// As given.
    const std::string& GetPath() const { return path; }

private:
    std::string path;
    int handle = -1;
};

/// Writes everything to standard output. False with the system's words in `error`; they are empty if the reader has gone
/// away, which is nothing to complain about.
bool WriteToStandardOutput(std::string_view bytes, std::string& error);

/// Writes everything to standard error. Failures are ignored: there is nobody left to tell.
void WriteToStandardError(std::string_view bytes);

bool IsStandardOutputTerminal();

} // namespace OrvUQL::Tool
