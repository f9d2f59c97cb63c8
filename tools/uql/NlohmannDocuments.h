// Documents read by the library that is there everywhere.
#pragma once

#include "DocumentReader.h"

#include <string>

namespace OrvUQL::Tool {

/// Makes all values of a document at once. Other readers leave to it what they refuse: its verdict is the one that
/// counts, and its message the one that is told.
class NlohmannDocuments : public DocumentReader {
public:
    Ref<IObject> Read(std::string_view document, std::size_t& replacements, JsonError& error) override;

private:
    JsonReader reader;
    std::string repaired;
};

} // namespace OrvUQL::Tool
