#include "RecordInput.h"

#include "File.h"
#include "InputStream.h"
#include "JsonDocuments.h"
#include "Tables.h"
#include "TextLines.h"

#include <string>
#include <utility>

namespace OrvUQL::Tool {

namespace {

constexpr char comma = ',';
constexpr char tab = '\t';

std::unique_ptr<RecordSource> MakeSource(RecordFormat format, InputStream stream) {
    switch (format) {
    case RecordFormat::Lines:
        return std::make_unique<TextLines>(std::move(stream));
    case RecordFormat::Csv:
        return OpenTable(std::move(stream), comma);
    case RecordFormat::Tsv:
        return OpenTable(std::move(stream), tab);
    default:
        return std::make_unique<JsonDocuments>(std::move(stream));
    }
}

} // namespace

RecordReader::Open MakeOpener(RecordFormat format) {
    return [format](const std::string& path, std::string& error) -> std::unique_ptr<RecordSource> {
        InputFile file(path);
        if (!file.Open(error)) {
            return nullptr;
        }
        return MakeSource(format, InputStream(std::move(file)));
    };
}

std::unique_ptr<RecordValues> MakeRecordValues(const QueryOptions& options) {
    switch (options.recordFormat) {
    case RecordFormat::Lines:
        return MakeLineValues();
    case RecordFormat::Csv:
        return MakeTableValues(comma);
    case RecordFormat::Tsv:
        return MakeTableValues(tab);
    default:
        return MakeJsonValues(options.jsonLibrary);
    }
}

} // namespace OrvUQL::Tool
