#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

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

bool operator==(const UqlRun& a, const UqlRun& b) { return a.status == b.status && a.out == b.out && a.err == b.err; }

void PrintTo(const UqlRun& run, std::ostream* out) {
    *out << "status " << run.status << "\nstandard output:\n" << run.out << "standard error:\n" << run.err;
}

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

UqlRun Prints(std::string_view out) { return {0, std::string(out), ""}; }
UqlRun Fails(std::string_view err, std::string_view out) { return {1, std::string(out), std::string(err)}; }

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

RunningUql::RunningUql(const std::vector<std::string>& arguments, EOutput outputKind) : errors(MakeAnonymousFile()) {
    int inputPipe[2];
    if (::pipe2(inputPipe, O_CLOEXEC) != 0) {
        Throw("pipe2");
    }
    input = inputPipe[1];
    int theirOutput = -1;
    if (outputKind == ToTerminal) {
        OpenTerminal(output, theirOutput);
    } else if (outputKind == ToFullDevice) {
        theirOutput = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        if (theirOutput < 0) {
            Throw("/dev/full");
        }
    } else {
        int outputPipe[2];
        if (::pipe2(outputPipe, O_CLOEXEC) != 0) {
            Throw("pipe2");
        }
        output = outputPipe[0];
        theirOutput = outputPipe[1];
        if (outputKind == ToClosedPipe) {
            Close(output);
        }
    }
    process = Spawn(arguments, inputPipe[0], theirOutput, errors);
    Close(inputPipe[0]);
    Close(theirOutput);
}

RunningUql::~RunningUql() {
    Close(input);
    if (process >= 0) {
        WaitFor(process);
    }
    Close(output);
    Close(errors);
}

void RunningUql::Write(std::string_view bytes) { WriteAll(input, bytes); }
void RunningUql::CloseInput() { Close(input); }

std::string RunningUql::ReadLine() {
    std::string line;
    char c = 0;
    while (line.empty() || line.back() != '\n') {
        if (::read(output, &c, 1) != 1) {
            break;
        }
        line += c;
    }
    return line;
}

UqlRun RunningUql::Wait() {
    CloseInput();
    UqlRun run;
    run.out = output >= 0 ? ReadAll(output) : std::string();
    run.status = WaitFor(process);
    process = -1;
    run.err = ReadFromBeginning(errors);
    return run;
}

} // namespace OrvUQL::Tests
