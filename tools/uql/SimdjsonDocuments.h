// Documents read by simdjson.
#pragma once

#include "DocumentReader.h"
#include "JsonTape.h"
#include "NlohmannDocuments.h"
#include "Ref.h"

#include <string>

namespace OrvUQL::Tool {

/// Parses and checks a document as a whole, but makes values of its objects' members only when they are asked for. What
/// simdjson refuses is left to the other reader: malformed text, which that one describes, and integers of more than 64
/// bits, which it knows.
class SimdjsonDocuments : public DocumentReader {
public:
    Ref<IObject> Read(std::string_view document, std::size_t& replacements, JsonError& error) override;

private:
    Ref<JsonTape> tape;
    NlohmannDocuments fallback;
    std::string repaired;
};

} // namespace OrvUQL::Tool
