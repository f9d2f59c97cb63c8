// What is done with a value on its way up the tree.
#pragma once

#include "OrvUQL/PropertyValue.h"

#include <utility>

namespace OrvUQL::detail {

/// Owns a value.
class ValueHolder {
public:
    explicit ValueHolder(Value taken) noexcept : value(taken) {}
    ValueHolder(const ValueHolder&) = delete;
    ValueHolder& operator=(const ValueHolder&) = delete;
    ~ValueHolder() { Dispose(); }

    bool Failed() const noexcept { return value.Failed(); }
    const Value* operator->() const noexcept { return &value; }
    const Value& Get() const noexcept { return value; }
    /// Member by member: read in one piece, what was just written in two makes the processor wait.
    Value Detach() noexcept {
        Value taken;
        taken.kind = std::exchange(value.kind, ValueKind::None);
        taken.object = value.object;
        return taken;
    }
    void Reset(Value taken) noexcept {
        Dispose();
        value = taken;
    }
    /// The text of a value of kind Text, taken out of it.
    OrvStringT TakeText() noexcept {
        value.kind = ValueKind::None;
        return OrvStringT::AdoptBuffer(value.text);
    }

private:
    void Dispose() noexcept {
        if (value.kind == ValueKind::Object) {
            value.object->Release();
        } else if (value.kind == ValueKind::Text) {
            OrvStringT::AdoptBuffer(value.text);
        }
    }

    Value value;
};

/// The value of an object, whose reference is taken over: without the object if it is exactly one of the library's
/// scalars or texts. Null: evaluation failed.
Value Unbox(IObject* object) noexcept;

/// The same for an object that stays the caller's.
Value UnboxShared(IObject* object) noexcept;

/// The value as an object with one reference, null if evaluation failed. May throw std::bad_alloc; the value is
/// disposed of in any case.
IObject* Box(Value value);

/// A second owner's value: the object with one more reference, the text with one more share.
inline Value Share(const Value& value) noexcept {
    if (value.kind == ValueKind::Object) {
        value.object->AddRef();
    } else if (value.kind == ValueKind::Text) {
        return Value::Text(value.SharedText());
    }
    return value;
}

/// The code that operators choose their rule by.
inline IObject::EType TypeOf(const Value& value) {
    return value.kind < ValueKind::Object ? static_cast<IObject::EType>(value.kind) : value.object->GetType();
}

// The conversions, by the same rules as those of the objects; the value stays the caller's.
bool ToBool(const Value& value, bool& out, IError** err);
bool ToInt(const Value& value, int& out, IError** err);
bool ToDouble(const Value& value, double& out, IError** err);

/// Appends the value's text. False, with nothing appended, if an object has no text.
bool AppendText(OrvStringT& text, const Value& value, IError** err);

/// Replaces the value by its numeric form, an int or a double. False if it has none.
bool ToNumeric(ValueHolder& value, IError** err);

} // namespace OrvUQL::detail
