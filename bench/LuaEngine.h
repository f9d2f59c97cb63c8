// Lua, for comparison: a small, fast, embeddable language that hosts use for the same purpose. The same source serves
// Lua 5.4 and LuaJIT; which one is decided by the headers that it is compiled with.
#pragma once

#include "Cases.h"

#include <cstddef>
#include <limits>
#include <lua.hpp>
#include <memory>
#include <string>
#include <vector>

namespace OrvUQL::bench {

/// One case in a Lua state of its own, compiled to a function that is given the record. Failures are thrown as
/// std::runtime_error with Lua's message.
class LuaEngine {
public:
    static std::string Version();
    static const std::string& TextOf(const Case& test) { return test.lua; }

    explicit LuaEngine(const Case& test);
    LuaEngine(const LuaEngine&) = delete;
    LuaEngine& operator=(const LuaEngine&) = delete;
    ~LuaEngine() = default;

    double Evaluate();
    Answer GetAnswer(std::size_t record);
    void Parse();
    void Keep();
    void Settle() { lua_gc(lua, LUA_GCCOLLECT, 0); }
    std::size_t Allocations() const { return allocations; }

private:
    enum StackSlot { functionSlot = 1, recordSlot };
    // (Behind the function lies the record's userdata, or a slot for each variable: its list, its function, or nil.)
    enum class Reading { Number, Truth, Text };

    void Compile();
    /// Calls the function for a record: its result, or the error's message, is on the stack's top.
    bool Call(std::size_t record);
    [[noreturn]] void Throw();

    struct Close {
        void operator()(lua_State* state) const { lua_close(state); }
    };

    std::size_t allocations = 0;
    std::unique_ptr<lua_State, Close> owner;
    lua_State* lua;
    const std::vector<Record>& records;
    Passing passing;
    const Record* current; ///< what the host answers from when it is called back
    std::size_t next = 0;
    Reading reading;
    std::string text;
    std::string taken;
};

inline double LuaEngine::Evaluate() {
    double result = std::numeric_limits<double>::quiet_NaN();
    const bool succeeded = Call(next);
    if (++next == records.size()) {
        next = 0;
    }
    if (succeeded) {
        switch (reading) {
        case Reading::Number:
            result = lua_tonumber(lua, -1);
            break;
        case Reading::Truth:
            result = lua_toboolean(lua, -1);
            break;
        case Reading::Text: {
            std::size_t length = 0;
            const char* const units = lua_tolstring(lua, -1, &length);
            taken.assign(units, length);
            result = static_cast<double>(length);
            break;
        }
        }
    }
    lua_pop(lua, 1);
    return result;
}

} // namespace OrvUQL::bench
