// OLE Automation's things, owned: what of theirs is taken is given back, also where an exception passes.
#pragma once

#include "platform/Thread.h"

#include <string_view>
#include <vector>

#include <windows.h>

#include <oleauto.h>

namespace OrvUQL::com {

/// A VARIANT that is cleared in the end.
class OwnedVariant {
public:
    OwnedVariant() noexcept { VariantInit(&value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { VariantClear(&value); }

    VARIANT* Get() noexcept { return &value; }
    VARIANT* operator->() noexcept { return &value; }

private:
    VARIANT value;
};

/// A BSTR that is freed in the end.
class OwnedText {
public:
    OwnedText() noexcept = default;
    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;
    ~OwnedText() { SysFreeString(text); }

    /// A place for a function to store a new text in; to be used once.
    BSTR* Receive() noexcept { return &text; }
    /// Whether the function has succeeded. What a failing one leaves there is nobody's.
    bool HasReceived(HRESULT result) noexcept {
        text = FAILED(result) ? nullptr : text;
        return SUCCEEDED(result);
    }
    /// The units, U+0000 among them; null is the empty text.
    std::wstring_view View() const noexcept { return std::wstring_view(text, SysStringLen(text)); }

private:
    BSTR text = nullptr;
};

/// VARIANTs in a row, as IDispatch::Invoke takes them.
class VariantRow {
public:
    explicit VariantRow(std::size_t count) : values(count) {
        for (VARIANT& value : values) {
            VariantInit(&value);
        }
    }
    VariantRow(const VariantRow&) = delete;
    VariantRow& operator=(const VariantRow&) = delete;
    ~VariantRow() {
        for (VARIANT& value : values) {
            VariantClear(&value);
        }
    }

    VARIANT& operator[](std::size_t index) noexcept { return values[index]; }
    VARIANT* Data() noexcept { return values.data(); }
    int Count() const noexcept { return static_cast<int>(values.size()); }

private:
    std::vector<VARIANT> values;
};

/// One reference to an interface of COM.
template <class T> class ComPointer {
public:
    ComPointer() noexcept = default;
    ComPointer(const ComPointer&) = delete;
    ComPointer& operator=(const ComPointer&) = delete;
    ~ComPointer() {
        if (pointer != nullptr) {
            pointer->Release();
        }
    }

    /// A place for a function to store a reference in; to be used once.
    T** Receive() noexcept { return &pointer; }
    /// Whether the function has succeeded and has stored one. What a failing one leaves there is no reference.
    bool HasReceived(HRESULT result) noexcept {
        pointer = FAILED(result) ? nullptr : pointer;
        return pointer != nullptr;
    }
    T* Get() const noexcept { return pointer; }
    T* operator->() const noexcept { return pointer; }
    explicit operator bool() const noexcept { return pointer != nullptr; }

private:
    T* pointer = nullptr;
};

// ---- how deep arrays may nest ----

/// Arrays inside each other, in both directions. What is deeper would be made but never cleared: VariantClear recurses,
/// and knows no limit of its own.
inline constexpr int nestingLimit = 1000;

/// What VariantClear needs for one array inside another, with room to spare.
inline constexpr std::size_t clearStack = 512;

/// Whether there may be an array `level` deep, from 1: within the limit, and with the stack to convert it and then to
/// clear it together with all the arrays around it.
inline bool MayNest(int level) noexcept {
    return level <= nestingLimit &&
           platform::HasStack(platform::stackReserve + static_cast<std::size_t>(level) * clearStack);
}

} // namespace OrvUQL::com
