// From SAFEARRAYs to arrays.

#include "support/StackThread.h"
#include "windows/Automation.h"
#include "windows/Servers.h"
#include "windows/Values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace OrvUQL::Tests {
namespace {

using namespace std::string_view_literals;

class VariantToArrayTest : public AutomationTest {};

/// An array whose elements are these.
template <class T> Variant ArrayOfValues(VARTYPE type, std::initializer_list<T> values, long first = 0) {
    SAFEARRAY* const array = NewArray(type, static_cast<unsigned>(values.size()), first);
    EXPECT_EQ(array->cbElements, sizeof(T));
    std::copy(values.begin(), values.end(), static_cast<T*>(array->pvData));
    return Array(type, array);
}

TEST_F(VariantToArrayTest, ArraysOfNumbers) {
    EXPECT_EQ(FromVariant(ArrayOfValues<signed char>(VT_I1, {1, -2})), "array (1,-2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<unsigned char>(VT_UI1, {1, 200})), "array (1,200)");
    EXPECT_EQ(FromVariant(ArrayOfValues<short>(VT_I2, {1, -2})), "array (1,-2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {1, -2})), "array (1,-2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_INT, {1, -2})), "array (1,-2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<unsigned long>(VT_UI4, {1, 2})), "array (1,2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<unsigned long>(VT_UINT, {1, 2})), "array (1,2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<std::uint64_t>(VT_UI8, {1, 2})), "array (1,2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<float>(VT_R4, {1, 0.5F})), "array (1,0.5)");
    EXPECT_EQ(FromVariant(ArrayOfValues<double>(VT_R8, {1, 0.1})), "array (1,0.1)");
    EXPECT_EQ(FromVariant(ArrayOfValues<VARIANT_BOOL>(VT_BOOL, {-1, 0, 3})), "array (true,false,true)");
}

TEST_F(VariantToArrayTest, ElementsOfAnArrayAreOfTheElementsType) {
    const Variant in = ArrayOfValues<double>(VT_R8, {1, 2});
    const Ref<IObject> value(ObjectBase::VariantToObject(*in, nullptr));
    const auto& array = dynamic_cast<const ObjectArray&>(*value);
    ASSERT_EQ(array.GetCount(), 2);
    for (const IObject* item : array.GetObjectList()) {
        EXPECT_EQ(item->GetType(), IObject::TypeDouble);
        EXPECT_EQ(static_cast<const Probe<ObjectDouble>*>(item)->References(), 1);
    }
}

TEST_F(VariantToArrayTest, ArraysOfTexts) {
    const ComMemory memory;
    {
        const Variant in =
            ArrayOfValues<BSTR>(VT_BSTR, {Text(L"a").Detach().bstrVal, nullptr, Text(L"b\0c"sv).Detach().bstrVal});
        EXPECT_EQ(FromVariant(in), std::string("array (a,null,b\0c)", 18));
    }
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(VariantToArrayTest, ArraysOfObjects) {
    Server* const server = new Server();
    {
        server->AddRef();
        const Variant in = ArrayOfValues<IDispatch*>(VT_DISPATCH, {server, nullptr});
        EXPECT_EQ(FromVariant(in), "array (,null)");
        EXPECT_EQ(server->References(), 2u);
    }
    EXPECT_EQ(server->References(), 1u);
    server->Release();
}

TEST_F(VariantToArrayTest, ArraysOfVariants) {
    Variant number = Integer(VT_I4, 7);
    Variant text = Text(L"x");
    Variant none = Empty();
    Variant nullText = Integer(VT_BSTR, 0);
    Variant truth = Bool(VARIANT_TRUE);
    const Variant in = ArrayOf({&number, &text, &none, &nullText, &truth});
    EXPECT_EQ(FromVariant(in), "array (7,x,null,null,true)");
}

TEST_F(VariantToArrayTest, ArraysOfWhatIsRefused) {
    // The element's type is told, not the array's.
    EXPECT_EQ(FromVariant(ArrayOfValues<unsigned short>(VT_UI2, {1})), Unsupported(18));
    EXPECT_EQ(FromVariant(ArrayOfValues<std::int64_t>(VT_I8, {1})), Unsupported(20));
    EXPECT_EQ(FromVariant(ArrayOfValues<std::int64_t>(VT_CY, {1})), Unsupported(6));
    EXPECT_EQ(FromVariant(ArrayOfValues<double>(VT_DATE, {1})), Unsupported(7));
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_ERROR, {1})), Unsupported(10));
    EXPECT_EQ(FromVariant(ArrayOfValues<IUnknown*>(VT_UNKNOWN, {nullptr})), Unsupported(13));
    EXPECT_EQ(FromVariant(ArrayOfValues<DECIMAL>(VT_DECIMAL, {DECIMAL{}})), Unsupported(14));
    EXPECT_EQ(FromVariant(ArrayOfValues<unsigned long>(VT_UI4, {1, 0x80000000})), Unsupported(19));
    Variant inner = Integer(VT_I8, 1);
    EXPECT_EQ(FromVariant(ArrayOf({&inner})), Unsupported(20));
}

TEST_F(VariantToArrayTest, ArraysOfWhatIsRefusedMayBeEmpty) {
    EXPECT_EQ(FromVariant(ArrayOfValues<unsigned short>(VT_UI2, {})), "array ()");
}

TEST_F(VariantToArrayTest, EmptyArrays) {
    EXPECT_EQ(FromVariant(ArrayOf({})), "array ()");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {})), "array ()");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {}, 5)), "array ()");
}

TEST_F(VariantToArrayTest, ArraysNeedNotBeginAtZero) {
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {1, 2, 3}, 5)), "array (1,2,3)");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {1, 2, 3}, -1)), "array (1,2,3)");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {1, 2}, 0x7FFFFFFD)), "array (1,2)");
    EXPECT_EQ(FromVariant(ArrayOfValues<long>(VT_I4, {1, 2}, -0x7FFFFFFF - 1)), "array (1,2)");
    Variant a = Text(L"a");
    Variant b = Text(L"b");
    EXPECT_EQ(FromVariant(ArrayOf({&a, &b}, 1)), "array (a,b)");
}

TEST_F(VariantToArrayTest, ArraysInArrays) {
    Variant numbers = ArrayOfValues<long>(VT_I4, {1, 2});
    Variant none = ArrayOf({});
    Variant text = Text(L"x");
    Variant texts = ArrayOf({&text});
    Variant deeper = ArrayOf({&texts});
    EXPECT_EQ(FromVariant(ArrayOf({&numbers, &none, &deeper})), "array ((1,2),(),((x)))");
}

TEST_F(VariantToArrayTest, ReferencesToArrays) {
    const Variant in = ArrayOfValues<long>(VT_I4, {1, 2});
    SAFEARRAY* array = (*in).parray;
    Variant reference = Reference(VT_ARRAY | VT_I4, &array);
    EXPECT_EQ(FromVariant(reference), "array (1,2)");
    // Also inside an array.
    Variant outer = ArrayOf({&reference});
    EXPECT_EQ(FromVariant(outer), "array ((1,2))");
}

TEST_F(VariantToArrayTest, MoreThanOneDimensionIsRefused) {
    SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
    EXPECT_EQ(FromVariant(Array(VT_I4, SafeArrayCreate(VT_I4, 2, bounds))), Unsupported(8195));
    EXPECT_EQ(FromVariant(Array(VT_VARIANT, SafeArrayCreate(VT_VARIANT, 2, bounds))), Unsupported(8204));
    SAFEARRAYBOUND empty[] = {{0, 0}, {0, 0}};
    EXPECT_EQ(FromVariant(Array(VT_I4, SafeArrayCreate(VT_I4, 2, empty))), Unsupported(8195));
}

TEST_F(VariantToArrayTest, NoArrayIsRefused) {
    EXPECT_EQ(FromVariant(Array(VT_I4, nullptr)), Unsupported(8195));
    SAFEARRAY* none = nullptr;
    EXPECT_EQ(FromVariant(Reference(VT_ARRAY | VT_I4, &none)), Unsupported(24579));
    EXPECT_EQ(FromVariant(Reference(VT_ARRAY | VT_I4, nullptr)), Unsupported(24579));
    Variant inner = Array(VT_BSTR, nullptr);
    EXPECT_EQ(FromVariant(ArrayOf({&inner})), Unsupported(8200));
}

TEST_F(VariantToArrayTest, AnArrayHasToHoldWhatItsTypeSays) {
    // Elements of another size, or texts that the array knows nothing of, would be read wrongly or freed twice.
    const auto as = [](VARTYPE type, SAFEARRAY* array) {
        const Variant made = Array(type, array);
        const std::string outcome = FromVariant(made);
        const_cast<VARIANT&>(*made).vt = VT_EMPTY;
        SafeArrayDestroy(array);
        return outcome;
    };
    EXPECT_EQ(as(VT_I4, NewArray(VT_I2, 1)), Unsupported(8195));
    EXPECT_EQ(as(VT_I4, NewArray(VT_VARIANT, 1)), Unsupported(8195));
    EXPECT_EQ(as(VT_VARIANT, NewArray(VT_I4, 1)), Unsupported(8204));
    EXPECT_EQ(as(VT_BSTR, NewArray(VT_R8, 1)), Unsupported(8200));
    EXPECT_EQ(as(VT_DISPATCH, NewArray(VT_BSTR, 1)), Unsupported(8201));
    EXPECT_EQ(as(VT_DISPATCH, NewArray(VT_UNKNOWN, 1)), Unsupported(8201));
    EXPECT_EQ(as(VT_EMPTY, NewArray(VT_I4, 1)), Unsupported(8192));
    EXPECT_EQ(as(VT_RECORD, NewArray(VT_I4, 1)), Unsupported(8228));
    EXPECT_EQ(as(VT_INT_PTR, NewArray(VT_R8, 1)), Unsupported(8229));
    // What only has another name is the same.
    EXPECT_EQ(as(VT_INT, NewArray(VT_I4, 1)), "array (0)");
}

TEST_F(VariantToArrayTest, AFailingElementAtAnyPlaceLosesNothing) {
    const ComMemory memory;
    constexpr int count = 6;
    for (int place = 0; place < count; ++place) {
        Server* const server = new Server();
        {
            Variant elements[count];
            for (int index = 0; index < count; ++index) {
                Variant object = Object(server);
                Variant text = Text(L"text");
                elements[index] = index == place   ? Integer(VT_I8, 1)
                                  : index % 2 == 0 ? ArrayOf({&object, &text})
                                                   : std::move(object);
            }
            const Variant in =
                ArrayOf({&elements[0], &elements[1], &elements[2], &elements[3], &elements[4], &elements[5]});
            const ULONG before = server->References();
            EXPECT_EQ(FromVariant(in), Unsupported(20));
            EXPECT_EQ(server->References(), before) << "failing at " << place;
            EXPECT_EQ((*in).parray->cLocks, 0u);
        }
        EXPECT_EQ(server->References(), 1u) << "failing at " << place;
        server->Release();
    }
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(VariantToArrayTest, NothingIsLeftLocked) {
    const Variant in = ArrayOfValues<long>(VT_I4, {1, 2});
    EXPECT_EQ(FromVariant(in), "array (1,2)");
    EXPECT_EQ((*in).parray->cLocks, 0u);
}

TEST_F(VariantToArrayTest, WhereTheSystemsMemoryEnds) {
    // Only the elements of an array of texts are copied by the system.
    const Variant in = ArrayOfValues<BSTR>(VT_BSTR, {Text(L"a").Detach().bstrVal, Text(L"b").Detach().bstrVal});
    const ComMemory memory;
    bool failed = true;
    int allowed = 0;
    for (; failed; ++allowed) {
        ErrorSlot error;
        Ref<IObject> value;
        {
            const FailingComMemory failing(allowed);
            value = Ref<IObject>(ObjectBase::VariantToObject(*in, error.Slot()));
            failed = failing.HasFailed();
        }
        EXPECT_EQ(static_cast<bool>(value), !failed);
        EXPECT_EQ(error.Message(), failed ? Unsupported(8200).substr(2) : "(none)");
    }
    EXPECT_GT(allowed, 1);
    EXPECT_EQ(memory.Growth(), 0);
}

// ---- nesting ----

/// Arrays inside each other, the innermost empty.
Variant NestedArrays(int levels) {
    Variant array = ArrayOf({});
    for (int level = 1; level < levels; ++level) {
        array = ArrayOf({&array});
    }
    return array;
}

/// Frees what VariantClear would need a large stack for.
void ClearNested(Variant& outer) {
    Variant array = std::move(outer);
    while (array->vt == (VT_ARRAY | VT_VARIANT) && array->parray->rgsabound[0].cElements == 1) {
        Variant inner;
        std::swap(*inner.Get(), *static_cast<VARIANT*>(array->parray->pvData));
        array = std::move(inner);
    }
}

TEST_F(VariantToArrayTest, AThousandLevelsAndNoMore) {
    const ComMemory memory;
    RunOnThread(1024 * 1024, [] {
        Variant most = NestedArrays(1000);
        const Ref<IObject> value(ObjectBase::VariantToObject(*most, nullptr));
        EXPECT_TRUE(value);
        Variant tooDeep = NestedArrays(1001);
        ErrorSlot error;
        EXPECT_EQ(ObjectBase::VariantToObject(*tooDeep, error.Slot()), nullptr);
        EXPECT_EQ(error.Message(), "Internal error");
        EXPECT_EQ(ObjectBase::VariantToObject(*tooDeep, nullptr), nullptr);
        ClearNested(most);
        ClearNested(tooDeep);
    });
    EXPECT_EQ(memory.Growth(), 0);
}

TEST_F(VariantToArrayTest, FarTooManyLevelsAreNotWalked) {
    RunOnThread(smallStack, [] {
        Variant deep = NestedArrays(5000);
        ErrorSlot error;
        EXPECT_EQ(ObjectBase::VariantToObject(*deep, error.Slot()), nullptr);
        EXPECT_EQ(error.Message(), "Internal error");
        ClearNested(deep);
    });
}

TEST_F(VariantToArrayTest, AnArrayInItselfIsRefused) {
    Variant reference;
    Variant in = ArrayOf({&reference});
    VARIANT* const element = static_cast<VARIANT*>(in->parray->pvData);
    element->pparray = &in->parray;
    element->vt = VT_ARRAY | VT_BYREF | VT_VARIANT;
    EXPECT_EQ(FromVariant(in), "! Internal error");
}

TEST_F(VariantToArrayTest, WidthIsNoDepth) {
    Variant in = Array(VT_VARIANT, NewArray(VT_VARIANT, 2000));
    for (int index = 0; index < 2000; ++index) {
        static_cast<VARIANT*>(in->parray->pvData)[index] = NestedArrays(2).Detach();
    }
    const Ref<IObject> value(ObjectBase::VariantToObject(*in, nullptr));
    ASSERT_TRUE(value);
    EXPECT_EQ(dynamic_cast<const ObjectArray&>(*value).GetCount(), 2000);
}

TEST_F(VariantToArrayTest, AThousandLevelsThereAndBack) {
    RunOnThread(1024 * 1024, [] {
        Variant in = NestedArrays(1000);
        const Ref<IObject> value(ObjectBase::VariantToObject(*in, nullptr));
        ASSERT_TRUE(value);
        Variant back;
        EXPECT_EQ(value->ToVariant(*back.Get(), nullptr), S_OK);
        VariantClear(back.Get());
    });
}

} // namespace
} // namespace OrvUQL::Tests
