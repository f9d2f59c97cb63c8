// Catalogues of a host, and an engine's list of catalogues.

#include <OrvUQL/OrvUQL.h>

#include "support/CountedUnits.h"
#include "support/Host.h"
#include "support/Print.h"
#include "values/CallHandler.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using Catalogue = CountedTest;

/// A host's table.
class Weights : public UnitFactoryBase {
public:
    Weights() { Counted::Begin(); }
    ~Weights() override { Counted::End("weights"); }
    OrvStringT GetUnitCategory() const override { return ORV_TEXT(L"Weights"); }
    int References() const { return refCount; }

protected:
    const UnitData* GetDataList() override {
        static const UnitData rows[] = {{1, L"g", 1.0}, {2, L"kg", 1000.0}, {-3, L"t", 1e6}, {0, nullptr, 0.0}};
        return rows;
    }
};

TEST_F(Catalogue, OfAHostIsItsTable) {
    const Ref<Weights> weights = Make<Weights>();
    const Ref<IUnitDefinition> kilogram(weights->FindUnit(L"KG"));
    ASSERT_TRUE(kilogram);
    EXPECT_EQ(kilogram->GetId(), 2);
    EXPECT_EQ(kilogram->GetName(), L"kg");
    EXPECT_EQ(kilogram->GetFactor(), 1000.0);
    EXPECT_EQ(kilogram->GetCategory(), L"Weights");
    EXPECT_EQ(kilogram->GetFactory(), weights.Get());
    const Ref<IUnitDefinition> tonne(weights->FindUnit(-3));
    ASSERT_TRUE(tonne);
    EXPECT_EQ(tonne->GetName(), L"t");
    EXPECT_EQ(weights->FindUnit(L"lb"), nullptr);
    EXPECT_EQ(weights->FindUnit(3), nullptr);
    EXPECT_EQ(weights->FindUnit(0), nullptr) << "the row that ends the table is none";
}

/// A table that a careful host would not write: names and ids twice.
class Careless : public UnitFactoryBase {
public:
    OrvStringT GetUnitCategory() const override { return ORV_TEXT(L"Careless"); }

protected:
    const UnitData* GetDataList() override {
        static const UnitData rows[] = {
            {1, L"first", 1.0}, {2, L"second", 2.0}, {1, L"again", 3.0}, {4, L"SECOND", 4.0}, {0, nullptr, 0.0}};
        return rows;
    }
};

// A name is turned into the id of its row, and the id is looked up from the beginning.
TEST_F(Catalogue, FindsTheFirstRowOfAnId) {
    const Ref<Careless> careless = Make<Careless>();
    const Ref<IUnitDefinition> again(careless->FindUnit(L"again"));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->GetName(), L"first");
    EXPECT_EQ(again->GetFactor(), 1.0);
    const Ref<IUnitDefinition> second(careless->FindUnit(L"Second"));
    EXPECT_EQ(second->GetId(), 2);
}

class Empty : public UnitFactoryBase {
public:
    OrvStringT GetUnitCategory() const override { return OrvStringT(); }

protected:
    const UnitData* GetDataList() override {
        static const UnitData rows[] = {{0, nullptr, 0.0}};
        return rows;
    }
};

TEST_F(Catalogue, MayBeEmpty) {
    const Ref<Empty> empty = Make<Empty>();
    EXPECT_EQ(empty->FindUnit(L"g"), nullptr);
    EXPECT_EQ(empty->FindUnit(L""), nullptr);
    EXPECT_EQ(empty->FindUnit(0), nullptr);
    EXPECT_EQ(empty->FindUnit(1), nullptr);
}

/// Has no table, as long as its units are not loaded.
class Tableless : public UnitFactoryBase {
public:
    OrvStringT GetUnitCategory() const override { return OrvStringT(); }

protected:
    const UnitData* GetDataList() override { return nullptr; }
};

TEST_F(Catalogue, MayHaveNoTable) {
    const Ref<Tableless> tableless = Make<Tableless>();
    EXPECT_EQ(tableless->FindUnit(L"g"), nullptr);
    EXPECT_EQ(tableless->FindUnit(1), nullptr);
}

TEST_F(Catalogue, HasNoUnitWithoutAName) {
    const Ref<Weights> weights = Make<Weights>();
    EXPECT_EQ(weights->FindUnit(nullptr), nullptr);
}

/// Answers ids in its own way: what is looked up by name must come by it.
class ById : public Weights {
public:
    ORV_OVERLOADS2(
        IUnitDefinition* FindUnit(const wchar_t* name) override { return Weights::FindUnit(name); },
        IUnitDefinition* FindUnit(int id) override;)
    std::vector<int> asked;
};

IUnitDefinition* ById::FindUnit(int id) {
    asked.push_back(id);
    return new CountedUnitDefinition(id, ORV_TEXT(L"own"), 7.0, this);
}

TEST_F(Catalogue, LooksNamesUpByTheIdsOfTheClass) {
    const Ref<ById> weights = Make<ById>();
    const Ref<IUnitDefinition> kilogram(weights->FindUnit(L"kg"));
    ASSERT_TRUE(kilogram);
    EXPECT_EQ(kilogram->GetName(), L"own");
    EXPECT_EQ(weights->asked, std::vector<int>{2});
    EXPECT_EQ(weights->FindUnit(L"lb"), nullptr);
    EXPECT_EQ(weights->asked.size(), 1u);
}

// ---- definitions by hand ----

TEST_F(Catalogue, KeepsADefinitionThatKeepsIt) {
    Weights* const weights = new Weights();
    Ref<UnitDefinition> definition = Make<UnitDefinition>(9, L"oz", 28.35, weights);
    EXPECT_EQ(weights->References(), 2);
    weights->Release();
    EXPECT_EQ(Counted::live, 1);
    EXPECT_EQ(definition->GetId(), 9);
    EXPECT_EQ(definition->GetName(), L"oz");
    EXPECT_EQ(definition->GetFactor(), 28.35);
    EXPECT_EQ(definition->GetCategory(), L"Weights");
    definition.Reset();
    EXPECT_EQ(Counted::gone, std::vector<std::string>{"weights"});
}

TEST_F(Catalogue, IsNotNeededByADefinition) {
    wchar_t name[] = L"oz";
    const Ref<UnitDefinition> definition = Make<UnitDefinition>(9, name, 28.35, nullptr);
    name[0] = L'x';
    EXPECT_EQ(definition->GetName(), L"oz") << "the name is copied";
    EXPECT_EQ(definition->GetFactory(), nullptr);
    EXPECT_EQ(definition->GetCategory(), L"");
}

// ---- an engine's catalogues ----

TEST_F(Catalogue, IsNoneInANewEngine) {
    QueryEngine engine;
    EXPECT_EQ(engine.FindUnit(L"cm"), nullptr);
    EXPECT_TRUE(engine.AddUnitFactory(nullptr));
    EXPECT_EQ(engine.FindUnit(L"cm"), nullptr);
}

TEST_F(Catalogue, IsSharedWithAnEngine) {
    CountedUnitFactory* const factory = new CountedUnitFactory(L"Weights", L"g", 1.0, "factory");
    {
        QueryEngine engine;
        EXPECT_TRUE(engine.AddUnitFactory(factory));
        EXPECT_EQ(factory->References(), 2);
        const Ref<IUnitDefinition> gram(engine.FindUnit(L"g"));
        ASSERT_TRUE(gram);
        EXPECT_EQ(gram->GetFactory(), factory);
        EXPECT_EQ(engine.FindUnit(L"kg"), nullptr);
        EXPECT_EQ(factory->LookUps(), 2);
    }
    EXPECT_EQ(factory->References(), 1);
    factory->Release();
}

TEST_F(Catalogue, AddedFirstAnswersFirst) {
    const Ref<CountedUnitFactory> first = Make<CountedUnitFactory>(L"First", L"u", 1.0);
    const Ref<CountedUnitFactory> second = Make<CountedUnitFactory>(L"Second", L"u", 2.0);
    const Ref<CountedUnitFactory> third = Make<CountedUnitFactory>(L"Third", L"v", 3.0);
    QueryEngine engine;
    for (const Ref<CountedUnitFactory>* const factory : {&first, &second, &third}) {
        engine.AddUnitFactory(factory->Get());
    }
    const Ref<IUnitDefinition> u(engine.FindUnit(L"u"));
    EXPECT_EQ(u->GetCategory(), L"First");
    EXPECT_EQ(second->LookUps(), 0);
    const Ref<IUnitDefinition> v(engine.FindUnit(L"v"));
    EXPECT_EQ(v->GetCategory(), L"Third");
    EXPECT_EQ(engine.FindUnit(L"w"), nullptr);
    EXPECT_EQ(first->LookUps(), 3);
    EXPECT_EQ(second->LookUps(), 2);
}

TEST_F(Catalogue, AddedTwiceIsHeldTwice) {
    const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(L"Category", L"u", 1.0);
    {
        QueryEngine engine;
        engine.AddUnitFactory(factory.Get());
        engine.AddUnitFactory(factory.Get());
        EXPECT_EQ(factory->References(), 3);
        EXPECT_EQ(engine.FindUnit(L"v"), nullptr);
        EXPECT_EQ(factory->LookUps(), 2);
    }
    EXPECT_EQ(factory->References(), 1);
}

TEST_F(Catalogue, IsReleasedByItsEngineInTheOrderOfAdding) {
    {
        QueryEngine engine;
        for (const char* const label : {"first", "second", "third"}) {
            const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(L"Category", L"u", 1.0, label);
            engine.AddUnitFactory(factory.Get());
        }
        EXPECT_TRUE(Counted::gone.empty());
    }
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"first", "second", "third"}));
}

TEST_F(Catalogue, ConvertTakesNoNameFromWhatHasNoText) {
    Host host;
    const Ref<Stubborn> stubborn = Make<Stubborn>();
    host.engine.SetPropertySource(stubborn.Get());
    EXPECT_EQ(host.Run(L"{1 cm}.Convert(@This)"), "! no text");
    host.engine.SetPropertySource(nullptr);
}

TEST_F(Catalogue, OfAHostServesUnitLiterals) {
    Host host;
    const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(L"Weights", L"g", 2.0);
    host.engine.AddUnitFactory(factory.Get());
    EXPECT_EQ(host.Run(L"{1.5 g}"), "unit 1.5 g");
    EXPECT_EQ(host.Run(L"{1.5 g}.BaseValue"), "double 3");
    EXPECT_EQ(host.Run(L"{1.5 g}.Category"), "string Weights");
    EXPECT_EQ(host.Run(L"{1 cm}.Convert('g')"), "! Invalid unit name 'g'") << "each unit asks its own catalogue";
    EXPECT_EQ(host.Run(L"{1 g} + {1 cm}").substr(0, 26), "! Cannot convert unit 'cm'");
}

// The value keeps its definition, the definition its catalogue: all the rest may go.
TEST_F(Catalogue, LivesAsLongAsAValue) {
    Ref<IObject> value;
    {
        Host host;
        const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(L"Weights", L"g", 2.0, "factory");
        host.engine.AddUnitFactory(factory.Get());
        value = host.Evaluate(L"{1.5 g} + {1 g}");
        ASSERT_TRUE(value);
    }
    EXPECT_EQ(Counted::live, 2) << "the definition and the catalogue";
    EXPECT_EQ(ToText(*value), "2.5 g");
    EXPECT_EQ(Call(*value, L"Category"), "string Weights");
    EXPECT_EQ(Call(*value, L"Convert", {new ElementObject(L"g", 0)}), "unit 2.5 g");
    value.Reset();
    EXPECT_EQ(Counted::live, 0);
}

} // namespace
} // namespace OrvUQL::Tests
