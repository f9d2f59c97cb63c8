// Properties of a host's objects, read without an object around what they give.
#pragma once

#include "OrvUQL/Object.h"
#include "OrvUQL/OrvString.h"

#include <cstdint>
#include <optional>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace OrvUQL {

namespace detail {

/// The first five agree with IObject::EType. As wide as a register: a value is returned in two of them.
enum class ValueKind : std::int64_t {
    Null = IObject::TypeNull,
    Bool = IObject::TypeBool,
    Int = IObject::TypeInt,
    Double = IObject::TypeDouble,
    Text = IObject::TypeString,
    Object, ///< none of the above, or one that a host's class or a type object stands for
    None,   ///< evaluation failed
};

/// A value on its way up the tree: a scalar or a text without an object around it, or any other value as an object. A
/// plain pair of words, which owns nothing by itself: whoever is handed one disposes of it.
struct Value {
    ValueKind kind;
    union {
        bool boolean;
        std::int64_t integer; ///< an int, in a whole register: half of one costs more to hand on
        double number;
        wchar_t* text;   ///< one share of a text's buffer
        IObject* object; ///< one reference
    };

    /// Indeterminate.
    Value() noexcept = default;

    static Value None() noexcept { return Value(ValueKind::None); }
    static Value Null() noexcept { return Value(ValueKind::Null); }
    static Value Bool(bool truth) noexcept {
        Value value(ValueKind::Bool);
        value.boolean = truth;
        return value;
    }
    static Value Int(int integer) noexcept {
        Value value(ValueKind::Int);
        value.integer = integer;
        return value;
    }
    static Value Double(double number) noexcept {
        Value value(ValueKind::Double);
        value.number = number;
        return value;
    }
    static Value Text(OrvStringT text) noexcept {
        Value value(ValueKind::Text);
        value.text = text.ReleaseBuffer();
        return value;
    }
    /// Takes the reference over. Null: evaluation failed.
    static Value Object(IObject* object) noexcept {
        Value value(object == nullptr ? ValueKind::None : ValueKind::Object);
        value.object = object;
        return value;
    }

    bool Failed() const noexcept { return kind == ValueKind::None; }
    int Integer() const noexcept { return static_cast<int>(integer); }
    /// The text of a value of kind Text.
    OrvStringT SharedText() const noexcept { return OrvStringT::ShareBuffer(text); }

private:
    explicit Value(ValueKind valueKind) noexcept : kind(valueKind), object(nullptr) {}
};

} // namespace detail

/// What the getter of a property gives whose type is not known before it is read; see MethodMap::Property().
///
///     PropertyValue Field::Get() const {
///         return isNumber ? PropertyValue(number) : PropertyValue(text);
///     }
class PropertyValue {
public:
    /// The null value.
    PropertyValue() noexcept : value(detail::Value::Null()) {}
    PropertyValue(bool truth) noexcept : value(detail::Value::Bool(truth)) {}
    PropertyValue(int integer) noexcept : value(detail::Value::Int(integer)) {}
    PropertyValue(double number) noexcept : value(detail::Value::Double(number)) {}
    /// A NUL-terminated text.
    PropertyValue(const wchar_t* text) : PropertyValue(OrvStringT(text)) {}
    PropertyValue(OrvStringT text) noexcept : value(detail::Value::Text(std::move(text))) {}
    /// Takes the reference over. A null pointer stands for the null value.
    explicit PropertyValue(IObject* object) noexcept
        : value(object == nullptr ? detail::Value::Null() : detail::Value::Object(object)) {}
    /// No other pointer is a bool by accident.
    PropertyValue(const void*) = delete;

    PropertyValue(PropertyValue&& other) noexcept : value(other.Detach()) {}
    PropertyValue& operator=(PropertyValue&& other) noexcept {
        std::swap(value, other.value);
        return *this;
    }
    ~PropertyValue() {
        if (value.kind == detail::ValueKind::Object) {
            value.object->Release();
        } else if (value.kind == detail::ValueKind::Text) {
            OrvStringT::AdoptBuffer(value.text);
        }
    }

    /// For the library: what is held, handed over.
    detail::Value Detach() noexcept { return std::exchange(value, detail::Value::Null()); }

private:
    detail::Value value;
};

namespace detail {

using DirectMethod = Value (*)(IObject* target);

/// What stands where a row of a property has its signature, which is empty.
struct PropertySignature {
    wchar_t text[2];
    DirectMethod read;
    const std::type_info* plainType; ///< the getter's class if its objects look names up in their table; else null
};

/// MethodMap::baseAdjust of such rows.
inline constexpr int propertyMark = 0x50524f50;

template <class T> struct IsOptional : std::false_type {};
template <class T> struct IsOptional<std::optional<T>> : std::true_type {};

template <class> inline constexpr bool isNoPropertyType = false;

/// A getter's result as a value.
template <class T> Value ValueOf(T&& given) {
    using Type = std::remove_cv_t<std::remove_reference_t<T>>;
    if constexpr (std::is_same_v<Type, PropertyValue>) {
        return given.Detach();
    } else if constexpr (std::is_same_v<Type, bool>) {
        return Value::Bool(given);
    } else if constexpr (std::is_integral_v<Type> &&
                         (sizeof(Type) < sizeof(int) || std::is_same_v<Type, int> || std::is_same_v<Type, long>)) {
        static_assert(sizeof(Type) <= sizeof(int), "an integer property has at most 32 bits");
        return Value::Int(static_cast<int>(given));
    } else if constexpr (std::is_same_v<Type, double> || std::is_same_v<Type, float>) {
        return Value::Double(given);
    } else if constexpr (std::is_same_v<Type, OrvStringT>) {
        return Value::Text(std::forward<T>(given));
    } else if constexpr (IsOptional<Type>::value) {
        return given.has_value() ? ValueOf(*std::forward<T>(given)) : Value::Null();
    } else if constexpr (std::is_pointer_v<Type> && std::is_convertible_v<Type, IObject*>) {
        return given == nullptr ? Value::Null() : Value::Object(given);
    } else {
        static_assert(isNoPropertyType<Type>,
                      "a property is a bool, an int, a double, an OrvStringT, a reference to an object, a "
                      "PropertyValue, or one of these in a std::optional");
    }
}

/// Reads a member of an object: calls it, or takes it as it is.
template <auto getter, class Object> ORVUQL_ALWAYS_INLINE decltype(auto) ReadMember(const Object& object) {
    if constexpr (std::is_member_function_pointer_v<decltype(getter)>) {
        return (object.*getter)();
    } else {
        return (object.*getter);
    }
}

template <class Member> struct MemberOf;
template <class Class, class Type> struct MemberOf<Type Class::*> {
    using Object = Class;
    static_assert(!std::is_function_v<Type>, "the getter of a property is const and takes nothing");
    static_assert(!std::is_pointer_v<Type>, "a pointer's reference is handed over: give a getter that takes one");
};
template <class Class, class Result> struct MemberOf<Result (Class::*)() const> { using Object = Class; };
template <class Class, class Result> struct MemberOf<Result (Class::*)() const noexcept> { using Object = Class; };

} // namespace detail

} // namespace OrvUQL
