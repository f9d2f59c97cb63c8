// Where records come from: a file, cut into its records.
#pragma once

#include "InputStream.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace OrvUQL::Tool {

/// One record's bytes, and where it begins in its file.
struct SourceRecord {
    std::string_view text;  ///< borrowed until the next call of Next
    std::size_t line = 1;   ///< from 1
    std::size_t column = 1; ///< from 1, in bytes
};

/// Reads a file to its end and holds one record and one block of it at a time.
class RecordSource {
public:
    enum EResult {
        Record,    ///< `record` is the next one
        End,       ///< there are no more
        Failed,    ///< the file cannot be read; `error` says why
        WouldWait, ///< the next record is not there yet
    };

    virtual ~RecordSource() = default;

    /// With `wait` false never waits for input.
    virtual EResult Next(SourceRecord& record, bool wait, std::string& error) = 0;

    /// What stood before the first record and says what the records' parts are; null: nothing (yet).
    virtual std::shared_ptr<const std::string> GetHeader() const { return nullptr; }

    /// How much of the file has been read, from 0 to 1, if that is known.
    std::optional<double> GetFraction() const { return input.GetFraction(); }

protected:
    explicit RecordSource(InputStream stream) : input(std::move(stream)) {}

    InputStream input;
};

} // namespace OrvUQL::Tool
