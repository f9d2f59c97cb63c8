#include "OrvUQL/Elements.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "eval/ElementAccess.h"
#include "platform/Meter.h"

#include <typeinfo>

namespace OrvUQL {

using detail::ElementAccess;
using detail::ValueKind;

ElementObject::ElementObject(IObject* literal, int textPosition, bool addRef) : value(literal), position(textPosition) {
    if (addRef && value != nullptr) {
        value->AddRef();
    }
    Decode();
}

ElementObject::ElementObject(bool literal, int textPosition)
    : value(nullptr), position(textPosition), valueKind(static_cast<std::uint8_t>(ValueKind::Bool)) {
    scalar.boolean = literal;
}

ElementObject::ElementObject(int literal, int textPosition)
    : value(nullptr), position(textPosition), valueKind(static_cast<std::uint8_t>(ValueKind::Int)) {
    scalar.integer = literal;
}

ElementObject::ElementObject(double literal, int textPosition)
    : value(nullptr), position(textPosition), valueKind(static_cast<std::uint8_t>(ValueKind::Double)) {
    scalar.number = literal;
}

ElementObject::ElementObject(const wchar_t* literal, int textPosition)
    : ElementObject(new ObjectString(literal), textPosition, false) {}

ElementObject::~ElementObject() { ReleaseNested(value); }

void ElementObject::Decode() {
    scalar.number = 0;
    if (value == nullptr) {
        valueKind = static_cast<std::uint8_t>(ValueKind::None);
        return;
    }
    // Unboxing disposes of the object's reference where it needs none: it gets one of its own.
    value->AddRef();
    const detail::ValueHolder decoded(detail::Unbox(value));
    valueKind = static_cast<std::uint8_t>(decoded->kind);
    switch (decoded->kind) {
    case ValueKind::Bool:
        scalar.boolean = decoded->boolean;
        break;
    case ValueKind::Int:
        scalar.integer = decoded->Integer();
        break;
    case ValueKind::Double:
        scalar.number = decoded->number;
        break;
    default:
        break;
    }
}

bool ElementObject::IsUnmade() const noexcept {
    return value == nullptr && static_cast<ValueKind>(valueKind) != ValueKind::None;
}

IObject* ElementObject::MakeValue() const noexcept {
    if (IsUnmade()) {
        const platform::UnmeteredScope asPartOfTheTree;
        value = Guarded(nullptr, [&] { return detail::Box(ElementAccess::LiteralScalar(this)); });
    }
    return value;
}

IObject* ElementObject::Evaluate(QueryEngine* engine, IError** err) const {
    IObject* const object = GetValue();
    if (object != nullptr) {
        object->AddRef();
    } else if (IsUnmade()) {
        return detail::FailForMemory(this, engine, err);
    }
    return object;
}

} // namespace OrvUQL
