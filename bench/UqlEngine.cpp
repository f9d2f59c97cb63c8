#include "UqlEngine.h"

#include "HostRecords.h"

#include <stdexcept>

namespace OrvUQL::bench {

UqlEngine::UqlEngine(const Case& test, Source source) : text(OrvStringT::FromUtf8(test.query)), reading(Reading::Text) {
    IObject* const global = new ObjectGlobal();
    engine.SetGlobal(global);
    global->Release();
    IUnitFactory* const lengths = new LinearDimensionUnits(0);
    engine.AddUnitFactory(lengths);
    lengths->Release();

    query = Parsed();
    for (const Record& record : Records()) {
        records.push_back(source == Source::Table ? static_cast<IObject*>(new TableRecord(record))
                                                  : static_cast<IObject*>(new InvokeRecord(record)));
    }
    Select(0);

    if (std::holds_alternative<bool>(test.answer)) {
        reading = Reading::Truth;
    } else if (std::holds_alternative<double>(test.answer)) {
        reading = Reading::Number;
    } else if (IObject* const value = engine.Evaluate(query, nullptr)) {
        reading = value->IsUnit() ? Reading::Unit : Reading::Text;
        value->Release();
    }
}

UqlEngine::~UqlEngine() {
    Drop();
    if (query != nullptr) {
        query->Release();
    }
    for (IObject* record : records) {
        record->Release();
    }
}

IQueryElement* UqlEngine::Parsed() {
    IError* error = nullptr;
    IQueryElement* const tree = engine.ParseQuery(text.GetString(), &error);
    if (tree == nullptr) {
        Throw(error);
    }
    return tree;
}

Answer UqlEngine::GetAnswer() {
    IError* error = nullptr;
    IObject* const value = engine.Evaluate(query, &error);
    if (value == nullptr) {
        Throw(error);
    }
    Answer answer;
    bool converted = false;
    if (reading == Reading::Truth) {
        bool truth = false;
        converted = value->GetType() == IObject::TypeBool && value->ToBool(truth, &error);
        answer = truth;
    } else if (reading == Reading::Number) {
        double number = 0;
        converted = value->ToDouble(number, &error);
        answer = number;
    } else {
        OrvStringT shown;
        converted = value->ToString(shown, &error);
        answer = shown.ToUtf8();
    }
    value->Release();
    if (!converted) {
        Throw(error);
    }
    return answer;
}

void UqlEngine::Drop() {
    for (IQueryElement* tree : kept) {
        tree->Release();
    }
    kept.clear();
}

void UqlEngine::Throw(IError* error) {
    std::string message = "the query has no value";
    if (error != nullptr) {
        message = error->GetMessageW().ToUtf8();
        error->Release();
    }
    throw std::runtime_error(message);
}

} // namespace OrvUQL::bench
