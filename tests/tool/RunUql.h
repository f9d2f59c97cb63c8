// Runs the uql command as its users do, without a shell in between.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tests {

/// What a run of uql left behind.
struct UqlRun {
    int status = 0; ///< the exit status; of a run ended by a signal the signal's number, negative
    std::string out;
    std::string err;
};

bool operator==(const UqlRun& a, const UqlRun& b);
void PrintTo(const UqlRun& run, std::ostream* out);

/// Runs uql to its end. `input` is its standard input.
UqlRun RunUql(const std::vector<std::string>& arguments, std::string_view input = {});

/// Runs uql at a terminal of its own, until its end. `typed` are the lines that its user types, who then ends the
/// input. The output is what the terminal shows in the end: what was typed, the results and the errors, each line ended
/// by a line feed.
UqlRun RunUqlAtTerminal(const std::vector<std::string>& arguments, std::string_view typed = {});

/// A run that prints `out` and ends with status 0.
UqlRun Prints(std::string_view out);
/// A run that prints `out`, then complains, and ends with status 1.
UqlRun Fails(std::string_view err, std::string_view out = {});

/// The system's words for why "/no/such/file" cannot be read.
std::string GetMissingFileReason();
/// The system's words for why "/", a directory, cannot be read.
std::string GetDirectoryReason();
/// The system's words for why RunningUql::ToUnwritable takes nothing.
std::string GetUnwritableReason();

/// A file that exists as long as the object does.
class TestFile {
public:
    explicit TestFile(std::string_view content, std::string_view ending = ".json");
    TestFile(const TestFile&) = delete;
    TestFile& operator=(const TestFile&) = delete;
    ~TestFile();

    /// In UTF-8.
    const std::string& GetPath() const { return path; }

private:
    std::string path;
};

/// A uql whose input and output the test holds the other ends of.
class RunningUql {
public:
    enum EOutput {
        ToPipe,       ///< standard output is a pipe
        ToClosedPipe, ///< the same, its reader gone
        ToUnwritable, ///< standard output takes nothing
    };

    RunningUql(const std::vector<std::string>& arguments, EOutput outputKind);
    RunningUql(const RunningUql&) = delete;
    RunningUql& operator=(const RunningUql&) = delete;
    ~RunningUql();

    void Write(std::string_view bytes);
    void CloseInput();
    /// Ctrl-C. Only on POSIX systems.
    void Interrupt();
    /// Waits for the next line of output; empty at its end.
    std::string ReadLine();
    /// Waits for the end. The output is what has not been read.
    UqlRun Wait();

private:
    struct Process; // the system's

    std::unique_ptr<Process> process;
};

} // namespace OrvUQL::Tests
