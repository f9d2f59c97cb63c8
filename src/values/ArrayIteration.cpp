// The array methods that evaluate an expression for each item. Empty slots are passed over.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/Scalars.h"

#include "platform/CaseMap.h"
#include "values/ItemEvaluation.h"

namespace OrvUQL {

/// A fold: each evaluation sees the result of the one before as `$lasteval`, the first one the initial value.
IObject* ObjectArrayBase::Method_ForEach(QueryEngine* engine, const OrvStringT&, const ObjectList& params,
                                         IError** err) {
    params[0]->AddRef();
    Reference<IObject> result(params[0]);
    const IQueryElement* const expression = GetQueryElement(params[1]);
    if (expression == nullptr || GetCount() == 0) {
        return result.Detach();
    }
    detail::ItemEvaluation evaluation(engine, expression, params[2]);
    for (int index = 0; result && index < GetCount(); ++index) {
        if (IObject* const item = GetItem(index)) {
            result.Reset(evaluation.Evaluate(result.Detach(), item, index + 1, err));
        }
    }
    return result.Detach();
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
        Reference<IObject> value(evaluation.Evaluate(nullptr, item.Get(), index + 1, err));
        if (!value) {
            return nullptr;
        }
        bool keep = true;
        if (isFilter && !value->ToBool(keep, err)) {
            return nullptr;
        }
        if (keep) {
            Reference<IObject>& kept = isFilter ? item : value;
            list.push_back(kept.Get());
            kept.Detach();
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
        const Reference<IObject> value(evaluation.Evaluate(nullptr, item, index + 1, err));
        if (!value || !value->ToBool(found, err)) {
            return nullptr;
        }
    }
    return new ObjectBool(found);
}

} // namespace OrvUQL
