// Some consecutive records of an input on their way from the reader over the evaluator to the output.
#pragma once

#include <cstddef>
#include <exception>
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
    std::size_t input = 0;       ///< which of the inputs
    std::string path;            ///< its name
    std::size_t firstNumber = 1; ///< of the first record here, counted from 1 in the input
    std::string text;
    std::vector<Record> records;
    std::string readError; ///< why the input could not be read on behind these records; empty: it could

    // Filled by the evaluator.
    struct Failure {
        std::size_t outputSize; ///< how much of the output stands before it
        std::string report;     ///< for standard error
    };
    std::string output;
    std::vector<Failure> failures;
    bool isInputSpoilt = false; ///< the input cannot be read on behind the last failure
    std::exception_ptr exception;

    std::string_view GetText(const Record& record) const {
        return std::string_view(text).substr(record.begin, record.length);
    }
};

} // namespace OrvUQL::Tool
