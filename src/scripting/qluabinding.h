#pragma once

#include <QPointer>
#include <QString>

#include <initializer_list>
#include <vector>

class QObject;
struct lua_State;

// A small binding of Qt objects into Lua. An object reaches a script as a
// userdata that holds a guarded pointer: the object stays the program's, and
// once it is deleted every use from Lua is an error instead of a stale
// pointer. Classes are tables of properties, methods and constants; a class
// with a constructor is a callable global of its name.
//
// The functions a class lists never call lua_error themselves: they throw
// LuaBind::Error, which the binding turns into a Lua error once no C++ object
// is left on the stack (Lua 5.1 unwinds with longjmp).
namespace LuaBind {

struct Error
{
    QString text;
};

// self is never null when these run; arguments start at index 2 for methods
// and setters (index 1 is the object).
using Getter = int (*)(lua_State *L, QObject *self);
using Setter = void (*)(lua_State *L, QObject *self);
using Method = int (*)(lua_State *L, QObject *self);
// Arguments from index 1; returns the new object, which the script owns.
using Constructor = QObject *(*)(lua_State *L);

struct Property
{
    const char *name;
    Getter get;
    Setter set; // null: read-only
};

struct Function
{
    const char *name;
    Method call;
};

struct Constant
{
    const char *name;
    double value;
};

struct Class
{
    const char *name;
    const Class *base = nullptr;
    std::vector<Property> properties;
    std::vector<Function> methods;
    std::vector<Constant> constants;
    Constructor create = nullptr;
    // Asked when a getter returns an object whose exact class is not known
    // beforehand (a layout of a dialog): the most derived class that fits.
    bool isA(const Class *other) const;
};

// Sets up the object metatable; once per state, before anything else here.
// Objects that scripts make are listed in `owned`, for the caller to delete
// after lua_close (a garbage collection can't know whether a widget has been
// handed to a layout).
void open(lua_State *L, std::vector<QPointer<QObject>> *owned);
// Makes the global table of the class: its constants and, if it has one, its
// constructor.
void registerClass(lua_State *L, const Class &cls);
// A global that stands for a class that can't be used here: any use of it is
// the error `why`.
void registerUnavailable(lua_State *L, const char *name, const char *why);

// Pushes the object (nil for null). The same object pushed twice in one state
// is the same userdata. Objects made by a script are deleted with the state,
// unless something of the program's has adopted them by then.
void push(lua_State *L, QObject *object, const Class &cls);
void pushOwned(lua_State *L, QObject *object, const Class &cls);
void pushString(lua_State *L, const QString &text);
// One result for a getter or method: push the value and return 1.
int pushBool(lua_State *L, bool value);
int pushNumber(lua_State *L, double value);
int pushText(lua_State *L, const QString &text);

// Argument checks; each throws Error with the argument's number and what was
// expected.
QObject *toObject(lua_State *L, int index, const Class &cls);
int toInt(lua_State *L, int index);
unsigned toUInt(lua_State *L, int index);
double toNumber(lua_State *L, int index);
bool toBool(lua_State *L, int index);
QString toString(lua_State *L, int index);
bool isObject(lua_State *L, int index);

// Calls fn with Error turned into a Lua error.
int guard(lua_State *L, int (*fn)(lua_State *));
template <int (*F)(lua_State *)>
int guarded(lua_State *L)
{
    return guard(L, F);
}

[[noreturn]] void fail(const QString &text);
[[noreturn]] void argError(lua_State *L, int index, const char *expected);

} // namespace LuaBind
