// The queries of conformance files, each with an engine as its file sets it up.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "ConformanceFile.h"

#include <functional>
#include <string>

namespace OrvUQL::Tests {

/// Calls `run(engine, case, place)` for each query of the files that are given as a program's arguments, but for those
/// that may take seconds each time; `place` is for messages. False, and said so on standard output, if a file cannot be
/// read.
bool ForEachConformanceQuery(
    int argc, char** argv,
    const std::function<void(QueryEngine&, const Tool::ConformanceCase&, const std::string& place)>& run);

/// Whether the query has a name in it, or what looks like one.
bool Mentions(const Tool::ConformanceCase& query, const wchar_t* lowerCaseName);

} // namespace OrvUQL::Tests
