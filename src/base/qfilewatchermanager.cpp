#include "qfilewatchermanager.h"

#include "qfilewatchobject.h"
#include "qlifecyclelog.h"

#include <QFileInfo>

QFileWatcherManager::QFileWatcherManager(QObject *parent)
    : QObject(parent)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(200);
    connect(&m_quiet, &QTimer::timeout, this, &QFileWatcherManager::processChanges);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &QFileWatcherManager::onFileChanged);
    QLifecycleLog::record(QStringLiteral("+QFileWatcherManager"));
}

QFileWatcherManager::~QFileWatcherManager()
{
    QLifecycleLog::record(QStringLiteral("-QFileWatcherManager"));
}

void QFileWatcherManager::watch(QFileWatchObject *object)
{
    if (!object)
        return;
    const QString path = object->fileName();
    const bool known = m_paths.contains(object);
    if (known) {
        if (m_paths.value(object) == path)
            return;
        release(object);
    }
    if (path.isEmpty()) {
        if (known)
            disconnect(object, &QObject::destroyed, this, nullptr);
        return;
    }
    m_paths.insert(object, path);
    if (m_counts[path]++ == 0 && QFileInfo::exists(path))
        m_watcher.addPath(path);
    // A document that goes without saying so leaves no dangling entry.
    if (!known)
        connect(object, &QObject::destroyed, this, [this, object] { release(object); });
}

void QFileWatcherManager::unwatch(QFileWatchObject *object)
{
    if (!object || !m_paths.contains(object))
        return;
    release(object);
    disconnect(object, &QObject::destroyed, this, nullptr);
}

void QFileWatcherManager::release(QFileWatchObject *object)
{
    const auto it = m_paths.constFind(object);
    if (it == m_paths.constEnd())
        return;
    const QString path = it.value();
    m_paths.erase(it);
    if (--m_counts[path] <= 0) {
        m_counts.remove(path);
        m_watcher.removePath(path);
        m_pending.remove(path);
    }
}

void QFileWatcherManager::onFileChanged(const QString &path)
{
    m_pending.insert(path);
    m_quiet.start();
}

void QFileWatcherManager::processChanges()
{
    // A question is open: the changes wait for its answer.
    if (m_reporting) {
        m_quiet.start();
        return;
    }
    const QSet<QString> paths = std::exchange(m_pending, {});
    for (const QString &path : paths) {
        if (!m_counts.contains(path) || !QFileInfo::exists(path))
            continue;
        // A file replaced by a rename (saves through a temporary file do that)
        // has lost its watch: the new file gets one.
        if (!m_watcher.files().contains(path))
            m_watcher.addPath(path);
        QList<QFileWatchObject *> changed;
        for (auto it = m_paths.cbegin(); it != m_paths.cend(); ++it) {
            QFileWatchObject *o = it.key();
            if (it.value() != path)
                continue;
            if (o->suspended) {
                o->suspended = false;
                continue;
            }
            if (o->differsFromFile())
                changed << o;
        }
        if (changed.isEmpty())
            continue;
        m_reporting = true;
        emit fileChanged(path, changed);
        m_reporting = false;
    }
}
