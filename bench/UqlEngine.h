// The library under measurement, as a host would use it.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Cases.h"
#include "HeapUse.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace OrvUQL::bench {

/// One case on an engine of its own, parsed. Failures are thrown as std::runtime_error with the engine's message.
class UqlEngine {
public:
    /// What stands behind "@".
    enum class Source { Table, Invoke };

    UqlEngine(const Case& test, Source source);
    UqlEngine(const UqlEngine&) = delete;
    UqlEngine& operator=(const UqlEngine&) = delete;
    ~UqlEngine();

    /// Makes a record the one that the query reads; 0 at first.
    void Select(std::size_t record) { engine.SetPropertySource(records[record]); }

    /// One evaluation and what a host does with its value: the number is returned, 1 or 0 for a truth, the length of
    /// a text. NaN on failure.
    double Evaluate();

    /// The value in full.
    Answer GetAnswer();

    /// Parses the query once more and drops the tree.
    void Parse() { Parsed()->Release(); }

    /// Parses the query once more and keeps the tree until Drop().
    void Keep() { kept.push_back(Parsed()); }
    void Drop();

    /// Heap allocations so far.
    static std::size_t Allocations() { return CallsOfNew(); }
    /// Brings the heap to rest before it is measured: nothing to do, memory is given back at once.
    void Settle() {}

private:
    enum class Reading { Number, Truth, Text, Unit };

    IQueryElement* Parsed();
    [[noreturn]] static void Throw(IError* error);

    QueryEngine engine;
    OrvStringT text;
    Reading reading;
    IQueryElement* query = nullptr;
    std::vector<IObject*> records;
    std::vector<IQueryElement*> kept;
};

inline double UqlEngine::Evaluate() {
    double result = std::numeric_limits<double>::quiet_NaN();
    IError* error = nullptr;
    IObject* const value = engine.Evaluate(query, &error);
    if (value == nullptr) {
        if (error != nullptr) {
            error->Release();
        }
        return result;
    }
    switch (reading) {
    case Reading::Number:
        value->ToDouble(result, nullptr);
        break;
    case Reading::Truth: {
        bool truth = false;
        if (value->ToBool(truth, nullptr)) {
            result = truth ? 1.0 : 0.0;
        }
        break;
    }
    case Reading::Text: {
        OrvStringT answer;
        if (value->ToString(answer, nullptr)) {
            result = answer.GetLength();
        }
        break;
    }
    case Reading::Unit:
        result = value->GetUnitInterface()->GetDisplayValue();
        break;
    }
    value->Release();
    return result;
}

} // namespace OrvUQL::bench
