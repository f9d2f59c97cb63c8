#include "OrvUQL/Elements.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"

#include "core/KnownNames.h"
#include "eval/ElementAccess.h"
#include "eval/Spine.h"
#include "platform/Meter.h"

#include <typeinfo>

namespace OrvUQL {

detail::CallSite::CallSite() noexcept : direct(detail::NoDirectMethod) {}

using detail::ElementAccess;
using detail::ElementKind;
using detail::EngineAccess;
using detail::Value;

namespace {

detail::CallTarget TargetOf(const OrvStringT& name, const IQueryElement* parent, bool member) {
    if (parent != nullptr) {
        return detail::CallTarget::Parent;
    }
    switch (name[0]) {
    case L'@':
        return detail::CallTarget::PropertySource;
    case L'$':
        return detail::CallTarget::Variable;
    default:
        return member ? detail::CallTarget::GroupParent : detail::CallTarget::Global;
    }
}

void SetTarget(detail::CallSite& site, detail::CallTarget target) noexcept {
    site.target = target;
    site.slot = EngineAccess::SlotOf(target);
}

/// The name as the call passes it. With a parent it goes there as written, whatever it begins with.
OrvStringT CallName(const OrvStringT& name, detail::CallTarget target) {
    const bool hasPrefix = target == detail::CallTarget::PropertySource || target == detail::CallTarget::Variable;
    return hasPrefix ? detail::NameText(name.View().substr(1)) : name;
}

/// Invokes the site's name on an object that the caller holds.
ORVUQL_ALWAYS_INLINE IObject* Invoke(IObject* target, const detail::CallSite& site, const QueryElementList& arguments,
                                     int position, QueryEngine* engine, IError** err) {
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

/// How many units a value has if it is exactly the library's text; else none.
int UnitsOf(const IObject& object) noexcept {
    return typeid(object) == typeid(ObjectString) ? static_cast<const ObjectString&>(object).GetValue().GetLength() : 0;
}

/// The same call, charged: what it is made on before, and what it gives behind.
ORVUQL_NOINLINE IObject* InvokeMetered(IObject* target, const detail::CallSite& site, const QueryElementList& arguments,
                                       int position, QueryEngine* engine, IError** err) {
    return detail::WorkAt(engine, position, [&] {
        platform::Charge(1);
        platform::ChargeUnits(UnitsOf(*target));
        Reference<IObject> result(Invoke(target, site, arguments, position, engine, err));
        if (result && result.Get() != target) {
            platform::ChargeUnits(UnitsOf(*result.Get()));
        }
        return result.Detach();
    });
}

/// The arguments of a text's method if they are none, or the ints that it takes, written as such.
bool ReadNumbers(detail::TextMethod method, const QueryElementList& arguments, int (&numbers)[2]) noexcept {
    if (method != detail::TextMethod::SubStr) {
        return arguments.empty();
    }
    if (arguments.empty() || arguments.size() > 2) {
        return false;
    }
    int* number = numbers;
    for (const IQueryElement* const argument : arguments) {
        if (argument == nullptr || &typeid(*argument) != &typeid(ElementObject)) {
            return false;
        }
        const Value value = ElementAccess::LiteralScalar(argument);
        if (value.kind != detail::ValueKind::Int) {
            return false;
        }
        *number++ = value.Integer();
    }
    return true;
}

} // namespace

ElementMethod::ElementMethod(IQueryElement* target, const wchar_t* methodName, QueryElementList& args, bool isMember,
                             int textPosition)
    : ElementMethod(target, OrvStringT(methodName), args, isMember, textPosition) {}

ElementMethod::ElementMethod(IQueryElement* target, OrvStringT methodName, QueryElementList& args, bool isMember,
                             int textPosition)
    : parent(target), name(std::move(methodName)), position(textPosition), member(isMember) {
    kinds[0] = ElementAccess::KindOf(parent);
    SetTarget(site, TargetOf(name, parent, member));
    site.name = CallName(name, site.target);
    // Last, when nothing can fail any more: a constructor that throws has taken nothing.
    arguments = std::move(args);
}

ElementMethod::~ElementMethod() { ReleaseNested(parent); }

void ElementMethod::SetParentObject(IQueryElement* newParent) {
    const detail::CallTarget target = TargetOf(name, newParent, member);
    OrvStringT callName = CallName(name, target);
    if (parent != nullptr) {
        parent->Release();
    }
    parent = newParent;
    kinds[0] = ElementAccess::KindOf(parent);
    site.name = std::move(callName);
    SetTarget(site, target);
}

IObject* ElementMethod::Evaluate(QueryEngine* engine, IError** err) const {
    return detail::EvaluateGuarded(this, engine, err, [&] { return Box(EvaluateCalls(engine, err)); });
}

/// The same without an object around a scalar or a text. Most names are read from what the engine carries.
Value ElementMethod::EvaluateValue(QueryEngine* engine, IError** err) const {
    IObject* const target = ElementAccess::KnownTarget(this, engine);
    if (target == nullptr || site.textMethod != detail::TextMethod::None) {
        const Value value = EvaluateCalls(engine, err);
        return value.kind == detail::ValueKind::Object ? detail::Unbox(value.object) : value;
    }
    if (!detail::CheckStack(this, engine, err)) {
        return Value::None();
    }
    target->AddRef();
    const Reference<IObject> held(target);
    if (!site.isPlain || !arguments.empty() || site.type != &typeid(*target)) {
        return detail::Unbox(Invoke(target, site, arguments, position, engine, err));
    }
    // The reads of a host's properties: what ObjectBase::Invoke() would do for the row that it found before.
    EngineAccess::ClearErrorPosition(engine);
    IObject* const result = Guarded(err, [&] {
        return detail::CallRow(static_cast<ObjectBase*>(target), *site.entry, engine, site.name, detail::noParameters,
                               err);
    });
    if (result == nullptr) {
        EngineAccess::SetErrorPositionIfNone(engine, position);
        return Value::None();
    }
    EngineAccess::ClearErrorPosition(engine);
    return detail::Unbox(result);
}

/// Texts go from call to call without an object around them where the methods take them so. Where a meter counts, each
/// call is made on an object, so that it counts what the object's method counts.
Value ElementMethod::EvaluateCalls(QueryEngine* engine, IError** err) const {
    if (!detail::CheckStack(this, engine, err)) {
        return Value::None();
    }
    if (kinds[0] != ElementKind::Method) {
        return EvaluateFirst(engine, err);
    }
    detail::Spine spine(engine);
    const ElementMethod* next = nullptr;
    const ElementMethod* node = this;
    for (; node->kinds[0] == ElementKind::Method; node = static_cast<const ElementMethod*>(node->parent)) {
        spine.Push(node);
        next = node;
    }
    const bool maybeText = engine != nullptr && next->TakesText() && ElementAccess::IsRead(node);
    Value value = maybeText ? ElementAccess::TryRead(node, engine) : Value::None();
    if (value.Failed()) {
        value = node->EvaluateFirst(engine, err);
    }
    while (!value.Failed() && !spine.IsEmpty()) {
        node = static_cast<const ElementMethod*>(spine.Pop());
        value = node->CallOn(value, engine, err);
    }
    return value;
}

/// The value of the call at the bottom of a chain.
Value ElementMethod::EvaluateFirst(QueryEngine* engine, IError** err) const {
    IObject* const target = FindTarget(engine, err);
    return target == nullptr ? Value::None() : CallOn(Value::Object(target), engine, err);
}

/// Whether the call last met a text whose method takes it without the object. Then it is all the same whether the
/// object is the one that others hold.
bool ElementMethod::TakesText() const noexcept {
    return site.textMethod != detail::TextMethod::None && platform::CurrentThread().meter == nullptr;
}

/// The value of the call on a value, which is taken over.
Value ElementMethod::CallOn(Value target, QueryEngine* engine, IError** err) const {
    if (TakesText()) {
        if (target.kind == detail::ValueKind::Object) {
            target = detail::Unbox(target.object);
        }
        if (target.kind == detail::ValueKind::Text) {
            int numbers[2] = {0, 0};
            if (ReadNumbers(site.textMethod, arguments, numbers)) {
                return detail::WorkAt(engine, position, [&] {
                    return detail::CallTextMethod(site.textMethod, OrvStringT::AdoptBuffer(target.text), numbers[0],
                                                  numbers[1]);
                });
            }
        }
    }
    const Reference<IObject> object(target.kind == detail::ValueKind::Object
                                        ? target.object
                                        : detail::WorkAt(engine, position, [&] { return detail::Box(target); }));
    return Value::Object(Call(object.Get(), engine, err));
}

/// The object on which the name is invoked, with a reference.
IObject* ElementMethod::FindTarget(QueryEngine* engine, IError** err) const {
    if (parent != nullptr) {
        return ElementAccess::EvaluateObject(parent, kinds[0], engine, err);
    }
    IObject* const target = engine == nullptr ? nullptr : EngineAccess::Target(engine, site);
    if (target == nullptr) {
        detail::FailAt(engine, position);
        // 0-based, deliberately: unlike a parse error's, this position is the element's own.
        return FailNull(err, message::invalidUse, name, OrvUtils::String::ToStringW(position));
    }
    target->AddRef();
    return target;
}

IObject* ElementMethod::Call(IObject* target, QueryEngine* engine, IError** err) const {
    if (platform::CurrentThread().meter != nullptr) [[unlikely]] {
        return InvokeMetered(target, site, arguments, position, engine, err);
    }
    return Invoke(target, site, arguments, position, engine, err);
}

} // namespace OrvUQL
