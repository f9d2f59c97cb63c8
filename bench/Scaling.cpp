// How time grows with size: queries and methods at any size, from ten to as large as memory allows.
//
// A program of its own beside those of the tables; bench/scaling asks it for one point after the other, each in a
// process of its own, so that no point finds the memory that another one has left behind.

#include <OrvUQL/OrvUQL.h>

#include "Program.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvUQL::bench {

namespace {

constexpr const char* usage = //
    "usage: orvuql_bench_scaling --list                   the series: name, what is measured, the query\n"
    "       orvuql_bench_scaling --check                  compares the answers of small sizes\n"
    "       orvuql_bench_scaling SERIES SIZE [SECONDS]    nanoseconds for one parse or evaluation at that size\n";

/// One query for each size. Where it says "@", the names are asked of the value that `source` makes.
struct Series {
    const char* name;
    Kind kind; ///< Kind::Parse or Kind::Evaluate
    const char* shown;
    std::function<std::wstring(std::size_t)> query;
    std::function<IObject*(std::size_t)> source;    ///< empty: none
    std::function<std::string(std::size_t)> answer; ///< what the evaluation gives, as text
};

std::wstring Repeated(const std::wstring& part, std::size_t count, const std::wstring& between = {}) {
    std::wstring text;
    text.reserve(count * (part.size() + between.size()));
    for (std::size_t i = 0; i < count; ++i) {
        if (i != 0) {
            text += between;
        }
        text += part;
    }
    return text;
}

std::function<std::wstring(std::size_t)> Always(const wchar_t* query) {
    return [query](std::size_t) { return std::wstring(query); };
}

std::function<std::string(std::size_t)> Answer(const char* text) {
    return [text](std::size_t) { return std::string(text); };
}

/// `times` the size, and `more`.
std::function<std::string(std::size_t)> Count(std::size_t times = 1, std::ptrdiff_t more = 0) {
    return [=](std::size_t size) { return std::to_string(static_cast<std::ptrdiff_t>(times * size) + more); };
}

std::function<IObject*(std::size_t)> Text(const wchar_t* part, const wchar_t* between = L"") {
    return [=](std::size_t size) -> IObject* {
        return new ObjectString(OrvStringT(Repeated(part, size, between).c_str()));
    };
}

std::function<IObject*(std::size_t)> List(std::function<IObject*(std::size_t)> item) {
    return [item](std::size_t size) -> IObject* {
        ObjectList items;
        items.reserve(size);
        for (std::size_t i = 0; i < size; ++i) {
            items.push_back(item(i));
        }
        return new ObjectArray(std::move(items));
    };
}

IObject* Digit(std::size_t position) { return new ObjectInt(static_cast<int>(position % 10)); }
IObject* Number(std::size_t position) { return new ObjectInt(static_cast<int>(position)); }
IObject* Name(std::size_t position) {
    return new ObjectString(OrvUtils::String::ToStringW(static_cast<int>(position)));
}

std::vector<Series> MakeSeries() {
    const auto digits = List(Digit);
    return {
        {"parse: sum", Kind::Parse, "1+1+...", [](std::size_t n) { return Repeated(L"1", n, L"+"); }, {}, Count()},
        {"parse: parentheses",
         Kind::Parse,
         "(((...1...)))",
         [](std::size_t n) { return std::wstring(n, L'(') + L'1' + std::wstring(n, L')'); },
         {},
         Answer("1")},
        {"parse: array",
         Kind::Parse,
         "array(1,1,...)",
         [](std::size_t n) { return L"array(" + Repeated(L"1", n, L",") + L").Count()"; },
         {},
         Count()},
        {"parse: text",
         Kind::Parse,
         "'aaa...'",
         [](std::size_t n) { return L'\'' + std::wstring(n, L'a') + L"'.Length()"; },
         {},
         Count()},
        {"parse: else-if",
         Kind::Parse,
         "false?1:false?1:...2",
         [](std::size_t n) { return Repeated(L"false?1:", n) + L'2'; },
         {},
         Answer("2")},
        {"parse: methods",
         Kind::Parse,
         "'a'.Trim().Trim()...",
         [](std::size_t n) { return L"'a'" + Repeated(L".Trim()", n); },
         {},
         Answer("a")},

        {"sum", Kind::Evaluate, "1+1+...", [](std::size_t n) { return Repeated(L"1", n, L"+"); }, {}, Count()},
        {"sum of texts",
         Kind::Evaluate,
         "('a'+'a'+...).Length()",
         [](std::size_t n) { return L'(' + Repeated(L"'a'", n, L"+") + L").Length()"; },
         {},
         Count()},
        {"or",
         Kind::Evaluate,
         "1>2 or 1>2 or ...",
         [](std::size_t n) { return Repeated(L"1>2", n, L" or "); },
         {},
         Answer("false")},
        {"else-if",
         Kind::Evaluate,
         "1>2?1:1>2?1:...2",
         [](std::size_t n) { return Repeated(L"1>2?1:", n) + L'2'; },
         {},
         Answer("2")},
        {"methods",
         Kind::Evaluate,
         "'a'.Trim().Trim()...",
         [](std::size_t n) { return L"'a'" + Repeated(L".Trim()", n); },
         {},
         Answer("a")},
        {"array",
         Kind::Evaluate,
         "array(1,1,...).Count()",
         [](std::size_t n) { return L"array(" + Repeated(L"1", n, L",") + L").Count()"; },
         {},
         Count()},

        {"Split", Kind::Evaluate, "@Split(',').Count()", Always(L"@Split(',').Count()"), Text(L"a", L","), Count()},
        {"Replace", Kind::Evaluate, "@Replace('a', 'bb').Length()", Always(L"@Replace('a', 'bb').Length()"),
         Text(L"ab"), Count(3)},
        {"Contains, ignoring case", Kind::Evaluate, "@Contains('AAAB')", Always(L"@Contains('AAAB')"), Text(L"a"),
         Answer("false")},
        {"RegReplace", Kind::Evaluate, "@RegReplace('\\d', '<$&>').Length()",
         Always(L"@RegReplace('\\d', '<$&>').Length()"), Text(L"a1"), Count(4)},
        {"Join", Kind::Evaluate, "@Join(',').Length()", Always(L"@Join(',').Length()"), digits, Count(2, -1)},
        {"Filter", Kind::Evaluate, "@Filter($item < 10).Count()", Always(L"@Filter($item < 10).Count()"), digits,
         Count()},
        {"Convert", Kind::Evaluate, "@Convert($item + 1).Count()", Always(L"@Convert($item + 1).Count()"), digits,
         Count()},
        {"ForEach", Kind::Evaluate, "@ForEach(0, $lasteval + 1)", Always(L"@ForEach(0, $lasteval + 1)"), digits,
         Count()},
        {"IndexOf", Kind::Evaluate, "@IndexOf(10)", Always(L"@IndexOf(10)"), digits, Answer("0")},
        {"Unique, all equal", Kind::Evaluate, "@Unique().Count()", Always(L"@Unique().Count()"),
         List([](std::size_t) -> IObject* { return new ObjectInt(7); }), Answer("1")},
        {"Unique, all different ints", Kind::Evaluate, "@Unique().Count()", Always(L"@Unique().Count()"), List(Number),
         Count()},
        {"Unique, all different texts", Kind::Evaluate, "@Unique().Count()", Always(L"@Unique().Count()"), List(Name),
         Count()},
    };
}

/// A series at one size: its query, parsed for Kind::Evaluate.
class Point {
public:
    Point(const Series& measured, std::size_t pointSize)
        : series(measured), size(pointSize), text(measured.query(pointSize).c_str()) {
        if (series.source) {
            IObject* const source = series.source(size);
            engine.SetPropertySource(source);
            source->Release();
        }
        IObject* const global = new ObjectGlobal();
        engine.SetGlobal(global);
        global->Release();
        tree = Parsed();
    }

    Point(const Point&) = delete;
    Point& operator=(const Point&) = delete;
    ~Point() { tree->Release(); }

    void DoOnce() {
        if (series.kind == Kind::Parse) {
            Parsed()->Release();
        } else {
            Value()->Release();
        }
    }

    /// What is wrong with the answer; empty if it is right.
    std::string FindFault() {
        IObject* const value = Value();
        OrvStringT shown;
        value->ToString(shown, nullptr);
        value->Release();
        const std::string got = shown.ToUtf8();
        const std::string wanted = series.answer(size);
        return got == wanted ? std::string() : "answered " + got.substr(0, 100) + " instead of " + wanted;
    }

private:
    IQueryElement* Parsed() {
        IError* error = nullptr;
        IQueryElement* const parsed = engine.ParseQuery(text.GetString(), &error);
        return parsed != nullptr ? parsed : Throw<IQueryElement>(error);
    }

    IObject* Value() {
        IError* error = nullptr;
        IObject* const value = engine.Evaluate(tree, &error);
        return value != nullptr ? value : Throw<IObject>(error);
    }

    template <class T> [[noreturn]] static T* Throw(IError* error) {
        std::string message = "no value";
        if (error != nullptr) {
            message = error->GetMessageW().ToUtf8();
            error->Release();
        }
        throw std::runtime_error(message);
    }

    const Series& series;
    std::size_t size;
    OrvStringT text;
    QueryEngine engine;
    IQueryElement* tree = nullptr;
};

int CheckAnswers(const std::vector<Series>& all) {
    int wrong = 0;
    for (const Series& series : all) {
        for (const std::size_t size : {1, 2, 10, 1000}) {
            const std::string fault = Point(series, size).FindFault();
            if (!fault.empty()) {
                std::printf("%s, %zu: %s\n", series.name, size, fault.c_str());
                ++wrong;
            }
        }
    }
    std::printf("%zu series, %d wrong answers\n", all.size(), wrong);
    return wrong == 0 ? 0 : 1;
}

int Measure(const Series& series, std::size_t size, double seconds) {
    Point point(series, size);
    const std::string fault = point.FindFault();
    if (!fault.empty()) {
        throw std::runtime_error(fault);
    }
    const Figure figure = MeasureTime({0, seconds}, [&](std::size_t times) {
        for (; times != 0; --times) {
            point.DoOnce();
        }
    });
    std::printf("%.1f\n", figure.value);
    return 0;
}

int Run(int argc, char** argv) {
    const std::vector<Series> all = MakeSeries();
    if (argc == 2 && std::strcmp(argv[1], "--check") == 0) {
        return CheckAnswers(all);
    }
    if (argc == 2 && std::strcmp(argv[1], "--list") == 0) {
        for (const Series& series : all) {
            std::printf("%s\t%s\t%s\n", series.name, NameOf(series.kind), series.shown);
        }
        return 0;
    }
    const long long size = argc >= 3 ? std::atoll(argv[2]) : 0;
    if (size > 0 && argc <= 4) {
        for (const Series& series : all) {
            if (std::strcmp(argv[1], series.name) == 0) {
                return Measure(series, static_cast<std::size_t>(size), argc == 4 ? std::atof(argv[3]) : 0.1);
            }
        }
    }
    std::fputs(usage, stderr);
    return 2;
}

} // namespace

} // namespace OrvUQL::bench

int main(int argc, char** argv) {
    try {
        return OrvUQL::bench::Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
