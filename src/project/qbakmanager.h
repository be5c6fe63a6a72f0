#pragma once

#include <QAbstractListModel>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

// The dated backups of one project: the folders under <project folder>/backup,
// each named by the local time of its making ("dd-MM-yyyy h-m-s ap"), with
// " (2)", " (3)"... for further backups made within the same second. The list
// runs newest first by the time the names give, not by their text; folders
// whose names are no such time are listed last, by name, and never pruned.
class QBakManager : public QAbstractListModel
{
    Q_OBJECT

public:
    static constexpr int StampRole = Qt::UserRole;

    explicit QBakManager(const QString &defFile, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    // The time in words for display, the folder for the tool tip, the folder
    // name for StampRole.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // Folder names, newest first.
    QStringList stamps() const { return m_stamps; }
    // The DEF inside the backup of `row`, or an empty string for no such row.
    QString chosenFile(int row) const;
    QString backupRoot() const { return m_root; }

    // Makes a new, empty backup folder for the DEF and returns its path with a
    // trailing "/"; never one that exists already. Empty (with the reason in
    // `error`) if the DEF's folder is gone or the folder can't be made.
    static QString makeFolder(const QString &defFile, QString *error = nullptr);
    // The time a folder name stands for, invalid if it is none; `sequence` is
    // 1 for a plain stamp and n for " (n)".
    static QDateTime stampTime(const QString &name, int *sequence = nullptr);
    // Newest first by time, then by sequence; other names last, by name.
    static QStringList sorted(const QStringList &names);
    // Removes the dated backups beyond the newest `keep` (0 keeps them all).
    // Returns what could not be removed, one "folder: reason" line each.
    static QStringList prune(const QString &defFile, int keep);

private:
    QString m_root;
    QString m_defName;
    QStringList m_stamps;
};
