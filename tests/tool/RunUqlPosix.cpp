#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

extern char** environ;

namespace OrvUQL::Tests {

namespace {

[[noreturn]] void Throw(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

/// A file without a name, open for reading and writing.
int MakeAnonymousFile() {
    std::string path = testing::TempDir() + "uql-test-XXXXXX";
    const int file = ::mkostemp(path.data(), O_CLOEXEC);
    if (file < 0) {
        Throw("mkostemp");
    }
    ::unlink(path.c_str());
    return file;
}

void WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0) {
            Throw("write");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

/// Up to the end. A terminal whose other side has been closed fails instead of ending.
std::string ReadAll(int file) {
    std::string bytes;
    char block[65536];
    for (;;) {
        const ssize_t count = ::read(file, block, sizeof block);
        if (count <= 0) {
            return bytes;
        }
        bytes.append(block, static_cast<std::size_t>(count));
    }
}

std::string ReadFromBeginning(int file) {
    ::lseek(file, 0, SEEK_SET);
    return ReadAll(file);
}

int Spawn(const std::vector<std::string>& arguments, int input, int output, int errors) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    std::vector<std::string> texts = {"uql"};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    pid_t process = -1;
    errno = ::posix_spawn(&process, UQL_PATH, &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (process < 0) {
        Throw(UQL_PATH);
    }
    return process;
}

int WaitFor(int process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            Throw("waitpid");
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void Close(int& file) {
    if (file >= 0) {
        ::close(file);
        file = -1;
    }
}

void OpenTerminal(int& ours, int& theirs) {
    ours = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (ours < 0 || ::grantpt(ours) != 0 || ::unlockpt(ours) != 0) {
        Throw("posix_openpt");
    }
    theirs = ::open(::ptsname(ours), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (theirs < 0) {
        Throw("the terminal");
    }
}

} // namespace

UqlRun RunUql(const std::vector<std::string>& arguments, std::string_view input) {
    int in = MakeAnonymousFile();
    int out = MakeAnonymousFile();
    int err = MakeAnonymousFile();
    WriteAll(in, input);
    ::lseek(in, 0, SEEK_SET);
    UqlRun run;
    run.status = WaitFor(Spawn(arguments, in, out, err));
    run.out = ReadFromBeginning(out);
    run.err = ReadFromBeginning(err);
    Close(in);
    Close(out);
    Close(err);
    return run;
}

UqlRun RunUqlAtTerminal(const std::vector<std::string>& arguments, std::string_view typed) {
    int ours = -1;
    int theirs = -1;
    OpenTerminal(ours, theirs);
    const int process = Spawn(arguments, theirs, theirs, theirs);
    Close(theirs);
    WriteAll(ours, typed);
    WriteAll(ours, "\x04"); // Ctrl-D
    UqlRun run;
    run.out = ReadAll(ours);
    // The terminal makes two characters of a line break.
    run.out.erase(std::remove(run.out.begin(), run.out.end(), '\r'), run.out.end());
    run.status = WaitFor(process);
    Close(ours);
    return run;
}

std::string GetMissingFileReason() { return std::strerror(ENOENT); }
std::string GetDirectoryReason() { return std::strerror(EISDIR); }
std::string GetUnwritableReason() { return std::strerror(ENOSPC); }

TestFile::TestFile(std::string_view content, std::string_view ending)
    : path(testing::TempDir() + "uql-test-XXXXXX" + std::string(ending)) {
    int file = ::mkostemps(path.data(), static_cast<int>(ending.size()), O_CLOEXEC);
    if (file < 0) {
        Throw("mkostemps");
    }
    WriteAll(file, content);
    Close(file);
}

TestFile::~TestFile() { ::unlink(path.c_str()); }

struct RunningUql::Process {
    int id = -1;
    int input = -1;
    int output = -1;
    int errors = -1; // a file

    ~Process() {
        Close(input);
        if (id >= 0) {
            WaitFor(id);
        }
        Close(output);
        Close(errors);
    }
};

RunningUql::RunningUql(const std::vector<std::string>& arguments, EOutput outputKind)
    : process(std::make_unique<Process>()) {
    process->errors = MakeAnonymousFile();
    int inputPipe[2];
    if (::pipe2(inputPipe, O_CLOEXEC) != 0) {
        Throw("pipe2");
    }
    process->input = inputPipe[1];
    int theirOutput = -1;
    if (outputKind == ToUnwritable) {
        theirOutput = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        if (theirOutput < 0) {
            Throw("/dev/full");
        }
    } else {
        int outputPipe[2];
        if (::pipe2(outputPipe, O_CLOEXEC) != 0) {
            Throw("pipe2");
        }
        process->output = outputPipe[0];
        theirOutput = outputPipe[1];
        if (outputKind == ToClosedPipe) {
            Close(process->output);
        }
    }
    process->id = Spawn(arguments, inputPipe[0], theirOutput, process->errors);
    Close(inputPipe[0]);
    Close(theirOutput);
}

RunningUql::~RunningUql() = default;

void RunningUql::Write(std::string_view bytes) { WriteAll(process->input, bytes); }
void RunningUql::CloseInput() { Close(process->input); }
void RunningUql::Interrupt() { ::kill(process->id, SIGINT); }

std::string RunningUql::ReadLine() {
    std::string line;
    char c = 0;
    while (line.empty() || line.back() != '\n') {
        if (::read(process->output, &c, 1) != 1) {
            break;
        }
        line += c;
    }
    return line;
}

UqlRun RunningUql::Wait() {
    CloseInput();
    UqlRun run;
    run.out = process->output >= 0 ? ReadAll(process->output) : std::string();
    run.status = WaitFor(std::exchange(process->id, -1));
    run.err = ReadFromBeginning(process->errors);
    return run;
}

} // namespace OrvUQL::Tests
