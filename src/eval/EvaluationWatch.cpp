#include "eval/EvaluationWatch.h"

#include "core/EngineAccess.h"
#include "core/Failure.h"

namespace OrvUQL::detail {

EvaluationWatch::EvaluationWatch(QueryEngine& watched) noexcept : engine(watched) {
    EvaluationState& state = EngineAccess::State(engine);
    if (++state.depth == 1 && state.isLimited) {
        meter.emplace(state.limits);
        state.meter = &*meter;
    }
    if (state.meter != nullptr) {
        state.meter->Note(1);
    }
}

EvaluationWatch::~EvaluationWatch() {
    EvaluationState& state = EngineAccess::State(engine);
    if (--state.depth != 0) {
        return;
    }
    if (meter) {
        state.usage = meter->GetUsage();
        state.meter = nullptr;
        meter.reset();
    }
    // What is released may evaluate something itself: that is then an evaluation of its own.
    std::vector<IObject*> kept;
    kept.swap(state.kept);
    ReleaseNested(reinterpret_cast<IRefCountObject* const*>(kept.data()), kept.size());
}

bool EvaluationWatch::HasEnded(IError** err) const noexcept {
    const EvaluationState& state = EngineAccess::State(engine);
    if (state.meter == nullptr || state.meter->Allows(0)) {
        return false;
    }
    FailForExcess(state.meter->GetExcess(), err);
    return true;
}

} // namespace OrvUQL::detail
