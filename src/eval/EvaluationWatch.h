// The evaluations of an engine that has limits, or gives back what methods keep.
#pragma once

#include "OrvUQL/QueryEngine.h"

#include "platform/Meter.h"

#include <optional>

namespace OrvUQL::detail {

/// Lives as long as such an evaluation. The outermost one of an engine carries the meter, and gives the kept references
/// back in the end.
class EvaluationWatch {
public:
    explicit EvaluationWatch(QueryEngine& watched) noexcept;
    EvaluationWatch(const EvaluationWatch&) = delete;
    EvaluationWatch& operator=(const EvaluationWatch&) = delete;
    ~EvaluationWatch();

    /// Whether the evaluation, of which this is the end, has to fail whatever it gave; then with the error of the limit
    /// that was exceeded.
    bool HasEnded(IError** err) const noexcept;

private:
    QueryEngine& engine;
    std::optional<platform::Meter> meter;
};

} // namespace OrvUQL::detail
