#include "LuaEngine.h"

#include "Program.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace OrvUQL::bench {

namespace {

/// Whether the host's values are global variables, set for each call, instead of arguments: simpler for the host, and
/// slower.
#if ORVUQL_BENCH_GLOBALS
constexpr bool usesGlobals = true;
#else
constexpr bool usesGlobals = false;
#endif

/// What a host's library for lists would hold.
constexpr const char* library = R"(
function filter(list, keep)
    local kept, count = {}, 0
    for i = 1, #list do
        local item = list[i]
        if keep(item) then
            count = count + 1
            kept[count] = item
        end
    end
    return kept
end

function convert(list, change)
    local changed = {}
    for i = 1, #list do
        changed[i] = change(list[i])
    end
    return changed
end

function fold(list, first, combine)
    local last = first
    for i = 1, #list do
        last = combine(last, list[i])
    end
    return last
end

function unique(list)
    local seen, kept, count = {}, {}, 0
    for i = 1, #list do
        local item = list[i]
        if not seen[item] then
            seen[item] = true
            count = count + 1
            kept[count] = item
        end
    end
    return kept
end

function last(list)
    return list[#list]
end

function trim(text)
    return text:match('^[ \t]*(.-)[ \t]*$')
end
)";

#if !defined(LUAJIT_VERSION)
void* CountingAllocator(void* count, void* block, std::size_t, std::size_t size) {
    if (size == 0) {
        std::free(block);
        return nullptr;
    }
    ++*static_cast<std::size_t*>(count);
    return std::realloc(block, size);
}
#endif

lua_State* NewState([[maybe_unused]] std::size_t* allocations) {
#if defined(LUAJIT_VERSION)
    lua_State* const lua = luaL_newstate(); // takes no allocator of ours on 64 bits
    if (lua != nullptr) {
        luaL_openlibs(lua); // one of the libraries switches the compiler on
        if (!ORVUQL_BENCH_JIT) {
            luaJIT_setmode(lua, 0, LUAJIT_MODE_ENGINE | LUAJIT_MODE_OFF);
        }
    }
#else
    lua_State* const lua = lua_newstate(CountingAllocator, allocations);
    if (lua != nullptr) {
        luaL_openlibs(lua);
    }
#endif
    return lua;
}

/// Lists are not made anew: each lies in a slot of the stack.
void Push(lua_State* lua, const Value& value, int listSlot) {
    if (const int* const whole = std::get_if<int>(&value)) {
        lua_pushinteger(lua, *whole);
    } else if (const double* const real = std::get_if<double>(&value)) {
        lua_pushnumber(lua, *real);
    } else if (const std::string* const text = std::get_if<std::string>(&value)) {
        lua_pushlstring(lua, text->data(), text->size());
    } else {
        lua_pushvalue(lua, listSlot);
    }
}

void PushList(lua_State* lua, List list) {
    lua_createtable(lua, list.count, 0);
    int position = 0;
    for (const int number : NumbersOf(list)) {
        lua_pushinteger(lua, number);
        lua_rawseti(lua, -2, ++position);
    }
}

/// `record[key]` of a userdata: the upvalue maps names to positions in the record, since Lua finds a text that it
/// knows faster than any comparison here could.
int IndexRecord(lua_State* lua) {
    lua_pushvalue(lua, 2);
    lua_rawget(lua, lua_upvalueindex(1));
    if (lua_isnil(lua, -1)) {
        return luaL_error(lua, "unknown field");
    }
    const Record& record = ***static_cast<const Record***>(lua_touserdata(lua, 1));
    Push(lua, record[static_cast<std::size_t>(lua_tointeger(lua, -1))].value, 0);
    return 1;
}

void PushUserdata(lua_State* lua, const Record** current) {
    *static_cast<const Record***>(lua_newuserdata(lua, sizeof(const Record**))) = current;
    lua_newtable(lua);
    lua_newtable(lua);
    lua_Integer position = 0;
    for (const Variable& variable : **current) {
        lua_pushinteger(lua, position++);
        lua_setfield(lua, -2, variable.name.c_str());
    }
    lua_pushcclosure(lua, IndexRecord, 1);
    lua_setfield(lua, -2, "__index");
    lua_setmetatable(lua, -2);
}

/// The host's function for one variable; its upvalues are where the record is found, and the position in it.
int ReadVariable(lua_State* lua) {
    const Record& record = **static_cast<const Record**>(lua_touserdata(lua, lua_upvalueindex(1)));
    Push(lua, record[static_cast<std::size_t>(lua_tointeger(lua, lua_upvalueindex(2)))].value, 0);
    return 1;
}

void PushFunction(lua_State* lua, const Record** current, std::size_t position) {
    lua_pushlightuserdata(lua, current);
    lua_pushinteger(lua, static_cast<lua_Integer>(position));
    lua_pushcclosure(lua, ReadVariable, 2);
}

} // namespace

std::string LuaEngine::Version() {
#if defined(LUAJIT_VERSION)
    return LUAJIT_VERSION;
#else
    return LUA_RELEASE;
#endif
}

LuaEngine::LuaEngine(const Case& test)
    : owner(NewState(&allocations)),
      lua(owner.get()),
      records(test.records),
      passing(test.passing),
      current(&records[0]),
      reading(Reading::Text) {
    if (lua == nullptr) {
        throw std::bad_alloc();
    }
    if (std::holds_alternative<bool>(test.answer)) {
        reading = Reading::Truth;
    } else if (std::holds_alternative<double>(test.answer)) {
        reading = Reading::Number;
    }
    std::string parameters;
    if (passing == Passing::Members) {
        parameters = "r";
    } else {
        for (const Variable& variable : *current) {
            parameters += (parameters.empty() ? "" : ", ") + variable.name;
        }
    }
    const bool hasNames = !parameters.empty() && (passing == Passing::Members || !usesGlobals);
    text = (hasNames ? "local " + parameters + " = ... return " : "return ") + test.lua;

    if (luaL_loadstring(lua, library) != LUA_OK || lua_pcall(lua, 0, 0, 0) != LUA_OK) {
        Throw();
    }
    Compile();
    if (passing == Passing::Members) {
        PushUserdata(lua, &current);
        return;
    }
    for (std::size_t position = 0; position < current->size(); ++position) {
        if (const List* const list = std::get_if<List>(&(*current)[position].value)) {
            PushList(lua, *list);
        } else if (passing == Passing::Functions) {
            PushFunction(lua, &current, position);
        } else {
            lua_pushnil(lua);
        }
    }
}

bool LuaEngine::Call(std::size_t position) {
    current = &records[position];
    lua_pushvalue(lua, functionSlot);
    if (passing == Passing::Members) {
        lua_pushvalue(lua, recordSlot);
        return lua_pcall(lua, 1, 1, 0) == LUA_OK;
    }
    int slot = recordSlot;
    for (const Variable& variable : *current) {
        if (passing == Passing::Functions) {
            lua_pushvalue(lua, slot);
        } else {
            Push(lua, variable.value, slot);
        }
        ++slot;
        if (usesGlobals) {
            lua_setglobal(lua, variable.name.c_str());
        }
    }
    return lua_pcall(lua, usesGlobals ? 0 : static_cast<int>(current->size()), 1, 0) == LUA_OK;
}

Answer LuaEngine::GetAnswer(std::size_t record) {
    if (!Call(record)) {
        Throw();
    }
    Answer answer;
    switch (reading) {
    case Reading::Number:
        answer = static_cast<double>(lua_tonumber(lua, -1));
        break;
    case Reading::Truth:
        answer = lua_isboolean(lua, -1) && lua_toboolean(lua, -1) != 0;
        break;
    case Reading::Text: {
        std::size_t length = 0;
        const char* const units = lua_tolstring(lua, -1, &length);
        answer = std::string(units == nullptr ? "" : units, length);
        break;
    }
    }
    lua_pop(lua, 1);
    return answer;
}

void LuaEngine::Parse() {
    Compile();
    lua_pop(lua, 1);
}

void LuaEngine::Keep() {
    Compile();
    luaL_ref(lua, LUA_REGISTRYINDEX);
}

void LuaEngine::Compile() {
    if (luaL_loadbuffer(lua, text.data(), text.size(), "=query") != LUA_OK) {
        Throw();
    }
}

void LuaEngine::Throw() {
    const char* const units = lua_tostring(lua, -1);
    const std::string message = units == nullptr ? "an error that is no text" : units;
    lua_pop(lua, 1);
    throw std::runtime_error(message);
}

} // namespace OrvUQL::bench

int main(int argc, char** argv) { return OrvUQL::bench::RunProgram<OrvUQL::bench::LuaEngine>(argc, argv); }
