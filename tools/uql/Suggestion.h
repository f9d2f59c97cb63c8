// "did you mean": what the writer of a query that failed may have meant.
#pragma once

#include <OrvUQL/OrvUQL.h>

namespace OrvUQL::Tool {

/// A failure as the engine tells it.
struct FailedQuery {
    QueryEngine& engine;
    const OrvStringT& text;
    const IQueryElement* tree; ///< null: it could not be parsed
    OrvStringT message;
    int position;
};

/// A name that can stand where the failure is instead of the one that does: a method of the value's type, a global
/// function, a unit, a member of the record. Empty if there is none near enough. Evaluates nothing but reads of members
/// without arguments, and spoils the engine's error position.
OrvStringT SuggestName(const FailedQuery& failure);

} // namespace OrvUQL::Tool
