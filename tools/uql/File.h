// Files and streams as the operating system has them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// A file that is read from its beginning to its end. "-" is standard input.
class InputFile {
public:
    /// Opens nothing yet. The path is UTF-8 where the system's names are not bytes.
    explicit InputFile(std::string filePath);
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&&) = delete;
    ~InputFile();

    /// False with the system's words in `error`.
    bool Open(std::string& error);
    /// Reads up to `size` bytes, as many as are there, and waits only if there are none. 0 at the end, -1 on failure.
    /// The bytes of a file or a pipe come as they are; what is typed at a console comes as UTF-8, its lines ended by a
    /// line feed. While there is an InterruptWatch, an interruption looks like the end.
    std::ptrdiff_t Read(char* buffer, std::size_t size, std::string& error);
    /// True if Read would have to wait for somebody to write.
    bool WouldWait() const;

    /// In bytes, as far as the system knows: not of pipes, terminals and the like.
    std::optional<std::uint64_t> GetSize() const;

    /// As given.
    const std::string& GetPath() const { return path; }

private:
    class Source; // the system's

    std::string path;
    std::unique_ptr<Source> source;
};

/// Writes everything to standard output. False with the system's words in `error`; they are empty if the reader has
/// gone away, which is nothing to complain about. A console shows UTF-8: no character may be cut in two.
bool WriteToStandardOutput(std::string_view bytes, std::string& error);

/// Writes everything to standard error, likewise, without allocating memory. Failures are ignored: there is nobody left
/// to tell.
void WriteToStandardError(std::string_view bytes);

bool IsStandardInputTerminal();
bool IsStandardOutputTerminal();
bool IsStandardErrorTerminal();

} // namespace OrvUQL::Tool
