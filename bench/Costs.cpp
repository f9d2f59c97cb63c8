#include "Costs.h"

#include <functional>

namespace OrvUQL::bench {

namespace {

using std::string;

constexpr int moreParts = 100;

/// The answer to a query with so many of the part.
using AnswerTo = std::function<Answer(int)>;

AnswerTo Times(double factor) {
    return [factor](int count) { return Answer(factor * count); };
}

Answer True(int) { return true; }

Record PartsRecord() { return {{"a", 12}, {"name", "hex bolt M8"}, {"price", 12.5}}; }

string Repeated(const string& part, int count, const string& between) {
    string text;
    for (int number = 0; number < count; ++number) {
        text += (number == 0 ? "" : between) + part;
    }
    return text;
}

Case CaseOf(const string& query, const Answer& answer, Record record) {
    return {query.substr(0, 40), query, "", "", "", answer, {std::move(record)}};
}

/// `head part between part ... tail`.
Cost InARow(const char* what, const char* shown, Kind kind, const string& head, const string& part,
            const string& between, const string& tail, const AnswerTo& answer) {
    const auto of = [&](int count) {
        return CaseOf(head + Repeated(part, count, between) + tail, answer(count), PartsRecord());
    };
    return {what,
            shown,
            kind,
            of(1),
            of(1 + moreParts),
            moreParts,
            kind == Kind::Evaluate && part.find('@') != string::npos};
}

Cost Added(const char* what, const string& part, const AnswerTo& answer, Kind kind = Kind::Evaluate) {
    return InARow(what, ("+ " + part).c_str(), kind, "", part, " + ", "", answer);
}

/// A query of a list with so many items.
Cost ForEachItem(const char* what, const string& query, const AnswerTo& answer) {
    const auto of = [&](int count) { return CaseOf("@list" + query, answer(count), {{"list", List{count}}}); };
    return {what, query, Kind::Evaluate, of(1), of(1 + moreParts), moreParts};
}

double DigitsOf(int count) {
    std::size_t digits = 0;
    for (int number = 1; number <= count; ++number) {
        digits += std::to_string(number).size();
    }
    return static_cast<double>(digits);
}

std::vector<Cost> MakeCosts() {
    return {
        Added("an int added", "1", Times(1)),
        Added("a double added", "0.5", Times(0.5)),
        InARow("a comparison of ints", "and 1 < 2", Kind::Evaluate, "", "1 < 2", " and ", "", True),
        InARow("a comparison of texts", "and 'abc' <> 'abd'", Kind::Evaluate, "", "'abc' <> 'abd'", " and ", "", True),
        Added("a condition", "(1 < 2 ? 1 : 2)", Times(1)),
        Added("a number from the record", "@a", Times(12)),
        Added("a text from the record, and its length", "@name.Length()", Times(11)),
        Added("a method without arguments", "'abc'.Length()", Times(3)),
        Added("a method with an argument", "'abc'.IndexOf('c')", Times(2)),
        Added("a global function", "max(1, 2)", Times(2)),
        Added("a global function that takes expressions", "iif(1 < 2, 1, 2)", Times(1)),
        InARow("a text added to a text", "+ 'abc'", Kind::Evaluate, "(", "'abc'", " + ", ").Length()", Times(3)),
        InARow("an int added to a text", "+ 123", Kind::Evaluate, "('' + ", "123", " + ", ").Length()", Times(3)),
        InARow("a double added to a text", "+ 12.5", Kind::Evaluate, "('' + ", "12.5", " + ", ").Length()", Times(4)),
        Added("a number read from a text", "'12' * 1", Times(12)),
        Added("a length added", "{1 cm}", [](int count) { return Answer(std::to_string(count) + " cm"); }),
        InARow("an item of a new array", "array(..., 1)", Kind::Evaluate, "array(", "1", ", ", ").Count()", Times(1)),
        ForEachItem("an item filtered", ".Filter($item > 0).Count()", Times(1)),
        ForEachItem("an item converted", ".Convert($item * 2).Count()", Times(1)),
        ForEachItem("an item folded", ".ForEach(0, $lasteval + 1)", Times(1)),
        ForEachItem("an item joined", ".Join('').Length()", [](int count) { return Answer(DigitsOf(count)); }),
        ForEachItem("an item looked for", ".IndexOf(0)", Times(0)),
        ForEachItem("an item made unique", ".Unique().Count()", Times(1)),
        InARow("a match replaced", "'a1a1...'.RegReplace('\\d', '-')", Kind::Evaluate, "'", "a1", "",
               "'.RegReplace('\\d', '-').Length()", Times(2)),
        Added("a number parsed", "1", Times(1), Kind::Parse),
        Added("a name parsed", "@a", Times(12), Kind::Parse),
        Added("a call parsed", "max(1, 2)", Times(2), Kind::Parse),
        Added(
            "a text parsed", "'12'", [](int count) { return Answer(Repeated("12", count, "")); }, Kind::Parse),
    };
}

std::vector<Row> MakeRows() {
    std::vector<Row> rows;
    for (const Cost& cost : Costs()) {
        const string name = "cost/" + std::to_string(rows.size() / 2);
        rows.push_back({name + "/few", cost.kind, &cost.few, 0, {}});
        rows.push_back({name + "/many", cost.kind, &cost.many, 0, {}});
    }
    return rows;
}

} // namespace

const std::vector<Cost>& Costs() {
    static const std::vector<Cost> costs = MakeCosts();
    return costs;
}

const std::vector<Row>& CostRows() {
    static const std::vector<Row> rows = MakeRows();
    return rows;
}

} // namespace OrvUQL::bench
