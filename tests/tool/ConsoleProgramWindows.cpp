// Runs a command at the console that it is started at, and writes down what the console's screen shows in the end.
//
//     orvuql_console_program FILE COMMANDLINE [TEXT]
//
// As soon as the screen shows TEXT, the command is interrupted as by Ctrl-C.
//
// A process can look at no screen but its own console's, and what a console sends to its other side (a pseudo console's
// pipe) moves the cursor about instead of showing text. So this program stands between a test and what it tests.
#include "tool/ProcessWindows.h"

#include <cstdio>
#include <exception>

#include <windows.h>

namespace OrvUQL::Tests {

namespace {

Handle OpenConsole(const wchar_t* name) {
    return Handle(::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, 0, nullptr),
                  "the console");
}

/// Every line down to the cursor, without the blanks at its end.
std::string ReadScreen(const Handle& screen) {
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    ::GetConsoleScreenBufferInfo(screen.Get(), &info);
    const int lines = info.dwCursorPosition.Y + (info.dwCursorPosition.X == 0 ? 0 : 1);
    std::wstring text;
    for (int line = 0; line < lines; ++line) {
        std::wstring units(static_cast<std::size_t>(info.dwSize.X), L' ');
        DWORD count = 0;
        ::ReadConsoleOutputCharacterW(screen.Get(), units.data(), static_cast<DWORD>(units.size()),
                                      {0, static_cast<SHORT>(line)}, &count);
        units.resize(count);
        text.append(units, 0, units.find_last_not_of(L' ') + 1);
        text += L'\n';
    }
    return ToUtf8(text);
}

/// Ctrl-C is for everybody at the console, this program included, which it does not concern.
BOOL WINAPI IgnoreInterrupt(DWORD event) { return event == CTRL_C_EVENT ? TRUE : FALSE; }

void InterruptWhenShown(const Handle& process, const Handle& screen, const std::string& text) {
    constexpr DWORD moment = 20; // milliseconds
    ::SetConsoleCtrlHandler(IgnoreInterrupt, TRUE);
    while (::WaitForSingleObject(process.Get(), moment) == WAIT_TIMEOUT) {
        if (ReadScreen(screen).find(text) != std::string::npos) {
            ::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
            return;
        }
    }
}

int Run(const wchar_t* path, const wchar_t* commandLine, const wchar_t* text) {
    const Handle keyboard = OpenConsole(L"CONIN$");
    const Handle screen = OpenConsole(L"CONOUT$");
    const Handle process = StartProcess(commandLine, keyboard, screen, screen);
    if (text != nullptr) {
        InterruptWhenShown(process, screen, ToUtf8(text));
    }
    const int status = WaitForProcess(process);
    const Handle file(::CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr), "the screen's file");
    return WriteAll(file, ReadScreen(screen)) ? status : 100;
}

} // namespace

} // namespace OrvUQL::Tests

int wmain(int argc, wchar_t** argv) {
    try {
        return argc == 3 || argc == 4 ? OrvUQL::Tests::Run(argv[1], argv[2], argc == 4 ? argv[3] : nullptr) : 100;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 100;
    }
}
