#include "Tables.h"

namespace OrvUQL::Tool {

bool ReadsTables() { return false; }

std::unique_ptr<RecordSource> OpenTable(InputStream, char) { return nullptr; }

std::unique_ptr<RecordValues> MakeTableValues(char) { return nullptr; }

} // namespace OrvUQL::Tool
