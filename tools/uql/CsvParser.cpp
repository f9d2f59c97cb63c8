#include "CsvParser.h"

#include <new>

namespace OrvUQL::Tool {

namespace {

extern "C" int IsNoBlank(unsigned char) { return 0; }

} // namespace

CsvParser::CsvParser(char fieldSeparator) : separator(fieldSeparator) { Begin(); }

void CsvParser::Begin() {
    if (::csv_init(&parser, 0) != 0) {
        throw std::bad_alloc();
    }
    ::csv_set_delim(&parser, static_cast<unsigned char>(separator));
    ::csv_set_space_func(&parser, IsNoBlank);
}

CsvParser::~CsvParser() { ::csv_free(&parser); }

void CsvParser::EndField(void* field, std::size_t length, void* self) {
    CsvParser& my = *static_cast<CsvParser*>(self);
    if (my.wanted == nullptr) {
        return;
    }
    if (my.count == my.wanted->size()) {
        my.wanted->emplace_back();
    }
    (*my.wanted)[my.count++].assign(static_cast<const char*>(field), length);
}

void CsvParser::EndRow(int, void* self) { static_cast<CsvParser*>(self)->isRowEnded = true; }

bool CsvParser::Take(std::string_view piece) {
    isRowEnded = false;
    if (::csv_parse(&parser, piece.data(), piece.size(), EndField, EndRow, this) != piece.size()) {
        throw std::bad_alloc(); // nothing else makes it stop when it is not strict
    }
    return isRowEnded;
}

bool CsvParser::Split(std::string_view row, std::vector<std::string>& fields) {
    wanted = &fields;
    count = 0;
    Take(row);
    // Being strict to the end would refuse the quotes within fields.
    ::csv_set_opts(&parser, CSV_STRICT | CSV_STRICT_FINI);
    const bool isComplete = ::csv_fini(&parser, EndField, EndRow, this) == 0;
    ::csv_set_opts(&parser, 0);
    if (!isComplete) {
        ::csv_free(&parser);
        Begin();
    }
    fields.resize(count);
    wanted = nullptr;
    return isComplete;
}

} // namespace OrvUQL::Tool
