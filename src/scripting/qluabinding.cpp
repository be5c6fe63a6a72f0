#include "qluabinding.h"

#include <QObject>

#include <cmath>
#include <limits>
#include <new>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
}

namespace LuaBind {

namespace {

const char *const objectMeta = "bf_object";
const char *const objectCache = "bf_objects";
const char *const ownedKey = "bf_owned";

// Plain data, so that a __gc called on it twice (or a use after it) finds
// null pointers rather than a destroyed C++ object.
struct Box
{
    QPointer<QObject> *object;
    const Class *cls;
};

Box *box(lua_State *L, int index)
{
    if (lua_type(L, index) != LUA_TUSERDATA || !lua_getmetatable(L, index))
        return nullptr;
    luaL_getmetatable(L, objectMeta);
    const bool ours = lua_rawequal(L, -1, -2);
    lua_pop(L, 2);
    return ours ? static_cast<Box *>(lua_touserdata(L, index)) : nullptr;
}

const char *typeName(lua_State *L, int index)
{
    if (Box *b = box(L, index))
        return b->cls->name;
    return lua_typename(L, lua_type(L, index));
}

const Property *findProperty(const Class *cls, const char *name)
{
    for (; cls; cls = cls->base) {
        for (const Property &p : cls->properties) {
            if (qstrcmp(p.name, name) == 0)
                return &p;
        }
    }
    return nullptr;
}

const Constant *findConstant(const Class *cls, const char *name)
{
    for (; cls; cls = cls->base) {
        for (const Constant &c : cls->constants) {
            if (qstrcmp(c.name, name) == 0)
                return &c;
        }
    }
    return nullptr;
}

QObject *live(const Box *b)
{
    QObject *o = b->object ? b->object->data() : nullptr;
    if (!o)
        fail(QStringLiteral("this %1 no longer exists (it was closed or deleted)").arg(QLatin1String(b->cls->name)));
    return o;
}

// Method call: upvalue 1 is the Function, upvalue 2 the class that has it.
int callMethod(lua_State *L)
{
    const auto *f = static_cast<const Function *>(lua_touserdata(L, lua_upvalueindex(1)));
    const auto *owner = static_cast<const Class *>(lua_touserdata(L, lua_upvalueindex(2)));
    Box *b = box(L, 1);
    if (!b || !b->cls->isA(owner))
        fail(QStringLiteral("'%1' is a method of %2: call it as object:%1(...)")
                 .arg(QLatin1String(f->name), QLatin1String(owner->name)));
    return f->call(L, live(b));
}

int objectIndex(lua_State *L)
{
    Box *b = box(L, 1);
    if (!b)
        fail(QStringLiteral("not an object"));
    if (lua_type(L, 2) != LUA_TSTRING) {
        lua_pushnil(L);
        return 1;
    }
    const char *key = lua_tostring(L, 2);
    if (const Property *p = findProperty(b->cls, key))
        return p->get(L, live(b));
    for (const Class *c = b->cls; c; c = c->base) {
        for (const Function &f : c->methods) {
            if (qstrcmp(f.name, key) == 0) {
                lua_pushlightuserdata(L, const_cast<Function *>(&f));
                lua_pushlightuserdata(L, const_cast<Class *>(c));
                lua_pushcclosure(L, guarded<callMethod>, 2);
                return 1;
            }
        }
    }
    if (const Constant *c = findConstant(b->cls, key)) {
        lua_pushnumber(L, c->value);
        return 1;
    }
    lua_pushnil(L);
    return 1;
}

int objectNewIndex(lua_State *L)
{
    Box *b = box(L, 1);
    if (!b)
        fail(QStringLiteral("not an object"));
    const char *key = lua_type(L, 2) == LUA_TSTRING ? lua_tostring(L, 2) : "?";
    const Property *p = findProperty(b->cls, key);
    if (!p)
        fail(QStringLiteral("%1 has no property '%2'").arg(QLatin1String(b->cls->name), QString::fromUtf8(key)));
    if (!p->set)
        fail(QStringLiteral("%1.%2 can only be read").arg(QLatin1String(b->cls->name), QString::fromUtf8(key)));
    // The setter sees the value at index 2, as a method sees its first argument.
    lua_remove(L, 2);
    p->set(L, live(b));
    return 0;
}

int objectGc(lua_State *L)
{
    if (Box *b = box(L, 1)) {
        delete b->object;
        b->object = nullptr;
    }
    return 0;
}

int objectToString(lua_State *L)
{
    Box *b = box(L, 1);
    lua_pushfstring(L, "%s: %p", b ? b->cls->name : "object", b && b->object ? b->object->data() : nullptr);
    return 1;
}

int classCall(lua_State *L)
{
    const auto *cls = static_cast<const Class *>(lua_touserdata(L, lua_upvalueindex(1)));
    lua_remove(L, 1); // the class table
    QObject *o = cls->create(L);
    pushOwned(L, o, *cls);
    return 1;
}

int classNoCall(lua_State *L)
{
    const auto *cls = static_cast<const Class *>(lua_touserdata(L, lua_upvalueindex(1)));
    fail(QStringLiteral("%1 objects are not made by scripts").arg(QLatin1String(cls->name)));
}

int unavailable(lua_State *L)
{
    fail(QString::fromUtf8(lua_tostring(L, lua_upvalueindex(1))));
}

void pushBox(lua_State *L, QObject *object, const Class &cls, bool owned)
{
    if (!object) {
        lua_pushnil(L);
        return;
    }
    lua_getfield(L, LUA_REGISTRYINDEX, objectCache);
    lua_pushlightuserdata(L, object);
    lua_rawget(L, -2);
    if (Box *b = box(L, -1)) {
        // A more derived class than the one it was first pushed as wins.
        if (cls.isA(b->cls))
            b->cls = &cls;
        lua_remove(L, -2);
        return;
    }
    lua_pop(L, 1);
    auto *b = static_cast<Box *>(lua_newuserdata(L, sizeof(Box)));
    b->object = nullptr;
    b->cls = &cls;
    luaL_getmetatable(L, objectMeta);
    lua_setmetatable(L, -2);
    b->object = new QPointer<QObject>(object);
    lua_pushlightuserdata(L, object);
    lua_pushvalue(L, -2);
    lua_rawset(L, -4);
    lua_remove(L, -2);
    if (owned) {
        lua_getfield(L, LUA_REGISTRYINDEX, ownedKey);
        auto *list = static_cast<std::vector<QPointer<QObject>> *>(lua_touserdata(L, -1));
        lua_pop(L, 1);
        if (list)
            list->push_back(object);
    }
}

} // namespace

bool Class::isA(const Class *other) const
{
    for (const Class *c = this; c; c = c->base) {
        if (c == other)
            return true;
    }
    return false;
}

void fail(const QString &text)
{
    throw Error{text};
}

void argError(lua_State *L, int index, const char *expected)
{
    fail(QStringLiteral("bad argument #%1 (%2 expected, got %3)")
             .arg(index)
             .arg(QLatin1String(expected), QLatin1String(typeName(L, index))));
}

int guard(lua_State *L, int (*fn)(lua_State *))
{
    int results = 0;
    bool failed = false;
    try {
        results = fn(L);
    } catch (const Error &e) {
        const QByteArray text = e.text.toUtf8();
        lua_pushlstring(L, text.constData(), size_t(text.size()));
        failed = true;
    } catch (const std::bad_alloc &) {
        lua_pushliteral(L, "not enough memory");
        failed = true;
    }
    // Nothing of C++ is alive any more: unwinding past this frame is safe.
    if (failed) {
        luaL_where(L, 1);
        lua_insert(L, -2);
        lua_concat(L, 2);
        return lua_error(L);
    }
    return results;
}

void open(lua_State *L, std::vector<QPointer<QObject>> *owned)
{
    luaL_newmetatable(L, objectMeta);
    lua_pushcfunction(L, guarded<objectIndex>);
    lua_setfield(L, -2, "__index");
    lua_pushcfunction(L, guarded<objectNewIndex>);
    lua_setfield(L, -2, "__newindex");
    lua_pushcfunction(L, objectGc);
    lua_setfield(L, -2, "__gc");
    lua_pushcfunction(L, objectToString);
    lua_setfield(L, -2, "__tostring");
    // getmetatable() from a script gets this string, not the table.
    lua_pushliteral(L, "locked");
    lua_setfield(L, -2, "__metatable");
    lua_pop(L, 1);
    lua_newtable(L);
    lua_setfield(L, LUA_REGISTRYINDEX, objectCache);
    lua_pushlightuserdata(L, owned);
    lua_setfield(L, LUA_REGISTRYINDEX, ownedKey);
}

void registerClass(lua_State *L, const Class &cls)
{
    lua_newtable(L);
    for (const Class *c = &cls; c; c = c->base) {
        for (const Constant &k : c->constants) {
            lua_pushnumber(L, k.value);
            lua_setfield(L, -2, k.name);
        }
    }
    lua_newtable(L);
    lua_pushlightuserdata(L, const_cast<Class *>(&cls));
    lua_pushcclosure(L, cls.create ? guarded<classCall> : guarded<classNoCall>, 1);
    lua_setfield(L, -2, "__call");
    lua_setmetatable(L, -2);
    lua_setglobal(L, cls.name);
}

void registerUnavailable(lua_State *L, const char *name, const char *why)
{
    lua_newtable(L);
    lua_newtable(L);
    lua_pushstring(L, why);
    lua_pushcclosure(L, guarded<unavailable>, 1);
    lua_pushvalue(L, -1);
    lua_setfield(L, -3, "__call");
    lua_setfield(L, -2, "__index");
    lua_setmetatable(L, -2);
    lua_setglobal(L, name);
}

void push(lua_State *L, QObject *object, const Class &cls)
{
    pushBox(L, object, cls, false);
}

void pushOwned(lua_State *L, QObject *object, const Class &cls)
{
    pushBox(L, object, cls, true);
}

void pushString(lua_State *L, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    lua_pushlstring(L, bytes.constData(), size_t(bytes.size()));
}

int pushBool(lua_State *L, bool value)
{
    lua_pushboolean(L, value);
    return 1;
}

int pushNumber(lua_State *L, double value)
{
    lua_pushnumber(L, value);
    return 1;
}

int pushText(lua_State *L, const QString &text)
{
    pushString(L, text);
    return 1;
}

bool isObject(lua_State *L, int index)
{
    return box(L, index) != nullptr;
}

QObject *toObject(lua_State *L, int index, const Class &cls)
{
    Box *b = box(L, index);
    if (!b || !b->cls->isA(&cls))
        argError(L, index, cls.name);
    return live(b);
}

double toNumber(lua_State *L, int index)
{
    if (lua_type(L, index) != LUA_TNUMBER)
        argError(L, index, "number");
    return lua_tonumber(L, index);
}

int toInt(lua_State *L, int index)
{
    const double v = toNumber(L, index);
    if (!std::isfinite(v) || v < double(std::numeric_limits<int>::min()) || v > double(std::numeric_limits<int>::max()))
        argError(L, index, "integer in range");
    return int(v);
}

unsigned toUInt(lua_State *L, int index)
{
    const double v = toNumber(L, index);
    if (!std::isfinite(v) || v < 0 || v > double(std::numeric_limits<unsigned>::max()))
        argError(L, index, "non-negative integer");
    return unsigned(v);
}

bool toBool(lua_State *L, int index)
{
    if (lua_type(L, index) != LUA_TBOOLEAN)
        argError(L, index, "boolean");
    return lua_toboolean(L, index) != 0;
}

QString toString(lua_State *L, int index)
{
    if (lua_type(L, index) != LUA_TSTRING && lua_type(L, index) != LUA_TNUMBER)
        argError(L, index, "string");
    size_t length = 0;
    const char *s = lua_tolstring(L, index, &length);
    return QString::fromUtf8(s, qsizetype(length));
}

} // namespace LuaBind
