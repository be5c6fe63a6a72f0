#pragma once

#include <QAbstractListModel>
#include <QStringList>

// The library of ready-made state controllers: the names of the .sctrl files
// beside the program, for the wizards' list.
class QSCtrlManager : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit QSCtrlManager(const QString &folder, QObject *parent = nullptr);
    ~QSCtrlManager() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    QStringList names() const { return m_names; }
    QString folder() const { return m_folder; }
    void refresh();

private:
    QString m_folder;
    QStringList m_names;
};
