// What the single parts of a query cost: queries that differ only in how many of a part they have.
#pragma once

#include "Cases.h"
#include "Rows.h"

#include <string>
#include <vector>

namespace OrvUQL::bench {

struct Cost {
    std::string what;
    std::string part; ///< as a user writes it
    Kind kind;        ///< Kind::Evaluate or Kind::Parse
    Case few;         ///< with one of the part
    Case many;        ///< with `more` further ones
    int more = 100;
    bool asksRecord = false; ///< the part asks the host's record, and depends on how that answers
};

/// All of them, in the order of the table. The list lives as long as the program.
const std::vector<Cost>& Costs();

/// The rows of their cases: "cost/0/few", "cost/0/many", "cost/1/few", and so on.
const std::vector<Row>& CostRows();

} // namespace OrvUQL::bench
