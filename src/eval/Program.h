// The operators of a tree as a list of instructions.
//
// What a tree of operators computes is computed here, whatever its depth, without recursion: an operator that is asked
// for its value writes the instructions for itself and for all operators below it down, once, and runs them.
//
// There is one accumulator. The program of `(@a + 1) * @b - @c / 2`:
//
//     LoadCall      @a
//     CombineInt    + 1
//     CombineCall   * @b
//     Push
//     LoadCall      @c
//     CombineInt    / 2
//     CombinePushed -
//     End
#pragma once

#include "OrvUQL/QueryElement.h"

#include "core/Value.h"
#include "eval/OperatorCode.h"

#include <cstddef>
#include <cstdint>

namespace OrvUQL::detail {

enum class Action : std::uint8_t {
    // The accumulator becomes the operand.
    LoadInt,
    LoadDouble,
    LoadBool,
    LoadNull,
    LoadText,    ///< a literal, which is the operand's element
    LoadCall,    ///< the operand is an ElementMethod
    LoadElement, ///< any other element
    LoadResult,  ///< any element, whose object is the program's result as it is

    // The accumulator is the left operand of a binary operator.
    AddInt, ///< as CombineInt, for "+": a sum of many is a run of these
    CombineInt,
    CombineDouble,
    CombineText,
    CombineCall,
    CombineElement,

    Push,          ///< the accumulator is put aside
    CombinePushed, ///< the value put aside last is the left operand, the accumulator the right one

    // Logic. The truth of the accumulator decides; it fails where it has none.
    And,   ///< a false value is the result: the program goes on at the target, else with the next instruction
    Or,    ///< likewise for a true value
    Truth, ///< the accumulator becomes its truth
    BranchIfFalse,
    Jump, ///< goes on at the target

    Not,
    Sign,
    Fail, ///< an operator whose text means nothing
    End,
};

struct Instruction {
    Action action;
    OperatorCode code;     ///< of a binary operator, and of a sign
    ElementKind kind;      ///< of the operand's element
    std::int32_t position; ///< of the operator in the query's text, for its own failures
    union {
        bool boolean;
        std::int32_t integer;
        double number;
        const IQueryElement* element; ///< borrowed from the tree
        std::size_t target;           ///< the number of an instruction
    };
};

class Program {
public:
    /// For an element of a kind that is an operator, which keeps the program as long as it lives. Throws
    /// std::bad_alloc.
    static const Program* Compile(const IQueryElement* element, ElementKind kind);

    static void Destroy(const Program* program) noexcept;

    /// The value, or none with the position of the failing element noted. May throw.
    Value Run(QueryEngine* engine, IError** err) const;

private:
    std::size_t count; // of instructions, which stand behind this
    std::size_t depth; // how many values are put aside at most

    Program(std::size_t instructionCount, std::size_t stackDepth) noexcept
        : count(instructionCount), depth(stackDepth) {}

    static std::size_t ByteSize(std::size_t instructionCount) noexcept {
        return sizeof(Program) + instructionCount * sizeof(Instruction);
    }
    const Instruction* Code() const noexcept { return reinterpret_cast<const Instruction*>(this + 1); }
};

static_assert(sizeof(Instruction) == 16 && alignof(Instruction) == 8);
static_assert(sizeof(Program) % alignof(Instruction) == 0);

} // namespace OrvUQL::detail
