// Unique: what counts as equal, and the references that it keeps.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostArrays.h"
#include "values/KeptReferences.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {
namespace {

class Unique : public KeptReferences {
protected:
    /// The positions (from 0) of the items of an array that Unique keeps, as text: "0 2 3". The array's references are
    /// taken over; each item must be a watched one, or null.
    std::string KeptOf(ObjectList items) {
        const std::vector<IObject*> all(items.begin(), items.end());
        SetItems(std::move(items));
        const Ref<IObject> result = Evaluate(L"@Unique");
        if (!result) {
            return "!";
        }
        // The items of a result are in the order of the array's.
        std::string positions;
        std::size_t position = 0;
        for (const IObject* const kept : Items(result)) {
            while (position < all.size() && all[position] != kept) {
                ++position;
            }
            positions += (positions.empty() ? "" : " ") + std::to_string(position);
            ++position;
        }
        return positions;
    }
};

// ---- the references ----

TEST_F(Unique, KeepsOneForEachItemKeptOrNot) {
    IObject* const kept = WatchInt(7);
    IObject* const repeated = WatchInt(7);
    IObject* const other = WatchText(L"7");
    SetItems({kept, repeated, other});
    {
        const Ref<IObject> result = Evaluate(L"@Unique");
        ASSERT_EQ(Items(result).size(), 2u);
        EXPECT_EQ(Items(result)[0], kept) << "of equals the first";
        EXPECT_EQ(Items(result)[1], other);
        EXPECT_EQ(ReferencesOf(result.Get()), 1);
        EXPECT_EQ(Held(kept), 3) << "the array's, the result's, and one";
        EXPECT_EQ(Held(other), 3);
        EXPECT_EQ(Held(repeated), 2) << "the array's, and the one that was handed out";
    }
    EXPECT_EQ(Held(kept), 2);
    EXPECT_EQ(Held(other), 2);
    EXPECT_EQ(Held(repeated), 2);
    Evaluate(L"@Unique");
    EXPECT_EQ(Held(kept), 3);
    EXPECT_EQ(Held(repeated), 3);
}

TEST_F(Unique, KeepsAsMuchOfValuesOfAHost) {
    CountedObject* const kept = Watch(new CountedObject("", ORV_TEXT(L"x"), IObject::TypeString));
    CountedObject* const repeated = Watch(new CountedObject("", ORV_TEXT(L"x"), IObject::TypeString));
    EXPECT_EQ(KeptOf({kept, repeated}), "0");
    EXPECT_EQ(Held(kept), 2);
    EXPECT_EQ(Held(repeated), 2);
}

TEST_F(Unique, KeepsAsMuchOfTheSameObjectTwice) {
    IObject* const item = WatchInt(7);
    item->AddRef();
    SetItems({item, item});
    EXPECT_EQ(Describe(Evaluate(L"@Unique").Get()), "array (7)");
    EXPECT_EQ(Held(item), 4) << "the array's two, one kept, one for the place left out";
}

TEST_F(Unique, OfAHostsArrayKeepsReferences) {
    std::vector<CountedObject*> made;
    SetValue(new HostArray(3, [&made](int) -> IObject* {
        made.push_back(new CountedObject("made", ORV_TEXT(L"x"), IObject::TypeString));
        return made.back();
    }));
    Evaluate(L"@Unique");
    ASSERT_EQ(made.size(), 3u);
    for (CountedObject* const item : made) {
        EXPECT_EQ(item->References(), 1);
        item->Release();
    }
}

// ---- the rule ----

TEST_F(Unique, TellsTypesApart) {
    EXPECT_EQ(KeptOf({WatchInt(1), WatchDouble(1), WatchText(L"1"), Watch(new ObjectBool(true)), WatchInt(1),
                      WatchDouble(1), WatchText(L"1"), Watch(new ObjectBool(true))}),
              "0 1 2 3");
}

TEST_F(Unique, TakesEmptySlotsForEqual) {
    EXPECT_EQ(KeptOf({nullptr, WatchInt(1), nullptr, Watch(new ObjectNull()), Watch(new ObjectNull())}), "0 1 3")
        << "and a null value for something else";
    EXPECT_EQ(KeptOf({nullptr}), "0");
    EXPECT_EQ(KeptOf({Watch(new ObjectNull()), nullptr, nullptr}), "0 1");
}

TEST_F(Unique, ComparesStrictly) {
    EXPECT_EQ(KeptOf({WatchText(L"a"), WatchText(L"A"), WatchText(L"a")}), "0 1");
    EXPECT_EQ(KeptOf({WatchDouble(0.0), WatchDouble(-0.0)}), "0");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(KeptOf({WatchDouble(nan), WatchDouble(nan)}), "0 1");
    IObject* const one = WatchDouble(nan);
    one->AddRef();
    EXPECT_EQ(KeptOf({one, one}), "0 1") << "not even the same one equals itself";
    EXPECT_EQ(KeptOf({WatchDouble(infinity), WatchDouble(infinity), WatchDouble(-infinity)}), "0 2");
}

TEST_F(Unique, KeepsAllArrays) {
    IObject* const array = Watch(new ObjectArray(ObjectList()));
    array->AddRef();
    EXPECT_EQ(KeptOf({array, array, Watch(new ObjectArray(ObjectList()))}), "0 1 2");
    EXPECT_EQ(KeptOf({Watch(new ObjectExpression(nullptr)), Watch(new ObjectExpression(nullptr))}), "0 1");
}

TEST_F(Unique, TakesTypeObjectsForTheirValues) {
    EXPECT_EQ(KeptOf({WatchInt(0), Watch(new ObjectInt()), Watch(new ObjectString()), WatchText(L"")}), "0 2");
}

/// A host's value of a type name and code to be chosen, whose comparisons the test decides.
class Comparable : public CountedObject {
public:
    Comparable(const wchar_t* comparableName, EType comparableType, const wchar_t* comparableText = L"")
        : CountedObject({}, comparableText, comparableType), name(comparableName) {}

    OrvStringT GetTypeName() const override { return name; }
    bool CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const override {
        EXPECT_EQ(op, OperStrictEqual);
        EXPECT_EQ(err, nullptr) << "the reason is not wanted";
        ++comparisons;
        lastOther = other;
        lastReversed = reversed;
        result = verdict;
        return !fails;
    }

    OrvStringT name;
    bool verdict = true;
    bool fails = false;
    mutable int comparisons = 0;
    mutable const IObject* lastOther = nullptr;
    mutable bool lastReversed = false;
};

TEST_F(Unique, AsksTheKeptValueOfAHost) {
    Comparable* const kept = Watch(new Comparable(L"part", IObject::TypeGlobal));
    Comparable* const candidate = Watch(new Comparable(L"part", IObject::TypeGlobal));
    EXPECT_EQ(KeptOf({kept, candidate}), "0");
    EXPECT_EQ(kept->comparisons, 1);
    EXPECT_EQ(kept->lastOther, candidate);
    EXPECT_FALSE(kept->lastReversed);
    EXPECT_EQ(candidate->comparisons, 0);
}

TEST_F(Unique, AsksTheCandidateWhereTheKeptValueIsNoObjectOfAHost) {
    Comparable* const kept = Watch(new Comparable(L"list", IObject::TypeArray));
    Comparable* const candidate = Watch(new Comparable(L"list", IObject::TypeArray));
    EXPECT_EQ(KeptOf({kept, candidate}), "0");
    EXPECT_EQ(kept->comparisons, 0);
    EXPECT_EQ(candidate->comparisons, 1);
    EXPECT_EQ(candidate->lastOther, kept);
    EXPECT_TRUE(candidate->lastReversed) << "it stands on the right";
}

TEST_F(Unique, ComparesOnlyWhatHasTheSameTypeName) {
    Comparable* const part = Watch(new Comparable(L"part", IObject::TypeGlobal));
    Comparable* const otherCase = Watch(new Comparable(L"Part", IObject::TypeGlobal));
    Comparable* const number = Watch(new Comparable(L"int", IObject::TypeGlobal));
    EXPECT_EQ(KeptOf({part, otherCase, number}), "0 1 2");
    EXPECT_EQ(part->comparisons + otherCase->comparisons + number->comparisons, 0);
}

TEST_F(Unique, ComparesInKeptOrderUntilOneIsEqual) {
    Comparable* const first = Watch(new Comparable(L"part", IObject::TypeGlobal));
    Comparable* const second = Watch(new Comparable(L"part", IObject::TypeGlobal));
    Comparable* const third = Watch(new Comparable(L"part", IObject::TypeGlobal));
    first->verdict = false;
    EXPECT_EQ(KeptOf({first, second, third}), "0 1");
    EXPECT_EQ(first->comparisons, 2);
    EXPECT_EQ(second->comparisons, 1);
    EXPECT_EQ(second->lastOther, third);
}

TEST_F(Unique, TakesAFailedComparisonForUnequal) {
    Comparable* const kept = Watch(new Comparable(L"part", IObject::TypeGlobal));
    kept->fails = true; // though the verdict says equal
    EXPECT_EQ(KeptOf({kept, Watch(new Comparable(L"part", IObject::TypeGlobal))}), "0 1");
    EXPECT_EQ(KeptOf({Watch(new CountedObject()), Watch(new CountedObject())}), "0 1")
        << "values of a host do not compare unless their class says how";
}

// A host's value that poses as a scalar is compared as one, with the library's own and in either order.
TEST_F(Unique, ComparesPosingValuesAsWhatTheyPose) {
    const auto text = [this](const wchar_t* value) {
        return Watch(new Comparable(L"string", IObject::TypeString, value));
    };
    const auto number = [this](const wchar_t* value) { return Watch(new Comparable(L"int", IObject::TypeInt, value)); };
    EXPECT_EQ(KeptOf({WatchText(L"a"), text(L"a"), text(L"A"), WatchText(L"A")}), "0 2");
    EXPECT_EQ(KeptOf({text(L"a"), WatchText(L"a"), WatchText(L"b"), text(L"b")}), "0 2");
    EXPECT_EQ(KeptOf({number(L"5"), WatchInt(5), WatchInt(6), number(L"6"), WatchInt(5)}), "0 2");
    EXPECT_EQ(KeptOf({number(L"x"), WatchInt(5), number(L"x"), WatchInt(5)}), "0 1 2")
        << "what is no number compares with nothing";
    EXPECT_EQ(KeptOf({Watch(new Comparable(L"double", IObject::TypeDouble, L"2")), WatchDouble(2.0)}), "0");
}

TEST_F(Unique, ComparesSubclassesOfTheLibrarysValues) {
    EXPECT_EQ(KeptOf({Watch(new Probe<ObjectInt>(5)), WatchInt(5), Watch(new Probe<ObjectInt>(5)),
                      Watch(new Probe<ObjectInt>(6)), WatchInt(6)}),
              "0 3");
    EXPECT_EQ(KeptOf({Watch(new Probe<ObjectString>(L"a")), WatchText(L"a"), WatchText(L"A")}), "0 2");
    EXPECT_EQ(KeptOf({Watch(new Probe<ObjectNull>()), Watch(new ObjectNull()), nullptr}), "0 2");
}

TEST_F(Unique, ComparesUnitsStrictly) {
    const Ref<IObject> units = Evaluate(L"array({1 cm}, {10 mm}, {2.4 cm}, {3 cm}, {1 cm^2}, {1 cm^2})");
    ObjectList items(Items(units));
    for (IObject* const item : items) {
        item->AddRef();
        Watch(item);
    }
    EXPECT_EQ(KeptOf(std::move(items)), "0 2 3 4");
}

TEST_F(Unique, IsTheRuleForManyValues) {
    // Values of all kinds in an order without order, beside the rule applied the slow way.
    ObjectList items;
    unsigned seed = 12345;
    const auto draw = [&seed](unsigned limit) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<int>((seed >> 16) % limit);
    };
    for (int count = 0; count < 400; ++count) {
        const int value = draw(12);
        const std::wstring digits = std::to_wstring(value);
        switch (draw(9)) {
        case 0:
            items.push_back(WatchInt(value));
            break;
        case 1:
            items.push_back(WatchDouble(value / 2.0));
            break;
        case 2:
            items.push_back(WatchText(digits.c_str()));
            break;
        case 3:
            items.push_back(Watch(new ObjectBool(value % 2 == 0)));
            break;
        case 4:
            items.push_back(value < 6 ? nullptr : Watch(new ObjectNull()));
            break;
        case 5:
            items.push_back(Watch(new Comparable(L"int", IObject::TypeInt, digits.c_str())));
            break;
        case 6:
            items.push_back(Watch(new Comparable(L"string", IObject::TypeString, digits.c_str())));
            break;
        case 7:
            items.push_back(Watch(new Probe<ObjectInt>(value)));
            break;
        default:
            items.push_back(Watch(new ObjectArray(ObjectList())));
            break;
        }
    }
    std::string expected;
    std::vector<IObject*> kept;
    for (std::size_t position = 0; position < items.size(); ++position) {
        IObject* const candidate = items[position];
        bool isKnown = false;
        for (IObject* const other : kept) {
            bool isEqual = other == nullptr && candidate == nullptr;
            if (other != nullptr && candidate != nullptr && other->GetTypeName() == candidate->GetTypeName()) {
                isEqual = host.engine.CompareObjects(OperStrictEqual, other, candidate, isEqual, nullptr) && isEqual;
            }
            isKnown = isKnown || isEqual;
        }
        if (!isKnown) {
            kept.push_back(candidate);
            expected += (expected.empty() ? "" : " ") + std::to_string(position);
        }
    }
    ASSERT_GT(kept.size(), 40u);
    ASSERT_LT(kept.size(), 200u);
    EXPECT_EQ(KeptOf(std::move(items)), expected);
}

} // namespace
} // namespace OrvUQL::Tests
