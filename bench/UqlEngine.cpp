#include "UqlEngine.h"

#include "HostRecords.h"
#include "Program.h"

#include <stdexcept>

namespace OrvUQL::bench {

namespace {

#if ORVUQL_BENCH_OWN_INVOKE
using MeasuredRecord = InvokeRecord;
#else
using MeasuredRecord = TableRecord;
#endif

} // namespace

std::string UqlEngine::Version() { return ORVUQL_BENCH_VERSION; }

UqlEngine::UqlEngine(const Case& test)
    : text(OrvStringT::FromUtf8(test.query)), reading(Reading::Text), readsRecord(test.ReadsRecord()) {
    IObject* const global = new ObjectGlobal();
    engine.SetGlobal(global);
    global->Release();
    IUnitFactory* const lengths = new LinearDimensionUnits(0);
    engine.AddUnitFactory(lengths);
    lengths->Release();

    query = Parsed();
    for (const Record& record : test.records) {
        records.push_back(new MeasuredRecord(record));
    }
    if (records.size() == 1) {
        records.push_back(new MeasuredRecord(test.records[0]));
    }
    if (std::holds_alternative<bool>(test.answer)) {
        reading = Reading::Truth;
    } else if (std::holds_alternative<double>(test.answer)) {
        reading = Reading::Number;
    }
}

UqlEngine::~UqlEngine() {
    for (IQueryElement* tree : kept) {
        tree->Release();
    }
    query->Release();
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

Answer UqlEngine::GetAnswer(std::size_t record) {
    IError* error = nullptr;
    engine.SetPropertySource(records[record]);
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

void UqlEngine::Throw(IError* error) {
    std::string message = "the query has no value";
    if (error != nullptr) {
        message = error->GetMessageW().ToUtf8();
        error->Release();
    }
    throw std::runtime_error(message);
}

} // namespace OrvUQL::bench

int main(int argc, char** argv) { return OrvUQL::bench::RunProgram<OrvUQL::bench::UqlEngine>(argc, argv); }
