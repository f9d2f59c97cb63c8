// What the operators compute, on values.
#pragma once

#include "core/Failure.h"
#include "core/Value.h"

#include <cstdint>
#include <limits>

namespace OrvUQL::detail {

/// The type by which an operator treats a pair: see QueryEngine::GetOperandType().
IObject::EType ReduceTypes(IObject::EType left, IObject::EType right) noexcept;

inline bool FitsInt(std::int64_t number) noexcept {
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}

inline Value FailValue(IError** err, const wchar_t* message) noexcept {
    Fail(err, message);
    return Value::None();
}

// Two ints. Addition and subtraction fail beyond 32 bits, each with its own text for both directions; multiplication
// goes on as a double instead. Deliberately different, and kept.

inline Value AddInts(int left, int right, IError** err) noexcept {
    const std::int64_t sum = static_cast<std::int64_t>(left) + right;
    return FitsInt(sum) ? Value::Int(static_cast<int>(sum)) : FailValue(err, message::integerOverflow);
}

inline Value SubtractInts(int left, int right, IError** err) noexcept {
    const std::int64_t difference = static_cast<std::int64_t>(left) - right;
    return FitsInt(difference) ? Value::Int(static_cast<int>(difference)) : FailValue(err, message::integerUnderflow);
}

inline Value MultiplyInts(int left, int right) noexcept {
    const std::int64_t product = static_cast<std::int64_t>(left) * right;
    return FitsInt(product) ? Value::Int(static_cast<int>(product))
                            : Value::Double(static_cast<double>(left) * static_cast<double>(right));
}

inline Value DivideDoubles(double left, double right, IError** err) noexcept {
    return right == 0.0 ? FailValue(err, message::divisionByZero) : Value::Double(left / right);
}

// The rules for any two operands. They may change the operands, which stay the caller's. Value::None() on failure.
// May throw std::bad_alloc.

Value EvaluatePlus(ValueHolder& left, ValueHolder& right, IError** err);
Value EvaluateMinus(ValueHolder& left, ValueHolder& right, IError** err);
Value EvaluateMultiply(ValueHolder& left, ValueHolder& right, IError** err);
Value EvaluateDivide(ValueHolder& left, ValueHolder& right, IError** err);
Value EvaluateIntDivide(ValueHolder& left, ValueHolder& right, IError** err);
Value EvaluatePower(ValueHolder& left, ValueHolder& right, IError** err);

/// "+" or "-" in front of a value.
Value EvaluateSign(bool negate, ValueHolder& operand, IError** err);

} // namespace OrvUQL::detail
