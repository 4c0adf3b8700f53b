// client/store/lua_patterns.h: bounds for the pattern functions of formulas.
#pragma once

struct lua_State;

namespace pavex {

// Replaces find, match, gmatch and gsub in the state's string table by guarded ones.  Matching runs inside
// one library call, where no instruction limit reaches it, and a pattern with a few open repetitions
// can take years on a short text: a call that could take more than a second or so raises an error instead.
void GuardPatternFunctions(lua_State* lua);

}  // namespace pavex
