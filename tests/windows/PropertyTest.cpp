// Properties of automation objects, read by name.

#include "support/Host.h"
#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using Texts = std::vector<std::string>;

/// An engine over a server whose type has a bit of everything.
class PropertyTest : public AutomationTest {
protected:
    void SetUp() override {
        AutomationTest::SetUp();
        const ComRef<ITypeInfo> type = MakeType(L"Shelf",
                                                {
                                                    {L"Count", 1},
                                                    {L"Item", 0, INVOKE_PROPERTYGET, 1},
                                                    {L"Cell", 2, INVOKE_PROPERTYGET, 3},
                                                    {L"Remove", 3, INVOKE_FUNC},
                                                    {L"Colour", 4, INVOKE_PROPERTYPUT, 1},
                                                    {L"Width", 5, INVOKE_PROPERTYGET},
                                                    {L"Width", 5, INVOKE_PROPERTYPUT, 1},
                                                },
                                                {{L"Depth", 6}});
        server = new Server(type.Get(), [this](const ServerCall&, VARIANT* result) {
            *result = answer.Detach();
            return answerResult;
        });
        const Ref<ObjectCom> value = Make<ObjectCom>(server);
        host.engine.SetPropertySource(value.Get());
    }
    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        EXPECT_EQ(server->Release(), 0u);
        AutomationTest::TearDown();
    }

    /// What the query gives when the server answers once; afterwards it has nothing more to say.
    std::string Run(const wchar_t* query, Variant serverAnswer = Integer(VT_I4, 7)) {
        ErrorSlot error;
        const Ref<IQueryElement> tree = host.Parse(query);
        answer = std::move(serverAnswer);
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
        if (value) {
            EXPECT_TRUE(error.IsEmpty()) << error.Message();
            return Describe(value.Get());
        }
        return error.IsEmpty() ? "!" : "! " + error.Message();
    }

    Server* server = nullptr;
    Variant answer;
    HRESULT answerResult = S_OK;
    Host host;
};

// ---- names ----

TEST_F(PropertyTest, IsAskedForByItsNumber) {
    EXPECT_EQ(Run(L"@Count"), "int 7");
    ASSERT_EQ(server->calls.size(), 1u);
    const ServerCall& call = server->calls[0];
    EXPECT_EQ(call.id, 1);
    EXPECT_EQ(call.flags, DISPATCH_PROPERTYGET);
    EXPECT_EQ(call.locale, 0x800u);
    EXPECT_TRUE(call.isAnonymous);
    EXPECT_FALSE(call.hasPlaces);
    EXPECT_TRUE(call.arguments.empty());
    EXPECT_TRUE(call.named.empty());
}

TEST_F(PropertyTest, LetterCaseDoesNotMatter) {
    EXPECT_EQ(Run(L"@count"), "int 7");
    EXPECT_EQ(Run(L"@COUNT()"), "int 7");
}

TEST_F(PropertyTest, AnUnknownNameIsNone) {
    EXPECT_EQ(Run(L"@Nothing"), "! 'Nothing' is not a property of object 'COM:Shelf'");
    EXPECT_EQ(Run(L"@nothing(1, 2)"), "! 'nothing' is not a property of object 'COM:Shelf'");
    EXPECT_TRUE(server->calls.empty());
}

TEST_F(PropertyTest, AMethodIsNone) {
    EXPECT_EQ(Run(L"@Remove"), "! 'Remove' is not a property of object 'COM:Shelf'");
    EXPECT_TRUE(server->calls.empty());
}

TEST_F(PropertyTest, APropertyThatCanOnlyBeSetIsNone) {
    EXPECT_EQ(Run(L"@Colour"), "! 'Colour' is not a property of object 'COM:Shelf'");
    EXPECT_TRUE(server->calls.empty());
}

TEST_F(PropertyTest, APropertyThatCanAlsoBeSetIsRead) {
    EXPECT_EQ(Run(L"@Width"), "int 7");
    EXPECT_EQ(server->calls[0].flags, DISPATCH_PROPERTYGET);
}

TEST_F(PropertyTest, AVariableIsNone) {
    EXPECT_EQ(Run(L"@Depth"), "! 'Depth' is not a property of object 'COM:Shelf'");
}

TEST_F(PropertyTest, WithoutATypeThereAreNone) {
    Server* const bare = new Server(nullptr, [](const ServerCall&, VARIANT*) { return S_OK; });
    const Ref<ObjectCom> value = Make<ObjectCom>(bare);
    EXPECT_EQ(Call(*value, L"Count"), "! 'Count' is not a property of object 'COM'");
    EXPECT_TRUE(bare->calls.empty());
    bare->Release();
}

// ---- arguments ----

TEST_F(PropertyTest, AnArgument) {
    EXPECT_EQ(Run(L"@Item('a')", Text(L"first")), "string first");
    EXPECT_EQ(server->calls[0].id, 0);
    EXPECT_EQ(server->calls[0].arguments, Texts{"BSTR a"});
}

TEST_F(PropertyTest, AServerSeesSeveralArgumentsInReverse) {
    // A server takes the last of what it is given for the first argument. Deliberately kept.
    EXPECT_EQ(Run(L"@Cell(1, 'two', 3.5)"), "int 7");
    EXPECT_EQ(server->calls[0].arguments, (Texts{"I4 1", "BSTR two", "R8 3.5"}));
}

TEST_F(PropertyTest, AnOmittedArgumentIsMarked) {
    Run(L"@Cell(, 3)");
    EXPECT_EQ(server->calls.back().arguments, (Texts{"ERROR 80020004", "I4 3"}));
}

TEST_F(PropertyTest, AHostMayOmitAnyArgument) {
    const QueryElementList arguments{new ElementObject(1, 0), nullptr, new ElementObject(3, 0), nullptr};
    answer = Integer(VT_I4, 7);
    const Ref<IObject> value(host.engine.GetPropertySource()->Invoke(&host.engine, L"Cell", arguments, nullptr));
    EXPECT_EQ(Describe(value.Get()), "int 7");
    EXPECT_EQ(server->calls.back().arguments, (Texts{"I4 1", "ERROR 80020004", "I4 3", "ERROR 80020004"}));
}

TEST_F(PropertyTest, ArgumentsOfEveryType) {
    const ComMemory memory;
    Run(L"@Cell(null, true, 'x', 1 / 4, {2 cm}, {2 cm} / {1 cm}, array(1, array('y')))");
    EXPECT_EQ(server->calls[0].arguments,
              (Texts{"NULL", "BOOL -1", "BSTR x", "R8 0.25", "BSTR 2 cm", "R8 2", "ARRAY[I4 1, ARRAY[BSTR y]]"}));
    EXPECT_EQ(memory.Growth(), 0) << "arguments are freed";
}

TEST_F(PropertyTest, AnObjectAsAnArgument) {
    const ULONG before = server->References();
    Run(L"@Item(@This())");
    EXPECT_EQ(server->calls[0].arguments, Texts{"DISPATCH"});
    EXPECT_EQ(server->References(), before);
}

TEST_F(PropertyTest, AnArgumentThatCannotBeConverted) {
    const ComMemory memory;
    host.engine.SetVariable(Make<CountedObject>().Get());
    EXPECT_EQ(Run(L"@Cell('text', $This(), 3)"), "! Unable to convert object 'counted' to 'VARIANT' data type");
    host.engine.SetVariable(Make<CountedObject>("", OrvStringT(), IObject::TypeCom).Get());
    // A conversion that says nothing leaves it to the property.
    EXPECT_EQ(Run(L"@Cell('text', $This(), 3)"), "! 'Cell' is not a property of object 'COM:Shelf'");
    EXPECT_EQ(Run(L"@Cell(array('text', $This()))"), "! 'Cell' is not a property of object 'COM:Shelf'");
    host.engine.SetVariable(nullptr);
    EXPECT_TRUE(server->calls.empty());
    EXPECT_EQ(memory.Growth(), 0) << "what was converted is freed";
}

TEST_F(PropertyTest, AnArgumentThatCannotBeEvaluated) {
    EXPECT_EQ(Run(L"@Item(1 / 0)"), "! Division By Zero");
    EXPECT_TRUE(server->calls.empty());
}

TEST_F(PropertyTest, ErrorsMayBeUnwanted) {
    const Ref<IObject> source(host.engine.GetPropertySource());
    source->AddRef(); // borrowed above
    const QueryElementList none;
    EXPECT_EQ(source->Invoke(&host.engine, L"Nothing", none, nullptr), nullptr);
    answerResult = E_FAIL;
    EXPECT_EQ(source->Invoke(&host.engine, L"Count", none, nullptr), nullptr);
    const QueryElementList argument{new ElementObject(new CountedObject(), 0, false)};
    EXPECT_EQ(source->Invoke(&host.engine, L"Item", argument, nullptr), nullptr);
}

// ---- results ----

TEST_F(PropertyTest, ResultsBecomeValues) {
    EXPECT_EQ(Run(L"@Count", Empty()), "null null");
    EXPECT_EQ(Run(L"@Count", Bool(VARIANT_TRUE)), "bool true");
    EXPECT_EQ(Run(L"@Count", Double(0.5)), "double 0.5");
    const ComMemory memory;
    EXPECT_EQ(Run(L"@Count", Text(L"x")), "string x");
    Variant text = Text(L"y");
    EXPECT_EQ(Run(L"@Count", ArrayOf({&text})), "array (y)");
    EXPECT_EQ(memory.Growth(), 0) << "results are freed";
}

TEST_F(PropertyTest, AResultMayBeAnotherObject) {
    const ComRef<ITypeInfo> type = MakeType(L"Box", {{L"Label", 9}});
    Server* const box = new Server(type.Get(), [](const ServerCall& call, VARIANT* result) {
        EXPECT_EQ(call.id, 9);
        *result = Text(L"fragile").Detach();
        return S_OK;
    });
    EXPECT_EQ(Run(L"@Item(1).Label", Object(box)), "string fragile");
    EXPECT_EQ(Run(L"@Item(1).Label.Length() * 2", Object(box)), "int 14");
    EXPECT_EQ(Run(L"@Item(1)[.Label + '!']", Object(box)), "string fragile!");
    EXPECT_EQ(Run(L"@Item(1).Size", Object(box)), "! 'Size' is not a property of object 'COM:Box'");
    EXPECT_EQ(Run(L"@Item(1).Label", Empty()), "null null");
    EXPECT_EQ(box->Release(), 0u);
}

TEST_F(PropertyTest, AResultThatIsRefused) {
    EXPECT_EQ(Run(L"@Count", Integer(VT_I8, 1)), "! Unable to convert unsupported VARIANT data type: 20");
    EXPECT_EQ(Run(L"@Count", Integer(VT_DATE, 1)), "! Unable to convert unsupported VARIANT data type: 7");
}

TEST_F(PropertyTest, AFailingServer) {
    answerResult = DISP_E_BADPARAMCOUNT;
    EXPECT_EQ(Run(L"@Count", Empty()), "! Failed to invoke the method 'Count' of object 'COM:Shelf'. "
                                       "COM method returned error code 8002000E");
    answerResult = DISP_E_EXCEPTION;
    EXPECT_EQ(Run(L"@item(1)", Empty()), "! Failed to invoke the method 'item' of object 'COM:Shelf'. "
                                         "COM method returned error code 80020009");
    answerResult = static_cast<HRESULT>(0x800A01B6);
    EXPECT_EQ(Run(L"@Width", Empty()), "! Failed to invoke the method 'Width' of object 'COM:Shelf'. "
                                       "COM method returned error code 800A01B6");
}

TEST_F(PropertyTest, AFailingServerThatLeavesAResult) {
    const ComMemory memory;
    answerResult = E_FAIL;
    EXPECT_EQ(Run(L"@Count", Text(L"x")), "! Failed to invoke the method 'Count' of object 'COM:Shelf'. "
                                          "COM method returned error code 80004005");
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(PropertyTest, AnySuccessIsOne) {
    answerResult = S_FALSE;
    EXPECT_EQ(Run(L"@Count"), "int 7");
}

class ThrowingItem : public CountedObject {
public:
    VariantResult ToVariant(VARIANT&, IError**) const override { throw 7; }
};

TEST_F(PropertyTest, AnExceptionOfAHostPassesThrough) {
    const ComMemory memory;
    host.engine.SetVariable(Make<ThrowingItem>().Get());
    const Ref<IQueryElement> tree = host.Parse(L"@Cell('text', $This())");
    EXPECT_THROW(host.engine.Evaluate(tree.Get(), nullptr), int);
    host.engine.SetVariable(nullptr);
    EXPECT_EQ(memory.Growth(), 0);
}

// ---- one place in a query, many objects ----

TEST_F(PropertyTest, ACallSiteRemembersNoObject) {
    const Ref<IQueryElement> tree = host.Parse(L"@Count");
    const ComRef<ITypeInfo> type = MakeType(L"Crate", {{L"Count", 77}});
    for (int time = 0; time < 3; ++time) {
        answer = Integer(VT_I4, 1);
        EXPECT_EQ(Describe(Ref<IObject>(host.engine.Evaluate(tree.Get(), nullptr)).Get()), "int 1");
        const Ref<IObject> before(host.engine.GetPropertySource());
        before->AddRef(); // borrowed above
        Server* const crate = new Server(type.Get(), [](const ServerCall& call, VARIANT* result) {
            *result = Integer(VT_I4, call.id).Detach();
            return S_OK;
        });
        host.engine.SetPropertySource(Make<ObjectCom>(crate).Get());
        crate->Release();
        EXPECT_EQ(Describe(Ref<IObject>(host.engine.Evaluate(tree.Get(), nullptr)).Get()), "int 77");
        host.engine.SetPropertySource(before.Get());
    }
}

} // namespace
} // namespace OrvUQL::Tests
