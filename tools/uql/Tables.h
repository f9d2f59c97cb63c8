// Records that are rows of a table in a text file.
#pragma once

#include "InputStream.h"
#include "RecordSource.h"
#include "RecordValues.h"

#include <memory>

namespace OrvUQL::Tool {

/// Whether this build reads tables. The following may be called only if it does.
bool ReadsTables();

/// The rows behind the first one, which is the header. Fields are separated by a comma or a tab.
std::unique_ptr<RecordSource> OpenTable(InputStream stream, char separator);

/// Makes objects of rows, their members named by the header.
std::unique_ptr<RecordValues> MakeTableValues(char separator);

} // namespace OrvUQL::Tool
