// What is measured: each case is a query, the same work for the other engines as far as they can say it, what the
// host's variables hold, and the answer that all must give.
#pragma once

#include <string>
#include <variant>
#include <vector>

namespace OrvUQL::bench {

using Answer = std::variant<bool, double, std::string>;

/// The names that a host offers here. All engines of the comparison get their values from the same records.
constexpr const char* variableNames[] = {"a", "b", "c", "d", "e", "list", "name", "price", "quantity", "weight"};

/// A list of the ints from 1 to `count` in no order, but always the same.
struct List {
    int count;
};

std::vector<int> NumbersOf(List list);

using Value = std::variant<int, double, std::string, List>;

struct Variable {
    std::string name; ///< one of variableNames
    Value value;
};

/// Plain data of a host, in no engine's own form.
using Record = std::vector<Variable>;

/// How the other engines get at the record; the query reads it with "@" in any case.
enum class Passing {
    Arguments, ///< the values are arguments of a compiled function, made anew for each call
    Functions, ///< the arguments are functions of the host: the host is called for each value that is read, as "@" does
    Members,   ///< the record is an object `r`; the host is called for each member that is read, with its name
};

struct Case {
    std::string name; ///< "subject/what"
    std::string query;
    std::string lua; ///< expressions of the other languages; empty where none does the same work
    std::string javaScript;
    std::string muparserx;
    Answer answer;
    std::vector<Record> records;
    Passing passing = Passing::Arguments;
    std::vector<bool> truths = {}; ///< with many records: the answer for each

    bool ReadsRecord() const { return query.find('@') != std::string::npos; }

    /// What is wrong with the answer to a record; empty if it is right. Numbers may differ by rounding: the engines
    /// need not compute in the same order.
    std::string FindFault(std::size_t record, const Answer& got) const;
};

/// All cases, by subject. The list lives as long as the program.
const std::vector<Case>& Cases();

/// The case of that name; it must be there.
const Case& FindCase(const std::string& name);

} // namespace OrvUQL::bench
