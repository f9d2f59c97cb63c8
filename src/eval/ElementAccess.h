// What the elements know of each other: the library's own are evaluated directly and without objects for scalars, any
// other by Evaluate().
#pragma once

#include "OrvUQL/Elements.h"
#include "OrvUQL/ObjectString.h"
#include "OrvUQL/Operators.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"
#include "core/Value.h"
#include "eval/Program.h"
#include "platform/Thread.h"
#include "values/IteratorAccess.h"

#include <typeinfo>

namespace OrvUQL::detail {

struct ElementAccess {
    /// What a child is. Asked once, when its parent is made: a child is complete by then, so a subclass shows as
    /// itself.
    static ElementKind KindOf(const IQueryElement* element) noexcept;

    /// The child's value with a reference, or null.
    static IObject* EvaluateObject(const IQueryElement* element, ElementKind kind, QueryEngine* engine, IError** err);

    /// The value of a call, which `element` must be.
    static Value CallValue(const IQueryElement* element, QueryEngine* engine, IError** err) {
        const ElementMethod* const call = static_cast<const ElementMethod*>(element);
        if (call->arguments.empty()) {
            IObject* const target = KnownTarget(call, engine);
            if (target != nullptr && call->site.type == &typeid(*target)) {
                if (const Value value = ReadDirectly(call, target, engine); !value.Failed()) {
                    return value;
                }
            }
        }
        return call->EvaluateValue(engine, err);
    }

    /// The same for a call without arguments of a name without a parent.
    static ORVUQL_ALWAYS_INLINE Value ReadValue(const IQueryElement* element, QueryEngine* engine, IError** err) {
        const Value value = TryRead(element, engine);
        return value.Failed() ? InvokeValue(element, engine, err) : value;
    }

    /// What a call comes to without its short ways.
    static Value InvokeValue(const IQueryElement* element, QueryEngine* engine, IError** err) {
        return static_cast<const ElementMethod*>(element)->EvaluateValue(engine, err);
    }

    /// Its value if the last object's class is still the one and has a getter that gives one; else none. This and the
    /// others that read what an engine carries need an engine.
    static ORVUQL_ALWAYS_INLINE Value TryRead(const IQueryElement* element, QueryEngine* engine) {
        const ElementMethod* const call = static_cast<const ElementMethod*>(element);
        IObject* const target = EngineAccess::Target(engine, call->site);
        if (target == nullptr || call->site.type != &typeid(*target)) [[unlikely]] {
            return Value::None();
        }
        return ReadDirectly(call, target, engine);
    }

    /// "$item" and "$lasteval", which array methods answer for each item, where they are what most are: an int, and a
    /// number or null. Else none.
    static ORVUQL_ALWAYS_INLINE Value TryItem(QueryEngine* engine) noexcept {
        if (const ObjectIterator* const iterator = VariableIterator(engine)) [[likely]] {
            return IteratorAccess::IntItem(iterator);
        }
        return Value::None();
    }
    static ORVUQL_ALWAYS_INLINE Value TryLast(QueryEngine* engine) noexcept {
        if (const ObjectIterator* const iterator = VariableIterator(engine)) [[likely]] {
            return IteratorAccess::ScalarLastEval(iterator);
        }
        return Value::None();
    }

    /// The same whatever they are.
    static Value ItemValue(const IQueryElement* element, QueryEngine* engine, IError** err) {
        if (const ObjectIterator* const iterator = VariableIterator(engine)) {
            const Value value = IteratorAccess::Item(iterator);
            if (!value.Failed()) {
                return value;
            }
        }
        return ReadValue(element, engine, err);
    }
    static Value LastValue(const IQueryElement* element, QueryEngine* engine, IError** err) {
        if (const ObjectIterator* const iterator = VariableIterator(engine)) {
            const Value value = IteratorAccess::LastEval(iterator);
            if (!value.Failed()) {
                return value;
            }
        }
        return ReadValue(element, engine, err);
    }

    /// The name without its prefix if the call reads the variable, else an empty one.
    static std::wstring_view VariableName(const IQueryElement* element) noexcept {
        const ElementMethod* const call = static_cast<const ElementMethod*>(element);
        return call->site.target == CallTarget::Variable ? call->site.name.View() : std::wstring_view();
    }

    /// Whether ReadValue() serves a call.
    static bool IsRead(const IQueryElement* element) noexcept {
        const ElementMethod* const call = static_cast<const ElementMethod*>(element);
        return call->parent == nullptr && call->arguments.empty();
    }

    /// The object on which a name is invoked where nothing has to be evaluated to find it, borrowed; else null.
    static IObject* KnownTarget(const ElementMethod* call, const QueryEngine* engine) noexcept {
        if (call->site.target != CallTarget::Parent) {
            return engine == nullptr ? nullptr : EngineAccess::Target(engine, call->site);
        }
        return call->kinds[0] == ElementKind::Object ? static_cast<const ElementObject*>(call->parent)->value : nullptr;
    }

    // What a program is made from.

    /// What the value of a literal is, which `element` must be, if exactly one of the library's scalars or texts.
    static ValueKind LiteralKind(const IQueryElement* element) noexcept {
        return static_cast<ValueKind>(static_cast<const ElementObject*>(element)->valueKind);
    }
    /// The value of a literal if it is a number or a bool; else none.
    static Value LiteralScalar(const IQueryElement* element) noexcept {
        const ElementObject* const literal = static_cast<const ElementObject*>(element);
        switch (LiteralKind(element)) {
        case ValueKind::Int:
            return Value::Int(literal->scalar.integer);
        case ValueKind::Double:
            return Value::Double(literal->scalar.number);
        case ValueKind::Bool:
            return Value::Bool(literal->scalar.boolean);
        default:
            return Value::None();
        }
    }
    /// The text of a literal that is one.
    static const OrvStringT& LiteralText(const IQueryElement* element) noexcept {
        return static_cast<const ObjectString*>(static_cast<const ElementObject*>(element)->value)->GetValue();
    }
    template <class Node> static ElementKind ChildKind(const Node* node, int child) noexcept {
        return node->kinds[child];
    }
    template <class Node> static OperatorCode CodeOf(const Node* node) noexcept { return node->code; }

    /// The program of an operator. Throws std::bad_alloc where memory ends before it is made.
    template <class Node> static const Program* ProgramOf(const Node* node) {
        return node->program != nullptr ? node->program : MakeProgram(node);
    }

    /// The program of an operator of a kind that trees begin with, if it is there.
    static const Program* ReadyProgram(const IQueryElement& element) noexcept {
        const std::type_info* const type = &typeid(element);
        if (type == &typeid(OperatorBinary)) {
            return static_cast<const OperatorBinary&>(element).program;
        }
        return type == &typeid(OperatorTernary) ? static_cast<const OperatorTernary&>(element).program : nullptr;
    }

    /// An operator's Evaluate().
    template <class Node> static IObject* EvaluateOperator(const Node* node, QueryEngine* engine, IError** err);

private:
    template <class Node> static const Program* MakeProgram(const Node* node);

    /// The variable if it is exactly the library's iterator, which has its own table.
    static const ObjectIterator* VariableIterator(const QueryEngine* engine) noexcept {
        const IObject* const variable = EngineAccess::Variable(engine);
        if (variable != nullptr && &typeid(*variable) == &typeid(ObjectIterator)) [[likely]] {
            return static_cast<const ObjectIterator*>(variable);
        }
        return nullptr;
    }

    /// Where memory ends in a host's getter, that is noted as the call's failure.
    static Value ReadDirectly(const ElementMethod* call, IObject* target, QueryEngine* engine) {
        try {
            return call->site.direct(target);
        } catch (const std::bad_alloc&) {
            EngineAccess::SetErrorPosition(engine, call->position);
            throw;
        } catch (const std::length_error&) {
            EngineAccess::SetErrorPosition(engine, call->position);
            throw;
        }
    }
};

/// A failure of the element's own, not of a child's.
inline std::nullptr_t FailAt(QueryEngine* engine, int position) noexcept {
    EngineAccess::SetErrorPosition(engine, position);
    return nullptr;
}

/// The check that stands before every recursion of evaluation.
inline bool CheckStack(const IQueryElement* element, QueryEngine* engine, IError** err) noexcept {
    if (platform::HasStack()) [[likely]] {
        return true;
    }
    FailAt(engine, element->GetStringPosition());
    return Fail(err, message::internalError);
}

/// EvaluateRootValue() of any element.
Value EvaluateOtherRoot(const IQueryElement* element, QueryEngine* engine, IError** err);

/// The value of a tree without an object around it where there need not be one, for an evaluation that no meter counts.
/// What it gives is what Evaluate() of the element gives. May throw.
ORVUQL_ALWAYS_INLINE Value EvaluateRootValue(const IQueryElement& element, QueryEngine* engine, IError** err) {
    const Program* const program = ElementAccess::ReadyProgram(element);
    return program != nullptr && platform::HasStack() ? program->RunUnmetered(engine, false, err)
                                                      : EvaluateOtherRoot(&element, engine, err);
}

/// Runs the element's own work. An exception that leaves it, as where memory ends, has the element's position.
template <class Work> auto WorkAt(QueryEngine* engine, int position, Work&& work) {
    try {
        return work();
    } catch (...) {
        EngineAccess::SetErrorPositionIfNone(engine, position);
        throw;
    }
}

/// Memory ended somewhere in the element.
inline std::nullptr_t FailForMemory(const IQueryElement* element, QueryEngine* engine, IError** err) noexcept {
    EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
    FailForShortage(err);
    return nullptr;
}

/// Guarded(), with the position of the failing element.
template <class Body>
IObject* EvaluateGuarded(const IQueryElement* element, QueryEngine* engine, IError** err, Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {}
    return FailForMemory(element, engine, err);
}

} // namespace OrvUQL::detail
