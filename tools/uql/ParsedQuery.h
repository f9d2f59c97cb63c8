// A parsed query and the engine that it is evaluated on.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "ComObject.h"
#include "EngineSettings.h"
#include "Ref.h"

#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Why a query could not be parsed or evaluated, as standard error tells it.
struct QueryFailure {
    std::string message;
    std::string caret; ///< the lines that show the place in the query, if there is one, and what may have been meant
};

/// Tells of the engine's last failure: of a query's text, its tree (null: it could not be parsed) and the error, which
/// may be null.
QueryFailure DescribeFailure(QueryEngine& engine, const OrvStringT& text, const IQueryElement* tree, IError* error);

/// Engine, query and everything that they make belong to the thread that uses them.
class ParsedQuery {
public:
    /// Parses the query (UTF-8), once. False with the reason in `failure`.
    bool Prepare(std::string_view query, const EngineSettings& settings, QueryFailure& failure);

    QueryEngine& GetEngine() { return engine; }
    /// Borrowed; null before Prepare.
    IQueryElement* GetTree() const { return tree.Get(); }

    /// As DescribeFailure.
    QueryFailure Describe(IError* error) { return DescribeFailure(engine, text, tree.Get(), error); }

private:
    ComApartment apartment; // outlives the engine and all values
    QueryEngine engine;
    OrvStringT text;
    Ref<IQueryElement> tree;
};

} // namespace OrvUQL::Tool
