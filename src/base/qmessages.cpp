#include "qmessages.h"

#include <QIcon>
#include <QMutexLocker>

QMessages::QMessages(QObject *parent)
    : QAbstractListModel(parent)
{
}

int QMessages::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    QMutexLocker locker(&m_lock);
    return int(m_messages.size());
}

QVariant QMessages::data(const QModelIndex &index, int role) const
{
    QMutexLocker locker(&m_lock);
    if (!index.isValid() || index.row() < 0 || index.row() >= m_messages.size())
        return QVariant();
    const Message &m = m_messages.at(index.row());
    if (role == Qt::DisplayRole)
        return m.text;
    if (role == Qt::DecorationRole) {
        // Views ask on the main thread only; the icons are made once.
        static const QIcon error(QStringLiteral(":/imgs/Imgs/error.png"));
        static const QIcon warning(QStringLiteral(":/imgs/Imgs/warn.png"));
        static const QIcon info(QStringLiteral(":/imgs/Imgs/info.png"));
        switch (m.kind) {
        case Error: return error;
        case Warning: return warning;
        default: return info;
        }
    }
    return QVariant();
}

void QMessages::clear()
{
    QMutexLocker adding(&m_addLock);
    beginResetModel();
    {
        QMutexLocker locker(&m_lock);
        m_messages.clear();
    }
    endResetModel();
}

void QMessages::addError(const QString &text) { add(Error, text); }
void QMessages::addWarning(const QString &text) { add(Warning, text); }
void QMessages::addInfo(const QString &text) { add(Information, text); }

int QMessages::issueCount() const
{
    QMutexLocker locker(&m_lock);
    return m_issueCount;
}

QList<QMessages::Message> QMessages::messages() const
{
    QMutexLocker locker(&m_lock);
    return m_messages;
}

void QMessages::add(Kind kind, const QString &text)
{
    QMutexLocker adding(&m_addLock);
    int row;
    {
        QMutexLocker locker(&m_lock);
        row = int(m_messages.size());
    }
    beginInsertRows(QModelIndex(), row, row);
    {
        QMutexLocker locker(&m_lock);
        m_messages.append(Message{quint8(kind), text});
        if (kind != Information)
            ++m_issueCount;
    }
    endInsertRows();
}
