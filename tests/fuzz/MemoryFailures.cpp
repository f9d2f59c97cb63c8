// The queries of conformance files where memory ends: each allocation of parsing and evaluating a query fails in its
// turn, once or with all that follow. What comes of it is the usual result or none, never an exception, a crash or a
// leak, and the engine works afterwards.
//
//     memory_failures FILE.uqlt...

#include "fuzz/ConformanceQueries.h"
#include "support/FailingMemory.h"
#include "support/Print.h"

#include <cstdio>
#include <string>
#include <utility>

namespace OrvUQL::Tests {
namespace {

struct Counts {
    long queries = 0;
    long failures = 0; ///< allocations that failed
    long results = 0;  ///< after which the usual result came all the same
    long mistakes = 0;
};

/// What a run came to.
struct Run {
    std::string outcome; ///< "type text", "! message", or "!"
    bool hasFailed = false;
    bool hasThrown = false;
    std::ptrdiff_t kept = 0; ///< blocks, but for those of `outcome`
};

constexpr int nothingFails = -1;

Run RunQuery(QueryEngine& engine, const OrvStringT& query, int allowed, MemoryEnds how) {
    Run run;
    const std::ptrdiff_t before = LiveBlocks();
    IQueryElement* tree = nullptr;
    IObject* value = nullptr;
    IError* error = nullptr;
    const auto evaluate = [&] {
        tree = engine.ParseQuery(query.GetString(), &error);
        value = tree == nullptr ? nullptr : engine.Evaluate(tree, &error);
    };
    if (allowed == nothingFails) {
        evaluate();
    } else {
        const FailingMemory memory(allowed, how);
        try {
            evaluate();
        } catch (...) {
            run.hasThrown = true;
        }
        run.hasFailed = memory.HasFailed();
    }
    std::ptrdiff_t described = LiveBlocks();
    if (value != nullptr) {
        run.outcome = (error == nullptr ? "" : "(and an error) ") + Describe(value);
    } else {
        run.outcome = error == nullptr ? "!" : "! " + Utf8(error->GetMessageW());
    }
    described = LiveBlocks() - described;
    for (IRefCountObject* const object : {static_cast<IRefCountObject*>(value), static_cast<IRefCountObject*>(error),
                                          static_cast<IRefCountObject*>(tree)}) {
        if (object != nullptr) {
            object->Release();
        }
    }
    run.kept = LiveBlocks() - before - described;
    return run;
}

class Check {
public:
    Check(QueryEngine& usedEngine, const Tool::ConformanceCase& conformanceCase, std::string where, Counts& allCounts)
        : engine(usedEngine),
          testCase(conformanceCase),
          query(conformanceCase.query),
          place(std::move(where)),
          counts(allCounts) {}

    void RunAll() {
        usual = RunQuery(engine, query, nothingFails, MemoryEnds::Once).outcome;
        for (const MemoryEnds how : {MemoryEnds::Once, MemoryEnds::ForGood}) {
            // Every allocation of the first few hundred, then fewer and fewer.
            for (int allowed = 0; RunWith(allowed, how); allowed += 1 + allowed / 300) {}
        }
        const std::string last = RunQuery(engine, query, nothingFails, MemoryEnds::Once).outcome;
        if (last != usual && !Mentions(L"rnd")) {
            Complain("something else afterwards", nothingFails, last);
        }
        ++counts.queries;
    }

private:
    bool Mentions(const wchar_t* lowerCaseName) const { return Tests::Mentions(testCase, lowerCaseName); }

    /// A catalogue cannot say why it has no unit, nor can IsNumeric say why a text is no number.
    bool IsExpected(const std::string& outcome) const {
        const auto says = [&](const char* message) {
            return outcome[0] == '!' && outcome.find(message) != outcome.npos;
        };
        return outcome == "!" || outcome == "! Internal error" || Mentions(L"rnd") || says("Unknown unit name '") ||
               says("! Invalid unit name '") || (outcome == "bool false" && Mentions(L"isnumeric"));
    }

    /// False when nothing failed any more.
    bool RunWith(int allowed, MemoryEnds how) {
        IObject* const groupParent = engine.GetGroupParent();
        IObject* const variable = engine.GetVariable();
        Run run = RunQuery(engine, query, allowed, how);
        // Caches may fill the first times; a leak takes more every time. (These two keep references on purpose.)
        const bool keeps = Mentions(L"unique") || Mentions(L"addarray");
        for (int round = 0; run.kept > 0 && !keeps; ++round) {
            if (round == 4) {
                Complain("leaks", allowed, run.outcome);
                break;
            }
            run = RunQuery(engine, query, allowed, how);
        }
        if (engine.GetGroupParent() != groupParent || engine.GetVariable() != variable) {
            Complain("leaves the engine's stacks as they are not", allowed, run.outcome);
        }
        if (run.hasThrown) {
            Complain("throws", allowed, run.outcome);
        } else if (run.outcome == usual) {
            counts.results += run.hasFailed ? 1 : 0;
        } else if (!IsExpected(run.outcome)) {
            Complain("something else", allowed, run.outcome);
        }
        counts.failures += run.hasFailed ? 1 : 0;
        return run.hasFailed;
    }

    void Complain(const char* what, int allowed, const std::string& outcome) {
        ++counts.mistakes;
        std::printf("%s\n    %s after %d allocations: %s\n    usually: %s\n", place.c_str(), what, allowed,
                    outcome.c_str(), usual.c_str());
    }

    QueryEngine& engine;
    const Tool::ConformanceCase& testCase;
    OrvStringT query;
    std::string place;
    std::string usual;
    Counts& counts;
};

} // namespace
} // namespace OrvUQL::Tests

int main(int argc, char** argv) {
    using namespace OrvUQL;
    Tests::Counts counts;
    const bool isRead = Tests::ForEachConformanceQuery(
        argc, argv, [&](QueryEngine& engine, const Tool::ConformanceCase& query, const std::string& place) {
            Tests::Check(engine, query, place, counts).RunAll();
        });
    std::printf("%ld queries, %ld failed allocations, %ld of them without effect, %ld mistakes\n", counts.queries,
                counts.failures, counts.results, counts.mistakes);
    return isRead && counts.queries > 0 && counts.mistakes == 0 ? 0 : 1;
}
