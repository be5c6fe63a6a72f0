#pragma once

#include <QAbstractListModel>
#include <QMap>
#include <QStringList>

// The named entries of a data folder, as the program's managers list them:
// icon sets and style sheets (a folder each, holding a file of a fixed name),
// colour sets, presets, snippets and state-controller libraries (a file
// each). The folder may be given more than once, the user's own first: an
// entry found in an earlier folder hides one of the same name further on.
// Names come sorted; the rows of the model are the names.
class QEntryFolder : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Kind {
        Files,  // `pattern` filters file names ("*.xml"); the name is the base name
        Folders // each sub-folder holding a file named `pattern` is an entry
    };

    QEntryFolder(const QStringList &folders, Kind kind, const QString &pattern, QObject *parent = nullptr);

    int count() const { return int(m_names.size()); }
    QString name(int i) const { return m_names.value(i); }
    QStringList names() const { return m_names; }
    bool contains(const QString &name) const { return m_names.contains(name); }
    // Names left out of the list; filePath() still finds them.
    void setExcluded(const QStringList &names);

    // The file of an entry (for Folders, the fixed file inside its folder)
    // and the folder that holds it; empty for an unknown name. An entry made
    // since the last listing is found as well.
    QString filePath(const QString &name) const;
    QString entryFolder(const QString &name) const;
    // Where a new entry of this name is to be written: the first folder.
    QString newFilePath(const QString &name) const;

    QStringList folders() const { return m_folders; }
    // The first folder (usually the user's own).
    QString folder() const { return m_folders.value(0); }

    // Other folders, listed at once (the user's own made on a first save).
    void setFolders(const QStringList &folders);

    // Lists the folders again.
    void refresh();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    QString suffix() const;

    QStringList m_folders;
    Kind m_kind;
    QString m_pattern;
    QStringList m_excluded;
    QStringList m_names;
    QMap<QString, QString> m_paths; // every entry found, by name
};
