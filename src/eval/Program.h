// The operators of a tree as a list of instructions.
//
// What a tree of operators computes is computed here, whatever its depth, without recursion: an operator that is asked
// for its value writes the instructions for itself and for all operators below it down, once, and runs them.
//
// There is one accumulator. The program of `(@a + 1) * @b - @c / 2`:
//
//     LoadRead      @a
//     AddInt        1
//     CombineRead   * @b
//     Push
//     LoadRead      @c
//     DivideInt     2
//     CombinePushed -
//     End
#pragma once

#include "OrvUQL/QueryElement.h"

#include "core/Frame.h"
#include "eval/OperatorCode.h"
#include "platform/Thread.h"

#include <cstddef>
#include <cstdint>

namespace OrvUQL::detail {

/// The instructions. `ACTION` is applied to each name, in the order of their numbers.
#define ORVUQL_ACTIONS(ACTION)                                                                                         \
    /* The accumulator becomes the operand: a literal, of which a text's operand is the element, */                    \
    ACTION(LoadInt)                                                                                                    \
    ACTION(LoadDouble)                                                                                                 \
    ACTION(LoadBool)                                                                                                   \
    ACTION(LoadNull)                                                                                                   \
    ACTION(LoadText)                                                                                                   \
    /* an ElementMethod without parent and arguments, one of them "$item" or "$lasteval", any other ElementMethod, */  \
    ACTION(LoadRead)                                                                                                   \
    ACTION(LoadItem)                                                                                                   \
    ACTION(LoadLast)                                                                                                   \
    ACTION(LoadCall)                                                                                                   \
    /* any other element, and any whose value is the program's: its very object where one is wanted. */                \
    ACTION(LoadElement)                                                                                                \
    ACTION(LoadResult)                                                                                                 \
    /* The accumulator is the left operand of a binary operator. The first four are CombineInt for one operator; a */  \
    /* sum of many is a run of AddInt, and DivideInt is never by 0. */                                                 \
    ACTION(AddInt)                                                                                                     \
    ACTION(SubtractInt)                                                                                                \
    ACTION(MultiplyInt)                                                                                                \
    ACTION(DivideInt)                                                                                                  \
    ACTION(CombineInt)                                                                                                 \
    ACTION(CombineDouble)                                                                                              \
    ACTION(CombineText)                                                                                                \
    ACTION(CombineRead)                                                                                                \
    ACTION(CombineItem)                                                                                                \
    ACTION(CombineCall)                                                                                                \
    ACTION(CombineElement)                                                                                             \
    /* CombineInt and CombineRead of a comparison that a BranchIfFalse follows, for two ints done along with it. */    \
    ACTION(CompareInt)                                                                                                 \
    ACTION(CompareRead)                                                                                                \
    /* The accumulator is put aside; and becomes the right operand of what was put aside last. */                      \
    ACTION(Push)                                                                                                       \
    ACTION(CombinePushed)                                                                                              \
    /* Logic. The accumulator becomes its truth, and fails where it has none. False is the result of And, true that */ \
    /* of Or: then, and where BranchIfFalse finds it false, the program jumps. */                                      \
    ACTION(And)                                                                                                        \
    ACTION(Or)                                                                                                         \
    ACTION(Truth)                                                                                                      \
    ACTION(BranchIfFalse)                                                                                              \
    ACTION(Not)                                                                                                        \
    ACTION(Jump)                                                                                                       \
    ACTION(Sign)                                                                                                       \
    /* An operator whose text means nothing. */                                                                        \
    ACTION(Fail)                                                                                                       \
    ACTION(End)

enum class Action : std::uint8_t {
#define ORVUQL_ACTION(name) name,
    ORVUQL_ACTIONS(ORVUQL_ACTION)
#undef ORVUQL_ACTION
};

struct Instruction {
    Action action;
    OperatorCode code;     ///< of a binary operator, and of a sign
    ElementKind kind;      ///< of the operand's element
    std::uint8_t verdicts; ///< of a comparison that branches at once; see VerdictsOf()
    std::int32_t position; ///< of the operator in the query's text, for its own failures
    union {
        bool boolean;
        std::int32_t integer;
        double number;
        const IQueryElement* element; ///< borrowed from the tree
        std::ptrdiff_t distance;      ///< of a jump, in bytes
    };
};

class Program {
public:
    /// For an element of a kind that is an operator, which keeps the program as long as it lives. Throws
    /// std::bad_alloc.
    static const Program* Compile(const IQueryElement* element, ElementKind kind);

    static void Destroy(const Program* program) noexcept;

    /// The value, or none with the position of the failing element noted. Where the tree's value is that of an element
    /// which is no operator, `wantsObject` tells whether it has to be that element's object. May throw.
    Value Run(QueryEngine* engine, bool wantsObject, IError** err) const {
        if (platform::CurrentThread().meter != nullptr || engine == nullptr) [[unlikely]] {
            return RunMetered(engine, wantsObject, err);
        }
        return RunUnmetered(engine, wantsObject, err);
    }

    /// The same for an evaluation that no meter counts, by an engine.
    Value RunUnmetered(QueryEngine* engine, bool wantsObject, IError** err) const {
        return RunForm<false>(engine, wantsObject, err);
    }

    /// What RunProgram() runs, where a plain frame has room enough, nobody counts and there is an engine; else null.
    const Instruction* PlainCode(const QueryEngine* engine) const noexcept {
        const bool isPlain =
            depth <= Frame::nearDepth && platform::CurrentThread().meter == nullptr && engine != nullptr;
        return isPlain ? Code() : nullptr;
    }

private:
    std::size_t count; // of instructions, which stand behind this
    std::size_t depth; // how many values are put aside at most

    Program(std::size_t instructionCount, std::size_t stackDepth) noexcept
        : count(instructionCount), depth(stackDepth) {}

    static std::size_t ByteSize(std::size_t instructionCount) noexcept {
        return sizeof(Program) + instructionCount * sizeof(Instruction);
    }
    template <bool isMetered> Value RunForm(QueryEngine* engine, bool wantsObject, IError** err) const {
        if (depth > Frame::nearDepth) [[unlikely]] {
            return RunDeep<isMetered>(engine, wantsObject, err);
        }
        Frame frame(wantsObject, err);
        return RunProgram<isMetered>(Code(), engine, frame);
    }
    template <bool isMetered> Value RunDeep(QueryEngine* engine, bool wantsObject, IError** err) const;

    // Not inline: the metered form's frame is not to add to the other's use of the stack.
    Value RunMetered(QueryEngine* engine, bool wantsObject, IError** err) const;
    const Instruction* Code() const noexcept { return reinterpret_cast<const Instruction*>(this + 1); }
};

static_assert(sizeof(Instruction) == 16 && alignof(Instruction) == 8);
static_assert(sizeof(Program) % alignof(Instruction) == 0);

} // namespace OrvUQL::detail
