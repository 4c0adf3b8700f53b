// client/store/lua_state.h: a Lua state with bounds.
// It has the libraries string, math and utf8 and nothing else: no files, no loading of code, no globals
// from outside.  A run ends with an error when it takes too many instructions, processor time or memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <lua.hpp>
#include <memory>

namespace pavex {

class LuaState {
public:
    LuaState();  // Get() is null when there is no memory for it
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;

    lua_State* Get() const { return state_.get(); }
    // Calls the function on top of the stack, with its arguments above it, and takes them off.  False for an
    // error, with nothing in their place.
    bool Call(int arguments, int results);

private:
    static void CheckLimits(lua_State* lua, lua_Debug* event);
    static void* Allocate(void* context, void* block, size_t oldBytes, size_t newBytes);

    struct CloseState {
        void operator()(lua_State* state) const { lua_close(state); }
    };
    int64_t instructions_ = 0;        // of the current call
    int64_t deadlineHundredths_ = 0;  // processor time of the thread at which it ends
    size_t bytes_ = 0;                // in use; outlives the state, which is closed first
    std::unique_ptr<lua_State, CloseState> state_;
};

}  // namespace pavex
