// What an engine does with its catalogues, and how it evaluates.

#include "eval/Nodes.h"
#include "eval/Witness.h"
#include "support/CountedUnits.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <climits>

namespace OrvUQL::Tests {
namespace {

using Engine = CountedTest;

TEST_F(Engine, FindsUnitsInTheFirstCatalogueThatKnowsThem) {
    const auto units = [](const wchar_t* category, const wchar_t* name) {
        return Make<CountedUnitFactory>(OrvStringT(category), OrvStringT(name), 1.0);
    };
    const Ref<CountedUnitFactory> first = units(L"first", L"a");
    const Ref<CountedUnitFactory> second = units(L"second", L"b");
    const Ref<CountedUnitFactory> third = units(L"third", L"a");
    const Ref<CountedUnitFactory> fourth = units(L"fourth", L"b");
    QueryEngine engine;
    for (CountedUnitFactory* const factory : {first.Get(), second.Get(), third.Get(), fourth.Get()}) {
        EXPECT_TRUE(engine.AddUnitFactory(factory));
        EXPECT_EQ(factory->References(), 2);
    }
    const Ref<IUnitDefinition> a(engine.FindUnit(L"a"));
    EXPECT_EQ(a->GetFactory(), first.Get());
    EXPECT_EQ(second->LookUps(), 0) << "asked in order, and no further than needed";
    const Ref<IUnitDefinition> b(engine.FindUnit(L"b"));
    EXPECT_EQ(b->GetFactory(), second.Get());
    EXPECT_EQ(third->LookUps(), 0);
    EXPECT_EQ(engine.FindUnit(L"c"), nullptr);
    EXPECT_EQ(fourth->LookUps(), 1);
    // Each answer is the caller's: four catalogues and two definitions live.
    EXPECT_EQ(Counted::live, 6);
    const Ref<IUnitDefinition> again(engine.FindUnit(L"a"));
    EXPECT_NE(again.Get(), a.Get());
}

TEST_F(Engine, NullIsNoCatalogue) {
    QueryEngine engine;
    EXPECT_TRUE(engine.AddUnitFactory(nullptr));
    EXPECT_EQ(engine.FindUnit(L"a"), nullptr);
    const Ref<CountedUnitFactory> units = Make<CountedUnitFactory>(OrvStringT(L"c"), OrvStringT(L"a"), 1.0);
    engine.AddUnitFactory(units.Get());
    engine.AddUnitFactory(nullptr);
    const Ref<IUnitDefinition> unit(engine.FindUnit(L"a"));
    EXPECT_TRUE(unit);
}

TEST_F(Engine, TheSameCatalogueMayBeAddedTwice) {
    const Ref<CountedUnitFactory> units = Make<CountedUnitFactory>(OrvStringT(L"c"), OrvStringT(L"a"), 1.0);
    {
        QueryEngine engine;
        engine.AddUnitFactory(units.Get());
        engine.AddUnitFactory(units.Get());
        EXPECT_EQ(units->References(), 3);
        EXPECT_EQ(engine.FindUnit(L"b"), nullptr);
        EXPECT_EQ(units->LookUps(), 2);
    }
    EXPECT_EQ(units->References(), 1);
}

TEST_F(Engine, KeepsAnyUnitPrecision) {
    QueryEngine engine;
    for (const int precision : {3, 0, -1, 15, 1000, INT_MAX, INT_MIN}) {
        engine.SetUnitPrecision(precision);
        EXPECT_EQ(engine.GetUnitPrecision(), precision);
    }
}

// ---- evaluation ----

// A host's function may run queries on the very engine that called it.
TEST_F(Engine, EvaluatesInsideOfAnEvaluation) {
    QueryEngine engine;
    const Ref<IQueryElement> inner(
        engine.ParseQuery(L"5[.ToString() + .ToString()] + x.ToString().ToString()", nullptr));
    ASSERT_TRUE(inner);
    int depth = 0;
    Plan plan;
    plan.label = "G";
    plan.text = OrvStringT(L"end");
    plan.invoke = [&](QueryEngine* calling, const wchar_t* name, const QueryElementList&, IError** err) -> IObject* {
        EXPECT_EQ(OrvStringT(name), L"x");
        if (++depth > 20) {
            return new ObjectString(L"end");
        }
        return calling->Evaluate(inner.Get(), err);
    };
    const Ref<Witness> global = Make<Witness>(plan);
    engine.SetGlobal(global.Get());
    std::string expected = "string ";
    for (int round = 0; round <= 20; ++round) {
        expected += "55";
    }
    const Ref<IObject> value(engine.Evaluate(inner.Get(), nullptr));
    EXPECT_EQ(Describe(value.Get()), expected + "end");
    EXPECT_EQ(engine.GetGroupParent(), nullptr);
    engine.SetGlobal(nullptr);
}

/// A catalogue that parses something wrong with the engine that asks it.
class ParsingCatalogue : public UnitFactoryBase {
public:
    explicit ParsingCatalogue(QueryEngine& askingEngine) : engine(askingEngine) {}
    OrvStringT GetUnitCategory() const override { return OrvStringT(L"c"); }

protected:
    const UnitData* GetDataList() override {
        EXPECT_EQ(engine.ParseQuery(L"      a b", nullptr), nullptr);
        static constexpr UnitData rows[] = {{1, L"u", 1.0}, {0, nullptr, 0.0}};
        return rows;
    }

private:
    QueryEngine& engine;
};

// And its catalogues may parse with it.
TEST_F(Engine, ParsesInsideOfAParse) {
    QueryEngine engine;
    const Ref<ParsingCatalogue> units = Make<ParsingCatalogue>(engine);
    engine.AddUnitFactory(units.Get());
    const Ref<IQueryElement> tree(engine.ParseQuery(L"{1 u}", nullptr));
    EXPECT_TRUE(tree);
    EXPECT_EQ(engine.GetErrorPosition(), -1) << "the parse that ended last succeeded";
    EXPECT_EQ(engine.ParseQuery(L"{1 u} x", nullptr), nullptr);
    EXPECT_EQ(engine.GetErrorPosition(), 6);
}

TEST_F(Engine, OneTreeServesSeveralEngines) {
    Host one;
    Host other;
    const Ref<IQueryElement> tree = one.Parse(L"@x + 1");
    one.engine.SetPropertySource(Ref<IObject>(new ObjectNull()).Get());
    Plan plan;
    plan.invoke = [](QueryEngine*, const wchar_t*, const QueryElementList&, IError**) -> IObject* {
        return new ObjectInt(41);
    };
    other.engine.SetPropertySource(Ref<IObject>(new Witness(plan)).Get());
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(one.Run(*tree), "! Cannot convert the object 'null' to type 'Int'");
        EXPECT_EQ(other.Run(*tree), "int 42");
    }
}

TEST_F(Engine, HandsOutFreshValues) {
    Host host;
    for (const wchar_t* const query :
         {L"1 + 2", L"1.5 * 2", L"1 < 2", L"not true", L"'a' + 'b'", L"-5", L"{1 mm} + {2 mm}", L"true and true", L"+1",
          L"array(1)", L"5.ToString()", L"'a'.ToString()", L"5.TypeName()"}) {
        const Ref<IQueryElement> tree = host.Parse(query);
        const Ref<IObject> first(host.engine.Evaluate(tree.Get(), nullptr));
        const Ref<IObject> second(host.engine.Evaluate(tree.Get(), nullptr));
        EXPECT_NE(first.Get(), second.Get()) << Utf8(query);
        EXPECT_EQ(References(*first), 1) << Utf8(query) << ": nobody else holds it";
        EXPECT_EQ(Describe(first.Get()), Describe(second.Get())) << Utf8(query);
    }
}

TEST_F(Engine, HandsOutLiteralsAsTheyAre) {
    Host host;
    for (const wchar_t* const query : {L"1", L"'a'", L"null", L"true ? 1 : 2", L"false ? 1 : null", L"(1)", L"1['a']",
                                       L"iif(true, 1, 2)", L"5.This()", L"true ? false ? 1 : 'x' : 2"}) {
        const Ref<IQueryElement> tree = host.Parse(query);
        const Ref<IObject> first(host.engine.Evaluate(tree.Get(), nullptr));
        const Ref<IObject> second(host.engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(first.Get(), second.Get()) << Utf8(query);
        EXPECT_EQ(References(*first), 3) << Utf8(query) << ": the element's and ours";
    }
}

} // namespace
} // namespace OrvUQL::Tests