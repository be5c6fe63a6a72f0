#pragma once

#include <QAbstractListModel>
#include <QList>

class QAction2;
class QActionManager;

// The side list of actions: those that work in the current editor, in the
// order they were made. Rebuilt on every editor switch.
class QActionList : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit QActionList(QActionManager *manager, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // Shows the actions of editor id; an id of 8 or more (no editor) empties the list.
    void setEditor(int id);
    QAction2 *action(int row) const;

private:
    QActionManager *m_manager;
    QList<QAction2 *> m_visible;
};
