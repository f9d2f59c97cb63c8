// A query over the records of all inputs.
#pragma once

#include "BatchWorkers.h"
#include "Interrupt.h"
#include "Options.h"
#include "Output.h"
#include "Progress.h"
#include "RecordReader.h"

#include <cstddef>
#include <limits>
#include <string>

namespace OrvUQL::Tool {

/// Brings the records from the reader over the workers to the output, in their order.
class RecordRun {
public:
    /// Everything is borrowed. The query must have been parsed once without an error.
    RecordRun(const QueryOptions& queryOptions, const Printer& printer, Output& results);

    /// Returns the exit status. Throws WorkerFailed and OutputFailed.
    int Run();

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    void ReadAndEvaluate();
    void WriteAll();
    void Write(const RecordBatch& batch);
    void WriteRecords(const RecordBatch& batch, const RecordBatch::Extent& begin);
    void BeginInput(const RecordBatch& batch);
    void EndInput();
    void Report(const std::string& message);

    const QueryOptions& options;
    Output& output;
    RecordReader reader;
    BatchWorkers workers;
    InterruptWatch interrupt;
    Progress progress;
    std::size_t records = 0; // of all inputs, that were evaluated or failed
    std::size_t failures = 0;
    // Of the input whose batches are being written:
    std::size_t input = none;
    std::string path;
    std::size_t inputRecords = 0;
    std::size_t brokenLine = 0; // see RecordBatch
    std::size_t replacements = 0;
    bool isHeaderWritten = false; // the first input's: what a filter leaves of tables is a table again
    bool hasFailed = false;
    bool isStopped = false;
};

} // namespace OrvUQL::Tool
