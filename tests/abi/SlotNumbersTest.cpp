// The slot numbers of virtual functions as the compiler of this build counts them: hosts are compiled against them.
//
// Under the Itanium ABI (everywhere but with Microsoft's compiler) a pointer to a virtual member function holds its
// place in the table, so the compiler itself can be asked. A virtual destructor, to which there is no pointer, takes
// two slots.

#include <OrvUQL/OrvUQL.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#if defined(__x86_64__) && !defined(_MSC_VER)

namespace OrvUQL::Tests {
namespace {

/// The slot of a virtual function, -1 for any other function.
template <class Function> int SlotOf(Function function) {
    struct {
        std::ptrdiff_t place; // in bytes, and odd; the address of a function is even
        std::ptrdiff_t adjustment;
    } bits;
    static_assert(sizeof(bits) == sizeof(function));
    std::memcpy(&bits, &function, sizeof(bits));
    return bits.place % 2 != 0 ? static_cast<int>(bits.place / static_cast<std::ptrdiff_t>(sizeof(void*))) : -1;
}

// Makes protected functions visible.
struct OpenObject : ObjectBase {
    using ObjectBase::GetMethodList;
};
struct OpenCatalogue : UnitFactoryBase {
    using UnitFactoryBase::GetDataList;
};

TEST(SlotNumbers, AreThoseOfVirtualFunctionsOnly) {
    EXPECT_EQ(SlotOf(&IRefCountObject::AddRef), 0);
    EXPECT_EQ(SlotOf(&IRefCountObject::Release), 1);
    EXPECT_EQ(SlotOf(&ObjectInt::GetValue), -1);
}

TEST(SlotNumbers, OfErrorsAndResources) {
    EXPECT_EQ(SlotOf(&IError::GetMessageW), 2);
    EXPECT_EQ(SlotOf(&IResourceManager::GetString), 0);
}

TEST(SlotNumbers, OfValues) {
    EXPECT_EQ(SlotOf(&IObject::GetType), 2);
    EXPECT_EQ(SlotOf(&IObject::GetTypeName), 3);
    EXPECT_EQ(SlotOf(&IObject::IsStaticInstance), 4);
    EXPECT_EQ(SlotOf(&IObject::IsNull), 5);
    EXPECT_EQ(SlotOf(&IObject::IsUnit), 6);
    EXPECT_EQ(SlotOf(static_cast<IUnit* (IObject::*)()>(&IObject::GetUnitInterface)), 7);
    EXPECT_EQ(SlotOf(static_cast<const IUnit* (IObject::*)() const>(&IObject::GetUnitInterface)), 8);
    EXPECT_EQ(SlotOf(&IObject::ToBool), 9);
    EXPECT_EQ(SlotOf(&IObject::ToInt), 10);
    EXPECT_EQ(SlotOf(&IObject::ToDouble), 11);
    EXPECT_EQ(SlotOf(&IObject::ToString), 12);
    EXPECT_EQ(SlotOf(&IObject::ToVariant), 13);
    EXPECT_EQ(SlotOf(&IObject::ToNumeric), 14);
    EXPECT_EQ(SlotOf(&IObject::ToUnit), 15);
    EXPECT_EQ(SlotOf(&IObject::ChangeType), 16);
    EXPECT_EQ(SlotOf(&IObject::CompareTo), 17);
    EXPECT_EQ(SlotOf(&IObject::Invoke), 18);
    // 19 and 20: the destructor.
    EXPECT_EQ(SlotOf(&ObjectBase::GetMethodMap), 21);
    EXPECT_EQ(SlotOf(&OpenObject::GetMethodList), 22);
    EXPECT_EQ(SlotOf(static_cast<OrvStringT (ObjectBase::*)() const>(&ObjectBase::ToString)), 23);
    EXPECT_EQ(SlotOf(&ObjectArrayBase::GetCount), 24);
    EXPECT_EQ(SlotOf(&ObjectArrayBase::GetItem), 25);
}

TEST(SlotNumbers, OfUnits) {
    EXPECT_EQ(SlotOf(&IUnit::GetValue), 0);
    EXPECT_EQ(SlotOf(&IUnit::GetDisplayValue), 1);
    EXPECT_EQ(SlotOf(&IUnit::GetFactor), 2);
    EXPECT_EQ(SlotOf(&IUnit::GetFactorValue), 3);
    EXPECT_EQ(SlotOf(&IUnit::GetName), 4);
    EXPECT_EQ(SlotOf(&IUnit::GetDisplayName), 5);
    EXPECT_EQ(SlotOf(&IUnit::GetDisplayString), 6);
    EXPECT_EQ(SlotOf(&IUnit::GetCategory), 7);
    EXPECT_EQ(SlotOf(&IUnit::GetPower), 8);
    EXPECT_EQ(SlotOf(&IUnit::GetUnitDefinition), 9);
    EXPECT_EQ(SlotOf(static_cast<IObject* (IUnit::*)()>(&IUnit::GetObject)), 10);
    EXPECT_EQ(SlotOf(static_cast<const IObject* (IUnit::*)() const>(&IUnit::GetObject)), 11);
}

TEST(SlotNumbers, OfUnitDefinitions) {
    EXPECT_EQ(SlotOf(&IUnitDefinition::GetId), 2);
    EXPECT_EQ(SlotOf(&IUnitDefinition::GetName), 3);
    EXPECT_EQ(SlotOf(&IUnitDefinition::GetFactor), 4);
    EXPECT_EQ(SlotOf(&IUnitDefinition::GetFactory), 5);
    EXPECT_EQ(SlotOf(&IUnitDefinition::GetCategory), 6);
}

TEST(SlotNumbers, OfCatalogues) {
    EXPECT_EQ(SlotOf(static_cast<IUnitDefinition* (IUnitFactory::*)(const wchar_t*)>(&IUnitFactory::FindUnit)), 2);
    EXPECT_EQ(SlotOf(static_cast<IUnitDefinition* (IUnitFactory::*)(int)>(&IUnitFactory::FindUnit)), 3);
    EXPECT_EQ(SlotOf(&IUnitFactory::GetUnitCategory), 4);
    // 5 and 6: the destructor.
    EXPECT_EQ(SlotOf(&OpenCatalogue::GetDataList), 7);
}

TEST(SlotNumbers, OfQueryElements) {
    EXPECT_EQ(SlotOf(&IQueryElement::GetType), 2);
    EXPECT_EQ(SlotOf(&IQueryElement::GetStringPosition), 3);
    EXPECT_EQ(SlotOf(&IQueryElement::Evaluate), 4);
    EXPECT_EQ(SlotOf(&QueryEngine::Evaluate), -1);
}

} // namespace
} // namespace OrvUQL::Tests

#endif
