// A run that is there to be interrupted.
#pragma once

#include <string>

namespace OrvUQL::Tests::LongRun {

/// A million additions for each record: without an interruption the run takes minutes.
inline constexpr const char* query = "@Convert(@Convert($item + 1).Count).Count";

/// Records for which the query gives 1001.
inline std::string MakeRecords() {
    std::string record = "[1";
    for (int number = 0; number < 1'000; ++number) {
        record += ",1";
    }
    record += "]\n";
    std::string records;
    for (int number = 0; number < 5'000; ++number) {
        records += record;
    }
    return records;
}

} // namespace OrvUQL::Tests::LongRun
