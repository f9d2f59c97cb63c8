// Whether Graphviz takes the trees that are made for it.
#include "tool/RunUql.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace OrvUQL::Tests {
namespace {

/// What a command of the system's shell prints.
std::string RunShell(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    char block[4096];
    for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, pipe.get())) != 0;) {
        output.append(block, count);
    }
    return output;
}

/// The first words of the lines that dot makes of a graph: "graph", a "node" for each node and an "edge" for each edge.
std::string Draw(const std::string& graph) {
    const TestFile file(graph, ".dot");
    return RunShell("dot -Tplain " + file.GetPath() + " 2>&1 | cut -d' ' -f1 | sort | uniq -c | tr -s ' \\n' ' '");
}

TEST(UqlTreePicture, GraphvizDrawsEveryElement) {
    if (RunShell("command -v dot").empty()) {
        GTEST_SKIP() << "there is no Graphviz";
    }
    EXPECT_EQ(Draw(RunUql({"tree", "--format", "dot", "iif(@a.b > 1, 'x\"y\\z', {2 cm}[.Value(, 1)])"}).out),
              " 10 edge 1 graph 11 node 1 stop ");
    EXPECT_EQ(Draw(RunUql({"explain", "--format", "dot", "array(1, 2).Convert('\"\\' + $item)"}).out),
              " 6 edge 1 graph 7 node 1 stop ");
}

} // namespace
} // namespace OrvUQL::Tests
