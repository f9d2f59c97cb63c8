#include "LuaEngine.h"

#include "Record.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace OrvUQL::bench {

namespace {

void* CountingAllocator(void* count, void* block, std::size_t, std::size_t size) {
    if (size == 0) {
        std::free(block);
        return nullptr;
    }
    ++*static_cast<std::size_t*>(count);
    return std::realloc(block, size);
}

void PushText(lua_State* lua, const std::string& text) { lua_pushlstring(lua, text.data(), text.size()); }

struct FieldRow {
    const char* name;
    void (*push)(lua_State* lua, const Record& record);
};

constexpr FieldRow fields[] = {
    {"a", [](lua_State* lua, const Record& record) { lua_pushinteger(lua, record.a); }},
    {"b", [](lua_State* lua, const Record& record) { PushText(lua, record.b); }},
    {"c", [](lua_State* lua, const Record& record) { lua_pushinteger(lua, record.c); }},
    {"name", [](lua_State* lua, const Record& record) { PushText(lua, record.name); }},
    {"price", [](lua_State* lua, const Record& record) { lua_pushnumber(lua, record.price); }},
    {"quantity", [](lua_State* lua, const Record& record) { lua_pushinteger(lua, record.quantity); }},
    {"weight", [](lua_State* lua, const Record& record) { lua_pushnumber(lua, record.weight); }},
};

/// `record[key]` of a userdata: the upvalue maps names to rows of the list above, since Lua finds a text that it
/// knows faster than any comparison here could.
int IndexRecord(lua_State* lua) {
    lua_pushvalue(lua, 2);
    if (lua_rawget(lua, lua_upvalueindex(1)) != LUA_TNUMBER) {
        return luaL_error(lua, "unknown field");
    }
    const Record* const record = *static_cast<const Record**>(lua_touserdata(lua, 1));
    fields[lua_tointeger(lua, -1)].push(lua, *record);
    return 1;
}

void PushUserdata(lua_State* lua) {
    lua_newuserdatauv(lua, sizeof(const Record*), 0);
    lua_newtable(lua);
    lua_newtable(lua);
    lua_Integer row = 0;
    for (const FieldRow& field : fields) {
        lua_pushinteger(lua, row++);
        lua_setfield(lua, -2, field.name);
    }
    lua_pushcclosure(lua, IndexRecord, 1);
    lua_setfield(lua, -2, "__index");
    lua_setmetatable(lua, -2);
}

void PushTables(lua_State* lua) {
    lua_createtable(lua, static_cast<int>(Records().size()), 0);
    lua_Integer position = 0;
    for (const Record& record : Records()) {
        lua_newtable(lua);
        for (const FieldRow& field : fields) {
            field.push(lua, record);
            lua_setfield(lua, -2, field.name);
        }
        lua_rawseti(lua, -2, ++position);
    }
}

} // namespace

LuaEngine::LuaEngine(const Case& test, Source recordSource)
    : owner(lua_newstate(CountingAllocator, &allocations)),
      lua(owner.get()),
      source(recordSource),
      reading(Reading::Text),
      text("local r = ... return " + test.lua) {
    if (lua == nullptr) {
        throw std::bad_alloc();
    }
    if (std::holds_alternative<bool>(test.answer)) {
        reading = Reading::Truth;
    } else if (std::holds_alternative<double>(test.answer)) {
        reading = Reading::Number;
    }
    luaL_openlibs(lua);
    Compile();
    if (source == Source::Userdata) {
        PushUserdata(lua);
        lua_pushnil(lua);
    } else {
        lua_pushnil(lua);
        PushTables(lua);
    }
    Select(0);
}

void LuaEngine::Select(std::size_t record) {
    if (source == Source::Userdata) {
        *static_cast<const Record**>(lua_touserdata(lua, recordSlot)) = &Records()[record];
    } else {
        lua_rawgeti(lua, tablesSlot, static_cast<lua_Integer>(record) + 1);
        lua_replace(lua, recordSlot);
    }
}

Answer LuaEngine::GetAnswer() {
    lua_pushvalue(lua, functionSlot);
    lua_pushvalue(lua, recordSlot);
    if (lua_pcall(lua, 1, 1, 0) != LUA_OK) {
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
    kept.push_back(luaL_ref(lua, LUA_REGISTRYINDEX));
}

void LuaEngine::Drop() {
    for (const int reference : kept) {
        luaL_unref(lua, LUA_REGISTRYINDEX, reference);
    }
    kept.clear();
}

void LuaEngine::Compile() {
    if (luaL_loadbufferx(lua, text.data(), text.size(), "=query", "t") != LUA_OK) {
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
