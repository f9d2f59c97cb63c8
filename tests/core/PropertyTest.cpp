// Properties: rows of a method table that evaluation reads without a value object.

#include "support/Counted.h"
#include "support/Host.h"
#include "support/Print.h"
#include "support/Ref.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <stdexcept>
#include <string>

namespace OrvUQL::Tests {
namespace {

/// One property of each type, by getter and by field.
class Item : public CountedObject {
public:
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"item"); }
    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }

    bool truth = true;
    int whole = 42;
    short narrow = -7;
    double real = 2.5;
    float single = 0.5F;
    OrvStringT name = ORV_TEXT(L"bolt");
    std::optional<int> missing;
    std::optional<double> present = 1.25;
    IObject* object = nullptr; // borrowed
    int thrown = 0;
    mutable int reads = 0;

    bool GetTruth() const { return truth; }
    int GetWhole() const {
        ++reads;
        return whole;
    }
    double GetReal() const noexcept { return real; }
    OrvStringT GetName() const { return name; }
    const OrvStringT& GetNameReference() const { return name; }
    IObject* GetObject() const {
        QueryEngine::AddRefObject(object);
        return object;
    }
    Item* GetSelf() const {
        Item* const self = const_cast<Item*>(this);
        self->AddRef();
        return self;
    }
    PropertyValue GetAny() const {
        switch (whole) {
        case 0:
            return {};
        case 1:
            return true;
        case 2:
            return 2;
        case 3:
            return 3.5;
        case 4:
            return L"four";
        case 5:
            return name;
        default:
            return PropertyValue(GetObject());
        }
    }
    int Throw() const {
        switch (thrown) {
        case 1:
            throw std::bad_alloc();
        case 2:
            throw std::runtime_error("the host's own");
        case 3:
            throw std::length_error("too long");
        default:
            return whole;
        }
    }

    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {
            MethodMap::Property<&Item::GetTruth>(L"Truth"),
            MethodMap::Property<&Item::truth>(L"TruthField"),
            MethodMap::Property<&Item::GetWhole>(L"Whole"),
            MethodMap::Property<&Item::whole>(L"WholeField"),
            MethodMap::Property<&Item::narrow>(L"Narrow"),
            MethodMap::Property<&Item::GetReal>(L"Real"),
            MethodMap::Property<&Item::single>(L"Single"),
            MethodMap::Property<&Item::GetName>(L"Name"),
            MethodMap::Property<&Item::GetNameReference>(L"NameReference"),
            MethodMap::Property<&Item::name>(L"NameField"),
            MethodMap::Property<&Item::missing>(L"Missing"),
            MethodMap::Property<&Item::present>(L"Present"),
            MethodMap::Property<&Item::GetObject>(L"Object"),
            MethodMap::Property<&Item::GetSelf>(L"Self"),
            MethodMap::Property<&Item::GetAny>(L"Any"),
            MethodMap::Property<&Item::Throw>(L"Throw"),
            MethodMap::Chain(&Item::ObjectBaseMethods),
            MethodMap::End(),
        };
        return table;
    }
};

/// The same with Invoke() overridden, so that evaluation asks it for every name.
class AskedItem : public Item {
public:
    IObject* Invoke(QueryEngine* engine, const wchar_t* called, const QueryElementList& args, IError** err) override {
        ++asked;
        return Item::Invoke(engine, called, args, err);
    }
    int asked = 0;
};

class Property : public CountedTest {
protected:
    /// What comes of a query over an item, which is evaluated three times: the call sites know the class by then.
    std::string Over(Item& item, const wchar_t* query) {
        host.engine.SetPropertySource(&item);
        const Ref<IQueryElement> tree = host.Parse(query);
        const std::string first = host.Run(*tree);
        EXPECT_EQ(host.Run(*tree), first) << Utf8(query);
        EXPECT_EQ(host.Run(*tree), first) << Utf8(query);
        host.engine.SetPropertySource(nullptr);
        return first;
    }

    Host host;
};

TEST_F(Property, GivesEveryType) {
    const Ref<Item> item = Make<Item>();
    EXPECT_EQ(Over(*item, L"@Truth"), "bool true");
    EXPECT_EQ(Over(*item, L"@truthfield"), "bool true");
    EXPECT_EQ(Over(*item, L"@Whole"), "int 42");
    EXPECT_EQ(Over(*item, L"@WholeField"), "int 42");
    EXPECT_EQ(Over(*item, L"@Narrow"), "int -7");
    EXPECT_EQ(Over(*item, L"@Real"), "double 2.5");
    EXPECT_EQ(Over(*item, L"@Single"), "double 0.5");
    EXPECT_EQ(Over(*item, L"@Name"), "string bolt");
    EXPECT_EQ(Over(*item, L"@NameReference"), "string bolt");
    EXPECT_EQ(Over(*item, L"@NameField"), "string bolt");
    EXPECT_EQ(Over(*item, L"@Missing"), "null null");
    EXPECT_EQ(Over(*item, L"@Present"), "double 1.25");
    EXPECT_EQ(Over(*item, L"@Object"), "null null") << "a null pointer is the null value";
}

TEST_F(Property, IsReadInsideOfOperators) {
    const Ref<Item> item = Make<Item>();
    EXPECT_EQ(Over(*item, L"@Whole + 1"), "int 43");
    EXPECT_EQ(Over(*item, L"1 + @WholeField * @Narrow"), "int -293");
    EXPECT_EQ(Over(*item, L"@Whole > @Real and @Truth"), "bool true");
    EXPECT_EQ(Over(*item, L"@Name + '-' + @NameField"), "string bolt-bolt");
    EXPECT_EQ(Over(*item, L"@Name = 'BOLT' ? @Present : @Missing"), "double 1.25");
    EXPECT_EQ(Over(*item, L"-@Whole"), "int -42");
    EXPECT_EQ(Over(*item, L"@Self.Whole + @Self.Self.Narrow"), "int 35");
    EXPECT_EQ(Over(*item, L"@Name.Length() + @Name.ToUpper()"), "string 4BOLT");
    EXPECT_EQ(Over(*item, L"array(1, 2).Convert($item + @Whole)"), "array (43,44)");
}

TEST_F(Property, IsComparedWithAPropertyOfAnotherType) {
    const Ref<Item> item = Make<Item>();
    EXPECT_EQ(Over(*item, L"@Whole > @Real ? 1 : 2"), "int 1");
    EXPECT_EQ(Over(*item, L"@Whole = @Name ? 1 : 2"), "int 2");
    EXPECT_EQ(Over(*item, L"@Whole = @Missing ? 1 : 2"), "int 2");
    EXPECT_EQ(Over(*item, L"@Real > @Whole ? 1 : 2"), "int 2");
}

TEST_F(Property, GivesWhatIsKnownAtRunTimeOnly) {
    const Ref<Item> item = Make<Item>();
    const char* const expected[] = {"null null", "bool true", "int 2", "double 3.5", "string four", "string bolt"};
    for (int kind = 0; kind < 6; ++kind) {
        item->whole = kind;
        EXPECT_EQ(Over(*item, L"@Any"), expected[kind]);
        EXPECT_EQ(Over(*item, L"iif(true, @Any, 0)"), expected[kind]);
    }
    const Ref<CountedObject> object = Make<CountedObject>("", ORV_TEXT(L"text"));
    item->object = object.Get();
    item->whole = 6;
    EXPECT_EQ(Over(*item, L"@Any"), "counted text");
    EXPECT_EQ(Over(*item, L"@Any + 1"), "string text1");
    EXPECT_EQ(object->References(), 1);
}

TEST_F(Property, HandsReferencesOver) {
    const Ref<Item> item = Make<Item>();
    const Ref<CountedObject> object = Make<CountedObject>("", ORV_TEXT(L"3"));
    item->object = object.Get();
    EXPECT_EQ(Over(*item, L"@Object"), "counted 3");
    EXPECT_EQ(Over(*item, L"@Object * 2"), "int 6");
    EXPECT_EQ(Over(*item, L"@Object.ToInt() + 1"), "int 4");
    EXPECT_EQ(Over(*item, L"@Object and 1 / 0"), "! Division By Zero");
    EXPECT_EQ(object->References(), 1);
    EXPECT_EQ(item->References(), 1);
}

TEST_F(Property, IsAskedThroughInvokeWhereThatIsOverridden) {
    const Ref<AskedItem> item = Make<AskedItem>();
    EXPECT_EQ(Over(*item, L"@Whole + @Real"), "double 44.5");
    EXPECT_EQ(item->asked, 12) << "twice an evaluation, of which Run() does two";
}

TEST_F(Property, IsAskedThroughInvokeWhereItsOwnClassOverridesThat) {
    class Secretive : public CountedObject {
    public:
        int asked = 0;
        int half = 21;
        const MethodMap* GetMethodMap() const override {
            static const MethodMap table[] = {MethodMap::Property<&Secretive::half>(L"Half"), MethodMap::End()};
            return table;
        }

    private:
        IObject* Invoke(QueryEngine* engine, const wchar_t* called, const QueryElementList& args,
                        IError** err) override {
            ++asked;
            return CountedObject::Invoke(engine, called, args, err);
        }
    };
    class Overloaded : public CountedObject {
    public:
        int asked = 0;
        int half = 21;
        const MethodMap* GetMethodMap() const override {
            static const MethodMap table[] = {MethodMap::Property<&Overloaded::half>(L"Half"), MethodMap::End()};
            return table;
        }
        void Invoke() {}
        IObject* Invoke(QueryEngine* engine, const wchar_t* called, const QueryElementList& args,
                        IError** err) override {
            ++asked;
            return CountedObject::Invoke(engine, called, args, err);
        }
    };
    const auto expectAsked = [&](auto&& object) {
        host.engine.SetPropertySource(object.Get());
        const Ref<IQueryElement> tree = host.Parse(L"@Half + @Half");
        for (int round = 1; round <= 3; ++round) {
            const Ref<IObject> value(host.engine.Evaluate(tree.Get(), nullptr));
            EXPECT_EQ(Describe(value.Get()), "int 42");
            EXPECT_EQ(object->asked, 2 * round);
        }
        host.engine.SetPropertySource(nullptr);
    };
    expectAsked(Make<Secretive>());
    expectAsked(Make<Overloaded>());
}

TEST_F(Property, TellsFromItsClassWhetherInvokeHasToBeAsked) {
    EXPECT_TRUE(detail::looksNamesUp<Item>);
    EXPECT_FALSE(detail::looksNamesUp<AskedItem>);
    class Static : public CountedObject {
    public:
        bool IsStaticInstance() const override { return true; }
    };
    EXPECT_FALSE(detail::looksNamesUp<Static>);
}

TEST_F(Property, IsReadOnceForEachTimeItIsNamed) {
    const Ref<Item> item = Make<Item>();
    EXPECT_EQ(Over(*item, L"@Whole - @Whole"), "int 0");
    EXPECT_EQ(item->reads, 12);
}

TEST_F(Property, TakesNoArguments) {
    const Ref<Item> item = Make<Item>();
    EXPECT_EQ(Over(*item, L"@Whole()"), "int 42");
    EXPECT_EQ(Over(*item, L"@Whole(1)"), "! Too many parameters specified for method Whole. It expects only 0");
}

TEST_F(Property, StandsInTheListingOfMethods) {
    const Ref<Item> item = Make<Item>();
    EXPECT_EQ(Over(*item, L"@help.SubStr(0, 31)"), "string item.Truth()\ritem.TruthField()\r");
}

TEST_F(Property, SharesACallSiteWithOtherClasses) {
    class Other : public CountedObject {
    public:
        int half = 21;
        const MethodMap* GetMethodMap() const override {
            static const MethodMap table[] = {MethodMap::Property<&Other::half>(L"Whole"), MethodMap::End()};
            return table;
        }
    };
    const Ref<Item> item = Make<Item>();
    const Ref<Other> other = Make<Other>();
    const Ref<IQueryElement> tree = host.Parse(L"@Whole + 1");
    for (int round = 0; round < 3; ++round) {
        host.engine.SetPropertySource(item.Get());
        EXPECT_EQ(host.Run(*tree), "int 43");
        host.engine.SetPropertySource(other.Get());
        EXPECT_EQ(host.Run(*tree), "int 22");
        host.engine.SetPropertySource(nullptr);
        EXPECT_EQ(host.Run(*tree), "! Invalid use of '@Whole' in the current context at position 0");
    }
}

TEST_F(Property, MayBelongToABaseThatIsNotTheFirst) {
    struct Plain {
        virtual ~Plain() = default;
        double weight = 7.5;
    };
    class Heavy : public Plain, public CountedObject {
    public:
        double GetWeight() const { return weight; }
        const MethodMap* GetMethodMap() const override {
            static const MethodMap table[] = {MethodMap::Property<&Heavy::GetWeight>(L"Weight"), MethodMap::End()};
            return table;
        }
    };
    const Ref<Heavy> heavy = Make<Heavy>();
    host.engine.SetPropertySource(heavy.Get());
    const Ref<IQueryElement> tree = host.Parse(L"@Weight * 2");
    EXPECT_EQ(host.Run(*tree), "double 15");
    EXPECT_EQ(host.Run(*tree), "double 15");
    host.engine.SetPropertySource(nullptr);
}

TEST_F(Property, ThatFindsNoMemoryFailsWhereItStands) {
    const Ref<Item> item = Make<Item>();
    host.engine.SetPropertySource(item.Get());
    const Ref<IQueryElement> alone = host.Parse(L"@Throw");
    const Ref<IQueryElement> inside = host.Parse(L"1 + @Throw * 2");
    const Ref<IQueryElement> behindText = host.Parse(L"@Name + @Throw");
    const Ref<IQueryElement> behindPushed = host.Parse(L"(@Name + 'x') + (1 + @Throw)");
    for (int round = 0; round < 6; ++round) {
        item->thrown = round % 2 == 0 ? 1 : 3; // a text that is too long finds no memory either
        EXPECT_EQ(host.Run(*alone), "! Internal error");
        EXPECT_EQ(host.engine.GetErrorPosition(), 0);
        EXPECT_EQ(host.Run(*inside), "! Internal error");
        EXPECT_EQ(host.engine.GetErrorPosition(), 4);
        EXPECT_EQ(host.Run(*behindText), "! Internal error");
        EXPECT_EQ(host.engine.GetErrorPosition(), 8);
        EXPECT_EQ(host.Run(*behindPushed), "! Internal error");
        EXPECT_EQ(host.engine.GetErrorPosition(), 21);
        item->thrown = 0;
        EXPECT_EQ(host.Run(*inside), "int 85");
        EXPECT_EQ(host.Run(*behindText), "string bolt42");
        EXPECT_EQ(host.Run(*behindPushed), "string boltx43");
    }
    host.engine.SetPropertySource(nullptr);
}

// An expression that is evaluated again and again runs by itself from the second time on.
TEST_F(Property, ThatFindsNoMemoryInALoopFailsWhereItStands) {
    /// Finds memory so many times.
    class Failing : public CountedObject {
    public:
        mutable int left = 0;
        bool isTooLong = false;
        int GetNumber() const {
            if (left-- > 0) {
                return 1;
            }
            if (isTooLong) {
                throw std::length_error("too long");
            }
            throw std::bad_alloc();
        }
        const MethodMap* GetMethodMap() const override {
            static const MethodMap table[] = {MethodMap::Property<&Failing::GetNumber>(L"Number"), MethodMap::End()};
            return table;
        }
    };
    const Ref<Failing> failing = Make<Failing>();
    host.engine.SetPropertySource(failing.Get());
    const Ref<IQueryElement> tree = host.Parse(L"array(1, 2, 3).ForEach(0, $lasteval + @Number)");
    for (int round = 0; round < 8; ++round) {
        failing->isTooLong = round >= 4;
        failing->left = round % 4;
        ErrorSlot error;
        const Ref<IObject> value(host.engine.Evaluate(tree.Get(), error.Slot()));
        if (round % 4 == 3) {
            EXPECT_EQ(Describe(value.Get()), "int 3");
            EXPECT_EQ(host.engine.GetErrorPosition(), -1);
        } else {
            EXPECT_FALSE(value);
            EXPECT_EQ(error.Message(), "Internal error") << round;
            EXPECT_EQ(host.engine.GetErrorPosition(), 38) << round;
        }
    }
    host.engine.SetPropertySource(nullptr);
}

TEST_F(Property, MayThrowWhatItLikes) {
    const Ref<Item> item = Make<Item>();
    host.engine.SetPropertySource(item.Get());
    const Ref<IQueryElement> tree = host.Parse(L"(@Name + 'x') + (1 + @Throw)");
    for (int round = 0; round < 3; ++round) {
        item->thrown = 2;
        EXPECT_THROW(host.engine.Evaluate(tree.Get(), nullptr), std::runtime_error);
        EXPECT_EQ(host.engine.GetErrorPosition(), -1) << "the engine knows nothing of it";
        item->thrown = 0;
        EXPECT_EQ(host.Run(*tree), "string boltx43");
    }
    host.engine.SetPropertySource(nullptr);
}

// ---- PropertyValue ----

TEST_F(Property, ValueOwnsWhatItHolds) {
    const Ref<CountedObject> object = Make<CountedObject>();
    object->AddRef();
    PropertyValue first(object.Get());
    PropertyValue second(std::move(first));
    EXPECT_EQ(object->References(), 2);
    PropertyValue third(5);
    third = std::move(second);
    EXPECT_EQ(object->References(), 2);
    { const PropertyValue last(std::move(third)); }
    EXPECT_EQ(object->References(), 1);
    const PropertyValue none(static_cast<IObject*>(nullptr));
    const PropertyValue text(OrvStringT(L"a text"));
}

} // namespace
} // namespace OrvUQL::Tests
