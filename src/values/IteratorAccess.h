// An iterator's fields, for the loops that fill it and for the direct forms of its methods.
#pragma once

#include "OrvUQL/ObjectIterator.h"

#include "core/Value.h"

#include <utility>

namespace OrvUQL::detail {

struct IteratorAccess {
    /// Fills an iterator whose fields, but for the data, are empty. The values are taken over.
    static void Fill(ObjectIterator* iterator, Value lasteval, IObject* item, int position) {
        iterator->item = item;
        iterator->position = position;
        switch (lasteval.kind) {
        case ValueKind::Null:
            iterator->lastKind = IObject::TypeNull;
            break;
        case ValueKind::Int:
            iterator->lastKind = IObject::TypeInt;
            iterator->last.integer = lasteval.integer;
            break;
        case ValueKind::Double:
            iterator->lastKind = IObject::TypeDouble;
            iterator->last.number = lasteval.number;
            break;
        default:
            iterator->lasteval = Box(lasteval);
        }
    }

    /// Empties the fields, but for the data.
    static void Empty(ObjectIterator* iterator) {
        ReleaseField(iterator->lasteval);
        ReleaseField(iterator->item);
        ReleaseField(iterator->index);
    }

    /// The last value while it has no object.
    static Value LastScalar(const ObjectIterator* iterator) noexcept {
        switch (iterator->lastKind) {
        case IObject::TypeInt:
            return Value::Int(iterator->last.integer);
        case IObject::TypeDouble:
            return Value::Double(iterator->last.number);
        default:
            return Value::Null();
        }
    }

    // What the methods of these names give; none for a field that holds nothing.

    static Value LastEval(const ObjectIterator* iterator) noexcept {
        return iterator->lasteval == nullptr && iterator->position > 0 ? LastScalar(iterator)
                                                                       : UnboxShared(iterator->lasteval);
    }
    static Value Item(const ObjectIterator* iterator) noexcept { return UnboxShared(iterator->item); }
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
