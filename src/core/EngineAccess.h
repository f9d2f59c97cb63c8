// What the rest of the library touches of an engine beyond its public interface.
#pragma once

#include "OrvUQL/Elements.h"
#include "OrvUQL/QueryEngine.h"

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
    IObject* const value = element->Evaluate(engine, err);
    if (value == nullptr) {
        EngineAccess::SetErrorPositionIfNone(engine, element->GetStringPosition());
    }
    return value;
}

} // namespace OrvUQL::detail
