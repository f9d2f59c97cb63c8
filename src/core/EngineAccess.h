// What the rest of the library touches of an engine beyond its public interface.
#pragma once

#include "OrvUQL/Elements.h"
#include "OrvUQL/QueryEngine.h"

#include "core/Frame.h"

#include <cstddef>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace OrvUQL::detail {

struct EngineAccess {
    /// Announces a call site to the value that is invoked next.
    static void OfferCallSite(QueryEngine* engine, const CallSite* site) noexcept { engine->callSite = site; }

    /// The call site that announced this call, or null. A site is known by the very text of its name, so that a call
    /// that a host's object makes in between never takes it.
    static const CallSite* TakeCallSite(QueryEngine* engine, const wchar_t* name) noexcept {
        if (engine == nullptr || engine->callSite == nullptr || engine->callSite->name.GetString() != name) {
            return nullptr;
        }
        return std::exchange(engine->callSite, nullptr);
    }

    /// Where in an engine the object of a target is: what CallSite::slot holds.
    static std::uint16_t SlotOf(CallTarget target) noexcept {
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof" // a class without bases
#endif
        switch (target) {
        case CallTarget::Variable:
            return offsetof(QueryEngine, variable);
        case CallTarget::PropertySource:
            return offsetof(QueryEngine, propertySource);
        case CallTarget::Global:
            return offsetof(QueryEngine, global);
        case CallTarget::GroupParent:
            return offsetof(QueryEngine, groupParent);
        default:
            return offsetof(QueryEngine, none);
        }
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    }

    /// The object there, borrowed; null if it is not set, and for a call that has a parent.
    static IObject* Target(const QueryEngine* engine, const CallSite& site) noexcept {
        return *reinterpret_cast<IObject* const*>(reinterpret_cast<const char*>(engine) + site.slot);
    }
    static IObject* Variable(const QueryEngine* engine) noexcept { return engine->variable; }

    /// Puts an object into the variable's slot, both references handed over; returns the one that was there. For those
    /// who bring that one back whatever happens.
    static IObject* ExchangeVariable(QueryEngine* engine, IObject* object) noexcept {
        return std::exchange(engine->variable, object);
    }

    static EvaluationState& State(QueryEngine& engine) noexcept { return engine.state; }

    /// A method keeps a reference, which is handed over, on purpose: for ever, or until the evaluation ends. Where
    /// memory ends (std::bad_alloc) it is given back.
    static void Keep(QueryEngine* engine, IObject* object) {
        if (engine != nullptr && engine->state.releasesKept && engine->state.depth != 0 && object != nullptr) {
            try {
                engine->state.kept.push_back(object);
            } catch (...) {
                object->Release();
                throw;
            }
        }
    }

    /// Where evaluation keeps the nodes of long chains; see Spine.
    static std::vector<const IQueryElement*>& SpineStorage(QueryEngine* engine) noexcept { return engine->spine; }

    /// Notes the element whose own work failed.
    static void SetErrorPosition(QueryEngine* engine, int position) noexcept {
        if (engine != nullptr) {
            engine->errorPosition = position;
        }
    }

    /// Before something outside of the library's own elements runs: whatever failed earlier was handled there.
    static void ClearErrorPosition(QueryEngine* engine) noexcept { SetErrorPosition(engine, -1); }

    /// After it failed: an element further in may have told its position already.
    static void SetErrorPositionIfNone(QueryEngine* engine, int position) noexcept {
        if (engine != nullptr && engine->errorPosition < 0) {
            engine->errorPosition = position;
        }
    }
};

/// Evaluates an argument's element for a method, null on failure. If the element tells no position of its own, as a
/// host's may not, the failure's position is the element's.
inline IObject* EvaluateArgument(const IQueryElement* element, QueryEngine* engine, IError** err) {
    EngineAccess::ClearErrorPosition(engine);
    if (&typeid(*element) == &typeid(ElementObject)) { // a literal, which needs nothing but its object
        if (IObject* const literal = static_cast<const ElementObject*>(element)->GetValue()) {
            literal->AddRef();
            return literal;
        }
    }
    IObject* const value = element->Evaluate(engine, err);
    if (value == nullptr) {
        EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
    }
    return value;
}

/// The object as a row's member pointer wants it.
template <class T> T* Adjust(T* object, int adjustment) noexcept {
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(object) + adjustment);
}

/// Calls a row's method.
inline IObject* CallRow(ObjectBase* object, const ObjectBase::MethodMap& row, QueryEngine* engine,
                        const OrvStringT& name, const ObjectList& params, IError** err) {
    return (Adjust(object, row.handlerAdjust)->*row.handler)(engine, name, params, err);
}

/// Of calls without arguments.
inline constinit const ObjectList noParameters;

/// An argument's element that a method evaluates again and again.
class RepeatedArgument {
public:
    /// All are borrowed.
    RepeatedArgument(const IQueryElement* argument, QueryEngine* queryEngine, IError** err) noexcept;

    /// The value, without an object around what an operator computes. What other elements give is an object and stays
    /// it. A failure, with its position noted as by EvaluateArgument(), is the last call. May throw what a host throws.
    ORVUQL_ALWAYS_INLINE Value Evaluate() {
        EngineAccess::ClearErrorPosition(engine);
        if (code == nullptr) {
            return EvaluateElement();
        }
        try {
            const Value value = RunProgram<false>(code, engine, frame);
            if (value.Failed()) [[unlikely]] {
                EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
            }
            return value;
        } catch (const std::bad_alloc&) {
        } catch (const std::length_error&) {}
        return FailForMemory();
    }

private:
    const IQueryElement* element;
    QueryEngine* engine;
    const Instruction* code = nullptr; // of an operator, once it is there
    ElementKind kind;
    Frame frame;

    Value EvaluateElement();
    Value FailForMemory() const;
};

/// The direct form of a row that an object of exactly this class found, or NoDirectMethod.
DirectMethod FindDirectMethod(const std::type_info& type, const ObjectBase::MethodMap& entry) noexcept;

/// The method of a row that an object of exactly this class found, if it takes a text without the object, or None.
TextMethod FindTextMethod(const std::type_info& type, const ObjectBase::MethodMap& entry) noexcept;

/// What such a method gives for a text that is no type object, which is taken over. The numbers are SubStr()'s; a count
/// of 0 stands for none.
Value CallTextMethod(TextMethod method, OrvStringT text, int start, int count);

/// In place of a row's direct form where it has none.
inline Value NoDirectMethod(IObject*) noexcept { return Value::None(); }

} // namespace OrvUQL::detail
