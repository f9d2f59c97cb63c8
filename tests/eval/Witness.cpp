#include "eval/Witness.h"

#include <algorithm>

namespace OrvUQL::Tests {

namespace {

/// The count is for those who derive; its place in the object is the same for all.
struct CountReader : RefCountImpl<IObject> {
    static int Read(const RefCountImpl<IObject>& object) { return object.*&CountReader::refCount; }
};

std::string Narrow(const wchar_t* text) { return Utf8(OrvStringT(text)); }

} // namespace

int References(const IObject& object) { return CountReader::Read(dynamic_cast<const RefCountImpl<IObject>&>(object)); }

bool Witness::Answer(const std::string& operation, const std::string& logged, IError** err) const {
    log.push_back(plan.label + "." + logged);
    if (plan.before) {
        plan.before(operation);
    }
    if (std::find(plan.failing.begin(), plan.failing.end(), operation) == plan.failing.end()) {
        return true;
    }
    if (err != nullptr) {
        *err = new Error(OrvStringT::FromUtf8(plan.label + ": " + operation).GetString());
    }
    return false;
}

bool Witness::ToBool(bool& out, IError** err) const {
    out = plan.boolean;
    return Answer("ToBool", err);
}

bool Witness::ToInt(int& out, IError** err) const {
    out = plan.integer;
    return Answer("ToInt", err);
}

bool Witness::ToDouble(double& out, IError** err) const {
    out = plan.number;
    return Answer("ToDouble", err);
}

bool Witness::ToString(OrvStringT& out, IError** err) const {
    out = plan.text;
    return Answer("ToString", err);
}

IObject* Witness::ToNumeric(IError** err) {
    return Answer("ToNumeric", err) && plan.numeric ? plan.numeric() : nullptr;
}

IUnit* Witness::ToUnit(IUnitDefinition*, IError** err) {
    return Answer("ToUnit", err) && plan.unit ? plan.unit() : nullptr;
}

bool Witness::CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const {
    const auto* const witness = dynamic_cast<const Witness*>(other);
    const std::string name = witness != nullptr ? witness->plan.label : Describe(other);
    result = plan.verdict;
    return Answer("CompareTo",
                  "CompareTo(" + std::to_string(op) + ", " + name + ", " + (reversed ? "right" : "left") + ")", err);
}

IObject* Witness::Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) {
    const std::string call = Narrow(name) + "/" + std::to_string(args.size());
    if (!Answer("Invoke", "Invoke(" + call + ")", err)) {
        return nullptr;
    }
    if (plan.invoke) {
        return plan.invoke(engine, name, args, err);
    }
    return new ObjectString(OrvStringT::FromUtf8(plan.label + "." + call));
}

WitnessElement::~WitnessElement() { Counted::End({}); }

IObject* WitnessElement::Evaluate(QueryEngine*, IError** err) const {
    Witness::log.push_back(plan->label + ".Evaluate");
    if (plan->before) {
        plan->before("Evaluate");
    }
    if (std::find(plan->failing.begin(), plan->failing.end(), "Evaluate") == plan->failing.end()) {
        return new Witness(*plan);
    }
    if (err != nullptr) {
        *err = new Error(OrvStringT::FromUtf8(plan->label + ": Evaluate").GetString());
    }
    return nullptr;
}

} // namespace OrvUQL::Tests
