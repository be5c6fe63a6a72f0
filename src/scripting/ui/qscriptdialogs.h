#pragma once

struct lua_State;

// The dialog classes of the scripting API (Widget to Slider), put into a
// state in place of the stand-ins that only say dialogs are unavailable.
namespace ScriptDialogs {

void registerClasses(lua_State *L);

} // namespace ScriptDialogs
