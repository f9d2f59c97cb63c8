#include "tool/ProcessWindows.h"

#include <OrvUQL/OrvString.h>

#include <algorithm>
#include <atomic>
#include <system_error>

#include <windows.h>

namespace OrvUQL::Tests {

namespace {

[[noreturn]] void Throw(const char* what) {
    throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), what);
}

/// Backslashes count only before quotes; there each is written twice.
void AppendQuoted(std::wstring& line, std::wstring_view argument) {
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t unit : argument) {
        if (unit == L'\\') {
            ++backslashes;
            continue;
        }
        line.append(unit == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        backslashes = 0;
        line += unit;
    }
    line.append(2 * backslashes, L'\\');
    line += L'"';
}

/// The attributes that let a process inherit these handles and no others.
class InheritedHandles {
public:
    explicit InheritedHandles(std::vector<HANDLE> inherited) : handles(std::move(inherited)) {
        std::sort(handles.begin(), handles.end());
        handles.erase(std::unique(handles.begin(), handles.end()), handles.end());
        for (HANDLE handle : handles) {
            if (::SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) == 0) {
                Throw("SetHandleInformation");
            }
        }
        SIZE_T size = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory.resize(size);
        if (::InitializeProcThreadAttributeList(GetList(), 1, 0, &size) == 0 ||
            ::UpdateProcThreadAttribute(GetList(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                        handles.size() * sizeof(HANDLE), nullptr, nullptr) == 0) {
            Throw("the attributes of a process");
        }
    }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;
    ~InheritedHandles() { ::DeleteProcThreadAttributeList(GetList()); }

    LPPROC_THREAD_ATTRIBUTE_LIST GetList() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data()); }

private:
    std::vector<HANDLE> handles;
    std::vector<char> memory;
};

} // namespace

Handle::Handle(void* opened, const char* what) : handle(opened) {
    if (opened == nullptr || opened == INVALID_HANDLE_VALUE) {
        Throw(what);
    }
}

void Handle::Close() {
    if (void* const closed = std::exchange(handle, nullptr)) {
        ::CloseHandle(closed);
    }
}

Pipe MakePipe() {
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    if (::CreatePipe(&reader, &writer, nullptr, 1 << 16) == 0) {
        Throw("CreatePipe");
    }
    return {Handle(reader, "CreatePipe"), Handle(writer, "CreatePipe")};
}

bool WriteAll(const Handle& handle, std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD count = 0;
        const std::size_t size = std::min<std::size_t>(bytes.size(), 1 << 20);
        if (::WriteFile(handle.Get(), bytes.data(), static_cast<DWORD>(size), &count, nullptr) == 0) {
            return false;
        }
        bytes.remove_prefix(count);
    }
    return true;
}

std::string ReadAll(const Handle& handle) {
    std::string bytes;
    char block[65536];
    DWORD count = 0;
    while (::ReadFile(handle.Get(), block, sizeof block, &count, nullptr) != 0 && count != 0) {
        bytes.append(block, count);
    }
    return bytes;
}

std::wstring ToUtf16(std::string_view text) { return std::wstring(OrvStringT::FromUtf8(text).View()); }
std::string ToUtf8(std::wstring_view text) { return OrvStringT(text).ToUtf8(); }

std::wstring MakeCommandLine(std::wstring_view program, const std::vector<std::wstring>& arguments) {
    std::wstring line;
    AppendQuoted(line, program);
    for (const std::wstring& argument : arguments) {
        line += L' ';
        AppendQuoted(line, argument);
    }
    return line;
}

Handle StartProcess(std::wstring commandLine, const Handle& input, const Handle& output, const Handle& errors) {
    InheritedHandles inherited({input.Get(), output.Get(), errors.Get()});
    STARTUPINFOEXW startup = {};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.Get();
    startup.StartupInfo.hStdOutput = output.Get();
    startup.StartupInfo.hStdError = errors.Get();
    startup.lpAttributeList = inherited.GetList();
    PROCESS_INFORMATION started = {};
    if (::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, EXTENDED_STARTUPINFO_PRESENT, nullptr,
                         nullptr, &startup.StartupInfo, &started) == 0) {
        Throw("CreateProcess");
    }
    ::CloseHandle(started.hThread);
    return Handle(started.hProcess, "CreateProcess");
}

int WaitForProcess(const Handle& process) {
    DWORD status = 0;
    if (::WaitForSingleObject(process.Get(), INFINITE) != WAIT_OBJECT_0 ||
        ::GetExitCodeProcess(process.Get(), &status) == 0) {
        Throw("the end of a process");
    }
    return static_cast<int>(status);
}

std::wstring MakeTemporaryPath(std::wstring_view ending) {
    static std::atomic<int> number = 0;
    wchar_t folder[MAX_PATH + 1];
    if (::GetTempPathW(MAX_PATH + 1, folder) == 0) {
        Throw("GetTempPath");
    }
    // A process that crashed leaves its files behind, and its number to another.
    return folder +
           (L"uql-test-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(::GetTickCount64()) +
            L"-" + std::to_wstring(++number)) +
           std::wstring(ending);
}

} // namespace OrvUQL::Tests
