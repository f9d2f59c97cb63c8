// Operations of which one side is a unit.
#pragma once

#include "OrvUQL/Unit.h"

#include "core/Failure.h"
#include "core/Value.h"

namespace OrvUQL::detail {

/// Two operands as units of one category, held until the end of the scope.
class UnitOperands {
public:
    UnitOperands() noexcept = default;
    UnitOperands(const UnitOperands&) = delete;
    UnitOperands& operator=(const UnitOperands&) = delete;
    ~UnitOperands();

    /// Brings both to units of the definition of the one that is a unit (the left if both are). False on failure.
    bool Get(IObject* leftObject, IObject* rightObject, IError** err);
    /// The same for values.
    bool Get(const Value& leftValue, const Value& rightValue, IError** err);

    IUnit* Left() const noexcept { return left; }
    IUnit* Right() const noexcept { return right; }
    IUnit* DetachLeft() noexcept { return std::exchange(left, nullptr); }
    IUnit* DetachRight() noexcept { return std::exchange(right, nullptr); }

    /// The operand with the larger factor, in whose unit a result is expressed; on equal factors the left.
    const IUnit* Coarser() const { return right->GetFactor() > left->GetFactor() ? right : left; }
    /// The operand with the smaller factor, in whose unit two values are compared; on equal factors the left.
    const IUnit* Finer() const { return right->GetFactor() < left->GetFactor() ? right : left; }

    /// False with "Incompatible unit powers of the operands: '%1' and '%2'" if they differ.
    bool CheckPowers(IError** err) const;

private:
    IUnit* left = nullptr;
    IUnit* right = nullptr;
};

/// A new unit value in base units, with `like`'s definition.
Value MakeUnit(const IUnit* like, double value, int power);

// Powers wrap in 32 bits.
inline int WrapAdd(int a, int b) noexcept {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}
inline int WrapSubtract(int a, int b) noexcept {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}
inline int WrapMultiply(int a, int b) noexcept {
    return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}

} // namespace OrvUQL::detail
