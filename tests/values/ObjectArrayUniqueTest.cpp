// Unique: what counts as equal, and the references that it keeps.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostArrays.h"
#include "values/KeptReferences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {
namespace {

class Unique : public KeptReferences {
protected:
    /// What Unique keeps of an array of watched items. The array's references are taken over.
    std::vector<IObject*> Kept(ObjectList items) {
        SetItems(std::move(items));
        const Ref<IObject> result = Evaluate(L"@Unique");
        EXPECT_TRUE(result);
        return result ? std::vector<IObject*>(Items(result).begin(), Items(result).end()) : std::vector<IObject*>();
    }

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

// The rule by itself is private, and Unique has quicker ways than to go through a list by it. The name of a private
// member may stand where a template is instantiated explicitly.
using FindFunction = bool (ObjectArrayBase::*)(QueryEngine*, const ObjectList&, IObject*) const;
FindFunction GetFindObject();
template <FindFunction function> struct Opened {
    friend FindFunction GetFindObject() { return function; }
};
template struct Opened<&ObjectArrayBase::FindObject>;

TEST_F(Unique, IsAListsOwnRule) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList());
    const auto find = [&](const ObjectList& list, IObject* object) {
        return (array.Get()->*GetFindObject())(&host.engine, list, object);
    };
    const Ref<ObjectInt> one = Make<ObjectInt>(1);
    const Ref<ObjectInt> other = Make<ObjectInt>(1);
    const Ref<ObjectDouble> real = Make<ObjectDouble>(1.0);
    ObjectList kept;
    EXPECT_FALSE(find(kept, one.Get()));
    kept.push_back(one.Share());
    EXPECT_TRUE(find(kept, other.Get()));
    EXPECT_FALSE(find(kept, real.Get()));
    EXPECT_FALSE(find(kept, nullptr));
    kept.push_back(nullptr);
    EXPECT_TRUE(find(kept, nullptr));
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

/// What the rule keeps of an array, applied the slow way.
std::vector<IObject*> KeptByTheRule(const QueryEngine& engine, const std::vector<IObject*>& items) {
    std::vector<IObject*> kept;
    for (IObject* const candidate : items) {
        bool isKnown = false;
        for (std::size_t position = 0; position < kept.size() && !isKnown; ++position) {
            IObject* const other = kept[position];
            isKnown = other == nullptr && candidate == nullptr;
            if (other != nullptr && candidate != nullptr && other->GetTypeName() == candidate->GetTypeName()) {
                isKnown = engine.CompareObjects(OperStrictEqual, other, candidate, isKnown, nullptr) && isKnown;
            }
        }
        if (!isKnown) {
            kept.push_back(candidate);
        }
    }
    return kept;
}

/// Numbers in an order without order, the same in each run.
class Numbers {
public:
    explicit Numbers(unsigned first) : seed(first) {}
    int Below(unsigned limit) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<int>((seed >> 16) % limit);
    }

private:
    unsigned seed;
};

TEST_F(Unique, IsTheRuleForManyValues) {
    ObjectList items;
    Numbers numbers(12345);
    for (int count = 0; count < 400; ++count) {
        const int value = numbers.Below(12);
        const std::wstring digits = std::to_wstring(value);
        switch (numbers.Below(9)) {
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
    const std::vector<IObject*> kept = KeptByTheRule(host.engine, {items.begin(), items.end()});
    ASSERT_GT(kept.size(), 40u);
    ASSERT_LT(kept.size(), 200u);
    EXPECT_EQ(Kept(std::move(items)), kept);
}

// So many that what finds repetitions has grown several times.
TEST_F(Unique, IsTheRuleForScalarsOfAllSizes) {
    ObjectList items;
    Numbers numbers(54321);
    for (int count = 0; count < 1500; ++count) {
        const int small = numbers.Below(1000);
        switch (numbers.Below(5)) {
        case 0: // multiples of powers of two, of either sign
            items.push_back(WatchInt((small - 500) * (1 << numbers.Below(20))));
            break;
        case 1:
            items.push_back(WatchDouble(std::ldexp(small - 500, numbers.Below(200) - 100)));
            break;
        case 2:
            items.push_back(WatchDouble(numbers.Below(4) == 0 ? -0.0 : small));
            break;
        case 3:
            items.push_back(WatchText(std::to_wstring(small).c_str()));
            break;
        default: // nearly alike, or alike
            items.push_back(
                WatchText((std::wstring(small % 40, L'x') + static_cast<wchar_t>(L'a' + small % 3)).c_str()));
            break;
        }
    }
    const std::vector<IObject*> kept = KeptByTheRule(host.engine, {items.begin(), items.end()});
    ASSERT_GT(kept.size(), 700u);
    ASSERT_LT(kept.size(), 1450u);
    EXPECT_EQ(Kept(std::move(items)), kept);
}

/// A host's value that writes down what it is asked, for its comparisons in which order.
class Asked : public CountedObject {
public:
    Asked(std::vector<std::string>& askedLog, std::string askedLabel, const wchar_t* askedName, EType askedType,
          const wchar_t* askedText)
        : CountedObject({}, {}, askedType),
          log(askedLog),
          label(std::move(askedLabel)),
          name(askedName),
          text(askedText) {}

    OrvStringT GetTypeName() const override {
        ++typeNames;
        return name;
    }
    OrvStringT ToString() const override {
        log.push_back(label + " as text");
        return text;
    }
    bool CompareTo(EOperType, IObject* other, bool, bool& result, IError**) const override {
        const Asked* const asked = dynamic_cast<const Asked*>(other);
        log.push_back(label + " with " + (asked != nullptr ? asked->label : "a value of the library"));
        result = asked != nullptr && asked->text == text;
        return true;
    }

    static inline int typeNames = 0;

private:
    std::vector<std::string>& log;
    std::string label;
    OrvStringT name;
    OrvStringT text;
};

// A host may count on being asked: also for a value of the library that is known already.
TEST_F(Unique, AsksValuesOfAHostAsTheRuleDoes) {
    std::vector<std::string> log;
    ObjectList items;
    Numbers numbers(2026);
    for (int count = 0; count < 300; ++count) {
        const int value = numbers.Below(8);
        const std::wstring digits = std::to_wstring(value);
        const std::string label = std::to_string(count);
        switch (numbers.Below(7)) {
        case 0:
            items.push_back(WatchInt(value));
            break;
        case 1:
            items.push_back(WatchText(digits.c_str()));
            break;
        case 2:
            items.push_back(nullptr);
            break;
        case 3:
            items.push_back(Watch(new ObjectArray(ObjectList())));
            break;
        case 4:
            items.push_back(Watch(new Asked(log, label, L"part", IObject::TypeGlobal, digits.c_str())));
            break;
        case 5:
            items.push_back(Watch(new Asked(log, label, L"int", IObject::TypeInt, digits.c_str())));
            break;
        default:
            items.push_back(Watch(new Asked(log, label, L"string", IObject::TypeString, digits.c_str())));
            break;
        }
    }
    Asked::typeNames = 0;
    const std::vector<IObject*> kept = KeptByTheRule(host.engine, {items.begin(), items.end()});
    const std::vector<std::string> expected = std::exchange(log, {});
    const int expectedTypeNames = std::exchange(Asked::typeNames, 0);
    ASSERT_GT(expected.size(), 200u);

    EXPECT_EQ(Kept(std::move(items)), kept);
    EXPECT_EQ(log, expected);
    EXPECT_EQ(Asked::typeNames, expectedTypeNames);
}

} // namespace
} // namespace OrvUQL::Tests
