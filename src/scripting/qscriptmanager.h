#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTextCursor>
#include <QVariant>

#include <functional>
#include <vector>

class QProject;
class QSyntaxTextEditor;
struct lua_State;

// The one place where Lua runs. Scripts lie in category folders ("common",
// "project", "snippet", "tool") under the scripts folder; each run gets a
// fresh state with the scripting API, left open so the caller can call the
// script's entry function. One state exists at a time.
//
// A script can't take the program down with it: wrong arguments and objects
// that no longer exist are Lua errors, memory is capped, and a script that
// runs for long is offered to be stopped (runningLong).
class QScriptManager : public QObject
{
    Q_OBJECT

public:
    explicit QScriptManager(const QString &root, QObject *parent = nullptr);
    ~QScriptManager() override;

    // Script name -> path, for one category; empty for an unknown one. Scripts
    // in sub-folders are named "<folder>/<name>" (tools show them as submenus).
    QMap<QString, QString> scripts(const QString &category) const;
    QStringList categories() const { return m_scripts.keys(); }

    // Runs a script file, its path relative to the scripts folder ("tool/x.lua").
    bool load(const QString &script);
    // Runs a script file given by its own path.
    bool loadFile(const QString &path);
    // Runs script text held in memory.
    bool loadText(const QString &text, const QString &chunkName = QStringLiteral("script"));
    void close();
    bool isRunning() const { return m_depth > 0; }

    // Calls a global function of the loaded script with the arguments on the
    // stack (nargs) and leaves nresults results. False on a Lua error, whose
    // text errorMessage() then holds; a missing function is such an error.
    bool call(const char *function, int nargs, int nresults);
    bool hasFunction(const char *function) const;

    // "tool/<name>.lua" and its "main".
    bool runTool(const QString &name);
    // "project/<name>.lua": "template" gets the new project and answers
    // whether to keep it (*keep).
    bool runTemplate(const QString &name, QProject *project, bool *keep);
    // "common/<name>.lua" is loaded, then `function` gets the table of named
    // values and must return a string (*result).
    bool runCommon(const QString &name, const char *function, const QMap<QString, QVariant> &values,
                   QString *result);

    QString errorMessage() const;
    lua_State *state() const { return m_state; }
    QString root() const { return m_root; }
    void rescan();

    // Where project() and projectCount() look: all open projects, and the
    // current one.
    void setProjectSource(std::function<QList<QProject *>()> all, std::function<QProject *()> current);
    QList<QProject *> projects() const;
    QProject *currentProject() const;

    // Global arg table of the next runs (the command line's words for a script).
    void setArguments(const QStringList &arguments) { m_arguments = arguments; }
    // A run is stopped with an error after so many Lua instructions (0: never).
    void setInstructionLimit(quint64 limit) { m_instructionLimit = limit; }
    void setMemoryLimit(size_t bytes) { m_memoryLimit = bytes; }
    // Without the library calls that reach the outside (files, processes):
    // for text of unknown origin.
    void setSandboxed(bool on) { m_sandboxed = on; }
    bool isSandboxed() const { return m_sandboxed; }

    // The cursor of a text document in this run: scripts move their own.
    QTextCursor &cursorFor(QSyntaxTextEditor *document);
    // Makes sure the document's outline reflects its text before a look-up.
    void refreshOutline(QSyntaxTextEditor *document);
    void outlineChanged(QSyntaxTextEditor *document) { m_freshOutlines.remove(document); }

    // Used by the state's allocator and hook.
    void *allocate(void *block, size_t oldSize, size_t newSize);
    bool shouldStop();

signals:
    void registerBinding();
    void printOutput(const QString &text);
    // A script has run for a while: set *stop to end it with an error.
    void runningLong(bool *stop);

private:
    bool open();
    bool run(int loadStatus);
    bool pcall(int nargs, int nresults);
    void scanFolder(QMap<QString, QString> &list, const QString &folder, const QString &prefix, int depth);

    lua_State *m_state = nullptr;
    QString m_root;
    QMap<QString, QMap<QString, QString>> m_scripts;
    std::function<QList<QProject *>()> m_allProjects;
    std::function<QProject *()> m_currentProject;
    QStringList m_arguments;
    quint64 m_instructionLimit = 0;
    quint64 m_instructions = 0;
    size_t m_memoryLimit = size_t(512) * 1024 * 1024;
    size_t m_memoryUsed = 0;
    bool m_sandboxed = false;
    int m_depth = 0;
    QElapsedTimer m_clock;
    qint64 m_nextAsk = 0;
    QString m_error;
    QHash<QObject *, QTextCursor> m_cursors;
    QSet<const void *> m_freshOutlines;
    std::vector<QPointer<QObject>> m_owned;
};
