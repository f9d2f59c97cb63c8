#include "QueryRunner.h"

#include "Ref.h"

namespace OrvUQL::Tool {

bool QueryRunner::Evaluate(std::string& out, QueryFailure& failure) {
    Ref<IError> error;
    const Ref<IObject> value(query.GetEngine().Evaluate(query.GetTree(), error.Receive()));
    if (value && printer.Append(out, *value, error.Receive())) {
        return true;
    }
    failure = query.Describe(error.Get());
    return false;
}

bool QueryRunner::Test(bool& verdict, QueryFailure& failure) {
    Ref<IError> error;
    const Ref<IObject> value(query.GetEngine().Evaluate(query.GetTree(), error.Receive()));
    if (!value) {
        failure = query.Describe(error.Get());
        return false;
    }
    // Taking a text or a number for true would hide that the query is no condition.
    if (value->GetType() != IObject::TypeBool || value->IsStaticInstance() || !value->ToBool(verdict, nullptr)) {
        failure.message = "the condition is of type '" + value->GetTypeName().ToUtf8() + "', not 'bool'";
        failure.caret.clear();
        return false;
    }
    return true;
}

} // namespace OrvUQL::Tool
