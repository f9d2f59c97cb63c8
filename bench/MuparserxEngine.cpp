#include "MuparserxEngine.h"

#include "Meters.h"
#include "Program.h"

#include <mpParser.h>
#include <stdexcept>

namespace OrvUQL::bench {

struct MuparserxEngine::State {
    mup::ParserX parser{mup::pckALL_NON_COMPLEX};
    std::vector<std::unique_ptr<mup::Value>> variables;

    /// The variables hold the record's values from here on.
    void Set(const Record& record) {
        for (std::size_t i = 0; i < record.size(); ++i) {
            const Value& value = record[i].value;
            if (const int* const whole = std::get_if<int>(&value)) {
                *variables[i] = static_cast<mup::int_type>(*whole);
            } else if (const double* const real = std::get_if<double>(&value)) {
                *variables[i] = *real;
            } else {
                *variables[i] = std::get<std::string>(value);
            }
        }
    }
};

std::string MuparserxEngine::Version() { return "muParserX " + mup::ParserXBase::GetVersion(); }

MuparserxEngine::MuparserxEngine(const Case& test)
    : state(std::make_unique<State>()), records(test.records), reading(Reading::Text) {
    if (std::holds_alternative<bool>(test.answer)) {
        reading = Reading::Truth;
    } else if (std::holds_alternative<double>(test.answer)) {
        reading = Reading::Number;
    }
    try {
        state->parser.ClearConst(); // one of them is `e`
        for (const Variable& variable : records[0]) {
            state->variables.push_back(std::make_unique<mup::Value>());
            state->parser.DefineVar(variable.name, mup::Variable(state->variables.back().get()));
        }
        state->parser.SetExpr(test.muparserx);
    } catch (const mup::ParserError& error) {
        throw std::runtime_error(error.GetMsg());
    }
}

MuparserxEngine::~MuparserxEngine() = default;

double MuparserxEngine::Evaluate() {
    try {
        state->Set(records[next]);
        if (++next == records.size()) {
            next = 0;
        }
        const mup::IValue& value = state->parser.Eval();
        switch (reading) {
        case Reading::Number:
            return value.GetFloat();
        case Reading::Truth:
            return value.GetBool() ? 1.0 : 0.0;
        case Reading::Text:
            taken = value.GetString();
            return static_cast<double>(taken.size());
        }
    } catch (const mup::ParserError&) {}
    return std::numeric_limits<double>::quiet_NaN();
}

Answer MuparserxEngine::GetAnswer(std::size_t record) {
    try {
        state->Set(records[record]);
        const mup::IValue& value = state->parser.Eval();
        switch (reading) {
        case Reading::Number:
            return static_cast<double>(value.GetFloat());
        case Reading::Truth:
            return value.GetBool();
        case Reading::Text:
            return value.GetString();
        }
    } catch (const mup::ParserError& error) {
        throw std::runtime_error(error.GetMsg());
    }
    return {};
}

void MuparserxEngine::Parse() { throw std::runtime_error("parses when it is first evaluated"); }

std::optional<std::size_t> MuparserxEngine::Allocations() { return CallsOfNew(); }

} // namespace OrvUQL::bench

int main(int argc, char** argv) { return OrvUQL::bench::RunProgram<OrvUQL::bench::MuparserxEngine>(argc, argv); }
