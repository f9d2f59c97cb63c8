// From arrays to SAFEARRAYs.

#include "support/StackThread.h"
#include "windows/Automation.h"
#include "windows/Servers.h"
#include "windows/Values.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace OrvUQL::Tests {
namespace {

class ArrayToVariantTest : public AutomationTest {};

/// Arrays inside each other, the innermost empty.
Ref<IObject> NestedArrays(int levels) {
    Ref<IObject> array = ArrayValue({});
    for (int level = 1; level < levels; ++level) {
        array = ArrayValue({array.Detach()});
    }
    return array;
}

TEST_F(ArrayToVariantTest, ArraysHoldVariants) {
    Server* const server = new Server();
    const Ref<IObject> array = ArrayValue({
        new ObjectInt(1),
        new ObjectString(L"a"),
        new ObjectNull(),
        new ObjectBool(true),
        new ObjectDouble(0.5),
        Length(2.0, 1).Detach(),
        new ObjectCom(server),
    });
    server->Release();
    EXPECT_EQ(ToVariant(*array), "ARRAY[I4 1, BSTR a, NULL, BOOL -1, R8 0.5, BSTR 2 cm, DISPATCH]");
    EXPECT_EQ(server->References(), 1u) << "what was converted is cleared, and the array has its own";
}

TEST_F(ArrayToVariantTest, ArraysInArrays) {
    const Ref<IObject> array = ArrayValue({
        ArrayValue({new ObjectInt(1), new ObjectInt(2)}).Detach(),
        ArrayValue({}).Detach(),
        ArrayValue({ArrayValue({new ObjectString(L"x")}).Detach()}).Detach(),
    });
    EXPECT_EQ(ToVariant(*array), "ARRAY[ARRAY[I4 1, I4 2], ARRAY[], ARRAY[ARRAY[BSTR x]]]");
}

TEST_F(ArrayToVariantTest, AnEmptyArrayIsAnEmptyArray) { EXPECT_EQ(ToVariant(*ArrayValue({})), "ARRAY[]"); }

TEST_F(ArrayToVariantTest, TheArrayIsANewOneEachTime) {
    const Ref<IObject> array = ArrayValue({new ObjectInt(1)});
    Variant first;
    Variant second;
    ASSERT_EQ(array->ToVariant(*first.Get(), nullptr), S_OK);
    ASSERT_EQ(array->ToVariant(*second.Get(), nullptr), S_OK);
    EXPECT_EQ(first->vt, VT_ARRAY | VT_VARIANT);
    EXPECT_NE(first->parray, second->parray);
}

/// An array of a host, which is what it likes from one question to the next.
class HostArray : public Probe<ObjectArrayBase> {
public:
    explicit HostArray(int itemCount) : count(itemCount) {}
    int GetCount() const override { return count; }
    IObject* GetItem(int index) const override { return new ObjectInt(index * 10); }

private:
    int count;
};

TEST_F(ArrayToVariantTest, AnArrayClassOfAHostIsAnArray) {
    EXPECT_EQ(ToVariant(*Make<HostArray>(3)), "ARRAY[I4 0, I4 10, I4 20]");
    EXPECT_EQ(ToVariant(*Make<HostArray>(0)), "ARRAY[]");
    EXPECT_EQ(ToVariant(*Make<HostArray>(-1)), "ARRAY[]");
}

TEST_F(ArrayToVariantTest, AnArrayTooLargeIsOutOfMemory) {
    const ComMemory memory;
    Variant out;
    ErrorSlot error;
    EXPECT_EQ(Make<HostArray>(std::numeric_limits<int>::max())->ToVariant(*out.Get(), error.Slot()), E_OUTOFMEMORY);
    EXPECT_TRUE(error.IsEmpty());
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(ArrayToVariantTest, AnEmptySlotFails) {
    EXPECT_EQ(ToVariant(*ArrayValue({new ObjectInt(1), nullptr, new ObjectInt(3)})), "80004005");
}

TEST_F(ArrayToVariantTest, AnItemThatFailsGivesItsOwnResult) {
    EXPECT_EQ(ToVariant(*ArrayValue({new ObjectInt(1), new ObjectExpression(nullptr)})), "80004001");
    EXPECT_EQ(ToVariant(*ArrayValue({new ObjectGlobal()})),
              "80020005 Unable to convert object 'global' to 'VARIANT' data type");
    EXPECT_EQ(ToVariant(*ArrayValue({ArrayValue({HostValue(IObject::TypeInt, L"x").Detach()}).Detach()})),
              "80004005 Cannot convert string 'x' to Integer");
}

TEST_F(ArrayToVariantTest, AFailingItemAtAnyPlaceLosesNothing) {
    const ComMemory memory;
    constexpr int count = 6;
    for (int place = 0; place < count; ++place) {
        Server* const server = new Server();
        ObjectList items;
        for (int index = 0; index < count; ++index) {
            if (index == place) {
                items.push_back(new CountedObject());
            } else if (index % 2 == 0) {
                items.push_back(ArrayValue({new ObjectString(L"text"), new ObjectCom(server)}).Detach());
            } else {
                items.push_back(new ObjectCom(server));
            }
        }
        {
            const Ref<IObject> array = ArrayValue(std::move(items));
            EXPECT_EQ(ToVariant(*array), "80020005 Unable to convert object 'counted' to 'VARIANT' data type");
        }
        EXPECT_EQ(server->References(), 1u) << "failing at " << place;
        server->Release();
    }
    EXPECT_EQ(memory.Growth(), 0);
}

class ThrowingItem : public CountedObject {
public:
    VariantResult ToVariant(VARIANT&, IError**) const override { throw 7; }
};

TEST_F(ArrayToVariantTest, AnExceptionOfAHostPassesThrough) {
    const ComMemory memory;
    const Ref<IObject> array = ArrayValue({new ObjectString(L"a"), ArrayValue({new ThrowingItem()}).Detach()});
    Variant out;
    EXPECT_THROW(array->ToVariant(*out.Get(), nullptr), int);
    EXPECT_EQ(out->vt, VT_EMPTY);
    EXPECT_EQ(memory.Growth(), 0);
    // The levels are counted down again.
    EXPECT_EQ(ToVariant(*NestedArrays(3)), "ARRAY[ARRAY[ARRAY[]]]");
    for (int time = 0; time < 1000; ++time) {
        EXPECT_THROW(array->ToVariant(*out.Get(), nullptr), int);
    }
    EXPECT_EQ(ToVariant(*NestedArrays(3)), "ARRAY[ARRAY[ARRAY[]]]");
}

TEST_F(ArrayToVariantTest, WhereTheSystemsMemoryEnds) {
    const auto text = [] { return new ObjectString(L"text"); };
    const Ref<IObject> array = ArrayValue({text(), ArrayValue({text(), text()}).Detach(), ArrayValue({}).Detach()});
    const Ref<IObject> unit(Length(2.0, 1).Detach());
    const ComMemory memory;
    for (const IObject* value : {array.Get(), unit.Get()}) {
        bool failed = true;
        for (int allowed = 0; failed; ++allowed) {
            Variant out;
            ErrorSlot error;
            HRESULT result = S_OK;
            {
                const FailingComMemory failing(allowed);
                result = value->ToVariant(*out.Get(), error.Slot());
                failed = failing.HasFailed();
            }
            EXPECT_EQ(result, failed ? E_OUTOFMEMORY : S_OK) << allowed;
            EXPECT_EQ(out->vt == VT_EMPTY, failed) << allowed;
            // Arrays that cannot be made are reported by the result alone.
            EXPECT_TRUE(error.IsEmpty() || error.Message() == "Internal error") << error.Message();
        }
    }
    EXPECT_EQ(memory.Growth(), 0);
}

// ---- nesting ----

TEST_F(ArrayToVariantTest, AThousandLevelsAndNoMore) {
    // What is converted can also be cleared, on the stack that it was converted on.
    const ComMemory memory;
    RunOnThread(1024 * 1024, [] {
        for (int time = 0; time < 2; ++time) {
            Variant out;
            EXPECT_EQ(NestedArrays(1000)->ToVariant(*out.Get(), nullptr), S_OK);
            Variant none;
            ErrorSlot error;
            EXPECT_EQ(NestedArrays(1001)->ToVariant(*none.Get(), error.Slot()), E_FAIL);
            EXPECT_EQ(error.Message(), "Internal error");
            EXPECT_EQ(none->vt, VT_EMPTY);
        }
    });
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(ArrayToVariantTest, ASmallStackTakesFewerLevelsAndSaysSo) {
    const ComMemory memory;
    // Some systems make no stack smaller than this, so the larger part of it is used up first.
    RunOnThread(1024 * 1024, [] {
        volatile char used[700 * 1024];
        used[0] = 0;
        static_cast<void>(used[0]);
        bool refused = false;
        for (int levels = 1; levels <= 1000; ++levels) {
            Variant out;
            ErrorSlot error;
            const HRESULT result = NestedArrays(levels)->ToVariant(*out.Get(), error.Slot());
            if (result != S_OK) {
                EXPECT_EQ(result, E_FAIL);
                EXPECT_EQ(error.Message(), "Internal error");
                EXPECT_GT(levels, 100);
                refused = true;
            } else {
                EXPECT_FALSE(refused) << levels;
            }
        }
        EXPECT_TRUE(refused);
    });
    EXPECT_EQ(memory.Growth(), 0);
}

/// Tells how deep the stack is when it goes.
class Plummet final : public ComObject<IDispatch> {
public:
    explicit Plummet(std::uintptr_t* place) : deepest(place) {}

    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

private:
    ~Plummet() override {
        volatile char here = 0;
        *deepest = reinterpret_cast<std::uintptr_t>(&here);
        static_cast<void>(here);
    }

    std::uintptr_t* deepest;
};

TEST_F(ArrayToVariantTest, ClearingNeedsNoMoreStackThanIsKeptForIt) {
    // The library keeps 512 bytes for each array inside another.
    const auto depthOf = [](int levels) {
        std::uintptr_t deepest = 0;
        Variant out;
        {
            Plummet* const plummet = new Plummet(&deepest);
            Ref<IObject> value(new ObjectCom(plummet));
            plummet->Release();
            for (int level = 0; level < levels; ++level) {
                value = ArrayValue({value.Detach()});
            }
            EXPECT_EQ(value->ToVariant(*out.Get(), nullptr), S_OK);
        }
        EXPECT_EQ(deepest, 0u);
        volatile char here = 0;
        EXPECT_EQ(VariantClear(out.Get()), S_OK);
        EXPECT_NE(deepest, 0u);
        return static_cast<int>(reinterpret_cast<std::uintptr_t>(&here) - deepest);
    };
    const int perLevel = (depthOf(500) - depthOf(100)) / 400;
    EXPECT_GT(perLevel, 0);
    EXPECT_LE(perLevel, 512);
    RecordProperty("bytes", perLevel);
}

TEST_F(ArrayToVariantTest, WidthIsNoDepth) {
    ObjectList items;
    for (int index = 0; index < 2000; ++index) {
        items.push_back(NestedArrays(2).Detach());
    }
    Variant out;
    ASSERT_EQ(ArrayValue(std::move(items))->ToVariant(*out.Get(), nullptr), S_OK);
    EXPECT_EQ(out->parray->rgsabound[0].cElements, 2000u);
}

} // namespace
} // namespace OrvUQL::Tests
