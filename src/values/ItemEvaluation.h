// Evaluating an expression argument once for each item of an array.
#pragma once

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectIterator.h"
#include "OrvUQL/QueryEngine.h"

#include "core/Failure.h"

namespace OrvUQL::detail {

/// One loop over an array. The iterator that the expression sees is made anew for an item only if the expression of
/// the one before kept it; else it is filled again, and stays the engine's variable in between.
class ItemEvaluation {
public:
    /// Everything is borrowed for the loop's duration; `data` may be null, which stands for a null value.
    ItemEvaluation(QueryEngine* engine, const IQueryElement* expression, IObject* data);
    ItemEvaluation(const ItemEvaluation&) = delete;
    ItemEvaluation& operator=(const ItemEvaluation&) = delete;
    ~ItemEvaluation();

    /// Evaluates for `item` at a 1-based position. The references to `lasteval` and `item` are taken over, also on
    /// failure; a null `lasteval` stands for a null value. Returns the value with a reference, or null. May throw.
    IObject* Evaluate(IObject* lasteval, IObject* item, int position, IError** err);

private:
    void Drop() noexcept;

    QueryEngine* engine;
    const IQueryElement* expression;
    Reference<IObject> data;
    Reference<IObject> null;
    ObjectIterator* iterator = nullptr; // one reference, and one more as the engine's variable
};

} // namespace OrvUQL::detail
