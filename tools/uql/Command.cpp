#include "Command.h"

#include "ConformanceRunner.h"
#include "ErrorReport.h"
#include "ExploreCommand.h"
#include "File.h"
#include "ListCommand.h"
#include "Options.h"
#include "Output.h"
#include "QueryCommand.h"
#include "SessionCommand.h"

#include <new>
#include <stdexcept>

namespace OrvUQL::Tool {

int RunCommand(const std::function<std::vector<std::string>()>& getArguments) {
    try {
        const Options options = ParseOptions(getArguments());
        Output output;
        switch (options.command) {
        case Options::ShowText:
            output.Write(options.text);
            output.Flush();
            return 0;
        case Options::ShowMisuse:
            WriteToStandardError(options.text);
            return 2;
        case Options::Test:
            return RunConformanceFiles(options.testFiles, output);
        case Options::Tree:
            return RunTree(options.query, options.treeFormat, output);
        case Options::Explain:
            return RunExplain(options.query, options.treeFormat, output);
        case Options::List:
            return RunList(options.list, output);
        case Options::Session:
            return RunSession(options.query, output);
        case Options::Query:
            return RunQuery(options.query, output);
        }
    } catch (const OutputFailed& failure) {
        if (!failure.message.empty()) {
            WriteToStandardError(FormatMessage("standard output: " + failure.message));
        }
    } catch (const std::bad_alloc&) {
        WriteToStandardError(FormatMessage("out of memory"));
    } catch (const std::length_error&) {
        WriteToStandardError(FormatMessage("a text or an array is too large"));
    }
    return 1;
}

} // namespace OrvUQL::Tool
