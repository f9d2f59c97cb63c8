#include "tool/ProcessWindows.h"
#include "tool/RunUql.h"

#include <algorithm>
#include <memory>
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

} // namespace

UqlRun RunUqlAtTerminal(const std::vector<std::string>& arguments, std::string_view typed) {
    std::vector<std::wstring> texts;
    for (const std::string& argument : arguments) {
        texts.push_back(ToUtf16(argument));
    }
    const std::wstring commandLine = MakeCommandLine(ToUtf16(UQL_PATH), texts);
    const std::wstring screenPath = MakeTemporaryPath(L".screen");
    PseudoConsole console;
    const Handle process = console.Start(MakeCommandLine(ToUtf16(CONSOLE_PROGRAM_PATH), {screenPath, commandLine}));
    std::string keys(typed);
    std::replace(keys.begin(), keys.end(), '\n', '\r'); // the Enter key
    console.Type(keys + "\x1A\r");                      // Ctrl-Z
    UqlRun run;
    run.status = WaitForProcess(process);
    const Handle file(::CreateFileW(screenPath.c_str(), GENERIC_READ | DELETE, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_DELETE_ON_CLOSE, nullptr),
                      "the screen's file");
    run.out = ReadAll(file);
    return run;
}

} // namespace OrvUQL::Tests
