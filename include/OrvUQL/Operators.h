// The operator nodes of a parsed query. An operator's text is kept as written and decoded once, when the node is
// made; a text that the node does not know makes its evaluation end in null without an error.
#pragma once

#include "OrvUQL/Object.h"
#include "OrvUQL/QueryElement.h"

namespace OrvUQL {

namespace detail {
class Program;
}

/// Sign ("+", "-") and negation ("!", "not").
class ORVUQL_API OperatorUnary : public QueryElementBase {
public:
    /// Takes over the operand's reference; it must not be null.
    OperatorUnary(const OrvStringT& op, IQueryElement* operand, int position);
    ~OperatorUnary() override;

    EType GetType() const override { return Operator; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// Borrowed.
    IQueryElement* GetOperand() const noexcept { return operand; }
    /// The operator as written.
    const OrvStringT& GetOperator() const noexcept { return op; }

private:
    friend struct detail::ElementAccess;

    IQueryElement* operand;
    OrvStringT op;
    int position;
    mutable const detail::Program* program = nullptr;
};

/// Arithmetic ("+", "-", "*", "/", "\", "^"), comparison ("=", "==", "<>", "><", "!=", "<", ">", "<=", "=<", ">=",
/// "=>") and logic ("and", "&", "or", "|", in any case; the right operand is evaluated only when it decides).
class ORVUQL_API OperatorBinary : public QueryElementBase {
public:
    /// Takes over the operands' references; they must not be null.
    OperatorBinary(const OrvStringT& op, IQueryElement* left, IQueryElement* right, int position);
    ~OperatorBinary() override;

    EType GetType() const override { return Operator; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// The comparison that the operator's text asks for; OperNone for any other text.
    EOperType GetCompareType() const;

    /// Borrowed.
    IQueryElement* GetLeft() const noexcept { return left; }
    /// Borrowed.
    IQueryElement* GetRight() const noexcept { return right; }
    /// The operator as written.
    const OrvStringT& GetOperator() const noexcept { return op; }

private:
    friend struct detail::ElementAccess;

    IQueryElement* left;
    IQueryElement* right;
    OrvStringT op;
    int position;
    mutable const detail::Program* program = nullptr;
};

/// The conditional "?": evaluates the first or the second branch by the condition, never both.
class ORVUQL_API OperatorTernary : public QueryElementBase {
public:
    /// Takes over the three references; they must not be null.
    OperatorTernary(const OrvStringT& op, IQueryElement* condition, IQueryElement* first, IQueryElement* second,
                    int position);
    ~OperatorTernary() override;

    EType GetType() const override { return Operator; }
    int GetStringPosition() const override { return position; }
    IObject* Evaluate(QueryEngine* engine, IError** err) const override;

    /// Borrowed.
    IQueryElement* GetCondition() const noexcept { return condition; }
    /// The branch for a true condition, borrowed.
    IQueryElement* GetFirst() const noexcept { return first; }
    /// The branch for a false condition, borrowed.
    IQueryElement* GetSecond() const noexcept { return second; }
    /// The operator as written.
    const OrvStringT& GetOperator() const noexcept { return op; }

private:
    friend struct detail::ElementAccess;

    IQueryElement* condition;
    IQueryElement* first;
    IQueryElement* second;
    OrvStringT op;
    int position;
    mutable const detail::Program* program = nullptr;
};

} // namespace OrvUQL
