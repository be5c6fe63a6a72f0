#include "qscriptmanager.h"

#include "qluabinding.h"
#include "qscriptapi.h"

#include "base/qlifecyclelog.h"
#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextDocument>

#include <cstdlib>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
#include <lualib.h>
}

namespace {

const char *const tracebackKey = "bf_traceback";
// Instructions between two looks at the clock.
const int hookInterval = 10000;
// How long a script may run before the user is offered to stop it.
const qint64 firstAsk = 5000;
// Tool folders deeper than this are not listed (a link loop stays finite).
const int maxDepth = 8;

void *luaAlloc(void *ud, void *block, size_t oldSize, size_t newSize)
{
    return static_cast<QScriptManager *>(ud)->allocate(block, oldSize, newSize);
}

void countHook(lua_State *L, lua_Debug *)
{
    if (ScriptApi::manager(L)->shouldStop()) {
        lua_pushliteral(L, "the script was stopped");
        lua_error(L);
    }
}

// tostring() on each argument, joined with ", ": one call, one message. The
// pieces are joined on the Lua stack, so that an error of a __tostring
// unwinds no C++ object.
int luaPrint(lua_State *L)
{
    const int n = lua_gettop(L);
    lua_getglobal(L, "tostring");
    lua_pushliteral(L, "");
    for (int i = 1; i <= n; ++i) {
        if (i > 1) {
            lua_pushliteral(L, ", ");
            lua_concat(L, 2);
        }
        lua_pushvalue(L, n + 1);
        lua_pushvalue(L, i);
        lua_call(L, 1, 1);
        if (lua_isstring(L, -1))
            lua_concat(L, 2);
        else
            lua_pop(L, 1);
    }
    size_t length = 0;
    const char *text = lua_tolstring(L, -1, &length);
    emit ScriptApi::manager(L)->printOutput(QString::fromUtf8(text, qsizetype(length)));
    return 0;
}

int luaTranslate(lua_State *L)
{
    const QString text = LuaBind::toString(L, 1);
    LuaBind::pushString(L, QCoreApplication::translate("QScriptManager", text.toUtf8().constData()));
    return 1;
}

int luaUnavailable(lua_State *L)
{
    LuaBind::fail(QString::fromUtf8(lua_tostring(L, lua_upvalueindex(1))));
}

// Error handler of every run: the message with where it came from.
int messageHandler(lua_State *L)
{
    if (!lua_isstring(L, 1)) {
        lua_pushfstring(L, "(error object is a %s value)", luaL_typename(L, 1));
        lua_replace(L, 1);
    }
    lua_getfield(L, LUA_REGISTRYINDEX, tracebackKey);
    if (!lua_isfunction(L, -1)) {
        lua_pop(L, 1);
        return 1;
    }
    lua_pushvalue(L, 1);
    lua_pushinteger(L, 2);
    lua_call(L, 2, 1);
    return 1;
}

// string.rep whose work is bounded by the memory a state may have: the
// library's own one loops n times even for an empty string, out of reach of
// the instruction hook.
int safeRep(lua_State *L)
{
    size_t length = 0;
    luaL_checklstring(L, 1, &length);
    const lua_Number n = luaL_checknumber(L, 2);
    if (length == 0 || !(n >= 1)) {
        lua_pushliteral(L, "");
        return 1;
    }
    if (n * lua_Number(length) > lua_Number(1 << 30))
        return luaL_error(L, "string.rep: the result would be too long");
    lua_pushvalue(L, lua_upvalueindex(1));
    lua_insert(L, 1);
    lua_call(L, lua_gettop(L) - 1, 1);
    return 1;
}

void setField(lua_State *L, const char *table, const char *field, lua_CFunction fn, const char *why = nullptr)
{
    lua_getglobal(L, table);
    if (!lua_istable(L, -1)) {
        lua_pop(L, 1);
        return;
    }
    if (!fn) {
        lua_pushnil(L);
    } else if (why) {
        lua_pushstring(L, why);
        lua_pushcclosure(L, fn, 1);
    } else {
        lua_pushcfunction(L, fn);
    }
    lua_setfield(L, -2, field);
    lua_pop(L, 1);
}

} // namespace

QScriptManager::QScriptManager(const QString &root, QObject *parent)
    : QObject(parent)
    , m_root(root)
{
    rescan();
    QLifecycleLog::record(QStringLiteral("+QScriptManager"));
}

QScriptManager::~QScriptManager()
{
    m_depth = 0;
    close();
    QLifecycleLog::record(QStringLiteral("-QScriptManager"));
}

void QScriptManager::scanFolder(QMap<QString, QString> &list, const QString &folder, const QString &prefix, int depth)
{
    const QDir dir(folder);
    for (const QFileInfo &fi : dir.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString name = fi.fileName();
        if (name.startsWith(QLatin1Char('.')))
            continue;
        if (fi.isDir()) {
            if (depth < maxDepth)
                scanFolder(list, fi.filePath(), prefix + name + QLatin1Char('/'), depth + 1);
        } else if (name.endsWith(QLatin1String(".lua"))) {
            list.insert(prefix + fi.completeBaseName(), fi.filePath());
        }
    }
}

void QScriptManager::rescan()
{
    m_scripts.clear();
    const QDir root(m_root);
    for (const QString &category : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (category.startsWith(QLatin1Char('.')))
            continue;
        scanFolder(m_scripts[category], root.canonicalPath() + QLatin1Char('/') + category, QString(), 0);
    }
}

QMap<QString, QString> QScriptManager::scripts(const QString &category) const
{
    return m_scripts.value(category);
}

void QScriptManager::setProjectSource(std::function<QList<QProject *>()> all, std::function<QProject *()> current)
{
    m_allProjects = std::move(all);
    m_currentProject = std::move(current);
}

QList<QProject *> QScriptManager::projects() const
{
    return m_allProjects ? m_allProjects() : QList<QProject *>();
}

QProject *QScriptManager::currentProject() const
{
    return m_currentProject ? m_currentProject() : nullptr;
}

void *QScriptManager::allocate(void *block, size_t oldSize, size_t newSize)
{
    if (newSize == 0) {
        std::free(block);
        m_memoryUsed -= oldSize;
        return nullptr;
    }
    if (newSize > oldSize && m_memoryLimit && m_memoryUsed - oldSize + newSize > m_memoryLimit)
        return nullptr;
    void *grown = std::realloc(block, newSize);
    if (grown)
        m_memoryUsed = m_memoryUsed - oldSize + newSize;
    return grown;
}

bool QScriptManager::shouldStop()
{
    m_instructions += hookInterval;
    if (m_instructionLimit && m_instructions > m_instructionLimit)
        return true;
    if (m_clock.elapsed() < m_nextAsk)
        return false;
    bool stop = false;
    emit runningLong(&stop);
    // The question took its own time: ask again after as long again.
    m_nextAsk = m_clock.elapsed() + firstAsk;
    return stop;
}

bool QScriptManager::open()
{
    if (m_depth > 0) {
        m_error = tr("Another script is still running.");
        return false;
    }
    close();
    m_memoryUsed = 0;
    m_instructions = 0;
    m_state = lua_newstate(luaAlloc, this);
    if (!m_state) {
        m_error = tr("Not enough memory to run a script.");
        return false;
    }
    lua_State *L = m_state;
    luaL_openlibs(L);
    lua_pushlightuserdata(L, this);
    lua_setfield(L, LUA_REGISTRYINDEX, ScriptApi::managerKey);
    lua_getglobal(L, "debug");
    lua_getfield(L, -1, "traceback");
    lua_setfield(L, LUA_REGISTRYINDEX, tracebackKey);
    lua_pop(L, 1);

    // What would end or corrupt the program rather than the script.
    setField(L, "os", "exit", LuaBind::guarded<luaUnavailable>, "os.exit is not available: return from the script instead");
    setField(L, "debug", "sethook", nullptr);
    setField(L, "debug", "setupvalue", nullptr);
    setField(L, "debug", "setmetatable", nullptr);
    setField(L, "debug", "setlocal", nullptr);
    lua_getglobal(L, "string");
    lua_getfield(L, -1, "rep");
    lua_pushcclosure(L, safeRep, 1);
    lua_setfield(L, -2, "rep");
    lua_pop(L, 1);
    if (m_sandboxed) {
        // Pattern matching can take exponential time inside one library call.
        for (const char *name : {"find", "match", "gmatch", "gsub"})
            setField(L, "string", name, nullptr);
        setField(L, "os", "setlocale", nullptr);
        for (const char *name : {"io", "dofile", "loadfile", "require", "module"}) {
            lua_pushnil(L);
            lua_setglobal(L, name);
        }
        for (const char *name : {"execute", "remove", "rename", "tmpname", "getenv"})
            setField(L, "os", name, nullptr);
        setField(L, "package", "loadlib", nullptr);
    }
    // "require" finds the shared library scripts.
    const QByteArray path = QFile::encodeName(m_root + QStringLiteral("/common/?.lua"));
    lua_getglobal(L, "package");
    if (lua_istable(L, -1)) {
        lua_pushstring(L, path.constData());
        lua_setfield(L, -2, "path");
    }
    lua_pop(L, 1);

    lua_createtable(L, int(m_arguments.size()), 0);
    for (int i = 0; i < m_arguments.size(); ++i) {
        LuaBind::pushString(L, m_arguments.at(i));
        lua_rawseti(L, -2, i + 1);
    }
    lua_setglobal(L, "arg");

    LuaBind::open(L, &m_owned);
    ScriptApi::registerAll(L);
    lua_register(L, "print", luaPrint);
    lua_register(L, "translate", LuaBind::guarded<luaTranslate>);
    lua_sethook(L, countHook, LUA_MASKCOUNT, hookInterval);
    emit registerBinding();
    return true;
}

bool QScriptManager::pcall(int nargs, int nresults)
{
    lua_State *L = m_state;
    const int base = lua_gettop(L) - nargs;
    lua_pushcfunction(L, messageHandler);
    lua_insert(L, base);
    if (m_depth == 0) {
        m_clock.start();
        m_nextAsk = firstAsk;
    }
    ++m_depth;
    const int status = lua_pcall(L, nargs, nresults, base);
    --m_depth;
    lua_remove(L, base);
    if (status != 0) {
        size_t length = 0;
        const char *text = lua_tolstring(L, -1, &length);
        m_error = text ? QString::fromUtf8(text, qsizetype(length)) : tr("Unknown script error");
        if (status == LUA_ERRMEM)
            m_error = tr("The script ran out of memory.");
        lua_pop(L, 1);
        return false;
    }
    return true;
}

bool QScriptManager::run(int loadStatus)
{
    if (loadStatus != 0) {
        size_t length = 0;
        const char *text = lua_tolstring(m_state, -1, &length);
        m_error = text ? QString::fromUtf8(text, qsizetype(length)) : tr("The script can't be read.");
        lua_pop(m_state, 1);
        return false;
    }
    return pcall(0, 0);
}

bool QScriptManager::load(const QString &script)
{
    return loadFile(m_root + QLatin1Char('/') + script);
}

bool QScriptManager::loadFile(const QString &path)
{
    if (!open())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = tr("%1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    const QByteArray chunk = '@' + QFileInfo(path).fileName().toUtf8();
    return run(luaL_loadbuffer(m_state, bytes.constData(), size_t(bytes.size()), chunk.constData()));
}

bool QScriptManager::loadText(const QString &text, const QString &chunkName)
{
    if (!open())
        return false;
    const QByteArray bytes = text.toUtf8();
    const QByteArray chunk = '=' + chunkName.toUtf8();
    return run(luaL_loadbuffer(m_state, bytes.constData(), size_t(bytes.size()), chunk.constData()));
}

bool QScriptManager::call(const char *function, int nargs, int nresults)
{
    if (!m_state) {
        m_error = tr("No script is loaded.");
        return false;
    }
    lua_getglobal(m_state, function);
    if (!lua_isfunction(m_state, -1)) {
        lua_pop(m_state, nargs + 1);
        m_error = tr("The script has no function '%1'.").arg(QLatin1String(function));
        return false;
    }
    lua_insert(m_state, -nargs - 1);
    return pcall(nargs, nresults);
}

bool QScriptManager::hasFunction(const char *function) const
{
    if (!m_state)
        return false;
    lua_getglobal(m_state, function);
    const bool is = lua_isfunction(m_state, -1);
    lua_pop(m_state, 1);
    return is;
}

bool QScriptManager::runTool(const QString &name)
{
    return load(QStringLiteral("tool/") + name + QStringLiteral(".lua")) && call("main", 0, 0);
}

bool QScriptManager::runTemplate(const QString &name, QProject *project, bool *keep)
{
    *keep = false;
    if (!load(QStringLiteral("project/") + name + QStringLiteral(".lua")))
        return false;
    LuaBind::push(m_state, project, ScriptApi::projectClass());
    if (!call("template", 1, 1))
        return false;
    const bool isBool = lua_isboolean(m_state, -1);
    *keep = lua_toboolean(m_state, -1) != 0;
    lua_pop(m_state, 1);
    if (!isBool) {
        *keep = false;
        m_error = tr("The function 'template' must return true (keep the project) or false.");
        return false;
    }
    // The project follows its new DEF (type, version) before anyone looks.
    project->definitions()->updateHierarchy();
    return true;
}

bool QScriptManager::runCommon(const QString &name, const char *function, const QMap<QString, QVariant> &values,
                               QString *result)
{
    if (!load(QStringLiteral("common/") + name + QStringLiteral(".lua")))
        return false;
    lua_newtable(m_state);
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) {
        const QVariant &v = it.value();
        if (v.typeId() == QMetaType::Bool)
            lua_pushboolean(m_state, v.toBool());
        else if (v.typeId() == QMetaType::QString)
            LuaBind::pushString(m_state, v.toString());
        else
            lua_pushnumber(m_state, v.toDouble());
        lua_setfield(m_state, -2, it.key().toUtf8().constData());
    }
    if (!call(function, 1, 1))
        return false;
    const bool isString = lua_type(m_state, -1) == LUA_TSTRING;
    size_t length = 0;
    const char *text = isString ? lua_tolstring(m_state, -1, &length) : nullptr;
    *result = text ? QString::fromUtf8(text, qsizetype(length)) : QString();
    lua_pop(m_state, 1);
    if (!isString) {
        m_error = tr("The function '%1' must return a string.").arg(QLatin1String(function));
        return false;
    }
    return true;
}

void QScriptManager::close()
{
    if (m_depth > 0)
        return;
    if (m_state)
        lua_close(m_state);
    m_state = nullptr;
    m_error.clear();
    m_cursors.clear();
    m_freshOutlines.clear();
    // What the script made and nothing adopted: layouts first, since a layout
    // still refers to the widgets it was given.
    std::vector<QPointer<QObject>> owned;
    owned.swap(m_owned);
    for (int pass = 0; pass < 2; ++pass) {
        for (auto it = owned.rbegin(); it != owned.rend(); ++it) {
            QObject *o = it->data();
            if (o && !o->parent() && (pass == 1 || !o->isWidgetType()))
                delete o;
        }
    }
}

QString QScriptManager::errorMessage() const
{
    return m_error;
}

QTextCursor &QScriptManager::cursorFor(QSyntaxTextEditor *document)
{
    auto it = m_cursors.find(document);
    if (it == m_cursors.end())
        it = m_cursors.insert(document, QTextCursor(document->document()));
    return it.value();
}

void QScriptManager::refreshOutline(QSyntaxTextEditor *document)
{
    if (m_freshOutlines.contains(document))
        return;
    document->updateHierarchy();
    m_freshOutlines.insert(document);
}
