#include "Program.h"

#include "Costs.h"
#include "MadeWith.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <limits>

namespace OrvUQL::bench {

namespace {

constexpr const char* usage = //
    "usage: PROGRAM --row NAME [--count N]   measure one row: N times, or for a tenth of a second\n"
    "       PROGRAM --check                  only compare the answers\n"
    "       PROGRAM --list                   the rows: name, kind, case, goal, the goal's engine, query\n"
    "       PROGRAM --costs                  the costs: row without few and many, kind, parts more, asks, part, what\n"
    "       PROGRAM --version                the engine's version\n"
    "       PROGRAM --made-with              what instruction counts depend on: compiler, libraries, flags\n"
    "       PROGRAM --serve                  measure as standard input says: lines of a row's name and seconds\n";

/// Long against the clock's resolution and what its reading costs, short against the clock's interrupts.
constexpr double sliceSeconds = 0.002;

int Check(const EngineFunctions& engine) {
    int right = 0;
    int wrong = 0;
    std::vector<const Case*> tests;
    for (const Case& test : Cases()) {
        tests.push_back(&test);
    }
    for (const Row& row : CostRows()) {
        tests.push_back(row.test);
    }
    for (const Case* const measured : tests) {
        const Case& test = *measured;
        if (!engine.canSay(test)) {
            continue;
        }
        std::string fault;
        try {
            fault = engine.findFault(test);
        } catch (const std::exception& error) {
            fault = error.what();
        }
        if (fault.empty()) {
            ++right;
        } else {
            ++wrong;
            std::printf("%s: %s\n", test.name.c_str(), fault.c_str());
        }
    }
    std::printf("%d answers right, %d wrong\n", right, wrong);
    return wrong == 0 && right > 0 ? 0 : 1;
}

int ListRows() {
    for (const Row& row : Rows()) {
        std::string query = row.test->query;
        std::replace(query.begin(), query.end(), '\n', ' ');
        std::printf("%s\t%s\t%s\t%g\t%s\t%s\n", row.name.c_str(), NameOf(row.kind), row.test->name.c_str(), row.goal,
                    row.reference.c_str(), query.c_str());
    }
    return 0;
}

int ListCosts() {
    int number = 0;
    for (const Cost& cost : Costs()) {
        std::printf("cost/%d\t%s\t%d\t%d\t%s\t%s\n", number, NameOf(cost.kind), cost.more, cost.asksRecord ? 1 : 0,
                    cost.part.c_str(), cost.what.c_str());
        ++number;
    }
    return 0;
}

int MeasureOne(const EngineFunctions& engine, const char* name, std::size_t count) {
    const Row* const row = FindRow(name);
    if (row == nullptr) {
        std::fprintf(stderr, "there is no row %s; --list names them\n", name);
        return 2;
    }
    if (!engine.canSay(*row->test)) {
        std::fprintf(stderr, "%s has nothing for the row %s\n", engine.version.c_str(), name);
        return 1;
    }
    const Figure figure = engine.measure(*row, {count, 0.1});
    std::printf("%s: %.1f %s", name, figure.value, row->kind == Kind::Memory ? "bytes" : "ns");
    if (figure.allocations) {
        std::printf(", %.2f allocations", *figure.allocations);
    }
    if (figure.heapBytes) {
        std::printf(", %.1f bytes of the heap", *figure.heapBytes);
    }
    std::printf(", %zu times\n", figure.count);
    return 0;
}

/// One line of answer for each line of question: the figure and the allocations ("?" if nobody counts them), "-" if
/// the engine cannot say it, or "!" and what is wrong.
int Serve(const EngineFunctions& engine) {
    std::string name;
    double seconds = 0;
    while (std::cin >> name >> seconds) {
        const Row* const row = FindRow(name);
        if (row == nullptr || !engine.canSay(*row->test)) {
            std::printf("-\n");
        } else {
            try {
                const Figure figure = engine.measure(*row, {0, seconds});
                if (figure.allocations) {
                    std::printf("%.2f %.2f\n", figure.value, *figure.allocations);
                } else {
                    std::printf("%.2f ?\n", figure.value);
                }
            } catch (const std::exception& error) {
                std::printf("! %s\n", error.what());
            }
        }
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

Figure MeasureTime(const Effort& effort, const std::function<void(std::size_t)>& callTimes) {
    Figure figure;
    const auto slice = [&](std::size_t times) {
        const double start = Seconds();
        callTimes(times);
        figure.count += times;
        return Seconds() - start;
    };
    if (effort.count != 0) {
        figure.value = slice(effort.count) * 1e9 / static_cast<double>(effort.count);
        return figure;
    }
    double spent = 0;
    std::size_t times = 1;
    double time = slice(times);
    while (time < sliceSeconds) {
        spent += time;
        times *= 2;
        time = slice(times);
    }
    double least = time;
    for (spent += time; spent < effort.seconds; spent += time) {
        time = slice(times);
        least = std::min(least, time);
    }
    figure.value = least * 1e9 / static_cast<double>(times);
    return figure;
}

int RunCommandLine(int argc, char** argv, const EngineFunctions& engine) {
    const auto is = [&](int position, const char* text) {
        return position < argc && std::strcmp(argv[position], text) == 0;
    };
    try {
        if (argc == 2 && is(1, "--check")) {
            return Check(engine);
        }
        if (argc == 2 && is(1, "--list")) {
            return ListRows();
        }
        if (argc == 2 && is(1, "--version")) {
            std::printf("%s\n", engine.version.c_str());
            return 0;
        }
        if (argc == 2 && is(1, "--costs")) {
            return ListCosts();
        }
        if (argc == 2 && is(1, "--made-with")) {
            std::printf("%s", MadeWith().c_str());
            return 0;
        }
        if (argc == 2 && is(1, "--serve")) {
            return Serve(engine);
        }
        if (argc == 3 && is(1, "--row")) {
            return MeasureOne(engine, argv[2], 0);
        }
        if (argc == 5 && is(1, "--row") && is(3, "--count") && std::atoll(argv[4]) > 0) {
            return MeasureOne(engine, argv[2], static_cast<std::size_t>(std::atoll(argv[4])));
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    std::fputs(usage, stderr);
    return 2;
}

} // namespace OrvUQL::bench
