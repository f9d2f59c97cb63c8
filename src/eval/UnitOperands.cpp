#include "eval/UnitOperands.h"

#include "OrvUQL/ObjectUnit.h"

#pragma push_macro("GetObject")
#undef GetObject

namespace OrvUQL::detail {

namespace {

void ReleaseUnit(IUnit* unit) noexcept {
    if (unit != nullptr) {
        unit->GetObject()->Release();
    }
}

} // namespace

UnitOperands::~UnitOperands() {
    ReleaseUnit(left);
    ReleaseUnit(right);
}

bool UnitOperands::Get(IObject* leftObject, IObject* rightObject, IError** err) {
    const IUnit* const reference =
        leftObject->IsUnit() ? leftObject->GetUnitInterface() : rightObject->GetUnitInterface();
    if (reference == nullptr) {
        return Fail(err, message::internalError);
    }
    IUnitDefinition* const definition = reference->GetUnitDefinition();
    left = leftObject->ToUnit(definition, err);
    if (left == nullptr) {
        return false;
    }
    right = rightObject->ToUnit(definition, err);
    if (right == nullptr) {
        ReleaseUnit(DetachLeft());
        return false;
    }
    return true;
}

bool UnitOperands::Get(const Value& leftValue, const Value& rightValue, IError** err) {
    if (leftValue.kind == ValueKind::Object && rightValue.kind == ValueKind::Object) {
        return Get(leftValue.object, rightValue.object, err);
    }
    const Reference<IObject> leftObject(Box(Share(leftValue)));
    const Reference<IObject> rightObject(Box(Share(rightValue)));
    return Get(leftObject.Get(), rightObject.Get(), err);
}

bool UnitOperands::CheckPowers(IError** err) const {
    return left->GetPower() == right->GetPower() ||
           Fail(err, message::unitPowers, left->GetDisplayName(), right->GetDisplayName());
}

Value MakeUnit(const IUnit* like, double value, int power) {
    return Value::Object(new ObjectUnit(like->GetUnitDefinition(), value, power, false));
}

} // namespace OrvUQL::detail

#pragma pop_macro("GetObject")
