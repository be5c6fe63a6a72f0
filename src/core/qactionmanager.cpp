#include "qactionmanager.h"

#include "qaction2.h"

QActionManager::QActionManager(QObject *parent)
    : QAbstractTableModel(parent)
{
}

QActionManager::~QActionManager()
{
    qDeleteAll(m_actions);
}

QAction2 *QActionManager::addAction(const QList<int> &scopes, const QString &key, int captionId,
                                    bool checkable, QObject *receiver, const char *slot,
                                    const char *enableSignal)
{
    auto *a = new QAction2(key, captionId);
    for (int s : scopes) {
        if (s < 0)
            break;
        a->setScope(s, true);
    }
    a->setCheckable(checkable);
    if (receiver && slot) {
        if (checkable)
            connect(a, SIGNAL(toggled(bool)), receiver, slot);
        else
            connect(a, SIGNAL(triggered()), receiver, slot);
    }
    if (receiver && enableSignal)
        connect(receiver, enableSignal, a, SLOT(setEnabled(bool)));
    retranslate(a);

    const int row = int(m_actions.size());
    beginInsertRows(QModelIndex(), row, row);
    m_actions.append(a);
    endInsertRows();
    return a;
}

QAction2 *QActionManager::action(const QString &key) const
{
    for (QAction2 *a : m_actions) {
        if (a->key() == key)
            return a;
    }
    return nullptr;
}

void QActionManager::retranslate()
{
    for (QAction2 *a : m_actions)
        retranslate(a);
    if (!m_actions.isEmpty())
        emit dataChanged(index(0, 0), index(int(m_actions.size()) - 1, 1));
}

void QActionManager::retranslate(QAction2 *a)
{
    QString text = m_translation.text(a->captionId());
    if (a->carrier() && !a->carrier()->shortcut().isEmpty())
        text += QStringLiteral(" (") + a->carrier()->shortcut().toString(QKeySequence::NativeText)
              + QLatin1Char(')');
    a->setText(text);
    a->setToolTip(m_translation.toolTip(a->captionId()));
    a->setStatusTip(a->toolTip());
    a->setWhatsThis(m_translation.whatsThis(a->captionId()));
}

int QActionManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_actions.size());
}

int QActionManager::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant QActionManager::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= m_actions.size())
        return QVariant();
    const QAction2 *a = m_actions.at(index.row());
    if (index.column() == 0) {
        if (role == Qt::DisplayRole)
            return a->toolTip();
        if (role == Qt::DecorationRole)
            return a->icon();
    } else if (index.column() == 1 && (role == Qt::DisplayRole || role == Qt::EditRole)) {
        return a->carrier() ? a->carrier()->shortcut().toString(QKeySequence::PortableText)
                            : QString();
    }
    return QVariant();
}

QVariant QActionManager::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    if (section == 0)
        return tr("Function");
    if (section == 1)
        return tr("Keys");
    return QVariant();
}
