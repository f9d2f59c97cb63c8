#include "TableValues.h"

#include "TableRow.h"
#include "Utf8.h"

#include <utility>

namespace OrvUQL::Tool {

namespace {

std::string CountFields(std::size_t count) { return std::to_string(count) + (count == 1 ? " field" : " fields"); }

} // namespace

bool TableValues::TakeHeader(const RecordBatch& batch, RecordBatch::Failure& failure) {
    if (header == batch.header) {
        return static_cast<bool>(names);
    }
    header = batch.header;
    names.Reset();
    const std::size_t count = RepairUtf8(*header, repaired);
    if (!parser.Split(count == 0 ? *header : repaired, fields)) {
        failure.message = "a quote of the header is not closed";
        return false;
    }
    std::vector<OrvStringT> written;
    written.reserve(fields.size());
    for (const std::string& field : fields) {
        written.push_back(OrvStringT::FromUtf8(field));
    }
    names = Ref<JsonKeys>(new JsonKeys(written));
    columns = written.size();
    return true;
}

Ref<IObject> TableValues::Make(RecordBatch& batch, const RecordBatch::Record& record, RecordBatch::Failure& failure) {
    failure.place = TellPlace(record.line, record.column);
    if (!TakeHeader(batch, failure)) {
        return Ref<IObject>();
    }
    const std::string_view text = batch.GetText(record);
    const std::size_t count = RepairUtf8(text, repaired);
    batch.replacements += count;
    if (!parser.Split(count == 0 ? text : repaired, fields)) {
        failure.message = "a quote is not closed";
        return Ref<IObject>();
    }
    if (fields.size() > columns) {
        failure.message = "the row has " + CountFields(fields.size()) + ", the header " + CountFields(columns);
        return Ref<IObject>();
    }
    failure.place.clear();
    names->AddRef();
    Ref<JsonKeys> rowNames(names.Get());
    return Ref<IObject>(new TableRow(std::move(rowNames), fields));
}

} // namespace OrvUQL::Tool
