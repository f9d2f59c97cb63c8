// How two objects are compared: by which rule, by whose conversions, and by whose own comparison.

#include "eval/Verdicts.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace OrvUQL::Tests {
namespace {

using Comparison = VerdictTest;

TEST_F(Comparison, OfNulls) {
    const Ref<ObjectNull> null = Make<ObjectNull>();
    const Ref<ObjectNull> otherNull = Make<ObjectNull>();
    // Null is neither greater nor less than anything, and that is no error; a code that is none has no verdict and no
    // error.
    EXPECT_EQ(Objects(*null, *otherNull), "!!ffffTTf!");
    EXPECT_EQ(Objects(*null, *null), "!!ffffTTf!");
    EXPECT_EQ(message, "");
    std::vector<Ref<IObject>> others;
    others.push_back(Ref<IObject>(new ObjectBool(false)));
    others.push_back(Ref<IObject>(new ObjectInt(0)));
    others.push_back(Ref<IObject>(new ObjectDouble(0.0)));
    others.push_back(Ref<IObject>(new ObjectString(L"null")));
    others.push_back(Ref<IObject>(new ObjectArray(ObjectList())));
    others.push_back(Ref<IObject>(new ObjectUnit(nullptr, 0, 1, false)));
    others.push_back(Ref<IObject>(new ObjectGlobal()));
    others.push_back(Ref<IObject>(new ObjectExpression(nullptr)));
    others.push_back(Ref<IObject>(new Witness({})));
    for (const Ref<IObject>& other : others) {
        EXPECT_EQ(Objects(*null, *other), "!!ffffffT!") << Describe(other.Get());
        EXPECT_EQ(Objects(*other, *null), "!!ffffffT!") << Describe(other.Get());
        EXPECT_EQ(message, "") << Describe(other.Get());
    }
    EXPECT_TRUE(TakeLog().empty()) << "nobody is asked to compare or convert";
}

// By the type code the rule is chosen, by IsNull() the verdict.
TEST_F(Comparison, OfNullsOfAHost) {
    Plan plan;
    plan.type = IObject::TypeNull;
    const Ref<Witness> notReally = Make<Witness>(plan);
    plan.isNull = true;
    const Ref<Witness> really = Make<Witness>(plan);
    plan.type = IObject::TypeInt;
    const Ref<Witness> hidden = Make<Witness>(plan);
    const Ref<ObjectNull> null = Make<ObjectNull>();
    EXPECT_EQ(Objects(*really, *null), "!!ffffTTf!");
    EXPECT_EQ(Objects(*notReally, *null), "!!ffffffT!");
    EXPECT_EQ(Objects(*null, *hidden), "!!ffffTTf!");
}

TEST_F(Comparison, OfNumbers) {
    const Ref<ObjectInt> one = Make<ObjectInt>(1);
    const Ref<ObjectInt> two = Make<ObjectInt>(2);
    const Ref<ObjectBool> yes = Make<ObjectBool>(true);
    const Ref<ObjectBool> no = Make<ObjectBool>(false);
    const Ref<ObjectDouble> oneAndAHalf = Make<ObjectDouble>(1.5);
    const Ref<ObjectDouble> onePointNought = Make<ObjectDouble>(1.0);
    EXPECT_EQ(Objects(*one, *two), intLess);
    EXPECT_EQ(Objects(*one, *one), intEqual);
    EXPECT_EQ(Objects(*yes, *one), intEqual);
    EXPECT_EQ(Objects(*yes, *two), intLess) << "as ints";
    EXPECT_EQ(Objects(*yes, *no), intGreater);
    EXPECT_EQ(Objects(*no, *no), intEqual);
    EXPECT_EQ(Objects(*one, *onePointNought), intEqual);
    EXPECT_EQ(Objects(*oneAndAHalf, *one), intGreater);
    EXPECT_EQ(Objects(*yes, *oneAndAHalf), intLess);
    const Ref<ObjectDouble> sum = Make<ObjectDouble>(0.1 + 0.2);
    const Ref<ObjectDouble> third = Make<ObjectDouble>(0.3);
    EXPECT_EQ(Objects(*sum, *third), intGreater) << "without tolerance";
    engine.SetUnitPrecision(-5);
    EXPECT_EQ(Objects(*sum, *third), intGreater) << "the unit precision is for units";
    const Ref<ObjectDouble> nan = Make<ObjectDouble>(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(Objects(*nan, *nan), unordered);
}

TEST_F(Comparison, OfTexts) {
    const Ref<ObjectString> text = Make<ObjectString>(L"10");
    const Ref<ObjectInt> nine = Make<ObjectInt>(9);
    const Ref<ObjectDouble> ten = Make<ObjectDouble>(10.0);
    const Ref<ObjectBool> yes = Make<ObjectBool>(true);
    const Ref<ObjectString> capitals = Make<ObjectString>(L"TRUE");
    // A string beside anything but null, units and global objects makes texts of both.
    EXPECT_EQ(Objects(*text, *nine), intLess);
    EXPECT_EQ(Objects(*text, *ten), intEqual);
    EXPECT_EQ(Objects(*capitals, *yes), "ffffTTTfff");
    ObjectList items{new ObjectInt(1), new ObjectInt(0)};
    const Ref<ObjectArray> array = Make<ObjectArray>(std::move(items));
    const Ref<ObjectString> shown = Make<ObjectString>(L"(1,0)");
    EXPECT_EQ(Objects(*array, *shown), intEqual);
}

TEST_F(Comparison, OfArrays) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList());
    const Ref<ObjectInt> one = Make<ObjectInt>(1);
    EXPECT_EQ(Objects(*array, *array), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot compare object 'array' to object 'array'. Incompatible types for this operation");
    // Beside a number an array is a number, which it seldom is.
    EXPECT_EQ(Objects(*array, *one), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot convert string '()' to Integer");
    const Ref<ObjectArray> five = Make<ObjectArray>(ObjectList{new ObjectInt(5)});
    EXPECT_EQ(Objects(*five, *one), intLess) << "(5) reads as -5";
}

TEST_F(Comparison, OfExpressions) {
    const Ref<ObjectExpression> expression = Make<ObjectExpression>(nullptr);
    const Ref<ObjectInt> one = Make<ObjectInt>(1);
    const Ref<ObjectString> text = Make<ObjectString>(L"a");
    EXPECT_EQ(Objects(*expression, *expression), "!!!!!!!!!!");
    EXPECT_EQ(message, "") << "an expression fails without a word";
    EXPECT_EQ(Objects(*expression, *one), "!!!!!!!!!!");
    EXPECT_EQ(Objects(*text, *expression), "!!!!!!!!!!");
    EXPECT_EQ(message, "");
}

TEST_F(Comparison, VerdictIsFalseBeforeAnythingElse) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList());
    bool result = true;
    EXPECT_FALSE(engine.CompareObjects(OperEqual, array.Get(), array.Get(), result, nullptr));
    EXPECT_FALSE(result);
}

// Which conversions are called, on whom, in which order. The types' table tells the rule.
TEST_F(Comparison, ConvertsBothSidesFromLeftToRight) {
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            Plan plan;
            plan.label = "L";
            plan.type = static_cast<IObject::EType>(left);
            const Ref<Witness> a = Make<Witness>(plan);
            plan.label = "R";
            plan.type = static_cast<IObject::EType>(right);
            const Ref<Witness> b = Make<Witness>(plan);
            bool result = false;
            ErrorSlot error;
            const bool reached = engine.CompareObjects(OperGreaterEqual, a.Get(), b.Get(), result, error.Slot());
            Log expected;
            bool verdict = true;
            switch (engine.GetOperandType(a.Get(), b.Get())) {
            case IObject::TypeNull:
                verdict = false;
                break;
            case IObject::TypeDouble:
                expected = {"L.ToDouble", "R.ToDouble"};
                break;
            case IObject::TypeString:
                expected = {"L.ToString", "R.ToString"};
                break;
            case IObject::TypeUnit: // neither has the face of a unit
                EXPECT_EQ(error.Message(), "Internal error") << left << " and " << right;
                EXPECT_FALSE(reached);
                EXPECT_TRUE(TakeLog().empty());
                continue;
            case IObject::TypeInt:
            case IObject::TypeBool:
                expected = {"L.ToInt", "R.ToInt"};
                break;
            default:
                expected = {left == 8 ? "L.CompareTo(2, R, left)" : "R.CompareTo(2, L, right)"};
                break;
            }
            EXPECT_TRUE(reached) << left << " and " << right << ": " << error.Message();
            EXPECT_EQ(result, verdict) << left << " and " << right;
            EXPECT_EQ(TakeLog(), expected) << left << " and " << right;
        }
    }
}

TEST_F(Comparison, EndsWithTheFirstConversionThatFails) {
    struct Row {
        IObject::EType type;
        const char* operation;
    };
    for (const Row& row :
         {Row{IObject::TypeInt, "ToInt"}, Row{IObject::TypeDouble, "ToDouble"}, Row{IObject::TypeString, "ToString"}}) {
        Plan good;
        good.label = "G";
        good.type = row.type;
        Plan bad = good;
        bad.label = "B";
        bad.failing = {row.operation};
        const Ref<Witness> a = Make<Witness>(good);
        const Ref<Witness> b = Make<Witness>(bad);
        const std::string operation = row.operation;
        EXPECT_EQ(Objects(*a, *b), "!!!!!!!!!!");
        EXPECT_EQ(message, "B: " + operation);
        TakeLog();
        bool result = true;
        EXPECT_FALSE(engine.CompareObjects(OperEqual, b.Get(), a.Get(), result, nullptr));
        EXPECT_FALSE(result);
        EXPECT_EQ(TakeLog(), (Log{"B." + operation})) << "the other side is not asked any more";
    }
}

// ---- CompareTo ----

TEST_F(Comparison, AHostsObjectDecidesItself) {
    Plan plan;
    plan.label = "H";
    const Ref<Witness> object = Make<Witness>(plan);
    const Ref<ObjectInt> seven = Make<ObjectInt>(7);
    const Ref<ObjectString> text = Make<ObjectString>(L"a");
    EXPECT_EQ(Objects(*object, *seven), "TTTTTTTTTT");
    for (int op = -1; op <= 8; ++op) {
        const std::string code = std::to_string(op);
        bool result = false;
        TakeLog();
        EXPECT_TRUE(engine.CompareObjects(static_cast<EOperType>(op), object.Get(), seven.Get(), result, nullptr));
        EXPECT_EQ(TakeLog(), (Log{"H.CompareTo(" + code + ", int 7, left)"}));
        EXPECT_TRUE(engine.CompareObjects(static_cast<EOperType>(op), text.Get(), object.Get(), result, nullptr));
        EXPECT_EQ(TakeLog(), (Log{"H.CompareTo(" + code + ", string a, right)"}));
    }
    EXPECT_EQ(References(*object), 1);
    EXPECT_EQ(References(*seven), 1);
}

TEST_F(Comparison, OfTwoHostsObjectsTheLeftDecides) {
    Plan plan;
    plan.label = "A";
    const Ref<Witness> a = Make<Witness>(plan);
    plan.label = "B";
    plan.verdict = false;
    const Ref<Witness> b = Make<Witness>(plan);
    bool result = false;
    EXPECT_TRUE(engine.CompareObjects(OperLess, a.Get(), b.Get(), result, nullptr));
    EXPECT_TRUE(result);
    EXPECT_EQ(TakeLog(), (Log{"A.CompareTo(3, B, left)"}));
    EXPECT_TRUE(engine.CompareObjects(OperLess, b.Get(), a.Get(), result, nullptr));
    EXPECT_FALSE(result);
    EXPECT_EQ(TakeLog(), (Log{"B.CompareTo(3, A, left)"}));
    plan.failing = {"CompareTo"};
    const Ref<Witness> failing = Make<Witness>(plan);
    EXPECT_EQ(Objects(*failing, *a), "!!!!!!!!!!");
    EXPECT_EQ(message, "B: CompareTo");
}

// The other operand is handed over as it is.
TEST_F(Comparison, TheOtherOperandIsTheVeryObject) {
    class Identity : public CountedObject {
    public:
        bool CompareTo(EOperType, IObject* other, bool, bool& result, IError**) const override {
            seen = other;
            result = true;
            return true;
        }
        mutable IObject* seen = nullptr;
    };
    const Ref<Identity> object = Make<Identity>();
    std::vector<Ref<IObject>> others;
    others.push_back(Ref<IObject>(new ObjectInt(7)));
    others.push_back(Ref<IObject>(new ObjectString(L"a")));
    others.push_back(Ref<IObject>(new ObjectArray(ObjectList())));
    others.push_back(Ref<IObject>(new ObjectInt())); // the type object
    for (const Ref<IObject>& other : others) {
        bool result = false;
        EXPECT_TRUE(engine.CompareObjects(OperEqual, object.Get(), other.Get(), result, nullptr));
        EXPECT_EQ(object->seen, other.Get());
        EXPECT_TRUE(engine.CompareObjects(OperEqual, other.Get(), object.Get(), result, nullptr));
        EXPECT_EQ(object->seen, other.Get());
    }
}

TEST_F(Comparison, ByDefaultNamesBothTypesTheLeftFirst) {
    const Ref<CountedObject> object = Make<CountedObject>();
    const Ref<ObjectInt> seven = Make<ObjectInt>(7);
    bool result = true;
    ErrorSlot error;
    EXPECT_FALSE(object->CompareTo(OperEqual, seven.Get(), false, result, error.Slot()));
    EXPECT_EQ(error.Message(),
              "Cannot compare object 'counted' to object 'int'. Incompatible types for this operation");
    error.Clear();
    EXPECT_FALSE(object->CompareTo(OperEqual, seven.Get(), true, result, error.Slot()));
    EXPECT_EQ(error.Message(),
              "Cannot compare object 'int' to object 'counted'. Incompatible types for this operation");
    // Where nobody asks for the error the other object is not even looked at.
    EXPECT_FALSE(object->CompareTo(OperEqual, nullptr, false, result, nullptr));
    EXPECT_EQ(Objects(*object, *seven), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot compare object 'counted' to object 'int'. Incompatible types for this operation");
    EXPECT_EQ(Objects(*seven, *object), "!!!!!!!!!!");
    EXPECT_EQ(message, "Cannot compare object 'int' to object 'counted'. Incompatible types for this operation");
}

} // namespace
} // namespace OrvUQL::Tests
