// Everything of the language that can nest or grow, each as a query of any size.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tests {

/// What may come instead of the answer, from some size on.
enum class Ends {
    Never,
    WithStack,      ///< "Internal error", of the parser or the evaluation: the more stack, the later
    WithExpression, ///< the error of a regular expression that is too large, too deep or too much work
};

struct Construct {
    const char* name;
    const char* shown; ///< as a user writes it
    std::function<std::wstring(int)> query;
    std::function<std::string(int)> answer; ///< as Describe has a value, or "! " and a message
    Ends ends = Ends::Never;
    int largest = 1000000; ///< what is more would take too long
    bool isLinear = true;  ///< time and memory grow as the size does
};

/// What nests in the text of a query, or in a value.
std::vector<Construct> NestedConstructs();
/// Operators and members one after the other.
std::vector<Construct> ChainConstructs();
/// Single tokens, lists of arguments and messages of any length.
std::vector<Construct> LongConstructs();
/// Methods of long texts.
std::vector<Construct> TextConstructs();
/// Regular expressions that are long, and those applied to long texts.
std::vector<Construct> RegexConstructs();
/// Methods of long arrays.
std::vector<Construct> ArrayConstructs();

/// All of them, in this order. The list lives as long as the program.
const std::vector<Construct>& Constructs();

// ---- to write them with ----

/// A text so many times.
std::wstring Times(int count, std::wstring_view text);
std::string Times(int count, std::string_view text);

/// `open` so many times, `middle`, and `close` as often.
std::function<std::wstring(int)> Around(const wchar_t* open, const wchar_t* middle, const wchar_t* close);
/// `term` so many times, with `between` in between.
std::function<std::wstring(int)> Chain(const wchar_t* term, const wchar_t* between);
/// `begin`, `part` so many times, `end`.
std::function<std::wstring(int)> Row(const wchar_t* begin, const wchar_t* part, const wchar_t* end);
/// A query with the size in it wherever it has "#".
std::function<std::wstring(int)> Sized(const wchar_t* query);

/// The same answer at any size.
std::function<std::string(int)> Always(const char* answer);
/// `int N`, where N is so many times the size, and more.
std::function<std::string(int)> Int(int times, int more = 0);
/// `begin`, `part` so many times, `end`.
std::function<std::string(int)> Text(const char* begin, const char* part, const char* end);

} // namespace OrvUQL::Tests
