// The records of all inputs, in batches.
#pragma once

#include "RecordBatch.h"
#include "RecordSource.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// Reads one input after the other. What cannot be opened or read comes as a batch with a readError.
class RecordReader {
public:
    /// Opens the input of that name; null with the reason in `error`.
    using Open = std::function<std::unique_ptr<RecordSource>(const std::string& path, std::string& error)>;

    /// The paths are borrowed. A batch has up to `batchRecords` records.
    RecordReader(const std::vector<std::string>& inputPaths, Open openInput, std::size_t batchRecords);

    enum EResult {
        Batch,     ///< `batch` has records, a readError or a new header
        End,       ///< there are no more
        WouldWait, ///< nothing is there yet
    };

    /// With `wait` false never waits for input.
    EResult Next(RecordBatch& batch, bool wait);

    /// How much of all inputs has been read, from 0 to 1, if that is known.
    std::optional<double> GetFraction() const;

    /// As many records as a batch has for the best speed.
    static constexpr std::size_t manyRecords = 256;

private:
    std::size_t GetBatchLimit() const;
    void NextInput();

    const std::vector<std::string>& paths;
    Open open;
    std::size_t mostRecords;
    std::size_t input = 0;
    std::unique_ptr<RecordSource> source;      // the input that is being read
    std::shared_ptr<const std::string> header; // of the last batch
    bool isHeaderNew = false;                  // no batch has brought it yet
    std::size_t batches = 0;
};

} // namespace OrvUQL::Tool
