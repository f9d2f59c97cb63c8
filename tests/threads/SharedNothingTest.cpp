// Engines on many threads, with nothing in common: what one of them evaluates is what it would evaluate alone.
#include "support/Host.h"
#include "support/StackThread.h"
#include "threads/Workers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// Enough for any query that is not about depth; and so little that no recursion on it is deeper than what the thread
/// sanitizer has room for in its books, 64 Ki calls.
constexpr std::size_t moderateStack = 1024 * 1024;

/// The queries of the conformance files that stand on one line and give the same each time.
std::vector<OrvStringT> ConformanceQueries() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(ORVUQL_CONFORMANCE_FOLDER)) {
        // (What keeps references on purpose would be leaks by the thousand, and expressions that are too complex take
        // long to be found so.)
        const std::string stem = entry.path().stem().string();
        if (entry.path().extension() == ".uqlt" && stem != "array-kept-references" && stem != "regex-errors") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<OrvStringT> queries;
    for (const std::filesystem::path& file : files) {
        std::ifstream input(file);
        for (std::string line; std::getline(input, line);) {
            // Expressions over long texts recurse on a stack of their own, deeper than the sanitizer has room for.
            const bool isLong = line.find("000)") != std::string::npos;
            const bool repeats = line.find("rnd") == std::string::npos && line.find("Rnd") == std::string::npos &&
                                 line.find("AddArray") == std::string::npos && line.find("Unique") == std::string::npos;
            if (line.compare(0, 2, "? ") == 0 && repeats && !isLong) {
                queries.push_back(OrvStringT::FromUtf8(line.substr(2)));
            }
        }
    }
    return queries;
}

/// What comes of each query, evaluated from the one with number `first` on, round to the one before it.
std::vector<std::string> Outcomes(const std::vector<OrvStringT>& queries, std::size_t first) {
    std::vector<std::string> outcomes(queries.size());
    RunOnThread(moderateStack, [&] {
        Host host;
        for (std::size_t i = 0; i < queries.size(); ++i) {
            const std::size_t at = (first + i) % queries.size();
            outcomes[at] = host.Run(queries[at].GetString());
        }
    });
    return outcomes;
}

TEST(SharedNothing, EveryQueryOnEveryThread) {
    constexpr int threads = 4;
    const std::vector<OrvStringT> queries = ConformanceQueries();
    ASSERT_GT(queries.size(), 3000U);
    // A text's buffer is counted without a lock, so each thread has copies of its own.
    std::vector<std::vector<OrvStringT>> own(threads);
    for (std::vector<OrvStringT>& copies : own) {
        for (const OrvStringT& query : queries) {
            copies.emplace_back(query.GetString());
        }
    }
    std::vector<std::vector<std::string>> outcomes(threads);
    RunAtOnce(threads, [&](int number) {
        const auto index = static_cast<std::size_t>(number);
        outcomes[index] = Outcomes(own[index], index * queries.size() / threads);
    });
    const std::vector<std::string> alone = Outcomes(queries, 0);
    for (const std::vector<std::string>& others : outcomes) {
        for (std::size_t i = 0; i < queries.size(); ++i) {
            EXPECT_EQ(others[i], alone[i]) << queries[i].ToUtf8();
        }
    }
}

TEST(SharedNothing, DeepNestsOnSmallStacks) {
    std::wstring parentheses(5000, L'(');
    parentheses += L"1" + std::wstring(5000, L')');
    std::wstring texts = L"''";
    for (int i = 0; i < 1000; ++i) {
        texts += L" + 'x'";
    }
    RunAtOnce(4, [&](int) {
        RunOnThread(smallStack, [&] {
            Host host;
            EXPECT_EQ(host.Run(texts.c_str()), "string " + std::string(1000, 'x'));
            EXPECT_NE(host.Run(parentheses.c_str()), ""); // a value or an error, as the stack is
            EXPECT_EQ(host.Run(L"'ab'.Repeat(2000).RegMatch('(a|b)*')"), "bool true");
        });
    });
}

// A value may be handed over, together with all that it refers to: the one who gives it away keeps nothing of it.
TEST(SharedNothing, ValuesAreReleasedOnAnotherThread) {
    std::mutex lock;
    std::vector<Ref<IObject>> handed;
    std::atomic<int> makers = 3;
    RunAtOnce(4, [&](int number) {
        if (number != 0) {
            for (int i = 0; i < 300; ++i) {
                Host host;
                Ref<IObject> value = host.Evaluate(L"array(1, 2.5, 'text'.Repeat(3), array(4)).Convert($Item)");
                const std::lock_guard guard(lock);
                handed.push_back(std::move(value));
            }
            --makers;
            return;
        }
        for (bool last = false; !last;) {
            last = makers == 0;
            std::vector<Ref<IObject>> taken;
            {
                const std::lock_guard guard(lock);
                taken.swap(handed);
            }
            for (const Ref<IObject>& value : taken) {
                EXPECT_EQ(ToText(*value), "(1,2.5,texttexttext,(4))");
            }
        }
    });
    EXPECT_TRUE(handed.empty());
}

// What a thread keeps for itself (memory, compiled expressions) goes when it ends, while others begin.
TEST(SharedNothing, ThreadsComeAndGo) {
    RunAtOnce(4, [](int number) {
        for (int round = 0; round < 20; ++round) {
            std::thread([&] {
                Host host;
                const std::wstring pattern = L"'a" + std::to_wstring(round) + L"'.RegMatch('a" +
                                             std::to_wstring(number) + L"|a" + std::to_wstring(round) + L"')";
                EXPECT_EQ(host.Run(pattern.c_str()), "bool true");
            }).join();
        }
    });
}

} // namespace
} // namespace OrvUQL::Tests
