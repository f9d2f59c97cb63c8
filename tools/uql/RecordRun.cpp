#include "RecordRun.h"

#include "ErrorReport.h"
#include "RecordInput.h"

#include <memory>
#include <string_view>
#include <utility>

namespace OrvUQL::Tool {

namespace {

std::string Count(std::size_t number, const char* one, const char* many) {
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

} // namespace

RecordRun::RecordRun(const QueryOptions& queryOptions, const Printer& printer, Output& results)
    : options(queryOptions),
      output(results),
      reader(queryOptions.inputs, MakeOpener(queryOptions.recordFormat),
             queryOptions.isUnbuffered ? 1 : RecordReader::manyRecords),
      workers(queryOptions.query, queryOptions, printer) {}

int RecordRun::Run() {
    ReadAndEvaluate();
    EndInput();
    output.Flush();
    output.ClearStatus();
    const bool isInterrupted = InterruptWatch::IsInterrupted();
    if (isInterrupted || (failures != 0 && options.onError != OnError::Fail)) {
        output.WriteError(FormatMessage((isInterrupted ? "interrupted: " : "") + std::to_string(failures) + " of " +
                                        Count(records, "record", "records") + " failed"));
    }
    if (isInterrupted) {
        InterruptWatch::EndProcess();
    }
    return hasFailed ? 1 : 0;
}

void RecordRun::ReadAndEvaluate() {
    while (!isStopped && !InterruptWatch::IsInterrupted()) {
        auto batch = std::make_unique<RecordBatch>();
        RecordReader::EResult result = reader.Next(*batch, false);
        if (result == RecordReader::WouldWait) {
            // Whoever writes our input may be waiting for what we make of it.
            WriteAll();
            output.Flush();
            if (isStopped) {
                break;
            }
            result = reader.Next(*batch, true);
        }
        // What was read last may have been cut where the user did not want to wait for more.
        if (result == RecordReader::End || InterruptWatch::IsInterrupted()) {
            break;
        }
        workers.Submit(std::move(batch));
        if (workers.IsFull()) {
            Write(*workers.Take());
        }
    }
    WriteAll();
}

void RecordRun::WriteAll() {
    while (!isStopped && !workers.IsEmpty()) {
        Write(*workers.Take());
    }
}

void RecordRun::Write(const RecordBatch& batch) {
    if (batch.input != input) {
        EndInput();
        BeginInput(batch);
    }
    // A line that is broken is skipped to its end, also where the batch was read before anybody knew.
    const bool beginsBroken = !batch.records.empty() && batch.records.front().line == brokenLine;
    if (options.isFilter && batch.header && !isHeaderWritten) {
        output.Write(*batch.header + "\n");
        isHeaderWritten = true;
    }
    const RecordBatch::Extent begin = beginsBroken ? batch.head : RecordBatch::Extent();
    WriteRecords(batch, begin);
    replacements += batch.replacements;
    inputRecords += batch.whole.records - begin.records;
    records += batch.whole.records - begin.records;
    if (batch.brokenLine != 0) {
        brokenLine = batch.brokenLine;
    }
    if (!batch.readError.empty() && !isStopped) {
        Report(batch.path + ": " + batch.readError);
    }
    isStopped = isStopped || batch.isCut;
    if (options.isUnbuffered) {
        output.Flush();
    }
    if (const std::string line = progress.Tell(records, failures, reader.GetFraction()); !line.empty()) {
        output.ShowStatus(line);
    }
}

void RecordRun::WriteRecords(const RecordBatch& batch, const RecordBatch::Extent& begin) {
    std::size_t written = begin.outputSize;
    for (std::size_t place = begin.failures; place < batch.failures.size(); ++place) {
        const RecordBatch::Failure& failure = batch.failures[place];
        output.Write(std::string_view(batch.output).substr(written, failure.outputSize - written));
        written = failure.outputSize;
        const std::size_t number = inputRecords + failure.record - begin.records + 1;
        Report(batch.path + failure.place + ": record " + std::to_string(number) + ": " + failure.message);
        output.WriteError(failure.caret);
        ++failures;
    }
    output.Write(std::string_view(batch.output).substr(written));
}

void RecordRun::BeginInput(const RecordBatch& batch) {
    input = batch.input;
    path = batch.path;
    inputRecords = 0;
    brokenLine = 0;
    replacements = 0;
}

void RecordRun::EndInput() {
    if (replacements != 0) {
        output.WriteError(FormatMessage(
            path +
            ": warning: " + Count(replacements, "piece of malformed UTF-8 was", "pieces of malformed UTF-8 were") +
            " replaced by U+FFFD"));
    }
    replacements = 0;
}

/// A failure, and what it does to the run.
void RecordRun::Report(const std::string& message) {
    output.WriteError(FormatMessage(message));
    hasFailed = true;
    isStopped = options.onError == OnError::Fail;
}

} // namespace OrvUQL::Tool
