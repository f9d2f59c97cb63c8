#include "OrvUQL/QueryEngine.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "eval/Arithmetic.h"
#include "eval/Comparison.h"
#include "eval/ElementAccess.h"
#include "eval/EvaluationWatch.h"
#include "eval/UnitOperands.h"

namespace OrvUQL {

namespace {

/// Releases first and takes the reference then, as hosts have come to expect: setting the slot's only owner's object
/// again destroys it.
void SetSlot(IObject*& slot, IObject* object) {
    if (IObject* const old = std::exchange(slot, nullptr)) {
        old->Release();
    }
    if (object != nullptr) {
        object->AddRef();
    }
    slot = object;
}

bool Push(std::vector<IObject*>& stack, IObject*& slot, IObject* object) {
    return Guarded(nullptr, [&] {
        stack.push_back(slot);
        QueryEngine::AddRefObject(object);
        slot = object;
        return true;
    });
}

void Pop(std::vector<IObject*>& stack, IObject*& slot) {
    QueryEngine::ReleaseObject(slot);
    if (!stack.empty()) {
        slot = stack.back();
        stack.pop_back();
    }
}

void ReleaseStack(std::vector<IObject*>& stack) {
    while (!stack.empty()) {
        IObject* object = stack.back();
        stack.pop_back();
        QueryEngine::ReleaseObject(object);
    }
}

} // namespace

QueryEngine::QueryEngine() noexcept = default;

QueryEngine::~QueryEngine() {
    for (IUnitFactory* factory : unitFactories) {
        factory->Release();
    }
    ReleaseStack(groupParentStack);
    ReleaseStack(variableStack);
    ReleaseObject(global);
    ReleaseObject(propertySource);
    ReleaseObject(groupParent);
    ReleaseObject(variable);
}

IObject* QueryEngine::Evaluate(IQueryElement* element, IError** err) {
    errorPosition = -1;
    if (state.isWatched) [[unlikely]] {
        return EvaluateWatched(element, err);
    }
    IObject* const value = Guarded(err, [&] { return element->Evaluate(this, err); });
    if (value != nullptr) {
        errorPosition = -1; // a failure on the way that somebody put up with is none of the query's
    } else if (errorPosition < 0) {
        errorPosition = element->GetStringPosition();
    }
    return value;
}

namespace {

// What is already what the host wants, which most results are.

bool TakeExactly(const detail::Value& value, bool& out) noexcept {
    if (value.kind != detail::ValueKind::Bool) {
        return false;
    }
    out = value.boolean;
    return true;
}

bool TakeExactly(const detail::Value& value, int& out) noexcept {
    if (value.kind != detail::ValueKind::Int) {
        return false;
    }
    out = value.Integer();
    return true;
}

bool TakeExactly(const detail::Value& value, double& out) noexcept {
    if (value.kind == detail::ValueKind::Double) {
        out = value.number;
        return true;
    }
    if (value.kind == detail::ValueKind::Int) {
        out = value.Integer();
        return true;
    }
    return false;
}

bool TakeExactly(const detail::Value& value, OrvStringT& out) noexcept {
    if (value.kind == detail::ValueKind::Text) {
        out = OrvStringT::AdoptBuffer(value.text);
        return true;
    }
    return false;
}

bool ConvertTo(const detail::Value& value, bool& out, IError** err) { return detail::ToBool(value, out, err); }
bool ConvertTo(const detail::Value& value, int& out, IError** err) { return detail::ToInt(value, out, err); }
bool ConvertTo(const detail::Value& value, double& out, IError** err) { return detail::ToDouble(value, out, err); }
bool ConvertTo(const detail::Value& value, OrvStringT& out, IError** err) {
    return value.kind == detail::ValueKind::Object ? value.object->ToString(out, err)
                                                   : detail::AppendText(out, value, err);
}

} // namespace

template <class Out> bool QueryEngine::EvaluateAs(IQueryElement* element, Out& out, IError** err) {
    errorPosition = -1;
    if (state.isWatched) [[unlikely]] {
        return EvaluateWatchedAs(element, out, err);
    }
    return Guarded(err,
                   [&] {
                       const detail::Value value = detail::EvaluateRootValue(*element, this, err);
                       if (value.Failed()) {
                           return false;
                       }
                       errorPosition = -1;
                       return TakeExactly(value, out) || ConvertAs(value, out, err);
                   }) ||
           FailAtRoot(element);
}

/// Takes the value over.
template <class Out> ORVUQL_NOINLINE bool QueryEngine::ConvertAs(detail::Value value, Out& out, IError** err) {
    const detail::ValueHolder holder(value);
    Out converted{};
    if (!ConvertTo(value, converted, err)) {
        return false;
    }
    out = std::move(converted);
    return true;
}

namespace {

/// Collects the error of an evaluation that may have to have another one.
class InnerError {
public:
    /// None is wanted where the caller wants none.
    explicit InnerError(IError** outerError) noexcept : outer(outerError) {}
    InnerError(const InnerError&) = delete;
    InnerError& operator=(const InnerError&) = delete;
    ~InnerError() { Reference<IError> disposed(error); }

    IError** Get() noexcept { return outer == nullptr ? nullptr : &error; }
    void HandOver() noexcept {
        if (error != nullptr) {
            *outer = std::exchange(error, nullptr);
        }
    }

private:
    IError** outer;
    IError* error = nullptr;
};

} // namespace

IObject* QueryEngine::EvaluateWatched(IQueryElement* element, IError** err) {
    const detail::EvaluationWatch watch(*this);
    InnerError error(err);
    Reference<IObject> value(Guarded(error.Get(), [&] { return element->Evaluate(this, error.Get()); }));
    if (watch.HasEnded(err)) {
        value.Reset(nullptr);
    } else {
        error.HandOver();
    }
    if (value) {
        errorPosition = -1;
    } else {
        FailAtRoot(element);
    }
    return value.Detach();
}

template <class Out> bool QueryEngine::EvaluateWatchedAs(IQueryElement* element, Out& out, IError** err) {
    const detail::EvaluationWatch watch(*this);
    InnerError error(err);
    Out result{};
    const bool succeeded = Guarded(error.Get(), [&] {
        // Not in the short ways of EvaluateAs(), which charge no steps.
        const detail::Value value = detail::Unbox(element->Evaluate(this, error.Get()));
        if (value.Failed()) {
            return false;
        }
        errorPosition = -1;
        return TakeExactly(value, result) || ConvertAs(value, result, error.Get());
    });
    if (watch.HasEnded(err)) {
        return FailAtRoot(element);
    }
    error.HandOver();
    if (!succeeded) {
        return FailAtRoot(element);
    }
    out = std::move(result);
    return true;
}

void QueryEngine::SetLimits(const EvaluationLimits& newLimits) noexcept {
    state.limits = newLimits;
    state.isLimited = true;
    state.isWatched = true;
}

void QueryEngine::ClearLimits() noexcept {
    state.isLimited = false;
    state.isWatched = state.releasesKept;
}

EvaluationUsage QueryEngine::GetUsage() const noexcept {
    return state.meter != nullptr ? state.meter->GetUsage() : state.usage;
}

void QueryEngine::SetReleaseKeptReferences(bool release) noexcept {
    state.releasesKept = release;
    state.isWatched = release || state.isLimited;
}

bool QueryEngine::FailAtRoot(const IQueryElement* element) noexcept {
    if (errorPosition < 0) {
        errorPosition = element->GetStringPosition();
    }
    return false;
}

bool QueryEngine::EvaluateTo(IQueryElement* element, bool& out, IError** err) { return EvaluateAs(element, out, err); }
bool QueryEngine::EvaluateTo(IQueryElement* element, int& out, IError** err) { return EvaluateAs(element, out, err); }
bool QueryEngine::EvaluateTo(IQueryElement* element, double& out, IError** err) {
    return EvaluateAs(element, out, err);
}
bool QueryEngine::EvaluateTo(IQueryElement* element, OrvStringT& out, IError** err) {
    return EvaluateAs(element, out, err);
}

void QueryEngine::SetGlobal(IObject* object) { SetSlot(global, object); }
void QueryEngine::SetPropertySource(IObject* object) { SetSlot(propertySource, object); }
void QueryEngine::SetGroupParent(IObject* object) { SetSlot(groupParent, object); }
void QueryEngine::SetVariable(IObject* object) { SetSlot(variable, object); }

bool QueryEngine::PushGroupParent(IObject* object) { return Push(groupParentStack, groupParent, object); }
bool QueryEngine::PushVariable(IObject* object) { return Push(variableStack, variable, object); }
void QueryEngine::PopGroupParent() { Pop(groupParentStack, groupParent); }
void QueryEngine::PopVariable() { Pop(variableStack, variable); }

bool QueryEngine::AddUnitFactory(IUnitFactory* factory) {
    if (factory == nullptr) {
        return true;
    }
    return Guarded(nullptr, [&] {
        unitFactories.push_back(factory);
        factory->AddRef();
        return true;
    });
}

IUnitDefinition* QueryEngine::FindUnit(const wchar_t* name) const {
    for (IUnitFactory* factory : unitFactories) {
        if (IUnitDefinition* const unit = factory->FindUnit(name)) {
            return unit;
        }
    }
    return nullptr;
}

IObject::EType QueryEngine::GetOperandType(IObject* left, IObject* right) const {
    return detail::ReduceTypes(left->GetType(), right->GetType());
}

bool QueryEngine::GetUnitOperands(IObject* left, IObject* right, IUnit** leftUnit, IUnit** rightUnit,
                                  IError** err) const {
    detail::UnitOperands units;
    if (!units.Get(left, right, err)) {
        return false;
    }
    *leftUnit = units.DetachLeft();
    *rightUnit = units.DetachRight();
    return true;
}

bool QueryEngine::CompareObjects(EOperType op, IObject* left, IObject* right, bool& result, IError** err) const {
    return Guarded(err, [&] {
        return detail::CompareValues(op, detail::Value::Object(left), detail::Value::Object(right), unitPrecision,
                                     result, err);
    });
}

bool QueryEngine::CompareStrings(EOperType op, const OrvStringT& a, const OrvStringT& b) const {
    return detail::CompareStrings(op, a, b);
}

bool QueryEngine::CompareDoubles(EOperType op, double a, double b, double tolerance) const {
    return detail::CompareDoubles(op, a, b, tolerance);
}

bool QueryEngine::CompareInts(EOperType op, int a, int b) const { return detail::CompareInts(op, a, b); }

void QueryEngine::ReleaseObject(IObject*& obj) {
    if (IObject* const object = std::exchange(obj, nullptr)) {
        object->Release();
    }
}

void QueryEngine::AddRefObject(IObject* obj) {
    if (obj != nullptr) {
        obj->AddRef();
    }
}

} // namespace OrvUQL
