#include "Rows.h"

#include "Costs.h"

namespace OrvUQL::bench {

namespace {

std::vector<Row> MakeRows() {
    constexpr const char* lua = "Lua 5.4";
    constexpr const char* duktape = "Duktape";
    const auto of = [](const char* name) { return &FindCase(name); };
    std::vector<Row> rows = {
        {"W1", Kind::Evaluate, of("arithmetic/constants"), 0.30, lua},
        {"W1c", Kind::Evaluate, of("arithmetic/functions"), 0.45, lua},
        {"W2", Kind::Evaluate, of("comparison/logic"), 0.60, lua},
        {"W3", Kind::Evaluate, of("methods/length"), 0.35, lua},
        {"W4", Kind::Evaluate, of("text/pipeline"), 0.40, lua},
        {"W5", Kind::Evaluate, of("arrays/pipeline-10"), 0.45, lua},
        {"W6", Kind::Evaluate, of("arrays/fold-1000"), 0.50, lua},
        {"W7", Kind::Evaluate, of("conditional/nested"), 0.50, lua},
        {"W8", Kind::Evaluate, of("regex/replace-each"), 0.20, duktape},
        {"W9", Kind::Evaluate, of("sums/1000-constants"), 0.30, lua},
        {"W9p", Kind::Parse, of("sums/1000-constants"), 0.45, lua},
        {"P1", Kind::Parse, of("arithmetic/constants"), 0.40, lua},
        {"P2", Kind::Parse, of("arrays/pipeline-10"), 0.50, lua},
        {"P3", Kind::Parse, of("text/report"), 0.45, lua},
        {"M2", Kind::Memory, of("arrays/pipeline-10"), 0.70, lua},
        {"M3", Kind::Memory, of("text/report"), 0.70, lua},
    };
    for (const Kind kind : {Kind::Evaluate, Kind::Parse, Kind::Memory}) {
        for (const Case& test : Cases()) {
            rows.push_back({std::string(NameOf(kind)) + '/' + test.name, kind, &test, 0, {}});
        }
    }
    return rows;
}

} // namespace

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = MakeRows();
    return rows;
}

const Row* FindRow(const std::string& name) {
    for (const std::vector<Row>* const rows : {&Rows(), &CostRows()}) {
        for (const Row& row : *rows) {
            if (row.name == name) {
                return &row;
            }
        }
    }
    return nullptr;
}

const char* NameOf(Kind kind) {
    switch (kind) {
    case Kind::Evaluate:
        return "evaluate";
    case Kind::Parse:
        return "parse";
    case Kind::Memory:
        return "memory";
    }
    return "";
}

} // namespace OrvUQL::bench
