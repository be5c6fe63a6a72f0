#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

class QMenu;

// The recent projects of the Project menu, newest first, kept in a file of
// type "ORVHistoryML" beside the program.
class QHistoryManager : public QObject
{
    Q_OBJECT

public:
    QHistoryManager(QMenu *menu, const QString &fileName, int maxEntries, QObject *parent = nullptr);

    // Puts file at the top (moving it there if listed), dropping the oldest
    // entry when the list is full. Ignored while the history itself opens
    // projects (load, "Open all"), so that those don't reorder it.
    void add(const QString &file);
    // Entries whose file no longer exists are dropped. A missing file is no error.
    bool load();
    bool save() const;
    void rebuildMenu();

    QStringList entries() const { return m_entries; }
    int maxEntries() const { return m_maxEntries; }

signals:
    void entryTriggered(const QString &file);

public slots:
    void clearTriggered();
    void allTriggered();
    void actionTriggered();

private:
    bool m_changed = true;
    quint8 m_maxEntries;
    QPointer<QMenu> m_menu;
    QString m_fileName;
    QStringList m_entries;
};
