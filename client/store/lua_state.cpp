// client/store/lua_state.cpp: a Lua state with bounds.
#include "client/store/lua_state.h"

#include <cstdlib>
#include <ctime>

#include "client/store/lua_patterns.h"

namespace pavex {

namespace {

constexpr size_t kMostMemory = size_t{16} * 1024 * 1024;  // bytes
constexpr int64_t kMostInstructions = 1000000;            // of one call
constexpr int kCheckedInstructions = 1000;                // between two looks at the limits
constexpr int64_t kMostHundredths = 100;                  // of processor time of one call

constexpr luaL_Reg kLibraries[] = {
    {LUA_STRLIBNAME, luaopen_string},
    {LUA_MATHLIBNAME, luaopen_math},
    {LUA_UTF8LIBNAME, luaopen_utf8},
};

int64_t ThreadHundredths()
{
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return int64_t{used.tv_sec} * 100 + used.tv_nsec / 10000000;
}

// The state's owner, kept in the room that Lua leaves before each state.
LuaState*& OwnerOf(lua_State* lua)
{
    return *static_cast<LuaState**>(lua_getextraspace(lua));
}

int OpenLibraries(lua_State* lua)
{
    for (const luaL_Reg& library : kLibraries) {
        luaL_requiref(lua, library.name, library.func, 1);
        lua_pop(lua, 1);
    }
    GuardPatternFunctions(lua);
    return 0;
}

}  // namespace

void LuaState::CheckLimits(lua_State* lua, lua_Debug*)
{
    LuaState* const owner = OwnerOf(lua);
    owner->instructions_ += kCheckedInstructions;
    if (owner->instructions_ > kMostInstructions || ThreadHundredths() > owner->deadlineHundredths_)
        luaL_error(lua, "the formula takes too long");
}

void* LuaState::Allocate(void* context, void* block, size_t oldBytes, size_t newBytes)
{
    size_t& inUse = *static_cast<size_t*>(context);
    if (block == nullptr)
        oldBytes = 0;  // Lua tells the kind of object there
    if (newBytes == 0) {
        std::free(block);
        inUse -= oldBytes;
        return nullptr;
    }
    if (newBytes > oldBytes && inUse - oldBytes + newBytes > kMostMemory)
        return nullptr;
    void* const moved = std::realloc(block, newBytes);
    if (moved != nullptr)
        inUse = inUse - oldBytes + newBytes;
    return moved;
}

LuaState::LuaState() : state_(lua_newstate(Allocate, &bytes_))
{
    if (state_ == nullptr)
        return;
    lua_pushcfunction(state_.get(), OpenLibraries);
    if (lua_pcall(state_.get(), 0, 0, 0) != LUA_OK)
        state_.reset();
}

bool LuaState::Call(int arguments, int results)
{
    lua_State* const lua = state_.get();
    OwnerOf(lua) = this;
    instructions_ = 0;
    deadlineHundredths_ = ThreadHundredths() + kMostHundredths;
    lua_sethook(lua, CheckLimits, LUA_MASKCOUNT, kCheckedInstructions);
    const bool done = lua_pcall(lua, arguments, results, 0) == LUA_OK;
    lua_sethook(lua, nullptr, 0, 0);
    if (!done)
        lua_pop(lua, 1);  // the message: the caller knows only that it failed
    return done;
}

}  // namespace pavex
