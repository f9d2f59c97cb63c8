// A session at a real terminal: what its user types and sees.
#include "tool/RunUql.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using testing::HasSubstr;

const bool hasEditor = RunUql({"--version"}).out.find("line editor: libedit") != std::string::npos;

/// A folder that exists as long as the object does.
class TestFolder {
public:
    TestFolder() : path(testing::TempDir() + "uql-state-XXXXXX") {
        if (::mkdtemp(path.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), "mkdtemp");
        }
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() { std::filesystem::remove_all(path); }

    std::string GetHistoryPath() const { return path + "/uql/history"; }
    const std::string& GetPath() const { return path; }

private:
    std::string path;
};

/// A uql with a terminal of its own, whose other side the test is.
class TerminalSession {
public:
    explicit TerminalSession(const TestFolder& state, bool coloured = false) {
        process = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (process < 0) {
            throw std::system_error(errno, std::generic_category(), "forkpty");
        }
        if (process == 0) {
            ::setenv("TERM", "xterm", 1);
            ::setenv("XDG_STATE_HOME", state.GetPath().c_str(), 1);
            ::setenv("HOME", "/nonexistent", 1);
            ::signal(SIGINT, SIG_DFL); // which a shell that starts the tests in the background has ignored
            coloured ? ::unsetenv("NO_COLOR") : ::setenv("NO_COLOR", "1", 1);
            ::execl(UQL_PATH, "uql", static_cast<char*>(nullptr));
            ::_exit(127);
        }
    }
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;
    ~TerminalSession() {
        if (process > 0) {
            ::kill(process, SIGKILL);
            ::waitpid(process, &status, 0);
        }
        ::close(terminal);
    }

    void Type(std::string_view keys) {
        ASSERT_EQ(::write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    /// What is shown up to and with a text, which has to come within a while.
    std::string ReadTo(std::string_view text) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        for (;;) {
            const std::size_t place = shown.find(text);
            if (place != std::string::npos) {
                std::string read = shown.substr(0, place + text.size());
                shown.erase(0, place + text.size());
                return read;
            }
            pollfd question{terminal, POLLIN, 0};
            char block[4096];
            const bool hasMore = ::poll(&question, 1, 100) <= 0 || Append(block, sizeof block);
            if (!hasMore || std::chrono::steady_clock::now() > end) {
                ADD_FAILURE() << "\"" << text << "\" does not come behind: " << shown;
                return shown;
            }
        }
    }

    /// Whether the process has ended after a while, which it may have.
    bool HasEnded(std::chrono::milliseconds patience) {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (process > 0 && std::chrono::steady_clock::now() < end) {
            pollfd question{terminal, POLLIN, 0};
            char block[4096];
            if (::poll(&question, 1, 10) > 0) {
                Append(block, sizeof block); // it waits for somebody who reads
            }
            if (::waitpid(process, &status, WNOHANG) == process) {
                process = -1;
            }
        }
        return process < 0;
    }

    /// The exit status.
    int Wait() {
        EXPECT_TRUE(HasEnded(std::chrono::seconds(60)));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    bool Append(char* block, std::size_t size) {
        const ssize_t count = ::read(terminal, block, size);
        if (count > 0) {
            shown.append(block, static_cast<std::size_t>(count));
        }
        return count > 0;
    }

    int terminal = -1;
    pid_t process = -1; // none any more
    int status = 0;
    std::string shown;
};

class UqlSessionTerminal : public testing::Test {
protected:
    void SetUp() override {
        if (!hasEditor) {
            GTEST_SKIP() << "this uql has no line editor";
        }
    }

    TestFolder state;
};

TEST_F(UqlSessionTerminal, QueriesAreAnswered) {
    TerminalSession session(state);
    session.ReadTo("uql> ");
    session.Type("1 + 2\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 3\r\n"));
    session.Type("'ä€😀'.Length()\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 4\r\n"));
    session.Type("1 / 0\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nDivision By Zero\r\n  1 / 0\r\n    ^\r\n"));
    session.Type("\x04"); // Ctrl-D
    EXPECT_EQ(session.Wait(), 0);
}

TEST_F(UqlSessionTerminal, AnOpenBracketGoesOnInTheNextLine) {
    TerminalSession session(state);
    session.ReadTo("uql> ");
    session.Type("max(1,\r");
    session.ReadTo("...> ");
    session.Type("2).Ab\t\r"); // the name depends on the line before
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 2\r\n"));
    session.Type("\x1b[A\r"); // the key that goes up: as one line
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("max(1, 2).Abs\r\nint 2\r\n"));
}

TEST_F(UqlSessionTerminal, TabCompletesAndLists) {
    TerminalSession session(state);
    session.ReadTo("uql> ");
    session.Type("'abc'.Leng\t\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 3\r\n"));
    session.Type("'ä€'.RegC\t"); // up to what is common, behind characters of several bytes
    session.ReadTo("ontains");
    session.Type("\t");
    EXPECT_THAT(session.ReadTo("'.RegContains"), HasSubstr("\r\nRegContains(    RegContainsEx(\r\n"));
    session.Type("('€')\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nbool true\r\n"));
}

TEST_F(UqlSessionTerminal, CtrlCForgetsTheLine) {
    TerminalSession session(state);
    session.ReadTo("uql> ");
    session.Type("nonsense");
    session.ReadTo("nonsense");
    session.Type("\x03");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("^C\r\n"));
    session.Type("max(1,\r");
    session.ReadTo("...> ");
    session.Type("\x03");
    session.ReadTo("uql> "); // and the lines before it
    session.Type("2\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 2\r\n"));
    session.Type(":quit\r");
    EXPECT_EQ(session.Wait(), 0);
}

TEST_F(UqlSessionTerminal, HistoryIsKeptBetweenSessions) {
    {
        TerminalSession session(state);
        session.ReadTo("uql> ");
        session.Type("20 + 1\r");
        session.ReadTo("uql> ");
        session.Type("'ö' + 1\r");
        session.ReadTo("uql> ");
        // At once: this session ends without a farewell.
    }
    struct stat file = {};
    ASSERT_EQ(::stat(state.GetHistoryPath().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777, 0600U);
    TerminalSession session(state);
    session.ReadTo("uql> ");
    session.Type("\x1b[A\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nstring ö1\r\n"));
    session.Type("\x1b[A\x1b[A * 2\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 22\r\n"));
}

TEST_F(UqlSessionTerminal, HistoryHasTheEntriesOfAllSessionsAtOnce) {
    {
        TerminalSession first(state);
        first.ReadTo("uql> ");
        TerminalSession second(state);
        second.ReadTo("uql> ");
        first.Type("10 + 1\r");
        first.ReadTo("uql> ");
        second.Type("20 + 1\r");
        second.ReadTo("uql> ");
        first.Type("30 + 1\r");
        first.ReadTo("uql> ");
        first.Type("30 + 1\r"); // is not remembered twice
        first.ReadTo("uql> ");
        first.Type("\x1b[A\x1b[A\r"); // a session goes on seeing its own entries only
        EXPECT_THAT(first.ReadTo("uql> "), HasSubstr("\r\nint 11\r\n"));
    }
    TerminalSession session(state);
    session.ReadTo("uql> ");
    session.Type("\x1b[A\x1b[A\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 31\r\n"));
    session.Type("\x1b[A\x1b[A\x1b[A\x1b[A\r");
    EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 21\r\n"));
}

TEST_F(UqlSessionTerminal, HistoryDoesNotGrowForEver) {
    const std::string path = state.GetHistoryPath();
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream file(path);
    file << "_HiStOrY_V2_\n";
    for (int entry = 0; entry < 2'500; ++entry) {
        file << entry << "\\040*\\0402\n"; // blanks are escaped
    }
    file.close();
    {
        TerminalSession session(state);
        session.ReadTo("uql> ");
        session.Type("\x1b[A\r");
        EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 4998\r\n"));
        session.Type("'new'\r");
        session.ReadTo("uql> ");
    }
    std::ifstream kept(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(kept, line);) {
        lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 1'002U);
    EXPECT_EQ(lines.front(), "_HiStOrY_V2_");
    EXPECT_EQ(lines[1], "1500\\040*\\0402");
    EXPECT_EQ(lines.back(), "'new'");
}

TEST_F(UqlSessionTerminal, ColoursAreForThoseWhoWantThem) {
    TerminalSession coloured(state, true);
    coloured.ReadTo("uql> ");
    coloured.Type("1\r");
    EXPECT_THAT(coloured.ReadTo("uql> "), HasSubstr("\x1b[36mint\x1b[0m 1\r\n"));
    coloured.Type("x\r");
    EXPECT_THAT(coloured.ReadTo("uql> "), HasSubstr("\x1b[31mIdentifier 'x' is not a method of 'global'\x1b[0m\r\n"));
    TerminalSession plain(state);
    plain.ReadTo("uql> ");
    plain.Type("1\r");
    EXPECT_THAT(plain.ReadTo("uql> "), HasSubstr("\r\nint 1\r\n"));
}

/// A query that would take hours.
const std::string hours = "'x'.Repeat(2000).ToCharArray().Convert('x'.Repeat(2000).ToCharArray().Convert("
                          "'x'.Repeat(2000).ToCharArray().Convert($index * 2).Count()).Count()).Count()";

TEST_F(UqlSessionTerminal, CtrlCEndsAQueryAndNotTheSession) {
    for (const char* const command : {"", ":explain "}) {
        TerminalSession session(state);
        session.ReadTo("uql> ");
        session.Type("6 * 7\r");
        session.ReadTo("uql> ");
        // The test cannot see the beginning of the query: too early, Ctrl-C is for the line.
        bool isCancelled = false;
        for (int attempt = 0; attempt < 50 && !isCancelled; ++attempt) {
            session.Type(command + hours + "\r");
            EXPECT_FALSE(session.HasEnded(std::chrono::milliseconds(200)));
            session.Type("\x03");
            isCancelled = session.ReadTo("uql> ").find("Evaluation cancelled\r\n") != std::string::npos;
        }
        EXPECT_TRUE(isCancelled);
        session.Type("$last + 1\r"); // the session goes on as if nothing had been asked
        EXPECT_THAT(session.ReadTo("uql> "), HasSubstr("\r\nint 43\r\n"));
    }
}

TEST_F(UqlSessionTerminal, ASecondCtrlCEndsTheProcess) {
    TerminalSession session(state);
    session.ReadTo("uql> ");
    // What is timed is not asked to look for the first.
    for (int attempt = 0; attempt < 50 && !session.HasEnded(std::chrono::milliseconds(10)); ++attempt) {
        session.Type(":time " + hours + "\r");
        for (int time = 0; time < 2 && !session.HasEnded(std::chrono::milliseconds(200)); ++time) {
            session.Type("\x03");
        }
    }
    EXPECT_EQ(session.Wait(), -SIGINT);
}

} // namespace
} // namespace OrvUQL::Tests
