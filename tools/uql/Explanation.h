// What every element of a query gave when the query was evaluated.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Ref.h"
#include "TreePrinter.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvUQL::Tool {

/// Evaluates a query through a copy of its tree in which every element is wrapped in one that notes what comes of it.
/// The query's own tree is not touched, and evaluating it costs nothing more than ever.
///
/// Only the elements up to a depth of `deepest` are wrapped. What lies below is part of the copy as it is: chains of a
/// million operators evaluate as they do elsewhere, but nobody would read the story of each.
class Explanation : public TreeNotes {
public:
    static constexpr int deepest = 1000;

    /// Takes a reference to the tree.
    explicit Explanation(IQueryElement* tree);
    ~Explanation() override;
    Explanation(const Explanation&) = delete;
    Explanation& operator=(const Explanation&) = delete;

    /// Evaluates the copy, and forgets what was noted before. As QueryEngine::Evaluate.
    IObject* Evaluate(QueryEngine& engine, IError** err);

    /// "int 3", "error: Division By Zero", "not evaluated", "3 times: int 1, 2, 3" of the last evaluation.
    std::string GetText(const IQueryElement& element) const override;
    /// `,"evaluated":1,"results":[{"type":"int","value":3}]`, likewise; a failure is {"error":"..."}.
    std::string GetJson(const IQueryElement& element) const override;

private:
    class Recorder;

    /// What came of one evaluation of one element.
    struct Outcome {
        bool isValue = false;
        bool isCause = false; ///< of a failure: whether it began in this element and not below it
        std::string type;
        std::string text;
        std::string json;
        std::string error;
    };

    struct Record {
        std::uint64_t count = 0;
        std::vector<Outcome> first; ///< the first outcomes, no more than are told
    };

    IQueryElement* Copy(IQueryElement* element, int depth);
    IQueryElement* CopyInner(IQueryElement* element, int depth);
    void Note(Record& record, const IObject* value, IError* error);
    static std::string Describe(const Outcome& outcome, const std::string& typeBefore);

    Ref<IQueryElement> original;
    std::unordered_map<const IQueryElement*, Record> records; ///< of the elements of the original
    Ref<IQueryElement> copy;
    bool isFailing = false; ///< the last element that was evaluated failed
};

} // namespace OrvUQL::Tool
