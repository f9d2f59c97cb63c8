#include "OrvUQL/Elements.h"
#include "OrvUQL/QueryEngine.h"

#include "eval/ElementAccess.h"
#include "eval/Spine.h"

namespace OrvUQL {

using detail::ElementAccess;
using detail::ElementKind;
using detail::EngineAccess;

namespace {

/// The name as the call passes it. With a parent it goes there as written, whatever it begins with.
OrvStringT CallName(const OrvStringT& name, const IQueryElement* parent) {
    const bool hasPrefix = name[0] == L'@' || name[0] == L'$';
    return parent == nullptr && hasPrefix ? name.Mid(1) : name;
}

} // namespace

ElementMethod::ElementMethod(IQueryElement* target, const wchar_t* methodName, QueryElementList& args, bool isMember,
                             int textPosition)
    : ElementMethod(target, OrvStringT(methodName), args, isMember, textPosition) {}

ElementMethod::ElementMethod(IQueryElement* target, OrvStringT methodName, QueryElementList& args, bool isMember,
                             int textPosition)
    : parent(target), name(std::move(methodName)), position(textPosition), member(isMember) {
    kinds[0] = ElementAccess::KindOf(parent);
    site.name = CallName(name, parent);
    // Last, when nothing can fail any more: a constructor that throws has taken nothing.
    arguments = std::move(args);
}

ElementMethod::~ElementMethod() { ReleaseNested(parent); }

void ElementMethod::SetParentObject(IQueryElement* newParent) {
    OrvStringT callName = CallName(name, newParent);
    if (parent != nullptr) {
        parent->Release();
    }
    parent = newParent;
    kinds[0] = ElementAccess::KindOf(parent);
    site.name = std::move(callName);
}

IObject* ElementMethod::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err, [&] { return EvaluateCalls(engine, err); });
}

IObject* ElementMethod::EvaluateCalls(QueryEngine* engine, IError** err) const {
    if (!detail::CheckStack(this, engine, err)) {
        return nullptr;
    }
    if (kinds[0] != ElementKind::Method) {
        const Reference<IObject> target(FindTarget(engine, err));
        return target ? Call(target.Get(), engine, err) : nullptr;
    }
    detail::Spine spine(engine);
    const ElementMethod* node = this;
    for (; node->kinds[0] == ElementKind::Method; node = static_cast<const ElementMethod*>(node->parent)) {
        spine.Push(node);
    }
    Reference<IObject> value(node->FindTarget(engine, err));
    if (!value) {
        return nullptr;
    }
    value.Reset(node->Call(value.Get(), engine, err));
    while (value && !spine.IsEmpty()) {
        node = static_cast<const ElementMethod*>(spine.Pop());
        value.Reset(node->Call(value.Get(), engine, err));
    }
    return value.Detach();
}

/// The object on which the name is invoked, with a reference.
IObject* ElementMethod::FindTarget(QueryEngine* engine, IError** err) const {
    if (parent != nullptr) {
        return ElementAccess::EvaluateObject(parent, kinds[0], engine, err);
    }
    IObject* target = nullptr;
    if (engine != nullptr) {
        switch (name[0]) {
        case L'@':
            target = engine->GetPropertySource();
            break;
        case L'$':
            target = engine->GetVariable();
            break;
        default:
            target = member ? engine->GetGroupParent() : engine->GetGlobal();
        }
    }
    if (target == nullptr) {
        detail::FailAt(engine, position);
        // 0-based, deliberately: unlike a parse error's, this position is the element's own.
        return FailNull(err, message::invalidUse, name, OrvUtils::String::ToStringW(position));
    }
    target->AddRef();
    return target;
}

IObject* ElementMethod::Call(IObject* target, QueryEngine* engine, IError** err) const {
    if (engine == nullptr) {
        return target->Invoke(engine, site.name.GetString(), arguments, err);
    }
    struct Offer { // taken back when the call is over: the site may be gone before the next one
        QueryEngine* engine;
        ~Offer() { EngineAccess::OfferCallSite(engine, nullptr); }
    } offer{engine};
    EngineAccess::ClearErrorPosition(engine);
    EngineAccess::OfferCallSite(engine, &site);
    IObject* const result = target->Invoke(engine, site.name.GetString(), arguments, err);
    if (result == nullptr) {
        EngineAccess::SetErrorPositionIfNone(engine, position);
    } else {
        EngineAccess::ClearErrorPosition(engine); // what failed inside was put up with
    }
    return result;
}

} // namespace OrvUQL
