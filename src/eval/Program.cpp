#include "eval/Program.h"

#include "OrvUQL/ObjectString.h"
#include "OrvUQL/QueryEngine.h"

#include "eval/Arithmetic.h"
#include "eval/Comparison.h"
#include "eval/ElementAccess.h"

#include <memory>

namespace OrvUQL::detail {

namespace {

/// The values that a run has put aside. It owns them, so that they are disposed of however the run ends.
class PutAside {
public:
    /// One more than the program asks for: where a value waits while something else is evaluated.
    explicit PutAside(std::size_t depth) : far(depth >= nearCapacity ? new Value[depth + 1] : nullptr) {
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

#if defined(_MSC_VER) && !defined(__clang__)
#define ORVUQL_UNREACHABLE() __assume(false)
#else
#define ORVUQL_UNREACHABLE() __builtin_unreachable()
#endif

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

/// Two ints, without asking for their types. False where there is no short way.
inline bool CombineInts(OperatorCode code, int left, int right, Value& result, IError** err) {
    switch (code) {
    case OperatorCode::Plus:
        result = AddInts(left, right, err);
        return true;
    case OperatorCode::Minus:
        result = SubtractInts(left, right, err);
        return true;
    case OperatorCode::Multiply:
        result = MultiplyInts(left, right);
        return true;
    case OperatorCode::Divide:
        result = DivideDoubles(left, right, err);
        return true;
    default:
        if (code > OperatorCode::NotEqual) {
            return false;
        }
        result = Value::Bool(CompareInts(static_cast<EOperType>(code), left, right));
        return true;
    }
}

/// And for two numbers of which one is a double.
inline bool CombineDoubles(OperatorCode code, double left, double right, Value& result, IError** err) {
    switch (code) {
    case OperatorCode::Plus:
        result = Value::Double(left + right);
        return true;
    case OperatorCode::Minus:
        result = Value::Double(left - right);
        return true;
    case OperatorCode::Multiply:
        result = Value::Double(left * right);
        return true;
    case OperatorCode::Divide:
        result = DivideDoubles(left, right, err);
        return true;
    default:
        if (code > OperatorCode::NotEqual) {
            return false;
        }
        result = Value::Bool(CompareDoubles(static_cast<EOperType>(code), left, right, 0.0));
        return true;
    }
}

inline bool CombineNumbers(OperatorCode code, const Value& left, const Value& right, Value& result, IError** err) {
    if (left.kind == ValueKind::Int) {
        if (right.kind == ValueKind::Int) {
            return CombineInts(code, left.integer, right.integer, result, err);
        }
        return right.kind == ValueKind::Double && CombineDoubles(code, left.integer, right.number, result, err);
    }
    if (left.kind == ValueKind::Double) {
        if (right.kind == ValueKind::Double) {
            return CombineDoubles(code, left.number, right.number, result, err);
        }
        return right.kind == ValueKind::Int && CombineDoubles(code, left.number, right.integer, result, err);
    }
    return false;
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
ORVUQL_NOINLINE Value EvaluateBeside(Value left, PutAside& stack, const Instruction& instruction, QueryEngine* engine,
                                     IError** err) {
    stack.Push(left);
    const Value right = instruction.action == Action::CombineCall
                            ? ElementAccess::CallValue(instruction.element, engine, err)
                            : Unbox(ElementAccess::EvaluateObject(instruction.element, instruction.kind, engine, err));
    stack.Pop();
    if (right.Failed()) {
        Dispose(left);
    }
    return right;
}

} // namespace

Value Program::Run(QueryEngine* engine, IError** err) const {
    PutAside stack(depth);
    const Instruction* const code = Code();
    const Instruction* at = code;
    // While something else runs, a value that needs an owner waits on the stack; one that does not, stays here.
    Value accumulator = Value::None();
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
            right = NeedsOwner(accumulator) ? EvaluateBeside(accumulator, stack, *at, engine, err)
                                            : ElementAccess::CallValue(at->element, engine, err);
            if (right.Failed()) {
                return right;
            }
            break;
        case Action::CombineElement:
            right = EvaluateBeside(accumulator, stack, *at, engine, err);
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

        Value result = Value::None();
        if (!CombineNumbers(at->code, accumulator, right, result, err)) {
            result = CombineOthers(*at, accumulator, right, engine, err);
        }
        if (result.Failed()) {
            return FailAtInstruction(*at, engine);
        }
        accumulator = result;
        ++at;
    }
}

} // namespace OrvUQL::detail
