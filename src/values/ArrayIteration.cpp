// The array methods that evaluate an expression for each item. Empty slots are passed over.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/Scalars.h"

#include "platform/CaseMap.h"
#include "values/ItemEvaluation.h"

namespace OrvUQL {

/// A fold: each evaluation sees the result of the one before as `$lasteval`, the first one the initial value.
IObject* ObjectArrayBase::Method_ForEach(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                         IError** err) {
    const IQueryElement* const expression = GetQueryElement(params[1]);
    params[0]->AddRef();
    detail::ValueHolder result(detail::Value::Object(params[0]));
    if (expression == nullptr || GetCount() == 0) {
        return detail::Box(result.Detach());
    }
    detail::ItemEvaluation evaluation(engine, expression, params[2]);
    for (int index = 0; !result.Failed() && index < GetCount(); ++index) {
        if (IObject* const item = GetItem(index)) {
            result.Reset(evaluation.Evaluate(result.Detach(), item, index + 1, err));
        }
    }
    return detail::Box(result.Detach());
}

/// Filter keeps the items for which the expression is true, Convert the expression's values.
IObject* ObjectArrayBase::Method_FilterConvert(QueryEngine* engine, const OrvStringT& name, const ObjectList& params,
                                               IError** err) {
    const IQueryElement* const expression = GetQueryElement(params[0]);
    if (expression == nullptr) {
        return nullptr;
    }
    const bool isFilter = platform::EqualsIgnoreCase(name, L"filter");
    detail::ItemEvaluation evaluation(engine, expression, params[1]);
    ObjectList list;
    for (int index = 0; index < GetCount(); ++index) {
        Reference<IObject> item(GetItem(index));
        if (!item) {
            continue;
        }
        item->AddRef();
        detail::ValueHolder value(evaluation.Evaluate(detail::Value::Null(), item.Get(), index + 1, err));
        if (value.Failed()) {
            return nullptr;
        }
        bool keep = true;
        if (isFilter && !detail::ToBool(value.Get(), keep, err)) {
            return nullptr;
        }
        if (!isFilter) {
            item.Reset(detail::Box(value.Detach()));
        }
        if (keep) {
            list.push_back(item.Get());
            item.Detach();
        }
    }
    return new ObjectArray(std::move(list));
}

/// Whether the expression is true for some item; the items after that one are not looked at.
IObject* ObjectArrayBase::Method_Contains(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                          IError** err) {
    const IQueryElement* const expression = GetQueryElement(params[0]);
    if (expression == nullptr) {
        return nullptr;
    }
    detail::ItemEvaluation evaluation(engine, expression, params[1]);
    bool found = false;
    for (int index = 0; index < GetCount() && !found; ++index) {
        IObject* const item = GetItem(index);
        if (item == nullptr) {
            continue;
        }
        const detail::ValueHolder value(evaluation.Evaluate(detail::Value::Null(), item, index + 1, err));
        if (value.Failed() || !detail::ToBool(value.Get(), found, err)) {
            return nullptr;
        }
    }
    return new ObjectBool(found);
}

} // namespace OrvUQL
