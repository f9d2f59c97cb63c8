// What is measured: each case is a query, the same work in Lua where Lua can say it, and the answer that both must
// give.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace OrvUQL::bench {

/// A unit answers with its text.
using Answer = std::variant<bool, double, std::string>;

struct Case {
    std::string name;  ///< "subject/what"
    std::string query; ///< reads the record as the property source
    std::string lua;   ///< an expression that reads the record as `r`; empty where none does the same work
    Answer answer;     ///< for the first record

    bool UsesRecord() const { return query.find('@') != std::string::npos; }
};

/// All cases, by subject. The list lives as long as the program.
const std::vector<Case>& Cases();

/// The query that picks records, for the measurement over many of them.
const Case& Filter();

} // namespace OrvUQL::bench
