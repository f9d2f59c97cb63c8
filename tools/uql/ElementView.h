// What there is to tell of one element of a parsed query.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// A child's place in its element: "left", or "argument" and its number.
struct ElementRole {
    const char* name = nullptr; ///< as JSON calls the member; null: the root
    int number = 0;             ///< from 1 in a list, 0 elsewhere
};

struct ElementChild {
    ElementRole role;
    const IQueryElement* element = nullptr; ///< borrowed; null: an argument that was left out
};

struct ElementView {
    const char* kind = nullptr; ///< "value", "name", "operator", "group", "array"; "element" if it is a host's own
    std::string label;          ///< in one line: "int 1", "name @size", "operator +"
    std::string json;           ///< members that tell the same, each behind a comma: `,"operator":"+"`
    std::vector<ElementChild> children;
};

/// Looks at one element. Takes no stack however deep what hangs from it is.
ElementView ViewElement(const IQueryElement& element);

/// A text as JSON, quotes included.
std::string QuoteJson(const OrvStringT& text);
/// A value as JSON.
std::string ValueToJson(const IObject& value);
/// A value as one line: a string in the quotes of the language, control characters escaped, and not much longer than
/// `limit` characters.
std::string ValueToLine(const IObject& value, std::size_t limit);

} // namespace OrvUQL::Tool
