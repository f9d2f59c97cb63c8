#include "Cases.h"

#include <cmath>
#include <stdexcept>

namespace OrvUQL::bench {

namespace {

using std::string;

Record Part() {
    return {{"a", 12},       {"b", "ABC"},     {"c", 3},        {"name", "hex bolt M8"},
            {"price", 12.5}, {"quantity", 40}, {"weight", 0.25}};
}

/// 1000 parts; the first is the one of the other cases.
std::vector<Record> Parts() {
    std::vector<Record> parts = {Part()};
    while (parts.size() < 1000) {
        const int i = static_cast<int>(parts.size());
        parts.push_back({{"a", i * 7 % 31},
                         {"b", i % 3 == 0 ? "abc" : "xyz"},
                         {"c", i % 5},
                         {"name", "part " + std::to_string(i)},
                         {"price", i * 37 % 101 * 0.25},
                         {"quantity", i * 11 % 97},
                         {"weight", i % 13 * 0.125}});
    }
    return parts;
}

/// Which of the parts the query of "filter/1000-records" picks, found without an engine.
std::vector<bool> PickedParts() {
    std::vector<bool> picked;
    for (const Record& part : Parts()) {
        const int a = std::get<int>(part[0].value);
        const double price = std::get<double>(part[4].value);
        const int quantity = std::get<int>(part[5].value);
        picked.push_back(price * quantity > 400 && a != 3);
    }
    return picked;
}

/// `term(1) + term(2) + ... + term(count)`, where "%" in the term stands for the number.
string Sum(const string& term, int count, const string& plus = " + ") {
    string text;
    for (int number = 1; number <= count; ++number) {
        if (number > 1) {
            text += plus;
        }
        for (const char unit : term) {
            text += unit == '%' ? std::to_string(number) : string(1, unit);
        }
    }
    return text;
}

/// Twice each of the numbers above 2500, in the order of the list, with commas.
string DoubledAndJoined(List list) {
    string text;
    for (const int number : NumbersOf(list)) {
        if (number > 2500) {
            text += (text.empty() ? "" : ",") + std::to_string(number * 2);
        }
    }
    return text;
}

// A query as users write one for a line of a report, of 90 elements and about a kilobyte, and the same elsewhere. No
// quotient in it comes out whole, which Lua would show as 1.0.
const char* const reportQuery =
    "(@name.Trim().Length() > 40 ? @name.Trim().SubStr(0, 37) + '...' : @name.Trim())\n"
    "    + ' | pieces that were in the store when it was last counted: ' + @quantity\n"
    "    + ' | price for one piece without tax and without packaging: ' + round(@price * 100) / 100\n"
    "    + ' | worth of all pieces, less the reduction that we make for large stocks: '\n"
    "    + round(@quantity * @price * (@quantity >= 1000 ? 0.85 : 1) * 100) / 100\n"
    "    + (@weight * @quantity > 30\n"
    "        ? ' | goes by freight, the carrier wants to know a day before'\n"
    "        : ' | goes as a parcel with the next evening collection')\n"
    "    + (@b = 'abc' ? ' | made in our own shop' : ' | bought from one of the usual wholesalers')\n"
    "    + ' | deliveries of the last year, counted in boxes that hold two pieces: '\n"
    "    + @list.Filter(not $item = 0).Convert($item * 2).Join(', ')\n"
    "    + ' | in the mean of all deliveries of the last year: '\n"
    "    + round(@list.ForEach(0, $lasteval + $item) / @list.Count())\n";

const char* const reportLua =
    "(#trim(name) > 40 and trim(name):sub(1, 37) .. '...' or trim(name))\n"
    "    .. ' | pieces that were in the store when it was last counted: ' .. quantity\n"
    "    .. ' | price for one piece without tax and without packaging: ' .. math.floor(price * 100 + 0.5) / 100\n"
    "    .. ' | worth of all pieces, less the reduction that we make for large stocks: '\n"
    "    .. math.floor(quantity * price * (quantity >= 1000 and 0.85 or 1) * 100 + 0.5) / 100\n"
    "    .. (weight * quantity > 30\n"
    "        and ' | goes by freight, the carrier wants to know a day before'\n"
    "        or ' | goes as a parcel with the next evening collection')\n"
    "    .. (b:lower() == 'abc' and ' | made in our own shop' or ' | bought from one of the usual wholesalers')\n"
    "    .. ' | deliveries of the last year, counted in boxes that hold two pieces: '\n"
    "    .. table.concat(convert(filter(list, function(item) return not (item == 0) end),\n"
    "        function(item) return item * 2 end), ', ')\n"
    "    .. ' | in the mean of all deliveries of the last year: '\n"
    "    .. math.floor(fold(list, 0, function(last, item) return last + item end) / #list + 0.5)\n";

const char* const reportJavaScript =
    "(name.trim().length > 40 ? name.trim().substring(0, 37) + '...' : name.trim())\n"
    "    + ' | pieces that were in the store when it was last counted: ' + quantity\n"
    "    + ' | price for one piece without tax and without packaging: ' + Math.floor(price * 100 + 0.5) / 100\n"
    "    + ' | worth of all pieces, less the reduction that we make for large stocks: '\n"
    "    + Math.floor(quantity * price * (quantity >= 1000 ? 0.85 : 1) * 100 + 0.5) / 100\n"
    "    + (weight * quantity > 30\n"
    "        ? ' | goes by freight, the carrier wants to know a day before'\n"
    "        : ' | goes as a parcel with the next evening collection')\n"
    "    + (b.toLowerCase() == 'abc' ? ' | made in our own shop' : ' | bought from one of the usual wholesalers')\n"
    "    + ' | deliveries of the last year, counted in boxes that hold two pieces: '\n"
    "    + list.filter(function (item) { return !(item == 0); })\n"
    "        .map(function (item) { return item * 2; }).join(', ')\n"
    "    + ' | in the mean of all deliveries of the last year: '\n"
    "    + Math.floor(list.reduce(function (last, item) { return last + item; }, 0) / list.length + 0.5)\n";

const char* const reportAnswer =
    "hex bolt M8 | pieces that were in the store when it was last counted: 40 | price for one piece without tax and "
    "without packaging: 12.49"
    " | worth of all pieces, less the reduction that we make for large stocks: 499.6 | goes as a parcel with the "
    "next evening collection"
    " | made in our own shop | deliveries of the last year, counted in boxes that hold two pieces: 12, 10, 8, 6, 4, 2"
    " | in the mean of all deliveries of the last year: 4";

Record Report() {
    return {{"b", "ABC"},     {"list", List{6}}, {"name", " hex bolt M8 "},
            {"price", 12.49}, {"quantity", 40},  {"weight", 0.25}};
}

string TextsInARow() {
    string text;
    for (int number = 1; number <= 1000; ++number) {
        text += 't' + std::to_string(number);
    }
    return text;
}

std::vector<Case> MakeCases() {
    const Record abcde = {{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"e", 2}};
    const std::vector<Record> part = {Part()};
    constexpr Passing members = Passing::Members;
    // The other engines compute what is constant when they compile. Where a query is all constants, they are given
    // the numbers as arguments.
    return {
        {"arithmetic/constants",
         "(1 + 2) * 3 - 4 / 2",
         "(a + b) * c - d / e",
         "(a + b) * c - d / e",
         "(a + b) * c - d / e",
         7.0,
         {abcde}},
        {"arithmetic/functions",
         "(@a + @b) * @c - @d / @e",
         "(a() + b()) * c() - d() / e()",
         "(a() + b()) * c() - d() / e()",
         "",
         7.0,
         {abcde},
         Passing::Functions},
        {"arithmetic/members",
         "(@a + @b) * @c - @d / @e",
         "(r.a + r.b) * r.c - r.d / r.e",
         "(r.a + r.b) * r.c - r.d / r.e",
         "",
         7.0,
         {abcde},
         members},
        {"arithmetic/ints", "(@a + @c) * 3 - @quantity", "(r.a + r.c) * 3 - r.quantity", "", "", 5.0, part, members},
        {"arithmetic/doubles", "@price * 1.19 + @weight / 2.5 - 0.5", "r.price * 1.19 + r.weight / 2.5 - 0.5", "", "",
         12.5 * 1.19 + 0.25 / 2.5 - 0.5, part, members},
        {"arithmetic/mixed", "@price * @quantity / 4", "r.price * r.quantity / 4", "", "", 125.0, part, members},
        {"arithmetic/power", "@price ^ 2 + @a ^ 0.5", "r.price ^ 2 + r.a ^ 0.5", "", "", 156.25 + 3.4641016151377544,
         part, members},

        {"comparison/numbers", "@price >= 12.5 and @quantity < 100", "r.price >= 12.5 and r.quantity < 100", "", "",
         true, part, members},
        // The lenient comparison ignores letter case. Every operand is needed for the answer.
        {"comparison/logic",
         "@a > 10 and @b <> 'abc' or not (@c = 2)",
         "a > 10 and b:lower() ~= 'abc' or not (c == 2)",
         "a > 10 && b.toLowerCase() != 'abc' || !(c == 2)",
         "a > 10 && tolower(b) != \"abc\" || (c != 2)",
         true,
         {{{"a", 12}, {"b", "ABC"}, {"c", 3}}}},
        {"comparison/logic-members", "@a > 10 and @b <> 'abc' or not (@c = 2)",
         "r.a > 10 and r.b:lower() ~= 'abc' or not (r.c == 2)", "", "", true, part, members},
        {"comparison/exact-text", "@name == 'hex bolt M8'", "r.name == 'hex bolt M8'", "", "", true, part, members},

        {"conditional/one", "@a > 10 ? @price : @weight", "r.a > 10 and r.price or r.weight", "", "", 12.5, part,
         members},
        {"conditional/nested",
         "@a > @b ? 'pos' : (@a = @b ? 'zero' : 'neg')",
         "a > b and 'pos' or (a == b and 'zero' or 'neg')",
         "a > b ? 'pos' : (a == b ? 'zero' : 'neg')",
         "a > b ? \"pos\" : (a == b ? \"zero\" : \"neg\")",
         "neg",
         {{{"a", 1}, {"b", 2}}}},
        {"conditional/chain", "@a < 1 ? 1 : @a < 5 ? 2 : @a < 10 ? 3 : @a < 20 ? 4 : 5",
         "r.a < 1 and 1 or r.a < 5 and 2 or r.a < 10 and 3 or r.a < 20 and 4 or 5", "", "", 4.0, part, members},

        {"units/constants", "({2 in} + {25.4 mm}) * 3", "", "", "", "9 in", part},
        {"units/property", "{1 mm} * @quantity > {1 in} + {1 cm}", "", "", "", true, part},
        {"units/convert", "({1 in} * @a).Convert('cm').Round(1)", "", "", "", "30.5 cm", part},

        {"methods/length",
         "'abc'.Length() + 2 * 3",
         "#name + a * b",
         "name.length + a * b",
         "strlen(name) + a * b",
         9.0,
         {{{"name", "abc"}, {"a", 2}, {"b", 3}}}},
        {"methods/abs", "@c.Abs()", "math.abs(r.c)", "", "", 3.0, part, members},
        {"methods/max", "max(@a, @c, 2)", "math.max(r.a, r.c, 2)", "", "", 12.0, part, members},
        {"methods/sqrt", "sqrt(@a + 4)", "math.sqrt(r.a + 4)", "", "", 4.0, part, members},
        {"methods/round", "round(@price * 1.19, 2)", "math.floor(r.price * 1.19 / 0.01 + 0.5) * 0.01", "", "", 14.88,
         part, members},
        {"methods/iif", "iif(@a > 10, @price, @weight)", "r.a > 10 and r.price or r.weight", "", "", 12.5, part,
         members},
        {"methods/chain", "@price.Round().ToInt().Radix(16, 4)", "", "", "", "000d", part},

        {"text/length", "@name.Length()", "#r.name", "", "", 11.0, part, members},
        {"text/upper", "@name.ToUpper()", "r.name:upper()", "", "", "HEX BOLT M8", part, members},
        {"text/contains", "@name.Contains('BOLT')", "r.name:lower():find('bolt', 1, true) ~= nil", "", "", true, part,
         members},
        {"text/concatenation", "@name + ': ' + @quantity + ' x ' + @price",
         "r.name .. ': ' .. r.quantity .. ' x ' .. r.price", "", "", "hex bolt M8: 40 x 12.5", part, members},
        {"text/pipeline",
         "@name.Trim().ToUpper().SubStr(0, 3) + '-' + 42",
         "trim(name):upper():sub(1, 3) .. '-' .. 42",
         "name.trim().toUpperCase().substring(0, 3) + '-' + 42",
         "",
         "HEX-42",
         {{{"name", "  hex bolt M8 "}}}},
        {"text/from-number", "'' + @price", "'' .. r.price", "", "", "12.5", part, members},
        {"text/to-number", "'40' * @c", "'40' * r.c", "", "", 120.0, part, members},
        {"text/report", reportQuery, reportLua, reportJavaScript, "", reportAnswer, {Report()}},
        {"regex/replace-each",
         "'a1b22c333'.RegReplaceEx('\\d+', $Item(1) + $Item(1))",
         "(('a1b22c333'):gsub('%d+', function(match) return match .. match end))",
         "'a1b22c333'.replace(/\\d+/g, function (match) { return match + match; })",
         "",
         "a11b2222c333333",
         {Record()}},

        {"arrays/pipeline-10",
         "array(1, 2, 3, 4, 5, 6, 7, 8, 9, 10).Filter($item > 5).Convert($item * 2).Join(',')",
         "table.concat(convert(filter({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, function(item) return item > 5 end),"
         " function(item) return item * 2 end), ',')",
         "[1, 2, 3, 4, 5, 6, 7, 8, 9, 10].filter(function (item) { return item > 5; })"
         ".map(function (item) { return item * 2; }).join(',')",
         "",
         "12,14,16,18,20",
         {Record()}},
        {"arrays/pipeline-10000",
         "@list.Filter($item > 2500).Convert($item * 2).Join(',')",
         "table.concat(convert(filter(list, function(item) return item > 2500 end),"
         " function(item) return item * 2 end), ',')",
         "list.filter(function (item) { return item > 2500; }).map(function (item) { return item * 2; }).join(',')",
         "",
         DoubledAndJoined(List{10000}),
         {{{"list", List{10000}}}}},
        {"arrays/fold-1000",
         "@list.ForEach(0, $lasteval + $item)",
         "fold(list, 0, function(last, item) return last + item end)",
         "list.reduce(function (last, item) { return last + item; }, 0)",
         "",
         500500.0,
         {{{"list", List{1000}}}}},
        {"arrays/unique-10000", "@list.Unique().Count()", "#unique(list)", "", "", 10000.0, {{{"list", List{10000}}}}},
        {"arrays/filter-million",
         "@list.Filter($item > 250000).Count()",
         "#filter(list, function(item) return item > 250000 end)",
         "",
         "",
         750000.0,
         {{{"list", List{1000000}}}}},
        {"arrays/convert-million",
         "@list.Convert($item * 2).Last()",
         "last(convert(list, function(item) return item * 2 end))",
         "",
         "",
         2.0,
         {{{"list", List{1000000}}}}},
        {"arrays/fold-million",
         "@list.ForEach(0, max($lasteval, $item))",
         "fold(list, 0, function(last, item) return math.max(last, item) end)",
         "",
         "",
         1000000.0,
         {{{"list", List{1000000}}}}},
        {"arrays/filter", "array(@a, @c, @quantity, 8).Filter($item > 4).Count()",
         "#filter({r.a, r.c, r.quantity, 8}, function(item) return item > 4 end)", "", "", 3.0, part, members},
        {"arrays/sum", "array(@a, @c, @quantity, 8).ForEach(0, $lasteval + $item)",
         "fold({r.a, r.c, r.quantity, 8}, 0, function(last, item) return last + item end)", "", "", 63.0, part,
         members},

        {"sums/1000-constants",
         Sum("1", 1000, "+"),
         Sum("a", 1000, "+"),
         Sum("a", 1000, "+"),
         Sum("a", 1000, "+"),
         1000.0,
         {{{"a", 1}}}},
        {"sums/1000-properties", Sum("@a", 1000), Sum("r.a", 1000), "", "", 12000.0, part, members},
        {"sums/1000-texts", Sum("'t%'", 1000), "", "", "", TextsInARow(), part},

        {"filter/1000-records", "@price * @quantity > 400 and @a <> 3", "r.price * r.quantity > 400 and r.a ~= 3", "",
         "", true, Parts(), members, PickedParts()},
    };
}

string ToText(const Answer& answer) {
    if (const bool* const truth = std::get_if<bool>(&answer)) {
        return *truth ? "true" : "false";
    }
    if (const double* const number = std::get_if<double>(&answer)) {
        return std::to_string(*number);
    }
    return std::get<string>(answer);
}

bool Agree(const Answer& got, const Answer& wanted) {
    const double* const a = std::get_if<double>(&got);
    const double* const b = std::get_if<double>(&wanted);
    return a != nullptr && b != nullptr ? std::abs(*a - *b) <= 1e-12 * std::abs(*b) : got == wanted;
}

} // namespace

std::vector<int> NumbersOf(List list) {
    std::vector<int> numbers;
    long long number = 0;
    for (int i = 0; i < list.count; ++i) {
        number = (number + 7919) % list.count; // a prime that divides no count used here
        numbers.push_back(static_cast<int>(number) + 1);
    }
    return numbers;
}

string Case::FindFault(std::size_t record, const Answer& got) const {
    const Answer wanted = truths.empty() ? answer : Answer(static_cast<bool>(truths[record]));
    return Agree(got, wanted) ? string() : "answered " + ToText(got) + " instead of " + ToText(wanted);
}

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = MakeCases();
    return cases;
}

const Case& FindCase(const string& name) {
    for (const Case& test : Cases()) {
        if (test.name == name) {
            return test;
        }
    }
    throw std::logic_error("there is no case " + name);
}

} // namespace OrvUQL::bench
