// Owners for what the library hands out by reference.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>
#include <utility>

namespace OrvUQL::Tests {

/// Owns one reference and gives it back. Null allowed.
template <class T> class Ref {
public:
    Ref() noexcept = default;
    /// Takes the reference over.
    explicit Ref(T* taken) noexcept : object(taken) {}
    Ref(Ref&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept {
        if (this != &other) {
            Reset(other.Detach());
        }
        return *this;
    }
    ~Ref() { Reset(); }

    T* Get() const noexcept { return object; }
    T* operator->() const noexcept { return object; }
    T& operator*() const noexcept { return *object; }
    explicit operator bool() const noexcept { return object != nullptr; }

    /// Hands the reference over.
    T* Detach() noexcept { return std::exchange(object, nullptr); }
    /// A further reference, for those who take one over.
    T* Share() const {
        object->AddRef();
        return object;
    }
    void Reset(T* taken = nullptr) {
        if (T* const old = std::exchange(object, taken)) {
            old->Release();
        }
    }

private:
    T* object = nullptr;
};

template <class T, class... Arguments> Ref<T> Make(Arguments&&... arguments) {
    return Ref<T>(new T(std::forward<Arguments>(arguments)...));
}

/// Owns a unit handed out with a reference, which goes back through the value that it is the face of.
class UnitRef {
public:
    UnitRef() noexcept = default;
    explicit UnitRef(IUnit* taken) noexcept : unit(taken) {}
    UnitRef(UnitRef&& other) noexcept : unit(std::exchange(other.unit, nullptr)) {}
    UnitRef& operator=(UnitRef&& other) noexcept {
        std::swap(unit, other.unit);
        return *this;
    }
    ~UnitRef() {
        if (unit != nullptr) {
            unit->GetObject()->Release();
        }
    }

    IUnit* Get() const noexcept { return unit; }
    IUnit* operator->() const noexcept { return unit; }
    explicit operator bool() const noexcept { return unit != nullptr; }

private:
    IUnit* unit = nullptr;
};

/// A place for an error: `object->ToInt(number, error.Slot())`, then `error.Message()`.
class ErrorSlot {
public:
    ErrorSlot() noexcept = default;
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;
    ~ErrorSlot() { Clear(); }

    IError** Slot() noexcept { return &error; }
    IError* Get() const noexcept { return error; }
    bool IsEmpty() const noexcept { return error == nullptr; }
    /// The message; "(none)" if there is no error.
    std::string Message() const { return error == nullptr ? "(none)" : error->GetMessageW().ToUtf8(); }
    void Clear() {
        if (IError* const old = std::exchange(error, nullptr)) {
            old->Release();
        }
    }

private:
    IError* error = nullptr;
};

} // namespace OrvUQL::Tests
