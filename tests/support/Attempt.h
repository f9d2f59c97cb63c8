// What comes of an operation that can fail, as one line of text: the value, "! message", or "!" for a failure that says
// nothing.
#pragma once

#include "support/Print.h"
#include "support/Ref.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace OrvUQL::Tests {

/// Runs `operation(IError**)`, which returns an owned IObject* or IUnit*, twice: with a place for the error and
/// without one. Both must come to the same; a success must leave the error's place alone.
///
///     EXPECT_EQ(Attempt([&](IError** err) { return value->ChangeType(IObject::TypeInt, err); }), "int 3");
template <class Operation> std::string Attempt(Operation&& operation) {
    ErrorSlot error;
    const Ref<IObject> value(operation(error.Slot()));
    const Ref<IObject> quiet(operation(static_cast<IError**>(nullptr)));
    EXPECT_EQ(static_cast<bool>(value), static_cast<bool>(quiet))
        << "the outcome depends on whether errors are asked for";
    if (value) {
        EXPECT_TRUE(error.IsEmpty()) << "a value and an error: " << error.Message();
        EXPECT_EQ(Describe(value.Get()), Describe(quiet.Get()));
        return Describe(value.Get());
    }
    return error.IsEmpty() ? "!" : "! " + error.Message();
}

/// The same for `operation(T& out, IError**)`, which returns whether it succeeded.
template <class T, class Operation> std::string AttemptOut(Operation&& operation) {
    ErrorSlot error;
    T value{};
    T quiet{};
    const bool succeeded = operation(value, error.Slot());
    EXPECT_EQ(operation(quiet, static_cast<IError**>(nullptr)), succeeded)
        << "the outcome depends on whether errors are asked for";
    if (!succeeded) {
        return error.IsEmpty() ? "!" : "! " + error.Message();
    }
    EXPECT_TRUE(error.IsEmpty()) << "a value and an error: " << error.Message();
    if constexpr (std::is_same_v<T, OrvStringT>) {
        return Utf8(value);
    } else {
        return Utf8(OrvUtils::String::ToStringW(value));
    }
}

/// The conversions of a value.
inline std::string ToBool(const IObject& object) {
    return AttemptOut<bool>([&](bool& out, IError** err) { return object.ToBool(out, err); });
}
inline std::string ToInt(const IObject& object) {
    return AttemptOut<int>([&](int& out, IError** err) { return object.ToInt(out, err); });
}
inline std::string ToDouble(const IObject& object) {
    return AttemptOut<double>([&](double& out, IError** err) { return object.ToDouble(out, err); });
}
inline std::string ToText(const IObject& object) {
    return AttemptOut<OrvStringT>([&](OrvStringT& out, IError** err) { return object.ToString(out, err); });
}
inline std::string ToNumeric(IObject& object) {
    return Attempt([&](IError** err) { return object.ToNumeric(err); });
}
inline std::string ChangeType(IObject& object, IObject::EType type) {
    return Attempt([&](IError** err) { return object.ChangeType(type, err); });
}

/// Calls a method with these arguments, which are taken over; a null argument is an omitted one.
inline std::string Call(IObject& object, const wchar_t* name, QueryElementList args = {},
                        QueryEngine* engine = nullptr) {
    QueryEngine own;
    QueryEngine* const used = engine == nullptr ? &own : engine;
    return Attempt([&](IError** err) { return object.Invoke(used, name, args, err); });
}

} // namespace OrvUQL::Tests
