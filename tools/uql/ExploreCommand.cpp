#include "ExploreCommand.h"

#include "ErrorReport.h"
#include "Explanation.h"
#include "ParsedQuery.h"
#include "QueryArguments.h"
#include "RecordInput.h"
#include "RecordReader.h"
#include "RecordValues.h"

namespace OrvUQL::Tool {

namespace {

/// Reads the query and parses it. False if that fails, which has then been told.
bool Load(QueryOptions& options, ParsedQuery& query, Output& output) {
    QueryFailure failure;
    if (!LoadArguments(options, failure.message) || !query.Prepare(options.query, options.settings, failure)) {
        output.WriteError(FormatMessage(failure.message) + failure.caret);
        return false;
    }
    return true;
}

/// Explains evaluations of one query, one after the other.
class Explainer {
public:
    /// Everything is borrowed.
    Explainer(ParsedQuery& parsedQuery, const QueryOptions& queryOptions, TreeFormat treeFormat, Output& results)
        : query(parsedQuery),
          options(queryOptions),
          explanation(parsedQuery.GetTree()),
          values(MakeRecordValues(queryOptions)),
          format(treeFormat),
          output(results) {}

    /// `place` tells the record in an error's message. False if the evaluation failed, which has then been told.
    bool Explain(const std::string& place) {
        Ref<IError> error;
        const Ref<IObject> value(explanation.Evaluate(query.GetEngine(), error.Receive()));
        std::string tree;
        AppendTree(tree, *query.GetTree(), format, &explanation);
        output.Write(tree);
        if (!value) {
            const QueryFailure failure = query.Describe(error.Get());
            output.WriteError(FormatMessage(place + failure.message) + failure.caret);
        }
        return static_cast<bool>(value);
    }

    bool ExplainRecords() {
        RecordReader reader(options.inputs, MakeOpener(options.recordFormat), RecordReader::manyRecords);
        std::size_t input = 0;
        std::size_t number = 0;
        for (;;) {
            RecordBatch batch;
            if (reader.Next(batch, true) == RecordReader::End) {
                return true;
            }
            if (batch.input != input) {
                input = batch.input;
                number = 0;
            }
            for (const RecordBatch::Record& record : batch.records) {
                if (!ExplainRecord(batch, record, ++number)) {
                    return false;
                }
            }
            if (!batch.readError.empty()) {
                output.WriteError(FormatMessage(batch.path + ": " + batch.readError));
                return false;
            }
        }
    }

private:
    bool ExplainRecord(RecordBatch& batch, const RecordBatch::Record& record, std::size_t number) {
        RecordBatch::Failure failure;
        const Ref<IObject> value = values->Make(batch, record, failure);
        const std::string place = batch.path + failure.place + ": record " + std::to_string(number);
        if (!value) {
            output.WriteError(FormatMessage(place + ": " + failure.message));
            return false;
        }
        if (options.recordFormat == RecordFormat::Lines) {
            query.GetEngine().SetVariable(value.Get());
        } else {
            query.GetEngine().SetPropertySource(value.Get());
        }
        if (format == TreeFormat::Text) {
            output.Write((isFirst ? "" : "\n") + place + ":\n");
            isFirst = false;
        }
        return Explain(place + ": ");
    }

    ParsedQuery& query;
    const QueryOptions& options;
    Explanation explanation;
    const std::unique_ptr<RecordValues> values;
    TreeFormat format;
    Output& output;
    bool isFirst = true;
};

} // namespace

int RunTree(QueryOptions options, TreeFormat format, Output& output) {
    ParsedQuery query;
    if (!Load(options, query, output)) {
        return 1;
    }
    std::string tree;
    AppendTree(tree, *query.GetTree(), format);
    output.Write(tree);
    output.Flush();
    return 0;
}

int RunExplain(QueryOptions options, TreeFormat format, Output& output) {
    ParsedQuery query;
    if (!Load(options, query, output)) {
        return 1;
    }
    Explainer explainer(query, options, format, output);
    const bool isDone = options.inputs.empty() ? explainer.Explain("") : explainer.ExplainRecords();
    output.Flush();
    return isDone ? 0 : 1;
}

} // namespace OrvUQL::Tool
