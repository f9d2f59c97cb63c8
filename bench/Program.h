// The measurements of one engine as a program. An engine is a class with the functions of UqlEngine. Each engine is a
// program of its own, since two of them have the same names for different functions; bench/compare lets them take
// turns.
#pragma once

#include "Cases.h"
#include "Meters.h"
#include "Rows.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace OrvUQL::bench {

/// How often something is done, or for how long.
struct Effort {
    std::size_t count = 0; ///< 0: as often as fits into the time
    double seconds = 0.1;
};

struct Figure {
    double value = 0;                  ///< nanoseconds, or bytes
    std::optional<double> allocations; ///< of the heap, for one evaluation or parse
    std::optional<double> heapBytes;   ///< that a kept query adds to the heap
    std::size_t count = 0;             ///< evaluations or parses in all
};

/// What the program's command line and its dialogue need to know of the engine.
struct EngineFunctions {
    std::string version;
    std::function<bool(const Case&)> canSay;
    std::function<std::string(const Case&)> findFault;        ///< empty if every answer is right
    std::function<Figure(const Row&, const Effort&)> measure; ///< throws std::runtime_error, for a wrong answer too
};

/// The command line; see Program.cpp. The result is the exit status.
int RunCommandLine(int argc, char** argv, const EngineFunctions& engine);

/// The smallest time of a call, of several slices that are each long enough for the clock.
Figure MeasureTime(const Effort& effort, const std::function<void(std::size_t)>& callTimes);

/// What a meter grew by from one reading to the other, for each of `count` times.
inline std::optional<double> Growth(std::optional<std::size_t> before, std::optional<std::size_t> after,
                                    std::size_t count) {
    if (!before || !after) {
        return std::nullopt;
    }
    return (static_cast<double>(*after) - static_cast<double>(*before)) / static_cast<double>(count);
}

template <class Engine> std::string FindFault(Engine& engine, const Case& test) {
    for (std::size_t record = 0; record < test.records.size(); ++record) {
        const std::string fault = test.FindFault(record, engine.GetAnswer(record));
        if (!fault.empty()) {
            return fault;
        }
    }
    return {};
}

template <class Engine> Figure MeasureEvaluation(Engine& engine, const Case& test, const Effort& effort) {
    double sum = 0;
    const std::optional<std::size_t> before = engine.Allocations();
    Figure figure = MeasureTime(effort, [&](std::size_t times) {
        for (; times != 0; --times) {
            sum += engine.Evaluate();
        }
    });
    figure.allocations = Growth(before, engine.Allocations(), figure.count);
    if (sum != sum) {
        throw std::runtime_error("an evaluation failed: " + test.name);
    }
    return figure;
}

template <class Engine> Figure MeasureParsing(Engine& engine, const Effort& effort) {
    const std::optional<std::size_t> before = engine.Allocations();
    Figure figure = MeasureTime(effort, [&](std::size_t times) {
        for (; times != 0; --times) {
            engine.Parse();
        }
    });
    figure.allocations = Growth(before, engine.Allocations(), figure.count);
    return figure;
}

/// What a parsed query takes from memory: the growth over many copies that are all held. Only the first measurement
/// of a program means something, later ones find memory that is there already.
template <class Engine> Figure MeasureMemory(Engine& engine, const Case& test, const Effort& effort) {
    const std::size_t copies = effort.count != 0 ? effort.count : test.query.size() < 1900 ? 10000 : 1000;
    engine.Keep(); // what is set up with the first one is not the query's
    engine.Settle();
    const std::optional<std::size_t> before = ResidentBytes();
    const std::optional<std::size_t> heapBefore = HeapBytes();
    for (std::size_t copy = 0; copy < copies; ++copy) {
        engine.Keep();
    }
    engine.Settle();
    const std::optional<double> heapBytes = Growth(heapBefore, HeapBytes(), copies);
    const std::optional<double> bytes = Growth(before, ResidentBytes(), copies);
    if (!bytes) {
        throw std::runtime_error("the system does not tell what memory a program takes");
    }
    return {*bytes, std::nullopt, heapBytes, copies};
}

template <class Engine> int RunProgram(int argc, char** argv) {
    EngineFunctions functions;
    functions.version = Engine::Version();
    functions.canSay = [](const Case& test) { return !Engine::TextOf(test).empty(); };
    functions.findFault = [](const Case& test) {
        Engine engine(test);
        return FindFault(engine, test);
    };
    functions.measure = [](const Row& row, const Effort& effort) {
        const Case& test = *row.test;
        Engine engine(test);
        const std::string fault = FindFault(engine, test);
        if (!fault.empty()) {
            throw std::runtime_error(test.name + ": " + fault);
        }
        switch (row.kind) {
        case Kind::Evaluate:
            return MeasureEvaluation(engine, test, effort);
        case Kind::Parse:
            return MeasureParsing(engine, effort);
        case Kind::Memory:
            return MeasureMemory(engine, test, effort);
        }
        return Figure();
    };
    return RunCommandLine(argc, argv, functions);
}

} // namespace OrvUQL::bench
