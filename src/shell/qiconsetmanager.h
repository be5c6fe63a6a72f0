#pragma once

#include "base/qentryfolder.h"

#include <QIcon>
#include <QMap>

class QActionManager;

// The icon sets: one folder each, with an Iconset.xml mapping action keys to
// image files. Puts the chosen one on the actions.
class QIconsetManager
{
public:
    explicit QIconsetManager(const QStringList &folders);
    ~QIconsetManager();

    int count() const { return m_entries.count(); }
    QString name(int i) const { return m_entries.name(i); }
    QString current() const { return m_current; }
    QEntryFolder &entries() { return m_entries; }

    // The icon of an action key in the current set; a null icon when none.
    QIcon icon(const QString &key) const;

    // Sets the named icon set on every action of the manager. An unchanged
    // name does nothing unless forced; an unknown name clears all icons.
    void apply(const QString &name, QActionManager *actions, bool force = false);

    void refresh() { m_entries.refresh(); }

private:
    QEntryFolder m_entries;
    QMap<QString, QString> m_files;
    QString m_current;
    QString m_currentFolder;
    bool m_applied = false;
};
