#include "qentryfolder.h"

#include <QDir>
#include <QFileInfo>

QEntryFolder::QEntryFolder(const QStringList &folders, Kind kind, const QString &pattern, QObject *parent)
    : QAbstractListModel(parent)
    , m_folders(folders)
    , m_kind(kind)
    , m_pattern(pattern)
{
    refresh();
}

void QEntryFolder::setExcluded(const QStringList &names)
{
    m_excluded = names;
    refresh();
}

void QEntryFolder::setFolders(const QStringList &folders)
{
    m_folders = folders;
    refresh();
}

void QEntryFolder::refresh()
{
    QMap<QString, QString> found; // sorted by name; the first folder wins
    for (const QString &folder : std::as_const(m_folders)) {
        const QDir dir(folder);
        if (m_kind == Files) {
            const QStringList filters = m_pattern.isEmpty() ? QStringList() : QStringList{m_pattern};
            for (const QFileInfo &fi : dir.entryInfoList(filters, QDir::Files, QDir::Name))
                if (!found.contains(fi.completeBaseName()))
                    found.insert(fi.completeBaseName(), fi.absoluteFilePath());
        } else {
            for (const QFileInfo &fi : dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
                const QString file = fi.absoluteFilePath() + QLatin1Char('/') + m_pattern;
                if (QFileInfo(file).isFile() && !found.contains(fi.fileName()))
                    found.insert(fi.fileName(), file);
            }
        }
    }
    beginResetModel();
    m_paths = found;
    m_names.clear();
    for (auto it = found.cbegin(); it != found.cend(); ++it) {
        if (!m_excluded.contains(it.key()))
            m_names.append(it.key());
    }
    endResetModel();
}

QString QEntryFolder::filePath(const QString &name) const
{
    const auto it = m_paths.constFind(name);
    if (it != m_paths.constEnd())
        return it.value();
    // An entry made since the last listing is found all the same.
    if (name.isEmpty() || name.contains(QLatin1Char('/')))
        return QString();
    for (const QString &folder : m_folders) {
        const QString path = m_kind == Files ? folder + QLatin1Char('/') + name + suffix()
                                             : folder + QLatin1Char('/') + name + QLatin1Char('/') + m_pattern;
        if (QFileInfo(path).isFile())
            return path;
    }
    return QString();
}

QString QEntryFolder::suffix() const
{
    // "*.xml" gives the suffix of an entry's file.
    return m_pattern.startsWith(QLatin1String("*.")) ? m_pattern.mid(1) : QString();
}

QString QEntryFolder::entryFolder(const QString &name) const
{
    const QString file = filePath(name);
    return file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
}

QString QEntryFolder::newFilePath(const QString &name) const
{
    if (m_kind == Folders)
        return folder() + QLatin1Char('/') + name + QLatin1Char('/') + m_pattern;
    return folder() + QLatin1Char('/') + name + suffix();
}

int QEntryFolder::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant QEntryFolder::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole || index.row() < 0 || index.row() >= m_names.size())
        return QVariant();
    return m_names.at(index.row());
}
