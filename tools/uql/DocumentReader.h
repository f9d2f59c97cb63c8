// What makes records of JSON values of the language.
#pragma once

#include "JsonReader.h"
#include "Ref.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

/// Which library parses. They give the same values and the same errors.
enum class JsonLibrary {
    Nlohmann, ///< everywhere
    Simdjson, ///< several times as fast; where it is installed
};

/// The fastest one of this build.
JsonLibrary GetFastestJsonLibrary();

/// Reads one document after the other. A reader and its values belong to one thread at a time.
class DocumentReader {
public:
    /// A library that this build does not have is replaced by Nlohmann.
    static std::unique_ptr<DocumentReader> Make(JsonLibrary library);

    virtual ~DocumentReader() = default;

    /// So many bytes behind a document may be looked at, whatever they are.
    static constexpr std::size_t padding = 64;

    /// The value of a document, behind which there is padding; or null with the reason. Malformed UTF-8 becomes U+FFFD;
    /// `replacements` is increased by how often. Throws std::bad_alloc.
    ///
    /// A value may need the document's bytes no longer than this call, but is fastest to read if no value of an earlier
    /// document is held while the next one is read.
    virtual Ref<IObject> Read(std::string_view document, std::size_t& replacements, JsonError& error) = 0;
};

} // namespace OrvUQL::Tool
