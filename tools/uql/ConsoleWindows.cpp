#include "ConsoleWindows.h"

#include <OrvUQL/OrvString.h>

#include "Interrupt.h"
#include "SystemMessageWindows.h"

#include <algorithm>
#include <iterator>

#include <windows.h>

namespace OrvUQL::Tool {

namespace {

constexpr wchar_t endOfInput = L'\x1A'; // Ctrl-Z

// The console's server hands out and takes no more than some 64 KiB at once.
constexpr std::size_t mostUnits = 4096;

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// True if the user wants the program to end, which may not have been noted yet.
bool WaitForInterrupt() {
    for (int moment = 0; moment < 50 && !InterruptWatch::IsInterrupted(); ++moment) {
        ::Sleep(10);
    }
    return InterruptWatch::IsInterrupted();
}

} // namespace

bool IsConsole(void* handle) {
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) != 0;
}

std::ptrdiff_t ConsoleReader::Read(char* buffer, std::size_t size, std::string& error) {
    while (pending.empty() && !isAtEnd) {
        if (!ReadLine(error)) {
            return -1;
        }
    }
    const std::size_t count = std::min(size, pending.size());
    std::copy_n(pending.data(), count, buffer);
    pending.erase(0, count);
    return static_cast<std::ptrdiff_t>(count);
}

bool ConsoleReader::ReadLine(std::string& error) {
    wchar_t units[mostUnits];
    DWORD count = 0;
    ::SetLastError(ERROR_SUCCESS);
    if (::ReadConsoleW(handle, units, static_cast<DWORD>(std::size(units)), &count, nullptr) == 0) {
        error = GetSystemMessage(::GetLastError());
        return false;
    }
    if (count == 0) {
        // Ctrl-C interrupts the reading; who is told of it, on another thread, decides what else it does.
        isAtEnd = ::GetLastError() != ERROR_OPERATION_ABORTED || WaitForInterrupt();
        return true;
    }
    if (!isLineBegun && units[0] == endOfInput) {
        isAtEnd = true;
        return true;
    }
    isLineBegun = units[count - 1] != L'\n';
    std::wstring text = std::move(held);
    held.clear();
    // The Enter key is two characters here and one everywhere else.
    std::copy_if(units, units + count, std::back_inserter(text), [](wchar_t unit) { return unit != L'\r'; });
    if (!text.empty() && IsHighSurrogate(text.back())) {
        held = text.back();
        text.pop_back();
    }
    pending = OrvStringT(text).ToUtf8();
    return true;
}

bool WriteToConsole(void* handle, std::string_view text) {
    while (!text.empty()) {
        std::size_t size = std::min(text.size(), mostUnits);
        while (size < text.size() && size > 1 && IsInsideCharacter(text[size])) {
            --size;
        }
        wchar_t units[mostUnits]; // no character has more units than bytes
        const int count = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(size), units,
                                                static_cast<int>(std::size(units)));
        for (DWORD place = 0; place < static_cast<DWORD>(count);) {
            DWORD written = 0;
            if (::WriteConsoleW(handle, units + place, static_cast<DWORD>(count) - place, &written, nullptr) == 0) {
                return false;
            }
            place += written;
        }
        text.remove_prefix(size);
    }
    return true;
}

} // namespace OrvUQL::Tool
