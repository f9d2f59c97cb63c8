#include "QueryCommand.h"

#include "BatchWorkers.h"
#include "ErrorReport.h"
#include "File.h"
#include "QueryRunner.h"
#include "RecordReader.h"
#include "TextFile.h"

#include <limits>

namespace OrvUQL::Tool {

namespace {

/// Replaces "@FILE" by what the file holds.
bool LoadJsonArgument(std::optional<std::string>& argument, std::string& error) {
    if (!argument || argument->empty() || argument->front() != '@') {
        return true;
    }
    const std::string path = argument->substr(1);
    std::string reason;
    if (!ReadTextFile(path, *argument, reason)) {
        error = path + ": " + reason;
        return false;
    }
    return true;
}

/// Reads everything but the inputs that the options name.
bool LoadArguments(QueryOptions& options, std::string& error) {
    if (options.queryFile) {
        std::string reason;
        if (!ReadTextFile(*options.queryFile, options.query, reason)) {
            error = *options.queryFile + ": " + reason;
            return false;
        }
    }
    return LoadJsonArgument(options.settings.propertySource, error) &&
           LoadJsonArgument(options.settings.variable, error);
}

/// Brings the records from the reader over the workers to the output.
class RecordRun {
public:
    RecordRun(const QueryOptions& queryOptions, const Printer& printer, Output& results)
        : options(queryOptions),
          output(results),
          reader(queryOptions.inputs),
          workers(queryOptions.query, queryOptions, printer) {}

    int Run() {
        while (!isStopped) {
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
            if (result == RecordReader::End) {
                break;
            }
            workers.Submit(std::move(batch));
            if (workers.IsFull()) {
                Write(*workers.Take());
            }
        }
        WriteAll();
        output.Flush();
        return hasFailed ? 1 : 0;
    }

private:
    void WriteAll() {
        while (!isStopped && !workers.IsEmpty()) {
            Write(*workers.Take());
        }
    }

    void Write(const RecordBatch& batch) {
        if (batch.input == spoiltInput) {
            return; // read before anybody knew
        }
        std::size_t written = 0;
        for (const RecordBatch::Failure& failure : batch.failures) {
            output.Write(std::string_view(batch.output).substr(written, failure.outputSize - written));
            output.WriteError(failure.report);
            written = failure.outputSize;
        }
        output.Write(std::string_view(batch.output).substr(written));
        if (!batch.failures.empty()) {
            hasFailed = true;
            isStopped = !options.keepGoing;
        }
        if (batch.isInputSpoilt) {
            spoiltInput = batch.input;
            reader.Skip(batch.input);
        }
    }

    const QueryOptions& options;
    Output& output;
    RecordReader reader;
    BatchWorkers workers;
    std::size_t spoiltInput = std::numeric_limits<std::size_t>::max();
    bool hasFailed = false;
    bool isStopped = false;
};

} // namespace

int RunQuery(QueryOptions options, Output& output) {
    std::string error;
    if (!LoadArguments(options, error)) {
        output.WriteError(FormatMessage(error));
        return 1;
    }
    const Printer printer(options.format, IsStandardOutputTerminal());
    std::string result;
    {
        QueryRunner runner(printer);
        QueryFailure failure;
        const bool isParsed = runner.Prepare(options.query, options.settings, failure);
        if (!isParsed || (options.inputs.empty() && !runner.Evaluate(result, failure))) {
            output.WriteError(FormatMessage(failure.message) + failure.caret);
            return 1;
        }
    }
    output.Write(result);
    if (!options.inputs.empty()) {
        try {
            return RecordRun(options, printer, output).Run();
        } catch (const WorkerFailed& failure) {
            output.WriteError(FormatMessage(failure.message));
            return 1;
        }
    }
    output.Flush();
    return 0;
}

} // namespace OrvUQL::Tool
