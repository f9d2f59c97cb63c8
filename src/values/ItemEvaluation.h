// Evaluating an expression argument once for each item of an array.
#pragma once

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectIterator.h"
#include "OrvUQL/QueryEngine.h"

#include "core/Failure.h"
#include "core/Value.h"

namespace OrvUQL::detail {

/// One loop over an array. The iterator that the expression sees is made anew for an item only if the expression of
/// the one before kept it; else it is filled again.
class ItemEvaluation {
public:
    /// Everything is borrowed for the loop's duration; `data` may be null, which stands for a null value.
    ItemEvaluation(QueryEngine* engine, const IQueryElement* expression, IObject* data);
    ItemEvaluation(const ItemEvaluation&) = delete;
    ItemEvaluation& operator=(const ItemEvaluation&) = delete;
    ~ItemEvaluation();

    /// Evaluates for `item` at a 1-based position. `lasteval` and the reference to `item` are taken over, also on
    /// failure. Returns the value, or none. May throw.
    Value Evaluate(Value lasteval, IObject* item, int position, IError** err);

private:
    QueryEngine* engine;
    const IQueryElement* expression;
    ElementKind kind;
    Reference<IObject> data;
    Reference<ObjectIterator> iterator;
};

} // namespace OrvUQL::detail
