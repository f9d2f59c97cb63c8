#include "tool/TerminalWindows.h"

#include "tool/ProcessWindows.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

#include <windows.h>

namespace OrvUQL::Tests {

namespace {

/// A console without a window, whose other side is two pipes.
class PseudoConsole {
public:
    PseudoConsole() {
        Pipe in = MakePipe();
        Pipe out = MakePipe();
        // High enough that nothing leaves the screen at its top.
        if (FAILED(::CreatePseudoConsole({160, 1000}, in.reader.Get(), out.writer.Get(), 0, &console))) {
            throw std::runtime_error("cannot make a pseudo console");
        }
        keyboard = std::move(in.writer);
        // What the console sends has to be read, or it stops.
        watching = std::thread([screen = std::make_shared<Handle>(std::move(out.reader))] { ReadAll(*screen); });
    }
    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;
    ~PseudoConsole() {
        ::ClosePseudoConsole(console);
        watching.join();
    }

    void Type(std::string_view text) { WriteAll(keyboard, text); }

    Handle Start(std::wstring commandLine) {
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        std::vector<char> memory(size);
        STARTUPINFOEXW startup = {};
        startup.StartupInfo.cb = sizeof startup;
        startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
        PROCESS_INFORMATION started = {};
        const bool isStarted =
            ::InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size) != 0 &&
            ::UpdateProcThreadAttribute(startup.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_PSEUDOCONSOLE, console,
                                        sizeof console, nullptr, nullptr) != 0 &&
            ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, EXTENDED_STARTUPINFO_PRESENT,
                             nullptr, nullptr, &startup.StartupInfo, &started) != 0;
        ::DeleteProcThreadAttributeList(startup.lpAttributeList);
        if (!isStarted) {
            throw std::runtime_error("cannot start a program at a pseudo console");
        }
        ::CloseHandle(started.hThread);
        return Handle(started.hProcess, "CreateProcess");
    }

private:
    HPCON console = nullptr;
    Handle keyboard;
    std::thread watching;
};

/// `interruptAt`, if there is one, is the text on the screen that Ctrl-C is pressed at.
UqlRun RunAtConsole(const std::vector<std::string>& arguments, const std::string& keys,
                    const std::optional<std::string>& interruptAt) {
    std::vector<std::wstring> texts;
    for (const std::string& argument : arguments) {
        texts.push_back(ToUtf16(argument));
    }
    const std::wstring screenPath = MakeTemporaryPath(L".screen");
    std::vector<std::wstring> words = {screenPath, MakeCommandLine(ToUtf16(UQL_PATH), texts)};
    if (interruptAt) {
        words.push_back(ToUtf16(*interruptAt));
    }
    PseudoConsole console;
    const Handle process = console.Start(MakeCommandLine(ToUtf16(CONSOLE_PROGRAM_PATH), words));
    console.Type(keys);
    UqlRun run;
    run.status = WaitForProcess(process);
    const Handle file(::CreateFileW(screenPath.c_str(), GENERIC_READ | DELETE, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_DELETE_ON_CLOSE, nullptr),
                      "the screen's file");
    run.out = ReadAll(file);
    return run;
}

} // namespace

UqlRun RunUqlAtTerminal(const std::vector<std::string>& arguments, std::string_view typed) {
    std::string keys(typed);
    std::replace(keys.begin(), keys.end(), '\n', '\r');            // the Enter key
    return RunAtConsole(arguments, keys + "\x1A\r", std::nullopt); // Ctrl-Z
}

UqlRun InterruptUqlAtTerminal(const std::vector<std::string>& arguments, const std::string& text) {
    return RunAtConsole(arguments, std::string(), text);
}

} // namespace OrvUQL::Tests
