// The records that queries are run over: plain data of a host, in no engine's own form.
#pragma once

#include <string>
#include <vector>

namespace OrvUQL::bench {

struct Record {
    int a;
    std::string b;
    int c;
    std::string name;
    double price;
    int quantity;
    double weight;
};

/// The same records in every run; the first one is that of the cases.
const std::vector<Record>& Records();

/// For how many of them the filter is true, found without an engine.
int CountOfFilter();

} // namespace OrvUQL::bench
