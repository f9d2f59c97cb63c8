#include "NlohmannDocuments.h"

#include "Utf8.h"

namespace OrvUQL::Tool {

Ref<IObject> NlohmannDocuments::Read(std::string_view document, std::size_t& replacements, JsonError& error) {
    Ref<IObject> value = reader.Read(document, error);
    if (value) {
        return value;
    }
    // It takes no malformed UTF-8.
    const std::size_t count = RepairUtf8(document, repaired);
    if (count == 0) {
        return value;
    }
    value = reader.Read(repaired, error);
    if (value) {
        replacements += count;
    } else {
        error.offset = FindUnrepairedPlace(document, error.offset);
    }
    return value;
}

} // namespace OrvUQL::Tool
