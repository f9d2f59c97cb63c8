// Lua, for comparison: a small, fast, embeddable language that hosts use for the same purpose.
#pragma once

#include "Cases.h"

#include <cstddef>
#include <limits>
#include <lua.hpp>
#include <memory>
#include <vector>

namespace OrvUQL::bench {

/// One case in a Lua state of its own, compiled to a function that is given the record. Failures are thrown as
/// std::runtime_error with Lua's message.
class LuaEngine {
public:
    /// What the record is. A userdata asks the host for each field, as "@" does; a table holds copies of all fields
    /// in Lua itself, which spares the way out and back.
    enum class Source { Userdata, Table };

    LuaEngine(const Case& test, Source source);
    LuaEngine(const LuaEngine&) = delete;
    LuaEngine& operator=(const LuaEngine&) = delete;
    ~LuaEngine() = default;

    /// Makes a record the one that the function is given; 0 at first.
    void Select(std::size_t record);

    /// One call, read as UqlEngine::Evaluate() reads its value.
    double Evaluate();

    Answer GetAnswer();

    void Parse();
    void Keep();
    void Drop();

    std::size_t Allocations() const { return allocations; }
    void Settle() { lua_gc(lua, LUA_GCCOLLECT); }

private:
    enum StackSlot { functionSlot = 1, recordSlot, tablesSlot };
    enum class Reading { Number, Truth, Text };

    void Compile();
    [[noreturn]] void Throw();

    struct Close {
        void operator()(lua_State* state) const { lua_close(state); }
    };

    std::size_t allocations = 0;
    std::unique_ptr<lua_State, Close> owner;
    lua_State* lua;
    Source source;
    Reading reading;
    std::string text;
    std::vector<int> kept; // references in Lua's registry
};

inline double LuaEngine::Evaluate() {
    double result = std::numeric_limits<double>::quiet_NaN();
    lua_pushvalue(lua, functionSlot);
    lua_pushvalue(lua, recordSlot);
    if (lua_pcall(lua, 1, 1, 0) == LUA_OK) {
        switch (reading) {
        case Reading::Number:
            result = lua_tonumber(lua, -1);
            break;
        case Reading::Truth:
            result = lua_toboolean(lua, -1);
            break;
        case Reading::Text: {
            std::size_t length = 0;
            lua_tolstring(lua, -1, &length);
            result = static_cast<double>(length);
            break;
        }
        }
    }
    lua_pop(lua, 1);
    return result;
}

} // namespace OrvUQL::bench
