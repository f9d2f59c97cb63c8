// Queries that take long by what they ask for.
#pragma once

#include <string_view>

namespace OrvUQL::Tests {

/// Repeats of repeats, and long texts, may take all the steps that an expression is given: seconds for each evaluation,
/// which leaves no time for anything else.
inline bool MayTakeAllSteps(std::string_view query) {
    for (const char* const repeat : {")*", ")+", "){", "epeat"}) {
        if (query.find(repeat) != std::string_view::npos && query.find("eg") != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

} // namespace OrvUQL::Tests
