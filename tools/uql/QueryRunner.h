// A parsed query on an engine of its own.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "EngineSettings.h"
#include "ParsedQuery.h"
#include "Printer.h"

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Engine, query and everything that they make belong to the thread that uses the runner.
class QueryRunner {
public:
    explicit QueryRunner(const Printer& resultPrinter) : printer(resultPrinter) {}

    /// Parses the query (UTF-8), once.
    bool Prepare(std::string_view text, const EngineSettings& settings, QueryFailure& failure) {
        return query.Prepare(text, settings, failure);
    }

    /// From now on names with "@" are read from `record`, which the engine keeps until the next one. Null: there is
    /// none.
    void SetRecord(IObject* record) { query.GetEngine().SetPropertySource(record); }
    /// Likewise for names with "$".
    void SetVariable(IObject* value) { query.GetEngine().SetVariable(value); }

    /// Evaluates the query and appends its printed value. On failure nothing is appended.
    bool Evaluate(std::string& out, QueryFailure& failure);

    /// Evaluates a query that is a condition. What is neither true nor false is a failure.
    bool Test(bool& verdict, QueryFailure& failure);

private:
    ParsedQuery query;
    Printer printer;
};

} // namespace OrvUQL::Tool
