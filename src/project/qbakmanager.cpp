#include "qbakmanager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QString kStampFormat = QStringLiteral("dd-MM-yyyy h-m-s ap");

QString rootOf(const QString &defFile)
{
    const QString folder = QFileInfo(defFile).canonicalPath();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/backup");
}

} // namespace

QBakManager::QBakManager(const QString &defFile, QObject *parent)
    : QAbstractListModel(parent)
    , m_root(defFile.isEmpty() ? QString() : rootOf(defFile))
    , m_defName(QFileInfo(defFile).fileName())
{
    if (m_root.isEmpty())
        return;
    QStringList names;
    for (const QString &name : QDir(m_root).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden))
        if (!name.startsWith(QLatin1Char('.')))
            names << name;
    m_stamps = sorted(names);
}

int QBakManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_stamps.size());
}

QVariant QBakManager::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= m_stamps.size())
        return QVariant();
    const QString &stamp = m_stamps.at(index.row());
    switch (role) {
    case Qt::DisplayRole: {
        int sequence = 1;
        const QDateTime time = stampTime(stamp, &sequence);
        if (!time.isValid())
            return stamp;
        QString text = QLocale().toString(time, QStringLiteral("dddd d MMMM yyyy, HH:mm:ss"));
        if (sequence > 1)
            text += QStringLiteral(" (%1)").arg(sequence);
        return text;
    }
    case Qt::ToolTipRole:
        return QDir::toNativeSeparators(m_root + QLatin1Char('/') + stamp);
    case StampRole:
        return stamp;
    default:
        return QVariant();
    }
}

QString QBakManager::chosenFile(int row) const
{
    if (row < 0 || row >= m_stamps.size())
        return QString();
    return m_root + QLatin1Char('/') + m_stamps.at(row) + QLatin1Char('/') + m_defName;
}

QDateTime QBakManager::stampTime(const QString &name, int *sequence)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d\\d-\\d\\d-\\d{4} \\d{1,2}-\\d{1,2}-\\d{1,2} [aApP][mM])(?: \\((\\d{1,6})\\))?$"));
    const QRegularExpressionMatch m = pattern.match(name);
    if (!m.hasMatch())
        return QDateTime();
    const QDateTime time = QLocale::c().toDateTime(m.captured(1).toLower(), kStampFormat);
    if (sequence)
        *sequence = m.captured(2).isEmpty() ? 1 : m.captured(2).toInt();
    return time;
}

QStringList QBakManager::sorted(const QStringList &names)
{
    struct Item
    {
        QString name;
        QDateTime time;
        int sequence = 1;
    };
    QList<Item> items;
    for (const QString &name : names) {
        Item item{name, QDateTime(), 1};
        item.time = stampTime(name, &item.sequence);
        items << item;
    }
    std::stable_sort(items.begin(), items.end(), [](const Item &a, const Item &b) {
        if (a.time.isValid() != b.time.isValid())
            return a.time.isValid();
        if (!a.time.isValid())
            return a.name < b.name;
        if (a.time != b.time)
            return a.time > b.time;
        return a.sequence > b.sequence;
    });
    QStringList result;
    for (const Item &item : std::as_const(items))
        result << item.name;
    return result;
}

QString QBakManager::makeFolder(const QString &defFile, QString *error)
{
    const QString root = rootOf(defFile);
    if (root.isEmpty()) {
        if (error)
            *error = QCoreApplication::translate("QBakManager", "The project's folder no longer exists");
        return QString();
    }
    if (!QDir().mkpath(root)) {
        if (error)
            *error = QCoreApplication::translate("QBakManager", "The folder %1 can't be made")
                         .arg(QDir::toNativeSeparators(root));
        return QString();
    }
    const QString stamp = QLocale::c().toString(QDateTime::currentDateTime(), kStampFormat);
    // mkdir fails on a folder that exists, so two backups of one second each
    // get a folder of their own instead of sharing one.
    QDir dir(root);
    for (int sequence = 1; sequence < 1000; ++sequence) {
        const QString name = sequence == 1 ? stamp : QStringLiteral("%1 (%2)").arg(stamp).arg(sequence);
        if (dir.exists(name))
            continue;
        if (dir.mkdir(name))
            return root + QLatin1Char('/') + name + QLatin1Char('/');
        if (!dir.exists(name))
            break;
    }
    if (error)
        *error = QCoreApplication::translate("QBakManager", "No new backup folder can be made in %1")
                     .arg(QDir::toNativeSeparators(root));
    return QString();
}

QStringList QBakManager::prune(const QString &defFile, int keep)
{
    QStringList failures;
    if (keep <= 0)
        return failures;
    const QBakManager backups(defFile);
    int dated = 0;
    for (const QString &stamp : backups.stamps()) {
        if (!stampTime(stamp).isValid() || ++dated <= keep)
            continue;
        const QString path = backups.backupRoot() + QLatin1Char('/') + stamp;
        // A link is removed as a link: nothing outside the backup folder goes.
        const bool removed = QFileInfo(path).isSymLink() ? QFile::remove(path) : QDir(path).removeRecursively();
        if (!removed)
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path),
                                                     QCoreApplication::translate("QBakManager", "Can't be removed"));
    }
    return failures;
}
