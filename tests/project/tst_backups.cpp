#include <QtTest>

#include "testsupport.h"

#include "project/qbakmanager.h"

#include <QTemporaryDir>

using TestSupport::writeAll;

class TestBackups : public QObject
{
    Q_OBJECT

private slots:
    void listingIsByDateAndPruningKeepsTheNewest()
    {
        QTemporaryDir dir;
        const QString def = dir.filePath(QStringLiteral("kfm.def"));
        writeAll(def, "[Files]\r\n");
        // By text, 1 February comes before 31 January; by date it is newer.
        const QStringList names{QStringLiteral("31-01-2026 11-5-9 pm"), QStringLiteral("notes"),
                                QStringLiteral("01-02-2026 9-0-0 am"), QStringLiteral("31-01-2026 11-5-9 pm (2)"),
                                QStringLiteral("31-01-2026 2-0-0 pm"), QStringLiteral(".hidden")};
        for (const QString &name : names)
            QVERIFY(QDir().mkpath(dir.filePath(QStringLiteral("backup/") + name)));
        writeAll(dir.filePath(QStringLiteral("backup/31-01-2026 2-0-0 pm/kfm.def")), "old");

        QBakManager backups(def);
        const QStringList expected{QStringLiteral("01-02-2026 9-0-0 am"), QStringLiteral("31-01-2026 11-5-9 pm (2)"),
                                   QStringLiteral("31-01-2026 11-5-9 pm"), QStringLiteral("31-01-2026 2-0-0 pm"),
                                   QStringLiteral("notes")};
        QCOMPARE(backups.stamps(), expected);
        QCOMPARE(backups.rowCount(), 5);
        QCOMPARE(backups.chosenFile(3), QFileInfo(dir.path()).canonicalFilePath()
                                            + QStringLiteral("/backup/31-01-2026 2-0-0 pm/kfm.def"));
        QVERIFY(backups.chosenFile(5).isEmpty());
        // Shown as a time, with the second backup of a second told apart.
        QVERIFY(backups.data(backups.index(1)).toString().endsWith(QStringLiteral(" (2)")));
        QCOMPARE(backups.data(backups.index(4)).toString(), QStringLiteral("notes"));
        QCOMPARE(QBakManager::stampTime(QStringLiteral("01-02-2026 9-0-0 pm")),
                 QDateTime(QDate(2026, 2, 1), QTime(21, 0, 0)));

        // Keeping all (0) removes nothing; keeping two removes the older dated
        // ones, never a folder that is no backup.
        QVERIFY(QBakManager::prune(def, 0).isEmpty());
        QCOMPARE(QBakManager(def).rowCount(), 5);
        QVERIFY(QBakManager::prune(def, 2).isEmpty());
        const QStringList left{QStringLiteral("01-02-2026 9-0-0 am"), QStringLiteral("31-01-2026 11-5-9 pm (2)"),
                               QStringLiteral("notes")};
        QCOMPARE(QBakManager(def).stamps(), left);
        QVERIFY(QFileInfo::exists(dir.filePath(QStringLiteral("backup/.hidden"))));

        // A project with no folder has no backups.
        QCOMPARE(QBakManager(QString()).rowCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestBackups)
#include "tst_backups.moc"
