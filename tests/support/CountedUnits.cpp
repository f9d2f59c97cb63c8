#include "support/CountedUnits.h"

namespace OrvUQL::Tests {

CountedUnitDefinition::~CountedUnitDefinition() {
    if (factory != nullptr) {
        factory->Release();
    }
    Counted::End(label);
}

CountedUnitFactory::~CountedUnitFactory() { Counted::End(label); }

IUnitDefinition* CountedUnitFactory::FindUnit(const wchar_t* sought) {
    ++lookUps;
    return name == sought ? FindUnit(1) : nullptr;
}

IUnitDefinition* CountedUnitFactory::FindUnit(int id) {
    return id == 1 ? new CountedUnitDefinition(1, name, factor, this) : nullptr;
}

} // namespace OrvUQL::Tests
