// One element of a SAFEARRAY as a VARIANT.

#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace OrvUQL::Tests {
namespace {

using OrvUtils::VariantUtils::SafeArrayGetElementAsVariant;

class SafeArrayElementTest : public AutomationTest {
protected:
    /// What comes of the element at `index`: its description, or the HRESULT.
    std::string Element(SAFEARRAY* array, long index, VARTYPE type) {
        Variant element;
        std::memset(element.Get(), 0xab, sizeof(VARIANT));
        const HRESULT result = SafeArrayGetElementAsVariant(array, &index, type, element.Get());
        if (SUCCEEDED(result)) {
            EXPECT_EQ(result, S_OK);
            return Describe(*element);
        }
        EXPECT_EQ(element->vt, VT_EMPTY);
        return "failed";
    }
};

TEST_F(SafeArrayElementTest, NumbersHaveTheElementsType) {
    const Variant numbers = Array(VT_I4, NewArray(VT_I4, 3));
    static_cast<long*>((*numbers).parray->pvData)[1] = 7;
    EXPECT_EQ(Element((*numbers).parray, 0, VT_I4), "I4 0");
    EXPECT_EQ(Element((*numbers).parray, 1, VT_I4), "I4 7");
    const Variant doubles = Array(VT_R8, NewArray(VT_R8, 1));
    *static_cast<double*>((*doubles).parray->pvData) = 0.5;
    EXPECT_EQ(Element((*doubles).parray, 0, VT_R8), "R8 0.5");
    const Variant bools = Array(VT_BOOL, NewArray(VT_BOOL, 1));
    *static_cast<VARIANT_BOOL*>((*bools).parray->pvData) = VARIANT_TRUE;
    EXPECT_EQ(Element((*bools).parray, 0, VT_BOOL), "BOOL -1");
}

TEST_F(SafeArrayElementTest, ADecimalKeepsItsBytes) {
    const Variant decimals = Array(VT_DECIMAL, NewArray(VT_DECIMAL, 1));
    DECIMAL* const kept = static_cast<DECIMAL*>((*decimals).parray->pvData);
    kept->scale = 2;
    kept->sign = DECIMAL_NEG;
    kept->Lo64 = 12345;
    Variant element;
    const long first = 0;
    ASSERT_EQ(SafeArrayGetElementAsVariant((*decimals).parray, &first, VT_DECIMAL, element.Get()), S_OK);
    EXPECT_EQ(element->vt, VT_DECIMAL);
    EXPECT_EQ(element->decVal.scale, 2);
    EXPECT_EQ(element->decVal.sign, DECIMAL_NEG);
    EXPECT_EQ(element->decVal.Lo64, 12345u);
}

TEST_F(SafeArrayElementTest, TextsAreCopies) {
    const ComMemory memory;
    {
        const Variant texts = Array(VT_BSTR, NewArray(VT_BSTR, 2));
        BSTR* const kept = static_cast<BSTR*>((*texts).parray->pvData);
        kept[0] = Text(std::wstring_view(L"a\0b", 3)).Detach().bstrVal;
        EXPECT_EQ(Element((*texts).parray, 0, VT_BSTR), std::string("BSTR a\0b", 8));
        EXPECT_EQ(Element((*texts).parray, 1, VT_BSTR), "BSTR(null)");
        Variant copy;
        const long first = 0;
        ASSERT_EQ(SafeArrayGetElementAsVariant((*texts).parray, &first, VT_BSTR, copy.Get()), S_OK);
        EXPECT_NE(copy->bstrVal, kept[0]);
    }
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(SafeArrayElementTest, ObjectsGetAReference) {
    Server* const server = new Server();
    for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
        server->AddRef();
        const Variant objects = Array(type, NewArray(type, 1));
        *static_cast<IUnknown**>((*objects).parray->pvData) = server;
        Variant element;
        const long first = 0;
        ASSERT_EQ(SafeArrayGetElementAsVariant((*objects).parray, &first, type, element.Get()), S_OK);
        EXPECT_EQ(element->vt, type);
        EXPECT_EQ(server->References(), 3u);
    }
    EXPECT_EQ(server->References(), 1u);
    server->Release();
}

TEST_F(SafeArrayElementTest, VariantsAreCopiedAsTheyAre) {
    const ComMemory memory;
    {
        Variant text = Text(L"x");
        Variant number = Integer(VT_I4, 7);
        Variant inner = ArrayOf({&number});
        const Variant variants = ArrayOf({&text, &inner}, 1);
        EXPECT_EQ(Element((*variants).parray, 1, VT_VARIANT), "BSTR x");
        EXPECT_EQ(Element((*variants).parray, 2, VT_VARIANT), "ARRAY[I4 7]");
    }
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(SafeArrayElementTest, AnIndexOutsideFails) {
    const Variant numbers = Array(VT_I4, NewArray(VT_I4, 2, 5));
    Variant element;
    for (const long index : {-1L, 0L, 4L, 7L, 0x7FFFFFFFL}) {
        EXPECT_EQ(SafeArrayGetElementAsVariant((*numbers).parray, &index, VT_I4, element.Get()), DISP_E_BADINDEX);
    }
    EXPECT_EQ(Element((*numbers).parray, 5, VT_I4), "I4 0");
    EXPECT_EQ(Element((*numbers).parray, 6, VT_I4), "I4 0");
}

TEST_F(SafeArrayElementTest, AWrongTypeFails) {
    const Variant numbers = Array(VT_I4, NewArray(VT_I4, 1));
    for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_I2, VT_R8, VT_BSTR, VT_VARIANT, VT_DECIMAL, VT_RECORD, VT_VOID}) {
        EXPECT_EQ(Element((*numbers).parray, 0, type), "failed") << type;
    }
    EXPECT_EQ(Element((*numbers).parray, 0, VT_I4 | VT_ARRAY), "failed");
    SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
    const Variant table = Array(VT_I4, SafeArrayCreate(VT_I4, 2, bounds));
    EXPECT_EQ(Element((*table).parray, 0, VT_I4), "failed");
}

TEST_F(SafeArrayElementTest, NothingFails) {
    EXPECT_EQ(Element(nullptr, 0, VT_I4), "failed");
    const Variant numbers = Array(VT_I4, NewArray(VT_I4, 1));
    Variant element;
    EXPECT_EQ(SafeArrayGetElementAsVariant((*numbers).parray, nullptr, VT_I4, element.Get()), E_INVALIDARG);
    const long first = 0;
    EXPECT_EQ(SafeArrayGetElementAsVariant((*numbers).parray, &first, VT_I4, nullptr), E_INVALIDARG);
}

} // namespace
} // namespace OrvUQL::Tests
