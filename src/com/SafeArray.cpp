#include "com/SafeArray.h"

#include "OrvUQL/Variant.h"

namespace OrvUQL::com {

namespace {

/// How elements of a type look in a SAFEARRAY.
struct ElementKind {
    VARTYPE type;
    ULONG size;
    USHORT features; ///< one of these says that the array owns what its elements point to; 0: they point to nothing
};

constexpr ElementKind kinds[] = {
    {VT_I1, 1, 0},
    {VT_UI1, 1, 0},
    {VT_I2, 2, 0},
    {VT_UI2, 2, 0},
    {VT_BOOL, 2, 0},
    {VT_I4, 4, 0},
    {VT_UI4, 4, 0},
    {VT_INT, 4, 0},
    {VT_UINT, 4, 0},
    {VT_R4, 4, 0},
    {VT_ERROR, 4, 0},
    {VT_I8, 8, 0},
    {VT_UI8, 8, 0},
    {VT_R8, 8, 0},
    {VT_CY, 8, 0},
    {VT_DATE, 8, 0},
    {VT_DECIMAL, sizeof(DECIMAL), 0},
    {VT_BSTR, sizeof(BSTR), FADF_BSTR},
    {VT_DISPATCH, sizeof(IDispatch*), FADF_DISPATCH},
    {VT_UNKNOWN, sizeof(IUnknown*), FADF_UNKNOWN | FADF_DISPATCH},
    {VT_VARIANT, sizeof(VARIANT), FADF_VARIANT},
};

} // namespace

bool HoldsElements(const SAFEARRAY& array, VARTYPE type) noexcept {
    if (array.cDims != 1) {
        return false;
    }
    for (const ElementKind& kind : kinds) {
        if (kind.type == type) {
            return array.cbElements == kind.size && (kind.features == 0 || (array.fFeatures & kind.features) != 0);
        }
    }
    return false;
}

} // namespace OrvUQL::com

namespace OrvUtils::VariantUtils {

long SafeArrayGetElementAsVariant(tagSAFEARRAY* array, const long* index, unsigned short type,
                                  VARIANT* element) noexcept {
    if (element == nullptr) {
        return E_INVALIDARG;
    }
    VariantInit(element);
    if (array == nullptr || index == nullptr) {
        return E_INVALIDARG;
    }
    // SafeArrayGetElement writes as many bytes as the array's elements have, and copies only what the array owns: a
    // wrong type would write behind the VARIANT, or make two owners of one text.
    if (!OrvUQL::com::HoldsElements(*array, type)) {
        return DISP_E_BADVARTYPE;
    }
    if (array->pvData == nullptr && array->rgsabound[0].cElements != 0) {
        return E_UNEXPECTED; // a description that nobody has given its memory yet; not every system looks
    }
    VARIANT copy;
    VariantInit(&copy);
    void* place = &copy.llVal;
    if (type == VT_VARIANT) {
        place = &copy;
    } else if (type == VT_DECIMAL) {
        place = &copy.decVal; // the type shares its bytes and is set below
    }
    LONG position = *index;
    const HRESULT result = SafeArrayGetElement(array, &position, place);
    if (FAILED(result)) {
        return result;
    }
    if (type == VT_BSTR && copy.bstrVal == nullptr) {
        // Not every system tells that it had no memory for the copy.
        void* text = nullptr;
        if (FAILED(SafeArrayPtrOfIndex(array, &position, &text)) || *static_cast<const BSTR*>(text) != nullptr) {
            return E_OUTOFMEMORY;
        }
    }
    if (type != VT_VARIANT) {
        copy.vt = type;
    }
    *element = copy;
    return S_OK;
}

} // namespace OrvUtils::VariantUtils
