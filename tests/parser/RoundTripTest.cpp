// Random trees, written as queries by the grammar's rules and parsed again: the tree, positions included, must be the
// one that was written.

#include "parser/ParseCheck.h"
#include "parser/QueryGenerator.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace OrvUQL::Tests {
namespace {

constexpr std::uint32_t seed = 20240117;

TEST(RoundTrip, RandomTreesComeBackAsTheyWereWritten) {
    QueryGenerator generator(seed);
    std::size_t longest = 0;
    for (int round = 0; round < 10000; ++round) {
        const QueryGenerator::Query query = generator.Make();
        longest = std::max(longest, query.text.size());
        ASSERT_EQ(ParseDump(query.text, DumpPositions::Yes), query.tree) << query.text;
    }
    EXPECT_GT(longest, 1000U) << "the trees were not worth the trouble";
}

} // namespace
} // namespace OrvUQL::Tests
