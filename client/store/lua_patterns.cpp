// client/store/lua_patterns.cpp: bounds for the pattern functions of formulas.
#include "client/store/lua_patterns.h"

#include <cstddef>
#include <cstring>
#include <lua.hpp>
#include <string_view>

namespace pavex {

namespace {

constexpr double kMostSteps = 3e8;
constexpr const char* kGuarded[] = {"find", "match", "gmatch", "gsub"};

// Places where matching may try one length after the other.
int OpenRepetitions(std::string_view pattern)
{
    int open = 0;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '%' && i + 1 < pattern.size()) {
            ++i;
            const char escaped = pattern[i];
            open += escaped == 'b' || (escaped >= '1' && escaped <= '9') ? 1 : 0;  // each looks through the text
        } else if (c == '*' || c == '+' || c == '-' || c == '?') {
            ++open;  // in a set it is none, which errs to the safe side
        }
    }
    return open;
}

// Ways to spread the text over the repetitions, from each of its places.
double MostSteps(size_t textBytes, std::string_view pattern)
{
    const auto bytes = static_cast<double>(textBytes);
    double steps = pattern.starts_with('^') ? 1 : bytes + 1;
    for (int i = 1; i <= OpenRepetitions(pattern); ++i)
        steps *= (bytes + i) / i;
    return steps;
}

// The function it guards is its upvalue.
int CallGuarded(lua_State* lua)
{
    size_t textBytes = 0;
    size_t patternBytes = 0;
    luaL_checklstring(lua, 1, &textBytes);
    const char* const pattern = luaL_checklstring(lua, 2, &patternBytes);
    if (MostSteps(textBytes, {pattern, patternBytes}) > kMostSteps)
        return luaL_error(lua, "the pattern could take too long");
    lua_pushvalue(lua, lua_upvalueindex(1));
    lua_insert(lua, 1);
    lua_call(lua, lua_gettop(lua) - 1, LUA_MULTRET);
    return lua_gettop(lua);
}

}  // namespace

void GuardPatternFunctions(lua_State* lua)
{
    lua_getglobal(lua, LUA_STRLIBNAME);
    for (const char* const name : kGuarded) {
        lua_getfield(lua, -1, name);
        lua_pushcclosure(lua, CallGuarded, 1);
        lua_setfield(lua, -2, name);
    }
    lua_pushnil(lua);
    lua_setfield(lua, -2, "dump");  // functions are not for reading
    lua_pop(lua, 1);
}

}  // namespace pavex
