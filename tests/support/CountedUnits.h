// A host's catalogue that owes nothing to the library's own, counted like everything of Counted.h.
#pragma once

#include "support/Counted.h"

#include <string>
#include <utility>

namespace OrvUQL::Tests {

/// A definition that keeps its catalogue alive.
class CountedUnitDefinition : public RefCountImpl<IUnitDefinition> {
public:
    CountedUnitDefinition(int unitId, OrvStringT unitName, double unitFactor, IUnitFactory* unitFactory,
                          std::string unitLabel = {})
        : id(unitId), name(std::move(unitName)), factor(unitFactor), factory(unitFactory), label(std::move(unitLabel)) {
        if (factory != nullptr) {
            factory->AddRef();
        }
        Counted::Begin();
    }
    CountedUnitDefinition(const CountedUnitDefinition&) = delete;
    CountedUnitDefinition& operator=(const CountedUnitDefinition&) = delete;
    ~CountedUnitDefinition() override;

    int References() const noexcept { return refCount; }

    int GetId() const override { return id; }
    OrvStringT GetName() const override { return name; }
    double GetFactor() const override { return factor; }
    IUnitFactory* GetFactory() const override { return factory; }
    OrvStringT GetCategory() const override { return factory == nullptr ? OrvStringT() : factory->GetUnitCategory(); }

private:
    int id;
    OrvStringT name;
    double factor;
    IUnitFactory* factory;
    std::string label;
};

/// A catalogue of one unit, whose id is 1 and whose name is compared exactly.
class CountedUnitFactory : public RefCountImpl<IUnitFactory> {
public:
    CountedUnitFactory(OrvStringT unitCategory, OrvStringT unitName, double unitFactor, std::string factoryLabel = {})
        : category(std::move(unitCategory)),
          name(std::move(unitName)),
          factor(unitFactor),
          label(std::move(factoryLabel)) {
        Counted::Begin();
    }
    CountedUnitFactory(const CountedUnitFactory&) = delete;
    CountedUnitFactory& operator=(const CountedUnitFactory&) = delete;
    ~CountedUnitFactory() override;

    int References() const noexcept { return refCount; }
    int LookUps() const noexcept { return lookUps; }

    ORV_OVERLOADS2(IUnitDefinition* FindUnit(const wchar_t* sought) override;
                   , IUnitDefinition* FindUnit(int id) override;)
    OrvStringT GetUnitCategory() const override { return category; }

private:
    OrvStringT category;
    OrvStringT name;
    double factor;
    std::string label;
    int lookUps = 0;
};

} // namespace OrvUQL::Tests
