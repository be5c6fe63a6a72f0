#include "qscriptmanager.h"

#include "base/qlifecyclelog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
#include <lualib.h>
}

namespace {
const char *const managerKey = "bf_script_manager";

// print() goes to the program's output window instead of stdout.
int luaPrint(lua_State *L)
{
    lua_getfield(L, LUA_REGISTRYINDEX, managerKey);
    auto *manager = static_cast<QScriptManager *>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    QString line;
    const int n = lua_gettop(L);
    lua_getglobal(L, "tostring");
    for (int i = 1; i <= n; ++i) {
        lua_pushvalue(L, -1);
        lua_pushvalue(L, i);
        lua_call(L, 1, 1);
        const char *s = lua_tostring(L, -1);
        if (i > 1)
            line += QLatin1Char('\t');
        line += QString::fromUtf8(s ? s : "");
        lua_pop(L, 1);
    }
    lua_pop(L, 1);
    if (manager)
        emit manager->printOutput(line);
    return 0;
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
    close();
    QLifecycleLog::record(QStringLiteral("-QScriptManager"));
}

void QScriptManager::rescan()
{
    m_scripts.clear();
    const QDir root(m_root);
    for (const QString &category : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (category.startsWith(QLatin1Char('.')))
            continue;
        const QDir dir(root.canonicalPath() + QLatin1Char('/') + category);
        QMap<QString, QString> &list = m_scripts[category];
        for (const QFileInfo &fi : dir.entryInfoList(QDir::Files)) {
            if (fi.fileName().endsWith(QLatin1String(".lua")))
                list.insert(fi.completeBaseName(), fi.filePath());
        }
    }
}

QMap<QString, QString> QScriptManager::scripts(const QString &category) const
{
    return m_scripts.value(category);
}

bool QScriptManager::open()
{
    close();
    m_state = luaL_newstate();
    if (!m_state)
        return false;
    luaL_openlibs(m_state);
    lua_pushlightuserdata(m_state, this);
    lua_setfield(m_state, LUA_REGISTRYINDEX, managerKey);
    lua_register(m_state, "print", luaPrint);
    // "require" finds the shared library scripts.
    const QByteArray path = QFile::encodeName(m_root + QStringLiteral("/common/?.lua;"));
    lua_getglobal(m_state, "package");
    lua_pushstring(m_state, path.constData());
    lua_setfield(m_state, -2, "path");
    lua_pop(m_state, 1);
    emit registerBinding();
    return true;
}

bool QScriptManager::run(int loadStatus)
{
    if (loadStatus != 0)
        return false;
    return lua_pcall(m_state, 0, 0, 0) == 0;
}

bool QScriptManager::load(const QString &script)
{
    if (!open())
        return false;
    const QByteArray file = QFile::encodeName(m_root + QLatin1Char('/') + script);
    return run(luaL_loadfile(m_state, file.constData()));
}

bool QScriptManager::loadText(const QString &text)
{
    if (!open())
        return false;
    const QByteArray bytes = text.toUtf8();
    return run(luaL_loadbuffer(m_state, bytes.constData(), size_t(bytes.size()), "script"));
}

bool QScriptManager::runTool(const QString &name)
{
    if (!load(QStringLiteral("tool/") + name + QStringLiteral(".lua")))
        return false;
    lua_getglobal(m_state, "main");
    return lua_pcall(m_state, 0, 0, 0) == 0;
}

bool QScriptManager::runTemplate(const QString &name, QProject *project, bool *keep)
{
    *keep = false;
    if (!load(QStringLiteral("project/") + name + QStringLiteral(".lua")))
        return false;
    lua_getglobal(m_state, "template");
    lua_pushlightuserdata(m_state, project);
    if (lua_pcall(m_state, 1, 1, 0) != 0)
        return false;
    *keep = lua_toboolean(m_state, -1) != 0;
    lua_pop(m_state, 1);
    return true;
}

void QScriptManager::close()
{
    if (m_state)
        lua_close(m_state);
    m_state = nullptr;
}

QString QScriptManager::errorMessage() const
{
    if (!m_state || lua_gettop(m_state) == 0)
        return QString();
    const char *s = lua_tostring(m_state, -1);
    return QString::fromUtf8(s ? s : "");
}
