#include "qsctrlmanager.h"

#include "base/qlifecyclelog.h"

#include <QDir>
#include <QFileInfo>

QSCtrlManager::QSCtrlManager(const QString &folder, QObject *parent)
    : QAbstractListModel(parent)
    , m_folder(folder)
{
    refresh();
    QLifecycleLog::record(QStringLiteral("+QSCtrlManager"));
}

QSCtrlManager::~QSCtrlManager()
{
    QLifecycleLog::record(QStringLiteral("-QSCtrlManager"));
}

void QSCtrlManager::refresh()
{
    if (!m_names.isEmpty()) {
        beginRemoveRows(QModelIndex(), 0, int(m_names.size()) - 1);
        m_names.clear();
        endRemoveRows();
    }
    QStringList found;
    const QFileInfoList files = QDir(m_folder).entryInfoList({QStringLiteral("*.sctrl")}, QDir::Files);
    for (const QFileInfo &fi : files) {
        if (fi.suffix() == QLatin1String("sctrl"))
            found.append(fi.completeBaseName());
    }
    if (found.isEmpty())
        return;
    beginInsertRows(QModelIndex(), 0, int(found.size()) - 1);
    m_names = found;
    endInsertRows();
}

int QSCtrlManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant QSCtrlManager::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole || index.row() < 0 || index.row() >= m_names.size())
        return QVariant();
    return m_names.at(index.row());
}
