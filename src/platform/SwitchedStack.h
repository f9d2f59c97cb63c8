#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <type_traits>

namespace OrvUQL::platform {

/// A stack beside the thread's own, for work that recurses deeper than a host's thread may have room for. Memory is
/// taken as it is used, and given back by Close. Belongs to the thread that uses it.
class SwitchedStack {
public:
    SwitchedStack() noexcept = default;
    SwitchedStack(const SwitchedStack&) = delete;
    SwitchedStack& operator=(const SwitchedStack&) = delete;
    ~SwitchedStack() { Close(); }

    /// Makes a stack of `size` bytes, or of half, a quarter, ... of it down to `least` where the system refuses more.
    /// False if there is none to be had.
    bool Open(std::size_t size, std::size_t least) noexcept;

    bool IsOpen() const noexcept { return memory != nullptr; }

    void Close() noexcept;

    /// The lowest address that may be used.
    std::uintptr_t GetLow() const noexcept { return low; }

    /// Runs `body` on the open stack, not within another Run of it. What it throws is thrown on.
    template <class Body> void Run(Body&& body) {
        struct Call {
            std::remove_reference_t<Body>* body;
            std::exception_ptr thrown;
        } call{std::addressof(body), nullptr};
        Switch(
            [](void* argument) {
                Call& inside = *static_cast<Call*>(argument);
                // An exception cannot pass from one stack to another.
                try {
                    (*inside.body)();
                } catch (...) {
                    inside.thrown = std::current_exception();
                }
            },
            &call);
        if (call.thrown) {
            std::rethrow_exception(std::move(call.thrown));
        }
    }

    /// The greatest size that makes sense: what the machine can give to one match without starving everything else.
    static std::size_t GetMaximum() noexcept;

private:
    void* memory = nullptr;
    std::size_t bytes = 0;
    std::uintptr_t low = 0;
    std::uintptr_t top = 0;

    void Switch(void (*function)(void*), void* argument);
};

} // namespace OrvUQL::platform
