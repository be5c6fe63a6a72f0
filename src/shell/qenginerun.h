#pragma once

#include "base/qmugenmodel.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>

// One run of open projects in an engine. The parameter line of the engine
// names projects by "%N" (0 the current project, N the Nth tab); the caller
// writes a test copy of each into the engine's chars folder, as bf3_<i> for
// the i-th distinct placeholder, and then starts the engine, which runs in
// its own folder while the program goes on. When the engine ends, or could
// not start, the copies go. Nothing in the engine's folder but the bf3_<n>
// folders is ever touched.
class QEngineRun : public QObject
{
    Q_OBJECT

public:
    explicit QEngineRun(const QMugenModel::Engine &engine, QObject *parent = nullptr);
    // A run still going ends here: the engine is stopped and the copies removed.
    // Before start() the copies are the caller's to remove (removeCopies()).
    ~QEngineRun() override;

    const QMugenModel::Engine &engine() const { return m_engine; }

    // The placeholder numbers of a parameter line, each once, in the order of
    // their first appearance; "%10" is ten, never "%1" and a "0".
    static QList<int> placeholders(const QString &params);
    // Splits a parameter line at blanks, double quotes holding blanks
    // together; false for a quote that is never closed.
    static bool splitParameters(const QString &params, QStringList *arguments);
    // Replaces each "%N" whose N has a name; the others stay as they are.
    static QString substitute(const QString &argument, const QMap<int, QString> &names);
    static QString copyName(int position);
    // True for a folder name that a test copy has: bf3_ and digits.
    static bool isCopyName(const QString &name);

    // Why the engine can't be run as it is configured, before anything is
    // written; empty when nothing stands in the way.
    QString problem() const;
    // The placeholders of the engine's line; empty also when the line can't be split.
    QList<int> placeholders() const;
    QString engineFolder() const;
    QString charsFolder() const;
    QString copyFolder(int position) const;

    // Removes the test copies an earlier run left behind (a crash, a kill);
    // returns what could not be removed, one "folder: reason" line each.
    QStringList removeStaleCopies() const;
    // Removes the copies of this run, bf3_0 up to one per placeholder.
    QStringList removeCopies() const;

    // Starts the engine with `names` (placeholder number to copy name) put
    // into its line. Either started() or failed() follows, and after
    // started(), finished(); the copies are removed before failed() and
    // finished() are sent.
    void start(const QMap<int, QString> &names);
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    QString program() const { return m_program; }
    QStringList arguments() const { return m_arguments; }

signals:
    void started();
    void failed(const QString &reason);
    void finished(int exitCode, bool crashed);

private:
    static bool removeCopy(const QString &path);
    void end();

    QMugenModel::Engine m_engine;
    QProcess m_process;
    QString m_program;
    QStringList m_arguments;
    bool m_ended = false;
};
