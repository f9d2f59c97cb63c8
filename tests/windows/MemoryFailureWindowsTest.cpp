// Where memory ends in conversions and calls of automation: each allocation of the library's own fails in its turn.
// What comes of it is the result or no result with "Internal error", never an exception or a leak.
//
// A program of its own, which has the library in it: operator new cannot be replaced across the border of a DLL.

#include "support/FailingMemory.h"
#include "support/Host.h"
#include "support/StackThread.h"
#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace OrvUQL::Tests {
namespace {

/// A stack as programs have it, on a thread whose pool of memory is empty at first.
constexpr std::size_t usualStack = 1024 * 1024;

class WindowsMemoryFailure : public AutomationTest {
protected:
    /// Runs an operation, which says whether it succeeded, with memory failing at each of its allocations.
    static void ExpectSurvives(const std::function<bool(IError**)>& operation) {
        for (const MemoryEnds how : {MemoryEnds::Once, MemoryEnds::ForGood}) {
            bool failed = true;
            int allowed = 0;
            for (; failed; ++allowed) {
                ASSERT_LT(allowed, 1000);
                RunOnThread(usualStack, [&] {
                    IError* error = nullptr;
                    bool succeeded = false;
                    bool threw = false;
                    {
                        const FailingMemory memory(allowed, how);
                        try {
                            succeeded = operation(&error);
                        } catch (...) {
                            threw = true;
                        }
                        failed = memory.HasFailed();
                    }
                    const Ref<IError> owned(error);
                    EXPECT_FALSE(threw) << "after " << allowed << " allocations";
                    EXPECT_TRUE(succeeded || failed) << "after " << allowed << " allocations";
                    if (error != nullptr) {
                        EXPECT_EQ(Utf8(error->GetMessageW()), "Internal error");
                        EXPECT_FALSE(succeeded);
                    }
                });
            }
            EXPECT_GT(allowed, 1) << "nothing was allocated";
        }
    }

    /// The same for an operation that gives a value.
    static void ExpectSurvivesWithValue(const std::function<IObject*(IError**)>& operation) {
        ExpectSurvives([&](IError** err) { return static_cast<bool>(Ref<IObject>(operation(err))); });
    }
};

TEST_F(WindowsMemoryFailure, ValuesOfVariants) {
    Server* const server = new Server();
    {
        const ComMemory memory;
        Variant text = Text(L"text");
        Variant number = Integer(VT_I4, 7);
        Variant object = Object(server);
        Variant inner = ArrayOf({&text, &number});
        const Variant in = ArrayOf({&object, &inner});
        const long before = memory.Growth();
        ExpectSurvivesWithValue([&](IError** err) { return ObjectBase::VariantToObject(*in, err); });
        EXPECT_EQ(memory.Growth(), before);
        EXPECT_EQ(server->References(), 2u);
    }
    EXPECT_EQ(server->Release(), 0u);
}

/// An array whose items are made when they are asked for.
class LateArray : public Probe<ObjectArrayBase> {
public:
    int GetCount() const override { return 3; }
    IObject* GetItem(int index) const override { return index == 1 ? MakeArray() : new ObjectString(L"text"); }

private:
    static IObject* MakeArray() {
        const Ref<IObject> item = Ref<IObject>(new ObjectInt(7));
        ObjectList items;
        items.push_back(item.Get());
        const ObjectList& borrowed = items;
        IObject* made = nullptr;
        try {
            made = new ObjectArray(borrowed);
        } catch (...) {
            items.clear();
            throw;
        }
        items.clear();
        return made;
    }
};

TEST_F(WindowsMemoryFailure, VariantsOfValues) {
    const ComMemory memory;
    const Ref<LateArray> array = Make<LateArray>();
    ExpectSurvives([&](IError** err) {
        Variant out;
        const HRESULT result = array->ToVariant(*out.Get(), err);
        EXPECT_TRUE(result == S_OK || result == E_OUTOFMEMORY);
        EXPECT_EQ(out->vt == VT_EMPTY, result != S_OK);
        return result == S_OK;
    });
    EXPECT_EQ(memory.Growth(), 0);
}

/// An enumerator over two texts, again and again.
class Pairs final : public ComObject<IEnumVARIANT> {
public:
    STDMETHODIMP Next(ULONG, VARIANT* out, ULONG*) override {
        given = (given + 1) % 3;
        if (given == 0) {
            return S_FALSE;
        }
        *out = Text(L"text").Detach();
        return S_OK;
    }
    STDMETHODIMP Skip(ULONG) override { return E_NOTIMPL; }
    STDMETHODIMP Reset() override {
        given = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

private:
    int given = 0;
};

/// A server that allocates nothing of its own: a text for a property, pairs for a collection.
class Frugal final : public ComObject<IDispatch> {
public:
    Frugal() : type(MakeType(L"Frugal", {{L"Name", 1, INVOKE_PROPERTYGET, 2}})), pairs(new Pairs()) {}

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        type->AddRef();
        *info = type.Get();
        return S_OK;
    }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override {
        if (id == DISPID_NEWENUM) {
            pairs->Reset();
            pairs->AddRef();
            result->punkVal = pairs.Get();
            result->vt = VT_UNKNOWN;
            return S_OK;
        }
        *result = Text(L"text").Detach();
        return id == 1 ? S_OK : E_FAIL;
    }

private:
    ~Frugal() override = default;

    ComRef<ITypeInfo> type;
    ComRef<Pairs> pairs;
};

TEST_F(WindowsMemoryFailure, PropertiesAndCollections) {
    Frugal* const server = new Frugal();
    {
        // What the type's library keeps for itself from the first call on is none of ours.
        const Ref<ObjectCom> warmUp = Make<ObjectCom>(server);
        EXPECT_EQ(Call(*warmUp, L"Name"), "string text");
        EXPECT_EQ(Utf8(warmUp->GetTypeName()), "COM:Frugal");
    }
    const ComMemory memory;
    for (const wchar_t* const query :
         {L"@Name", L"@Name('argument', array('another'))", L"@ToArray()", L"@ToArray().Join(@Name)"}) {
        Host host;
        host.engine.SetPropertySource(Make<ObjectCom>(server).Get());
        const Ref<IQueryElement> tree = host.Parse(query);
        ExpectSurvivesWithValue([&](IError** err) { return host.engine.Evaluate(tree.Get(), err); });
        host.engine.SetPropertySource(nullptr);
        EXPECT_EQ(server->References(), 1u) << Utf8(query);
    }
    EXPECT_EQ(memory.Growth(), 0);
    EXPECT_EQ(server->Release(), 0u);
}

} // namespace
} // namespace OrvUQL::Tests
