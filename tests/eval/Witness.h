// A host's value that tells what was asked of it, in order, and answers, fails or throws as planned.
#pragma once

#include "support/Counted.h"
#include "support/Print.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OrvUQL::Tests {

/// How many references any value holds.
int References(const IObject& object);

/// What a witness is and does. Operations are called by their names in IObject.
struct Plan {
    std::string label;
    IObject::EType type = IObject::TypeGlobal;
    bool isNull = false;
    bool isUnit = false;

    bool boolean = true;
    int integer = 6;
    double number = 2.5;
    OrvStringT text = OrvStringT(L"text");
    /// The results of ToNumeric and ToUnit, with a reference. Without them the operation fails.
    std::function<IObject*()> numeric;
    std::function<IUnit*()> unit;
    /// What GetUnitInterface() lends.
    IUnit* face = nullptr;
    bool verdict = true;
    /// What Invoke() does; without it the result is a string.
    std::function<IObject*(QueryEngine*, const wchar_t*, const QueryElementList&, IError**)> invoke;

    /// Operations that fail, with the error "LABEL: OPERATION".
    std::vector<std::string> failing;
    /// Runs first in every logged operation; may throw.
    std::function<void(const std::string& operation)> before;
};

class Witness : public ObjectBase {
public:
    /// What was asked of all witnesses, as "LABEL.OPERATION", in order.
    static inline std::vector<std::string> log;

    explicit Witness(Plan witnessPlan) : plan(std::move(witnessPlan)) { Counted::Begin(); }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness() override { Counted::End({}); }

    const Plan& GetPlan() const noexcept { return plan; }

    // Of these nothing is logged: they may be asked as often as one likes.
    EType GetType() const override { return plan.type; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"witness"); }
    bool IsNull() const override { return plan.isNull; }
    bool IsUnit() const override { return plan.isUnit; }
    ORV_OVERLOADS2(
        IUnit* GetUnitInterface() override { return plan.face; },
        const IUnit* GetUnitInterface() const override { return plan.face; })

    using ObjectBase::ToString;
    OrvStringT ToString() const override { return plan.text; }
    bool ToBool(bool& out, IError** err) const override;
    bool ToInt(int& out, IError** err) const override;
    bool ToDouble(double& out, IError** err) const override;
    bool ToString(OrvStringT& out, IError** err) const override;
    IObject* ToNumeric(IError** err) override;
    IUnit* ToUnit(IUnitDefinition* definition, IError** err) override;
    /// Logged as "L.CompareTo(CODE, OTHER, left)", OTHER described as "type text", the last word telling the
    /// witness's side.
    bool CompareTo(EOperType op, IObject* other, bool reversed, bool& result, IError** err) const override;
    /// Logged as "L.Invoke(NAME/COUNT)".
    IObject* Invoke(QueryEngine* engine, const wchar_t* name, const QueryElementList& args, IError** err) override;

private:
    bool Answer(const std::string& operation, const std::string& logged, IError** err) const;
    bool Answer(const std::string& operation, IError** err) const { return Answer(operation, operation, err); }

    Plan plan;
};

/// A host's element that evaluates to a new witness each time. Logged as "LABEL.Evaluate".
class WitnessElement : public RefCountImpl<IQueryElement> {
public:
    explicit WitnessElement(Plan witnessPlan, int textPosition = 0)
        : plan(std::make_shared<Plan>(std::move(witnessPlan))), position(textPosition) {
        Counted::Begin();
    }
    WitnessElement(const WitnessElement&) = delete;
    WitnessElement& operator=(const WitnessElement&) = delete;
    ~WitnessElement() override; // not inline: see CountedElement

    EType GetType() const override { return Object; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

private:
    std::shared_ptr<const Plan> plan;
    int position;
};

/// Base of tests with witnesses: an empty log, and nothing left over.
class WitnessTest : public CountedTest {
protected:
    void SetUp() override {
        CountedTest::SetUp();
        Witness::log.clear();
    }

    using Log = std::vector<std::string>;

    /// The log so far, which is then empty.
    static Log TakeLog() { return std::exchange(Witness::log, {}); }
};

} // namespace OrvUQL::Tests
