// Evaluating an expression argument once for each item of an array.
#pragma once

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectIterator.h"
#include "OrvUQL/QueryEngine.h"

#include "core/Failure.h"

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

    /// Evaluates for `item` at a 1-based position. The references to `lasteval` and `item` are taken over, also on
    /// failure; a null `lasteval` stands for a null value, made if it is asked for. Returns the value with a
    /// reference, or null. May throw.
    IObject* Evaluate(IObject* lasteval, IObject* item, int position, IError** err);

private:
    QueryEngine* engine;
    const IQueryElement* expression;
    Reference<IObject> data;
    Reference<ObjectIterator> iterator;
};

} // namespace OrvUQL::detail
