#include "eval/Comparison.h"

#include "eval/Arithmetic.h"
#include "eval/UnitOperands.h"
#include "platform/CaseMap.h"
#include "platform/Meter.h"
#include "platform/Power.h"

#include <algorithm>

namespace OrvUQL::detail {

namespace {

bool IsNullValue(const Value& value) {
    return value.kind == ValueKind::Null || (value.kind == ValueKind::Object && value.object->IsNull());
}

/// Null is neither greater nor less than anything, null included, and that is no error.
bool CompareNulls(EOperType op, const Value& left, const Value& right, bool& result) {
    switch (op) {
    case OperGreater:
    case OperGreaterEqual:
    case OperLess:
    case OperLessEqual:
        return true;
    case OperEqual:
    case OperStrictEqual:
        result = IsNullValue(left) && IsNullValue(right);
        return true;
    case OperNotEqual:
        result = !(IsNullValue(left) && IsNullValue(right));
        return true;
    default:
        return false;
    }
}

bool GetText(const Value& value, OrvStringT& text, IError** err) {
    if (value.kind == ValueKind::Text) {
        text = value.SharedText();
        return true;
    }
    return value.kind == ValueKind::Object ? value.object->ToString(text, err) : AppendText(text, value, err);
}

bool CompareUnits(EOperType op, const Value& left, const Value& right, int unitPrecision, bool& result, IError** err) {
    UnitOperands units;
    if (!units.Get(left, right, err) || !units.CheckPowers(err)) {
        return false;
    }
    const double scale = units.Finer()->GetFactorValue();
    result = CompareDoubles(op, units.Left()->GetValue() / scale, units.Right()->GetValue() / scale,
                            platform::PowerOfTen(-unitPrecision));
    return true;
}

/// The object among the two decides: the left one if it is a host's or the global object, else the right one, which
/// is told that it stands on the right.
bool CompareOthers(EOperType op, const Value& left, const Value& right, bool& result, IError** err) {
    const Reference<IObject> leftObject(Box(Share(left)));
    const Reference<IObject> rightObject(Box(Share(right)));
    if (leftObject->GetType() == IObject::TypeGlobal) {
        return leftObject->CompareTo(op, rightObject.Get(), false, result, err);
    }
    return rightObject->CompareTo(op, leftObject.Get(), true, result, err);
}

} // namespace

bool CompareStrings(EOperType op, const OrvStringT& a, const OrvStringT& b) noexcept {
    switch (op) {
    case OperGreater:
        return a.Compare(b) > 0;
    case OperGreaterEqual:
        return a.Compare(b) >= 0;
    case OperLess:
        return a.Compare(b) < 0;
    case OperLessEqual:
        return a.Compare(b) <= 0;
    case OperEqual:
        return platform::EqualsIgnoreCase(a.View(), b.View());
    case OperStrictEqual:
        return a == b;
    case OperNotEqual:
        return !platform::EqualsIgnoreCase(a.View(), b.View());
    default:
        return false;
    }
}

bool CompareValues(EOperType op, const Value& left, const Value& right, int unitPrecision, bool& result, IError** err) {
    result = false;
    switch (ReduceTypes(TypeOf(left), TypeOf(right))) {
    case IObject::TypeNull:
        return CompareNulls(op, left, right, result);
    case IObject::TypeDouble: {
        double a = 0;
        double b = 0;
        if (!ToDouble(left, a, err) || !ToDouble(right, b, err)) {
            return false;
        }
        result = CompareDoubles(op, a, b, 0.0);
        return true;
    }
    case IObject::TypeString: {
        OrvStringT a;
        OrvStringT b;
        if (!GetText(left, a, err) || !GetText(right, b, err)) {
            return false;
        }
        platform::ChargeUnits(std::min(a.GetLength(), b.GetLength()));
        result = CompareStrings(op, a, b);
        return true;
    }
    case IObject::TypeUnit:
        return CompareUnits(op, left, right, unitPrecision, result, err);
    case IObject::TypeInt:
    case IObject::TypeBool: {
        int a = 0;
        int b = 0;
        if (!ToInt(left, a, err) || !ToInt(right, b, err)) {
            return false;
        }
        result = CompareInts(op, a, b);
        return true;
    }
    default:
        return CompareOthers(op, left, right, result, err);
    }
}

} // namespace OrvUQL::detail
