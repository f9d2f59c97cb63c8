#pragma once

#include "OrvUQL/EvaluationLimits.h"

#include "platform/Thread.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

/// Measuring and bounding what an evaluation takes.
///
/// Where there are limits, a meter is the thread's as long as the evaluation lasts, and all that works in proportion to
/// its data charges it. Where there are none it costs a question to the thread's state at most, and where there is much
/// to be asked (values, instructions) not even that: the pool's lists are empty while there is a meter, so that only
/// its slow functions ask, and programs have an interpreter of their own for the thread that has one.
namespace OrvUQL::platform {

/// Which limit was exceeded first.
enum class Excess : std::uint8_t { None, Steps, Memory, Time, Cancelled };

class Meter {
public:
    /// Becomes the thread's meter, until its end. If the thread has one already (another engine's evaluation asks for
    /// this one), then what is charged here counts there too, and what is left there is a bound here.
    explicit Meter(const EvaluationLimits& limits) noexcept;
    Meter(const Meter&) = delete;
    Meter& operator=(const Meter&) = delete;
    ~Meter();

    Excess GetExcess() const noexcept { return excess; }
    EvaluationUsage GetUsage() const noexcept;

    /// Adds steps. Throws std::bad_alloc if a limit is exceeded now or was before: an evaluation ends where its limits
    /// do in the way it ends where memory does.
    void Charge(std::uint64_t count) {
        steps += count;
        if (steps > checkpoint || IsCancelled()) [[unlikely]] {
            Check();
        }
    }

    /// Adds steps where nothing may be thrown; the next charge tells.
    void Note(std::uint64_t count) noexcept { steps += count; }

    /// Whether so many more steps are within the limits, without adding them. If not, a limit is exceeded from now on.
    bool Allows(std::uint64_t count) noexcept;

    // What the pool does while there is a meter.
    void* Allocate(std::size_t size);
    void Free(void* block, std::size_t size) noexcept;

private:
    friend class UnmeteredScope;

    Meter* outer;
    Excess excess = Excess::None;
    std::uint64_t steps = 0;
    std::uint64_t checkpoint = 0; // the last number of steps that needs no further questions
    std::uint64_t stepLimit;
    std::int64_t bytes = 0; // less than none where what was there before is given back
    std::int64_t peak = 0;
    std::int64_t byteLimit;
    std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
    const std::atomic<bool>* cancel;
    int pauses = 0;
    PoolList* lists; // the thread's: the outermost meter keeps them
    PoolList kept[poolClasses];

    bool IsCancelled() const noexcept {
        return (cancel != nullptr && cancel->load(std::memory_order_relaxed)) ||
               (outer != nullptr && outer->IsCancelled());
    }
    bool IsWithin(std::uint64_t count) noexcept;
    void Check();
    void Exceed(Excess what) noexcept;
};

/// How many units of a text, steps of a regular expression's matcher and states of its program make a step.
inline constexpr std::uint64_t unitsPerStep = 64;
inline constexpr std::uint64_t matcherStepsPerStep = 16;
inline constexpr std::uint64_t statesPerStep = 16;

/// Charges the thread's meter, if it has one.
inline void Charge(std::uint64_t count) {
    if (Meter* const meter = CurrentThread().meter) [[unlikely]] {
        meter->Charge(count);
    }
}

/// The same for work on a text of so many units.
inline void ChargeUnits(std::int64_t units) {
    if (units >= static_cast<std::int64_t>(unitsPerStep)) [[unlikely]] {
        Charge(static_cast<std::uint64_t>(units) / unitsPerStep);
    }
}

/// Before a text of so many units is made, which is charged later: throws std::bad_alloc if it would be too much.
void RequireUnits(std::int64_t units);

/// What is made or freed meanwhile is no value of the evaluation's: the memory is the meter's lists' all the same, but
/// does not count.
class UnmeteredScope {
public:
    UnmeteredScope() noexcept : meter(CurrentThread().meter) {
        if (meter != nullptr) [[unlikely]] {
            ++meter->pauses;
        }
    }
    UnmeteredScope(const UnmeteredScope&) = delete;
    UnmeteredScope& operator=(const UnmeteredScope&) = delete;
    ~UnmeteredScope() {
        if (meter != nullptr) [[unlikely]] {
            --meter->pauses;
        }
    }

private:
    Meter* const meter;
};

} // namespace OrvUQL::platform
