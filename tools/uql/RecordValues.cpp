#include "RecordValues.h"

#include "LineBuffer.h"
#include "Utf8.h"

#include <string>
#include <utility>

namespace OrvUQL::Tool {

namespace {

class JsonValues final : public RecordValues {
public:
    explicit JsonValues(JsonLibrary library) : documents(DocumentReader::Make(library)) {}

    Ref<IObject> Make(RecordBatch& batch, const RecordBatch::Record& record, RecordBatch::Failure& failure) override {
        JsonError error;
        const std::string_view text = batch.GetText(record);
        Ref<IObject> value = documents->Read(text, batch.replacements, error);
        if (!value) {
            const JsonPlace place = FindJsonError(error, text, {record.line, record.column});
            failure.place = TellPlace(place.line, place.column);
            failure.message = std::move(error.message);
            if (place.line == record.line) { // of documents of several lines the reader knows where to go on
                batch.brokenLine = place.line;
            }
        }
        return value;
    }

private:
    std::unique_ptr<DocumentReader> documents;
};

class LineValues final : public RecordValues {
public:
    Ref<IObject> Make(RecordBatch& batch, const RecordBatch::Record& record, RecordBatch::Failure&) override {
        std::string_view line = TrimLineBreak(batch.GetText(record));
        const std::size_t count = RepairUtf8(line, repaired);
        batch.replacements += count;
        return Ref<IObject>(new ObjectString(OrvStringT::FromUtf8(count == 0 ? line : repaired)));
    }

private:
    std::string repaired;
};

} // namespace

std::string TellPlace(std::size_t line, std::size_t column) {
    std::string place(1, ':');
    place += std::to_string(line);
    place += ':';
    place += std::to_string(column);
    return place;
}

std::unique_ptr<RecordValues> MakeJsonValues(JsonLibrary library) { return std::make_unique<JsonValues>(library); }

std::unique_ptr<RecordValues> MakeLineValues() { return std::make_unique<LineValues>(); }

} // namespace OrvUQL::Tool
