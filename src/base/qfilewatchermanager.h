#pragma once

#include "qfilewatchobject.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QTimer>

// Watches the files of open documents and reports the ones changed by another
// program. Paths are counted: two documents on one file share its watch,
// which goes with the last of them.
class QFileWatcherManager : public QObject
{
    Q_OBJECT

public:
    explicit QFileWatcherManager(QObject *parent = nullptr);
    ~QFileWatcherManager() override;

    // Watches the object's file; an object watched under another name moves
    // to its new one. An empty name is not watched.
    void watch(QFileWatchObject *object);
    void unwatch(QFileWatchObject *object);
    int watchedCount() const { return int(m_paths.size()); }
    bool isWatched(const QString &path) const { return m_counts.value(path) > 0; }

signals:
    // The documents whose file `path` another program changed; the interface
    // asks whether to reload them.
    void fileChanged(const QString &path, const QList<QFileWatchObject *> &objects);

private:
    void onFileChanged(const QString &path);
    void processChanges();
    void release(QFileWatchObject *object);

    QFileSystemWatcher m_watcher;
    QHash<QFileWatchObject *, QString> m_paths; // each object and the path it is watched under
    QHash<QString, int> m_counts;               // objects per path
    // Editors write in several steps: changes are taken once the file is quiet.
    QSet<QString> m_pending;
    QTimer m_quiet;
    bool m_reporting = false;
};
