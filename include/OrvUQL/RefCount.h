// Reference counting: the root of every interface, its one implementation, and the two lists through which
// values and query elements travel.
//
// Ownership, written once and followed everywhere:
// - A function that returns IObject*, IQueryElement*, IError*, IUnit* or IUnitDefinition* hands one reference to its
//   caller, who releases it. Null means failure. Functions that lend a pointer without a reference say "borrowed".
// - A list owns one reference to each non-null entry: who puts an object into a list hands that reference over.
// - An object that keeps another takes its own reference and releases it in its destructor.
//
// Counts are plain integers, not atomic: a graph of objects belongs to one thread at a time.
#pragma once

#include "OrvUQL/Export.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <stdexcept>

namespace OrvUQL {

class IObject;
class IQueryElement;

/// Root of every interface of the library. There are no weak references, and cycles leak.
class ORVUQL_SHARED_TYPE IRefCountObject {
public:
    /// Takes one more reference.
    virtual void AddRef() = 0;
    /// Gives one reference back; the last one destroys the object.
    virtual void Release() = 0;

protected:
    ~IRefCountObject() = default;
};

/// Gives back a reference that a dying object holds. To be used in destructors of everything that can be nested:
/// beyond a fixed depth of nesting the release waits in a queue of the thread until the outer ones have returned, so
/// that a structure a million levels deep is released on a small stack. Null is ignored. Up to that depth, and so for
/// everything that people write, it is a plain Release() at once.
ORVUQL_API void ReleaseNested(IRefCountObject* object) noexcept;
/// The same for a row of them, front to back.
ORVUQL_API void ReleaseNested(IRefCountObject* const* objects, std::size_t count) noexcept;

namespace detail {
struct CountAccess;

/// What lists keep their entries in. Throws std::bad_alloc.
ORVUQL_API void* AllocateEntries(std::size_t bytes);
/// Gives back what AllocateEntries() returned for the same number of bytes; null is ignored.
ORVUQL_API void FreeEntries(void* entries, std::size_t bytes) noexcept;
} // namespace detail

/// Implements counting for the interface T. A new object has count 1: it is born owned by its creator.
template <class T> class ORVUQL_SHARED_TYPE RefCountImpl : public T {
public:
    RefCountImpl() noexcept = default;
    /// Member-wise: the copy starts with the source's count. Deliberate, kept for hosts that rely on it.
    RefCountImpl(const RefCountImpl&) noexcept = default;
    RefCountImpl& operator=(const RefCountImpl&) noexcept = default;

    void AddRef() override { ++refCount; }

    /// Releasing an object whose count is already 0 is undefined.
    void Release() override {
        if (--refCount == 0) {
            Destroy();
        }
    }

    /// Declared here and not in T, so that its slot comes after all of T's own.
    virtual ~RefCountImpl() = default;

protected:
    friend struct detail::CountAccess;

    /// References held now; the object destroys itself when it gets to 0.
    std::int32_t refCount = 1;

private:
    // Out of line, or g++ guesses the class where it sees the object being made, and warns of what would happen if it
    // guessed wrong.
    ORVUQL_NOINLINE void Destroy() { delete this; }
};

/// What ObjectList and QueryElementList have in common: a growable sequence of pointers to T, null allowed, that owns
/// one reference to each non-null entry. The interface is that of a standard vector of pointers; like a vector it never
/// touches counts, but for the destructor and ReleaseAll(). At most 2^31-1 entries (std::length_error beyond);
/// std::bad_alloc where memory ends, the list then unchanged.
template <class T> class RefCountList {
public:
    using value_type = T*;
    using iterator = T**;
    using const_iterator = T* const*;

    constexpr RefCountList() noexcept : items(nullptr), count(0), room(0), external(0) {}

    /// Takes over the references of the given entries.
    RefCountList(std::initializer_list<T*> entries) : RefCountList() {
        reserve(entries.size());
        for (T* entry : entries) {
            items[count++] = entry;
        }
    }

    /// Copies the pointers as they are and takes no references. Deliberate: of two copies only one may be destroyed
    /// while it holds the entries (the other calls clear() first). Pass lists by reference.
    RefCountList(const RefCountList& other) : RefCountList() { CopyFrom(other); }

    /// As the copy constructor. The target's earlier entries are dropped without being released.
    RefCountList& operator=(const RefCountList& other) {
        if (this != &other) {
            count = 0;
            CopyFrom(other);
        }
        return *this;
    }

    /// Takes the entries over, references and all; `other` is left empty.
    RefCountList(RefCountList&& other) : RefCountList() { TakeFrom(other); }

    RefCountList& operator=(RefCountList&& other) {
        if (this != &other) {
            ReleaseAll();
            TakeFrom(other);
        }
        return *this;
    }

    /// Releases every non-null entry, front to back.
    ~RefCountList() {
        ReleaseAll();
        FreeStorage();
    }

    std::size_t size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }
    std::size_t capacity() const noexcept { return room; }
    T*& operator[](std::size_t index) noexcept { return items[index]; }
    T* operator[](std::size_t index) const noexcept { return items[index]; }
    T* front() const noexcept { return items[0]; }
    T* back() const noexcept { return items[count - 1]; }
    T** data() noexcept { return items; }
    T* const* data() const noexcept { return items; }
    iterator begin() noexcept { return items; }
    iterator end() noexcept { return items + count; }
    const_iterator begin() const noexcept { return items; }
    const_iterator end() const noexcept { return items + count; }

    /// Appends an entry and takes its reference over. If memory ends (std::bad_alloc) the reference stays the caller's.
    void push_back(T* entry) {
        if (count == room) {
            Grow(static_cast<std::size_t>(count) + 1);
        }
        items[count++] = entry;
    }

    /// Removes the last entry without releasing it.
    void pop_back() noexcept { --count; }

    void reserve(std::size_t entries) {
        if (entries > room) {
            Reallocate(entries);
        }
    }

    /// Forgets the entries without releasing them: for a list whose references have been handed on.
    void clear() noexcept { count = 0; }

    /// Releases every non-null entry, front to back, and leaves the list empty.
    void ReleaseAll() noexcept {
        static_assert(sizeof(T*) == sizeof(IRefCountObject*));
        const std::uint32_t last = count;
        count = 0;
        if (last != 0) {
            // T's first base: the pointers are the same.
            ReleaseNested(reinterpret_cast<IRefCountObject* const*>(items), last);
        }
    }

protected:
    /// A list that starts in storage of a derived class and moves to the heap only when that is full.
    RefCountList(T** storage, std::uint32_t capacity) noexcept
        : items(storage), count(0), room(capacity & maximum), external(1) {}

private:
    static constexpr std::uint32_t maximum = 0x7fffffff;

    void CopyFrom(const RefCountList& other) {
        reserve(other.count);
        if (other.count != 0) {
            std::memcpy(items, other.items, other.count * sizeof(T*));
        }
        count = other.count;
    }

    void TakeFrom(RefCountList& other) {
        if (other.external) {
            CopyFrom(other);
            other.count = 0;
            return;
        }
        if (external) {
            items = nullptr;
        }
        FreeStorage();
        items = other.items;
        count = other.count;
        room = other.room;
        external = 0;
        other.items = nullptr;
        other.count = 0;
        other.room = 0;
    }

    void Grow(std::size_t needed) {
        const std::size_t doubled = static_cast<std::size_t>(room) * 2;
        const std::size_t least = doubled < 4 ? 4 : doubled;
        Reallocate(needed > least ? needed : (least > maximum ? maximum : least));
    }

    void Reallocate(std::size_t capacity) {
        if (capacity < count) {
            capacity = count; // never so, and now compilers that warn of overflows know it
        }
        if (capacity > maximum) {
            throw std::length_error("RefCountList");
        }
        T** const fresh = static_cast<T**>(detail::AllocateEntries(capacity * sizeof(T*)));
        if (count != 0) {
            std::memcpy(fresh, items, count * sizeof(T*));
        }
        FreeStorage();
        items = fresh;
        room = static_cast<std::uint32_t>(capacity) & maximum;
        external = 0;
    }

    void FreeStorage() noexcept {
        if (!external) {
            detail::FreeEntries(items, room * sizeof(T*));
        }
    }

    T** items;
    std::uint32_t count;
    std::uint32_t room : 31;
    std::uint32_t external : 1;
};

/// An ordered list of values, used for method arguments and array contents. A null entry stands for an omitted optional
/// argument or an empty slot.
class ObjectList : public RefCountList<IObject> {
public:
    using RefCountList<IObject>::RefCountList;
};

/// An ordered list of query elements: the arguments of a call and the items of an array element. A null entry stands
/// for an empty argument position.
class QueryElementList : public RefCountList<IQueryElement> {
public:
    using RefCountList<IQueryElement>::RefCountList;
};

} // namespace OrvUQL
