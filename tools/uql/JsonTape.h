// A parsed document of which values are made when they are asked for.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Ref.h"

#include <cstddef>
#include <simdjson.h>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Holds the parser with what it made of a document. Counted, for the objects of the document look into it.
class JsonTape : public RefCountImpl<IRefCountObject> {
public:
    enum EResult { Parsed, MalformedUtf8, Refused };

    /// Parses another document, behind which DocumentReader::padding has to stand, in place of the one before, no value
    /// of which may be held any more. Throws std::bad_alloc.
    EResult Parse(std::string_view document);

    /// The value of the document that was parsed. Throws std::bad_alloc, as the following do.
    Ref<IObject> MakeRoot() { return MakeValue(root); }
    /// The value of a part of it: an array's items are values at once, an object's members are not. Nesting takes no
    /// stack.
    Ref<IObject> MakeValue(simdjson::dom::element element);

    /// Somebody else holds it.
    bool IsShared() const { return refCount != 1; }
    /// It keeps so much memory that a new one for the next document is better.
    bool IsLarge() const { return parser.capacity() > largeCapacity; }

private:
    static constexpr std::size_t largeCapacity = 4 << 20;

    Ref<IObject> MakeLeaf(simdjson::dom::element element);

    simdjson::dom::parser parser;
    simdjson::dom::element root;
};

/// Appends a part of a document as compact JSON, numbers as the language writes them and of members of the same name
/// the last. Nesting takes no stack.
void AppendJson(std::string& out, simdjson::dom::element element);

} // namespace OrvUQL::Tool
