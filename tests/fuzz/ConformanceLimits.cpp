// The queries of conformance files within limits: with just enough steps, and with just enough memory, each comes to
// what it comes to without; with any less, to the error of the limit and nothing else, and the engine works afterwards.
// The same for a tree with a host's element around each of its nodes, as tracing makes it.
//
//     conformance_limits FILE.uqlt...

#include "fuzz/ConformanceQueries.h"
#include "fuzz/DecoratedTree.h"
#include "support/Effort.h"
#include "support/Print.h"
#include "support/Ref.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

struct Counts {
    long queries = 0;
    long ended = 0; ///< evaluations that a limit ended
    long mistakes = 0;
};

class Check {
public:
    /// The more tries, the closer to each other are the limits that are tried.
    Check(QueryEngine& usedEngine, const Tool::ConformanceCase& conformanceCase, std::string where, int limitTries,
          Counts& allCounts)
        : engine(usedEngine),
          query(conformanceCase),
          place(std::move(where)),
          tries(static_cast<unsigned>(limitTries)),
          counts(allCounts) {}

    void RunAll() {
        ErrorSlot error;
        tree.Reset(engine.ParseQuery(query.query.GetString(), error.Slot()));
        if (!tree) {
            return;
        }
        ++counts.queries;
        engine.SetReleaseKeptReferences(true);
        usual = Evaluate();
        isRandom = Mentions(query, L"rnd");
        const std::uint64_t steps = RunTree();
        const Ref<IQueryElement> plain = std::exchange(tree, Ref<IQueryElement>(Decorate(tree.Get())));
        const std::uint64_t decoratedSteps = RunTree();
        if (decoratedSteps != steps && !isRandom) {
            Complain("other steps where it is traced",
                     std::to_string(steps) + " and " + std::to_string(decoratedSteps));
        }
    }

private:
    /// The steps that it takes.
    std::uint64_t RunTree() {
        EvaluationLimits limits;
        Expect("counted only", limits, usual);
        const EvaluationUsage usage = engine.GetUsage();
        Expect("counted again", limits, usual);
        if (engine.GetUsage().steps != usage.steps && !isRandom) {
            Complain("other steps", std::to_string(usage.steps) + " and " + std::to_string(engine.GetUsage().steps));
        }
        limits.steps = usage.steps;
        if (!isRandom) {
            Expect("within its steps", limits, usual);
        }
        for (std::uint64_t steps = 0; steps < usage.steps; steps += 1 + steps / tries) {
            limits.steps = steps;
            ExpectEnd("with fewer steps", limits, "! Evaluation limit exceeded: steps");
        }
        limits = EvaluationLimits();
        limits.memory = usage.peakMemory;
        if (!isRandom) {
            Expect("within its memory", limits, usual);
        }
        for (std::size_t less = 1; less <= usage.peakMemory;
             less += 1 + 2 * less / tries + usage.peakMemory / (10 * tries)) {
            limits.memory = usage.peakMemory - less;
            ExpectEnd("with less memory", limits, "! Evaluation limit exceeded: memory");
        }
        const std::atomic<bool> cancel = true;
        limits = EvaluationLimits();
        limits.cancel = &cancel;
        ExpectEnd("cancelled", limits, "! Evaluation cancelled");
        engine.ClearLimits();
        const std::string last = Evaluate();
        if (last != usual && !isRandom) {
            Complain("afterwards", last);
        }
        return usage.steps;
    }

    std::string Evaluate() {
        ErrorSlot error;
        const Ref<IObject> value(engine.Evaluate(tree.Get(), error.Slot()));
        if (value) {
            return (error.IsEmpty() ? "" : "(and an error) ") + Describe(value.Get());
        }
        return error.IsEmpty() ? "!" : "! " + error.Message();
    }

    void Expect(const char* how, const EvaluationLimits& limits, const std::string& expected) {
        engine.SetLimits(limits);
        const std::string outcome = Evaluate();
        if (outcome != expected && !isRandom) {
            Complain(how, outcome);
        }
    }

    void ExpectEnd(const char* how, const EvaluationLimits& limits, const std::string& expected) {
        IObject* const groupParent = engine.GetGroupParent();
        IObject* const variable = engine.GetVariable();
        Expect(how, limits, expected);
        ++counts.ended;
        if (engine.GetGroupParent() != groupParent || engine.GetVariable() != variable) {
            Complain(how, "the engine's stacks are not as they were");
        }
    }

    void Complain(const char* how, const std::string& outcome) {
        ++counts.mistakes;
        std::printf("%s\n    %s: %s\n    usually: %s\n", place.c_str(), how, outcome.c_str(), usual.c_str());
    }

    QueryEngine& engine;
    const Tool::ConformanceCase& query;
    std::string place;
    unsigned tries;
    Ref<IQueryElement> tree;
    std::string usual;
    bool isRandom = false;
    Counts& counts;
};

} // namespace
} // namespace OrvUQL::Tests

int main(int argc, char** argv) {
    using namespace OrvUQL;
    Tests::Counts counts;
    const int tries = Tests::Effort(40);
    const bool isRead = Tests::ForEachConformanceQuery(
        argc, argv, [&](QueryEngine& engine, const Tool::ConformanceCase& query, const std::string& place) {
            Tests::Check(engine, query, place, tries, counts).RunAll();
        });
    std::printf("%ld queries, %ld evaluations ended by limits, %ld mistakes\n", counts.queries, counts.ended,
                counts.mistakes);
    return isRead && counts.queries > 0 && counts.mistakes == 0 ? 0 : 1;
}
