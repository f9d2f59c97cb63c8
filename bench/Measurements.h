// The measurements of one engine. An engine is a class as UqlEngine is: made from a case and a source, it has Select,
// Evaluate, GetAnswer, Parse, Keep, Drop, Allocations and Settle.
#pragma once

#include "Cases.h"
#include "HeapUse.h"
#include "Record.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <exception>
#include <string>

namespace OrvUQL::bench {

/// Answers that differ by rounding agree: the engines need not compute in the same order.
inline bool Agree(const Answer& got, const Answer& wanted) {
    const double* const a = std::get_if<double>(&got);
    const double* const b = std::get_if<double>(&wanted);
    return a != nullptr && b != nullptr ? std::abs(*a - *b) <= 1e-12 * std::abs(*b) : got == wanted;
}

inline std::string ToText(const Answer& answer) {
    if (const bool* const truth = std::get_if<bool>(&answer)) {
        return *truth ? "true" : "false";
    }
    if (const double* const number = std::get_if<double>(&answer)) {
        return std::to_string(*number);
    }
    return std::get<std::string>(answer);
}

/// What is wrong with the engine's answer to its case; empty if it is right.
template <class Engine> std::string FindFault(Engine& engine, const Case& test) {
    const Answer got = engine.GetAnswer();
    return Agree(got, test.answer) ? std::string() : "answered " + ToText(got) + " instead of " + ToText(test.answer);
}

/// Makes the engine, checks its answer, and has `body` measure it only then.
template <class Engine, class Body>
void MeasureChecked(benchmark::State& state, const Case& test, typename Engine::Source source, Body body) {
    try {
        Engine engine(test, source);
        const std::string fault = FindFault(engine, test);
        if (!fault.empty()) {
            state.SkipWithError(fault.c_str());
            return;
        }
        body(engine);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

/// How many heap allocations each iteration took.
template <class Engine> class AllocationCounter {
public:
    AllocationCounter(benchmark::State& measured, const Engine& measuredEngine)
        : state(measured), engine(measuredEngine), before(engine.Allocations()) {}
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;
    ~AllocationCounter() {
        state.counters["allocations"] =
            benchmark::Counter(static_cast<double>(engine.Allocations() - before), benchmark::Counter::kAvgIterations);
    }

private:
    benchmark::State& state;
    const Engine& engine;
    std::size_t before;
};

template <class Engine>
void MeasureEvaluation(benchmark::State& state, const Case& test, typename Engine::Source source) {
    MeasureChecked<Engine>(state, test, source, [&](Engine& engine) {
        const double wanted = engine.Evaluate();
        double got = wanted;
        {
            const AllocationCounter<Engine> counter(state, engine);
            for (auto _ : state) {
                benchmark::DoNotOptimize(got = engine.Evaluate());
            }
        }
        if (!(got == wanted)) {
            state.SkipWithError("the last answer differs from the first");
        }
    });
}

template <class Engine> void MeasureParsing(benchmark::State& state, const Case& test, typename Engine::Source source) {
    MeasureChecked<Engine>(state, test, source, [&](Engine& engine) {
        engine.Parse();
        const AllocationCounter<Engine> counter(state, engine);
        for (auto _ : state) {
            engine.Parse();
        }
    });
}

/// One query over all records.
template <class Engine> void MeasureFilter(benchmark::State& state, const Case& test, typename Engine::Source source) {
    MeasureChecked<Engine>(state, test, source, [&](Engine& engine) {
        const int wanted = CountOfFilter();
        int count = wanted;
        for (auto _ : state) {
            count = 0;
            for (std::size_t record = 0; record < Records().size(); ++record) {
                engine.Select(record);
                count += engine.Evaluate() > 0 ? 1 : 0;
            }
            if (count != wanted) {
                break;
            }
        }
        if (count != wanted) {
            state.SkipWithError(
                ("picked " + std::to_string(count) + " records instead of " + std::to_string(wanted)).c_str());
        }
    });
}

/// What a parsed query takes from the heap: the growth over many copies that are all held.
template <class Engine> void MeasureMemory(benchmark::State& state, const Case& test, typename Engine::Source source) {
    MeasureChecked<Engine>(state, test, source, [&](Engine& engine) {
        const int copies = test.query.size() < 1000 ? 10000 : 100;
        for (auto _ : state) {
            engine.Keep(); // what is set up with the first one is not the query's
            engine.Settle();
            const std::size_t before = BytesInUse().value_or(0);
            for (int copy = 0; copy < copies; ++copy) {
                engine.Keep();
            }
            engine.Settle();
            const std::size_t after = BytesInUse().value_or(0);
            engine.Drop();
            state.counters["bytes"] = static_cast<double>(after - before) / copies;
        }
    });
}

} // namespace OrvUQL::bench
