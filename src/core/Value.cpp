#include "core/Value.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "core/CountAccess.h"
#include "core/Failure.h"
#include "core/NumberConversion.h"
#include "platform/NumberText.h"
#include "platform/Pool.h"

#include <type_traits>
#include <typeinfo>

namespace OrvUQL::detail {

namespace {

/// Exactly T, no class derived from it: that could answer otherwise. Where a type's information exists twice (a
/// host's plugin with hidden symbols), the comparison of addresses fails and the value stays an object, which is only
/// slower.
template <class T> bool IsExactly(const std::type_info& type) noexcept { return &type == &typeid(T); }

/// A type object such as `int` is passed on as it is: whoever gets it may ask for more than its value.
template <class T> bool IsTypeObject(const IObject* object) noexcept {
    return static_cast<const T*>(object)->ObjectBaseStaticImpl::IsStaticInstance();
}

/// Gives a reference back to a value that is exactly T, one of the pooled scalars: what Release() does, without the
/// calls. Nothing in such an object needs a destructor but the text of a string.
template <class T> void ReleaseScalar(T* object) noexcept {
    if (--CountAccess::Count(object) == 0) {
        if constexpr (std::is_same_v<T, ObjectString>) {
            object->T::~T();
        }
        platform::PoolFree(object, sizeof(T));
    }
}

/// The value of an object that is exactly T; `read` reads it. A reference that is handed over is given back.
template <bool isOwned, class T, class Read> Value TakeOut(IObject* object, Read read) noexcept {
    T* const exact = static_cast<T*>(object);
    const Value value = read(*exact);
    if constexpr (isOwned) {
        ReleaseScalar(exact);
    }
    return value;
}

template <bool isOwned> Value UnboxAny(IObject* object) noexcept {
    if (object == nullptr) {
        return Value::None();
    }
    const std::type_info& type = typeid(*object);
    if (IsExactly<ObjectInt>(type) && !IsTypeObject<ObjectInt>(object)) {
        return TakeOut<isOwned, ObjectInt>(object, [](ObjectInt& number) { return Value::Int(number.GetValue()); });
    }
    if (IsExactly<ObjectDouble>(type) && !IsTypeObject<ObjectDouble>(object)) {
        return TakeOut<isOwned, ObjectDouble>(object,
                                              [](ObjectDouble& number) { return Value::Double(number.GetValue()); });
    }
    if (IsExactly<ObjectString>(type) && !IsTypeObject<ObjectString>(object)) {
        return TakeOut<isOwned, ObjectString>(object, [](ObjectString& text) { return Value::Text(text.GetValue()); });
    }
    if (IsExactly<ObjectBool>(type) && !IsTypeObject<ObjectBool>(object)) {
        return TakeOut<isOwned, ObjectBool>(object, [](ObjectBool& truth) { return Value::Bool(truth.GetValue()); });
    }
    if (IsExactly<ObjectNull>(type)) {
        return TakeOut<isOwned, ObjectNull>(object, [](ObjectNull&) { return Value::Null(); });
    }
    if constexpr (!isOwned) {
        object->AddRef();
    }
    return Value::Object(object);
}

/// What `new` does, with the pool's part inlined.
template <class T, class... Arguments> T* Make(Arguments... arguments) {
    return ::new (platform::PoolAllocate(sizeof(T))) T(arguments...);
}

/// A text converts by the rules of the text value.
Reference<ObjectString> MakeString(const Value& value) {
    return Reference<ObjectString>(new ObjectString(value.SharedText()));
}

} // namespace

Value Unbox(IObject* object) noexcept { return UnboxAny<true>(object); }

Value UnboxShared(IObject* object) noexcept { return UnboxAny<false>(object); }

IObject* Box(Value value) {
    switch (value.kind) {
    case ValueKind::Null:
        return Make<ObjectNull>();
    case ValueKind::Bool:
        return Make<ObjectBool>(value.boolean);
    case ValueKind::Int:
        return Make<ObjectInt>(value.Integer());
    case ValueKind::Double:
        return Make<ObjectDouble>(value.number);
    case ValueKind::Text: {
        ValueHolder holder(value);
        return new ObjectString(holder.TakeText());
    }
    case ValueKind::Object:
        return value.object;
    case ValueKind::None:
        break;
    }
    return nullptr;
}

bool ToBool(const Value& value, bool& out, IError** err) {
    switch (value.kind) {
    case ValueKind::Null:
        out = false;
        return true;
    case ValueKind::Bool:
        out = value.boolean;
        return true;
    case ValueKind::Int:
        out = value.integer != 0;
        return true;
    case ValueKind::Double:
        out = value.number != 0.0;
        return true;
    case ValueKind::Text:
        return MakeString(value)->ToBool(out, err);
    case ValueKind::Object:
        return value.object->ToBool(out, err);
    case ValueKind::None:
        break;
    }
    return false;
}

bool ToInt(const Value& value, int& out, IError** err) {
    switch (value.kind) {
    case ValueKind::Null:
        return Fail(err, message::nullToInt);
    case ValueKind::Bool:
        out = value.boolean ? 1 : 0;
        return true;
    case ValueKind::Int:
        out = value.Integer();
        return true;
    case ValueKind::Double:
        return DoubleToInt(value.number, out) ||
               Fail(err, message::intOverflow, OrvUtils::String::ToStringW(value.number));
    case ValueKind::Text:
        return MakeString(value)->ToInt(out, err);
    case ValueKind::Object:
        return value.object->ToInt(out, err);
    case ValueKind::None:
        break;
    }
    return false;
}

bool ToDouble(const Value& value, double& out, IError** err) {
    switch (value.kind) {
    case ValueKind::Null:
        return Fail(err, message::nullToDouble);
    case ValueKind::Bool:
        out = value.boolean ? 1.0 : 0.0;
        return true;
    case ValueKind::Int:
        out = value.Integer();
        return true;
    case ValueKind::Double:
        out = value.number;
        return true;
    case ValueKind::Text:
        return MakeString(value)->ToDouble(out, err);
    case ValueKind::Object:
        return value.object->ToDouble(out, err);
    case ValueKind::None:
        break;
    }
    return false;
}

bool AppendText(OrvStringT& text, const Value& value, IError** err) {
    switch (value.kind) {
    case ValueKind::Null:
        text += L"null";
        return true;
    case ValueKind::Bool:
        platform::AppendTo(text, value.boolean);
        return true;
    case ValueKind::Int:
        platform::AppendTo(text, value.Integer());
        return true;
    case ValueKind::Double:
        platform::AppendTo(text, value.number);
        return true;
    case ValueKind::Text:
        text += value.SharedText();
        return true;
    case ValueKind::Object: {
        OrvStringT own;
        if (!value.object->ToString(own, err)) {
            return false;
        }
        text += own;
        return true;
    }
    case ValueKind::None:
        break;
    }
    return false;
}

bool ToNumeric(ValueHolder& value, IError** err) {
    switch (value->kind) {
    case ValueKind::Null:
        return Fail(err, message::nullToNumeric);
    case ValueKind::Bool:
        value.Reset(Value::Int(value->boolean ? 1 : 0));
        return true;
    case ValueKind::Int:
    case ValueKind::Double:
        return true;
    case ValueKind::Text:
        value.Reset(Unbox(MakeString(value.Get())->ToNumeric(err)));
        return !value.Failed();
    case ValueKind::Object:
        value.Reset(Unbox(value->object->ToNumeric(err)));
        return !value.Failed();
    case ValueKind::None:
        break;
    }
    return false;
}

} // namespace OrvUQL::detail
