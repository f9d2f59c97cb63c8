#include "RecordOptions.h"

#include "Tables.h"

#include <map>

namespace OrvUQL::Tool {

namespace {

const std::map<std::string, OnError> errorChoices = {
    {"fail", OnError::Fail}, {"skip", OnError::Skip}, {"null", OnError::Null}};

const std::map<std::string, JsonLibrary> libraries = {{"nlohmann", JsonLibrary::Nlohmann},
                                                      {"simdjson", JsonLibrary::Simdjson}};

} // namespace

FormatOptions::FormatOptions(CLI::App& app, QueryOptions& queryOptions) : options(queryOptions) {
    app.add_flag("--csv", isCsv,
                 "INPUT is a table: a header line, then rows, the fields separated by\n"
                 "commas. @name is the row's field, a string, in the column of that name.");
    app.add_flag("--tsv", isTsv, "The same with tabs.");
    app.add_flag("--raw-input", isLines, "INPUT is text. $this is a line of it, a string.");
}

std::string FormatOptions::Finish() {
    if (isCsv + isTsv + isLines > 1) {
        return "--csv, --tsv and --raw-input exclude each other";
    }
    if ((isCsv || isTsv) && !ReadsTables()) {
        return "--csv and --tsv are not supported by this build";
    }
    if (isLines && (options.settings.variable || options.settings.variableClass)) {
        return "--raw-input excludes --var and --com-var";
    }
    if (isLines && !options.settings.arguments.empty()) {
        return "--raw-input excludes --arg and --argjson";
    }
    options.recordFormat = isCsv     ? RecordFormat::Csv
                           : isTsv   ? RecordFormat::Tsv
                           : isLines ? RecordFormat::Lines
                                     : RecordFormat::Json;
    if (options.recordFormat != RecordFormat::Json && options.inputs.empty()) {
        return std::string(isCsv ? "--csv" : isTsv ? "--tsv" : "--raw-input") + " needs INPUT";
    }
    return std::string();
}

RecordOptions::RecordOptions(CLI::App& parser, QueryOptions& queryOptions)
    : app(parser), options(queryOptions), format(parser, queryOptions) {
    app.add_option("-j", options.jobs, "Evaluate on N threads. Results stay in order. The default is 1.")
        ->type_name("N")
        ->option_text("N")
        ->check(CLI::Range(1, 1024));
    app.add_flag("--filter", options.isFilter,
                 "Print the records for which the query is true, as they stand, instead\nof results.");
    app.add_option("--on-error", onError,
                   "When a record fails: fail (end, the default), skip (go on with the\n"
                   "next one) or null (go on, and print null for it). With skip and null\n"
                   "the next INPUT follows one that cannot be read to its end, and the\n"
                   "last line on standard error is the number of records that failed.")
        ->type_name("WHAT")
        ->option_text("WHAT")
        ->check(CLI::IsMember({"fail", "skip", "null"}));
    app.add_flag("--keep-going", keepsGoing, "The same as --on-error skip.");
    app.add_flag("--unbuffered", options.isUnbuffered, "Write each result at once, not many in one piece.");
    app.add_option("--json-reader", jsonReader,
                   "Read JSON with that library: nlohmann or, where it is built in,\n"
                   "simdjson (then the default). Results are the same.")
        ->type_name("NAME")
        ->option_text("NAME")
        ->check(CLI::IsMember({"nlohmann", "simdjson"}));
}

std::string RecordOptions::Finish() {
    if (const std::string mistake = format.Finish(); !mistake.empty()) {
        return mistake;
    }
    if (keepsGoing && app.count("--on-error") != 0) {
        return "--keep-going and --on-error exclude each other";
    }
    options.onError = keepsGoing ? OnError::Skip : errorChoices.at(onError);
    if (options.isFilter && options.onError == OnError::Null) {
        return "--filter and --on-error null exclude each other";
    }
    if (options.isFilter && app.count("-o") != 0) {
        return "--filter and -o exclude each other";
    }
    if (options.isFilter && options.inputs.empty()) {
        return "--filter needs INPUT";
    }
    if (!jsonReader.empty()) {
        options.jsonLibrary = libraries.at(jsonReader);
        if (options.jsonLibrary == JsonLibrary::Simdjson && GetFastestJsonLibrary() != JsonLibrary::Simdjson) {
            return "this build has no simdjson";
        }
    }
    return std::string();
}

} // namespace OrvUQL::Tool
