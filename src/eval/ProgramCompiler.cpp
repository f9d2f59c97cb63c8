#include "OrvUQL/Elements.h"
#include "OrvUQL/Operators.h"

#include "eval/Comparison.h"
#include "eval/ElementAccess.h"
#include "eval/Program.h"
#include "platform/CaseMap.h"
#include "platform/Meter.h"
#include "platform/Pool.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

namespace OrvUQL::detail {

namespace {

/// Writes down a tree without recursion: what is still to be done stands in a list, the next on top.
class Compiler {
public:
    void Compile(const IQueryElement* root, ElementKind kind) {
        Later(Step::VisitResult, root, kind);
        while (!steps.empty()) {
            const Task task = steps.back();
            steps.pop_back();
            Do(task);
        }
        Emit(Action::End, root);
    }

    const std::vector<Instruction>& Code() const noexcept { return code; }
    std::size_t Depth() const noexcept { return greatestDepth; }

private:
    enum class Step : std::uint8_t {
        Visit,         ///< writes down an element
        VisitResult,   ///< one whose value is the program's
        Operand,       ///< of a binary operator, whose left operand is in the accumulator, does the right one
        CombinePushed, ///< both operands of a binary operator are there
        EndOfLogic,    ///< the right operand of "and" or "or" is in the accumulator
        Unary,         ///< the operand is in the accumulator
        Condition,     ///< the condition is in the accumulator
        SecondBranch,  ///< the first branch is written down
        EndOfBranches,
    };

    struct Task {
        Step step;
        ElementKind kind;
        bool isResult; ///< of a conditional: its value is the program's
        const IQueryElement* element;
        std::size_t at; ///< of the instruction that jumps to here
    };

    std::vector<Task> steps;
    std::vector<Instruction> code;
    std::size_t depth = 0;
    std::size_t greatestDepth = 0;

    void Later(Step step, const IQueryElement* element, ElementKind kind = ElementKind::Other, std::size_t at = 0,
               bool isResult = false) {
        steps.push_back({step, kind, isResult, element, at});
    }

    /// What loads an element's value. Returns the instruction.
    Instruction& Load(Action action, const IQueryElement* element, ElementKind kind) {
        Instruction instruction{};
        instruction.action = action;
        instruction.kind = kind;
        instruction.element = element;
        code.push_back(instruction);
        return code.back();
    }

    /// An operator's own work. Returns the instruction.
    Instruction& Emit(Action action, const IQueryElement* node, OperatorCode operatorCode = OperatorCode::Unknown) {
        Instruction instruction{};
        instruction.action = action;
        instruction.code = operatorCode;
        instruction.position = node->GetStringPosition();
        code.push_back(instruction);
        return code.back();
    }

    std::size_t EmitJump(Action action, const IQueryElement* node) {
        Emit(action, node);
        return code.size() - 1;
    }

    void JumpHere(std::size_t at) noexcept {
        code[at].distance = static_cast<std::ptrdiff_t>((code.size() - at) * sizeof(Instruction));
    }

    void Do(const Task& task) {
        switch (task.step) {
        case Step::Visit:
            Visit(task.element, task.kind, false);
            break;
        case Step::VisitResult:
            Visit(task.element, task.kind, true);
            break;
        case Step::Operand:
            AddOperand(static_cast<const OperatorBinary*>(task.element));
            break;
        case Step::CombinePushed:
            --depth;
            Emit(Action::CombinePushed, task.element,
                 ElementAccess::CodeOf(static_cast<const OperatorBinary*>(task.element)));
            break;
        case Step::EndOfLogic:
            if (const OperatorBinary* const node = static_cast<const OperatorBinary*>(task.element);
                !GivesBool(node->GetRight(), ElementAccess::ChildKind(node, 1))) {
                Emit(Action::Truth, task.element);
            }
            JumpHere(task.at);
            break;
        case Step::Unary:
            AddUnary(static_cast<const OperatorUnary*>(task.element));
            break;
        case Step::Condition:
            AddBranches(static_cast<const OperatorTernary*>(task.element), task.isResult);
            break;
        case Step::SecondBranch: {
            const OperatorTernary* const node = static_cast<const OperatorTernary*>(task.element);
            const std::size_t jump = EmitJump(Action::Jump, node);
            JumpHere(task.at);
            Later(Step::EndOfBranches, node, ElementKind::Other, jump);
            Later(VisitBranch(task.isResult), node->GetSecond(), ElementAccess::ChildKind(node, 2));
            break;
        }
        case Step::EndOfBranches:
            JumpHere(task.at);
            break;
        }
    }

    /// Whether an operator's value is a bool if it has one.
    static bool GivesBool(const IQueryElement* element, ElementKind kind) noexcept {
        if (kind == ElementKind::Binary) { // comparisons, "and", "or"
            return ElementAccess::CodeOf(static_cast<const OperatorBinary*>(element)) <= OperatorCode::Or;
        }
        return kind == ElementKind::Unary &&
               ElementAccess::CodeOf(static_cast<const OperatorUnary*>(element)) == OperatorCode::Not;
    }

    static Action ActionOfCall(const IQueryElement* element) noexcept {
        if (!ElementAccess::IsRead(element)) {
            return Action::LoadCall;
        }
        const std::wstring_view name = ElementAccess::VariableName(element);
        if (platform::EqualsIgnoreCaseAscii(name, L"item")) {
            return Action::LoadItem;
        }
        return platform::EqualsIgnoreCaseAscii(name, L"lasteval") ? Action::LoadLast : Action::LoadRead;
    }

    static Action CombiningActionOfCall(const IQueryElement* element) noexcept {
        switch (ActionOfCall(element)) {
        case Action::LoadCall:
            return Action::CombineCall;
        case Action::LoadItem:
            return Action::CombineItem;
        default:
            return Action::CombineRead;
        }
    }

    static Step VisitBranch(bool isResult) noexcept { return isResult ? Step::VisitResult : Step::Visit; }

    void Visit(const IQueryElement* element, ElementKind kind, bool isResult) {
        switch (kind) {
        case ElementKind::Object:
            if (isResult) {
                Load(Action::LoadResult, element, kind);
            } else {
                AddLiteral(element);
            }
            break;
        case ElementKind::Method:
            Load(isResult ? Action::LoadResult : ActionOfCall(element), element, kind);
            break;
        case ElementKind::Binary: {
            const OperatorBinary* const node = static_cast<const OperatorBinary*>(element);
            Later(Step::Operand, node);
            Later(Step::Visit, node->GetLeft(), ElementAccess::ChildKind(node, 0));
            break;
        }
        case ElementKind::Unary: {
            const OperatorUnary* const node = static_cast<const OperatorUnary*>(element);
            Later(Step::Unary, node);
            Later(Step::Visit, node->GetOperand(), ElementAccess::ChildKind(node, 0));
            break;
        }
        case ElementKind::Ternary: {
            const OperatorTernary* const node = static_cast<const OperatorTernary*>(element);
            Later(Step::Condition, node, ElementKind::Other, 0, isResult);
            Later(Step::Visit, node->GetCondition(), ElementAccess::ChildKind(node, 0));
            break;
        }
        default:
            Load(isResult ? Action::LoadResult : Action::LoadElement, element, kind);
            break;
        }
    }

    /// A number in the instruction itself in place of the element. False if the literal is none.
    static bool TakeNumber(Instruction& instruction, const IQueryElement* element, Action asInt,
                           Action asDouble) noexcept {
        const Value value = ElementAccess::LiteralScalar(element);
        if (value.kind == ValueKind::Int) {
            instruction.action = asInt;
            instruction.integer = value.Integer();
            return true;
        }
        if (value.kind == ValueKind::Double) {
            instruction.action = asDouble;
            instruction.number = value.number;
            return true;
        }
        return false;
    }

    void AddLiteral(const IQueryElement* element) {
        Instruction& instruction = Load(Action::LoadElement, element, ElementKind::Object);
        if (TakeNumber(instruction, element, Action::LoadInt, Action::LoadDouble)) {
            return;
        }
        switch (ElementAccess::LiteralKind(element)) {
        case ValueKind::Bool:
            instruction.action = Action::LoadBool;
            instruction.boolean = ElementAccess::LiteralScalar(element).boolean;
            break;
        case ValueKind::Null:
            instruction.action = Action::LoadNull;
            break;
        case ValueKind::Text:
            instruction.action = Action::LoadText;
            break;
        default:
            break;
        }
    }

    static Action ActionWithInt(OperatorCode operatorCode, const IQueryElement* literal) noexcept {
        switch (operatorCode) {
        case OperatorCode::Plus:
            return Action::AddInt;
        case OperatorCode::Minus:
            return Action::SubtractInt;
        case OperatorCode::Multiply:
            return Action::MultiplyInt;
        case OperatorCode::Divide: // by zero is for the rule to refuse
            return ElementAccess::LiteralScalar(literal).integer == 0 ? Action::CombineInt : Action::DivideInt;
        default:
            return Action::CombineInt;
        }
    }

    void AddOperand(const OperatorBinary* node) {
        const OperatorCode operatorCode = ElementAccess::CodeOf(node);
        const IQueryElement* const right = node->GetRight();
        const ElementKind kind = ElementAccess::ChildKind(node, 1);
        if (operatorCode == OperatorCode::And || operatorCode == OperatorCode::Or) {
            const std::size_t at = EmitJump(operatorCode == OperatorCode::And ? Action::And : Action::Or, node);
            Later(Step::EndOfLogic, node, ElementKind::Other, at);
            Later(Step::Visit, right, kind);
            return;
        }
        switch (kind) {
        case ElementKind::Binary:
        case ElementKind::Unary:
        case ElementKind::Ternary:
            Emit(Action::Push, node);
            greatestDepth = std::max(greatestDepth, ++depth);
            Later(Step::CombinePushed, node);
            Later(Step::Visit, right, kind);
            return;
        case ElementKind::Method:
            Emit(CombiningActionOfCall(right), node, operatorCode).element = right;
            return;
        default:
            break;
        }
        Instruction& instruction = Emit(Action::CombineElement, node, operatorCode);
        instruction.kind = kind;
        instruction.element = right;
        if (kind == ElementKind::Object) {
            if (TakeNumber(instruction, right, ActionWithInt(operatorCode, right), Action::CombineDouble)) {
                return;
            }
            if (ElementAccess::LiteralKind(right) == ValueKind::Text) {
                instruction.action = Action::CombineText;
            }
        }
    }

    void AddUnary(const OperatorUnary* node) {
        const OperatorCode operatorCode = ElementAccess::CodeOf(node);
        switch (operatorCode) {
        case OperatorCode::Not:
            Emit(Action::Not, node);
            break;
        case OperatorCode::Plus:
        case OperatorCode::Minus:
            Emit(Action::Sign, node, operatorCode);
            break;
        default:
            Emit(Action::Fail, node);
            break;
        }
    }

    /// Of a condition's last instruction.
    static void FuseComparison(Instruction& last) noexcept {
        if (last.code > OperatorCode::NotEqual) {
            return;
        }
        if (last.action == Action::CombineInt) {
            last.action = Action::CompareInt;
        } else if (last.action == Action::CombineRead) {
            last.action = Action::CompareRead;
        } else {
            return;
        }
        last.verdicts = VerdictsOf(static_cast<EOperType>(last.code));
    }

    void AddBranches(const OperatorTernary* node, bool isResult) {
        if (ElementAccess::CodeOf(node) != OperatorCode::Conditional) {
            Emit(Action::Fail, node);
            return;
        }
        FuseComparison(code.back());
        const std::size_t at = EmitJump(Action::BranchIfFalse, node);
        Later(Step::SecondBranch, node, ElementKind::Other, at, isResult);
        Later(VisitBranch(isResult), node->GetFirst(), ElementAccess::ChildKind(node, 1));
    }
};

} // namespace

const Program* Program::Compile(const IQueryElement* element, ElementKind kind) {
    const platform::UnmeteredScope asPartOfTheTree;
    Compiler compiler;
    compiler.Compile(element, kind);
    const std::vector<Instruction>& code = compiler.Code();
    void* const memory = platform::PoolAllocate(ByteSize(code.size()));
    Program* const program = ::new (memory) Program(code.size(), compiler.Depth());
    std::uninitialized_copy(code.begin(), code.end(), reinterpret_cast<Instruction*>(program + 1));
    return program;
}

void Program::Destroy(const Program* program) noexcept {
    if (program != nullptr) {
        const platform::UnmeteredScope asPartOfTheTree;
        platform::PoolFree(const_cast<Program*>(program), ByteSize(program->count));
    }
}

} // namespace OrvUQL::detail
