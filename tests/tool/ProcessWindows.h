// Processes and pipes of Windows, as tests need them. Failures throw std::system_error.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {

/// Owns a HANDLE; may be empty.
class Handle {
public:
    Handle() = default;
    /// `what` is named if the system gave no handle: null or INVALID_HANDLE_VALUE.
    Handle(void* opened, const char* what);
    Handle(Handle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~Handle() { Close(); }

    void* Get() const { return handle; }
    explicit operator bool() const { return handle != nullptr; }
    void Close();

private:
    void* handle = nullptr;
};

struct Pipe {
    Handle reader;
    Handle writer;
};

Pipe MakePipe();

/// False if nobody reads any more.
bool WriteAll(const Handle& handle, std::string_view bytes);
/// Up to the end.
std::string ReadAll(const Handle& handle);

std::wstring ToUtf16(std::string_view text);
std::string ToUtf8(std::wstring_view text);

/// The command line that a program takes apart into `program` and these arguments again.
std::wstring MakeCommandLine(std::wstring_view program, const std::vector<std::wstring>& arguments);

/// Starts a program, found by the command line's first word. The handles become its standard handles and are the only
/// ones it inherits, for which they are made inheritable for good.
Handle StartProcess(std::wstring commandLine, const Handle& input, const Handle& output, const Handle& errors);

/// Waits for its end and returns its exit status.
int WaitForProcess(const Handle& process);

/// A path that no file has yet, in the folder for temporary files.
std::wstring MakeTemporaryPath(std::wstring_view ending);

} // namespace OrvUQL::Tests
