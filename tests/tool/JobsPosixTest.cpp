// Threads that have less stack than the process, as glibc's have if the process's is unlimited.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/resource.h>

namespace OrvUQL::Tests {
namespace {

/// What is started inherits the limit.
class UnlimitedStack {
public:
    UnlimitedStack() {
        ::getrlimit(RLIMIT_STACK, &before);
        const rlimit unlimited{before.rlim_max, before.rlim_max};
        isUnlimited = before.rlim_max == RLIM_INFINITY && ::setrlimit(RLIMIT_STACK, &unlimited) == 0;
    }
    UnlimitedStack(const UnlimitedStack&) = delete;
    UnlimitedStack& operator=(const UnlimitedStack&) = delete;
    ~UnlimitedStack() { ::setrlimit(RLIMIT_STACK, &before); }

    bool IsUnlimited() const { return isUnlimited; }

private:
    rlimit before = {};
    bool isUnlimited = false;
};

TEST(UqlJobs, AQueryThatIsTooDeepForOtherThreadsIsEvaluatedByTheFirst) {
    const UnlimitedStack stack;
    if (!stack.IsUnlimited()) {
        GTEST_SKIP() << "the stack of processes has a hard limit here";
    }
    const std::string depth(10'000, '(');
    const TestFile query(depth + "@this" + std::string(depth.size(), ')'), ".uql");
    EXPECT_EQ(RunUql({"-f", query.GetPath(), "-"}, "1 2"), Prints("1\n2\n"));
    EXPECT_EQ(RunUql({"-j", "3", "-f", query.GetPath(), "-"}, "1 2"), Prints("1\n2\n"));
    EXPECT_EQ(RunUql({"-j", "3", "--unbuffered", "-f", query.GetPath(), "-"}, "1 2"), Prints("1\n2\n"));
}

} // namespace
} // namespace OrvUQL::Tests
