// The records of all inputs, in batches.
#pragma once

#include "JsonDocuments.h"
#include "RecordBatch.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// Reads one input after the other. What cannot be opened or read comes as a batch with a readError.
class RecordReader {
public:
    /// The paths are borrowed.
    explicit RecordReader(const std::vector<std::string>& inputPaths) : paths(inputPaths) {}

    enum EResult {
        Batch,     ///< `batch` has records or a readError
        End,       ///< there are no more
        WouldWait, ///< nothing is there yet
    };

    /// With `wait` false never waits for input.
    EResult Next(RecordBatch& batch, bool wait);

    /// Gives up what is left of an input, if it is being read.
    void Skip(std::size_t skippedInput);

private:
    bool Open(std::string& error);
    std::size_t GetBatchLimit() const;
    void NextInput();

    const std::vector<std::string>& paths;
    std::size_t input = 0;
    std::optional<JsonDocuments> documents; // of the input that is being read
    std::size_t nextNumber = 1;
    std::size_t batches = 0;
};

} // namespace OrvUQL::Tool
