#include "platform/SwitchedStack.h"

#include "platform/Thread.h"

#include <algorithm>
#include <memory>
#include <new>

#include <windows.h>

namespace OrvUQL::platform {

// The stack is a fiber's: Windows itself then knows its bounds, for exceptions as for HasStack.

namespace {

struct Fiber {
    void* handle = nullptr;

    // What to run, and which fiber has called; set for each Switch.
    void (*function)(void*) = nullptr;
    void* argument = nullptr;
    void* caller = nullptr;
};

// Comes back for the next Switch, on whichever thread that is: a fiber that returned would end its thread.
void WINAPI Serve(void* parameter) {
    Fiber& fiber = *static_cast<Fiber*>(parameter);
    for (;;) {
        fiber.function(fiber.argument);
        SwitchToFiber(fiber.caller);
    }
}

/// Only a fiber can switch to another. A host's own fiber stays what it is; a thread is made one for the time.
class CallingFiber {
public:
    CallingFiber() {
        if (IsThreadAFiber() != FALSE) {
            handle = GetCurrentFiber();
            return;
        }
        handle = ConvertThreadToFiberEx(nullptr, FIBER_FLAG_FLOAT_SWITCH);
        if (handle == nullptr) {
            throw std::bad_alloc();
        }
        isConverted = true;
    }
    CallingFiber(const CallingFiber&) = delete;
    CallingFiber& operator=(const CallingFiber&) = delete;
    ~CallingFiber() {
        if (isConverted) {
            ConvertFiberToThread();
        }
    }

    void* Handle() const noexcept { return handle; }

private:
    void* handle = nullptr;
    bool isConverted = false;
};

} // namespace

bool SwitchedStack::Open(std::size_t size, std::size_t least) noexcept {
    Close();
    std::unique_ptr<Fiber> fiber(new (std::nothrow) Fiber);
    if (fiber == nullptr) {
        return false;
    }
    for (std::size_t wanted = size; wanted >= least && wanted != 0; wanted /= 2) {
        // All of it is promised now. A stack that grows as it is used would end the process where the system has no
        // more to give; a promise costs no memory until it is used, and can be refused.
        fiber->handle = CreateFiberEx(wanted, wanted, FIBER_FLAG_FLOAT_SWITCH, Serve, fiber.get());
        if (fiber->handle != nullptr) {
            memory = fiber.release();
            bytes = wanted;
            return true;
        }
    }
    return false;
}

void SwitchedStack::Close() noexcept {
    if (memory != nullptr) {
        const std::unique_ptr<Fiber> fiber(static_cast<Fiber*>(memory));
        DeleteFiber(fiber->handle);
        memory = nullptr;
    }
}

void SwitchedStack::Switch(void (*function)(void*), void* argument) {
    struct Call {
        SwitchedStack* stack;
        void (*function)(void*);
        void* argument;
    } call{this, function, argument};
    Fiber& fiber = *static_cast<Fiber*>(memory);
    const CallingFiber caller;
    fiber.function = [](void* parameter) {
        const Call& inside = *static_cast<Call*>(parameter);
        // Only from inside can be told where the stack lies.
        const StackBounds bounds = KnownStack();
        inside.stack->low = bounds.low;
        inside.stack->top = bounds.low + bounds.size;
        inside.function(inside.argument);
    };
    fiber.argument = &call;
    fiber.caller = caller.Handle();
    SwitchToFiber(fiber.handle);
}

std::size_t SwitchedStack::GetMaximum() noexcept {
    constexpr std::size_t most = std::size_t{1} << 30;
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    // Wine answers a thread with zeros while another one is the first to ask.
    return GlobalMemoryStatusEx(&status) == FALSE || status.ullTotalPhys == 0
               ? most / 4
               : std::min<std::size_t>(most, static_cast<std::size_t>(status.ullTotalPhys / 4));
}

} // namespace OrvUQL::platform
