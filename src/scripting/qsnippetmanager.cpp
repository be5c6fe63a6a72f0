#include "qsnippetmanager.h"

#include "base/qlifecyclelog.h"

#include <QDir>
#include <QFileInfo>

QSnippetManager::QSnippetManager(const QString &folder, QObject *parent)
    : QAbstractListModel(parent)
    , m_folder(folder)
{
    refresh();
    QLifecycleLog::record(QStringLiteral("+QSnippetManager"));
}

QSnippetManager::~QSnippetManager()
{
    QLifecycleLog::record(QStringLiteral("-QSnippetManager"));
}

void QSnippetManager::refresh()
{
    beginResetModel();
    m_names.clear();
    const QFileInfoList files = QDir(m_folder).entryInfoList({QStringLiteral("*.xml")},
                                                             QDir::Files, QDir::Name);
    for (const QFileInfo &fi : files)
        m_names.append(fi.completeBaseName());
    endResetModel();
}

int QSnippetManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant QSnippetManager::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole || index.row() < 0 || index.row() >= m_names.size())
        return QVariant();
    return m_names.at(index.row());
}
