// A table in a text file, cut into its rows.
#pragma once

#include "CsvParser.h"
#include "LineBuffer.h"
#include "RecordSource.h"

#include <cstddef>
#include <memory>
#include <string>

namespace OrvUQL::Tool {

/// A record is a row as it stands, without the line break behind it. The first row is the header.
class TableRows : public RecordSource {
public:
    TableRows(InputStream stream, char separator)
        : RecordSource(std::move(stream)), lines(input, LineBuffer::AtCarriageReturn), parser(separator) {}

    EResult Next(SourceRecord& row, bool wait, std::string& error) override;
    std::shared_ptr<const std::string> GetHeader() const override { return header; }

private:
    EResult NextRow(SourceRecord& row, bool wait, std::string& error);

    LineBuffer lines;
    CsvParser parser;
    std::size_t rowLine = 0; // on which the row begins; 0: between rows
    std::shared_ptr<const std::string> header;
};

} // namespace OrvUQL::Tool
