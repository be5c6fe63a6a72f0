#include "qfilewatchermanager.h"

#include "qfilewatchobject.h"
#include "qlifecyclelog.h"

QFileWatcherManager::QFileWatcherManager(QObject *parent)
    : QObject(parent)
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &QFileWatcherManager::onFileChanged);
    QLifecycleLog::record(QStringLiteral("+QFileWatcherManager"));
}

QFileWatcherManager::~QFileWatcherManager()
{
    QLifecycleLog::record(QStringLiteral("-QFileWatcherManager"));
}

void QFileWatcherManager::watch(QFileWatchObject *object)
{
    if (!object || object->fileName().isEmpty() || m_objects.contains(object))
        return;
    m_watcher.addPath(object->fileName());
    m_objects.append(object);
    ++m_counter;
}

void QFileWatcherManager::unwatch(QFileWatchObject *object)
{
    if (!object || object->fileName().isEmpty())
        return;
    m_watcher.removePath(object->fileName());
    m_objects.removeAll(object);
}

void QFileWatcherManager::onFileChanged(const QString &path)
{
    for (QFileWatchObject *o : std::as_const(m_objects)) {
        if (o->fileName() == path && !o->suspended)
            emit fileChanged(o);
    }
}
