// Measures the library, and where it is installed Lua beside it in the same run.
//
//     orvuql_bench [--lines] [options of Google Benchmark]    prints tables, with --lines each measurement too
//     orvuql_bench --check                                    only compares the answers
//
// Ends with 1 if an answer was wrong.
#include "Comparison.h"
#include "Measurements.h"
#include "UqlEngine.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#if ORVUQL_BENCH_LUA
#include "LuaEngine.h"
#endif

namespace {

using namespace OrvUQL::bench;

/// An engine with one of its sources.
template <class Engine> struct Column {
    const char* name;
    typename Engine::Source source;
};

constexpr Column<UqlEngine> tableColumn = {"OrvUQL", UqlEngine::Source::Table};
constexpr Column<UqlEngine> invokeColumn = {"own-Invoke", UqlEngine::Source::Invoke};
#if ORVUQL_BENCH_LUA
constexpr Column<LuaEngine> userdataColumn = {"Lua", LuaEngine::Source::Userdata};
constexpr Column<LuaEngine> luaTableColumn = {"Lua-table", LuaEngine::Source::Table};
#endif
constexpr const char* reference = "Lua";

/// Calls `visit(column, test)` for each engine and source that can run the case. Parsing does not depend on the source.
template <class Visit> void ForEachColumn(const Case& test, bool allSources, Visit visit) {
    visit(tableColumn, test);
    if (allSources && test.UsesRecord()) {
        visit(invokeColumn, test);
    }
#if ORVUQL_BENCH_LUA
    if (!test.lua.empty()) {
        visit(userdataColumn, test);
        if (allSources && test.UsesRecord()) {
            visit(luaTableColumn, test);
        }
    }
#endif
}

template <class Engine>
benchmark::internal::Benchmark* Register(Comparison& comparison, const char* kind, const Case& test,
                                         const Column<Engine>& column,
                                         void (*measure)(benchmark::State&, const Case&, typename Engine::Source)) {
    const std::string name = std::string(kind) + '/' + test.name + '/' + column.name;
    comparison.Announce(name);
    return benchmark::RegisterBenchmark(name.c_str(),
                                        [=, &test](benchmark::State& state) { measure(state, test, column.source); });
}

void RegisterAll(Comparison& comparison) {
    for (const Case& test : Cases()) {
        ForEachColumn(test, true, [&]<class Engine>(const Column<Engine>& column, const Case& run) {
            Register(comparison, "evaluate", run, column, MeasureEvaluation<Engine>);
        });
    }
    ForEachColumn(Filter(), true, [&]<class Engine>(const Column<Engine>& column, const Case& run) {
        Register(comparison, "evaluate", run, column, MeasureFilter<Engine>);
    });
    for (const Case& test : Cases()) {
        ForEachColumn(test, false, [&]<class Engine>(const Column<Engine>& column, const Case& run) {
            Register(comparison, "parse", run, column, MeasureParsing<Engine>);
        });
    }
    if (!BytesInUse()) {
        return;
    }
    for (const Case& test : Cases()) {
        ForEachColumn(test, false, [&]<class Engine>(const Column<Engine>& column, const Case& run) {
            Register(comparison, "memory", run, column, MeasureMemory<Engine>)->Iterations(1)->Repetitions(1);
        });
    }
}

/// Compares every engine's answers with the right ones.
int CheckAnswers() {
    int right = 0;
    int wrong = 0;
    const auto check = [&]<class Engine>(const Column<Engine>& column, const Case& test) {
        std::string fault;
        try {
            Engine engine(test, column.source);
            fault = FindFault(engine, test);
        } catch (const std::exception& error) {
            fault = error.what();
        }
        if (fault.empty()) {
            ++right;
        } else {
            ++wrong;
            std::printf("%s/%s: %s\n", test.name.c_str(), column.name, fault.c_str());
        }
    };
    for (const Case& test : Cases()) {
        ForEachColumn(test, true, check);
    }
    ForEachColumn(Filter(), true, check);
    std::printf("%d answers right, %d wrong\n", right, wrong);
    return wrong == 0 && right > 0 ? 0 : 1;
}

/// Takes an option of our own out of the arguments.
bool TakeOption(int& argc, char** argv, std::string_view option) {
    char** const end = argv + argc;
    char** const kept = std::remove(argv + 1, end, option);
    argc = static_cast<int>(kept - argv);
    return kept != end;
}

} // namespace

int main(int argc, char** argv) {
    if (TakeOption(argc, argv, "--check")) {
        return CheckAnswers();
    }
    const bool showLines = TakeOption(argc, argv, "--lines");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    Comparison comparison(showLines);
    RegisterAll(comparison);
    benchmark::RunSpecifiedBenchmarks(&comparison);
    comparison.Print(reference);
    benchmark::Shutdown();
    return comparison.HasFailed() ? 1 : 0;
}
