// A file of JSON, cut into its documents.
#pragma once

#include "JsonMarks.h"
#include "JsonTokens.h"
#include "RecordSource.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// A document that ends on the line on which it begins, as in files of one document a line, is found by counting
/// brackets: whether it is JSON is for the reader of the document to say, who knows on which line it fails. A document
/// of several lines is followed token by token, so that what is missing in one does not make the rest of the file a
/// part of it: it is cut behind the first token that cannot be there, and the next document is looked for on the next
/// line (on that token's own line if nothing stands before it). If the lines behind its first one look like documents
/// that it has taken along, it is cut at the end of that line and they are read again.
class JsonDocuments : public RecordSource {
public:
    explicit JsonDocuments(InputStream stream);

    EResult Next(SourceRecord& document, bool wait, std::string& error) override;

private:
    enum EState { BeforeDocument, InScalar, InString, InNested, InTokens, BehindBroken };
    enum EToken { NoToken, StringToken, ScalarToken };

    bool Scan();
    bool SkipBlanks();
    bool SkipLine();
    bool Begin();
    bool ScanScalar();
    bool ScanString();
    bool ScanNested();
    bool ScanBlock();
    bool ScanEscapes(const JsonMarks& marks);
    bool TakeMark(std::size_t mark);
    bool ScanTokens();
    bool ScanToken();
    void BreakHere();
    bool CutOff(std::optional<char> next);
    void CountLine(std::size_t lineBreak);
    bool SkipByteOrderMark();
    void MakeRoom();

    std::vector<char> buffer;
    std::size_t filled = 0;    // bytes of the buffer that have been read
    std::size_t place = 0;     // the next byte to look at
    std::size_t begin = 0;     // of the document
    std::size_t end = 0;       // of the document, when it has been found
    std::size_t dropped = 0;   // bytes of the file that the buffer no longer holds
    std::size_t line = 1;      // of `place`
    std::size_t lineBegin = 0; // in the file
    EState state = BeforeDocument;
    std::size_t depth = 0;     // of InNested
    bool isInString = false;   // of InNested
    JsonTokens tokens;         // of InTokens
    EToken token = NoToken;    // the one that `place` is in
    bool isBroken = false;     // `place` is at a byte that cannot be
    std::size_t cutOffEnd = 0; // in the file: what begins before and does not end on its line is cut off there
    bool isAtHead = true;
    bool isAtEnd = false;
    std::size_t documentLine = 1;
    std::size_t documentColumn = 1;
};

} // namespace OrvUQL::Tool
