#pragma once

#include <QIcon>
#include <QMap>
#include <QStringList>

class QActionManager;

// Lists the icon sets beside the program (one folder each, with an
// Iconset.xml mapping action keys to image files) and puts one on the actions.
class QIconsetManager
{
public:
    explicit QIconsetManager(const QString &folder);
    ~QIconsetManager();

    int count() const { return int(m_names.size()); }
    QString name(int i) const { return m_names.value(i); }
    QString current() const { return m_current; }

    // The icon of an action key in the current set; a null icon when none.
    QIcon icon(const QString &key) const;

    // Sets the named icon set on every action of the manager. An unchanged
    // name does nothing unless forced; an unknown name clears all icons.
    void apply(const QString &name, QActionManager *actions, bool force = false);

    // Lists the folder again.
    void refresh();

private:
    QString m_folder;
    QStringList m_names;
    QMap<QString, QString> m_files;
    QString m_current;
    bool m_applied = false;
};
