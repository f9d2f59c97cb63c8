#include "OrvUQL/Elements.h"
#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/Scalars.h"

#include "eval/ElementAccess.h"
#include "platform/Meter.h"

namespace OrvUQL {

ElementArray::ElementArray(const QueryElementList& list, int textPosition) : items(list), position(textPosition) {
    for (IQueryElement* item : items) {
        if (item != nullptr) {
            item->AddRef();
        }
    }
}

ElementArray::~ElementArray() = default;

IObject* ElementArray::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err, [&]() -> IObject* {
        if (!detail::CheckStack(this, engine, err)) {
            return nullptr;
        }
        platform::Charge(1 + items.size());
        ObjectList values;
        values.reserve(items.size());
        for (const IQueryElement* item : items) {
            // Room is there: the pushes take each reference over without fail.
            if (item == nullptr) {
                values.push_back(new ObjectNull());
                continue;
            }
            IObject* const value =
                detail::ElementAccess::EvaluateObject(item, detail::ElementAccess::KindOf(item), engine, err);
            if (value == nullptr) {
                return nullptr;
            }
            values.push_back(value);
        }
        return new ObjectArray(std::move(values));
    });
}

} // namespace OrvUQL
