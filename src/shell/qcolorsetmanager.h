#pragma once

#include "base/qentryfolder.h"

#include <QAbstractListModel>
#include <QColor>
#include <QMap>
#include <QStringList>

// The colour sets (one XML file each), and the colours of the current one:
// the roles of the code editor and of the stage. The model's rows are the
// roles the current set has.
class QColorsetManager : public QAbstractListModel
{
    Q_OBJECT

public:
    struct Entry
    {
        QColor color = Qt::black;
        bool bold = false;
        bool italic = false;
    };

    static constexpr int RoleCount = 19;
    static QString roleKey(int index);
    static QString roleCaption(int index);
    // Black or white, whichever reads better on the given background.
    static QColor contrast(const QColor &background);

    explicit QColorsetManager(const QStringList &folders, QObject *parent = nullptr);
    ~QColorsetManager() override;

    int count() const { return m_entries.count(); }
    QString name(int i) const { return m_entries.name(i); }
    QEntryFolder &entries() { return m_entries; }
    QString current() const { return m_current; }

    bool load(const QString &name);
    bool save(const QString &fileName, bool rename);
    Entry color(const QString &key) const { return m_colors.value(key); }
    void setColor(const QString &key, const Entry &entry);
    QMap<QString, Entry> colors() const { return m_colors; }

    void refresh() { m_entries.refresh(); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    QList<int> presentRoles() const;

    QMap<QString, Entry> m_colors;
    QEntryFolder m_entries;
    QString m_current;
};
