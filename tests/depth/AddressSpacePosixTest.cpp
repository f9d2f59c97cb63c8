// Whatever nests or grows, in a process that may have little memory: where it ends there is no value, with "Internal
// error" or, where not even that fits, without an error; never the end of the process, and all is well afterwards.

#include <OrvUQL/OrvUQL.h>

#include "depth/Outcome.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <malloc.h>
#include <optional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvUQL::Tests {
namespace {

constexpr std::size_t usualStack = 8 * 1024 * 1024;
constexpr std::size_t mebibyte = 1024 * 1024;

/// How much more than the process has already.
constexpr std::size_t headrooms[] = {mebibyte / 4, mebibyte, 4 * mebibyte, 16 * mebibyte, 1024 * mebibyte};
constexpr int greatestSize = 100000;

std::size_t AddressSpaceInUse() {
    unsigned long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%lu", &pages) != 1) {
        _exit(3);
    }
    std::fclose(file);
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// While it lives, the process gets no more than that beyond what it has.
class AddressSpaceLimit {
public:
    explicit AddressSpaceLimit(std::size_t headroom) {
        malloc_trim(0);
        getrlimit(RLIMIT_AS, &before);
        rlimit limited = before;
        limited.rlim_cur = AddressSpaceInUse() + headroom;
        if (setrlimit(RLIMIT_AS, &limited) != 0) {
            _exit(4);
        }
    }
    AddressSpaceLimit(const AddressSpaceLimit&) = delete;
    AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &before); }

private:
    rlimit before{};
};

/// Runs `body`, which says what went wrong, in a process of its own. A process that a signal has ended went wrong, too.
/// The stack is a thread's, which has all of its addresses from the beginning: the stack of a main thread ends the
/// process where it can grow no more.
template <class Body> std::string InChild(Body&& body) {
    int ends[2];
    if (pipe(ends) != 0) {
        return "no pipe";
    }
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        // Otherwise the thread reserves addresses for a heap of its own, and keeps large blocks for later: a limit
        // would not be felt for long.
        mallopt(M_ARENA_MAX, 1);
        mallopt(M_MMAP_THRESHOLD, 128 * 1024);
        close(ends[0]);
        RunOnThread(usualStack, [&] {
            const std::string said = body();
            const std::size_t length = said.size();
            _exit(write(ends[1], said.data(), length) == static_cast<ssize_t>(length) ? 0 : 5);
        });
        _exit(6);
    }
    close(ends[1]);
    std::string said;
    char block[4096];
    for (ssize_t got; (got = read(ends[0], block, sizeof block)) > 0 || (got < 0 && errno == EINTR);) {
        said.append(block, got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    close(ends[0]);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        return "no process";
    }
    if (WIFSIGNALED(status)) {
        return said + "ended by signal " + std::to_string(WTERMSIG(status));
    }
    return WEXITSTATUS(status) == 0 ? said : said + "ended with status " + std::to_string(WEXITSTATUS(status));
}

std::optional<std::string> FaultWithin(const Construct& construct, int used, const std::wstring& query,
                                       std::size_t headroom) {
    Outcome outcome{};
    {
        const AddressSpaceLimit limit(headroom);
        outcome = RunQuery(construct, used, query, Memory::Limited);
    }
    if (outcome.verdict != Verdict::OutOfMemory && !MayEnd(construct, outcome.verdict)) {
        return std::to_string(used) + " with " + std::to_string(headroom) + " bytes: " + NameOf(outcome.verdict) + " " +
               outcome.fault + "\n";
    }
    return std::nullopt;
}

class AddressSpace : public ::testing::TestWithParam<Construct> {};

TEST_P(AddressSpace, EndsInAnAnswerOrAnError) {
    const Construct& construct = GetParam();
    const std::string faults = InChild([&] {
        std::string all;
        const int used = std::min(greatestSize, construct.largest);
        const std::wstring query = construct.query(used);
        for (const std::size_t headroom : headrooms) {
            all += FaultWithin(construct, used, query, headroom).value_or("");
            const Outcome after = RunConstruct(construct, 10);
            if (after.verdict != Verdict::Answer) {
                all += "afterwards: " + after.fault + "\n";
            }
        }
        return all;
    });
    EXPECT_EQ(faults, "") << construct.shown;
}

std::string NameOfTest(const ::testing::TestParamInfo<Construct>& construct) {
    std::string name = std::to_string(construct.index);
    for (const char* next = construct.param.name; *next != '\0'; ++next) {
        name += std::isalnum(static_cast<unsigned char>(*next)) ? *next : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Constructs, AddressSpace, ::testing::ValuesIn(Constructs()), NameOfTest);

// ---- as large as a number can ask for ----

struct Giant {
    const wchar_t* query;
    const char* answer; ///< null: none, since nothing has room for it
};

const Giant giants[] = {
    {L"'ab'.Repeat(2147483647)", nullptr},
    {L"'a'.Repeat(2147483647).Length()", nullptr},
    {L"''.Repeat(2147483647)", "string "},
    {L"(5).Radix(2, 2147483647)", nullptr},
    {L"radix(5, 2, 2147483647).Length()", nullptr},
    {L"'a'.Repeat(1000000).Repeat(1000000)", nullptr},
    {L"'a'.Repeat(1000000).Replace('a', 'b'.Repeat(1000000))", nullptr},
    {L"'a'.Repeat(1000000).Replace('A', 'b'.Repeat(1000000), false)", nullptr},
    {L"'a'.Repeat(100000).ToCharArray().Join('b'.Repeat(1000000))", nullptr},
    {L"'a'.Repeat(100000).RegReplace('a', 'b'.Repeat(1000000))", nullptr},
    {L"'a'.Repeat(100000).RegReplace('a', '$&'.Repeat(1000000))", nullptr},
    {L"'a'.Repeat(100000).RegReplaceEx('a', 'b'.Repeat(1000000))", nullptr},
    {L"'a'.Repeat(64).ToCharArray().ForEach('a', $lasteval + $lasteval).Length()", nullptr},
    {L"'a'.Repeat(64).ToCharArray().ForEach('a', array($lasteval, $lasteval)).ToString()", nullptr},
    {L"'a'.Repeat(1000000).ToCharArray().Convert('b'.Repeat(1000000)).Count()", nullptr},
    {L"'a'.Repeat(500000000).ToInt()", nullptr},
    {L"'a'.Repeat(500000000) * 1", nullptr},
    {L"'a'.Repeat(500000000).Split('').Count()", nullptr},
    {L"'a'.Repeat(500000000).ToCharArray().Count()", nullptr},
    {L"'a'.Repeat(500000000).RegMatch('a*')", nullptr},
    {L"'a'.RegMatch('a'.Repeat(500000000))", nullptr},
    {L"'abc'.SubStr(1, 2147483647)", "string bc"},
    {L"'abc'.Delete(1, 2147483647)", "string a"},
    {L"({1 mm} ^ 2147483647).Power", "int 2147483647"},
    {L"array(1).Item(2147483647)", "null null"},
    {L"'abc'.CharAt(2147483647)", "null null"},
    {L"chr(2147483647)", "! Invalid character code: 2147483647"},
    {L"'a'.RegMatch('a{2147483647}')",
     "! Error in regular expression: an attempted match failed because it was too complex"},
};

// In the messages of failed tests.
void PrintTo(const Giant& giant, std::ostream* out) { *out << OrvStringT(giant.query).ToUtf8(); }

class Giants : public ::testing::TestWithParam<Giant> {};

TEST_P(Giants, EndInAnAnswerOrAnError) {
    const Giant& giant = GetParam();
    const std::string answer = giant.answer == nullptr ? "(there is none)" : giant.answer;
    const Construct construct{"", "", {}, [&](int) { return answer; }};
    const std::string faults = InChild([&] {
        std::string all;
        for (const std::size_t headroom : headrooms) {
            all += FaultWithin(construct, 1, giant.query, headroom).value_or("");
        }
        return all;
    });
    EXPECT_EQ(faults, "") << OrvStringT(giant.query).ToUtf8();
}

INSTANTIATE_TEST_SUITE_P(Queries, Giants, ::testing::ValuesIn(giants));

// The limit is one: what needs more than there is does not come to an answer.
TEST(AddressSpaceLimit, IsFelt) {
    const Construct construct{"", "", {}, [](int size) { return "int " + std::to_string(size); }};
    const std::string verdicts = InChild([&] {
        std::string all;
        for (const std::size_t headroom : {mebibyte, 1024 * mebibyte}) {
            const AddressSpaceLimit limit(headroom);
            all += NameOf(RunQuery(construct, 10000000, L"'a'.Repeat(10000000).Length()", Memory::Limited).verdict);
            all += "; ";
        }
        return all;
    });
    EXPECT_EQ(verdicts, "out of memory; the answer; ");
}

} // namespace

// In the messages of failed tests.
void PrintTo(const Construct& construct, std::ostream* out) { *out << construct.shown; }

} // namespace OrvUQL::Tests
