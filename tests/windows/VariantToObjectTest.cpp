// From VARIANTs to values.

#include "windows/Automation.h"
#include "windows/Servers.h"
#include "windows/Values.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace OrvUQL::Tests {
namespace {

using namespace std::string_view_literals;

class VariantToObjectTest : public AutomationTest {};

// ---- each type ----

TEST_F(VariantToObjectTest, NothingIsNull) {
    EXPECT_EQ(FromVariant(Empty()), "null null");
    EXPECT_EQ(FromVariant(OfType(VT_NULL)), "null null");
}

TEST_F(VariantToObjectTest, Integers) {
    EXPECT_EQ(FromVariant(Integer(VT_I4, 7)), "int 7");
    EXPECT_EQ(FromVariant(Integer(VT_I4, -2147483647 - 1)), "int -2147483648");
    EXPECT_EQ(FromVariant(Integer(VT_INT, -7)), "int -7");
    EXPECT_EQ(FromVariant(Integer(VT_I2, -32768)), "int -32768");
    EXPECT_EQ(FromVariant(Integer(VT_I1, -128)), "int -128");
    EXPECT_EQ(FromVariant(Integer(VT_UI1, 255)), "int 255");
}

TEST_F(VariantToObjectTest, OnlyTheBytesOfATypeCount) {
    EXPECT_EQ(FromVariant(Integer(VT_I4, 0x1234567800000007)), "int 7");
    EXPECT_EQ(FromVariant(Integer(VT_I2, 0x12345678FFFF)), "int -1");
    EXPECT_EQ(FromVariant(Integer(VT_I1, 0x7FFFFF01)), "int 1");
    EXPECT_EQ(FromVariant(Integer(VT_UI1, 0x7FFFFF01)), "int 1");
    EXPECT_EQ(FromVariant(Integer(VT_UI4, 0x1234567800000007)), "int 7");
    EXPECT_EQ(FromVariant(Integer(VT_UINT, 0x1234567800000007)), "int 7");
    EXPECT_EQ(FromVariant(Integer(VT_BOOL, 0x7FFF0000)), "bool false");
}

TEST_F(VariantToObjectTest, UnsignedIntegersHaveToFit) {
    EXPECT_EQ(FromVariant(Integer(VT_UI4, 0x7FFFFFFF)), "int 2147483647");
    EXPECT_EQ(FromVariant(Integer(VT_UI4, 0x80000000)), Unsupported(19));
    EXPECT_EQ(FromVariant(Integer(VT_UI4, 4294967295)), Unsupported(19));
    EXPECT_EQ(FromVariant(Integer(VT_UINT, 0x7FFFFFFF)), "int 2147483647");
    EXPECT_EQ(FromVariant(Integer(VT_UINT, 0x80000000)), Unsupported(23));
    EXPECT_EQ(FromVariant(Integer(VT_UI8, 0x7FFFFFFF)), "int 2147483647");
    EXPECT_EQ(FromVariant(Integer(VT_UI8, 0x80000000)), Unsupported(21));
    EXPECT_EQ(FromVariant(Integer(VT_UI8, 0x100000007)), Unsupported(21));
    EXPECT_EQ(FromVariant(Integer(VT_UI8, -1)), Unsupported(21));
}

TEST_F(VariantToObjectTest, Doubles) {
    EXPECT_EQ(FromVariant(Double(0.1)), "double 0.1");
    EXPECT_EQ(FromVariant(Double(7.0)), "double 7");
    EXPECT_EQ(FromVariant(Single(0.5F)), "double 0.5");
    EXPECT_EQ(FromVariant(Single(0.1F)), "double 0.10000000149011612");
    EXPECT_EQ(FromVariant(Single(-1.0F / 0.0F)), "double -inf");
}

TEST_F(VariantToObjectTest, AnyBoolButZeroIsTrue) {
    EXPECT_EQ(FromVariant(Bool(VARIANT_TRUE)), "bool true");
    EXPECT_EQ(FromVariant(Bool(VARIANT_FALSE)), "bool false");
    EXPECT_EQ(FromVariant(Bool(1)), "bool true");
    EXPECT_EQ(FromVariant(Bool(0x100)), "bool true");
}

TEST_F(VariantToObjectTest, Texts) {
    EXPECT_EQ(FromVariant(Text(L"abc")), "string abc");
    EXPECT_EQ(FromVariant(Text(L"")), "string ");
    EXPECT_EQ(FromVariant(Text(L"a\0b"sv)), std::string("string a\0b", 10));
    EXPECT_EQ(FromVariant(Text(L"\xD834\xDD1E")), "string \xF0\x9D\x84\x9E");
}

TEST_F(VariantToObjectTest, ATextOfOddBytesLosesTheLast) {
    Variant text;
    text->bstrVal = SysAllocStringByteLen("a\0b", 3);
    text->vt = VT_BSTR;
    EXPECT_EQ(FromVariant(text), "string a");
}

TEST_F(VariantToObjectTest, ANullTextIsNull) { EXPECT_EQ(FromVariant(Integer(VT_BSTR, 0)), "null null"); }

TEST_F(VariantToObjectTest, ObjectsAreWrapped) {
    Server* const server = new Server();
    {
        Variant in = Object(server);
        const Ref<IObject> value(ObjectBase::VariantToObject(*in, nullptr));
        ASSERT_TRUE(value);
        EXPECT_EQ(value->GetType(), IObject::TypeCom);
        EXPECT_EQ(dynamic_cast<const ObjectCom&>(*value).GetDispatch(), server);
        EXPECT_EQ(server->References(), 3u) << "ours, the VARIANT's and the value's";
        VariantClear(in.Get());
        EXPECT_EQ(server->References(), 2u);
    }
    EXPECT_EQ(server->References(), 1u);
    server->Release();
}

TEST_F(VariantToObjectTest, ANullObjectIsNull) { EXPECT_EQ(FromVariant(Object(nullptr)), "null null"); }

TEST_F(VariantToObjectTest, OtherTypesAreRefused) {
    EXPECT_EQ(FromVariant(OfType(VT_CY)), Unsupported(6));
    EXPECT_EQ(FromVariant(OfType(VT_DATE)), Unsupported(7));
    EXPECT_EQ(FromVariant(OfType(VT_ERROR)), Unsupported(10));
    EXPECT_EQ(FromVariant(OfType(VT_VARIANT)), Unsupported(12));
    EXPECT_EQ(FromVariant(OfType(VT_UNKNOWN)), Unsupported(13));
    EXPECT_EQ(FromVariant(OfType(VT_DECIMAL)), Unsupported(14));
    EXPECT_EQ(FromVariant(OfType(15)), Unsupported(15));
}

TEST_F(VariantToObjectTest, TwoIntegersAreRefusedWhoseNeighboursAreNot) {
    EXPECT_EQ(FromVariant(Integer(VT_UI2, 1)), Unsupported(18));
    EXPECT_EQ(FromVariant(Integer(VT_I8, 1)), Unsupported(20));
}

TEST_F(VariantToObjectTest, TypesAboveTheIntegersAreRefused) {
    for (VARTYPE type = 24; type < 80; ++type) {
        EXPECT_EQ(FromVariant(Integer(type, 1)), Unsupported(type));
    }
}

TEST_F(VariantToObjectTest, FlagsWithoutAMeaningAreRefused) {
    EXPECT_EQ(FromVariant(Integer(VT_I4 | VT_VECTOR, 1)), Unsupported(4099));
    EXPECT_EQ(FromVariant(Integer(VT_I4 | VT_RESERVED, 1)), Unsupported(32771));
}

// ---- beside the system's own conversion ----

TEST_F(VariantToObjectTest, NumbersAreWhatTheSystemMakesOfThem) {
    const auto bySystem = [](const Variant& in, VARTYPE type) {
        Variant changed;
        EXPECT_EQ(VariantChangeType(changed.Get(), const_cast<VARIANT*>(&*in), 0, type), S_OK);
        return type == VT_I4 ? "int " + std::to_string(changed->lVal)
                             : "double " + Utf8(OrvUtils::String::ToStringW(changed->dblVal));
    };
    std::uint64_t bits = 0x9E3779B97F4A7C15;
    for (int time = 0; time < 2000; ++time) {
        bits = bits * 6364136223846793005 + 1442695040888963407;
        std::int64_t number = static_cast<std::int64_t>(bits >> 16);
        for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_I4, VT_INT}) {
            const Variant in = Integer(type, number);
            EXPECT_EQ(FromVariant(in), bySystem(in, VT_I4));
            EXPECT_EQ(FromVariant(Reference(type, &number)), bySystem(in, VT_I4));
        }
        number &= 0x7FFFFFFF;
        for (const VARTYPE type : {VT_UI4, VT_UINT, VT_UI8}) {
            const Variant in = Integer(type, number);
            EXPECT_EQ(FromVariant(in), bySystem(in, VT_I4));
        }
        const Variant single = Single(static_cast<float>(static_cast<std::int64_t>(bits)) / 3.0F);
        EXPECT_EQ(FromVariant(single), bySystem(single, VT_R8));
    }
}

// ---- references ----

TEST_F(VariantToObjectTest, ReferencesAreFollowed) {
    signed char byte = -5;
    EXPECT_EQ(FromVariant(Reference(VT_I1, &byte)), "int -5");
    unsigned char octet = 250;
    EXPECT_EQ(FromVariant(Reference(VT_UI1, &octet)), "int 250");
    short word = -300;
    EXPECT_EQ(FromVariant(Reference(VT_I2, &word)), "int -300");
    long number = 7;
    EXPECT_EQ(FromVariant(Reference(VT_I4, &number)), "int 7");
    EXPECT_EQ(FromVariant(Reference(VT_INT, &number)), "int 7");
    EXPECT_EQ(FromVariant(Reference(VT_UI4, &number)), "int 7");
    EXPECT_EQ(FromVariant(Reference(VT_UINT, &number)), "int 7");
    std::uint64_t wide = 7;
    EXPECT_EQ(FromVariant(Reference(VT_UI8, &wide)), "int 7");
    float single = 0.5F;
    EXPECT_EQ(FromVariant(Reference(VT_R4, &single)), "double 0.5");
    double twice = 0.25;
    EXPECT_EQ(FromVariant(Reference(VT_R8, &twice)), "double 0.25");
    VARIANT_BOOL truth = 2;
    EXPECT_EQ(FromVariant(Reference(VT_BOOL, &truth)), "bool true");
}

TEST_F(VariantToObjectTest, ReferencesToTextsAndObjects) {
    const Variant text = Text(L"a\0b"sv);
    BSTR kept = (*text).bstrVal;
    EXPECT_EQ(FromVariant(Reference(VT_BSTR, &kept)), std::string("string a\0b", 10));
    BSTR none = nullptr;
    EXPECT_EQ(FromVariant(Reference(VT_BSTR, &none)), "null null");
    IDispatch* server = new Server();
    EXPECT_EQ(FromVariant(Reference(VT_DISPATCH, &server)), "COM ");
    EXPECT_EQ(server->Release(), 0u) << "references were taken or given back";
    server = nullptr;
    EXPECT_EQ(FromVariant(Reference(VT_DISPATCH, &server)), "null null");
}

TEST_F(VariantToObjectTest, ReferencesToWhatIsRefused) {
    std::uint64_t place[2] = {1, 0};
    EXPECT_EQ(FromVariant(Reference(VT_UI2, place)), Unsupported(16402));
    EXPECT_EQ(FromVariant(Reference(VT_I8, place)), Unsupported(16404));
    EXPECT_EQ(FromVariant(Reference(VT_DATE, place)), Unsupported(16391));
    EXPECT_EQ(FromVariant(Reference(VT_DECIMAL, place)), Unsupported(16398));
    std::uint32_t large = 0x80000000;
    EXPECT_EQ(FromVariant(Reference(VT_UI4, &large)), Unsupported(16403));
    std::uint64_t larger = 0x100000000;
    EXPECT_EQ(FromVariant(Reference(VT_UI8, &larger)), Unsupported(16405));
    Variant inner = Integer(VT_I4, 7);
    EXPECT_EQ(FromVariant(Reference(VT_VARIANT, inner.Get())), Unsupported(16396));
}

TEST_F(VariantToObjectTest, ReferencesToNowhere) {
    for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_I4, VT_R8, VT_BSTR, VT_DISPATCH, VT_BOOL, VT_VARIANT}) {
        EXPECT_EQ(FromVariant(Reference(type, nullptr)), Unsupported(type + 16384));
    }
    long number = 7;
    EXPECT_EQ(FromVariant(Reference(VT_EMPTY, &number)), Unsupported(16384));
    EXPECT_EQ(FromVariant(Reference(VT_NULL, &number)), Unsupported(16385));
}

// ---- there and back ----

TEST_F(VariantToObjectTest, WhatAValueBecameBecomesTheValue) {
    const auto thereAndBack = [](const IObject& value) {
        Variant variant;
        EXPECT_EQ(value.ToVariant(*variant.Get(), nullptr), S_OK);
        return FromVariant(variant);
    };
    EXPECT_EQ(thereAndBack(*Make<ObjectNull>()), "null null");
    EXPECT_EQ(thereAndBack(*Make<ObjectBool>(true)), "bool true");
    EXPECT_EQ(thereAndBack(*Make<ObjectInt>(-7)), "int -7");
    EXPECT_EQ(thereAndBack(*Make<ObjectDouble>(7.0)), "double 7");
    EXPECT_EQ(thereAndBack(*Make<ObjectString>(OrvStringT(L"a\0b"sv))), std::string("string a\0b", 10));
    EXPECT_EQ(thereAndBack(*Make<ObjectString>(L"")), "string ");
    EXPECT_EQ(thereAndBack(*Make<ObjectArray>(ObjectList())), "array ()");
    Server* const server = new Server();
    EXPECT_EQ(thereAndBack(*Make<ObjectArray>(ObjectList{new ObjectInt(1), new ObjectArray(ObjectList()),
                                                         new ObjectCom(server), new ObjectString(L"x")})),
              "array (1,(),,x)");
    EXPECT_EQ(server->Release(), 0u);
}

} // namespace
} // namespace OrvUQL::Tests
