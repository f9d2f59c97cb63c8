#include "RecordReader.h"

#include "DocumentReader.h"

#include <algorithm>
#include <utility>

namespace OrvUQL::Tool {

namespace {

constexpr std::size_t mostBytes = 64 * 1024;

} // namespace

RecordReader::RecordReader(const std::vector<std::string>& inputPaths, Open openInput, std::size_t batchRecords)
    : paths(inputPaths), open(std::move(openInput)), mostRecords(batchRecords) {}

/// Batches are small at first, so that few records that take long are spread over all threads, and grow so slowly that
/// the records before have always been a multiple of them.
std::size_t RecordReader::GetBatchLimit() const { return std::min(1 + batches / 8, mostRecords); }

void RecordReader::NextInput() {
    source.reset();
    ++input;
}

std::optional<double> RecordReader::GetFraction() const {
    // Inputs count alike: the sizes of those to come are not known.
    const std::optional<double> fraction = source ? source->GetFraction() : std::optional<double>(0);
    if (!fraction) {
        return std::nullopt;
    }
    return (static_cast<double>(input) + *fraction) / static_cast<double>(paths.size());
}

RecordReader::EResult RecordReader::Next(RecordBatch& batch, bool wait) {
    while (input < paths.size()) {
        batch.input = input;
        batch.path = paths[input];
        batch.header.reset();
        if (!source) {
            source = open(paths[input], batch.readError);
            if (!source) {
                NextInput();
                return Batch;
            }
        }
        const std::size_t limit = GetBatchLimit();
        batch.records.reserve(limit);
        while (batch.records.size() < limit && batch.text.size() < mostBytes) {
            SourceRecord record;
            const RecordSource::EResult result = source->Next(record, wait && batch.records.empty(), batch.readError);
            if (!batch.header) {
                batch.header = source->GetHeader();
                isHeaderNew = isHeaderNew || (batch.header && header != batch.header);
                header = batch.header;
            }
            switch (result) {
            case RecordSource::Record:
                batch.records.push_back({batch.text.size(), record.text.size(), record.line, record.column});
                batch.text += record.text;
                continue;
            case RecordSource::WouldWait:
                if (batch.records.empty()) {
                    return WouldWait;
                }
                break;
            case RecordSource::Failed:
            case RecordSource::End:
                NextInput();
                break;
            }
            break;
        }
        if (!batch.records.empty() || !batch.readError.empty() || isHeaderNew) {
            isHeaderNew = false;
            batch.text.append(DocumentReader::padding, ' ');
            ++batches;
            return Batch;
        }
    }
    return End;
}

} // namespace OrvUQL::Tool
