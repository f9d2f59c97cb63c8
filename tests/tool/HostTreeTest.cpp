// Trees that no query text makes: arrays, a host's own elements, elements that stand in several places.
#include "Explanation.h"
#include "TreePrinter.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvUQL::Tests {
namespace {

using Tool::Explanation;
using Tool::Ref;
using Tool::TreeFormat;

/// An element of a host: gives 1, 2, 3 and so on.
class Counter : public RefCountImpl<IQueryElement> {
public:
    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return 7; }
    IObject* Evaluate(QueryEngine*, IError**) const override { return new ObjectInt(++last); }

private:
    mutable int last = 0;
};

std::string Print(const IQueryElement& tree, TreeFormat format, const Tool::TreeNotes* notes = nullptr) {
    std::string text;
    Tool::AppendTree(text, tree, format, notes);
    return text;
}

/// [1, , counter + counter], whose two counters are one.
Ref<IQueryElement> MakeTree() {
    Counter* const counter = new Counter;
    counter->AddRef();
    const QueryElementList items{new ElementObject(1, 3), nullptr,
                                 new OperatorBinary(ORV_TEXT(L"+"), counter, counter, 5)};
    return Ref<IQueryElement>(new ElementArray(items, 2));
}

TEST(UqlHostTree, IsPrintedInEveryFormat) {
    const Ref<IQueryElement> tree = MakeTree();
    EXPECT_EQ(Print(*tree, TreeFormat::Text), "2  array\n"
                                              "3    item 1: int 1\n"
                                              "     item 2: (left out)\n"
                                              "5    item 3: operator +\n"
                                              "7      left: element\n"
                                              "7      right: element\n");
    EXPECT_EQ(Print(*tree, TreeFormat::Json),
              "{\"kind\":\"array\",\"position\":2,\"items\":[{\"kind\":\"value\",\"position\":3,\"type\":\"int\","
              "\"value\":1},null,{\"kind\":\"operator\",\"position\":5,\"operator\":\"+\",\"left\":"
              "{\"kind\":\"element\",\"position\":7},\"right\":{\"kind\":\"element\",\"position\":7}}]}\n");
    EXPECT_EQ(Print(*tree, TreeFormat::Dot), "digraph query {\n"
                                             "  node [shape=box];\n"
                                             "  n0 [label=\"array\", tooltip=\"position 2\"];\n"
                                             "  n1 [label=\"int 1\", tooltip=\"position 3\"];\n"
                                             "  n0 -> n1 [label=\"item 1\"];\n"
                                             "  n2 [label=\"(left out)\", tooltip=\"\"];\n"
                                             "  n0 -> n2 [label=\"item 2\"];\n"
                                             "  n3 [label=\"operator +\", tooltip=\"position 5\"];\n"
                                             "  n0 -> n3 [label=\"item 3\"];\n"
                                             "  n4 [label=\"element\", tooltip=\"position 7\"];\n"
                                             "  n3 -> n4 [label=\"left\"];\n"
                                             "  n5 [label=\"element\", tooltip=\"position 7\"];\n"
                                             "  n3 -> n5 [label=\"right\"];\n"
                                             "}\n");
    const Ref<IQueryElement> empty(new ElementArray(QueryElementList(), 0));
    EXPECT_EQ(Print(*empty, TreeFormat::Json), "{\"kind\":\"array\",\"position\":0,\"items\":[]}\n");
}

TEST(UqlHostTree, IsExplained) {
    const Ref<IQueryElement> tree = MakeTree();
    QueryEngine engine;
    Explanation explanation(tree.Get());
    const Ref<IObject> value(explanation.Evaluate(engine, nullptr));
    ASSERT_TRUE(value);
    // One element in two places has one record.
    EXPECT_EQ(Print(*tree, TreeFormat::Text, &explanation), "2  array                 array (1,null,3)\n"
                                                            "3    item 1: int 1       int 1\n"
                                                            "     item 2: (left out)\n"
                                                            "5    item 3: operator +  int 3\n"
                                                            "7      left: element     2 times: int 1, 2\n"
                                                            "7      right: element    2 times: int 1, 2\n");
    const Ref<IObject> again(explanation.Evaluate(engine, nullptr));
    EXPECT_EQ(explanation.GetText(*tree), "array (1,null,7)"); // and nothing of the evaluation before
}

TEST(UqlHostTree, TheTreeItselfIsNotTouched) {
    const Ref<IQueryElement> tree = MakeTree();
    QueryEngine engine;
    {
        Explanation explanation(tree.Get());
        const Ref<IObject> value(explanation.Evaluate(engine, nullptr));
    }
    const Ref<IObject> value(engine.Evaluate(tree.Get(), nullptr));
    OrvStringT text;
    ASSERT_TRUE(value && value->ToString(text, nullptr));
    EXPECT_EQ(text.ToUtf8(), "(1,null,7)");
}

TEST(UqlHostTree, AnErrorReachesWhoeverWantsIt) {
    QueryEngine engine;
    const Ref<IQueryElement> tree(engine.ParseQuery(L"1 + 2 / 0", nullptr));
    Explanation explanation(tree.Get());
    Ref<IError> error;
    EXPECT_EQ(explanation.Evaluate(engine, error.Receive()), nullptr);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->GetMessageW().ToUtf8(), "Division By Zero");
    EXPECT_EQ(engine.GetErrorPosition(), 6);
    EXPECT_EQ(explanation.Evaluate(engine, nullptr), nullptr);
    EXPECT_EQ(explanation.GetText(*tree), "failed");
}

TEST(UqlHostTree, BelowAThousandLevelsNothingIsRecorded) {
    QueryEngine engine;
    std::wstring text = L"0";
    for (int level = 0; level < Explanation::deepest + 1; ++level) {
        text += L" + 1";
    }
    const Ref<IQueryElement> tree(engine.ParseQuery(text.c_str(), nullptr));
    Explanation explanation(tree.Get());
    const Ref<IObject> value(explanation.Evaluate(engine, nullptr));
    EXPECT_EQ(explanation.GetText(*tree), "int 1001");
    const IQueryElement* element = tree.Get();
    for (int level = 0; level < Explanation::deepest; ++level) {
        element = static_cast<const OperatorBinary*>(element)->GetLeft();
    }
    EXPECT_EQ(explanation.GetText(*element), "int 1");
    EXPECT_EQ(explanation.GetText(*static_cast<const OperatorBinary*>(element)->GetLeft()), "not recorded");
}

} // namespace
} // namespace OrvUQL::Tests
