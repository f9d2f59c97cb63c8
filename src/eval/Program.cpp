#include "eval/Program.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"

#include "eval/Arithmetic.h"
#include "eval/Comparison.h"
#include "eval/ElementAccess.h"
#include "platform/Meter.h"

#include <memory>

namespace OrvUQL::detail {

namespace {

bool NeedsOwner(const Value& value) noexcept {
    return value.kind == ValueKind::Text || value.kind == ValueKind::Object;
}

void Dispose(Value value) noexcept {
    if (NeedsOwner(value)) {
        const ValueHolder disposed(value);
    }
}

ORVUQL_ALWAYS_INLINE Value LiteralText(const Instruction& instruction) noexcept {
    return Value::Text(ElementAccess::LiteralText(instruction.element));
}

/// Of a value that is none: there is no short way to compute it.
constexpr ValueKind noShortWay = static_cast<ValueKind>(static_cast<int>(ValueKind::None) + 1);

Value NoShortWay() noexcept {
    Value value = Value::None();
    value.kind = noShortWay;
    return value;
}

// By value, and all of it in one function: so the operands stay in registers.

/// Two ints, without asking for their types.
ORVUQL_ALWAYS_INLINE Value CombineInts(OperatorCode code, int left, int right, IError** err) {
    if (code == OperatorCode::Plus) [[likely]] { // the most frequent one first
        return AddInts(left, right, err);
    }
    if (code <= OperatorCode::NotEqual) {
        return Value::Bool(CompareInts(static_cast<EOperType>(code), left, right));
    }
    switch (code) {
    case OperatorCode::Minus:
        return SubtractInts(left, right, err);
    case OperatorCode::Multiply:
        return MultiplyInts(left, right);
    case OperatorCode::Divide:
        return DivideDoubles(left, right, err);
    default:
        return NoShortWay();
    }
}

/// And two numbers of which one is a double.
ORVUQL_ALWAYS_INLINE Value CombineDoubles(OperatorCode code, double left, double right, IError** err) {
    if (code <= OperatorCode::NotEqual) {
        return Value::Bool(CompareDoubles(static_cast<EOperType>(code), left, right, 0.0));
    }
    switch (code) {
    case OperatorCode::Plus:
        return Value::Double(left + right);
    case OperatorCode::Minus:
        return Value::Double(left - right);
    case OperatorCode::Multiply:
        return Value::Double(left * right);
    case OperatorCode::Divide:
        return DivideDoubles(left, right, err);
    default:
        return NoShortWay();
    }
}

ORVUQL_ALWAYS_INLINE Value CombineNumbers(OperatorCode code, Value left, Value right, IError** err) {
    if (left.kind == ValueKind::Int && right.kind == ValueKind::Int) [[likely]] {
        return CombineInts(code, left.Integer(), right.Integer(), err);
    }
    const bool areNumbers = (left.kind == ValueKind::Int || left.kind == ValueKind::Double) &&
                            (right.kind == ValueKind::Int || right.kind == ValueKind::Double);
    if (!areNumbers) {
        return NoShortWay();
    }
    return CombineDoubles(code, left.kind == ValueKind::Int ? left.Integer() : left.number,
                          right.kind == ValueKind::Int ? right.Integer() : right.number, err);
}

/// The rule of an operator for any two operands.
Value Combine(OperatorCode code, ValueHolder& left, ValueHolder& right, const QueryEngine* engine, IError** err) {
    switch (code) {
    case OperatorCode::Plus:
        return EvaluatePlus(left, right, err);
    case OperatorCode::Minus:
        return EvaluateMinus(left, right, err);
    case OperatorCode::Multiply:
        return EvaluateMultiply(left, right, err);
    case OperatorCode::Divide:
        return EvaluateDivide(left, right, err);
    case OperatorCode::IntDivide:
        return EvaluateIntDivide(left, right, err);
    case OperatorCode::Power:
        return EvaluatePower(left, right, err);
    case OperatorCode::Unknown:
        return Value::None();
    default: {
        const int precision = engine == nullptr ? 0 : engine->GetUnitPrecision();
        bool verdict = false;
        const bool reached =
            CompareValues(static_cast<EOperType>(code), left.Get(), right.Get(), precision, verdict, err);
        return reached ? Value::Bool(verdict) : Value::None();
    }
    }
}

ORVUQL_NOINLINE Value FailAtInstruction(const Instruction& instruction, QueryEngine* engine) noexcept {
    FailAt(engine, instruction.position);
    return Value::None();
}

/// Takes both operands over.
ORVUQL_NOINLINE Value CombineOthers(const Instruction& instruction, Value leftValue, Value rightValue,
                                    QueryEngine* engine, IError** err) {
    ValueHolder left(leftValue);
    ValueHolder right(rightValue);
    return WorkAt(engine, instruction.position, [&] { return Combine(instruction.code, left, right, engine, err); });
}

/// The truth of a value that is no bool, as a bool; the value is taken over. None on failure.
ORVUQL_NOINLINE Value TruthOfOther(const Instruction& instruction, Value value, QueryEngine* engine, IError** err) {
    const ValueHolder holder(value);
    bool truth = false;
    const bool hasTruth = WorkAt(engine, instruction.position, [&] { return ToBool(holder.Get(), truth, err); });
    return hasTruth ? Value::Bool(truth) : FailAtInstruction(instruction, engine);
}

/// Replaces the accumulator by its truth. False on failure, with the accumulator's value disposed of.
ORVUQL_ALWAYS_INLINE bool BecomeTruth(const Instruction& instruction, Value& accumulator, QueryEngine* engine,
                                      const Frame& frame) {
    if (accumulator.kind == ValueKind::Bool) [[likely]] {
        return true;
    }
    accumulator = TruthOfOther(instruction, accumulator, engine, frame.err);
    return !accumulator.Failed();
}

/// The verdict on a text, which is taken over, and a literal one.
inline Value CompareWithLiteral(const Instruction& instruction, Value text) noexcept {
    const OrvStringT left = OrvStringT::AdoptBuffer(text.text);
    return Value::Bool(CompareStrings(static_cast<EOperType>(instruction.code), left,
                                      ElementAccess::LiteralText(instruction.element)));
}

/// Where a jump leads.
inline const Instruction* Target(const Instruction* jump) noexcept {
    return reinterpret_cast<const Instruction*>(reinterpret_cast<const char*>(jump) + jump->distance);
}

/// What follows a comparison and the BranchIfFalse behind it.
inline const Instruction* Branch(const Instruction* comparison, bool truth) noexcept {
    return truth ? comparison + 2 : Target(comparison + 1);
}

/// Takes the operand over.
ORVUQL_NOINLINE Value ApplySign(const Instruction& instruction, Value value, QueryEngine* engine, IError** err) {
    ValueHolder holder(value);
    return WorkAt(engine, instruction.position,
                  [&] { return EvaluateSign(instruction.code == OperatorCode::Minus, holder, err); });
}

// Where a meter counts, each operator is a step as soon as it has its operands, and each element is asked for itself,
// so that it counts its own.

constexpr bool IsStep(Action action) noexcept {
    switch (action) {
    case Action::LoadInt:
    case Action::LoadDouble:
    case Action::LoadBool:
    case Action::LoadNull:
    case Action::LoadText:
    case Action::LoadRead:
    case Action::LoadItem:
    case Action::LoadLast:
    case Action::LoadCall:
    case Action::LoadElement:
    case Action::LoadResult:
    case Action::Push:
    case Action::Truth: // of the operator before
    case Action::Jump:
    case Action::Fail:
    case Action::End:
        return false;
    default:
        return true;
    }
}

/// Whether the operator has to ask for its right operand.
constexpr bool AsksForOperand(Action action) noexcept {
    return action == Action::CombineRead || action == Action::CombineItem || action == Action::CombineCall ||
           action == Action::CombineElement || action == Action::CompareRead;
}

/// The operand is disposed of where the step is one too many.
void ChargeForOperator(const Instruction& instruction, const Value& operand, QueryEngine* engine) {
    try {
        platform::Charge(1);
    } catch (...) {
        Dispose(operand);
        FailAt(engine, instruction.position);
        throw;
    }
}

/// The value of a call.
template <bool isMetered>
ORVUQL_NOINLINE Value AskElement(const Instruction& instruction, QueryEngine* engine, const Frame& frame) {
    if constexpr (isMetered) {
        return Unbox(ElementAccess::EvaluateObject(instruction.element, ElementKind::Method, engine, frame.err));
    } else {
        return ElementAccess::CallValue(instruction.element, engine, frame.err);
    }
}

/// The value of a call without arguments that has no short way. Its operands are read again here, so that they need not
/// be kept while the short way is tried.
ORVUQL_NOINLINE Value InvokeRead(const Instruction& instruction, QueryEngine* engine, const Frame& frame) {
    return ElementAccess::InvokeValue(instruction.element, engine, frame.err);
}

/// The same for what array methods answer.
ORVUQL_NOINLINE Value InvokeItem(const Instruction& instruction, QueryEngine* engine, const Frame& frame) {
    return ElementAccess::ItemValue(instruction.element, engine, frame.err);
}
ORVUQL_NOINLINE Value InvokeLast(const Instruction& instruction, QueryEngine* engine, const Frame& frame) {
    return ElementAccess::LastValue(instruction.element, engine, frame.err);
}

/// Before an instruction, with the accumulator for an operand.
void ChargeBefore(const Instruction& instruction, const Value& accumulator, QueryEngine* engine) {
    if (IsStep(instruction.action) && !AsksForOperand(instruction.action)) {
        ChargeForOperator(instruction, accumulator, engine);
    }
}

/// Evaluates the right operand while the left one waits, which is disposed of if that fails.
template <bool isMetered>
ORVUQL_NOINLINE Value EvaluateBeside(Value left, const Instruction& instruction, QueryEngine* engine, IError** err) {
    ValueHolder waiting(left);
    const Value right = instruction.action != Action::CombineElement && !isMetered
                            ? ElementAccess::CallValue(instruction.element, engine, err)
                            : Unbox(ElementAccess::EvaluateObject(instruction.element, instruction.kind, engine, err));
    if (right.Failed()) {
        return right;
    }
    if constexpr (isMetered) {
        ChargeForOperator(instruction, right, engine);
    }
    waiting.Detach();
    return right;
}

/// The value of the program's result, which is that of an element; not for a literal text where none has to be its
/// very object.
template <bool isMetered>
ORVUQL_NOINLINE Value LoadResult(const Instruction& instruction, QueryEngine* engine, const Frame& frame) {
    if (!frame.wantsObject && !isMetered) {
        if (instruction.kind == ElementKind::Object) {
            const Value scalar = ElementAccess::LiteralScalar(instruction.element);
            if (!scalar.Failed()) {
                return scalar;
            }
        } else if (instruction.kind == ElementKind::Method) {
            return ElementAccess::CallValue(instruction.element, engine, frame.err);
        }
    }
    return Value::Object(ElementAccess::EvaluateObject(instruction.element, instruction.kind, engine, frame.err));
}

} // namespace

// The instruction that follows is found by a jump of each instruction's own, not by one for all: so the processor
// learns what follows what. Where the compiler has no such jumps, a loop around a switch does.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#define ORVUQL_PLACE(name) &&name,
#define ORVUQL_START()                                                                                                 \
    static const void* const places[] = {ORVUQL_ACTIONS(ORVUQL_PLACE)};                                                \
    ORVUQL_NEXT();
#define ORVUQL_ON(name)                                                                                                \
    name:
#define ORVUQL_NEXT()                                                                                                  \
    do {                                                                                                               \
        if constexpr (isMetered) {                                                                                     \
            ChargeBefore(*at, accumulator, engine);                                                                    \
        }                                                                                                              \
        goto* places[static_cast<std::size_t>(at->action)];                                                            \
    } while (false)
#define ORVUQL_FINISH()
#else
#define ORVUQL_START()                                                                                                 \
    for (;;) {                                                                                                         \
        if constexpr (isMetered) {                                                                                     \
            ChargeBefore(*at, accumulator, engine);                                                                    \
        }                                                                                                              \
        switch (at->action) {
#define ORVUQL_ON(name) case Action::name:
#define ORVUQL_NEXT() continue
#define ORVUQL_FINISH()                                                                                                \
    }                                                                                                                  \
    }
#endif

template <bool isMetered> Value RunProgram(const Instruction* at, QueryEngine* engine, Frame& frame) {
    Value accumulator = Value::None(); // without an owner: whoever is handed it disposes of it
    Value right = Value::None();
    ORVUQL_START()
    ORVUQL_ON(LoadInt)
    accumulator = Value::Int(at->integer);
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadDouble)
    accumulator = Value::Double(at->number);
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadBool)
    accumulator = Value::Bool(at->boolean);
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadNull)
    accumulator = Value::Null();
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadText)
    accumulator = LiteralText(*at);
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadRead)
    if constexpr (isMetered) {
        accumulator = AskElement<isMetered>(*at, engine, frame);
    } else {
        accumulator = ElementAccess::TryRead(at->element, engine);
        if (!accumulator.Failed()) [[likely]] {
            ++at;
            ORVUQL_NEXT();
        }
        accumulator = InvokeRead(*at, engine, frame);
    }
    if (accumulator.Failed()) {
        return accumulator;
    }
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadItem)
    if constexpr (isMetered) {
        accumulator = AskElement<isMetered>(*at, engine, frame);
    } else {
        accumulator = ElementAccess::TryItem(engine);
        if (!accumulator.Failed()) [[likely]] {
            ++at;
            ORVUQL_NEXT();
        }
        accumulator = InvokeItem(*at, engine, frame);
    }
    if (accumulator.Failed()) {
        return accumulator;
    }
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadLast)
    if constexpr (isMetered) {
        accumulator = AskElement<isMetered>(*at, engine, frame);
    } else {
        accumulator = ElementAccess::TryLast(engine);
        if (!accumulator.Failed()) [[likely]] {
            ++at;
            ORVUQL_NEXT();
        }
        accumulator = InvokeLast(*at, engine, frame);
    }
    if (accumulator.Failed()) {
        return accumulator;
    }
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadCall)
    accumulator = AskElement<isMetered>(*at, engine, frame);
    if (accumulator.Failed()) {
        return accumulator;
    }
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(LoadElement)
    accumulator = Unbox(ElementAccess::EvaluateObject(at->element, at->kind, engine, frame.err));
    if (accumulator.Failed()) {
        return accumulator;
    }
    ++at;
    ORVUQL_NEXT();

    ORVUQL_ON(LoadResult)
    // All that could follow are jumps to the end.
    if (!isMetered && !frame.wantsObject && at->kind == ElementKind::Object &&
        ElementAccess::LiteralKind(at->element) == ValueKind::Text) {
        return LiteralText(*at);
    }
    return LoadResult<isMetered>(*at, engine, frame);

    ORVUQL_ON(AddInt)
    if (accumulator.kind == ValueKind::Int) {
        std::int64_t sum = accumulator.integer;
        do {
            sum += at->integer;
            if (!FitsInt(sum)) {
                Fail(frame.err, message::integerOverflow);
                return FailAtInstruction(*at, engine);
            }
        } while ((++at)->action == Action::AddInt && !isMetered);
        accumulator = Value::Int(static_cast<int>(sum));
        ORVUQL_NEXT();
    }
    right = Value::Int(at->integer);
    goto combine;
    ORVUQL_ON(SubtractInt)
    if (accumulator.kind == ValueKind::Int) {
        accumulator = SubtractInts(accumulator.Integer(), at->integer, frame.err);
        if (accumulator.Failed()) {
            return FailAtInstruction(*at, engine);
        }
        ++at;
        ORVUQL_NEXT();
    }
    right = Value::Int(at->integer);
    goto combine;
    ORVUQL_ON(MultiplyInt)
    if (accumulator.kind == ValueKind::Int) {
        accumulator = MultiplyInts(accumulator.Integer(), at->integer);
        ++at;
        ORVUQL_NEXT();
    }
    right = Value::Int(at->integer);
    goto combine;
    ORVUQL_ON(DivideInt)
    if (accumulator.kind == ValueKind::Int) {
        accumulator = Value::Double(static_cast<double>(accumulator.Integer()) / at->integer);
        ++at;
        ORVUQL_NEXT();
    }
    right = Value::Int(at->integer);
    goto combine;
    ORVUQL_ON(CombineInt)
    right = Value::Int(at->integer);
    goto combine;
    ORVUQL_ON(CombineDouble)
    right = Value::Double(at->number);
    goto combine;
    ORVUQL_ON(CombineText)
    if (!isMetered && accumulator.kind == ValueKind::Text && at->code <= OperatorCode::NotEqual) {
        accumulator = CompareWithLiteral(*at, accumulator);
        ++at;
        ORVUQL_NEXT();
    }
    right = LiteralText(*at);
    goto combine;
    ORVUQL_ON(CombineRead)
combineRead:
    if (!isMetered && !NeedsOwner(accumulator)) {
        right = ElementAccess::TryRead(at->element, engine);
        if (!right.Failed()) [[likely]] {
            goto combine;
        }
    invokeRead:
        right = InvokeRead(*at, engine, frame);
    } else {
        right = EvaluateBeside<isMetered>(accumulator, *at, engine, frame.err);
    }
    if (right.Failed()) {
        return right;
    }
    goto combine;
    ORVUQL_ON(CombineItem)
    if (!isMetered && !NeedsOwner(accumulator)) {
        right = ElementAccess::TryItem(engine);
        if (!right.Failed()) [[likely]] {
            goto combine;
        }
        right = InvokeItem(*at, engine, frame);
    } else {
        right = EvaluateBeside<isMetered>(accumulator, *at, engine, frame.err);
    }
    if (right.Failed()) {
        return right;
    }
    goto combine;
    ORVUQL_ON(CombineCall)
    if (isMetered || NeedsOwner(accumulator)) {
        right = EvaluateBeside<isMetered>(accumulator, *at, engine, frame.err);
    } else {
        right = ElementAccess::CallValue(at->element, engine, frame.err);
    }
    if (right.Failed()) {
        return right;
    }
    goto combine;
    ORVUQL_ON(CombineElement)
    right = EvaluateBeside<isMetered>(accumulator, *at, engine, frame.err);
    if (right.Failed()) {
        return right;
    }
    goto combine;

    ORVUQL_ON(CompareInt)
    if (!isMetered && accumulator.kind == ValueKind::Int) {
        at = Branch(at, IsVerdict(at->verdicts, accumulator.Integer(), at->integer));
        ORVUQL_NEXT();
    }
    right = Value::Int(at->integer);
    goto combine;
    ORVUQL_ON(CompareRead)
    if (!isMetered && accumulator.kind == ValueKind::Int) {
        right = ElementAccess::TryRead(at->element, engine);
        if (right.kind == ValueKind::Int) {
            at = Branch(at, IsVerdict(at->verdicts, accumulator.Integer(), right.Integer()));
            ORVUQL_NEXT();
        }
        if (!right.Failed()) {
            goto combine;
        }
        goto invokeRead;
    }
    goto combineRead;

    ORVUQL_ON(Push)
    frame.Push(accumulator);
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(CombinePushed)
    right = accumulator;
    accumulator = frame.Pop();
    goto combine;

    ORVUQL_ON(And)
    if (!BecomeTruth(*at, accumulator, engine, frame)) {
        return accumulator;
    }
    at = accumulator.boolean ? at + 1 : Target(at);
    ORVUQL_NEXT();
    ORVUQL_ON(Or)
    if (!BecomeTruth(*at, accumulator, engine, frame)) {
        return accumulator;
    }
    at = accumulator.boolean ? Target(at) : at + 1;
    ORVUQL_NEXT();
    ORVUQL_ON(Truth)
    if (!BecomeTruth(*at, accumulator, engine, frame)) {
        return accumulator;
    }
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(BranchIfFalse)
    if (!BecomeTruth(*at, accumulator, engine, frame)) {
        return accumulator;
    }
    at = accumulator.boolean ? at + 1 : Target(at);
    ORVUQL_NEXT();
    ORVUQL_ON(Not)
    if (!BecomeTruth(*at, accumulator, engine, frame)) {
        return accumulator;
    }
    accumulator = Value::Bool(!accumulator.boolean);
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(Jump)
    at = Target(at);
    ORVUQL_NEXT();

    ORVUQL_ON(Sign)
    accumulator = ApplySign(*at, accumulator, engine, frame.err);
    if (accumulator.Failed()) {
        return FailAtInstruction(*at, engine);
    }
    ++at;
    ORVUQL_NEXT();
    ORVUQL_ON(Fail)
    Dispose(accumulator);
    return FailAtInstruction(*at, engine);
    ORVUQL_ON(End)
    return accumulator;
combine : {
    Value result = CombineNumbers(at->code, accumulator, right, frame.err);
    if (result.kind == noShortWay) {
        result = CombineOthers(*at, accumulator, right, engine, frame.err);
    }
    if (result.Failed()) {
        return FailAtInstruction(*at, engine);
    }
    accumulator = result;
    ++at;
    ORVUQL_NEXT();
}
    ORVUQL_FINISH()
}

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

template Value RunProgram<false>(const Instruction* at, QueryEngine* engine, Frame& frame);
template Value RunProgram<true>(const Instruction* at, QueryEngine* engine, Frame& frame);

template <bool isMetered> Value Program::RunDeep(QueryEngine* engine, bool wantsObject, IError** err) const {
    const std::unique_ptr<Value[]> room(new Value[depth]);
    Frame frame(room.get(), wantsObject, err);
    return RunProgram<isMetered>(Code(), engine, frame);
}

template Value Program::RunDeep<false>(QueryEngine* engine, bool wantsObject, IError** err) const;
template Value Program::RunDeep<true>(QueryEngine* engine, bool wantsObject, IError** err) const;

Value Program::RunMetered(QueryEngine* engine, bool wantsObject, IError** err) const {
    return RunForm<true>(engine, wantsObject, err);
}

} // namespace OrvUQL::detail
