#include "Meters.h"

#include <windows.h>

#include <psapi.h>

namespace OrvUQL::bench {

// The times of processes advance by the interrupts of the clock, some milliseconds each: too coarse. The least of many
// short measurements is one that nothing came between.
double Seconds() {
    LARGE_INTEGER count{};
    LARGE_INTEGER frequency{};
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

std::optional<std::size_t> CallsOfNew() { return std::nullopt; }

std::optional<std::size_t> ResidentBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof(counters);
    if (!K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters))) {
        return std::nullopt;
    }
    return counters.WorkingSetSize;
}

std::optional<std::size_t> HeapBytes() { return std::nullopt; }

} // namespace OrvUQL::bench
