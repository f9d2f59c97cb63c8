// How the library fails: the one idiom for errors, and the one place where the exceptions of memory end.
#pragma once

#include "OrvUQL/Error.h"
#include "OrvUQL/Export.h"

#include "core/Messages.h"
#include "platform/Thread.h"

#include <cstdint>
#include <new>
#include <stdexcept>
#include <utility>

namespace OrvUQL {

/// Stores a new error, if `err` is given, and returns false.
template <class... Inserts> bool Fail(IError** err, const wchar_t* format, const Inserts&... inserts) noexcept {
    if (err != nullptr) {
        *err = Error::Create(format, inserts...);
    }
    return false;
}

/// The same for functions that return a pointer.
template <class... Inserts>
std::nullptr_t FailNull(IError** err, const wchar_t* format, const Inserts&... inserts) noexcept {
    Fail(err, format, inserts...);
    return nullptr;
}

namespace platform {
enum class Excess : std::uint8_t;
}

/// The error for a limit of an evaluation; "Internal error" if there is none. Returns false.
bool FailForExcess(platform::Excess excess, IError** err) noexcept;

/// The failure where memory has ended, or what the evaluation may take: false, with "Internal error", or with the limit
/// that is exceeded.
bool FailForShortage(IError** err) noexcept;

/// Runs `body`. Where memory ends, the result is null or false, as by FailForShortage(). Any other exception, thrown by
/// a host's own object, passes through.
template <class Body> ORVUQL_ALWAYS_INLINE auto Guarded(IError** err, Body&& body) -> decltype(body()) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    FailForShortage(err);
    return decltype(body())();
}

/// Holds one reference and gives it back.
template <class T> class Reference {
public:
    Reference() noexcept = default;
    /// Takes the reference over.
    explicit Reference(T* taken) noexcept : object(taken) {}
    Reference(Reference&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Reference& operator=(Reference&& other) noexcept {
        if (this != &other) {
            Reset(std::exchange(other.object, nullptr));
        }
        return *this;
    }
    ~Reference() { Reset(nullptr); }

    T* Get() const noexcept { return object; }
    T* operator->() const noexcept { return object; }
    explicit operator bool() const noexcept { return object != nullptr; }
    /// Hands the reference over.
    T* Detach() noexcept { return std::exchange(object, nullptr); }
    /// Releases what is held and takes `taken` over.
    void Reset(T* taken) noexcept {
        if (T* const old = std::exchange(object, taken)) {
            old->Release();
        }
    }

private:
    T* object = nullptr;
};

} // namespace OrvUQL
