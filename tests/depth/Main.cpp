// orvuql_depth_tests [--table | options of GoogleTest]

#include "depth/DepthTable.h"

#include <gtest/gtest.h>

#include <cstring>

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--table") == 0) {
        return OrvUQL::Tests::PrintDepthTable() ? 0 : 1;
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
