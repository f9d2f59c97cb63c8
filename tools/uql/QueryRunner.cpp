#include "QueryRunner.h"

#include "ErrorReport.h"

namespace OrvUQL::Tool {

bool QueryRunner::Prepare(std::string_view text, const EngineSettings& settings, QueryFailure& failure) {
    if (!PrepareEngine(engine, settings, apartment, failure.message)) {
        return false;
    }
    query = OrvStringT::FromUtf8(text);
    if (query.View().find(L'\0') != std::wstring_view::npos) {
        failure.message = "the query holds a NUL character";
        return false;
    }
    Ref<IError> error;
    tree = Ref<IQueryElement>(engine.ParseQuery(query.GetString(), error.Receive()));
    if (!tree) {
        failure = Describe(error.Get());
        return false;
    }
    return true;
}

bool QueryRunner::Evaluate(std::string& out, QueryFailure& failure) {
    Ref<IError> error;
    const Ref<IObject> value(engine.Evaluate(tree.Get(), error.Receive()));
    if (value && printer.Append(out, *value, error.Receive())) {
        return true;
    }
    failure = Describe(error.Get());
    return false;
}

QueryFailure QueryRunner::Describe(IError* error) const {
    return {GetFailureMessage(error), FormatCaret(query, engine.GetErrorPosition())};
}

} // namespace OrvUQL::Tool
