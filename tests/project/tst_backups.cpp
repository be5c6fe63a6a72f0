#include <QtTest>

#include "testsupport.h"

#include "project/qbakmanager.h"
#include "project/qproject.h"

#include <QTemporaryDir>
#include <QTextDocument>

using TestSupport::readAll;
using TestSupport::writeAll;

namespace {

// The fixture character in `dir`, with its DEF.
QString copyHero(const QString &dir)
{
    const QString from = TestSupport::fixturesDir() + QStringLiteral("/hero/");
    for (const char *name : {"hero.def", "hero.cmd", "hero.cns", "states/walk.st", "hero.air", "hero.snd",
                             "hero1.act", "pals/hero4.act"})
        writeAll(dir + QLatin1Char('/') + QLatin1String(name), readAll(from + QLatin1String(name)));
    return dir + QStringLiteral("/hero.def");
}

QStringList filesUnder(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

} // namespace

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

    void backupsOfOneSecondAndReadingOneBack()
    {
        QTemporaryDir dir;
        const QString def = copyHero(dir.path());
        QProject p;
        QVERIFY(p.fromFile(def, 39, false, false));

        // Two backups in a row, within the same second as a rule: two folders, both whole.
        QVERIFY(p.backup());
        const QString first = p.lastBackupFolder();
        p.commands()->document()->setPlainText(QStringLiteral("[Command]\r\nname = \"second\""));
        QVERIFY(p.backup());
        const QString second = p.lastBackupFolder();
        QVERIFY(first != second);
        QCOMPARE(filesUnder(first), filesUnder(second));
        QVERIFY(filesUnder(first).contains(QStringLiteral("States/walk.st")));
        QVERIFY(!readAll(first + QStringLiteral("hero.cmd")).contains("second"));
        QVERIFY(readAll(second + QStringLiteral("hero.cmd")).contains("second"));
        QCOMPARE(QBakManager(def).stamps().size(), 2);
        QCOMPARE(QBakManager(def).chosenFile(0), second + QStringLiteral("hero.def"));

        // Saved past the backup, the originals differ from it.
        p.commands()->document()->setPlainText(QStringLiteral("[Command]\r\nname = \"third\""));
        p.state(1)->document()->setPlainText(QStringLiteral("[Statedef 20]\r\ntype = S"));
        QVERIFY(p.toFile());
        QVERIFY(readAll(def.left(def.lastIndexOf('/')) + QStringLiteral("/hero.cmd")).contains("third"));

        // Reading the first backup back leaves the files alone and the project
        // unsaved; the save then makes the originals what the backup holds.
        QVERIFY(p.fromFile(first + QStringLiteral("hero.def"), 39, false, true));
        QVERIFY(p.isRestored());
        QVERIFY(p.commands()->isModified());
        QVERIFY(p.definitions()->isModified());
        QVERIFY(readAll(dir.filePath(QStringLiteral("hero.cmd"))).contains("third"));
        QCOMPARE(p.definitions()->fileName(), def);
        QVERIFY(p.toFile());
        QVERIFY(!p.isRestored());
        for (const QString &name : filesUnder(first))
            QVERIFY2(readAll(QProject::resolveFile(dir.path(), name)) == readAll(first + name), qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(TestBackups)
#include "tst_backups.moc"
