#include "windows/Automation.h"

#include "windows/Servers.h"

#include <cstdio>
#include <cstring>
#include <objbase.h>
#include <objidl.h>

namespace OrvUQL::Tests {

Variant Empty() { return Variant(); }

Variant OfType(VARTYPE type) {
    Variant made;
    made->vt = type;
    return made;
}

Variant Integer(VARTYPE type, std::int64_t number) {
    Variant made;
    made->llVal = number;
    made->vt = type;
    return made;
}

Variant Single(float number) {
    Variant made;
    made->fltVal = number;
    made->vt = VT_R4;
    return made;
}

Variant Double(double number) {
    Variant made;
    made->dblVal = number;
    made->vt = VT_R8;
    return made;
}

Variant Bool(VARIANT_BOOL truth) {
    Variant made;
    made->boolVal = truth;
    made->vt = VT_BOOL;
    return made;
}

Variant Text(std::wstring_view text) {
    Variant made;
    made->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    made->vt = VT_BSTR;
    return made;
}

Variant Object(IDispatch* object) {
    Variant made;
    if (object != nullptr) {
        object->AddRef();
    }
    made->pdispVal = object;
    made->vt = VT_DISPATCH;
    return made;
}

Variant Reference(VARTYPE type, void* place) {
    Variant made;
    made->byref = place;
    made->vt = static_cast<VARTYPE>(type | VT_BYREF);
    return made;
}

Variant Array(VARTYPE type, SAFEARRAY* array) {
    Variant made;
    made->parray = array;
    made->vt = static_cast<VARTYPE>(type | VT_ARRAY);
    return made;
}

SAFEARRAY* NewArray(VARTYPE type, unsigned count, long first) {
    SAFEARRAY* const array = SafeArrayCreateVector(type, first, count);
    EXPECT_NE(array, nullptr);
    return array;
}

Variant ArrayOf(std::initializer_list<Variant*> elements, long first) {
    SAFEARRAY* const array = NewArray(VT_VARIANT, static_cast<unsigned>(elements.size()), first);
    VARIANT* place = static_cast<VARIANT*>(array->pvData);
    for (Variant* const element : elements) {
        *place++ = element->Detach();
    }
    return Array(VT_VARIANT, array);
}

// ---- in words ----

namespace {

std::string DescribeArray(SAFEARRAY* array) {
    if (array == nullptr) {
        return "ARRAY(null)";
    }
    long first = 0;
    long last = -1;
    EXPECT_EQ(SafeArrayGetDim(array), 1u);
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &first), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &last), S_OK);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(array->cLocks, 0u);
    std::string text = "ARRAY[";
    for (long index = 0; index <= last; ++index) {
        void* element = nullptr;
        EXPECT_EQ(SafeArrayPtrOfIndex(array, &index, &element), S_OK);
        text += (index > 0 ? ", " : "") + Describe(*static_cast<const VARIANT*>(element));
    }
    return text + "]";
}

std::string NumberText(double number) { return Utf8(OrvUtils::String::ToStringW(number)); }

} // namespace

std::string Describe(const VARIANT& variant) {
    switch (variant.vt) {
    case VT_EMPTY:
        return "EMPTY";
    case VT_NULL:
        return "NULL";
    case VT_I4:
        return "I4 " + std::to_string(variant.lVal);
    case VT_R8:
        return "R8 " + NumberText(variant.dblVal);
    case VT_BOOL:
        return "BOOL " + std::to_string(variant.boolVal);
    case VT_BSTR:
        if (variant.bstrVal == nullptr) {
            return "BSTR(null)";
        }
        return "BSTR " + Utf8(OrvStringT(variant.bstrVal, static_cast<int>(SysStringLen(variant.bstrVal))));
    case VT_ERROR: {
        char digits[16];
        std::snprintf(digits, sizeof(digits), "%08lX", static_cast<unsigned long>(variant.scode));
        return std::string("ERROR ") + digits;
    }
    case VT_DISPATCH:
        return variant.pdispVal == nullptr ? "DISPATCH(null)" : "DISPATCH";
    case VT_ARRAY | VT_VARIANT:
        return DescribeArray(variant.parray);
    default:
        return "type " + std::to_string(variant.vt);
    }
}

std::string ToVariant(const IObject& object) {
    // The bytes that were there before do not matter: they are neither read nor freed.
    Variant converted;
    std::memset(converted.Get(), 0xab, sizeof(VARIANT));
    Variant quiet;
    std::memset(quiet.Get(), 0xab, sizeof(VARIANT));
    ErrorSlot error;
    const HRESULT result = object.ToVariant(*converted.Get(), error.Slot());
    EXPECT_EQ(object.ToVariant(*quiet.Get(), nullptr), result) << "the outcome depends on whether errors are asked for";
    if (SUCCEEDED(result)) {
        EXPECT_EQ(result, S_OK);
        EXPECT_TRUE(error.IsEmpty()) << "a value and an error: " << error.Message();
        EXPECT_EQ(Describe(*quiet), Describe(*converted));
        return Describe(*converted);
    }
    char digits[16];
    std::snprintf(digits, sizeof(digits), "%08lX", static_cast<unsigned long>(result));
    if (result != E_NOTIMPL) { // what is not implemented touches nothing
        EXPECT_EQ(Describe(*converted), "EMPTY");
        EXPECT_EQ(Describe(*quiet), "EMPTY");
    }
    VariantInit(converted.Get());
    VariantInit(quiet.Get());
    return error.IsEmpty() ? std::string(digits) : std::string(digits) + " " + error.Message();
}

std::string FromVariant(const VARIANT& variant) {
    unsigned char before[sizeof(VARIANT)];
    std::memcpy(before, &variant, sizeof(VARIANT));
    const std::string outcome = Attempt([&](IError** err) { return ObjectBase::VariantToObject(variant, err); });
    EXPECT_EQ(std::memcmp(before, &variant, sizeof(VARIANT)), 0) << "the VARIANT was changed";
    return outcome;
}

// ---- what must be gone ----

namespace {

/// Counts the blocks of COM's allocator. Lives as long as the program: COM asks it about every block that it has seen.
class AllocationCount final : public IMallocSpy {
public:
    long Blocks() const noexcept { return blocks; }
    /// How many more blocks there are; negative: any number.
    void Allow(int number) noexcept {
        allowed = number;
        failed = false;
    }
    bool HasFailed() const noexcept { return failed; }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IMallocSpy)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = this;
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP_(SIZE_T) PreAlloc(SIZE_T size) override {
        if (allowed == 0) {
            failed = true;
            return 0; // the allocation then fails
        }
        allowed -= allowed > 0 ? 1 : 0;
        return size;
    }
    STDMETHODIMP_(void*) PostAlloc(void* block) override {
        if (block != nullptr) {
            InterlockedIncrement(&blocks);
        }
        return block;
    }
    STDMETHODIMP_(void*) PreFree(void* block, WINBOOL seen) override {
        if (block != nullptr && seen) {
            InterlockedDecrement(&blocks);
        }
        return block;
    }
    STDMETHODIMP_(void) PostFree(WINBOOL) override {}
    STDMETHODIMP_(SIZE_T) PreRealloc(void* block, SIZE_T size, void** newBlock, WINBOOL) override {
        *newBlock = block;
        return size;
    }
    STDMETHODIMP_(void*) PostRealloc(void* block, WINBOOL) override { return block; }
    STDMETHODIMP_(void*) PreGetSize(void* block, WINBOOL) override { return block; }
    STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, WINBOOL) override { return size; }
    STDMETHODIMP_(void*) PreDidAlloc(void* block, WINBOOL) override { return block; }
    STDMETHODIMP_(int) PostDidAlloc(void*, WINBOOL, int allocated) override { return allocated; }
    STDMETHODIMP_(void) PreHeapMinimize() override {}
    STDMETHODIMP_(void) PostHeapMinimize() override {}

private:
    long blocks = 0;
    int allowed = -1;
    bool failed = false;
};

AllocationCount allocations;

void CountAllocations() {
    static const bool registered = [] {
        // The cache keeps freed texts for later ones, and nobody could tell them from lost ones.
        const HMODULE automation = GetModuleHandleW(L"oleaut32.dll");
        const FARPROC switchCacheOff = GetProcAddress(automation, "SetOaNoCache");
        EXPECT_NE(switchCacheOff, nullptr);
        if (switchCacheOff != nullptr) {
            switchCacheOff();
        }
        return CoRegisterMallocSpy(&allocations) == S_OK;
    }();
    EXPECT_TRUE(registered);
}

} // namespace

ComMemory::ComMemory() {
    CountAllocations();
    start = allocations.Blocks();
}

long ComMemory::Growth() const { return allocations.Blocks() - start; }

FailingComMemory::FailingComMemory(int allowed) {
    CountAllocations();
    allocations.Allow(allowed);
}

FailingComMemory::~FailingComMemory() { allocations.Allow(-1); }

bool FailingComMemory::HasFailed() const { return allocations.HasFailed(); }

void AutomationTest::SetUp() {
    CountedTest::SetUp();
    // Once for the program: servers stay loaded, and what they keep is not made anew for each test.
    static const HRESULT initialised = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ASSERT_EQ(initialised, S_OK);
    ASSERT_EQ(liveServers, 0) << "left over from an earlier test";
}

void AutomationTest::TearDown() {
    EXPECT_EQ(liveServers, 0) << "leaked";
    CountedTest::TearDown();
}

} // namespace OrvUQL::Tests
