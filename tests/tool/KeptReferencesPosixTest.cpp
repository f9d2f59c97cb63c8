// AddArray and Unique keep references to items; a run over any number of records must not keep the items for that.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvUQL::Tests {
namespace {

/// The most memory that a run has taken, in bytes.
long MeasurePeak(const std::string& query, const std::string& path, const char* jobs) {
    const pid_t process = ::fork();
    if (process == 0) {
        // Where memory is watched, what has been given back must not count.
        const char* const before = std::getenv("ASAN_OPTIONS");
        const std::string options = (before == nullptr ? "" : std::string(before) + ":") + "quarantine_size_mb=1";
        ::setenv("ASAN_OPTIONS", options.c_str(), 1);
        ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
        ::execl(UQL_PATH, "uql", "-j", jobs, query.c_str(), path.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    int status = -1;
    rusage usage = {};
    EXPECT_EQ(::wait4(process, &status, 0, &usage), process);
    EXPECT_EQ(status, 0) << query;
    return usage.ru_maxrss * 1024;
}

std::string MakeRecords(int count) {
    std::string json;
    for (int number = 0; number < count; ++number) {
        json += "{\"a\":[\"first of " + std::to_string(number) + "\",\"second\",\"second\"]}\n";
    }
    return json;
}

TEST(UqlKeptReferences, DoNotMakeARunGrow) {
    constexpr int few = 20'000;
    const TestFile start(MakeRecords(few));
    const TestFile whole(MakeRecords(10 * few));
    for (const char* query : {"@a.Unique().Count()", "@a.AddArray(@a).Count()"}) {
        for (const char* jobs : {"1", "2"}) {
            const long peak = MeasurePeak(query, start.GetPath(), jobs);
            // Kept, a text would take some hundred bytes.
            constexpr long some = 6 << 20;
            EXPECT_LT(MeasurePeak(query, whole.GetPath(), jobs), peak + some) << query << " -j " << jobs;
        }
    }
}

} // namespace
} // namespace OrvUQL::Tests
