#include "OrvUQL/Elements.h"
#include "OrvUQL/QueryEngine.h"

#include "eval/ElementAccess.h"
#include "platform/Meter.h"

namespace OrvUQL {

ElementGroup::ElementGroup(IQueryElement* groupSource, IQueryElement* groupInner, int textPosition)
    : source(groupSource), inner(groupInner), position(textPosition) {
    kinds[0] = detail::ElementAccess::KindOf(source);
    kinds[1] = detail::ElementAccess::KindOf(inner);
}

ElementGroup::~ElementGroup() {
    ReleaseNested(source);
    ReleaseNested(inner);
}

IObject* ElementGroup::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err, [&]() -> IObject* {
        if (!detail::CheckStack(this, engine, err)) {
            return nullptr;
        }
        platform::Charge(1);
        Reference<IObject> value(detail::ElementAccess::EvaluateObject(source, kinds[0], engine, err));
        if (!value) {
            return nullptr;
        }
        if (engine == nullptr) { // nowhere to put the source
            return FailNull(err, message::internalError);
        }
        if (!engine->PushGroupParent(value.Get())) {
            throw std::bad_alloc();
        }
        struct Pop {
            QueryEngine* engine;
            ~Pop() { engine->PopGroupParent(); }
        } pop{engine};
        value.Reset(nullptr);
        return detail::ElementAccess::EvaluateObject(inner, kinds[1], engine, err);
    });
}

} // namespace OrvUQL
