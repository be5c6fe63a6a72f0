#pragma once

#include <QFileSystemWatcher>
#include <QList>
#include <QObject>

class QFileWatchObject;

// Watches the files of open documents and tells a document when its file was
// changed by another program.
class QFileWatcherManager : public QObject
{
    Q_OBJECT

public:
    explicit QFileWatcherManager(QObject *parent = nullptr);
    ~QFileWatcherManager() override;

    void watch(QFileWatchObject *object);
    void unwatch(QFileWatchObject *object);
    int watchedCount() const { return int(m_objects.size()); }

signals:
    // A watched file changed on disk; the UI asks whether to reload.
    void fileChanged(QFileWatchObject *object);

private:
    void onFileChanged(const QString &path);

    QFileSystemWatcher m_watcher;
    QList<QFileWatchObject *> m_objects;
    int m_counter = 0;
};
