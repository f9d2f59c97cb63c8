// A host's quantity, its definition and its catalogue, each of whose operations answers what it should not: factors
// without a sense, no definition, no catalogue, the greatest powers. What comes of it is a value or none, and never a
// crash, a leak or an engine that does not work afterwards.

#include "support/Counted.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// The operation that does not do what it should.
enum Operation {
    None,
    // of the catalogue
    FindByName,
    FindById,
    CategoryOfUnits,
    // of the definition
    Id,
    Name,
    Factor,
    Factory,
    Category,
    // of the quantity
    Value,
    DisplayValue,
    UnitFactor,
    FactorValue,
    UnitName,
    DisplayName,
    DisplayString,
    UnitCategory,
    Power,
    Definition,
    Face,
    Conversion,
    operationCount,
};

/// What is answered instead; each operation takes those that it has a type for.
struct Instead {
    double number;
    int integer;
    const wchar_t* text;
    bool withError;
};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int greatest = std::numeric_limits<int>::max();

const Instead insteads[] = {
    {0, 0, L"", false},
    {-1, -1, L"'%1' %s\n", true},
    {std::numeric_limits<double>::quiet_NaN(), greatest, L"another", false},
    {infinity, -greatest - 1, L"cm", true},
    {-infinity, 2, L"Linear Dimensions", false},
    {std::numeric_limits<double>::denorm_min(), 7, L"\xD800", true},
};

struct Fault {
    Operation operation;
    const Instead& instead;

    double NumberOr(Operation asked, double right) const { return asked == operation ? instead.number : right; }
    int IntegerOr(Operation asked, int right) const { return asked == operation ? instead.integer : right; }
    OrvStringT TextOr(Operation asked, const wchar_t* right) const {
        return OrvStringT(asked == operation ? instead.text : right);
    }
};

class FaultyDefinition : public RefCountImpl<IUnitDefinition> {
public:
    FaultyDefinition(const Fault& definitionFault, IUnitFactory* maker) : fault(definitionFault), factory(maker) {
        factory->AddRef();
        Counted::Begin();
    }
    FaultyDefinition(const FaultyDefinition&) = delete;
    FaultyDefinition& operator=(const FaultyDefinition&) = delete;
    ~FaultyDefinition() override {
        factory->Release();
        Counted::End({});
    }

    int GetId() const override { return fault.IntegerOr(Id, 1); }
    OrvStringT GetName() const override { return fault.TextOr(Name, L"ell"); }
    double GetFactor() const override { return fault.NumberOr(Factor, 4000); }
    IUnitFactory* GetFactory() const override { return fault.operation == Factory ? nullptr : factory; }
    OrvStringT GetCategory() const override { return fault.TextOr(Category, L"Cloth"); }

private:
    const Fault& fault;
    IUnitFactory* factory;
};

class FaultyFactory : public RefCountImpl<IUnitFactory> {
public:
    explicit FaultyFactory(const Fault& factoryFault) : fault(factoryFault) { Counted::Begin(); }
    FaultyFactory(const FaultyFactory&) = delete;
    FaultyFactory& operator=(const FaultyFactory&) = delete;
    ~FaultyFactory() override { Counted::End({}); }

    ORV_OVERLOADS2(
        IUnitDefinition* FindUnit(const wchar_t* name) override {
            // It knows nothing, or everything.
            const bool isKnown = OrvStringT(name).CompareNoCase(OrvStringT(L"ell")) == 0;
            return isKnown != (fault.operation == FindByName) ? new FaultyDefinition(fault, this) : nullptr;
        };
        , IUnitDefinition* FindUnit(int)
              override { return fault.operation == FindById ? nullptr : new FaultyDefinition(fault, this); };)
    OrvStringT GetUnitCategory() const override { return fault.TextOr(CategoryOfUnits, L"Cloth"); }

private:
    const Fault& fault;
};

/// A quantity that is none of the library's class.
class FaultyQuantity : public ObjectBase, public IUnit {
public:
    explicit FaultyQuantity(const Fault& quantityFault)
        : fault(quantityFault),
          factory(Make<FaultyFactory>(quantityFault)),
          definition(Make<FaultyDefinition>(quantityFault, factory.Get())) {
        Counted::Begin();
    }
    ~FaultyQuantity() override { Counted::End({}); }

    EType GetType() const override { return TypeUnit; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"unit"); }
    bool IsUnit() const override { return true; }
    IUnit* GetUnitInterface() override { return fault.operation == Face ? nullptr : this; }
    const IUnit* GetUnitInterface() const override { return fault.operation == Face ? nullptr : this; }
    OrvStringT ToString() const override { return GetDisplayString(); }
    using ObjectBase::ToString;
    IUnit* ToUnit(IUnitDefinition*, IError** err) override {
        if (fault.operation == Conversion) {
            if (fault.instead.withError && err != nullptr) {
                *err = Error::Create(L"faulty");
            }
            return nullptr;
        }
        AddRef();
        return this;
    }

    double GetValue() const override { return fault.NumberOr(Value, 8000); }
    double GetDisplayValue() const override { return fault.NumberOr(DisplayValue, 2); }
    double GetFactor() const override { return fault.NumberOr(UnitFactor, 4000); }
    double GetFactorValue() const override { return fault.NumberOr(FactorValue, 4000); }
    OrvStringT GetName() const override { return fault.TextOr(UnitName, L"ell"); }
    OrvStringT GetDisplayName() const override { return fault.TextOr(DisplayName, L"ell"); }
    OrvStringT GetDisplayString() const override { return fault.TextOr(DisplayString, L"2 ell"); }
    OrvStringT GetCategory() const override { return fault.TextOr(UnitCategory, L"Cloth"); }
    int GetPower() const override { return fault.IntegerOr(Power, 1); }
    IUnitDefinition* GetUnitDefinition() const override {
        return fault.operation == Definition ? nullptr : definition.Get();
    }
    IObject* GetObject() override { return this; }
    const IObject* GetObject() const override { return this; }

private:
    const Fault& fault;
    Ref<FaultyFactory> factory;
    Ref<FaultyDefinition> definition;
};

/// The property source: each member of it is the quantity.
class Source : public CountedObject {
public:
    explicit Source(IObject* member) : value(member) {}
    IObject* Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError**) override { return value.Share(); }

private:
    Ref<IObject> value;
};

constexpr const wchar_t* queries[] = {
    L"{2 ell}",
    L"{2 ell} + {1 ell}",
    L"{2 ell} * {3 ell}",
    L"{2 ell}.Convert('ell')",
    L"{2 ell}.Convert('yd').Value",
    L"{2 ell}.Round(1)",
    L"{2 ell}.Category + {2 ell}.DisplayUnit + {2 ell}.Unit",
    L"{2 ell} + {1 cm}",
    L"{2 ell}.Value + {2 ell}.BaseValue + {2 ell}.Power",
    L"{2 ell^2} / {1 ell}",
    L"{2 yards}",
    L"{2 ell} = {2 ell}",
    L"{2 ell} < {1 cm}",
    L"array({2 ell}, {2 ell}).Find({1 ell})",
    L"@x",
    L"@x + @x",
    L"@x - @x",
    L"@x * @x",
    L"@x / @x",
    L"@x ^ 2",
    L"@x ^ 2147483647",
    L"-@x",
    L"+@x",
    L"@x = @x",
    L"@x < @x",
    L"@x == {1 cm}",
    L"{1 cm} <> @x",
    L"@x + {1 cm}",
    L"{1 cm} - @x",
    L"{1 cm} * @x",
    L"{1 cm} / @x",
    L"@x + 1",
    L"1 + @x",
    L"1.5 * @x",
    L"2 / @x",
    L"@x > 1",
    L"@x = 'a'",
    L"@x + 'a'",
    L"'a' + @x",
    L"'' + -@x",
    L"@x and true",
    L"not @x",
    L"@x ? 1 : 2",
    L"@x.Convert('cm')",
    L"@x * {1 cm} + @x * {1 cm}",
    L"array(@x, @x).Join(',')",
    L"array(@x).IndexOf(@x)",
    L"array(@x, {1 cm}).Find({1 cm})",
    L"array(1, @x).ForEach(0, $lasteval + $item)",
    L"round(@x)",
    L"max(@x, 1)",
};

TEST(FaultyUnits, InEveryOperationAndEveryPlace) {
    for (int operation = None; operation < operationCount; ++operation) {
        for (const Instead& instead : insteads) {
            SCOPED_TRACE("operation " + std::to_string(operation) + ", instead " + std::to_string(&instead - insteads));
            const Fault fault{static_cast<Operation>(operation), instead};
            ASSERT_EQ(Counted::live, 0);
            {
                Host host;
                host.engine.AddUnitFactory(Make<FaultyFactory>(fault).Get());
                host.engine.SetPropertySource(Make<Source>(new FaultyQuantity(fault)).Get());
                for (const wchar_t* const query : queries) {
                    ErrorSlot error;
                    const Ref<IQueryElement> tree(host.engine.ParseQuery(query, error.Slot()));
                    if (!tree) {
                        EXPECT_FALSE(error.IsEmpty()) << Utf8(query);
                        continue;
                    }
                    const int before = Counted::live;
                    std::string outcomes[2];
                    for (std::string& outcome : outcomes) {
                        ErrorSlot failure;
                        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), failure.Slot()));
                        outcome = value ? Describe(value.Get()) : "! " + failure.Message();
                    }
                    EXPECT_EQ(outcomes[0], outcomes[1]) << Utf8(query);
                    EXPECT_EQ(Counted::live, before) << Utf8(query);
                    ASSERT_EQ(host.Run(L"1 + 2"), "int 3") << Utf8(query);
                }
            }
            EXPECT_EQ(Counted::live, 0);
        }
    }
}

// So that the above means something: without a fault they are quantities like others.
TEST(FaultyUnits, WithoutAFaultAreQuantities) {
    const Fault none{None, insteads[0]};
    {
        Host host;
        host.engine.AddUnitFactory(Make<FaultyFactory>(none).Get());
        host.engine.SetPropertySource(Make<Source>(new FaultyQuantity(none)).Get());
        EXPECT_EQ(host.Run(L"{2 ell} + {1 ell}"), "unit 3 ell");
        EXPECT_EQ(host.Run(L"@x + @x"), "unit 4 ell");
        EXPECT_EQ(host.Run(L"@x = @x"), "bool true");
        EXPECT_EQ(host.Run(L"@x / @x"), "unit 1");
    }
    EXPECT_EQ(Counted::live, 0);
}

} // namespace
} // namespace OrvUQL::Tests
