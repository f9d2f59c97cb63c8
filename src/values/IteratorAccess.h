// An iterator's fields, for the loops that fill it and for the direct forms of its methods.
#pragma once

#include "OrvUQL/ObjectIterator.h"
#include "OrvUQL/Scalars.h"

#include "core/Value.h"

#include <typeinfo>
#include <utility>

namespace OrvUQL::detail {

struct IteratorAccess {
    /// Fills an iterator whose fields, but for the data, are empty. The values are taken over. May throw.
    static void Fill(ObjectIterator* iterator, Value lasteval, IObject* item, int position) {
        iterator->item = item;
        iterator->position = position;
        iterator->lastKind = static_cast<std::int32_t>(lasteval.kind);
        if (lasteval.kind == ValueKind::Int) [[likely]] {
            iterator->last.integer = lasteval.Integer();
            return;
        }
        if (lasteval.kind == ValueKind::Double) {
            iterator->last.number = lasteval.number;
            return;
        }
        if (lasteval.kind == ValueKind::Null) {
            return;
        }
        iterator->lasteval = Box(lasteval);
    }

    /// Empties the fields, but for the data.
    static void Empty(ObjectIterator* iterator) {
        if (iterator->lasteval != nullptr) {
            ReleaseField(iterator->lasteval);
        }
        ReleaseField(iterator->item);
        if (iterator->index != nullptr) {
            ReleaseField(iterator->index);
        }
    }

    /// The last value while it has no object.
    static Value LastScalar(const ObjectIterator* iterator) noexcept {
        if (iterator->lastKind == IObject::TypeInt) [[likely]] {
            return Value::Int(iterator->last.integer);
        }
        return iterator->lastKind == IObject::TypeDouble ? Value::Double(iterator->last.number) : Value::Null();
    }

    // What the methods of these names give; none for a field that holds nothing.

    static Value LastEval(const ObjectIterator* iterator) noexcept {
        const Value scalar = ScalarLastEval(iterator);
        return scalar.Failed() ? UnboxShared(iterator->lasteval) : scalar;
    }
    /// The same while it has no object, else none.
    static Value ScalarLastEval(const ObjectIterator* iterator) noexcept {
        if (iterator->lasteval == nullptr && iterator->position > 0) [[likely]] {
            return LastScalar(iterator);
        }
        return Value::None();
    }
    static Value Item(const ObjectIterator* iterator) noexcept { return UnboxShared(iterator->item); }
    /// The same where the item is an int, else none.
    static Value IntItem(const ObjectIterator* iterator) noexcept {
        const IObject* const item = iterator->item;
        if (item != nullptr && &typeid(*item) == &typeid(ObjectInt)) [[likely]] {
            const ObjectInt* const number = static_cast<const ObjectInt*>(item);
            if (!number->ObjectBaseStaticImpl::IsStaticInstance()) [[likely]] {
                return Value::Int(number->GetValue());
            }
        }
        return Value::None();
    }
    static Value Index(const ObjectIterator* iterator) noexcept {
        return iterator->position > 0 ? Value::Int(iterator->position) : UnboxShared(iterator->index);
    }
    static Value Data(const ObjectIterator* iterator) noexcept { return UnboxShared(iterator->data); }

private:
    static void ReleaseField(IObject*& field) {
        if (IObject* const object = std::exchange(field, nullptr)) {
            object->Release();
        }
    }
};

} // namespace OrvUQL::detail
