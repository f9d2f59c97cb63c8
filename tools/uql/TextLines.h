// A file of text, cut into its lines.
#pragma once

#include "LineBuffer.h"
#include "RecordSource.h"

namespace OrvUQL::Tool {

/// A record is a line without its line feed.
class TextLines : public RecordSource {
public:
    explicit TextLines(InputStream stream) : RecordSource(std::move(stream)), lines(input, LineBuffer::AtLineFeed) {}

    EResult Next(SourceRecord& line, bool wait, std::string& error) override;

private:
    LineBuffer lines;
};

} // namespace OrvUQL::Tool
