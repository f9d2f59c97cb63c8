// uql: evaluates queries from the command line.

#include "ConformanceRunner.h"
#include "ErrorReport.h"
#include "File.h"
#include "Options.h"
#include "Output.h"
#include "QueryCommand.h"

#include <new>
#include <stdexcept>

int main(int argc, char** argv) {
    using namespace OrvUQL::Tool;
    try {
        const Options options = ParseOptions(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
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
