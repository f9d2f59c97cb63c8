#include "Cases.h"

namespace OrvUQL::bench {

namespace {

/// `term(1) + term(2) + ... + term(count)`, where "%" in the term stands for the number.
std::string Sum(const std::string& term, int count) {
    std::string text;
    for (int number = 1; number <= count; ++number) {
        if (number > 1) {
            text += " + ";
        }
        for (const char unit : term) {
            text += unit == '%' ? std::to_string(number) : std::string(1, unit);
        }
    }
    return text;
}

} // namespace

const std::vector<Case>& Cases() {
    using std::string;
    static const std::vector<Case> cases = {
        // Lua computes constant expressions when it compiles: only its call is left to measure.
        {"arithmetic/constants", "(1 + 2) * 3 - 4 / 2", "(1 + 2) * 3 - 4 / 2", 7.0},
        {"arithmetic/ints", "(@a + @c) * 3 - @quantity", "(r.a + r.c) * 3 - r.quantity", 5.0},
        {"arithmetic/doubles", "@price * 1.19 + @weight / 2.5 - 0.5", "r.price * 1.19 + r.weight / 2.5 - 0.5",
         12.5 * 1.19 + 0.25 / 2.5 - 0.5},
        {"arithmetic/mixed", "@price * @quantity / 4", "r.price * r.quantity / 4", 125.0},
        {"arithmetic/power", "@price ^ 2 + @a ^ 0.5", "r.price ^ 2 + r.a ^ 0.5", 156.25 + 3.4641016151377544},

        {"comparison/numbers", "@price >= 12.5 and @quantity < 100", "r.price >= 12.5 and r.quantity < 100", true},
        // The lenient comparison ignores letter case. Every operand is needed for the answer.
        {"comparison/logic", "@a > 10 and @b <> 'abc' or not (@c = 2)",
         "r.a > 10 and r.b:lower() ~= 'abc' or not (r.c == 2)", true},
        {"comparison/exact-text", "@name == 'hex bolt M8'", "r.name == 'hex bolt M8'", true},

        {"conditional/one", "@a > 10 ? @price : @weight", "r.a > 10 and r.price or r.weight", 12.5},
        {"conditional/chain", "@a < 1 ? 1 : @a < 5 ? 2 : @a < 10 ? 3 : @a < 20 ? 4 : 5",
         "r.a < 1 and 1 or r.a < 5 and 2 or r.a < 10 and 3 or r.a < 20 and 4 or 5", 4.0},

        {"units/constants", "({2 in} + {25.4 mm}) * 3", "", string("9 in")},
        {"units/property", "{1 mm} * @quantity > {1 in} + {1 cm}", "", true},
        {"units/convert", "({1 in} * @a).Convert('cm').Round(1)", "", string("30.5 cm")},

        {"methods/abs", "@c.Abs()", "math.abs(r.c)", 3.0},
        {"methods/max", "max(@a, @c, 2)", "math.max(r.a, r.c, 2)", 12.0},
        {"methods/sqrt", "sqrt(@a + 4)", "math.sqrt(r.a + 4)", 4.0},
        {"methods/round", "round(@price * 1.19, 2)", "math.floor(r.price * 1.19 / 0.01 + 0.5) * 0.01", 14.88},
        {"methods/iif", "iif(@a > 10, @price, @weight)", "", 12.5},
        {"methods/chain", "@price.Round().ToInt().Radix(16, 4)", "", string("000d")},

        {"text/concatenation", "@name + ': ' + @quantity + ' x ' + @price",
         "r.name .. ': ' .. r.quantity .. ' x ' .. r.price", string("hex bolt M8: 40 x 12.5")},
        {"text/length", "@name.Length()", "#r.name", 11.0},
        {"text/contains", "@name.Contains('BOLT')", "r.name:lower():find('bolt', 1, true) ~= nil", true},
        {"text/from-number", "'' + @price", "'' .. r.price", string("12.5")},
        {"text/to-number", "'40' * @c", "'40' * r.c", 120.0},

        {"arrays/filter", "array(@a, @c, @quantity, 8).Filter($item > 4).Count()", "", 3.0},
        {"arrays/sum", "array(@a, @c, @quantity, 8).ForEach(0, $lasteval + $item)", "", 63.0},

        {"sums/1000-constants", Sum("%", 1000), Sum("%", 1000), 500500.0},
        {"sums/1000-properties", Sum("@a", 1000), Sum("r.a", 1000), 12000.0},
        {"sums/1000-texts", Sum("'t%'", 1000), "",
         [] {
             string text;
             for (int number = 1; number <= 1000; ++number) {
                 text += 't' + std::to_string(number);
             }
             return text;
         }()},
    };
    return cases;
}

const Case& Filter() {
    static const Case filter = {"filter/1000-records", "@price * @quantity > 400 and @a <> 3",
                                "r.price * r.quantity > 400 and r.a ~= 3", true};
    return filter;
}

} // namespace OrvUQL::bench
