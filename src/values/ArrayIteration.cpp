// The array methods that evaluate an expression for each item. Empty slots are passed over.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/Scalars.h"

#include "platform/CaseMap.h"
#include "values/ItemEvaluation.h"

#include <algorithm>

namespace OrvUQL {

/// A fold: each evaluation sees the result of the one before as `$lasteval`, the first one the initial value.
IObject* ObjectArrayBase::Method_ForEach(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                         IError** err) {
    const IQueryElement* const expression = GetQueryElement(params[1]);
    const detail::ItemSource items(*this);
    if (expression == nullptr || items.Count() == 0) { // nothing else is asked or touched then
        params[0]->AddRef();
        return params[0];
    }
    detail::ItemEvaluation evaluation(engine, expression, params[2], err); // may throw, so before there is a result
    params[0]->AddRef();
    detail::Value result = detail::Value::Object(params[0]); // without an owner: in registers
    for (int index = 0;; ++index) {
        IObject* item = nullptr;
        try {
            if (index >= items.Count()) {
                break;
            }
            item = items.Item(index);
        } catch (...) { // of a host's array
            const detail::ValueHolder disposed(result);
            throw;
        }
        if (item == nullptr) {
            continue;
        }
        result = evaluation.Evaluate(result, item, index + 1);
        if (result.Failed()) {
            return nullptr;
        }
    }
    return detail::Box(result);
}

namespace {

/// The truth of an expression's value, which is taken over. False on failure.
bool TakeTruth(detail::Value value, bool& truth, IError** err) {
    if (value.kind == detail::ValueKind::Bool) [[likely]] {
        truth = value.boolean;
        return true;
    }
    const detail::ValueHolder holder(value);
    return !value.Failed() && detail::ToBool(value, truth, err);
}

/// The items for which the expression is true.
bool Filter(const detail::ItemSource& items, detail::ItemEvaluation& evaluation, ObjectList& list, IError** err) {
    if (items.IsFixed()) {           // a host's array is not asked more often than it has to be
        constexpr int fewItems = 16; // room for so many is no waste even if none is kept
        list.reserve(static_cast<std::size_t>(std::min(items.Count(), fewItems)));
    }
    for (int index = 0; index < items.Count(); ++index) {
        Reference<IObject> item(items.Item(index));
        if (!item) {
            continue;
        }
        item->AddRef();
        bool keep = false;
        if (!TakeTruth(evaluation.Evaluate(detail::Value::Null(), item.Get(), index + 1), keep, err)) {
            return false;
        }
        if (keep) {
            list.push_back(item.Get());
            item.Detach();
        }
    }
    return true;
}

/// The expression's values.
bool Convert(const detail::ItemSource& items, detail::ItemEvaluation& evaluation, ObjectList& list) {
    if (items.IsFixed()) {
        list.reserve(static_cast<std::size_t>(items.Count()));
    }
    for (int index = 0; index < items.Count(); ++index) {
        IObject* const item = items.Item(index);
        if (item == nullptr) {
            continue;
        }
        item->AddRef();
        const Reference<IObject> held(item);
        Reference<IObject> value(detail::Box(evaluation.Evaluate(detail::Value::Null(), item, index + 1)));
        if (!value) {
            return false;
        }
        list.push_back(value.Get());
        value.Detach();
    }
    return true;
}

} // namespace

IObject* ObjectArrayBase::Method_FilterConvert(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                               IError** err) {
    const IQueryElement* const expression = GetQueryElement(params[0]);
    if (expression == nullptr) {
        return nullptr;
    }
    const detail::ItemSource items(*this);
    detail::ItemEvaluation evaluation(engine, expression, params[1], err);
    ObjectList list;
    const bool succeeded = platform::EqualsIgnoreCase(name, L"filter") ? Filter(items, evaluation, list, err)
                                                                       : Convert(items, evaluation, list);
    return succeeded ? new ObjectArray(std::move(list)) : nullptr;
}

/// Whether the expression is true for some item; the items after that one are not looked at.
IObject* ObjectArrayBase::Method_Contains(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                          IError** err) {
    const IQueryElement* const expression = GetQueryElement(params[0]);
    if (expression == nullptr) {
        return nullptr;
    }
    detail::ItemEvaluation evaluation(engine, expression, params[1], err);
    const detail::ItemSource items(*this);
    bool found = false;
    for (int index = 0; index < items.Count() && !found; ++index) {
        IObject* const item = items.Item(index);
        if (item == nullptr) {
            continue;
        }
        const detail::ValueHolder value(evaluation.Evaluate(detail::Value::Null(), item, index + 1));
        if (value.Failed() || !detail::ToBool(value.Get(), found, err)) {
            return nullptr;
        }
    }
    return new ObjectBool(found);
}

} // namespace OrvUQL
