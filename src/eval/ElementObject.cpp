#include "OrvUQL/Elements.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "eval/ElementAccess.h"

#include <typeinfo>

namespace OrvUQL {

ElementObject::ElementObject(IObject* literal, int textPosition, bool addRef) : value(literal), position(textPosition) {
    if (addRef && value != nullptr) {
        value->AddRef();
    }
    Decode();
}

ElementObject::ElementObject(bool literal, int textPosition)
    : ElementObject(new ObjectBool(literal), textPosition, false) {}

ElementObject::ElementObject(int literal, int textPosition)
    : ElementObject(new ObjectInt(literal), textPosition, false) {}

ElementObject::ElementObject(double literal, int textPosition)
    : ElementObject(new ObjectDouble(literal), textPosition, false) {}

ElementObject::ElementObject(const wchar_t* literal, int textPosition)
    : ElementObject(new ObjectString(literal), textPosition, false) {}

ElementObject::~ElementObject() { ReleaseNested(value); }

void ElementObject::Decode() {
    scalar.number = 0;
    if (value == nullptr) {
        valueKind = static_cast<std::uint8_t>(detail::ValueKind::None);
        return;
    }
    // Unboxing disposes of the object's reference where it needs none: it gets one of its own.
    value->AddRef();
    const detail::ValueHolder decoded(detail::Unbox(value));
    valueKind = static_cast<std::uint8_t>(decoded->kind);
    switch (decoded->kind) {
    case detail::ValueKind::Bool:
        scalar.boolean = decoded->boolean;
        break;
    case detail::ValueKind::Int:
        scalar.integer = decoded->integer;
        break;
    case detail::ValueKind::Double:
        scalar.number = decoded->number;
        break;
    default:
        break;
    }
}

IObject* ElementObject::Evaluate(QueryEngine*, IError**) const {
    if (value != nullptr) {
        value->AddRef();
    }
    return value;
}

} // namespace OrvUQL
