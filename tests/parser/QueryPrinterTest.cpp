// Every query of the conformance files, printed from its tree, parses to the same tree.

#include "support/QueryPrinter.h"

#include "parser/QueryGenerator.h"
#include "parser/TreeDump.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// The queries that stand on one line without escapes, in the order of the files' names.
std::vector<std::string> ConformanceQueries() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(ORVUQL_CONFORMANCE_FOLDER)) {
        if (entry.path().extension() == ".uqlt") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<std::string> queries;
    for (const std::filesystem::path& file : files) {
        std::ifstream input(file);
        for (std::string line; std::getline(input, line);) {
            if (line.compare(0, 2, "? ") == 0) {
                queries.push_back(line.substr(2));
            }
        }
    }
    return queries;
}

/// What is printed for a query that parses; both trees must be the same.
std::string PrintAgain(QueryEngine& engine, std::string_view utf8) {
    const Ref<IQueryElement> tree(engine.ParseQuery(OrvStringT::FromUtf8(utf8).GetString(), nullptr));
    if (!tree) {
        return "!";
    }
    const std::optional<OrvStringT> printed = PrintQuery(*tree);
    if (!printed) {
        ADD_FAILURE() << utf8 << " is not printed";
        return {};
    }
    ErrorSlot error;
    const Ref<IQueryElement> again(engine.ParseQuery(printed->GetString(), error.Slot()));
    EXPECT_TRUE(again) << utf8 << "\n" << Utf8(*printed) << "\n" << error.Message();
    EXPECT_EQ(Dump(tree.Get()), Dump(again.Get())) << utf8 << "\n" << Utf8(*printed);
    return Utf8(*printed);
}

TEST(QueryPrinter, PrintsParenthesesOnlyWhereTheyAreNeeded) {
    Host host;
    const auto print = [&](std::string_view query) { return PrintAgain(host.engine, query); };
    EXPECT_EQ(print("1+2*3"), "1 + 2 * 3");
    EXPECT_EQ(print("(1+2)*3"), "(1 + 2) * 3");
    EXPECT_EQ(print("1-(2-3)"), "1 - (2 - 3)");
    EXPECT_EQ(print("2^3^2"), "2 ^ 3 ^ 2");
    EXPECT_EQ(print("2^(3^2)"), "2 ^ (3 ^ 2)");
    EXPECT_EQ(print("2*(-3)"), "2 * (- 3)");
    EXPECT_EQ(print("-a*b"), "- a * b");
    EXPECT_EQ(print("(-a)*b"), "(- a) * b");
    EXPECT_EQ(print("not a = b and c"), "not a = b and c");
    EXPECT_EQ(print("(not a) = b"), "(not a) = b");
    EXPECT_EQ(print("a ? b : c ? d : e"), "a ? b : c ? d : e");
    EXPECT_EQ(print("(a ? b : c) ? d : e"), "(a ? b : c) ? d : e");
    EXPECT_EQ(print("a[b].c.d[e]"), "a[b].c.d[e]");
    EXPECT_EQ(print("(a[b].c[d]).e"), "(a[b].c[d]).e");
    EXPECT_EQ(print("(a[b][c])[d]"), "(a[b][c])[d]");
    EXPECT_EQ(print(".a(,b)[.c]"), ".a(, b)[.c]");
    EXPECT_EQ(print("f()"), "f");
    EXPECT_EQ(print("'it''s'"), "'it''s'");
    EXPECT_EQ(print("12.0"), "12.0");
    EXPECT_EQ(print("1e3"), "1000");
    EXPECT_EQ(print("0xFFFFFFFF"), "0xFFFFFFFF");
    EXPECT_EQ(print("{2mm2}"), "{2.0 mm^2}");
}

TEST(QueryPrinter, PrintsWhatParsesToTheSameTree) {
    Host host;
    const std::vector<std::string> queries = ConformanceQueries();
    ASSERT_GT(queries.size(), 2000U);
    std::size_t printed = 0;
    for (const std::string& query : queries) {
        printed += PrintAgain(host.engine, query) == "!" ? 0 : 1;
    }
    EXPECT_GT(printed, queries.size() * 3 / 4);
}

TEST(QueryPrinter, PrintsRandomTrees) {
    constexpr std::uint32_t seed = 20240311;
    Host host;
    QueryGenerator generator(seed);
    for (int round = 0; round < 2000; ++round) {
        ASSERT_NE(PrintAgain(host.engine, generator.Make().text), "!");
    }
}

// What is made by hand may be no query's tree.
TEST(QueryPrinter, RefusesWhatNoQueryGives) {
    const auto refuses = [](IQueryElement* tree) {
        const Ref<IQueryElement> owned(tree);
        return !PrintQuery(*owned).has_value();
    };
    EXPECT_TRUE(refuses(new ElementObject(-0.0, 0)));
    EXPECT_TRUE(refuses(new ElementObject(-1.5, 0)));
    EXPECT_TRUE(refuses(new ElementArray(QueryElementList(), 0)));
    EXPECT_TRUE(refuses(new ElementObject(new ObjectArray(ObjectList{}), 0, false)));
}

} // namespace
} // namespace OrvUQL::Tests
