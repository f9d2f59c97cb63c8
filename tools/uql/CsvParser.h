// Tables as text: fields with a separator between them, one row a line.
#pragma once

#include <cstddef>
#include <csv.h>
#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

/// libcsv's parser, set up the same way wherever rows are looked at: a field in quotes may hold separators and line
/// breaks, two quotes in it stand for one; a quote within a field without quotes is a character like any other; blanks
/// belong to their field; empty lines are no rows.
class CsvParser {
public:
    explicit CsvParser(char fieldSeparator);
    CsvParser(const CsvParser&) = delete;
    CsvParser& operator=(const CsvParser&) = delete;
    ~CsvParser();

    /// Goes on by a piece of the text. True if a row ended in it. Throws std::bad_alloc.
    bool Take(std::string_view piece);

    /// Splits a text that is one row. False if it ends within quotes.
    bool Split(std::string_view row, std::vector<std::string>& fields);

private:
    void Begin();
    static void EndField(void* field, std::size_t length, void* parser);
    static void EndRow(int lineBreak, void* parser);

    char separator;
    csv_parser parser;
    std::vector<std::string>* wanted = nullptr; // where the fields go, if anywhere
    std::size_t count = 0;                      // of the fields of the row
    bool isRowEnded = false;
};

} // namespace OrvUQL::Tool
