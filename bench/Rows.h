// The rows of the tables: what of which case is measured.
#pragma once

#include "Cases.h"

#include <string>
#include <vector>

namespace OrvUQL::bench {

enum class Kind {
    Evaluate, ///< nanoseconds for an evaluation: the host's values set, the result taken out
    Parse,    ///< nanoseconds to parse and drop the query
    Memory,   ///< bytes that a parsed query holds
};

struct Row {
    std::string name; ///< "W1", or for what has no goal "evaluate/subject/what"
    Kind kind;
    const Case* test;
    double goal = 0;       ///< the figure should be at most this part of the reference's; 0: no goal
    std::string reference; ///< the engine that the goal is about
};

/// The rows with goals, in the order of the table, and then every case as all three kinds.
const std::vector<Row>& Rows();

/// The row of that name, also one of the costs, or null.
const Row* FindRow(const std::string& name);

const char* NameOf(Kind kind);

} // namespace OrvUQL::bench
