// An automation object as a value: what it holds, what it is called, what it converts to.

#include "support/Host.h"
#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

class ObjectComTest : public AutomationTest {};

// ---- references ----

TEST_F(ObjectComTest, HoldsTheObjectAndItsType) {
    FakeType* const type = new FakeType();
    Server* const server = new Server(type);
    {
        const Ref<ObjectCom> value = Make<ObjectCom>(server);
        EXPECT_EQ(value->GetDispatch(), server);
        EXPECT_EQ(server->References(), 2u);
        EXPECT_EQ(type->References(), 3u) << "ours, the server's and the value's";
        EXPECT_EQ(server->typeQueries, 1);
        EXPECT_EQ(server->typeLocale, 0x800u);
    }
    EXPECT_EQ(server->References(), 1u);
    EXPECT_EQ(type->References(), 2u);
    EXPECT_EQ(server->typeQueries, 1);
    server->Release();
    type->Release();
}

TEST_F(ObjectComTest, LivesWithoutAType) {
    // The server leaves rubbish where the type would be.
    Server* const server = new Server();
    Make<ObjectCom>(server).Reset();
    EXPECT_EQ(server->References(), 1u);
    server->Release();
}

TEST_F(ObjectComTest, OutlivesWhoeverElseHeldTheObject) {
    Server* const server = new Server();
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    EXPECT_EQ(server->Release(), 1u);
    EXPECT_EQ(liveServers, 1);
}

// ---- what it is ----

TEST_F(ObjectComTest, IsOfTypeCom) {
    Server* const server = new Server();
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    server->Release();
    EXPECT_EQ(value->GetType(), IObject::TypeCom);
    EXPECT_EQ(value->GetTypeName(), L"COM");
    EXPECT_FALSE(value->IsStaticInstance());
    EXPECT_FALSE(value->IsNull());
    EXPECT_FALSE(value->IsUnit());
    EXPECT_EQ(value->GetUnitInterface(), nullptr);
}

TEST_F(ObjectComTest, IsNamedAsItsTypeIs) {
    const ComRef<ITypeInfo> type = MakeType(L"Gadget", {});
    Server* const server = new Server(type.Get());
    EXPECT_EQ(Make<ObjectCom>(server)->GetTypeName(), L"COM:Gadget");
    server->Release();
}

class FakeTypeTest : public ObjectComTest {
protected:
    void SetUp() override {
        ObjectComTest::SetUp();
        type = new FakeType();
        Server* const server = new Server(type, [](const ServerCall&, VARIANT* result) {
            *result = Integer(VT_I4, 7).Detach();
            return S_OK;
        });
        value = Make<ObjectCom>(server);
        server->Release();
    }
    void TearDown() override {
        EXPECT_EQ(type->descriptionsOut, 0);
        EXPECT_EQ(type->References(), 3u) << "ours, the server's and the value's";
        value.Reset();
        EXPECT_EQ(type->Release(), 0u);
        ObjectComTest::TearDown();
    }

    FakeType* type = nullptr;
    Ref<ObjectCom> value;
};

TEST_F(FakeTypeTest, IsNamedByItsPlaceInTheLibrary) {
    const ComMemory memory;
    EXPECT_EQ(value->GetTypeName(), L"COM:Fake");
    type->typeName = L"Other";
    EXPECT_EQ(value->GetTypeName(), L"COM:Other");
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(FakeTypeTest, ATypeWithoutANameIsCom) {
    type->typeName = nullptr;
    EXPECT_EQ(value->GetTypeName(), L"COM");
    const ComMemory memory;
    type->typeName = L"";
    EXPECT_EQ(value->GetTypeName(), L"COM");
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(FakeTypeTest, ALibraryThatFailsIsCom) {
    type->nameResult = E_FAIL;
    EXPECT_EQ(value->GetTypeName(), L"COM");
    type->nameResult = S_OK;
    type->libraryResult = E_FAIL;
    EXPECT_EQ(value->GetTypeName(), L"COM");
}

TEST_F(ObjectComTest, HasAnEmptyText) {
    Server* const server = new Server();
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    server->Release();
    EXPECT_EQ(ToText(*value), "");
    EXPECT_EQ(ToBool(*value), "! Cannot convert string '' to Boolean");
    EXPECT_EQ(ToInt(*value), "! Cannot convert string '' to Integer");
    EXPECT_EQ(ToDouble(*value), "! Cannot convert string '' to Double");
    EXPECT_EQ(ToNumeric(*value), "! Cannot convert string '' to a number");
    EXPECT_EQ(ChangeType(*value, IObject::TypeString), "string ");
    EXPECT_EQ(ChangeType(*value, IObject::TypeInt), "! Cannot convert string '' to Integer");
}

TEST_F(ObjectComTest, HasTheMethodsOfEveryValue) {
    const ComRef<ITypeInfo> type = MakeType(L"Gadget", {{L"IsNull", 1}, {L"TypeName", 2}, {L"ToArray", 3}});
    Server* const server = new Server(type.Get());
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    // Properties of the same names are hidden.
    EXPECT_EQ(Call(*value, L"ToString"), "string ");
    EXPECT_EQ(Call(*value, L"TypeName"), "string COM:Gadget");
    EXPECT_EQ(Call(*value, L"IsNull"), "bool false");
    EXPECT_EQ(Call(*value, L"IsNumeric"), "bool false");
    EXPECT_EQ(Call(*value, L"This"), "COM:Gadget ");
    EXPECT_TRUE(server->calls.empty());
    server->Release();
}

TEST_F(ObjectComTest, HelpStopsBeforeTheProperties) {
    Server* const server = new Server();
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    server->Release();
    EXPECT_EQ(Call(*value, L"help"), "string COM.ToBool()\rCOM.ToInt()\rCOM.ToDouble()\rCOM.ToString()\r"
                                     "COM.TypeName() {Static}\rCOM.This()\rCOM.IsNumeric()\rCOM.IsNull()\r"
                                     "COM.ToArray()");
}

// ---- to VARIANTs ----

TEST_F(ObjectComTest, IsHandedOverWithAReference) {
    Server* const server = new Server();
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    {
        Variant out;
        out->vt = VT_BSTR; // rubbish, not to be freed
        out->llVal = 1;
        ErrorSlot error;
        EXPECT_EQ(value->ToVariant(*out.Get(), error.Slot()), S_OK);
        EXPECT_TRUE(error.IsEmpty());
        EXPECT_EQ(out->vt, VT_DISPATCH);
        EXPECT_EQ(out->pdispVal, server);
        EXPECT_EQ(server->References(), 3u);
    }
    EXPECT_EQ(server->References(), 2u);
    server->Release();
}

// ---- nothing inside ----

TEST_F(ObjectComTest, OverNothing) {
    const Ref<ObjectCom> value = Make<ObjectCom>(nullptr);
    EXPECT_EQ(value->GetDispatch(), nullptr);
    EXPECT_EQ(value->GetTypeName(), L"COM");
    EXPECT_EQ(ToVariant(*value), "DISPATCH(null)");
    EXPECT_EQ(Call(*value, L"Count"), "! 'Count' is not a property of object 'COM'");
    EXPECT_EQ(Call(*value, L"ToArray"),
              "! Failed to invoke the _NewEnum method of the object 'COM'. COM method returned error code 80004003");
    Variant result;
    EXPECT_EQ(value->InvokeIDispatch(1, nullptr, 0, DISPATCH_METHOD, result.Get()), E_POINTER);
}

// ---- calls by a host ----

TEST_F(ObjectComTest, InvokesWhatAHostAsksFor) {
    Server* const server = new Server(nullptr, [](const ServerCall&, VARIANT* result) {
        *result = Text(L"done").Detach();
        return S_FALSE;
    });
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    VARIANT arguments[] = {*Integer(VT_I4, 1), *Integer(VT_I4, 2)};
    constexpr WORD either = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    for (const WORD flags : {WORD{DISPATCH_METHOD}, WORD{DISPATCH_PROPERTYGET}, either}) {
        Variant result;
        result->vt = VT_BSTR; // rubbish, not to be freed
        result->llVal = 1;
        EXPECT_EQ(value->InvokeIDispatch(42, arguments, 2, flags, result.Get()), S_FALSE);
        EXPECT_EQ(Describe(*result), "BSTR done");
        const ServerCall& call = server->calls.back();
        EXPECT_EQ(call.id, 42);
        EXPECT_EQ(call.flags, flags);
        EXPECT_EQ(call.locale, 0x800u);
        EXPECT_TRUE(call.isAnonymous);
        EXPECT_FALSE(call.hasPlaces);
        EXPECT_EQ(call.arguments, (std::vector<std::string>{"I4 1", "I4 2"}));
        EXPECT_TRUE(call.named.empty());
    }
    server->Release();
}

TEST_F(ObjectComTest, NamesTheValueThatAPropertyIsSetTo) {
    Server* const server = new Server(nullptr, [](const ServerCall&, VARIANT* result) {
        EXPECT_EQ(result, nullptr);
        return DISP_E_TYPEMISMATCH;
    });
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    VARIANT arguments[] = {*Integer(VT_I4, 1)};
    for (const WORD flags : {WORD{DISPATCH_PROPERTYPUT}, WORD{DISPATCH_PROPERTYPUTREF}}) {
        EXPECT_EQ(value->InvokeIDispatch(42, arguments, 1, flags, nullptr), DISP_E_TYPEMISMATCH);
        EXPECT_EQ(server->calls.back().named, std::vector<DISPID>{-3});
        EXPECT_EQ(server->calls.back().arguments, std::vector<std::string>{"I4 1"});
    }
    // Both at once is no plain assignment.
    value->InvokeIDispatch(42, arguments, 1, DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF, nullptr);
    EXPECT_TRUE(server->calls.back().named.empty());
    server->Release();
}

// ---- names that stand for something else ----

TEST_F(FakeTypeTest, APropertyIsBoundByItsName) {
    type->found = DESCKIND_FUNCDESC;
    type->function.memid = 5;
    EXPECT_EQ(Call(*value, L"Count"), "int 7");
    EXPECT_EQ(type->boundName, L"Count");
    EXPECT_EQ(type->boundFlags, INVOKE_PROPERTYGET);
    EXPECT_EQ(type->boundHash, LHashValOfNameSys(SYS_WIN32, LOCALE_SYSTEM_DEFAULT, L"Count"));
}

TEST_F(FakeTypeTest, AFunctionOfAnotherKindIsNoProperty) {
    type->found = DESCKIND_FUNCDESC;
    for (const INVOKEKIND kind : {INVOKE_FUNC, INVOKE_PROPERTYPUT, INVOKE_PROPERTYPUTREF}) {
        type->invokeKind = kind;
        EXPECT_EQ(Call(*value, L"Count"), "! 'Count' is not a property of object 'COM:Fake'");
    }
}

TEST_F(FakeTypeTest, WhatIsNoFunctionIsNoProperty) {
    for (const DESCKIND kind : {DESCKIND_NONE, DESCKIND_VARDESC, DESCKIND_TYPECOMP, DESCKIND_IMPLICITAPPOBJ}) {
        type->found = kind;
        EXPECT_EQ(Call(*value, L"Count"), "! 'Count' is not a property of object 'COM:Fake'") << kind;
        EXPECT_EQ(type->descriptionsOut, 0) << kind;
    }
}

TEST_F(FakeTypeTest, ATypeThatFailsHasNoProperties) {
    type->found = DESCKIND_FUNCDESC;
    type->bindResult = TYPE_E_ELEMENTNOTFOUND;
    EXPECT_EQ(Call(*value, L"Count"), "! 'Count' is not a property of object 'COM:Fake'");
    type->bindResult = S_OK;
    type->typeCompResult = E_FAIL;
    EXPECT_EQ(Call(*value, L"Count"), "! 'Count' is not a property of object 'COM:Fake'");
}

} // namespace
} // namespace OrvUQL::Tests
