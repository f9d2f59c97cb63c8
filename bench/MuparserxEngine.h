// muParserX, for comparison: an expression evaluator in C++ with numbers and texts, but without lists.
#pragma once

#include "Cases.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::bench {

/// One case in a parser of its own. Failures are thrown as std::runtime_error with its message. It parses when it is
/// first evaluated, so that parsing cannot be measured alone.
class MuparserxEngine {
public:
    static std::string Version();
    static const std::string& TextOf(const Case& test) { return test.muparserx; }

    explicit MuparserxEngine(const Case& test);
    MuparserxEngine(const MuparserxEngine&) = delete;
    MuparserxEngine& operator=(const MuparserxEngine&) = delete;
    ~MuparserxEngine();

    double Evaluate();
    Answer GetAnswer(std::size_t record);
    [[noreturn]] void Parse();
    [[noreturn]] void Keep() { Parse(); }
    void Settle() {}
    static std::optional<std::size_t> Allocations();

private:
    struct State;
    enum class Reading { Number, Truth, Text };

    std::unique_ptr<State> state;
    const std::vector<Record>& records;
    std::size_t next = 0;
    Reading reading;
    std::string taken;
};

} // namespace OrvUQL::bench
