// Conformance files (*.uqlt): the language described by queries and what they give.
//
//     # comment; blank lines are ignored
//     set units 0                 the catalogue of lengths with that resolution; `set units off` none (default)
//     set precision 3             the engine's unit precision (default 0)
//     set props {"a": 1}          the property source, from JSON; `set props off` none (default)
//     set var {"b": 2}            the current variable, likewise
//     set global off              no global functions; `set global on` (default)
//     ? 1 + 2                     a query, to the end of the line
//     = int 3                     expected: type and text of the value
//     ?e 'a\nb'.Length()          a query with the escapes \\ \n \r \t \uXXXX
//     ~ double 3 1e-6             expected: type, and a value within 1e-6 (left out: 1e-12) relative
//     ! Division By Zero          expected: no value, and this message; a lone ! no message either
//
// A setting holds until it is changed or the file ends. Texts and messages have the escapes of ?e. Every query has
// exactly one expectation. Anything else is an error of the file.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "EngineSettings.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// What a query is expected to give.
struct Expectation {
    enum EKind { Value, Near, Failure };

    EKind kind = Value;
    OrvStringT typeName;      ///< Value, Near
    OrvStringT text;          ///< Value: the value's text; Failure: the message, empty for none
    double number = 0;        ///< Near
    double tolerance = 1e-12; ///< Near: relative to `number`
    std::string written;      ///< as the file has it, behind the sign
};

struct ConformanceCase {
    std::size_t line = 0; ///< of the query, from 1
    std::string written;  ///< the query's whole line
    OrvStringT query;
    Expectation expectation;
    std::shared_ptr<const EngineSettings> settings;
};

/// What is wrong with a conformance file, and in which line, counted from 1.
struct ConformanceError {
    std::size_t line = 0;
    std::string message;
};

/// Reads the text of a conformance file. False if any of its lines is wrong; `cases` is then of no use.
bool ReadConformanceFile(std::string_view text, std::vector<ConformanceCase>& cases, ConformanceError& error);

} // namespace OrvUQL::Tool
