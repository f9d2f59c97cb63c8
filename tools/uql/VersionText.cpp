#include "VersionText.h"

#include "DocumentReader.h"
#include "LineEditor.h"

namespace OrvUQL::Tool {

std::string GetVersionText() {
    std::string text = "uql " ORVUQL_VERSION "\n"
                       "library: OrvUQL " ORVUQL_VERSION "\n"
                       "compiler: " ORVUQL_COMPILER "\n"
                       "system: " ORVUQL_SYSTEM "\n"
                       "build type: " ORVUQL_BUILD_TYPE "\n";
    text += "JSON reader: ";
    text += GetFastestJsonLibrary() == JsonLibrary::Simdjson ? "simdjson" : "nlohmann";
    text += "\nline editor: ";
    text += LineEditor::GetName();
    return text;
}

} // namespace OrvUQL::Tool
