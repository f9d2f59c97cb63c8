#include "QueryCommand.h"

#include "ErrorReport.h"
#include "File.h"
#include "QueryArguments.h"
#include "QueryRunner.h"
#include "RecordRun.h"

namespace OrvUQL::Tool {

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
