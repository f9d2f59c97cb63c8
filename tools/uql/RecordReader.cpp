#include "RecordReader.h"

#include <algorithm>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t mostRecords = 256;
constexpr std::size_t mostBytes = 64 * 1024;

} // namespace

/// Batches are small at first, so that few records that take long are spread over all threads, and grow so slowly that
/// the records before have always been a multiple of them.
std::size_t RecordReader::GetBatchLimit() const { return std::min(1 + batches / 8, mostRecords); }

bool RecordReader::Open(std::string& error) {
    InputFile file(paths[input]);
    if (!file.Open(error)) {
        return false;
    }
    documents.emplace(std::move(file));
    return true;
}

void RecordReader::NextInput() {
    documents.reset();
    ++input;
    nextNumber = 1;
}

void RecordReader::Skip(std::size_t skippedInput) {
    if (input == skippedInput) {
        NextInput();
    }
}

RecordReader::EResult RecordReader::Next(RecordBatch& batch, bool wait) {
    while (input < paths.size()) {
        batch.input = input;
        batch.path = paths[input];
        batch.firstNumber = nextNumber;
        if (!documents && !Open(batch.readError)) {
            NextInput();
            return Batch;
        }
        const std::size_t limit = GetBatchLimit();
        while (batch.records.size() < limit && batch.text.size() < mostBytes) {
            JsonDocument document;
            switch (documents->Next(document, wait && batch.records.empty(), batch.readError)) {
            case JsonDocuments::Document:
                batch.records.push_back({batch.text.size(), document.text.size(), document.line, document.column});
                batch.text += document.text;
                ++nextNumber;
                continue;
            case JsonDocuments::WouldWait:
                if (batch.records.empty()) {
                    return WouldWait;
                }
                break;
            case JsonDocuments::Failed:
            case JsonDocuments::End:
                NextInput();
                break;
            }
            break;
        }
        if (!batch.records.empty() || !batch.readError.empty()) {
            ++batches;
            return Batch;
        }
    }
    return End;
}

} // namespace OrvUQL::Tool
