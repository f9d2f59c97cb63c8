#include "platform/Meter.h"

#include "platform/Pool.h"

#include <algorithm>
#include <limits>
#include <new>

namespace OrvUQL::platform {

namespace {

using Clock = std::chrono::steady_clock;

/// How many steps go by without a look at the clock.
constexpr std::uint64_t stepsPerLook = 32;

/// What may still be allocated behind a limit of memory, for errors and for what is under way.
constexpr std::int64_t memoryGrace = 64 * 1024;

constexpr std::int64_t mostBytes = std::numeric_limits<std::int64_t>::max();

Clock::time_point DeadlineAfter(std::int64_t nanoseconds) noexcept {
    const std::chrono::nanoseconds time(nanoseconds);
    const Clock::time_point now = Clock::now();
    return time < Clock::time_point::max() - now ? now + std::chrono::duration_cast<Clock::duration>(time)
                                                 : Clock::time_point::max();
}

} // namespace

Meter::Meter(const EvaluationLimits& limits) noexcept
    : outer(CurrentThread().meter),
      stepLimit(limits.steps),
      byteLimit(limits.memory < static_cast<std::size_t>(mostBytes) ? static_cast<std::int64_t>(limits.memory)
                                                                    : mostBytes),
      cancel(limits.cancel) {
    ThreadState& thread = CurrentThread();
    if (limits.nanoseconds != EvaluationLimits::unlimitedTime) {
        deadline = DeadlineAfter(limits.nanoseconds);
    }
    if (outer == nullptr) {
        lists = kept;
        DivertPool(kept);
    } else {
        lists = outer->lists;
        excess = outer->excess;
        stepLimit = std::min(stepLimit, outer->stepLimit - std::min(outer->stepLimit, outer->steps));
        if (outer->byteLimit != mostBytes) {
            byteLimit = std::min(byteLimit, std::max<std::int64_t>(outer->byteLimit - outer->bytes, 0));
        }
        deadline = std::min(deadline, outer->deadline);
    }
    thread.meter = this;
}

Meter::~Meter() {
    CurrentThread().meter = outer;
    if (outer == nullptr) {
        RestorePool(kept);
        return;
    }
    outer->steps += steps;
    outer->peak = std::max(outer->peak, outer->bytes + peak);
    outer->bytes += bytes;
    outer->checkpoint = 0; // the next charge asks everything
}

EvaluationUsage Meter::GetUsage() const noexcept {
    EvaluationUsage usage;
    usage.steps = steps;
    usage.peakMemory = static_cast<std::size_t>(peak);
    return usage;
}

void Meter::Exceed(Excess what) noexcept {
    if (excess == Excess::None) {
        excess = what;
    }
    checkpoint = 0;
}

/// Whether this many steps, of which some may still be to come, are within all limits.
bool Meter::IsWithin(std::uint64_t count) noexcept {
    if (excess != Excess::None) {
        return false;
    }
    if (count > stepLimit) {
        Exceed(Excess::Steps);
        return false;
    }
    if (IsCancelled()) {
        Exceed(Excess::Cancelled);
        return false;
    }
    if (deadline == Clock::time_point::max()) {
        checkpoint = stepLimit;
        return true;
    }
    if (Clock::now() >= deadline) {
        Exceed(Excess::Time);
        return false;
    }
    checkpoint = std::min(stepLimit, steps + std::min(stepsPerLook, stepLimit - std::min(stepLimit, steps)));
    return true;
}

void Meter::Check() {
    if (!IsWithin(steps)) {
        throw std::bad_alloc();
    }
}

bool Meter::Allows(std::uint64_t count) noexcept { return IsWithin(steps + count); }

void* Meter::Allocate(std::size_t size) {
    if (pauses != 0) {
        return TakeBlock(lists, size);
    }
    const std::int64_t after = bytes + static_cast<std::int64_t>(size);
    const std::int64_t grace = excess == Excess::None || byteLimit > mostBytes - memoryGrace ? 0 : memoryGrace;
    if (after > byteLimit + grace) {
        Exceed(Excess::Memory);
        throw std::bad_alloc();
    }
    void* const block = TakeBlock(lists, size);
    bytes = after;
    peak = std::max(peak, after);
    return block;
}

void Meter::Free(void* block, std::size_t size) noexcept {
    if (pauses == 0) {
        bytes -= static_cast<std::int64_t>(size);
    }
    GiveBlock(lists, block, size);
}

void RequireUnits(std::int64_t units) {
    Meter* const meter = CurrentThread().meter;
    if (meter != nullptr && !meter->Allows(static_cast<std::uint64_t>(units) / unitsPerStep)) {
        throw std::bad_alloc();
    }
}

} // namespace OrvUQL::platform
