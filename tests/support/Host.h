// A host with everything a query may want: global functions and the catalogue of lengths.
#pragma once

#include "support/Attempt.h"

#include <string>

namespace OrvUQL::Tests {

class Host {
public:
    Host() {
        const Ref<ObjectGlobal> global = Make<ObjectGlobal>();
        engine.SetGlobal(global.Get());
        const Ref<LinearDimensionUnits> units = Make<LinearDimensionUnits>(0.0);
        engine.AddUnitFactory(units.Get());
    }

    /// The tree of a query that parses.
    Ref<IQueryElement> Parse(const wchar_t* query) {
        ErrorSlot error;
        Ref<IQueryElement> tree(engine.ParseQuery(query, error.Slot()));
        EXPECT_TRUE(tree) << Utf8(query) << ": " << error.Message();
        return tree;
    }

    /// The value of a query that parses, or null with an error.
    Ref<IObject> Evaluate(const wchar_t* query, IError** err = nullptr) {
        const Ref<IQueryElement> tree = Parse(query);
        return Ref<IObject>(tree ? engine.Evaluate(tree.Get(), err) : nullptr);
    }

    /// What comes of a query, as one line: "int 9", "! Division By Zero", "!". Parse errors read like others.
    std::string Run(const wchar_t* query) {
        ErrorSlot error;
        const Ref<IQueryElement> tree(engine.ParseQuery(query, error.Slot()));
        if (!tree) {
            EXPECT_EQ(engine.ParseQuery(query, nullptr), nullptr);
            return "! " + error.Message();
        }
        return Run(*tree);
    }

    /// What comes of evaluating a tree.
    std::string Run(IQueryElement& tree) {
        return Attempt([&](IError** err) { return engine.Evaluate(&tree, err); });
    }

    QueryEngine engine;
};

} // namespace OrvUQL::Tests
