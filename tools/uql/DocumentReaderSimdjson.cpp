#include "DocumentReader.h"
#include "NlohmannDocuments.h"
#include "SimdjsonDocuments.h"

namespace OrvUQL::Tool {

JsonLibrary GetFastestJsonLibrary() { return JsonLibrary::Simdjson; }

std::unique_ptr<DocumentReader> DocumentReader::Make(JsonLibrary library) {
    if (library == JsonLibrary::Simdjson) {
        return std::make_unique<SimdjsonDocuments>();
    }
    return std::make_unique<NlohmannDocuments>();
}

} // namespace OrvUQL::Tool
