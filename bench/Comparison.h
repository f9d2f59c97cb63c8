// The report: a table for each kind of measurement, with the engines side by side.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace OrvUQL::bench {

/// Collects measurements named "kind/subject/what/column". Errors go to standard error as they happen.
class Comparison : public benchmark::ConsoleReporter {
public:
    /// With `showLines` Google Benchmark's own line is printed for each measurement as it ends.
    explicit Comparison(bool showLines) : ConsoleReporter(OO_Tabular), lines(showLines) {}

    /// Tells a measurement's name before it runs: the tables keep the order of the announcements. What did not run is
    /// left out.
    void Announce(const std::string& name);

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Prints the tables: a row for each "subject/what", a column for each engine with the median of the repetitions,
    /// and last how many times the first column's figure the reference's is. A measurement with a counter "bytes"
    /// stands with that instead of its time; one with a counter "allocations" stands in a table of those too, if
    /// there were any.
    void Print(const std::string& reference) const;

    /// Whether a measurement ended with an error, such as a wrong answer.
    bool HasFailed() const { return failed; }

private:
    struct Table {
        std::string title;
        std::map<std::string, std::map<std::string, std::vector<double>>> figures; ///< by row and column
    };

    void Note(const Run& run);
    void PrintTable(const Table& table, const std::string& reference) const;
    void PrintSpread() const;

    bool lines;
    bool failed = false;
    std::vector<std::string> rows;
    std::vector<std::string> columns;
    std::vector<Table> tables;
};

} // namespace OrvUQL::bench
