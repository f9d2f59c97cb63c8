#include "eval/Arithmetic.h"

#include "eval/UnitOperands.h"
#include "platform/Meter.h"
#include "platform/Power.h"

namespace OrvUQL::detail {

namespace {

IObject::EType OperandType(const ValueHolder& left, const ValueHolder& right) {
    return ReduceTypes(TypeOf(left.Get()), TypeOf(right.Get()));
}

bool ToInts(const ValueHolder& left, const ValueHolder& right, int& a, int& b, IError** err) {
    return ToInt(left.Get(), a, err) && ToInt(right.Get(), b, err);
}

bool ToDoubles(const ValueHolder& left, const ValueHolder& right, double& a, double& b, IError** err) {
    return ToDouble(left.Get(), a, err) && ToDouble(right.Get(), b, err);
}

/// The left text grows in place if nobody else holds it, so that a chain of additions costs what its result is long.
Value Concatenate(ValueHolder& left, ValueHolder& right, IError** err) {
    OrvStringT text;
    if (left->kind == ValueKind::Text) {
        text = left.TakeText();
    } else if (!AppendText(text, left.Get(), err)) {
        return Value::None();
    }
    const int extended = text.IsUnique() ? text.GetLength() : 0;
    if (!AppendText(text, right.Get(), err)) {
        return Value::None();
    }
    platform::ChargeUnits(text.GetLength() - extended);
    return Value::Text(std::move(text));
}

Value AddUnits(const ValueHolder& left, const ValueHolder& right, IError** err) {
    UnitOperands units;
    if (!units.Get(left.Get(), right.Get(), err) || !units.CheckPowers(err)) {
        return Value::None();
    }
    const IUnit* const result = units.Coarser();
    return MakeUnit(result, units.Left()->GetValue() + units.Right()->GetValue(), result->GetPower());
}

Value SubtractUnits(const ValueHolder& left, const ValueHolder& right, IError** err) {
    UnitOperands units;
    if (!units.Get(left.Get(), right.Get(), err) || !units.CheckPowers(err)) {
        return Value::None();
    }
    // Always left minus right, computed from the side of the unit that the result has: of two equal values the
    // difference is then 0 with the sign that hosts have come to see.
    const IUnit* const result = units.Coarser();
    const bool isLeft = result == units.Left();
    const IUnit* const other = isLeft ? units.Right() : units.Left();
    const double difference = (result->GetValue() - other->GetValue()) * (isLeft ? 1.0 : -1.0);
    return MakeUnit(result, difference, result->GetPower());
}

Value MultiplyUnits(const ValueHolder& left, const ValueHolder& right, IError** err) {
    UnitOperands units;
    if (!units.Get(left.Get(), right.Get(), err)) {
        return Value::None();
    }
    return MakeUnit(units.Coarser(), units.Left()->GetValue() * units.Right()->GetValue(),
                    WrapAdd(units.Left()->GetPower(), units.Right()->GetPower()));
}

Value DivideUnits(const ValueHolder& left, const ValueHolder& right, IError** err) {
    UnitOperands units;
    if (!units.Get(left.Get(), right.Get(), err)) {
        return Value::None();
    }
    if (units.Right()->GetValue() == 0.0) {
        return FailValue(err, message::divisionByZero);
    }
    return MakeUnit(units.Coarser(), units.Left()->GetValue() / units.Right()->GetValue(),
                    WrapSubtract(units.Left()->GetPower(), units.Right()->GetPower()));
}

} // namespace

namespace {

/// The lower one of a pair decides.
constexpr int RankOf(IObject::EType type) noexcept {
    switch (type) {
    case IObject::TypeNull:
        return 0;
    case IObject::TypeGlobal:
        return 1;
    case IObject::TypeUnit:
        return 2;
    case IObject::TypeString:
        return 3;
    case IObject::TypeDouble:
        return 4;
    case IObject::TypeInt:
        return 5;
    case IObject::TypeBool:
        return 6;
    default: // all others stand for a global object where there is nothing else
        return 7;
    }
}

} // namespace

IObject::EType ReduceTypes(IObject::EType left, IObject::EType right) noexcept {
    const IObject::EType lower = RankOf(left) <= RankOf(right) ? left : right;
    return RankOf(lower) < 7 ? lower : IObject::TypeGlobal;
}

Value EvaluatePlus(ValueHolder& left, ValueHolder& right, IError** err) {
    switch (OperandType(left, right)) {
    case IObject::TypeDouble: {
        double a = 0;
        double b = 0;
        return ToDoubles(left, right, a, b, err) ? Value::Double(a + b) : Value::None();
    }
    case IObject::TypeUnit:
        return AddUnits(left, right, err);
    case IObject::TypeNull:
    case IObject::TypeBool:
    case IObject::TypeInt: {
        int a = 0;
        int b = 0;
        return ToInts(left, right, a, b, err) ? AddInts(a, b, err) : Value::None();
    }
    default:
        return Concatenate(left, right, err);
    }
}

Value EvaluateMinus(ValueHolder& left, ValueHolder& right, IError** err) {
    if (OperandType(left, right) == IObject::TypeUnit) {
        return SubtractUnits(left, right, err);
    }
    if (!ToNumeric(left, err) || !ToNumeric(right, err)) {
        return Value::None();
    }
    if (OperandType(left, right) == IObject::TypeDouble) {
        double a = 0;
        double b = 0;
        return ToDoubles(left, right, a, b, err) ? Value::Double(a - b) : Value::None();
    }
    int a = 0;
    int b = 0;
    return ToInts(left, right, a, b, err) ? SubtractInts(a, b, err) : Value::None();
}

Value EvaluateMultiply(ValueHolder& left, ValueHolder& right, IError** err) {
    if (OperandType(left, right) == IObject::TypeUnit) {
        return MultiplyUnits(left, right, err);
    }
    if (!ToNumeric(left, err) || !ToNumeric(right, err)) {
        return Value::None();
    }
    if (OperandType(left, right) != IObject::TypeDouble) {
        int a = 0;
        int b = 0;
        // A failure here is none: the doubles below decide.
        if (ToInts(left, right, a, b, nullptr)) {
            return MultiplyInts(a, b);
        }
    }
    double a = 0;
    double b = 0;
    return ToDoubles(left, right, a, b, err) ? Value::Double(a * b) : Value::None();
}

Value EvaluateDivide(ValueHolder& left, ValueHolder& right, IError** err) {
    if (OperandType(left, right) == IObject::TypeUnit) {
        return DivideUnits(left, right, err);
    }
    double a = 0;
    double b = 0;
    return ToDoubles(left, right, a, b, err) ? DivideDoubles(a, b, err) : Value::None();
}

Value EvaluateIntDivide(ValueHolder& left, ValueHolder& right, IError** err) {
    int a = 0;
    int b = 0;
    if (!ToInts(left, right, a, b, err)) {
        return Value::None();
    }
    if (b == 0) {
        return FailValue(err, message::divisionByZero);
    }
    // In 64 bits, where -2147483648 / -1 is no trap; it wraps to -2147483648.
    return Value::Int(static_cast<int>(static_cast<std::int64_t>(a) / b));
}

Value EvaluatePower(ValueHolder& left, ValueHolder& right, IError** err) {
    if (left->kind == ValueKind::Object && left->object->IsUnit()) {
        const IUnit* const unit = left->object->GetUnitInterface();
        int exponent = 0;
        if (unit == nullptr) {
            return FailValue(err, message::internalError);
        }
        if (!ToInt(right.Get(), exponent, err)) {
            return Value::None();
        }
        return MakeUnit(unit, platform::Power(unit->GetValue(), exponent), WrapMultiply(unit->GetPower(), exponent));
    }
    double a = 0;
    double b = 0;
    return ToDoubles(left, right, a, b, err) ? Value::Double(platform::Power(a, b)) : Value::None();
}

Value EvaluateSign(bool negate, ValueHolder& operand, IError** err) {
    if (TypeOf(operand.Get()) == IObject::TypeString && !ToNumeric(operand, err)) {
        return Value::None();
    }
    switch (TypeOf(operand.Get())) {
    case IObject::TypeDouble: {
        double number = 0;
        return ToDouble(operand.Get(), number, err) ? Value::Double(negate ? -number : number) : Value::None();
    }
    case IObject::TypeUnit: {
        const IUnit* const unit = operand->kind == ValueKind::Object ? operand->object->GetUnitInterface() : nullptr;
        if (unit == nullptr) {
            return FailValue(err, message::internalError);
        }
        return MakeUnit(unit, negate ? -unit->GetValue() : unit->GetValue(), unit->GetPower());
    }
    default: {
        int number = 0;
        if (!ToInt(operand.Get(), number, err)) {
            return Value::None();
        }
        // Deliberately unchecked, unlike the binary operators: -(-2147483648) is -2147483648.
        return Value::Int(negate ? WrapSubtract(0, number) : number);
    }
    }
}

} // namespace OrvUQL::detail
