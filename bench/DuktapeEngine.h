// Duktape, for comparison: a small, embeddable engine for JavaScript, whose methods of texts and lists, and regular
// expressions, do what those of the query language do.
#pragma once

#include "Cases.h"

#include <cstddef>
#include <duktape.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace OrvUQL::bench {

/// One case in a heap of its own, compiled to a function that is given the record. Failures are thrown as
/// std::runtime_error with Duktape's message. One at a time: the callbacks of a record find it in a global variable.
class DuktapeEngine {
public:
    static std::string Version();
    static const std::string& TextOf(const Case& test) { return test.javaScript; }

    explicit DuktapeEngine(const Case& test);
    DuktapeEngine(const DuktapeEngine&) = delete;
    DuktapeEngine& operator=(const DuktapeEngine&) = delete;
    ~DuktapeEngine() = default;

    double Evaluate();
    Answer GetAnswer(std::size_t record);
    void Parse();
    void Keep();
    void Settle() { duk_gc(duktape, DUK_GC_COMPACT); }
    std::size_t Allocations() const { return allocations; }

private:
    enum StackSlot { functionSlot, keptSlot, recordSlot };
    enum class Reading { Number, Truth, Text };

    void Compile();
    /// Calls the function for a record: its result, or the error, is on the stack's top.
    bool Call(std::size_t record);
    [[noreturn]] void Throw();

    struct Destroy {
        void operator()(duk_context* context) const { duk_destroy_heap(context); }
    };

    std::size_t allocations = 0;
    std::unique_ptr<duk_context, Destroy> owner;
    duk_context* duktape;
    const std::vector<Record>& records;
    Passing passing;
    std::size_t next = 0;
    Reading reading;
    std::string text;
    std::string taken;
    duk_uarridx_t kept = 0;
};

inline double DuktapeEngine::Evaluate() {
    double result = std::numeric_limits<double>::quiet_NaN();
    const bool succeeded = Call(next);
    if (++next == records.size()) {
        next = 0;
    }
    if (succeeded) {
        switch (reading) {
        case Reading::Number:
            result = duk_get_number(duktape, -1);
            break;
        case Reading::Truth:
            result = duk_get_boolean(duktape, -1);
            break;
        case Reading::Text: {
            duk_size_t length = 0;
            const char* const units = duk_get_lstring(duktape, -1, &length);
            if (units != nullptr) {
                taken.assign(units, length);
                result = static_cast<double>(length);
            }
            break;
        }
        }
    }
    duk_pop(duktape);
    return result;
}

} // namespace OrvUQL::bench
