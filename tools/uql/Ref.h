// A counted pointer for a host of the library.
#pragma once

#include <utility>

namespace OrvUQL::Tool {

/// Holds one reference to an object of the library and gives it back; may be empty.
template <class T> class Ref {
public:
    Ref() noexcept = default;
    /// Takes over the reference that came with the pointer.
    explicit Ref(T* owned) noexcept : object(owned) {}
    Ref(Ref&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept {
        Ref moved(std::move(other));
        std::swap(object, moved.object);
        return *this;
    }
    ~Ref() { Reset(); }

    T* Get() const noexcept { return object; }
    T* operator->() const noexcept { return object; }
    T& operator*() const noexcept { return *object; }
    explicit operator bool() const noexcept { return object != nullptr; }

    /// Where a function stores a pointer with a reference; what was held before is given back.
    T** Receive() noexcept {
        Reset();
        return &object;
    }
    /// Hands the reference over to the caller.
    T* Detach() noexcept { return std::exchange(object, nullptr); }
    void Reset() noexcept {
        if (T* const old = std::exchange(object, nullptr)) {
            old->Release();
        }
    }

private:
    T* object = nullptr;
};

} // namespace OrvUQL::Tool
