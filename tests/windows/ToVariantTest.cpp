// From values to VARIANTs.

#include "support/Host.h"
#include "windows/Automation.h"
#include "windows/Values.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace OrvUQL::Tests {
namespace {

class ToVariantTest : public AutomationTest {};

Ref<IObject> String(std::wstring_view text) { return Ref<IObject>(new ObjectString(OrvStringT(text))); }

// ---- each type ----

TEST_F(ToVariantTest, NullIsNull) { EXPECT_EQ(ToVariant(*Make<ObjectNull>()), "NULL"); }

TEST_F(ToVariantTest, TruthIsMinusOne) {
    EXPECT_EQ(ToVariant(*Make<ObjectBool>(true)), "BOOL -1");
    EXPECT_EQ(ToVariant(*Make<ObjectBool>(false)), "BOOL 0");
}

TEST_F(ToVariantTest, IntsAreLongs) {
    EXPECT_EQ(ToVariant(*Make<ObjectInt>(7)), "I4 7");
    EXPECT_EQ(ToVariant(*Make<ObjectInt>(0)), "I4 0");
    EXPECT_EQ(ToVariant(*Make<ObjectInt>(std::numeric_limits<int>::max())), "I4 2147483647");
    EXPECT_EQ(ToVariant(*Make<ObjectInt>(std::numeric_limits<int>::min())), "I4 -2147483648");
}

TEST_F(ToVariantTest, DoublesStayAsTheyAre) {
    EXPECT_EQ(ToVariant(*Make<ObjectDouble>(0.1)), "R8 0.1");
    EXPECT_EQ(ToVariant(*Make<ObjectDouble>(7.0)), "R8 7");
    EXPECT_EQ(ToVariant(*Make<ObjectDouble>(-0.0)), "R8 -0");
    EXPECT_EQ(ToVariant(*Make<ObjectDouble>(std::numeric_limits<double>::infinity())), "R8 inf");
    EXPECT_EQ(ToVariant(*Make<ObjectDouble>(std::numeric_limits<double>::quiet_NaN())), "R8 nan");
    EXPECT_EQ(ToVariant(*Make<ObjectDouble>(std::numeric_limits<double>::denorm_min())), "R8 5e-324");
}

TEST_F(ToVariantTest, StringsAreTextsOfTheirLength) {
    using namespace std::string_view_literals;
    EXPECT_EQ(ToVariant(*String(L"abc")), "BSTR abc");
    EXPECT_EQ(ToVariant(*String(L"12")), "BSTR 12");
    EXPECT_EQ(ToVariant(*String(L"\U0001D11E")), "BSTR \xF0\x9D\x84\x9E");
    EXPECT_EQ(ToVariant(*String(L"a\0b"sv)), std::string("BSTR a\0b", 8));
    // An empty text is a text and not a null pointer.
    EXPECT_EQ(ToVariant(*String(L"")), "BSTR ");
}

TEST_F(ToVariantTest, TypeObjectsAreValuesLikeOthers) {
    EXPECT_EQ(ToVariant(*Make<ObjectInt>()), "I4 0");
    EXPECT_EQ(ToVariant(*Make<ObjectString>()), "BSTR ");
}

TEST_F(ToVariantTest, UnitsWithoutAPowerAreTheirBaseValue) {
    // 2.5 at power 0: the unit's factor counts nothing.
    EXPECT_EQ(ToVariant(*Length(2.5, 0)), "R8 2.5");
    EXPECT_EQ(ToVariant(*Length(3.0, 0)), "R8 3");
}

TEST_F(ToVariantTest, UnitsWithAPowerAreTexts) {
    EXPECT_EQ(ToVariant(*Length(2.5, 1)), "BSTR 2.5 cm");
    EXPECT_EQ(ToVariant(*Length(4.0, 2)), "BSTR 4 cm\xC2\xB2");
    EXPECT_EQ(ToVariant(*Length(2.0, -1)), "BSTR 2 cm^-1");
}

TEST_F(ToVariantTest, ExpressionsHaveNone) { EXPECT_EQ(ToVariant(*Make<ObjectExpression>(nullptr)), "80004001"); }

TEST_F(ToVariantTest, TheGlobalObjectAndIteratorsAreRefused) {
    EXPECT_EQ(ToVariant(*Make<ObjectGlobal>()), "80020005 Unable to convert object 'global' to 'VARIANT' data type");
    EXPECT_EQ(ToVariant(*Make<ObjectIterator>(nullptr, nullptr, nullptr, nullptr)),
              "80020005 Unable to convert object 'iterator' to 'VARIANT' data type");
    // A host's own objects have the same type code.
    EXPECT_EQ(ToVariant(*Make<CountedObject>()), "80020005 Unable to convert object 'counted' to 'VARIANT' data type");
}

// ---- classes of a host: the type code decides, and the conversions are theirs ----

TEST_F(ToVariantTest, AHostsConversionsAreUsed) {
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeNull, L"anything")), "NULL");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeBool, L"True")), "BOOL -1");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeInt, L"2.5")), "I4 3");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeDouble, L"2.5")), "R8 2.5");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeString, L"2.5")), "BSTR 2.5");
    // No face as a unit that could say that it has no power.
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeUnit, L"2.5 stones")), "BSTR 2.5 stones");
}

TEST_F(ToVariantTest, AHostsConversionsMayFail) {
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeBool, L"x")), "80004005 Cannot convert string 'x' to Boolean");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeInt, L"x")), "80004005 Cannot convert string 'x' to Integer");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeInt, L"3e9")),
              "80004005 Data overflow occured while converting a floating point number 3e9 to integer");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeDouble, L"x")), "80004005 Cannot convert string 'x' to Double");
}

class Silent : public CountedObject {
public:
    using CountedObject::CountedObject;
    bool ToString(OrvStringT&, IError**) const override { return false; }
    using CountedObject::ToString;
};

TEST_F(ToVariantTest, ATextMayFail) {
    EXPECT_EQ(ToVariant(*Make<Silent>("", OrvStringT(), IObject::TypeString)), "80004005");
    EXPECT_EQ(ToVariant(*Make<Silent>("", OrvStringT(), IObject::TypeUnit)), "80004005");
}

TEST_F(ToVariantTest, OtherTypeCodesAreFailuresWithoutAWord) {
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeCom, L"1")), "80004005");
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeExpression, L"1")), "80004005");
    EXPECT_EQ(ToVariant(*HostValue(static_cast<IObject::EType>(10), L"1")), "80004005");
    EXPECT_EQ(ToVariant(*HostValue(static_cast<IObject::EType>(-1), L"1")), "80004005");
    // The code of arrays, but no array.
    EXPECT_EQ(ToVariant(*HostValue(IObject::TypeArray, L"1")), "80004005");
}

class Throwing : public CountedObject {
public:
    explicit Throwing(EType objectType) : CountedObject("", OrvStringT(), objectType) {}
    OrvStringT ToString() const override { throw std::bad_alloc(); }
    OrvStringT GetTypeName() const override { throw std::bad_alloc(); }
};

TEST_F(ToVariantTest, WhereMemoryEndsNothingIsThrown) {
    EXPECT_EQ(ToVariant(*Make<Throwing>(IObject::TypeString)), "80004005 Internal error");
    Variant out;
    ErrorSlot error;
    EXPECT_EQ(Make<Throwing>(IObject::TypeGlobal)->ToVariant(*out.Get(), error.Slot()), E_OUTOFMEMORY);
    EXPECT_EQ(error.Message(), "Internal error");
    EXPECT_EQ(out->vt, VT_EMPTY);
}

// ---- texts alone ----

TEST_F(ToVariantTest, ATextAllocatesABstr) {
    using namespace std::string_view_literals;
    const ComMemory memory;
    const OrvStringT text(L"a\0b"sv);
    BSTR const made = text.AllocSysString();
    EXPECT_EQ(SysStringLen(made), 3u);
    EXPECT_EQ(std::wstring_view(made, 4), L"a\0b\0"sv);
    EXPECT_EQ(memory.Growth(), 1);
    SysFreeString(made);
    BSTR const empty = OrvStringT().AllocSysString();
    EXPECT_NE(empty, nullptr);
    EXPECT_EQ(SysStringLen(empty), 0u);
    SysFreeString(empty);
    EXPECT_EQ(memory.Growth(), 0);
}

// ---- results of queries ----

TEST_F(ToVariantTest, OfAQuerysResult) {
    Host host;
    const auto variantOf = [&](const wchar_t* query) { return ToVariant(*host.Evaluate(query)); };
    EXPECT_EQ(variantOf(L"'abc'.Length() + 2 * 3"), "I4 9");
    EXPECT_EQ(variantOf(L"array(1, 'a', array(), null).Add(1 / 4)"), "ARRAY[I4 1, BSTR a, ARRAY[], NULL, R8 0.25]");
    EXPECT_EQ(variantOf(L"{1 cm} * 3"), "BSTR 3 cm");
    EXPECT_EQ(variantOf(L"{1 cm} / {1 cm}"), "R8 1");
    EXPECT_EQ(variantOf(L"1 = 1"), "BOOL -1");
}

} // namespace
} // namespace OrvUQL::Tests
