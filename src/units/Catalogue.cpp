// Unit definitions and the base of catalogues that are a table.

#include "OrvUQL/Unit.h"

#include "platform/CaseMap.h"

#include <new>
#include <stdexcept>

namespace OrvUQL {

UnitDefinition::UnitDefinition(int unitId, const wchar_t* unitName, double unitFactor, IUnitFactory* unitFactory)
    : id(unitId), name(unitName), factor(unitFactor), factory(unitFactory) {
    if (factory != nullptr) {
        factory->AddRef();
    }
}

UnitDefinition::~UnitDefinition() {
    if (factory != nullptr) {
        factory->Release();
    }
}

OrvStringT UnitDefinition::GetCategory() const {
    return factory == nullptr ? OrvStringT() : factory->GetUnitCategory();
}

UnitFactoryBase::~UnitFactoryBase() = default;

IUnitDefinition* UnitFactoryBase::FindUnit(const wchar_t* name) {
    if (name == nullptr) {
        return nullptr;
    }
    const UnitData* row = GetDataList();
    if (row == nullptr) {
        return nullptr;
    }
    for (; row->name != nullptr; ++row) {
        if (platform::EqualsIgnoreCase(row->name, name)) {
            // By the virtual look-up, so that a descendant that answers ids in its own way is asked.
            return FindUnit(row->id);
        }
    }
    return nullptr;
}

IUnitDefinition* UnitFactoryBase::FindUnit(int id) {
    const UnitData* row = GetDataList();
    if (row == nullptr) {
        return nullptr;
    }
    for (; row->name != nullptr; ++row) {
        if (row->id == id) {
            return CreateUnitDefinition(row);
        }
    }
    return nullptr;
}

IUnitDefinition* UnitFactoryBase::CreateUnitDefinition(const UnitData* row) {
    // A look-up has no way to tell an error: where memory ends the unit is not found.
    try {
        return new UnitDefinition(row->id, row->name, row->factor, this);
    } catch (const std::bad_alloc&) {
        return nullptr;
    } catch (const std::length_error&) {
        return nullptr;
    }
}

} // namespace OrvUQL
