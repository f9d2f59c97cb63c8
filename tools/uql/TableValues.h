// Rows of tables as values of the language.
#pragma once

#include "CsvParser.h"
#include "JsonKeys.h"
#include "RecordValues.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// A row is an object: its members are strings, named as the columns are; what a row is too short for is null.
class TableValues final : public RecordValues {
public:
    explicit TableValues(char separator) : parser(separator) {}

    Ref<IObject> Make(RecordBatch& batch, const RecordBatch::Record& record, RecordBatch::Failure& failure) override;

private:
    bool TakeHeader(const RecordBatch& batch, RecordBatch::Failure& failure);

    CsvParser parser;
    std::shared_ptr<const std::string> header; // as it stands
    Ref<JsonKeys> names;                       // of the columns
    std::size_t columns = 0;
    std::vector<std::string> fields;
    std::string repaired;
};

} // namespace OrvUQL::Tool
