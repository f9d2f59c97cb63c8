#include "platform/RegexCache.h"

#include "platform/RegexProgram.h"
#include "platform/Thread.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace OrvUQL::platform {

namespace {

/// More is not kept: a state takes some fifty bytes.
constexpr std::size_t maxStatesKept = 2'000;
constexpr std::size_t maxUnitsKept = 4'096;

/// The expressions that a thread used last, the latest first.
class RegexCache {
public:
    RegexCache() = default;
    RegexCache(const RegexCache&) = delete;
    RegexCache& operator=(const RegexCache&) = delete;
    ~RegexCache() {
        for (const Entry& entry : entries) {
            if (entry.program != nullptr) {
                entry.program->Release();
            }
        }
    }

    const RegexProgram* Get(std::wstring_view pattern, RegexOptions options) {
        const auto isSame = [&](const Entry& entry) {
            return entry.program != nullptr && entry.options == options && entry.pattern == pattern;
        };
        const auto known = std::find_if(entries.begin(), entries.end(), isSame);
        if (known != entries.end()) {
            std::rotate(entries.begin(), known, known + 1);
        } else {
            const RegexProgram* const program = RegexProgram::Compile(pattern, options);
            if (program->States() > maxStatesKept || pattern.size() > maxUnitsKept) {
                return program;
            }
            Add(pattern, options, program);
        }
        entries.front().program->AddRef();
        return entries.front().program;
    }

private:
    struct Entry {
        std::wstring pattern; // of its own: an OrvStringT would be shared with values that may leave the thread
        RegexOptions options;
        const RegexProgram* program = nullptr;
    };

    std::array<Entry, 8> entries;

    void Add(std::wstring_view pattern, RegexOptions options, const RegexProgram* program) {
        Entry& oldest = entries.back();
        try {
            oldest.pattern = pattern;
        } catch (...) {
            program->Release();
            throw;
        }
        oldest.options = options;
        if (const RegexProgram* const dropped = std::exchange(oldest.program, program)) {
            dropped->Release();
        }
        std::rotate(entries.begin(), entries.end() - 1, entries.end());
    }
};

/// A thread's cache, made on first use, as soon as there is memory for it, and gone when the thread ends. Values may
/// still be evaluated after that.
thread_local RegexCache* threadCache = nullptr;
thread_local bool isThreadEnding = false;

RegexCache* GetThreadCache() {
    struct Owner {
        Owner() { threadCache = new RegexCache; }
        Owner(const Owner&) = delete;
        Owner& operator=(const Owner&) = delete;
        ~Owner() {
            delete std::exchange(threadCache, nullptr);
            isThreadEnding = true;
        }
    };
    if (threadCache == nullptr && !isThreadEnding && HasMemoryForThreadExit()) {
        thread_local const Owner owner;
        static_cast<void>(owner);
    }
    return threadCache;
}

} // namespace

const RegexProgram* GetCachedRegex(std::wstring_view pattern, RegexOptions options) {
    RegexCache* const cache = GetThreadCache();
    return cache != nullptr ? cache->Get(pattern, options) : RegexProgram::Compile(pattern, options);
}

} // namespace OrvUQL::platform
