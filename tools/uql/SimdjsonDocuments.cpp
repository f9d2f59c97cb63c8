#include "SimdjsonDocuments.h"

#include "Utf8.h"

namespace OrvUQL::Tool {

Ref<IObject> SimdjsonDocuments::Read(std::string_view document, std::size_t& replacements, JsonError& error) {
    if (!tape || tape->IsShared() || tape->IsLarge()) {
        tape = Ref<JsonTape>(new JsonTape());
    }
    JsonTape::EResult result = tape->Parse(document);
    if (result == JsonTape::MalformedUtf8) {
        const std::size_t count = RepairUtf8(document, repaired);
        const std::size_t length = repaired.size();
        repaired.append(padding, ' ');
        result = tape->Parse(std::string_view(repaired).substr(0, length));
        if (result == JsonTape::Parsed) {
            replacements += count;
        }
    }
    return result == JsonTape::Parsed ? tape->MakeRoot() : fallback.Read(document, replacements, error);
}

} // namespace OrvUQL::Tool
