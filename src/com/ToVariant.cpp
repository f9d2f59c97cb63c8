// From values to VARIANTs.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectBase.h"
#include "OrvUQL/Unit.h"

#include "com/Automation.h"
#include "core/Failure.h"
#include "platform/Meter.h"

#include <algorithm>

namespace OrvUQL {

namespace {

/// One array more inside others, as long as it is being converted. Counted for the thread, because between two arrays
/// stands a virtual call, and that may be a host's.
class NestedArray {
public:
    NestedArray() noexcept : thread(platform::CurrentThread()) { ++thread.variantDepth; }
    NestedArray(const NestedArray&) = delete;
    NestedArray& operator=(const NestedArray&) = delete;
    ~NestedArray() { --thread.variantDepth; }

    int Level() const noexcept { return thread.variantDepth; }

private:
    platform::ThreadState& thread;
};

/// A SAFEARRAY of VARIANTs that is being filled: destroyed with all its elements, unless it is handed over.
class NewArray {
public:
    explicit NewArray(int count) noexcept
        : array(count > largest ? nullptr : SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(count))) {}
    NewArray(const NewArray&) = delete;
    NewArray& operator=(const NewArray&) = delete;
    ~NewArray() {
        if (elements != nullptr) {
            SafeArrayUnaccessData(array);
        }
        if (array != nullptr) {
            SafeArrayDestroy(array);
        }
    }

    explicit operator bool() const noexcept { return array != nullptr; }
    /// The elements, all of them empty; null on failure.
    VARIANT* Access() noexcept {
        void* data = nullptr;
        if (SUCCEEDED(SafeArrayAccessData(array, &data))) {
            elements = static_cast<VARIANT*>(data);
        }
        return elements;
    }
    SAFEARRAY* HandOver() noexcept {
        SafeArrayUnaccessData(array);
        elements = nullptr;
        return std::exchange(array, nullptr);
    }

private:
    // Sizes have 32 bits in there, and not every system notices when they run over. A page is left for what else the
    // system puts into the block.
    static constexpr int largest = static_cast<int>((0xFFFFFFFFu - 4096u) / sizeof(VARIANT));

    SAFEARRAY* array;
    VARIANT* elements = nullptr;
};

HRESULT FillText(const IObject& value, VARIANT& out, IError** err) {
    OrvStringT text;
    if (!value.ToString(text, err)) {
        return E_FAIL;
    }
    out.bstrVal = text.AllocSysString();
    out.vt = VT_BSTR;
    return S_OK;
}

HRESULT FillArray(const ObjectBase& value, VARIANT& out, IError** err) {
    const ObjectArrayBase* const source = dynamic_cast<const ObjectArrayBase*>(&value);
    if (source == nullptr) {
        return E_FAIL;
    }
    const NestedArray nested;
    if (!com::MayNest(nested.Level())) {
        Fail(err, message::internalError);
        return E_FAIL;
    }
    const int count = std::max(source->GetCount(), 0);
    NewArray array(count);
    if (!array) {
        return E_OUTOFMEMORY;
    }
    VARIANT* const elements = array.Access();
    if (elements == nullptr) {
        return E_FAIL;
    }
    for (int index = 0; index < count; ++index) {
        platform::Charge(1);
        const Reference<IObject> item(source->GetItem(index));
        const HRESULT result = item ? item->ToVariant(elements[index], err) : E_FAIL;
        if (FAILED(result)) {
            return result;
        }
    }
    out.parray = array.HandOver();
    out.vt = VT_ARRAY | VT_VARIANT;
    return S_OK;
}

/// `out` is empty, and stays so on failure.
HRESULT Fill(const ObjectBase& value, VARIANT& out, IError** err) {
    switch (value.GetType()) {
    case IObject::TypeNull:
        out.vt = VT_NULL;
        return S_OK;
    case IObject::TypeBool: {
        bool truth = false;
        if (!value.ToBool(truth, err)) {
            return E_FAIL;
        }
        out.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
        out.vt = VT_BOOL;
        return S_OK;
    }
    case IObject::TypeInt: {
        int number = 0;
        if (!value.ToInt(number, err)) {
            return E_FAIL;
        }
        out.lVal = number;
        out.vt = VT_I4;
        return S_OK;
    }
    case IObject::TypeDouble: {
        double number = 0;
        if (!value.ToDouble(number, err)) {
            return E_FAIL;
        }
        out.dblVal = number;
        out.vt = VT_R8;
        return S_OK;
    }
    case IObject::TypeString:
        return FillText(value, out, err);
    case IObject::TypeArray:
        return FillArray(value, out, err);
    case IObject::TypeUnit: {
        const IUnit* const unit = value.GetUnitInterface();
        if (unit == nullptr || unit->GetPower() != 0) {
            return FillText(value, out, err);
        }
        out.dblVal = unit->GetValue();
        out.vt = VT_R8;
        return S_OK;
    }
    case IObject::TypeGlobal:
        if (err != nullptr) {
            Fail(err, message::objectToVariant, value.GetTypeName());
        }
        return DISP_E_TYPEMISMATCH;
    default:
        return E_FAIL; // an automation object is handed over by its own class
    }
}

} // namespace

VariantResult ObjectBase::ToVariant(VARIANT& out, IError** err) const {
    VariantInit(&out);
    HRESULT result = E_OUTOFMEMORY;
    Guarded(err, [&] {
        result = Fill(*this, out, err);
        return true;
    });
    return result;
}

} // namespace OrvUQL
