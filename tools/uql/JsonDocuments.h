// A file of JSON, cut into its documents.
#pragma once

#include "File.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// One document's bytes, and where it begins in its file.
struct JsonDocument {
    std::string_view text;  ///< borrowed until the next call of Next
    std::size_t line = 1;   ///< from 1
    std::size_t column = 1; ///< from 1, in bytes
};

/// Finds where documents end by their brackets and quotes alone; whether they are JSON is for the reader to say. What
/// is cut here is, for every file, what a reader of the whole would have read up to its first error. Holds one document
/// at a time.
class JsonDocuments {
public:
    /// The file must be open.
    explicit JsonDocuments(InputFile file);

    enum EResult {
        Document,  ///< `document` is the next one
        End,       ///< there are no more
        Failed,    ///< the file cannot be read; `error` says why
        WouldWait, ///< the next document is not there yet
    };

    /// With `wait` false never waits for input.
    EResult Next(JsonDocument& document, bool wait, std::string& error);

private:
    enum EState { BeforeDocument, InScalar, InString, InNested };

    bool Scan();
    bool SkipBlanks();
    bool Begin();
    bool ScanScalar();
    bool ScanString();
    bool ScanNested();
    void CountLine(std::size_t lineBreak);
    bool SkipByteOrderMark();
    void MakeRoom();

    InputFile file;
    std::vector<char> buffer;
    std::size_t filled = 0;    // bytes of the buffer that have been read
    std::size_t place = 0;     // the next byte to look at
    std::size_t begin = 0;     // of the document
    std::size_t dropped = 0;   // bytes of the file that the buffer no longer holds
    std::size_t line = 1;      // of `place`
    std::size_t lineBegin = 0; // in the file
    std::size_t depth = 0;
    EState state = BeforeDocument;
    bool isInString = false; // inside a nested document
    bool isAtHead = true;
    bool isAtEnd = false;
    std::size_t documentLine = 1;
    std::size_t documentColumn = 1;
};

} // namespace OrvUQL::Tool
