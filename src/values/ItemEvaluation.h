// Evaluating an expression argument once for each item of an array.
#pragma once

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectIterator.h"
#include "OrvUQL/QueryEngine.h"

#include "core/CountAccess.h"
#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "core/Value.h"
#include "platform/Meter.h"
#include "values/IteratorAccess.h"

#include <typeinfo>

namespace OrvUQL::detail {

/// One loop over an array. The iterator that the expression sees is made anew for an item only if the expression of
/// the one before kept it; else it is filled again.
class ItemEvaluation {
public:
    /// Everything is borrowed for the loop's duration; `data` may be null, which stands for a null value.
    ItemEvaluation(QueryEngine* engine, const IQueryElement* expression, IObject* data, IError** err);
    ItemEvaluation(const ItemEvaluation&) = delete;
    ItemEvaluation& operator=(const ItemEvaluation&) = delete;
    ~ItemEvaluation();

    /// Evaluates for `item` at a 1-based position. `lasteval` and the reference to `item` are taken over, also on
    /// failure. Returns the value, or none. May throw.
    Value Evaluate(Value lasteval, IObject* item, int position);

private:
    class Scope;

    /// The loop's own, and the one that is lent to the engine.
    static constexpr int ownReferences = 2;

    void MakeIterator(const Value& lasteval, IObject* item);
    void TakeBack(IObject* inner) noexcept;
    void DropIterator() noexcept;

    QueryEngine* engine;
    RepeatedArgument expression;
    Reference<IObject> data;
    ObjectIterator* iterator = nullptr;
};

/// What PushVariable() and PopVariable() do for the time of one item, without the stack: the variable that is put
/// aside waits here. The engine's reference to the iterator is there all the time and only lent.
class ItemEvaluation::Scope {
public:
    ORVUQL_ALWAYS_INLINE explicit Scope(ItemEvaluation& itemEvaluation) noexcept
        : evaluation(itemEvaluation),
          iterator(evaluation.iterator),
          outer(EngineAccess::ExchangeVariable(evaluation.engine, iterator)) {}
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    /// Before anything else can ask for the variable: the array, or the value's conversion.
    ORVUQL_ALWAYS_INLINE ~Scope() {
        IObject* const inner = EngineAccess::ExchangeVariable(evaluation.engine, outer);
        if (inner != iterator || CountAccess::Count(iterator) != ownReferences) [[unlikely]] {
            evaluation.TakeBack(inner);
            return;
        }
        IteratorAccess::Empty(iterator);
    }

private:
    ItemEvaluation& evaluation;
    ObjectIterator* const iterator;
    IObject* const outer;
};

ORVUQL_ALWAYS_INLINE Value ItemEvaluation::Evaluate(Value lasteval, IObject* item, int position) {
    if (iterator == nullptr) [[unlikely]] {
        MakeIterator(lasteval, item);
    }
    IteratorAccess::Fill(iterator, lasteval, item, position);
    const Scope scope(*this);
    return expression.Evaluate();
}

/// The items of an array, read without a virtual call where its class is the library's own, whose items never change,
/// and nobody counts: each is a step.
class ItemSource {
public:
    explicit ItemSource(const ObjectArrayBase& source)
        : array(source),
          list(typeid(source) == typeid(ObjectArray) && platform::CurrentThread().meter == nullptr
                   ? &static_cast<const ObjectArray&>(source).GetObjectList()
                   : nullptr) {}

    /// Asked before each step: a host's array may change while it is read.
    int Count() const { return list != nullptr ? static_cast<int>(list->size()) : array.GetCount(); }

    /// The item with a new reference, null for an empty slot.
    IObject* Item(int index) const {
        if (list == nullptr) {
            platform::Charge(1);
            return array.GetItem(index);
        }
        IObject* const item = (*list)[static_cast<std::size_t>(index)];
        if (item != nullptr) {
            item->AddRef();
        }
        return item;
    }

    bool IsFixed() const noexcept { return list != nullptr; }

private:
    const ObjectArrayBase& array;
    const ObjectList* list;
};

} // namespace OrvUQL::detail
