#pragma once

struct lua_State;
class QScriptManager;

namespace LuaBind {
struct Class;
}

// The classes and global functions every script sees.
namespace ScriptApi {

extern const char *const managerKey;

QScriptManager *manager(lua_State *L);
// projectCount, project and the classes Project, Sprites, Animations and
// TextDocument; the dialog classes as stand-ins that say they are not
// available (the interface puts the real ones in their place).
void registerAll(lua_State *L);

const LuaBind::Class &projectClass();
const LuaBind::Class &textDocumentClass();
const LuaBind::Class &spritesClass();
const LuaBind::Class &animationsClass();

} // namespace ScriptApi
