#include "RecordEvaluator.h"

#include "Interrupt.h"
#include "RecordInput.h"

#include <utility>

namespace OrvUQL::Tool {

namespace {

std::string PrintNull(const Printer& printer) {
    std::string line;
    const Ref<IObject> null(new ObjectNull());
    printer.Append(line, *null, nullptr);
    return line;
}

} // namespace

RecordEvaluator::RecordEvaluator(QueryRunner& queryRunner, const QueryOptions& queryOptions,
                                 const Printer& resultPrinter)
    : runner(queryRunner),
      options(queryOptions),
      nullLine(PrintNull(resultPrinter)),
      values(MakeRecordValues(queryOptions)) {}

void RecordEvaluator::Evaluate(RecordBatch& batch) {
    const auto count = [&] {
        batch.whole.failures = batch.failures.size();
        batch.whole.outputSize = batch.output.size();
    };
    bool isHead = true;
    for (const RecordBatch::Record& record : batch.records) {
        if (isHead && record.line != batch.records.front().line) {
            batch.head = batch.whole;
            isHead = false;
        }
        if (record.line == batch.brokenLine) {
            continue;
        }
        if (InterruptWatch::IsInterrupted()) {
            batch.isCut = true;
            break;
        }
        const bool isEvaluated = EvaluateRecord(batch, record);
        ++batch.whole.records;
        count();
        if (!isEvaluated && options.onError == OnError::Fail) {
            break;
        }
    }
    if (isHead) {
        batch.head = batch.whole;
    }
}

bool RecordEvaluator::EvaluateRecord(RecordBatch& batch, const RecordBatch::Record& record) {
    RecordBatch::Failure failure;
    QueryFailure reason;
    const Ref<IObject> value = values->Make(batch, record, failure);
    bool isEvaluated = static_cast<bool>(value);
    if (isEvaluated) {
        SetValue(value.Get());
        if (options.isFilter) {
            bool verdict = false;
            isEvaluated = runner.Test(verdict, reason);
            if (isEvaluated && verdict) {
                batch.output += batch.GetText(record);
                batch.output += '\n';
            }
        } else {
            isEvaluated = runner.Evaluate(batch.output, reason);
        }
        SetValue(nullptr);
        if (!isEvaluated) {
            failure.message = std::move(reason.message);
            failure.caret = std::move(reason.caret);
        }
    }
    if (!isEvaluated) {
        failure.outputSize = batch.output.size();
        failure.record = batch.whole.records;
        batch.failures.push_back(std::move(failure));
        if (options.onError == OnError::Null) {
            batch.output += nullLine;
        }
    }
    return isEvaluated;
}

/// Null: there is none any more.
void RecordEvaluator::SetValue(IObject* value) {
    if (options.recordFormat == RecordFormat::Lines) {
        runner.SetVariable(value);
    } else {
        runner.SetRecord(value);
    }
}

} // namespace OrvUQL::Tool
