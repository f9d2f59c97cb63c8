#include "Meters.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <new>
#include <unistd.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

std::size_t callsOfNew = 0; // the measurements run on one thread

} // namespace

// A program's own operator new serves the shared libraries too.
void* operator new(std::size_t size) {
    ++callsOfNew;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace OrvUQL::bench {

double Seconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::optional<std::size_t> CallsOfNew() { return callsOfNew; }

std::optional<std::size_t> ResidentBytes() {
    std::optional<std::size_t> bytes;
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
#if defined(__linux__)
    if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
        unsigned long long size = 0;
        unsigned long long resident = 0;
        if (std::fscanf(file, "%llu %llu", &size, &resident) == 2) {
            bytes = resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        }
        std::fclose(file);
    }
#endif
    return bytes;
}

std::optional<std::size_t> HeapBytes() {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 33)
    const struct mallinfo2 use = mallinfo2();
    return use.uordblks + use.hblkhd;
#else
    return std::nullopt;
#endif
}

} // namespace OrvUQL::bench
