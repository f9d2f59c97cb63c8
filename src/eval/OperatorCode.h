// The operators, decoded from their texts once.
#pragma once

#include "OrvUQL/Object.h"
#include "OrvUQL/QueryElement.h"

#include <string_view>

namespace OrvUQL::detail {

enum class OperatorCode : std::uint8_t {
    // Comparisons have the numbers of EOperType; Compare itself is a text like ">>" that looks like one and means none.
    Compare = OperNone,
    Greater = OperGreater,
    GreaterEqual = OperGreaterEqual,
    Less = OperLess,
    LessEqual = OperLessEqual,
    Equal = OperEqual,
    StrictEqual = OperStrictEqual,
    NotEqual = OperNotEqual,
    And,
    Or,
    Plus,
    Minus,
    Multiply,
    Divide,
    IntDivide,
    Power,
    Not,
    Conditional,
    Unknown, ///< evaluates to nothing, without an error
};

OperatorCode DecodeUnary(std::wstring_view text) noexcept;
OperatorCode DecodeBinary(std::wstring_view text) noexcept;
OperatorCode DecodeTernary(std::wstring_view text) noexcept;

/// The comparison that an operator's text stands for, by the text alone.
EOperType DecodeComparison(std::wstring_view text) noexcept;

} // namespace OrvUQL::detail
