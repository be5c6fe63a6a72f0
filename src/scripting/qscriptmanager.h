#pragma once

#include <QMap>
#include <QObject>
#include <QString>

class QProject;
struct lua_State;

// The one place where Lua runs. Scripts lie in category folders ("common",
// "project", "snippet", "tool") under the scripts folder; each run gets a
// fresh state, left open so the caller can call the script's entry function.
class QScriptManager : public QObject
{
    Q_OBJECT

public:
    explicit QScriptManager(const QString &root, QObject *parent = nullptr);
    ~QScriptManager() override;

    // Script base name -> path, for one category; empty for an unknown one.
    QMap<QString, QString> scripts(const QString &category) const;
    QStringList categories() const { return m_scripts.keys(); }

    // Runs a script file, its path relative to the scripts folder.
    bool load(const QString &script);
    // Runs script text held in memory.
    bool loadText(const QString &text);
    void close();

    // Runs the tool script "tool/<name>.lua" and its function "main". False on
    // a Lua error, whose text errorMessage() then holds until close().
    bool runTool(const QString &name);
    // Runs the project template "project/<name>.lua": its function "template"
    // gets the new project and answers whether to keep it (*keep). False on a
    // Lua error, as above.
    bool runTemplate(const QString &name, QProject *project, bool *keep);

    QString errorMessage() const;
    lua_State *state() const { return m_state; }
    QString root() const { return m_root; }

    void rescan();

signals:
    void registerBinding();
    void printOutput(const QString &text);

private:
    bool open();
    bool run(int loadStatus);

    lua_State *m_state = nullptr;
    QString m_root;
    QMap<QString, QMap<QString, QString>> m_scripts;
};
