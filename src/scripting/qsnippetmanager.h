#pragma once

#include <QAbstractListModel>
#include <QStringList>

// The names of the code snippets beside the program, one row a file.
class QSnippetManager : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit QSnippetManager(const QString &folder, QObject *parent = nullptr);
    ~QSnippetManager() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    QStringList names() const { return m_names; }
    QString folder() const { return m_folder; }
    // Reads the folder again (a new language may bring translated names).
    void refresh();

private:
    QString m_folder;
    QStringList m_names;
};
