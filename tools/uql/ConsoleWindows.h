// A console as a stream of UTF-8: the system's own byte streams of it have whatever code page the user has chosen.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Whether a handle is that of a console's input or of its screen. False for no handle at all.
bool IsConsole(void* handle);

/// What is typed at a console, line by line. A line that begins with Ctrl-Z ends it.
class ConsoleReader {
public:
    /// Borrows the handle.
    explicit ConsoleReader(void* console) : handle(console) {}

    /// As InputFile::Read.
    std::ptrdiff_t Read(char* buffer, std::size_t size, std::string& error);
    /// True if Read would wait for the next line.
    bool WouldWait() const { return pending.empty() && !isAtEnd; }

private:
    bool ReadLine(std::string& error);

    void* handle;
    std::wstring held;   // the first half of a character whose second half the console has not handed out yet
    std::string pending; // what has been typed and not been taken
    bool isLineBegun = false;
    bool isAtEnd = false;
};

/// Shows UTF-8, without allocating memory. On failure GetLastError says why.
bool WriteToConsole(void* handle, std::string_view text);

} // namespace OrvUQL::Tool
