// A parsed query on an engine of its own.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "EngineSettings.h"
#include "Printer.h"
#include "Ref.h"

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Why a query could not be parsed or evaluated, as standard error tells it.
struct QueryFailure {
    std::string message;
    std::string caret; ///< the lines that show the place in the query, if there is one
};

/// Engine, query and everything that they make belong to the thread that uses the runner.
class QueryRunner {
public:
    explicit QueryRunner(const Printer& resultPrinter) : printer(resultPrinter) {}

    /// Parses the query (UTF-8), once.
    bool Prepare(std::string_view text, const EngineSettings& settings, QueryFailure& failure);

    /// From now on names with "@" are read from `record`, which the engine keeps until the next one.
    void SetRecord(IObject* record) { engine.SetPropertySource(record); }

    /// Evaluates the query and appends its printed value. On failure nothing is appended.
    bool Evaluate(std::string& out, QueryFailure& failure);

private:
    QueryFailure Describe(IError* error) const;

    ComApartment apartment; // outlives the engine and all values
    QueryEngine engine;
    OrvStringT query;
    Ref<IQueryElement> tree;
    Printer printer;
};

} // namespace OrvUQL::Tool
