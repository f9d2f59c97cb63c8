#include "tool/RunUql.h"

#include "tool/ProcessWindows.h"

#include <cstdio>
#include <stdexcept>

#include <windows.h>

namespace OrvUQL::Tests {

namespace {

Handle StartUql(const std::vector<std::string>& arguments, const Handle& input, const Handle& output,
                const Handle& errors) {
    std::vector<std::wstring> texts;
    for (const std::string& argument : arguments) {
        texts.push_back(ToUtf16(argument));
    }
    return StartProcess(MakeCommandLine(ToUtf16(UQL_PATH), texts), input, output, errors);
}

/// Vanishes when its last handle is closed.
Handle MakeTemporaryFile() {
    return Handle(::CreateFileW(MakeTemporaryPath(L".tmp").c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                FILE_FLAG_DELETE_ON_CLOSE, nullptr),
                  "a temporary file");
}

std::string ReadFromBeginning(const Handle& file) {
    ::SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    return ReadAll(file);
}

/// As the system puts it: one line, without what ends it.
std::string GetReason(DWORD code) {
    wchar_t* units = nullptr;
    const DWORD count =
        ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                         nullptr, code, 0, reinterpret_cast<wchar_t*>(&units), 0, nullptr);
    std::wstring text(units, count);
    ::LocalFree(units);
    text.resize(text.find_last_not_of(L".\r\n ") + 1);
    if (text.empty()) {
        throw std::runtime_error("the system has no words for " + std::to_string(code));
    }
    return ToUtf8(text);
}

} // namespace

UqlRun RunUql(const std::vector<std::string>& arguments, std::string_view input) {
    Pipe in = MakePipe();
    // Not pipes: what COM starts in the background would keep them open behind uql's end.
    const Handle out = MakeTemporaryFile();
    const Handle err = MakeTemporaryFile();
    const Handle process = StartUql(arguments, in.reader, out, err);
    in.reader.Close();
    WriteAll(in.writer, input); // which need not be read to its end
    in.writer.Close();
    UqlRun run;
    run.status = WaitForProcess(process);
    run.out = ReadFromBeginning(out);
    run.err = ReadFromBeginning(err);
    return run;
}

std::string GetMissingFileReason() { return GetReason(ERROR_PATH_NOT_FOUND); }
std::string GetDirectoryReason() { return GetReason(ERROR_ACCESS_DENIED); }
std::string GetUnwritableReason() { return GetReason(ERROR_ACCESS_DENIED); }

TestFile::TestFile(std::string_view content, std::string_view ending) {
    const std::wstring name = MakeTemporaryPath(ToUtf16(ending));
    path = ToUtf8(name);
    const Handle file(::CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr), "a test's file");
    if (!WriteAll(file, content)) {
        throw std::runtime_error("cannot write " + path);
    }
}

TestFile::~TestFile() { ::DeleteFileW(ToUtf16(path).c_str()); }

struct RunningUql::Process {
    Handle process;
    Handle input;
    Handle output;
    Handle errors;

    ~Process() {
        input.Close();
        if (process) {
            WaitForProcess(process);
        }
    }
};

RunningUql::RunningUql(const std::vector<std::string>& arguments, EOutput outputKind)
    : process(std::make_unique<Process>()) {
    Pipe in = MakePipe();
    Pipe out = MakePipe();
    Pipe err = MakePipe();
    if (outputKind == ToUnwritable) {
        // There is no device that is always full; a handle that may only read comes nearest.
        out.writer = Handle(::CreateFileW(L"NUL", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), "NUL");
    } else if (outputKind == ToClosedPipe) {
        out.reader.Close();
    }
    process->process = StartUql(arguments, in.reader, out.writer, err.writer);
    process->input = std::move(in.writer);
    process->output = std::move(out.reader);
    process->errors = std::move(err.reader); // a pipe holds more than uql has to say here
}

RunningUql::~RunningUql() = default;

void RunningUql::Write(std::string_view bytes) {
    if (!WriteAll(process->input, bytes)) {
        throw std::runtime_error("uql reads no more");
    }
}

void RunningUql::CloseInput() { process->input.Close(); }

std::string RunningUql::ReadLine() {
    std::string line;
    char c = 0;
    DWORD count = 0;
    while ((line.empty() || line.back() != '\n') && ::ReadFile(process->output.Get(), &c, 1, &count, nullptr) != 0 &&
           count == 1) {
        line += c;
    }
    return line;
}

UqlRun RunningUql::Wait() {
    CloseInput();
    UqlRun run;
    run.out = process->output ? ReadAll(process->output) : std::string();
    run.status = WaitForProcess(process->process);
    process->process.Close();
    run.err = ReadAll(process->errors);
    return run;
}

} // namespace OrvUQL::Tests
