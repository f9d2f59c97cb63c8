#include "ParsedQuery.h"

#include "ErrorReport.h"
#include "Suggestion.h"

namespace OrvUQL::Tool {

QueryFailure DescribeFailure(QueryEngine& engine, const OrvStringT& text, const IQueryElement* tree, IError* error) {
    const int position = engine.GetErrorPosition();
    QueryFailure failure{GetFailureMessage(error), FormatCaret(text, position)};
    if (error != nullptr && position >= 0) {
        const FailedQuery failed{engine, text, tree, error->GetMessageW(), position};
        failure.caret += FormatSuggestion(SuggestName(failed));
    }
    return failure;
}

bool ParsedQuery::Prepare(std::string_view query, const EngineSettings& settings, QueryFailure& failure) {
    if (!PrepareEngine(engine, settings, apartment, failure.message)) {
        return false;
    }
    text = OrvStringT::FromUtf8(query);
    if (text.View().find(L'\0') != std::wstring_view::npos) {
        failure.message = "the query holds a NUL character";
        return false;
    }
    Ref<IError> error;
    tree = Ref<IQueryElement>(engine.ParseQuery(text.GetString(), error.Receive()));
    if (!tree) {
        failure = Describe(error.Get());
        return false;
    }
    return true;
}

} // namespace OrvUQL::Tool
