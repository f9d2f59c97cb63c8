#include "RecordEvaluator.h"

#include "ErrorReport.h"

namespace OrvUQL::Tool {

namespace {

void SpoilInput(RecordBatch& batch, const std::string& message) {
    batch.failures.push_back({batch.output.size(), FormatMessage(batch.path + ": " + message)});
    batch.isInputSpoilt = true;
}

} // namespace

void RecordEvaluator::Evaluate(RecordBatch& batch) {
    std::size_t number = batch.firstNumber;
    for (const RecordBatch::Record& record : batch.records) {
        JsonError jsonError;
        const std::string_view text = batch.GetText(record);
        const Ref<IObject> value = reader.Read(text, jsonError);
        if (!value) {
            SpoilInput(batch, DescribeJsonError(jsonError, text, record.line, record.column));
            return;
        }
        runner.SetRecord(value.Get());
        QueryFailure failure;
        if (!runner.Evaluate(batch.output, failure)) {
            const std::string place = batch.path + ": record " + std::to_string(number) + ": ";
            batch.failures.push_back({batch.output.size(), FormatMessage(place + failure.message) + failure.caret});
            if (!keepGoing) {
                return;
            }
        }
        ++number;
    }
    if (!batch.readError.empty()) {
        SpoilInput(batch, batch.readError);
    }
}

} // namespace OrvUQL::Tool
