#include "eval/Value.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "core/CountAccess.h"
#include "core/Failure.h"
#include "core/NumberConversion.h"
#include "platform/NumberText.h"
#include "platform/Pool.h"

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

/// Gives a reference back to a value that is exactly T, one of the pooled scalars: what Release() does, without the calls.
template <class T> void ReleaseScalar(T* object) noexcept {
    if (--CountAccess::Count(object) == 0) {
        object->T::~T();
        platform::PoolFree(object, sizeof(T));
    }
}

/// A text converts by the rules of the text value.
Reference<ObjectString> MakeString(const Value& value) {
    return Reference<ObjectString>(new ObjectString(value.SharedText()));
}

} // namespace

Value Unbox(IObject* object) noexcept {
    if (object == nullptr) {
        return Value::None();
    }
    const std::type_info& type = typeid(*object);
    if (IsExactly<ObjectInt>(type) && !IsTypeObject<ObjectInt>(object)) {
        ObjectInt* const number = static_cast<ObjectInt*>(object);
        const Value value = Value::Int(number->GetValue());
        ReleaseScalar(number);
        return value;
    }
    if (IsExactly<ObjectDouble>(type) && !IsTypeObject<ObjectDouble>(object)) {
        ObjectDouble* const number = static_cast<ObjectDouble*>(object);
        const Value value = Value::Double(number->GetValue());
        ReleaseScalar(number);
        return value;
    }
    if (IsExactly<ObjectString>(type) && !IsTypeObject<ObjectString>(object)) {
        ObjectString* const text = static_cast<ObjectString*>(object);
        const Value value = Value::Text(text->GetValue());
        ReleaseScalar(text);
        return value;
    }
    if (IsExactly<ObjectBool>(type) && !IsTypeObject<ObjectBool>(object)) {
        ObjectBool* const truth = static_cast<ObjectBool*>(object);
        const Value value = Value::Bool(truth->GetValue());
        ReleaseScalar(truth);
        return value;
    }
    if (IsExactly<ObjectNull>(type)) {
        ReleaseScalar(static_cast<ObjectNull*>(object));
        return Value::Null();
    }
    return Value::Object(object);
}

IObject* Box(Value value) {
    ValueHolder holder(value);
    switch (value.kind) {
    case ValueKind::Null:
        return new ObjectNull();
    case ValueKind::Bool:
        return new ObjectBool(value.boolean);
    case ValueKind::Int:
        return new ObjectInt(value.integer);
    case ValueKind::Double:
        return new ObjectDouble(value.number);
    case ValueKind::Text:
        return new ObjectString(holder.TakeText());
    case ValueKind::Object:
        return holder.Detach().object;
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
        out = value.integer;
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
        out = value.integer;
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
        platform::AppendTo(text, value.integer);
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
