#include "eval/Program.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"

#include "eval/Arithmetic.h"
#include "eval/Comparison.h"
#include "eval/ElementAccess.h"

#include <memory>

#if defined(_MSC_VER) && !defined(__clang__)
#define ORVUQL_ALWAYS_INLINE __forceinline
#define ORVUQL_UNREACHABLE() __assume(false)
#else
#define ORVUQL_ALWAYS_INLINE inline __attribute__((always_inline))
#define ORVUQL_UNREACHABLE() __builtin_unreachable()
#endif

namespace OrvUQL::detail {

namespace {

/// The values that a run has put aside. It owns them, so that they are disposed of however the run ends.
class PutAside {
public:
    explicit PutAside(std::size_t depth) : far(depth > nearCapacity ? new Value[depth] : nullptr) {
        values = far ? far.get() : near;
    }
    PutAside(const PutAside&) = delete;
    PutAside& operator=(const PutAside&) = delete;
    ~PutAside() {
        while (count != 0) {
            const ValueHolder disposed(Pop());
        }
    }

    void Push(Value value) noexcept { values[count++] = value; }
    Value Pop() noexcept { return values[--count]; }

private:
    static constexpr std::size_t nearCapacity = 6;

    Value near[nearCapacity];
    std::unique_ptr<Value[]> far;
    Value* values;
    std::size_t count = 0;
};

bool NeedsOwner(const Value& value) noexcept {
    return value.kind == ValueKind::Text || value.kind == ValueKind::Object;
}

void Dispose(Value value) noexcept {
    if (NeedsOwner(value)) {
        const ValueHolder disposed(value);
    }
}

Value LiteralText(const Instruction& instruction) noexcept {
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
    switch (code) {
    case OperatorCode::Plus:
        return AddInts(left, right, err);
    case OperatorCode::Minus:
        return SubtractInts(left, right, err);
    case OperatorCode::Multiply:
        return MultiplyInts(left, right);
    case OperatorCode::Divide:
        return DivideDoubles(left, right, err);
    default:
        return code > OperatorCode::NotEqual ? NoShortWay()
                                             : Value::Bool(CompareInts(static_cast<EOperType>(code), left, right));
    }
}

/// And two numbers of which one is a double.
ORVUQL_ALWAYS_INLINE Value CombineDoubles(OperatorCode code, double left, double right, IError** err) {
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
        return code > OperatorCode::NotEqual
                   ? NoShortWay()
                   : Value::Bool(CompareDoubles(static_cast<EOperType>(code), left, right, 0.0));
    }
}

ORVUQL_ALWAYS_INLINE Value CombineNumbers(OperatorCode code, Value left, Value right, IError** err) {
    if (left.kind == ValueKind::Int && right.kind == ValueKind::Int) {
        return CombineInts(code, left.integer, right.integer, err);
    }
    const bool areNumbers = (left.kind == ValueKind::Int || left.kind == ValueKind::Double) &&
                            (right.kind == ValueKind::Int || right.kind == ValueKind::Double);
    if (!areNumbers) {
        return NoShortWay();
    }
    return CombineDoubles(code, left.kind == ValueKind::Int ? left.integer : left.number,
                          right.kind == ValueKind::Int ? right.integer : right.number, err);
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

/// The truth of a value that is no bool, which it takes over. False on failure.
ORVUQL_NOINLINE bool DecideOther(const Instruction& instruction, Value value, bool& truth, QueryEngine* engine,
                                 IError** err) {
    const ValueHolder holder(value);
    return WorkAt(engine, instruction.position, [&] { return ToBool(holder.Get(), truth, err); });
}

inline bool Decide(const Instruction& instruction, Value value, bool& truth, QueryEngine* engine, IError** err) {
    if (value.kind == ValueKind::Bool) {
        truth = value.boolean;
        return true;
    }
    return DecideOther(instruction, value, truth, engine, err);
}

/// Takes the operand over.
ORVUQL_NOINLINE Value ApplySign(const Instruction& instruction, Value value, QueryEngine* engine, IError** err) {
    ValueHolder holder(value);
    return WorkAt(engine, instruction.position,
                  [&] { return EvaluateSign(instruction.code == OperatorCode::Minus, holder, err); });
}

/// Evaluates the right operand while the left one waits, which is disposed of if that fails.
ORVUQL_NOINLINE Value EvaluateBeside(Value left, const Instruction& instruction, QueryEngine* engine, IError** err) {
    ValueHolder waiting(left);
    const Value right = instruction.action == Action::CombineCall
                            ? ElementAccess::CallValue(instruction.element, engine, err)
                            : Unbox(ElementAccess::EvaluateObject(instruction.element, instruction.kind, engine, err));
    if (!right.Failed()) {
        waiting.Detach();
    }
    return right;
}

/// For programs that put nothing aside, which most are.
struct NothingPutAside {
    explicit NothingPutAside(std::size_t) noexcept {}
    void Push(Value) noexcept {}
    Value Pop() noexcept { return Value::None(); }
};

template <class Stack>
ORVUQL_NOINLINE Value RunCode(const Instruction* code, std::size_t depth, QueryEngine* engine, IError** err) {
    Stack stack(depth);
    const Instruction* at = code;
    Value accumulator = Value::None(); // without an owner: whoever is handed it disposes of it
    for (;;) {
        Value right = Value::None();
        switch (at->action) {
        case Action::LoadInt:
            accumulator = Value::Int(at->integer);
            ++at;
            continue;
        case Action::LoadDouble:
            accumulator = Value::Double(at->number);
            ++at;
            continue;
        case Action::LoadBool:
            accumulator = Value::Bool(at->boolean);
            ++at;
            continue;
        case Action::LoadNull:
            accumulator = Value::Null();
            ++at;
            continue;
        case Action::LoadText:
            accumulator = LiteralText(*at);
            ++at;
            continue;
        case Action::LoadCall:
            accumulator = ElementAccess::CallValue(at->element, engine, err);
            if (accumulator.Failed()) {
                return accumulator;
            }
            ++at;
            continue;
        case Action::LoadElement:
            accumulator = Unbox(ElementAccess::EvaluateObject(at->element, at->kind, engine, err));
            if (accumulator.Failed()) {
                return accumulator;
            }
            ++at;
            continue;

        case Action::LoadResult:
            accumulator = Value::Object(ElementAccess::EvaluateObject(at->element, at->kind, engine, err));
            if (accumulator.Failed()) {
                return accumulator;
            }
            ++at;
            continue;

        case Action::AddInt:
            if (accumulator.kind == ValueKind::Int) {
                std::int64_t sum = accumulator.integer;
                do {
                    sum += at->integer;
                    if (!FitsInt(sum)) {
                        Fail(err, message::integerOverflow);
                        return FailAtInstruction(*at, engine);
                    }
                } while ((++at)->action == Action::AddInt);
                accumulator = Value::Int(static_cast<int>(sum));
                continue;
            }
            [[fallthrough]];
        case Action::CombineInt:
            right = Value::Int(at->integer);
            break;
        case Action::CombineDouble:
            right = Value::Double(at->number);
            break;
        case Action::CombineText:
            if (accumulator.kind == ValueKind::Text && at->code <= OperatorCode::NotEqual) {
                const OrvStringT left = OrvStringT::AdoptBuffer(accumulator.text);
                accumulator = Value::Bool(
                    CompareStrings(static_cast<EOperType>(at->code), left, ElementAccess::LiteralText(at->element)));
                ++at;
                continue;
            }
            right = LiteralText(*at);
            break;
        case Action::CombineCall:
            right = NeedsOwner(accumulator) ? EvaluateBeside(accumulator, *at, engine, err)
                                            : ElementAccess::CallValue(at->element, engine, err);
            if (right.Failed()) {
                return right;
            }
            break;
        case Action::CombineElement:
            right = EvaluateBeside(accumulator, *at, engine, err);
            if (right.Failed()) {
                return right;
            }
            break;

        case Action::Push:
            stack.Push(accumulator);
            ++at;
            continue;
        case Action::CombinePushed:
            right = accumulator;
            accumulator = stack.Pop();
            break;

        case Action::And:
        case Action::Or: {
            bool truth = false;
            if (!Decide(*at, accumulator, truth, engine, err)) {
                return FailAtInstruction(*at, engine);
            }
            if (truth == (at->action == Action::And)) {
                ++at;
            } else {
                accumulator = Value::Bool(truth);
                at = code + at->target;
            }
            continue;
        }
        case Action::Truth: {
            bool truth = false;
            if (!Decide(*at, accumulator, truth, engine, err)) {
                return FailAtInstruction(*at, engine);
            }
            accumulator = Value::Bool(truth);
            ++at;
            continue;
        }
        case Action::BranchIfFalse: {
            bool truth = false;
            if (!Decide(*at, accumulator, truth, engine, err)) {
                return FailAtInstruction(*at, engine);
            }
            at = truth ? at + 1 : code + at->target;
            continue;
        }
        case Action::Jump:
            at = code + at->target;
            continue;

        case Action::Not: {
            bool truth = false;
            if (!Decide(*at, accumulator, truth, engine, err)) {
                return FailAtInstruction(*at, engine);
            }
            accumulator = Value::Bool(!truth);
            ++at;
            continue;
        }
        case Action::Sign:
            accumulator = ApplySign(*at, accumulator, engine, err);
            if (accumulator.Failed()) {
                return FailAtInstruction(*at, engine);
            }
            ++at;
            continue;
        case Action::Fail:
            Dispose(accumulator);
            return FailAtInstruction(*at, engine);
        case Action::End:
            return accumulator;
        default:
            ORVUQL_UNREACHABLE();
        }

        Value result = CombineNumbers(at->code, accumulator, right, err);
        if (result.kind == noShortWay) {
            result = CombineOthers(*at, accumulator, right, engine, err);
        }
        if (result.Failed()) {
            return FailAtInstruction(*at, engine);
        }
        accumulator = result;
        ++at;
    }
}

} // namespace

Value Program::Run(QueryEngine* engine, IError** err) const {
    return depth == 0 ? RunCode<NothingPutAside>(Code(), depth, engine, err)
                      : RunCode<PutAside>(Code(), depth, engine, err);
}

} // namespace OrvUQL::detail
