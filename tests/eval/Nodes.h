// Trees made by hand, in few words. All of these return elements with one reference, for the next to take over.
#pragma once

#include "support/Counted.h"

#include <initializer_list>
#include <utility>

namespace OrvUQL::Tests {

/// A literal; the value's reference is taken over.
inline IQueryElement* Literal(IObject* value, int position = 0) { return new ElementObject(value, position, false); }
inline IQueryElement* Literal(int value, int position = 0) { return new ElementObject(value, position); }
inline IQueryElement* Literal(double value, int position = 0) { return new ElementObject(value, position); }
inline IQueryElement* Literal(const wchar_t* value, int position = 0) { return new ElementObject(value, position); }
inline IQueryElement* Truth(bool value, int position = 0) { return new ElementObject(value, position); }
inline IQueryElement* Null(int position = 0) { return new ElementObject(new ObjectNull(), position, false); }

inline IQueryElement* Unary(const wchar_t* op, IQueryElement* operand, int position = 0) {
    return new OperatorUnary(OrvStringT(op), operand, position);
}
inline IQueryElement* Binary(IQueryElement* left, const wchar_t* op, IQueryElement* right, int position = 0) {
    return new OperatorBinary(OrvStringT(op), left, right, position);
}
inline IQueryElement* Ternary(IQueryElement* condition, IQueryElement* first, IQueryElement* second, int position = 0,
                              const wchar_t* op = L"?") {
    return new OperatorTernary(OrvStringT(op), condition, first, second, position);
}
inline IQueryElement* Group(IQueryElement* source, IQueryElement* inner, int position = 0) {
    return new ElementGroup(source, inner, position);
}

/// A bare name.
inline IQueryElement* Name(const wchar_t* name, QueryElementList args = {}, int position = 0) {
    return new ElementMethod(nullptr, name, args, false, position);
}
/// A member of an element, or of the group parent if that is null.
inline IQueryElement* Member(IQueryElement* parent, const wchar_t* name, QueryElementList args = {}, int position = 0) {
    return new ElementMethod(parent, name, args, true, position);
}
inline IQueryElement* Array(QueryElementList items, int position = 0) { return new ElementArray(items, position); }

/// An element that fails with a message, or without one.
inline IQueryElement* Failing(const wchar_t* message = L"failed", int position = 0) {
    return new CountedElement(nullptr, {}, position, message);
}

} // namespace OrvUQL::Tests
