// How the records of inputs are read.
#pragma once

#include "Options.h"
#include "RecordReader.h"
#include "RecordValues.h"

#include <memory>

namespace OrvUQL::Tool {

/// Opens inputs ("-": standard input) of records in that format.
RecordReader::Open MakeOpener(RecordFormat format);

/// Makes values of the records that the options say how to read.
std::unique_ptr<RecordValues> MakeRecordValues(const QueryOptions& options);

} // namespace OrvUQL::Tool
