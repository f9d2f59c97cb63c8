// Where memory ends: every allocation of an operation fails in its turn. What comes of it is the result or no result,
// with "Internal error" or, where not even that fits, nothing; never an exception, a crash or a leak.
//
// A program of its own, since it replaces operator new.

#include <OrvUQL/OrvUQL.h>

#include "support/CountedUnits.h"
#include "support/FailingMemory.h"
#include "support/Host.h"
#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

namespace OrvUQL::Tests {
namespace {

/// A stack as programs have it, on a thread whose pool of memory is empty at first.
constexpr std::size_t usualStack = 8 * 1024 * 1024;

/// Runs an operation that ends in a value or an error, with memory failing at each of its allocations.
void ExpectSurvives(const std::string& expected, const std::function<IObject*(IError**)>& operation) {
    for (const MemoryEnds how : {MemoryEnds::Once, MemoryEnds::ForGood}) {
        bool failed = true;
        for (int allowed = 0; failed; ++allowed) {
            ASSERT_LT(allowed, 100000) << "it takes too much memory to be a test";
            RunOnThread(usualStack, [&] {
                IError* error = nullptr;
                IObject* value = nullptr;
                bool threw = false;
                {
                    const FailingMemory memory(allowed, how);
                    try {
                        value = operation(&error);
                    } catch (...) {
                        threw = true;
                    }
                    failed = memory.HasFailed();
                }
                const Ref<IError> ownedError(error);
                const Ref<IObject> ownedValue(value);
                EXPECT_FALSE(threw) << "after " << allowed << " allocations";
                std::string outcome = error == nullptr ? "!" : "! " + Utf8(error->GetMessageW());
                if (value != nullptr) {
                    EXPECT_EQ(error, nullptr);
                    outcome = Describe(value);
                }
                if (!failed || (outcome != "!" && outcome != "! Internal error")) {
                    EXPECT_EQ(outcome, expected) << "after " << allowed << " allocations";
                }
            });
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

struct Row {
    const wchar_t* query;
    const char* outcome;
};

class MemoryFailure : public CountedTest {
protected:
    void SetUp() override {
        CountedTest::SetUp();
        const Ref<LinearDimensionUnits> catalogue = Make<LinearDimensionUnits>(0.0);
        const Ref<IUnitDefinition> centimetre(catalogue->FindUnit(L"cm"));
        const Ref<ObjectUnit> length = Make<ObjectUnit>(centimetre.Get(), 2.5, 1, true);
        host.engine.SetPropertySource(length.Get());
    }
    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        CountedTest::TearDown();
    }

    /// Parses a query and has it evaluated.
    void ExpectSurvivesQuery(const Row& row, const std::function<IObject*(IQueryElement*, IError**)>& evaluate) {
        SCOPED_TRACE(Utf8(row.query));
        const Ref<IQueryElement> tree = host.Parse(row.query);
        ASSERT_TRUE(tree);
        ExpectSurvives(row.outcome, [&](IError** err) { return evaluate(tree.Get(), err); });
    }

    Host host;
};

// (IsNumeric is not here: it tells no error, so a number that does not fit into memory is none.)
const Row rows[] = {
    {L"1 + 2 * 3", "int 7"},
    {L"'text'", "string text"},
    {L"'abc' + 1.5 + true", "string abc1.5true"},
    {L"1 / 0", "! Division By Zero"},
    {L"2147483647 + 1", "! Integer overflow"},
    {L"(5).ToString().ToInt().ToDouble().ToBool()", "bool true"},
    {L"'12.5'.ToDouble()", "double 12.5"},
    {L"'word'.ToInt()", "! Cannot convert string 'word' to Integer"},
    {L"(3e9).ToInt()", "! Data overflow occured while converting a floating point number 3000000000 to integer"},
    {L"null.Foo.ToInt()", "! Cannot convert the object 'null' to type 'Int'"},
    {L"(5).Foo()", "! Identifier 'Foo' is not a method of 'int'"},
    {L"int.Abs()", "! Unable to call non-static method 'Abs' of class 'int' without a class instance"},
    {L"(5).Radix()", "! Parameter 1 of method 'Radix' is not optional"},
    {L"(1.5).Round(1, 2, 3, 4)", "! Too many parameters specified for method Round. It expects only 3"},
    {L"(5).Radix(2, 64)", "string 0000000000000000000000000000000000000000000000000000000000000101"},
    {L"min(3, '2', 2.5)", "int 2"},
    {L"iif(1 < 2, 'yes' + '!', 'no')", "string yes!"},
    {L"array(1, 'two', array(3.5, null), true).ToString()", "string (1,two,(3.5,null),true)"},
    {L"array(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20)",
     "array (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20)"},
    {L"array(1)[.This().ToString() + '!']", "string (1)!"},
    {L"array(5, 6).ForEach(0, $lasteval + $item)", "int 11"},
    {L"bool.help().TypeName()", "string string"},
    {L"@Value() + @Round(1).Value()", "double 5"},
    {L"@DisplayUnit + @Category", "string cmLinear Dimensions"},
    {L"@This() + @This()", "unit 5 cm"},
    {L"@This() * @This()", "unit 6.25 cm\xc2\xb2"},
    {L"@This() = 'x'", "! Cannot convert value 'x' of type 'string' to type 'Unit'"},
    {L"array(1) = array(2)",
     "! Cannot compare object 'array' to object 'array'. Incompatible types for this operation"},
    {L"$item", "! Invalid use of '$item' in the current context at position 0"},
    {L"chr(8364) + chr(65)", "string \xe2\x82\xac"
                             "A"},
};

TEST_F(MemoryFailure, WhileAQueryIsEvaluated) {
    for (const Row& row : rows) {
        ExpectSurvivesQuery(row, [&](IQueryElement* tree, IError** err) { return host.engine.Evaluate(tree, err); });
    }
}

// An engine that has evaluated before has room already for what it puts aside.
TEST_F(MemoryFailure, WhileANewEngineEvaluates) {
    for (const Row& row : rows) {
        ExpectSurvivesQuery(row, [&](IQueryElement* tree, IError** err) {
            QueryEngine engine;
            engine.SetGlobal(host.engine.GetGlobal());
            engine.SetPropertySource(host.engine.GetPropertySource());
            return engine.Evaluate(tree, err);
        });
    }
}

TEST_F(MemoryFailure, WhileReferencesAreKeptUntilTheEnd) {
    const Ref<CountedObject> object = Make<CountedObject>();
    host.engine.SetPropertySource(object.Get());
    host.engine.SetReleaseKeptReferences(true);
    const Row kept[] = {
        {L"array(1, 'two').AddArray(array(@This, 4)).Count()", "int 4"},
        {L"array(1, 'two', @This, 1, 'two').Unique().Count()", "int 3"},
    };
    for (const Row& row : kept) {
        ExpectSurvivesQuery(row, [&](IQueryElement* tree, IError** err) {
            QueryEngine engine;
            engine.SetGlobal(host.engine.GetGlobal());
            engine.SetPropertySource(object.Get());
            engine.SetReleaseKeptReferences(true);
            return engine.Evaluate(tree, err);
        });
        ExpectSurvivesQuery(row, [&](IQueryElement* tree, IError** err) { return host.engine.Evaluate(tree, err); });
    }
    EXPECT_EQ(object->References(), 2) << "this test's and the engine's";
}

TEST_F(MemoryFailure, WhileAQueryIsParsed) {
    const Ref<CountedObject> parsed = Make<CountedObject>("", ORV_TEXT(L"parsed"));
    for (const Row& row : rows) {
        SCOPED_TRACE(Utf8(row.query));
        ExpectSurvives("counted parsed", [&](IError** err) -> IObject* {
            const Ref<IQueryElement> tree(host.engine.ParseQuery(row.query, err));
            return tree ? parsed.Share() : nullptr;
        });
    }
}

TEST_F(MemoryFailure, WhileAQueryThatIsWrongIsParsed) {
    const Row wrong[] = {
        {L"1 +", "! Error parsing query: Unexpected end of line at position 4"},
        {L"f(1, 2", "! Error parsing query: Closing parenthesis expected at position 7"},
        {L"'abc", "! Error parsing query: Unterminated string constant at position 5"},
        {L"a ? b c", "! Error parsing query: ':' expected at position 7"},
    };
    for (const Row& row : wrong) {
        SCOPED_TRACE(Utf8(row.query));
        ErrorSlot error;
        EXPECT_EQ(host.engine.ParseQuery(row.query, error.Slot()), nullptr);
        ExpectSurvives("! " + error.Message(), [&](IError** err) -> IObject* {
            const Ref<IQueryElement> tree(host.engine.ParseQuery(row.query, err));
            return nullptr;
        });
    }
}

TEST_F(MemoryFailure, WhileAValueIsConverted) {
    const Ref<IObject> values[] = {
        Ref<IObject>(new ObjectInt(-1234567)),
        Ref<IObject>(new ObjectDouble(0.1)),
        Ref<IObject>(new ObjectString(L"1,234.5")),
        Ref<IObject>(new ObjectNull()),
        Ref<IObject>(new ObjectArray(ObjectList{new ObjectInt(5)})),
        Ref<IObject>(host.engine.GetPropertySource()->ChangeType(IObject::TypeString, nullptr))};
    for (const Ref<IObject>& value : values) {
        for (const IObject::EType type :
             {IObject::TypeBool, IObject::TypeInt, IObject::TypeDouble, IObject::TypeString}) {
            ExpectSurvives(ChangeType(*value, type), [&](IError** err) { return value->ChangeType(type, err); });
        }
        ExpectSurvives(ToNumeric(*value), [&](IError** err) { return value->ToNumeric(err); });
    }
}

// The text of an array is all of its items or nothing.
TEST_F(MemoryFailure, WhileAnArrayIsPrinted) {
    class Box : public ObjectArrayBase {
    public:
        explicit Box(IObject* boxItem) : item(boxItem) {}
        int GetCount() const override { return 2; }
        IObject* GetItem(int) const override { return item.Share(); }

    private:
        Ref<IObject> item;
    };
    const Ref<IObject> array(
        new Box(new Box(new ObjectArray(ObjectList{new ObjectString(L"a long text, longer than small texts are"),
                                                   new ObjectDouble(1234567.125), new ObjectExpression(nullptr)}))));
    ExpectSurvives(ChangeType(*array, IObject::TypeString),
                   [&](IError** err) { return array->ChangeType(IObject::TypeString, err); });
}

TEST_F(MemoryFailure, WhileAListGrows) {
    ObjectList list;
    int failures = 0;
    for (int index = 0; index < 100; ++index) {
        CountedObject* const object = new CountedObject();
        const std::size_t before = list.size();
        bool failed = false;
        {
            const FailingMemory memory(0, MemoryEnds::ForGood);
            try {
                list.push_back(object);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        if (failed) {
            ++failures;
            EXPECT_EQ(list.size(), before);
            EXPECT_EQ(object->References(), 1) << "the reference is the caller's still";
            list.push_back(object);
        }
        EXPECT_EQ(list.size(), before + 1);
        EXPECT_EQ(list.back(), object);
    }
    EXPECT_GT(failures, 2);
    EXPECT_LT(failures, 20);
    list.ReleaseAll();
}

// Where the queue of those that wait has no memory the stack has to do.
TEST_F(MemoryFailure, WhileSomethingDeepIsReleased) {
    RunOnThread(usualStack, [] {
        IObject* value = new CountedObject();
        for (int level = 0; level < 5000; ++level) {
            value = new ObjectArray(ObjectList{value, new CountedObject()});
        }
        const FailingMemory memory(0, MemoryEnds::ForGood);
        value->Release();
    });
    EXPECT_EQ(Counted::live, 0);
}

TEST_F(MemoryFailure, WhileAnEngineTakesMoreOn) {
    for (int allowed = 0; allowed < 4; ++allowed) {
        const Ref<CountedObject> object = Make<CountedObject>();
        const Ref<CountedUnitFactory> factory = Make<CountedUnitFactory>(L"Category", L"u", 1.0);
        {
            QueryEngine engine;
            bool pushedParent = false;
            bool pushedVariable = false;
            bool added = false;
            {
                const FailingMemory memory(allowed, MemoryEnds::ForGood);
                pushedParent = engine.PushGroupParent(object.Get());
                pushedVariable = engine.PushVariable(object.Get());
                added = engine.AddUnitFactory(factory.Get());
            }
            EXPECT_EQ(engine.GetGroupParent(), pushedParent ? object.Get() : nullptr);
            EXPECT_EQ(engine.GetVariable(), pushedVariable ? object.Get() : nullptr);
            EXPECT_EQ(factory->References(), added ? 2 : 1);
            EXPECT_EQ(object->References(), 1 + pushedParent + pushedVariable);
            EXPECT_EQ(pushedParent + pushedVariable + added, allowed < 3 ? allowed : 3);
        }
        EXPECT_EQ(object->References(), 1);
        EXPECT_EQ(factory->References(), 1);
    }
}

TEST_F(MemoryFailure, WhileAnErrorIsMade) {
    for (int allowed = 0; allowed < 4; ++allowed) {
        IError* error = nullptr;
        IError* regexError = nullptr;
        {
            const FailingMemory memory(allowed, MemoryEnds::ForGood);
            error = Error::Create(L"'%1' is not a property of object '%2'", L"a name that takes some room", L"object");
            regexError = Error::CreateRegexError(5);
        }
        for (IError* const made : {error, regexError}) {
            if (made != nullptr) {
                EXPECT_FALSE(made->GetMessageW().IsEmpty());
                made->Release();
            }
        }
        EXPECT_TRUE(allowed > 0 || error == nullptr);
    }
}

} // namespace
} // namespace OrvUQL::Tests
