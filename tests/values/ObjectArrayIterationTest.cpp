// ForEach, Filter, Convert and Contains, as far as it takes a host to see what they do: the variable that an expression
// sees, how long things live, what is evaluated how often.

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"
#include "values/CallHandler.h"
#include "values/HostArrays.h"
#include "values/IterationTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace OrvUQL::Tests {
namespace {

// ---- the variable ----

TEST_F(Iteration, MakesAnIteratorTheVariable) {
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        const Ref<CountedObject> outer = Make<CountedObject>();
        host.engine.SetVariable(outer.Get());
        int evaluations = 0;
        const Ref<IObject> result = Call(MakeNumbers(3), method, [&](QueryEngine* engine, IError**) -> IObject* {
            EXPECT_EQ(engine, &host.engine);
            IObject* const variable = engine->GetVariable();
            EXPECT_NE(dynamic_cast<ObjectIterator*>(variable), nullptr);
            EXPECT_EQ(variable->GetTypeName(), L"iterator");
            ++evaluations;
            EXPECT_EQ(Describe(Get(engine, L"item").Get()), "int " + std::to_string(evaluations));
            EXPECT_EQ(Describe(Get(engine, L"index").Get()), "int " + std::to_string(evaluations));
            EXPECT_EQ(Describe(Get(engine, L"data").Get()), "string data");
            return new ObjectInt(0);
        });
        EXPECT_TRUE(result);
        EXPECT_EQ(evaluations, 3);
        EXPECT_EQ(host.engine.GetVariable(), outer.Get());
        EXPECT_EQ(outer->References(), 2);
    }
}

// Whether there is anything to fold is asked before all else, and the count before each item.
TEST_F(Iteration, AsksAHostsArrayForItsCountAsOftenAsTheRuleDoes) {
    for (const int count : {0, 2}) {
        const Ref<HostArray> array = Make<HostArray>(count, [](int index) { return new ObjectInt(index); });
        int asked = 0;
        array->onCount = [&] { ++asked; };
        host.engine.SetPropertySource(array.Get());
        const Ref<IObject> sum = host.Evaluate(L"@ForEach(5, $lasteval + $item)");
        host.engine.SetPropertySource(nullptr);
        EXPECT_EQ(Describe(sum.Get()), count == 0 ? "int 5" : "int 6");
        EXPECT_EQ(asked, count == 0 ? 1 : 4);
    }
}

TEST_F(Iteration, PutsNoVariableBackWhereNoneWas) {
    for (const wchar_t* const method : iteratingMethods) {
        Call(MakeNumbers(3), method, [](QueryEngine*, IError**) { return new ObjectInt(0); });
        EXPECT_EQ(host.engine.GetVariable(), nullptr) << Utf8(method);
    }
}

// The variable is the iterator while the expression is evaluated, and at no other time.
TEST_F(Iteration, ShowsTheOuterVariableToTheArray) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        const auto check = [&] { EXPECT_EQ(host.engine.GetVariable(), outer.Get()); };
        HostArray* const array = new HostArray(3, [&](int index) {
            check();
            return new ObjectInt(index);
        });
        array->onCount = check;
        Call(array, method, [](QueryEngine*, IError**) { return new ObjectInt(0); });
    }
}

TEST_F(Iteration, ShowsTheOuterVariableToTheConversionOfTheResult) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    for (const wchar_t* const method : {L"Filter", L"Contains"}) {
        int conversions = 0;
        Call(MakeNumbers(2), method, [&](QueryEngine*, IError**) {
            return new HostTruth([&] {
                EXPECT_EQ(host.engine.GetVariable(), outer.Get()) << Utf8(method);
                ++conversions;
                return false;
            });
        });
        EXPECT_EQ(conversions, 2) << Utf8(method);
    }
}

TEST_F(Iteration, RestoresTheVariableThatAnExpressionReplaced) {
    const Ref<CountedObject> outer = Make<CountedObject>();
    host.engine.SetVariable(outer.Get());
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        int index = 0;
        Call(MakeNumbers(3), method, [&](QueryEngine* engine, IError**) {
            EXPECT_EQ(Describe(Get(engine, L"index").Get()), "int " + std::to_string(++index));
            engine->SetVariable(Make<ObjectInt>(5).Get());
            return new ObjectInt(0);
        });
        EXPECT_EQ(index, 3);
        EXPECT_EQ(host.engine.GetVariable(), outer.Get());
        EXPECT_EQ(outer->References(), 2);
    }
}

TEST_F(Iteration, LetsAnExpressionEvaluateQueries) {
    const Ref<IQueryElement> tree = host.Parse(L"array(10, 20).Convert($item + $data, $item).Last");
    const Ref<IObject> result = Call(MakeNumbers(3), L"Convert", [&](QueryEngine* engine, IError** err) {
        return engine->Evaluate(tree.Get(), err);
    });
    EXPECT_EQ(Describe(result.Get()), "array (21,22,23)");
}

// ---- an iterator that outlives its item ----

TEST_F(Iteration, LeavesAnIteratorAloneThatAHostKeeps) {
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        held.clear();
        Call(MakeNumbers(3), method, [&](QueryEngine* engine, IError**) {
            engine->GetVariable()->AddRef();
            held.emplace_back(engine->GetVariable());
            return new ObjectInt(0);
        });
        ASSERT_EQ(held.size(), 3u);
        EXPECT_NE(held[0].Get(), held[1].Get());
        EXPECT_NE(held[1].Get(), held[2].Get());
        for (std::size_t position = 0; position < held.size(); ++position) {
            IObject& kept = *held[position];
            EXPECT_EQ(Tests::Call(kept, L"item"), "int " + std::to_string(position + 1));
            EXPECT_EQ(Tests::Call(kept, L"index"), "int " + std::to_string(position + 1));
            EXPECT_EQ(Tests::Call(kept, L"data"), "string data");
            const bool isFold = OrvStringT(method) == L"ForEach";
            EXPECT_EQ(Tests::Call(kept, L"lasteval"), !isFold ? "null null" : position == 0 ? "int 100" : "int 0");
            EXPECT_EQ(ReferencesOf(&kept), 1);
        }
    }
}

TEST_F(Iteration, LeavesAnIteratorAloneThatIsKeptForOneItemOnly) {
    Call(MakeNumbers(4), L"Convert", [&](QueryEngine* engine, IError**) {
        if (Describe(Get(engine, L"index").Get()) == "int 2") {
            engine->GetVariable()->AddRef();
            held.emplace_back(engine->GetVariable());
        }
        return new ObjectInt(0);
    });
    ASSERT_EQ(held.size(), 1u);
    EXPECT_EQ(Tests::Call(*held[0], L"item"), "int 2");
    EXPECT_EQ(Tests::Call(*held[0], L"index"), "int 2");
}

TEST_F(Iteration, LeavesAnIteratorAloneThatFailed) {
    Call(MakeNumbers(2), L"ForEach", [&](QueryEngine* engine, IError**) -> IObject* {
        engine->GetVariable()->AddRef();
        held.emplace_back(engine->GetVariable());
        return nullptr;
    });
    ASSERT_EQ(held.size(), 1u);
    EXPECT_EQ(Tests::Call(*held[0], L"item"), "int 1");
    EXPECT_EQ(Tests::Call(*held[0], L"lasteval"), "int 100");
}

// ---- which objects they are ----

TEST_F(Iteration, ForEachHandsOnTheVeryObjects) {
    std::vector<const IObject*> results;
    const Ref<IObject> last = Call(MakeNumbers(3), L"ForEach", [&](QueryEngine* engine, IError**) {
        const Ref<IObject> lasteval = Get(engine, L"lasteval");
        if (results.empty()) {
            EXPECT_EQ(Describe(lasteval.Get()), "int 100");
        } else {
            EXPECT_EQ(lasteval.Get(), results.back());
        }
        IObject* const value = new CountedObject();
        results.push_back(value);
        return value;
    });
    ASSERT_EQ(results.size(), 3u);
    EXPECT_EQ(last.Get(), results.back());
    EXPECT_EQ(ReferencesOf(last.Get()), 1);
}

TEST_F(Iteration, ForEachOfNothingReturnsTheInitialObject) {
    CountedObject* const initial = new CountedObject();
    SetArgument(initial);
    SetItems({});
    const Ref<IObject> result = Evaluate(L"@ForEach($First, 1 / 0)");
    EXPECT_EQ(result.Get(), initial);
    EXPECT_EQ(initial->References(), 2);
}

// A fresh null each time, so that no result has a second holder.
TEST_F(Iteration, GivesEachItemANullOfItsOwn) {
    for (const wchar_t* const method : {L"Filter", L"Convert", L"Contains"}) {
        held.clear();
        Call(MakeNumbers(3), method, [&](QueryEngine* engine, IError**) {
            held.push_back(Get(engine, L"lasteval"));
            EXPECT_TRUE(held.back()->IsNull());
            return new ObjectInt(0);
        });
        ASSERT_EQ(held.size(), 3u) << Utf8(method);
        EXPECT_NE(held[0].Get(), held[1].Get()) << Utf8(method);
        EXPECT_NE(held[1].Get(), held[2].Get()) << Utf8(method);
        EXPECT_EQ(ReferencesOf(held[0].Get()), 1) << Utf8(method);
    }
}

TEST_F(Iteration, GivesEachItemAnIndexOfItsOwnAndAllTheSameData) {
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        held.clear();
        std::vector<Ref<IObject>> data;
        Call(MakeNumbers(2), method, [&](QueryEngine* engine, IError**) {
            held.push_back(Get(engine, L"index"));
            EXPECT_EQ(Get(engine, L"index").Get(), held.back().Get()) << "the same within an item";
            data.push_back(Get(engine, L"data"));
            return new ObjectInt(0);
        });
        ASSERT_EQ(held.size(), 2u);
        EXPECT_NE(held[0].Get(), held[1].Get());
        EXPECT_EQ(Describe(held[0].Get()), "int 1");
        EXPECT_EQ(data[0].Get(), data[1].Get());
    }
}

TEST_F(Iteration, GivesAllTheSameNullForData) {
    SetItems({new ObjectInt(1), new ObjectInt(2)});
    const Ref<IObject> result = Evaluate(L"@Convert($data)");
    EXPECT_TRUE(Items(result)[0]->IsNull());
    EXPECT_EQ(Items(result)[0], Items(result)[1]);
}

TEST_F(Iteration, FilterKeepsItemsAndConvertResults) {
    CountedObject* const first = new CountedObject();
    CountedObject* const second = new CountedObject();
    SetItems({first, second});
    {
        const Ref<IObject> filtered = Evaluate(L"@Filter($index = 2)");
        ASSERT_EQ(Items(filtered).size(), 1u);
        EXPECT_EQ(Items(filtered)[0], second);
        EXPECT_EQ(second->References(), 2);
        EXPECT_EQ(first->References(), 1);
        const Ref<IObject> converted = Evaluate(L"@Convert($item)");
        EXPECT_EQ(Items(converted)[0], first);
        EXPECT_EQ(ReferencesOf(converted.Get()), 1);
    }
    EXPECT_EQ(first->References(), 1);
    EXPECT_EQ(second->References(), 1);
    const Ref<IObject> fresh =
        Call(MakeNumbers(2), L"Convert", [](QueryEngine*, IError**) { return new ObjectInt(5); });
    EXPECT_EQ(ReferencesOf(Items(fresh)[0]), 1) << "the array alone holds it";
}

// ---- how long things live ----

// The result before lives in the iterator until the evaluation that sees it is done, and no longer.
TEST_F(Iteration, ForEachLetsGoOfResultsThatAreSeen) {
    int number = 0;
    const Ref<IObject> last = Call(MakeNumbers(3), L"ForEach", [&](QueryEngine*, IError**) {
        const std::size_t expected = number < 2 ? 0u : static_cast<std::size_t>(number - 1);
        EXPECT_EQ(Counted::gone.size(), expected) << number;
        return new CountedObject("result" + std::to_string(++number));
    });
    EXPECT_EQ(Counted::gone, (std::vector<std::string>{"result1", "result2"}));
}

TEST_F(Iteration, LetsGoOfItemsAndResultsThatAreNotKept) {
    const int live = Counted::live;
    for (const wchar_t* const method : iteratingMethods) {
        const bool isKeeping = OrvStringT(method) == L"Convert";
        int greatest = 0;
        HostArray* const array = new HostArray(50, [](int) { return new CountedObject(); });
        Call(array, method, [&](QueryEngine*, IError**) {
            greatest = std::max(greatest, Counted::live - live);
            return new CountedObject("", ORV_TEXT(L"false"));
        });
        EXPECT_EQ(Counted::live, live) << Utf8(method);
        if (!isKeeping) {
            EXPECT_LE(greatest, 6) << Utf8(method) << ": the array, the expression, an item and a result or two";
        }
    }
}

// ---- how often ----

TEST_F(Iteration, EvaluatesNothingForEmptySlots) {
    SetValue(MakeNumbers(6, [](int index) { return index % 2 == 0; })); // (,2,,4,,6)
    EXPECT_EQ(Run(L"@ForEach('', $lasteval + $index + ':' + $item + ' ')"), "string 2:2 4:4 6:6 ");
    EXPECT_EQ(Run(L"@Convert($index)"), "array (2,4,6)");
    EXPECT_EQ(Run(L"@Filter(true)"), "array (2,4,6)") << "and what is left has none";
    EXPECT_EQ(Run(L"@Filter($item <> 4)"), "array (2,6)");
    EXPECT_EQ(Run(L"@Contains($index = 3)"), "bool false");
    EXPECT_EQ(Run(L"@Contains($index = 4)"), "bool true");
    SetItems({nullptr, nullptr});
    EXPECT_EQ(Run(L"@ForEach(5, 1 / 0)"), "int 5");
    EXPECT_EQ(Run(L"@Filter(1 / 0)"), "array ()");
    EXPECT_EQ(Run(L"@Convert(1 / 0)"), "array ()");
    EXPECT_EQ(Run(L"@Contains(1 / 0)"), "bool false");
}

TEST_F(Iteration, ContainsStopsAtTheFirst) {
    HostArray* const array = MakeNumbers(10);
    const Ref<IObject> keep(array);
    array->AddRef();
    int evaluations = 0;
    const Ref<IObject> result =
        Call(array, L"Contains", [&](QueryEngine*, IError**) { return new ObjectBool(++evaluations == 4); });
    EXPECT_EQ(Describe(result.Get()), "bool true");
    EXPECT_EQ(evaluations, 4);
    EXPECT_EQ(array->asked, 4);
}

TEST_F(Iteration, EvaluatesTheOtherArgumentsOnce) {
    const Ref<ObjectArray> array = Make<ObjectArray>(ObjectList{new ObjectInt(1), new ObjectInt(2), new ObjectInt(3)});
    const Ref<CountedElement> initial = Make<CountedElement>(new ObjectInt(0));
    const Ref<CountedElement> expression = Make<CountedElement>(new ObjectInt(0));
    const Ref<CountedElement> data = Make<CountedElement>(new ObjectInt(0));
    Ref<IObject>(array->Invoke(&host.engine, L"ForEach", {initial.Share(), expression.Share(), data.Share()}, nullptr));
    EXPECT_EQ(initial->Evaluations(), 1);
    EXPECT_EQ(expression->Evaluations(), 3);
    EXPECT_EQ(data->Evaluations(), 1);
    EXPECT_EQ(expression->References(), 1);
    Ref<IObject>(array->Invoke(&host.engine, L"Filter", {expression.Share(), data.Share()}, nullptr));
    EXPECT_EQ(expression->Evaluations(), 6);
    EXPECT_EQ(data->Evaluations(), 2);
}

// ---- arrays of a host that change ----

TEST_F(Iteration, DoesNotReadBehindTheEndOfAShrinkingArray) {
    for (const wchar_t* const method : iteratingMethods) {
        SCOPED_TRACE(Utf8(method));
        HostArray* const array = MakeNumbers(5);
        int evaluations = 0;
        EXPECT_TRUE(Call(array, method, [&](QueryEngine*, IError**) {
            array->count = 2;
            ++evaluations;
            return new ObjectInt(0);
        }));
        EXPECT_EQ(evaluations, 2);
    }
}

} // namespace
} // namespace OrvUQL::Tests
