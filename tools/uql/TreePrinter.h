// The elements of a parsed query as a picture of their tree.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>

namespace OrvUQL::Tool {

enum class TreeFormat {
    Text, ///< a line an element, indented
    Json, ///< one object in one line
    Dot,  ///< for Graphviz
};

/// What else is to be told of the elements of a tree.
class TreeNotes {
public:
    virtual ~TreeNotes() = default;
    /// One line; empty: nothing.
    virtual std::string GetText(const IQueryElement& element) const = 0;
    /// Members of a JSON object, each behind a comma.
    virtual std::string GetJson(const IQueryElement& element) const = 0;
};

/// Appends the tree, ended by a line feed. `notes` may be null. Takes no stack however deep the tree is.
void AppendTree(std::string& out, const IQueryElement& tree, TreeFormat format, const TreeNotes* notes = nullptr);

} // namespace OrvUQL::Tool
