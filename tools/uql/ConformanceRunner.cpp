#include "ConformanceRunner.h"

#include "ConformanceFile.h"
#include "ErrorReport.h"
#include "Escapes.h"
#include "Ref.h"
#include "TextFile.h"

#include <cmath>
#include <stdexcept>

namespace OrvUQL::Tool {

namespace {

/// What a query gave: a value, or a message, or neither.
struct Outcome {
    Ref<IObject> value;
    Ref<IError> error;
};

/// As a conformance file would write it.
std::string Describe(const Outcome& outcome) {
    std::string text;
    if (outcome.value) {
        text = outcome.value->GetTypeName().ToUtf8();
        OrvStringT valueText;
        if (outcome.value->ToString(valueText, nullptr)) {
            text += ' ';
            text += EncodeEscapes(valueText);
        } else {
            text += ", without a text";
        }
    }
    if (outcome.error) {
        text += text.empty() ? "! " : ", and the message ";
        text += EncodeEscapes(outcome.error->GetMessageW());
    }
    return text.empty() ? "neither a value nor a message" : text;
}

std::string Describe(const Expectation& expectation) {
    switch (expectation.kind) {
    case Expectation::Near:
        return "about " + expectation.written;
    case Expectation::Failure:
        return expectation.written.empty() ? "neither a value nor a message" : "! " + expectation.written;
    default:
        return expectation.written;
    }
}

bool GetNumber(const IObject& value, double& number) {
    if (const IUnit* const unit = value.GetUnitInterface()) {
        number = unit->GetDisplayValue();
        return true;
    }
    return value.ToDouble(number, nullptr);
}

bool Meets(const Outcome& outcome, const Expectation& expectation) {
    if (expectation.kind == Expectation::Failure) {
        const OrvStringT message = outcome.error ? outcome.error->GetMessageW() : OrvStringT();
        return !outcome.value && static_cast<bool>(outcome.error) != expectation.text.IsEmpty() &&
               message == expectation.text;
    }
    if (!outcome.value || outcome.error || outcome.value->GetTypeName() != expectation.typeName) {
        return false;
    }
    if (expectation.kind == Expectation::Near) {
        double number = 0;
        return GetNumber(*outcome.value, number) &&
               std::abs(number - expectation.number) <= expectation.tolerance * std::abs(expectation.number);
    }
    OrvStringT text;
    return outcome.value->ToString(text, nullptr) && text == expectation.text;
}

/// Evaluates a case's query `times` times on an engine of its own. Empty if each time gave what is expected, else what
/// was given instead.
std::string RunOnFreshEngine(const ConformanceCase& test, int times) {
    ComApartment apartment; // not entered: no setting of these files asks for an automation object
    QueryEngine engine;
    std::string reason;
    if (!PrepareEngine(engine, *test.settings, apartment, reason)) {
        throw std::logic_error(reason); // the reader has tried the JSON texts
    }
    Outcome outcome;
    const Ref<IQueryElement> query(engine.ParseQuery(test.query.GetString(), outcome.error.Receive()));
    if (!query) {
        return Meets(outcome, test.expectation) ? std::string() : Describe(outcome);
    }
    if (outcome.error) {
        return "a parsed query together with the message " + EncodeEscapes(outcome.error->GetMessageW());
    }
    for (int time = 1; time <= times; ++time) {
        outcome.value = Ref<IObject>(engine.Evaluate(query.Get(), outcome.error.Receive()));
        if (!Meets(outcome, test.expectation)) {
            return Describe(outcome) + (time == 1 ? "" : ", when evaluated again");
        }
    }
    return std::string();
}

/// Once alone, and once more with the tree evaluated twice: nothing may be left behind in an engine or in a tree.
std::string Run(const ConformanceCase& test) {
    std::string got = RunOnFreshEngine(test, 1);
    return got.empty() ? RunOnFreshEngine(test, 2) : got;
}

} // namespace

int RunConformanceFiles(const std::vector<std::string>& paths, Output& output) {
    std::size_t passed = 0;
    std::size_t failed = 0;
    bool allRead = true;
    for (const std::string& path : paths) {
        std::string text;
        std::string reason;
        if (!ReadTextFile(path, text, reason)) {
            output.WriteError(FormatMessage(path + ": " + reason));
            allRead = false;
            continue;
        }
        std::vector<ConformanceCase> cases;
        ConformanceError error;
        if (!ReadConformanceFile(text, cases, error)) {
            output.WriteError(FormatMessage(path + ":" + std::to_string(error.line) + ": " + error.message));
            allRead = false;
            continue;
        }
        for (const ConformanceCase& test : cases) {
            const std::string got = Run(test);
            if (got.empty()) {
                ++passed;
                continue;
            }
            ++failed;
            output.Write(path + ":" + std::to_string(test.line) + ": " + test.written +
                         "\n  expected: " + Describe(test.expectation) + "\n  got:      " + got + "\n");
        }
    }
    output.Write(std::to_string(passed) + " passed, " + std::to_string(failed) + " failed\n");
    output.Flush();
    return allRead && failed == 0 && passed != 0 ? 0 : 1;
}

} // namespace OrvUQL::Tool
