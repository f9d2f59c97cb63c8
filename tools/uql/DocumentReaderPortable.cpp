#include "DocumentReader.h"
#include "NlohmannDocuments.h"

namespace OrvUQL::Tool {

JsonLibrary GetFastestJsonLibrary() { return JsonLibrary::Nlohmann; }

std::unique_ptr<DocumentReader> DocumentReader::Make(JsonLibrary) { return std::make_unique<NlohmannDocuments>(); }

} // namespace OrvUQL::Tool
