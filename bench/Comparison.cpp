#include "Comparison.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace OrvUQL::bench {

namespace {

constexpr int rowWidth = 28;
constexpr int columnWidth = 12;

/// Figures that vary more than this between repetitions say more about the machine than about what is measured.
constexpr double greatestSpread = 0.05;

struct Place {
    std::string kind;
    std::string row;
    std::string column;
};

Place PlaceOf(const std::string& name) {
    const std::size_t kindEnd = name.find('/');
    const std::size_t columnStart = name.rfind('/');
    return {name.substr(0, kindEnd), name.substr(kindEnd + 1, columnStart - kindEnd - 1), name.substr(columnStart + 1)};
}

void NoteOnce(std::vector<std::string>& names, const std::string& name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.push_back(name);
    }
}

double Median(std::vector<double> figures) {
    const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    return *middle;
}

/// The median distance from the median, as a part of it.
double Spread(std::vector<double> figures) {
    const double median = Median(figures);
    for (double& figure : figures) {
        figure = std::abs(figure - median);
    }
    return median > 0 ? Median(figures) / median : 0;
}

} // namespace

void Comparison::Announce(const std::string& name) {
    const Place place = PlaceOf(name);
    NoteOnce(rows, place.row);
    NoteOnce(columns, place.column);
}

bool Comparison::ReportContext(const Context& context) {
    if (lines) {
        return ConsoleReporter::ReportContext(context);
    }
    PrintBasicContext(&GetErrorStream(), context);
    return true;
}

void Comparison::ReportRuns(const std::vector<Run>& runs) {
    if (lines) {
        ConsoleReporter::ReportRuns(runs);
    }
    for (const Run& run : runs) {
        if (run.error_occurred) {
            failed = true;
            std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
        } else if (run.run_type == Run::RT_Iteration) {
            Note(run);
        }
    }
}

void Comparison::Note(const Run& run) {
    const Place place = PlaceOf(run.run_name.function_name);
    const auto add = [&](const std::string& title, double figure) {
        const auto sameTitle = [&](const Table& table) { return table.title == title; };
        auto table = std::find_if(tables.begin(), tables.end(), sameTitle);
        if (table == tables.end()) {
            table = tables.insert(tables.end(), Table{title, {}});
        }
        table->figures[place.row][place.column].push_back(figure);
    };
    const auto bytes = run.counters.find("bytes");
    if (bytes != run.counters.end()) {
        add(place.kind + ", bytes", bytes->second);
        return;
    }
    add(place.kind + ", nanoseconds", run.GetAdjustedCPUTime());
    const auto allocations = run.counters.find("allocations");
    if (allocations != run.counters.end() && allocations->second >= 0.5) {
        add(place.kind + ", allocations", allocations->second);
    }
}

void Comparison::Print(const std::string& reference) const {
    std::vector<const Table*> ordered;
    for (const Table& table : tables) {
        ordered.push_back(&table);
    }
    std::sort(ordered.begin(), ordered.end(), [](const Table* a, const Table* b) { return a->title < b->title; });
    for (const Table* table : ordered) {
        PrintTable(*table, reference);
    }
    PrintSpread();
}

void Comparison::PrintTable(const Table& table, const std::string& reference) const {
    const std::string ratio = reference + '/' + columns.front();
    const auto has = [&](const std::string& column) {
        return std::any_of(table.figures.begin(), table.figures.end(),
                           [&](const auto& row) { return row.second.count(column) != 0; });
    };
    const bool isCompared = reference != columns.front() && has(reference) && has(columns.front());
    std::printf("\n%-*s", rowWidth, table.title.c_str());
    for (const std::string& column : columns) {
        if (has(column)) {
            std::printf("%*s", columnWidth, column.c_str());
        }
    }
    std::printf("%s\n", isCompared ? ("  " + ratio).c_str() : "");

    for (const std::string& row : rows) {
        const auto found = table.figures.find(row);
        if (found == table.figures.end()) {
            continue;
        }
        const auto& figures = found->second;
        std::printf("%-*s", rowWidth, row.c_str());
        for (const std::string& column : columns) {
            const auto figure = figures.find(column);
            if (figure != figures.end()) {
                std::printf("%*.1f", columnWidth, Median(figure->second));
            } else if (has(column)) {
                std::printf("%*s", columnWidth, "-");
            }
        }
        const auto own = figures.find(columns.front());
        const auto other = figures.find(reference);
        if (isCompared && own != figures.end() && other != figures.end()) {
            std::printf("%*.2f", static_cast<int>(ratio.size()) + 2, Median(other->second) / Median(own->second));
        }
        std::printf("\n");
    }
}

void Comparison::PrintSpread() const {
    int measured = 0;
    int unsteady = 0;
    std::size_t repetitions = 1;
    for (const Table& table : tables) {
        for (const auto& [row, figuresOfRow] : table.figures) {
            for (const auto& [column, figures] : figuresOfRow) {
                repetitions = std::max(repetitions, figures.size());
                ++measured;
                unsteady += Spread(figures) > greatestSpread ? 1 : 0;
            }
        }
    }
    if (repetitions > 1) {
        std::printf("\nMedians of %zu. %d of %d figures varied by more than %.0f %%.\n", repetitions, unsteady,
                    measured, greatestSpread * 100);
    }
}

} // namespace OrvUQL::bench
