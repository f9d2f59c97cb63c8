// The library hands scalars and texts upwards without objects around them. Nobody may notice: random trees give the
// same as the same trees with a host's element around every node, and as those with values of derived classes, which
// stay objects.

#include "eval/Nodes.h"
#include "support/Effort.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <limits>
#include <random>
#include <string>

namespace OrvUQL::Tests {
namespace {

using Boxing = CountedTest;

constexpr std::uint32_t seed = 20240229;

/// Passes evaluation on: to the library it is any host's element, whose value comes as an object.
class Wrapper : public RefCountImpl<IQueryElement> {
public:
    explicit Wrapper(IQueryElement* wrapped) : inner(wrapped) { Counted::Begin(); }
    Wrapper(const Wrapper&) = delete;
    Wrapper& operator=(const Wrapper&) = delete;
    ~Wrapper() override;

    EType GetType() const override { return inner->GetType(); }
    int GetStringPosition() const override { return inner->GetStringPosition(); }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override { return inner->Evaluate(engine, err); }

private:
    IQueryElement* inner;
};

Wrapper::~Wrapper() {
    ReleaseNested(inner);
    Counted::End({});
}

/// Makes the same random tree again for the same number, in one of three ways.
class TreeMaker {
public:
    enum Way {
        Plain,         ///< as the parser would
        WrappedNodes,  ///< a host's element around each
        DerivedValues, ///< literals of derived classes
    };

    TreeMaker(std::uint32_t number, Way chosenWay, IUnitFactory* unitCatalogue)
        : random(number), way(chosenWay), units(unitCatalogue) {}

    Ref<IQueryElement> Make() { return Ref<IQueryElement>(MakeNode(static_cast<int>(Below(5)) + 1)); }

private:
    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); }

    template <std::size_t N> const wchar_t* Pick(const wchar_t* const (&choices)[N]) { return choices[Below(N)]; }

    /// Positions tell the nodes apart.
    int NextPosition() { return ++position; }

    IQueryElement* Finish(IQueryElement* node) { return way == WrappedNodes ? new Wrapper(node) : node; }

    template <class T, class... Arguments> IObject* MakeValue(Arguments&&... arguments) {
        if (way == DerivedValues) {
            return new Probe<T>(std::forward<Arguments>(arguments)...);
        }
        return new T(std::forward<Arguments>(arguments)...);
    }

    IObject* MakeUnit() {
        const Ref<IUnitDefinition> definition(units->FindUnit(Pick({L"mm", L"cm", L"un", L"in"})));
        const int power = static_cast<int>(Below(4)) - 1;
        const double magnitude = static_cast<double>(Below(5)) / 2;
        return MakeValue<ObjectUnit>(definition.Get(), magnitude, power, true);
    }

    IQueryElement* MakeLiteral() {
        static constexpr int integers[] = {0, 1, 2, 3, -1, 7, 65536, INT_MAX, INT_MIN};
        static constexpr double doubles[] = {0.0,
                                             -0.0,
                                             1.0,
                                             0.5,
                                             -2.5,
                                             1e300,
                                             3e9,
                                             2.49,
                                             std::numeric_limits<double>::infinity(),
                                             std::numeric_limits<double>::quiet_NaN()};
        IObject* value = nullptr;
        switch (Below(12)) {
        case 0:
        case 1:
        case 2:
            value = MakeValue<ObjectInt>(integers[Below(std::size(integers))]);
            break;
        case 3:
        case 4:
            value = MakeValue<ObjectDouble>(doubles[Below(std::size(doubles))]);
            break;
        case 5:
        case 6:
            value = MakeValue<ObjectString>(Pick({L"", L"a", L"A", L"true", L"12", L"1.5", L" 7 ", L"0x1F", L"null"}));
            break;
        case 7:
        case 8:
            value = MakeValue<ObjectBool>(Below(2) == 0);
            break;
        case 9:
            value = MakeValue<ObjectNull>();
            break;
        case 10:
            value = MakeUnit();
            break;
        default:
            value = MakeValue<ObjectArray>(ObjectList{new ObjectInt(static_cast<int>(Below(3)))});
            break;
        }
        return Finish(new ElementObject(value, NextPosition(), false));
    }

    IQueryElement* MakeNode(int depth) {
        if (depth <= 0) {
            return MakeLiteral();
        }
        const int place = NextPosition();
        switch (Below(16)) {
        case 0:
            return MakeLiteral();
        case 1:
        case 2: {
            IQueryElement* const operand = MakeNode(depth - 1);
            return Finish(Unary(Pick({L"-", L"+", L"not", L"!"}), operand, place));
        }
        case 3:
        case 4: {
            IQueryElement* const condition = MakeNode(depth - 1);
            IQueryElement* const first = MakeNode(depth - 1);
            IQueryElement* const second = MakeNode(depth - 1);
            return Finish(Ternary(condition, first, second, place));
        }
        case 5: {
            IQueryElement* const parent = MakeNode(depth - 1);
            return Finish(
                Member(parent, Pick({L"ToString", L"This", L"Abs", L"IsNull", L"ToInt", L"Power"}), {}, place));
        }
        case 6: {
            IQueryElement* const source = MakeNode(depth - 1);
            IQueryElement* const inner =
                Below(2) == 0 ? MakeNode(depth - 1) : Finish(Member(nullptr, L"This", {}, place));
            return Finish(Group(source, inner, place));
        }
        case 7: {
            QueryElementList items;
            for (std::uint32_t count = Below(3); count > 0; --count) {
                items.push_back(MakeNode(depth - 1));
            }
            return Finish(new ElementArray(items, place));
        }
        default: {
            IQueryElement* const left = MakeNode(depth - 1);
            IQueryElement* const right = MakeNode(depth - 1);
            return Finish(Binary(left,
                                 Pick({L"+", L"+", L"-", L"*", L"/", L"\\", L"^", L"<", L">", L"=", L"==", L"<>", L"<=",
                                       L">=", L"and", L"or", L">>", L"unknown"}),
                                 right, place));
        }
        }
    }

    std::mt19937 random;
    Way way;
    IUnitFactory* units;
    int position = 0;
};

std::string Outcome(QueryEngine& engine, IQueryElement& tree) {
    ErrorSlot error;
    const Ref<IObject> value(engine.Evaluate(&tree, error.Slot()));
    const std::string place = " at " + std::to_string(engine.GetErrorPosition());
    if (!value) {
        return (error.IsEmpty() ? "!" : "! " + error.Message()) + place;
    }
    return Describe(value.Get()) + (value->IsStaticInstance() ? " static" : "") + place;
}

TEST_F(Boxing, ShowsNowhere) {
    Host host;
    const Ref<LinearDimensionUnits> units = Make<LinearDimensionUnits>(0.0);
    int values = 0;
    const int trees = Effort(30000);
    for (std::uint32_t number = seed; number < seed + static_cast<std::uint32_t>(trees); ++number) {
        const Ref<IQueryElement> plain = TreeMaker(number, TreeMaker::Plain, units.Get()).Make();
        const Ref<IQueryElement> wrapped = TreeMaker(number, TreeMaker::WrappedNodes, units.Get()).Make();
        const Ref<IQueryElement> derived = TreeMaker(number, TreeMaker::DerivedValues, units.Get()).Make();
        const std::string expected = Outcome(host.engine, *plain);
        values += expected[0] == '!' ? 0 : 1;
        ASSERT_EQ(Outcome(host.engine, *wrapped), expected) << number;
        ASSERT_EQ(Outcome(host.engine, *derived), expected) << number;
        ASSERT_EQ(Outcome(host.engine, *plain), expected) << number << ", again";
        ASSERT_EQ(host.engine.GetGroupParent(), nullptr) << number;
    }
    EXPECT_GT(values, trees / 4) << "too many of the trees have no value";
}

} // namespace
} // namespace OrvUQL::Tests
