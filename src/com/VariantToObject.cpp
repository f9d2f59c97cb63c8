// From VARIANTs to values.
//
// VARIANTs are read where they are, references followed: a working copy would copy texts only to free them, and nested
// arrays once for each level. Also, systems differ in what they let through on the way to a copy. Some turn a null BSTR
// into an empty one, some wrap an unsigned number round that does not fit; what is null or too big is seen here.

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectBase.h"
#include "OrvUQL/ObjectCom.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Scalars.h"

#include "com/Automation.h"
#include "com/SafeArray.h"
#include "core/Failure.h"
#include "platform/Meter.h"

#include <cstdint>
#include <cstring>
#include <limits>

namespace OrvUQL {

namespace {

IObject* MakeValue(const VARIANT& in, int level, IError** err);

IObject* Unsupported(VARTYPE type, IError** err) {
    return FailNull(err, message::unsupportedVariant, OrvUtils::String::ToStringW(static_cast<int>(type)));
}

/// The content of a VARIANT, which stands in it or, by reference, elsewhere. All members of the union begin at one
/// place.
template <class T> T Read(const void* content) noexcept {
    T value;
    std::memcpy(&value, content, sizeof(value));
    return value;
}

template <class T> IObject* MakeInt(const void* content) { return new ObjectInt(static_cast<int>(Read<T>(content))); }

/// Null for numbers that are no int.
template <class T> IObject* MakeIntIfFits(const void* content) {
    const T number = Read<T>(content);
    return number <= static_cast<T>(std::numeric_limits<int>::max()) ? new ObjectInt(static_cast<int>(number))
                                                                     : nullptr;
}

IObject* MakeText(BSTR text) {
    if (text == nullptr) {
        return new ObjectNull();
    }
    return new ObjectString(OrvStringT(text, static_cast<int>(SysStringLen(text))));
}

IObject* MakeObject(IDispatch* dispatch) {
    if (dispatch == nullptr) {
        return new ObjectNull();
    }
    return new ObjectCom(dispatch);
}

/// The value for a content of a type without flags, or null if there is none.
IObject* MakeScalar(VARTYPE type, const void* content) {
    switch (type) {
    case VT_EMPTY:
    case VT_NULL:
        return new ObjectNull();
    case VT_I1:
        return MakeInt<std::int8_t>(content);
    case VT_UI1:
        return MakeInt<std::uint8_t>(content);
    case VT_I2:
        return MakeInt<std::int16_t>(content);
    case VT_I4:
    case VT_INT:
        return MakeInt<std::int32_t>(content);
    case VT_UI4:
    case VT_UINT:
        return MakeIntIfFits<std::uint32_t>(content);
    case VT_UI8:
        return MakeIntIfFits<std::uint64_t>(content);
    case VT_R4:
        return new ObjectDouble(static_cast<double>(Read<float>(content)));
    case VT_R8:
        return new ObjectDouble(Read<double>(content));
    case VT_BOOL:
        return new ObjectBool(Read<VARIANT_BOOL>(content) != VARIANT_FALSE); // any other than VARIANT_TRUE is true too
    case VT_BSTR:
        return MakeText(Read<BSTR>(content));
    case VT_DISPATCH:
        return MakeObject(Read<IDispatch*>(content));
    default:
        // VT_UI2 and VT_I8 are among these, deliberately, although the integers next to them are taken: hosts see the
        // refusal and have come to rely on it.
        return nullptr;
    }
}

/// Keeps an array from being resized or freed while its elements are read, which may call foreign code.
class ArrayLock {
public:
    explicit ArrayLock(SAFEARRAY* safeArray) noexcept
        : array(SUCCEEDED(SafeArrayLock(safeArray)) ? safeArray : nullptr) {}
    ArrayLock(const ArrayLock&) = delete;
    ArrayLock& operator=(const ArrayLock&) = delete;
    ~ArrayLock() {
        if (array != nullptr) {
            SafeArrayUnlock(array);
        }
    }

    explicit operator bool() const noexcept { return array != nullptr; }

private:
    SAFEARRAY* array;
};

/// The value of one element. `fetched` tells whether there was one to convert.
IObject* MakeElement(SAFEARRAY* array, LONG index, VARTYPE type, int level, bool& fetched, IError** err) {
    if (type == VT_VARIANT) {
        void* element = nullptr;
        fetched = com::HoldsElements(*array, type) && SUCCEEDED(SafeArrayPtrOfIndex(array, &index, &element));
        return fetched ? MakeValue(*static_cast<const VARIANT*>(element), level, err) : nullptr;
    }
    com::OwnedVariant element;
    fetched = SUCCEEDED(OrvUtils::VariantUtils::SafeArrayGetElementAsVariant(array, &index, type, element.Get()));
    return fetched ? MakeValue(*element.Get(), level, err) : nullptr;
}

/// `arrayType` with its flags.
IObject* MakeArray(SAFEARRAY* array, VARTYPE arrayType, int level, IError** err) {
    LONG first = 0;
    LONG last = 0;
    if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &first)) ||
        FAILED(SafeArrayGetUBound(array, 1, &last))) {
        return Unsupported(arrayType, err);
    }
    if (!com::MayNest(level)) {
        return FailNull(err, message::internalError);
    }
    const ArrayLock lock(array);
    if (!lock || (array->pvData == nullptr && first <= last)) { // locked too often, or without its memory yet
        return Unsupported(arrayType, err);
    }
    const VARTYPE elementType = arrayType & static_cast<VARTYPE>(VT_TYPEMASK);
    ObjectList items;
    for (std::int64_t index = first; index <= last; ++index) {
        bool fetched = false;
        Reference<IObject> item(MakeElement(array, static_cast<LONG>(index), elementType, level + 1, fetched, err));
        if (!fetched) {
            return Unsupported(arrayType, err);
        }
        if (!item) {
            return nullptr;
        }
        platform::Charge(1);
        items.push_back(item.Get());
        item.Detach();
    }
    return new ObjectArray(std::move(items));
}

/// `level` is that of an array here: 1 for one that stands in no other.
IObject* MakeValue(const VARIANT& in, int level, IError** err) {
    const bool isReference = (in.vt & VT_BYREF) != 0;
    if ((in.vt & VT_ARRAY) != 0) {
        if (isReference && in.pparray == nullptr) {
            return Unsupported(in.vt, err);
        }
        return MakeArray(isReference ? *in.pparray : in.parray, in.vt, level, err);
    }
    const VARTYPE type = in.vt & static_cast<VARTYPE>(~VT_BYREF);
    const void* const content = isReference ? in.byref : &in.llVal;
    // A reference leads to something: not to nowhere, and nothing is not something.
    if (isReference && (content == nullptr || type == VT_EMPTY || type == VT_NULL)) {
        return Unsupported(in.vt, err);
    }
    IObject* const value = MakeScalar(type, content);
    return value != nullptr ? value : Unsupported(in.vt, err);
}

} // namespace

IObject* ObjectBase::VariantToObject(const VARIANT& in, IError** err) {
    return Guarded(err, [&] { return MakeValue(in, 1, err); });
}

} // namespace OrvUQL
