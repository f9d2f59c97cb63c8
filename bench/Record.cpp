#include "Record.h"

#include <algorithm>

namespace OrvUQL::bench {

namespace {

std::vector<Record> MakeRecords() {
    std::vector<Record> records = {{12, "ABC", 3, "hex bolt M8", 12.5, 40, 0.25}};
    while (records.size() < 1000) {
        const int i = static_cast<int>(records.size());
        records.push_back({i * 7 % 31, i % 3 == 0 ? "abc" : "xyz", i % 5, "part " + std::to_string(i),
                           i * 37 % 101 * 0.25, i * 11 % 97, i % 13 * 0.125});
    }
    return records;
}

} // namespace

const std::vector<Record>& Records() {
    static const std::vector<Record> records = MakeRecords();
    return records;
}

int CountOfFilter() {
    const auto picked = [](const Record& record) { return record.price * record.quantity > 400 && record.a != 3; };
    return static_cast<int>(std::count_if(Records().begin(), Records().end(), picked));
}

} // namespace OrvUQL::bench
