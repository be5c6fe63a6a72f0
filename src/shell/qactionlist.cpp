#include "shell/qactionlist.h"

#include "shell/qaction2.h"
#include "shell/qactionmanager.h"

QActionList::QActionList(QActionManager *manager, QObject *parent)
    : QAbstractListModel(parent)
    , m_manager(manager)
{
}

int QActionList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_visible.size());
}

QVariant QActionList::data(const QModelIndex &index, int role) const
{
    QAction2 *act = action(index.row());
    if (!act || index.column() != 0)
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return act->toolTip();
    case Qt::DecorationRole:
        return m_manager->icon(act->key());
    default:
        return QVariant();
    }
}

void QActionList::setEditor(int id)
{
    if (!m_visible.isEmpty()) {
        beginRemoveRows(QModelIndex(), 0, int(m_visible.size()) - 1);
        m_visible.clear();
        endRemoveRows();
    }
    if (id < 0 || id >= QAction2::ScopeCount)
        return;
    QList<QAction2 *> chosen;
    for (QAction2 *act : m_manager->actions()) {
        // Only what is declared for this editor: global commands live in the menus.
        if (act->hasScope(id))
            chosen.append(act);
    }
    if (chosen.isEmpty())
        return;
    beginInsertRows(QModelIndex(), 0, int(chosen.size()) - 1);
    m_visible = chosen;
    endInsertRows();
}

QAction2 *QActionList::action(int row) const
{
    return row >= 0 && row < m_visible.size() ? m_visible.at(row) : nullptr;
}
