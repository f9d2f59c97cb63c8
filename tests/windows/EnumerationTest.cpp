// Collections of automation objects as arrays.

#include "support/Host.h"
#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// A collection's _NewEnum, with the answer given.
class EnumerationTest : public AutomationTest {
protected:
    /// What `ToArray()` gives when _NewEnum answers so.
    std::string ToArray(HRESULT result, Variant answer) {
        Server* const server = new Server(nullptr, [&](const ServerCall& call, VARIANT* out) {
            EXPECT_EQ(call.id, DISPID_NEWENUM);
            EXPECT_EQ(call.id, -4);
            EXPECT_EQ(call.flags, DISPATCH_METHOD | DISPATCH_PROPERTYGET);
            EXPECT_EQ(call.locale, 0x800u);
            EXPECT_TRUE(call.isAnonymous);
            EXPECT_FALSE(call.hasPlaces);
            EXPECT_TRUE(call.arguments.empty());
            EXPECT_TRUE(call.named.empty());
            *out = answer.Detach();
            return result;
        });
        const Ref<ObjectCom> collection = Make<ObjectCom>(server);
        server->Release();
        ErrorSlot error;
        QueryEngine engine;
        const QueryElementList none;
        const Ref<IObject> value(collection->Invoke(&engine, L"ToArray", none, error.Slot()));
        EXPECT_EQ(server->calls.size(), 1u);
        if (value) {
            EXPECT_TRUE(error.IsEmpty()) << error.Message();
            return Describe(value.Get());
        }
        return error.IsEmpty() ? "!" : "! " + error.Message();
    }

    /// The same for an enumerator over these.
    std::string ToArrayOf(std::initializer_list<Variant*> items, HRESULT end = S_FALSE) {
        std::vector<Variant> list;
        for (Variant* const item : items) {
            list.push_back(std::move(*item));
        }
        return ToArray(S_OK, Unknown(new Enumerator(std::move(list), end)));
    }

    /// Takes the object over.
    static Variant Unknown(IUnknown* object) {
        Variant made;
        made->punkVal = object;
        made->vt = VT_UNKNOWN;
        return made;
    }

    static std::string Failure(const char* code) {
        return std::string("! Failed to invoke the _NewEnum method of the object 'COM'. "
                           "COM method returned error code ") +
               code;
    }
};

TEST_F(EnumerationTest, ThreeTextsInTheirOrder) {
    const ComMemory memory;
    Variant first = Text(L"c");
    Variant second = Text(L"a");
    Variant third = Text(L"b");
    EXPECT_EQ(ToArrayOf({&first, &second, &third}), "array (c,a,b)");
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(EnumerationTest, Nothing) { EXPECT_EQ(ToArrayOf({}), "array ()"); }

TEST_F(EnumerationTest, AnythingAmongTheItems) {
    Server* const server = new Server();
    Variant none = Empty();
    Variant object = Object(server);
    Variant number = Integer(VT_I4, 7);
    Variant array = ArrayOf({&number});
    EXPECT_EQ(ToArrayOf({&none, &object, &array}), "array (null,,(7))");
    EXPECT_EQ(server->Release(), 0u);
}

TEST_F(EnumerationTest, AnySuccessButTheFirstIsTheEnd) {
    Variant number = Integer(VT_I4, 7);
    EXPECT_EQ(ToArrayOf({&number}, static_cast<HRESULT>(2)), "array (7)");
}

TEST_F(EnumerationTest, TheEnumeratorByReference) {
    IUnknown* enumerator = new Enumerator({});
    EXPECT_EQ(ToArray(S_OK, Reference(VT_UNKNOWN, &enumerator)), "array ()");
    EXPECT_EQ(enumerator->Release(), 0u) << "the reference stays the server's";
}

TEST_F(EnumerationTest, AManyOfThem) {
    std::vector<Variant> items;
    for (int index = 0; index < 5000; ++index) {
        items.push_back(Integer(VT_I4, index));
    }
    EXPECT_EQ(ToArray(S_OK, Unknown(new Enumerator(std::move(items)))).substr(0, 14), "array (0,1,2,3");
}

// ---- failures, step by step ----

TEST_F(EnumerationTest, NoCollection) {
    EXPECT_EQ(ToArray(DISP_E_MEMBERNOTFOUND, Empty()), Failure("80020003"));
    EXPECT_EQ(ToArray(E_NOTIMPL, Empty()), Failure("80004001"));
}

TEST_F(EnumerationTest, AnAnswerThatIsNoObject) {
    EXPECT_EQ(ToArray(S_OK, Empty()), Failure("80004005"));
    EXPECT_EQ(ToArray(S_OK, Integer(VT_I4, 7)), Failure("80004005"));
    const ComMemory memory;
    EXPECT_EQ(ToArray(S_OK, Text(L"x")), Failure("80004005"));
    EXPECT_EQ(memory.Growth(), 0);
    EXPECT_EQ(ToArray(S_OK, Unknown(nullptr)), Failure("80004005"));
    IUnknown* none = nullptr;
    EXPECT_EQ(ToArray(S_OK, Reference(VT_UNKNOWN, &none)), Failure("80004005"));
    EXPECT_EQ(ToArray(S_OK, Reference(VT_UNKNOWN, nullptr)), Failure("80004005"));
}

TEST_F(EnumerationTest, AnObjectOfAutomationIsNotTaken) {
    // Only the plain interface is looked for, though this one could be asked for an enumerator as well.
    Server* const server = new Server();
    EXPECT_EQ(ToArray(S_OK, Object(server)), Failure("80004005"));
    EXPECT_EQ(server->Release(), 0u);
}

TEST_F(EnumerationTest, AnObjectThatDoesNotEnumerate) {
    EXPECT_EQ(ToArray(S_OK, Unknown(new Tests::Nothing())), Failure("80004002"));
}

TEST_F(EnumerationTest, AnEnumeratorThatFails) {
    EXPECT_EQ(ToArrayOf({}, E_UNEXPECTED), Failure("8000FFFF"));
    const ComMemory memory;
    Variant first = Text(L"a");
    Variant second = Text(L"b");
    EXPECT_EQ(ToArrayOf({&first, &second}, RPC_E_DISCONNECTED), Failure("80010108"));
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(EnumerationTest, AnItemThatIsRefused) {
    const ComMemory memory;
    Server* const server = new Server();
    for (int place = 0; place < 3; ++place) {
        Variant items[] = {Text(L"a"), Object(server), Text(L"c")};
        items[place] = Integer(VT_I8, 1);
        EXPECT_EQ(ToArrayOf({&items[0], &items[1], &items[2]}),
                  "! Unable to convert unsupported VARIANT data type: 20");
    }
    EXPECT_EQ(server->Release(), 0u);
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(EnumerationTest, TheObjectIsNamedByItsType) {
    const ComRef<ITypeInfo> type = MakeType(L"Shelf", {{L"Count", 1}});
    Server* const server = new Server(type.Get());
    const Ref<ObjectCom> value = Make<ObjectCom>(server);
    server->Release();
    EXPECT_EQ(
        Call(*value, L"ToArray"),
        "! Failed to invoke the _NewEnum method of the object 'COM:Shelf'. COM method returned error code 80020003");
}

TEST_F(EnumerationTest, TakesNoArguments) {
    const Ref<ObjectCom> value = Make<ObjectCom>(nullptr);
    QueryElementList argument{new ElementObject(1, 0)};
    EXPECT_EQ(Call(*value, L"ToArray", std::move(argument)),
              "! Too many parameters specified for method ToArray. It expects only 0");
}

} // namespace
} // namespace OrvUQL::Tests
