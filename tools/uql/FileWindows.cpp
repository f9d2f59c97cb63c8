#include "File.h"

#include <OrvUQL/OrvString.h>

#include "ConsoleWindows.h"
#include "SystemMessageWindows.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <windows.h>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t mostBytes = 1 << 20; // at once: the system counts in 32 bits

/// The other side of a pipe has gone away; which of the codes says so depends on how.
bool IsPipeClosed(DWORD code) {
    return code == ERROR_BROKEN_PIPE || code == ERROR_NO_DATA || code == ERROR_PIPE_NOT_CONNECTED;
}

bool WriteAll(HANDLE handle, std::string_view bytes) {
    if (IsConsole(handle)) {
        return WriteToConsole(handle, bytes);
    }
    while (!bytes.empty()) {
        DWORD written = 0;
        if (::WriteFile(handle, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), mostBytes)), &written,
                        nullptr) == 0) {
            return false;
        }
        if (written == 0) {
            ::Sleep(1); // a pipe that somebody made non-blocking is full
        }
        bytes.remove_prefix(written);
    }
    return true;
}

} // namespace

/// A file, a pipe, a device or a console.
class InputFile::Source {
public:
    Source(HANDLE openedHandle, bool ownsHandle)
        : handle(openedHandle), isOwned(ownsHandle), isPipe(::GetFileType(openedHandle) == FILE_TYPE_PIPE) {
        if (IsConsole(handle)) {
            console.emplace(handle);
        }
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source() {
        if (isOwned) {
            ::CloseHandle(handle);
        }
    }

    std::ptrdiff_t Read(char* buffer, std::size_t size, std::string& error) {
        if (console) {
            return console->Read(buffer, size, error);
        }
        for (;;) {
            DWORD count = 0;
            if (::ReadFile(handle, buffer, static_cast<DWORD>(std::min(size, mostBytes)), &count, nullptr) == 0) {
                const DWORD code = ::GetLastError();
                if (IsPipeClosed(code)) {
                    return 0; // how a pipe ends
                }
                error = GetSystemMessage(code);
                return -1;
            }
            DWORD available = 0;
            const bool isOpenPipe = count == 0 && isPipe && LookInto(available) == ERROR_SUCCESS;
            if (!isOpenPipe) {
                return static_cast<std::ptrdiff_t>(count);
            }
            // Somebody has written nothing to the pipe, and may go on.
        }
    }

    std::optional<std::uint64_t> GetSize() const {
        LARGE_INTEGER size;
        if (::GetFileType(handle) != FILE_TYPE_DISK || ::GetFileSizeEx(handle, &size) == 0) {
            return std::nullopt;
        }
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    bool WouldWait() const {
        if (console) {
            return console->WouldWait();
        }
        if (!isPipe) {
            return false;
        }
        // Some of what counts as a pipe, sockets for instance, does not tell; then the answer has to be that it might.
        DWORD available = 0;
        const DWORD code = LookInto(available);
        return !IsPipeClosed(code) && available == 0;
    }

private:
    /// Asks how many bytes are there. ERROR_SUCCESS, or why a pipe does not say; one that nobody can write to any more
    /// does not when all have been read.
    DWORD LookInto(DWORD& available) const {
        return ::PeekNamedPipe(handle, nullptr, 0, nullptr, &available, nullptr) != 0 ? ERROR_SUCCESS
                                                                                      : ::GetLastError();
    }

    HANDLE handle;
    bool isOwned;
    bool isPipe;
    std::optional<ConsoleReader> console;
};

InputFile::InputFile(std::string filePath) : path(std::move(filePath)) {}
InputFile::InputFile(InputFile&& other) noexcept = default;
InputFile::~InputFile() = default;

bool InputFile::Open(std::string& error) {
    const bool isStandardInput = path == "-";
    HANDLE handle = nullptr;
    if (isStandardInput) {
        handle = ::GetStdHandle(STD_INPUT_HANDLE);
        if (handle == nullptr) { // a process may have none
            ::SetLastError(ERROR_INVALID_HANDLE);
            handle = INVALID_HANDLE_VALUE;
        }
    } else {
        // Others may go on with the file as they like while it is read.
        constexpr DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        handle = ::CreateFileW(OrvStringT::FromUtf8(path).GetString(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                               FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    }
    if (handle == INVALID_HANDLE_VALUE) {
        error = GetSystemMessage(::GetLastError());
        return false;
    }
    source = std::make_unique<Source>(handle, !isStandardInput);
    return true;
}

std::ptrdiff_t InputFile::Read(char* buffer, std::size_t size, std::string& error) {
    return source->Read(buffer, size, error);
}

std::optional<std::uint64_t> InputFile::GetSize() const { return source->GetSize(); }

bool InputFile::WouldWait() const { return source->WouldWait(); }

bool WriteToStandardOutput(std::string_view bytes, std::string& error) {
    if (WriteAll(::GetStdHandle(STD_OUTPUT_HANDLE), bytes)) {
        return true;
    }
    const DWORD code = ::GetLastError();
    error = IsPipeClosed(code) ? "" : GetSystemMessage(code);
    return false;
}

void WriteToStandardError(std::string_view bytes) { WriteAll(::GetStdHandle(STD_ERROR_HANDLE), bytes); }

bool IsStandardInputTerminal() { return IsConsole(::GetStdHandle(STD_INPUT_HANDLE)); }
bool IsStandardOutputTerminal() { return IsConsole(::GetStdHandle(STD_OUTPUT_HANDLE)); }
bool IsStandardErrorTerminal() { return IsConsole(::GetStdHandle(STD_ERROR_HANDLE)); }

} // namespace OrvUQL::Tool
