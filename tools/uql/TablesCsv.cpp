#include "TableRows.h"
#include "TableValues.h"
#include "Tables.h"

#include <utility>

namespace OrvUQL::Tool {

bool ReadsTables() { return true; }

std::unique_ptr<RecordSource> OpenTable(InputStream stream, char separator) {
    return std::make_unique<TableRows>(std::move(stream), separator);
}

std::unique_ptr<RecordValues> MakeTableValues(char separator) { return std::make_unique<TableValues>(separator); }

} // namespace OrvUQL::Tool
