// Some consecutive records of an input on their way from the reader over the evaluator to the output.
#pragma once

#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// Holds bytes only: values are made, used and released where a batch is evaluated, so none goes from thread to thread.
struct RecordBatch {
    struct Record {
        std::size_t begin; ///< in `text`
        std::size_t length;
        std::size_t line; ///< of its first byte in the file, from 1
        std::size_t column;
    };

    // Filled by the reader.
    std::size_t input = 0;                     ///< which of the inputs
    std::string path;                          ///< its name
    std::shared_ptr<const std::string> header; ///< see RecordSource::GetHeader
    std::string text; ///< the records, and behind them as many more bytes as a DocumentReader looks at
    std::vector<Record> records;
    std::string readError; ///< why the input could not be read on behind these records; empty: it could

    // Filled by the evaluator.
    struct Failure {
        std::size_t outputSize; ///< how much of the output stands before it
        std::size_t record;     ///< which of the records that were evaluated, from 0
        std::string place;      ///< in the file, as ":LINE:COLUMN"; empty where the record is what failed
        std::string message;
        std::string caret; ///< lines for behind the message
    };
    /// Up to some record of the batch.
    struct Extent {
        std::size_t records = 0; ///< that were evaluated or failed
        std::size_t failures = 0;
        std::size_t outputSize = 0;
    };
    std::string output;
    std::vector<Failure> failures;
    Extent whole;
    Extent head;                ///< the records that begin on the first one's line, whose begin another batch may have
    std::size_t brokenLine = 0; ///< the last one on which a record was not as it has to be: nothing behind it counts
    std::size_t replacements = 0; ///< malformed pieces of UTF-8 that became U+FFFD
    bool isCut = false;           ///< the user wanted the run to end before all records were evaluated
    std::exception_ptr exception;

    std::string_view GetText(const Record& record) const {
        return std::string_view(text).substr(record.begin, record.length);
    }
};

} // namespace OrvUQL::Tool
