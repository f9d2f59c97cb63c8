// The library under measurement, as a host would use it.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Cases.h"
#include "Meters.h"

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace OrvUQL::bench {

/// One case on an engine of its own, parsed. Failures are thrown as std::runtime_error with the engine's message.
/// The other engines have the same functions, which the measurements call.
class UqlEngine {
public:
    static std::string Version();

    /// The case as this engine's query; empty if it cannot say it.
    static const std::string& TextOf(const Case& test) { return test.query; }

    explicit UqlEngine(const Case& test);
    UqlEngine(const UqlEngine&) = delete;
    UqlEngine& operator=(const UqlEngine&) = delete;
    ~UqlEngine();

    /// One evaluation for the next of the case's records, and what a host does with its value: it is taken out as
    /// number, truth or text. The number is returned, 1 or 0 for a truth, the length of a text; NaN on failure.
    double Evaluate();

    /// The value for a record in full.
    Answer GetAnswer(std::size_t record);

    /// Parses the query once more and drops the tree.
    void Parse() { Parsed()->Release(); }

    /// Parses the query once more and keeps the tree until the engine ends.
    void Keep() { kept.push_back(Parsed()); }
    /// Brings the heap to rest before it is measured: nothing to do, memory is given back at once.
    void Settle() {}

    /// Heap allocations so far; nothing if they cannot be counted.
    static std::optional<std::size_t> Allocations() { return CallsOfNew(); }

private:
    enum class Reading { Number, Truth, Text };

    IQueryElement* Parsed();
    [[noreturn]] static void Throw(IError* error);

    QueryEngine engine;
    OrvStringT text;
    Reading reading;
    bool readsRecord;
    IQueryElement* query = nullptr;
    std::vector<IObject*> records; ///< at least two, so that an evaluation never finds the values of the one before
    std::size_t next = 0;
    OrvStringT taken;
    std::vector<IQueryElement*> kept;
};

inline double UqlEngine::Evaluate() {
    double result = std::numeric_limits<double>::quiet_NaN();
    if (readsRecord) {
        engine.SetPropertySource(records[next]);
        if (++next == records.size()) {
            next = 0;
        }
    }
    IError* error = nullptr;
    bool succeeded = false;
    switch (reading) {
    case Reading::Number:
        succeeded = engine.EvaluateTo(query, result, &error);
        break;
    case Reading::Truth: {
        bool truth = false;
        succeeded = engine.EvaluateTo(query, truth, &error);
        if (succeeded) {
            result = truth ? 1.0 : 0.0;
        }
        break;
    }
    case Reading::Text:
        succeeded = engine.EvaluateTo(query, taken, &error);
        if (succeeded) {
            result = taken.GetLength();
        }
        break;
    }
    if (error != nullptr) {
        error->Release();
    }
    return result;
}

} // namespace OrvUQL::bench
