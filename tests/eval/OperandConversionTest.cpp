// What each operator asks of its operands, by their types: which conversions, in which order, how often, and what
// becomes of the operands whatever happens.

#include "eval/Nodes.h"
#include "eval/Witness.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

class Conversions : public WitnessTest {
protected:
    static Plan MakePlan(const char* label, int type) {
        Plan plan;
        plan.label = label;
        plan.type = static_cast<IObject::EType>(type);
        plan.numeric = [] { return new ObjectInt(6); };
        return plan;
    }

    /// Evaluates a tree, taken over, and tells what came of it. The log is of this one evaluation.
    std::string Run(IQueryElement* element) {
        const Ref<IQueryElement> tree(element);
        const int elements = Counted::live;
        TakeLog();
        ErrorSlot error;
        std::string outcome;
        {
            const Ref<IObject> value(engine.Evaluate(tree.Get(), error.Slot()));
            if (value) {
                EXPECT_TRUE(error.IsEmpty()) << error.Message();
                EXPECT_EQ(References(*value), 1);
                outcome = Describe(value.Get());
            } else {
                outcome = error.IsEmpty() ? "!" : "! " + error.Message();
            }
            EXPECT_EQ(Counted::live, elements) << "operands are left, " << outcome;
        }
        const Log log = TakeLog();
        // Without a place for the error everything is the same.
        const Ref<IObject> quiet(engine.Evaluate(tree.Get(), nullptr));
        EXPECT_EQ(outcome[0] == '!', !quiet);
        EXPECT_EQ(TakeLog(), log);
        Witness::log = log;
        return outcome;
    }

    std::string RunBinary(const Plan& left, const wchar_t* op, const Plan& right) {
        return Run(Binary(new WitnessElement(left), op, new WitnessElement(right)));
    }

    QueryEngine engine;
};

/// Both operands are evaluated, then these conversions follow.
std::vector<std::string> Both(std::initializer_list<const char*> conversions) {
    std::vector<std::string> log = {"L.Evaluate", "R.Evaluate"};
    log.insert(log.end(), conversions.begin(), conversions.end());
    return log;
}

TEST_F(Conversions, OfAddition) {
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            const Plan l = MakePlan("L", left);
            const Plan r = MakePlan("R", right);
            const std::string outcome = RunBinary(l, L"+", r);
            const Ref<Witness> a = Make<Witness>(l);
            const Ref<Witness> b = Make<Witness>(r);
            std::string expected;
            Log log;
            switch (engine.GetOperandType(a.Get(), b.Get())) {
            case IObject::TypeDouble:
                expected = "double 5";
                log = Both({"L.ToDouble", "R.ToDouble"});
                break;
            case IObject::TypeUnit:
                expected = "! Internal error"; // neither has a unit's face
                log = Both({});
                break;
            case IObject::TypeNull:
            case IObject::TypeBool:
            case IObject::TypeInt:
                expected = "int 12";
                log = Both({"L.ToInt", "R.ToInt"});
                break;
            default:
                expected = "string texttext";
                log = Both({"L.ToString", "R.ToString"});
                break;
            }
            EXPECT_EQ(outcome, expected) << left << " + " << right;
            EXPECT_EQ(TakeLog(), log) << left << " + " << right;
        }
    }
}

TEST_F(Conversions, OfSubtractionAndMultiplication) {
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            const Plan l = MakePlan("L", left);
            const Plan r = MakePlan("R", right);
            const Ref<Witness> a = Make<Witness>(l);
            const Ref<Witness> b = Make<Witness>(r);
            const bool units = engine.GetOperandType(a.Get(), b.Get()) == IObject::TypeUnit;
            const Log log = units ? Both({}) : Both({"L.ToNumeric", "R.ToNumeric"});
            EXPECT_EQ(RunBinary(l, L"-", r), units ? "! Internal error" : "int 0") << left << " - " << right;
            EXPECT_EQ(TakeLog(), log) << left << " - " << right;
            EXPECT_EQ(RunBinary(l, L"*", r), units ? "! Internal error" : "int 36") << left << " * " << right;
            EXPECT_EQ(TakeLog(), log) << left << " * " << right;
        }
    }
}

TEST_F(Conversions, OfDivisions) {
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            const Plan l = MakePlan("L", left);
            const Plan r = MakePlan("R", right);
            const Ref<Witness> a = Make<Witness>(l);
            const Ref<Witness> b = Make<Witness>(r);
            const bool units = engine.GetOperandType(a.Get(), b.Get()) == IObject::TypeUnit;
            EXPECT_EQ(RunBinary(l, L"/", r), units ? "! Internal error" : "double 1") << left << " / " << right;
            EXPECT_EQ(TakeLog(), units ? Both({}) : Both({"L.ToDouble", "R.ToDouble"})) << left << " / " << right;
            // Ints whatever the types, units included.
            EXPECT_EQ(RunBinary(l, L"\\", r), "int 1") << left << " \\ " << right;
            EXPECT_EQ(TakeLog(), Both({"L.ToInt", "R.ToInt"})) << left << " \\ " << right;
        }
    }
}

// The left operand is a unit if it says so, whatever its type.
TEST_F(Conversions, OfPowers) {
    for (int left = 0; left < 10; ++left) {
        for (int right = 0; right < 10; ++right) {
            Plan l = MakePlan("L", left);
            Plan r = MakePlan("R", right);
            l.number = 2;
            r.number = 3;
            EXPECT_EQ(RunBinary(l, L"^", r), "double 8") << left << " ^ " << right;
            EXPECT_EQ(TakeLog(), Both({"L.ToDouble", "R.ToDouble"})) << left << " ^ " << right;
            r.isUnit = true;
            EXPECT_EQ(RunBinary(l, L"^", r), "double 8") << "a unit on the right is none";
            l.isUnit = true;
            EXPECT_EQ(RunBinary(l, L"^", r), "! Internal error") << "it says that it is a unit, and has no face";
        }
    }
}

TEST_F(Conversions, OfAPowerOfAUnit) {
    const Ref<LinearDimensionUnits> units = Make<LinearDimensionUnits>(0.0);
    const Ref<IUnitDefinition> definition(units->FindUnit(L"un"));
    const Ref<ObjectUnit> unit = Make<ObjectUnit>(definition.Get(), 3.0, 2, true);
    Plan l = MakePlan("L", IObject::TypeGlobal);
    l.isUnit = true;
    l.face = unit->GetUnitInterface();
    Plan r = MakePlan("R", IObject::TypeString);
    r.integer = 2;
    EXPECT_EQ(RunBinary(l, L"^", r), "unit 9 un^4");
    EXPECT_EQ(TakeLog(), Both({"R.ToInt"}));
    r.failing = {"ToInt"};
    EXPECT_EQ(RunBinary(l, L"^", r), "! R: ToInt");
}

TEST_F(Conversions, OfComparisons) {
    // The rules themselves are tested with the engine; here, that the operators follow them.
    const struct {
        const wchar_t* op;
        int code;
    } rows[] = {{L">", 1},  {L">=", 2}, {L"=>", 2}, {L"<", 3},  {L"<=", 4}, {L"=<", 4}, {L"=", 5},
                {L"==", 6}, {L"<>", 7}, {L"><", 7}, {L"!=", 7}, {L"=!", 0}, {L">>", 0}, {L"<<", 0}};
    for (const auto& row : rows) {
        const std::string code = std::to_string(row.code);
        EXPECT_EQ(RunBinary(MakePlan("L", 8), row.op, MakePlan("R", 2)), "bool true");
        EXPECT_EQ(TakeLog(), Both({("L.CompareTo(" + code + ", R, left)").c_str()})) << code;
        EXPECT_EQ(RunBinary(MakePlan("L", 4), row.op, MakePlan("R", 8)), "bool true");
        EXPECT_EQ(TakeLog(), Both({("R.CompareTo(" + code + ", L, right)").c_str()})) << code;
        EXPECT_EQ(RunBinary(MakePlan("L", 2), row.op, MakePlan("R", 1)),
                  row.code == 2 || (row.code >= 4 && row.code <= 6) ? "bool true" : "bool false");
        EXPECT_EQ(TakeLog(), Both({"L.ToInt", "R.ToInt"})) << code;
        EXPECT_EQ(RunBinary(MakePlan("L", 0), row.op, MakePlan("R", 1)), row.code == 0   ? "!"
                                                                         : row.code == 7 ? "bool true"
                                                                                         : "bool false");
    }
}

TEST_F(Conversions, OfLogic) {
    for (int type = 0; type < 10; ++type) {
        Plan l = MakePlan("L", type);
        Plan r = MakePlan("R", type);
        const Log both = {"L.Evaluate", "L.ToBool", "R.Evaluate", "R.ToBool"};
        const Log left = {"L.Evaluate", "L.ToBool"};
        EXPECT_EQ(RunBinary(l, L"and", r), "bool true") << type;
        EXPECT_EQ(TakeLog(), both) << type;
        EXPECT_EQ(RunBinary(l, L"or", r), "bool true") << type;
        EXPECT_EQ(TakeLog(), left) << type;
        r.boolean = false;
        EXPECT_EQ(RunBinary(l, L"&", r), "bool false") << type;
        EXPECT_EQ(TakeLog(), both) << type;
        l.boolean = false;
        EXPECT_EQ(RunBinary(l, L"&", r), "bool false") << type;
        EXPECT_EQ(TakeLog(), left) << type;
        EXPECT_EQ(RunBinary(l, L"|", r), "bool false") << type;
        EXPECT_EQ(TakeLog(), both) << type;
        r.boolean = true;
        EXPECT_EQ(RunBinary(l, L"or", r), "bool true") << type;
        EXPECT_EQ(TakeLog(), both) << type;
    }
}

TEST_F(Conversions, OfUnaryOperators) {
    for (int type = 0; type < 10; ++type) {
        const Plan x = MakePlan("X", type);
        EXPECT_EQ(Run(Unary(L"not", new WitnessElement(x))), "bool false");
        EXPECT_EQ(TakeLog(), (Log{"X.Evaluate", "X.ToBool"})) << type;
        for (const wchar_t* const sign : {L"-", L"+"}) {
            const std::string minus = sign[0] == L'-' ? "-" : "";
            const std::string outcome = Run(Unary(sign, new WitnessElement(x)));
            const Log log = TakeLog();
            switch (type) {
            case IObject::TypeDouble:
                EXPECT_EQ(outcome, "double " + minus + "2.5");
                EXPECT_EQ(log, (Log{"X.Evaluate", "X.ToDouble"}));
                break;
            case IObject::TypeString:
                EXPECT_EQ(outcome, "int " + minus + "6");
                EXPECT_EQ(log, (Log{"X.Evaluate", "X.ToNumeric"}));
                break;
            case IObject::TypeUnit:
                EXPECT_EQ(outcome, "! Internal error") << "no unit's face";
                EXPECT_EQ(log, (Log{"X.Evaluate"}));
                break;
            default:
                EXPECT_EQ(outcome, "int " + minus + "6") << type;
                EXPECT_EQ(log, (Log{"X.Evaluate", "X.ToInt"})) << type;
                break;
            }
        }
    }
}

TEST_F(Conversions, OfConditions) {
    for (int type = 0; type < 10; ++type) {
        Plan x = MakePlan("X", type);
        const Plan a = MakePlan("A", 2);
        const Plan b = MakePlan("B", 2);
        const auto run = [&] {
            return Run(
                Ternary(new WitnessElement(x), Unary(L"-", new WitnessElement(a)), Unary(L"+", new WitnessElement(b))));
        };
        EXPECT_EQ(run(), "int -6");
        EXPECT_EQ(TakeLog(), (Log{"X.Evaluate", "X.ToBool", "A.Evaluate", "A.ToInt"})) << type;
        x.boolean = false;
        EXPECT_EQ(run(), "int 6");
        EXPECT_EQ(TakeLog(), (Log{"X.Evaluate", "X.ToBool", "B.Evaluate", "B.ToInt"})) << type;
    }
}

// ---- what ToNumeric gives goes on in place of the operand ----

TEST_F(Conversions, OfWhatToNumericGave) {
    const auto numeric = [](const char* label, IObject::EType type) {
        Plan plan;
        plan.label = label;
        plan.type = type;
        return [plan] { return new Witness(plan); };
    };
    Plan l = MakePlan("L", IObject::TypeString);
    Plan r = MakePlan("R", IObject::TypeArray);
    l.numeric = numeric("l", IObject::TypeInt);
    r.numeric = numeric("r", IObject::TypeInt);
    EXPECT_EQ(RunBinary(l, L"-", r), "int 0");
    EXPECT_EQ(TakeLog(), Both({"L.ToNumeric", "R.ToNumeric", "l.ToInt", "r.ToInt"}));
    EXPECT_EQ(RunBinary(l, L"*", r), "int 36");
    EXPECT_EQ(TakeLog(), Both({"L.ToNumeric", "R.ToNumeric", "l.ToInt", "r.ToInt"}));
    r.numeric = numeric("r", IObject::TypeDouble);
    EXPECT_EQ(RunBinary(l, L"-", r), "double 0");
    EXPECT_EQ(TakeLog(), Both({"L.ToNumeric", "R.ToNumeric", "l.ToDouble", "r.ToDouble"}));
    EXPECT_EQ(RunBinary(l, L"*", r), "double 6.25");
    EXPECT_EQ(TakeLog(), Both({"L.ToNumeric", "R.ToNumeric", "l.ToDouble", "r.ToDouble"}));
    EXPECT_EQ(Run(Unary(L"-", new WitnessElement(l))), "int -6");
    EXPECT_EQ(TakeLog(), (Log{"L.Evaluate", "L.ToNumeric", "l.ToInt"}));
    l.numeric = numeric("l", IObject::TypeDouble);
    EXPECT_EQ(Run(Unary(L"-", new WitnessElement(l))), "double -2.5");
    EXPECT_EQ(TakeLog(), (Log{"L.Evaluate", "L.ToNumeric", "l.ToDouble"}));
    // Even a unit is looked for only before the conversion: what is no double is an int now.
    l.numeric = numeric("l", IObject::TypeUnit);
    r.numeric = numeric("r", IObject::TypeNull);
    EXPECT_EQ(RunBinary(l, L"-", r), "int 0");
    EXPECT_EQ(TakeLog(), Both({"L.ToNumeric", "R.ToNumeric", "l.ToInt", "r.ToInt"}));
}

// ToNumeric may hand out the operand itself.
TEST_F(Conversions, ToNumericMayGiveTheOperandItself) {
    class Own : public CountedObject {
    public:
        Own() : CountedObject("", OrvStringT(L"7"), TypeString) {}
        IObject* ToNumeric(IError**) override {
            AddRef();
            return this;
        }
    };
    const Ref<Own> own = Make<Own>();
    EXPECT_EQ(Run(Binary(Literal(own.Share()), L"-", Literal(2))), "int 5");
    EXPECT_EQ(Run(Unary(L"-", Literal(own.Share()))), "int -7");
    EXPECT_EQ(own->References(), 1);
}

TEST_F(Conversions, MultiplicationTriesDoublesWhereIntsFail) {
    Plan l = MakePlan("L", IObject::TypeInt);
    Plan r = MakePlan("R", IObject::TypeInt);
    Plan half = MakePlan("h", IObject::TypeInt);
    half.failing = {"ToInt"};
    l.numeric = [half] { return new Witness(half); };
    EXPECT_EQ(RunBinary(l, L"*", r), "double 15") << "and the failure of the ints is forgotten";
    TakeLog();
    EXPECT_EQ(RunBinary(r, L"*", l), "double 15");
    TakeLog();
    half.failing = {"ToInt", "ToDouble"};
    l.numeric = [half] { return new Witness(half); };
    EXPECT_EQ(RunBinary(l, L"*", r), "! h: ToDouble");
    EXPECT_EQ(RunBinary(r, L"*", l), "! h: ToDouble");
}

// ---- failures ----

struct FailureRow {
    const wchar_t* op;
    int type;
    const char* conversion;
};

constexpr FailureRow failures[] = {
    {L"+", IObject::TypeInt, "ToInt"},        {L"+", IObject::TypeDouble, "ToDouble"},
    {L"+", IObject::TypeString, "ToString"},  {L"+", IObject::TypeNull, "ToInt"},
    {L"+", IObject::TypeGlobal, "ToString"},  {L"-", IObject::TypeInt, "ToNumeric"},
    {L"*", IObject::TypeDouble, "ToNumeric"}, {L"/", IObject::TypeInt, "ToDouble"},
    {L"\\", IObject::TypeInt, "ToInt"},       {L"^", IObject::TypeInt, "ToDouble"},
    {L"<", IObject::TypeInt, "ToInt"},        {L"=", IObject::TypeDouble, "ToDouble"},
    {L"==", IObject::TypeString, "ToString"},
};

TEST_F(Conversions, FailWithTheConversionsError) {
    for (const FailureRow& row : failures) {
        const std::string conversion = row.conversion;
        Plan l = MakePlan("L", row.type);
        Plan r = MakePlan("R", row.type);
        l.failing = {conversion};
        EXPECT_EQ(RunBinary(l, row.op, r), "! L: " + conversion);
        EXPECT_EQ(TakeLog(), Both({("L." + conversion).c_str()})) << "the right operand is not asked any more";
        l.failing.clear();
        r.failing = {conversion};
        EXPECT_EQ(RunBinary(l, row.op, r), "! R: " + conversion);
        EXPECT_EQ(TakeLog(), Both({("L." + conversion).c_str(), ("R." + conversion).c_str()}));
    }
}

TEST_F(Conversions, FailWithTheOperandsError) {
    for (const wchar_t* const op : {L"+", L"-", L"*", L"/", L"\\", L"^", L"<", L"=", L"unknown"}) {
        Plan l = MakePlan("L", 2);
        Plan r = MakePlan("R", 2);
        r.failing = {"Evaluate"};
        EXPECT_EQ(RunBinary(l, op, r), "! R: Evaluate");
        EXPECT_EQ(TakeLog(), Both({}));
        l.failing = {"Evaluate"};
        EXPECT_EQ(RunBinary(l, op, r), "! L: Evaluate");
        EXPECT_EQ(TakeLog(), (Log{"L.Evaluate"})) << "the right operand is not evaluated";
    }
}

TEST_F(Conversions, OfLogicFail) {
    Plan l = MakePlan("L", 2);
    Plan r = MakePlan("R", 2);
    r.failing = {"ToBool"};
    EXPECT_EQ(RunBinary(l, L"and", r), "! R: ToBool");
    r.failing = {"Evaluate"};
    EXPECT_EQ(RunBinary(l, L"and", r), "! R: Evaluate");
    EXPECT_EQ(RunBinary(l, L"or", r), "bool true") << "not evaluated";
    l.failing = {"ToBool"};
    EXPECT_EQ(RunBinary(l, L"or", r), "! L: ToBool");
    EXPECT_EQ(TakeLog(), (Log{"L.Evaluate", "L.ToBool"}));
    EXPECT_EQ(Run(Unary(L"!", new WitnessElement(l))), "! L: ToBool");
    EXPECT_EQ(Run(Ternary(new WitnessElement(l), Literal(1), Literal(2))), "! L: ToBool");
    l.failing = {"Evaluate"};
    EXPECT_EQ(RunBinary(l, L"and", r), "! L: Evaluate");
    EXPECT_EQ(Run(Unary(L"!", new WitnessElement(l))), "! L: Evaluate");
    EXPECT_EQ(Run(Ternary(new WitnessElement(l), Literal(1), Literal(2))), "! L: Evaluate");
}

TEST_F(Conversions, OfSignsFail) {
    for (const FailureRow& row : {FailureRow{L"-", IObject::TypeInt, "ToInt"},
                                  {L"+", IObject::TypeDouble, "ToDouble"},
                                  {L"-", IObject::TypeString, "ToNumeric"},
                                  {L"+", IObject::TypeArray, "ToInt"}}) {
        Plan x = MakePlan("X", row.type);
        x.failing = {row.conversion};
        EXPECT_EQ(Run(Unary(row.op, new WitnessElement(x))), std::string("! X: ") + row.conversion);
    }
}

// ---- type objects ----

// A type object is an operand of its type's value, but a host that is asked to compare with it sees the type object.
TEST_F(Conversions, OfTypeObjects) {
    class Comparer : public CountedObject {
    public:
        bool CompareTo(EOperType, IObject* other, bool, bool& result, IError**) const override {
            result = other->IsStaticInstance();
            return true;
        }
    };
    EXPECT_EQ(Run(Binary(Literal(new ObjectInt()), L"+", Literal(5))), "int 5");
    EXPECT_EQ(Run(Binary(Literal(new ObjectString()), L"+", Literal(L"a"))), "string a");
    EXPECT_EQ(Run(Unary(L"not", Literal(new ObjectBool()))), "bool true");
    EXPECT_EQ(Run(Unary(L"-", Literal(new ObjectDouble()))), "double -0");
    for (IObject* const type :
         std::initializer_list<IObject*>{new ObjectBool(), new ObjectInt(), new ObjectDouble(), new ObjectString()}) {
        const Ref<IObject> kept(type);
        EXPECT_EQ(Run(Binary(Literal(new Comparer()), L"=", Literal(kept.Share()))), "bool true") << Describe(type);
        EXPECT_EQ(Run(Binary(Literal(kept.Share()), L"<", Literal(new Comparer()))), "bool true") << Describe(type);
    }
    EXPECT_EQ(Run(Binary(Literal(new Comparer()), L"=", Literal(5))), "bool false");
}

} // namespace
} // namespace OrvUQL::Tests
