#include <QtTest>

#include "approot.h"
#include "askrecorder.h"
#include "testsupport.h"

#include "base/qmugenmodel.h"
#include "project/qbakmanager.h"
#include "project/qproject.h"
#include "shell/bakdlg.h"
#include "shell/bugdlg.h"
#include "shell/enginedialogs.h"
#include "shell/qenginerun.h"
#include "shell/qinterface.h"

#include <QDirIterator>
#include <QGuiApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextDocument>

using TestSupport::readAll;
using TestSupport::writeAll;

namespace {

// An engine that notes its arguments and working folder, copies what chars/
// holds while it runs to ../snapshot, and keeps running while a file "hold"
// lies beside it (fifteen seconds at most).
const QByteArray kStub = "#!/bin/sh\n"
                         "here=$(dirname \"$0\")\n"
                         "{ for a in \"$@\"; do echo \"[$a]\"; done; pwd -P; } > \"$here/run.log\"\n"
                         "rm -rf \"$here/../snapshot\"; cp -r chars \"$here/../snapshot\"\n"
                         "i=0; while [ -e hold ] && [ $i -lt 300 ]; do sleep 0.05; i=$((i+1)); done\n";

QString makeEngine(const QString &folder, bool executable = true)
{
    const QString exe = folder + QStringLiteral("/engine.sh");
    writeAll(exe, kStub);
    QDir().mkpath(folder + QStringLiteral("/chars"));
    if (executable)
        QFile::setPermissions(exe, QFile::permissions(exe) | QFile::ExeOwner);
    return exe;
}

QString copyHero(const QString &dir, const QByteArray &commands)
{
    const QString from = TestSupport::fixturesDir() + QStringLiteral("/hero/");
    for (const char *name : {"hero.def", "hero.cns", "states/walk.st", "hero.air", "hero.snd", "hero1.act"})
        writeAll(dir + QLatin1Char('/') + QLatin1String(name), readAll(from + QLatin1String(name)));
    writeAll(dir + QStringLiteral("/hero.cmd"), commands);
    return dir + QStringLiteral("/hero.def");
}

QStringList filesUnder(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

} // namespace

class TestEngineRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
    }

    void parameterLines()
    {
        QCOMPARE(QEngineRun::placeholders(QStringLiteral("-p1 %1 -p2 %10 %0 %1 %")), QList<int>({1, 10, 0}));
        QMap<int, QString> names{{1, QStringLiteral("bf3_0")}};
        QCOMPARE(QEngineRun::substitute(QStringLiteral("%1:%10:%1"), names), QStringLiteral("bf3_0:%10:bf3_0"));
        QStringList args;
        QVERIFY(QEngineRun::splitParameters(QStringLiteral(" %0  -log \"my log.txt\" \"\" x\"y z\""), &args));
        QCOMPARE(args, QStringList({"%0", "-log", "my log.txt", "", "xy z"}));
        QVERIFY(!QEngineRun::splitParameters(QStringLiteral("%0 \"open"), &args));
        QVERIFY(QEngineRun::isCopyName(QStringLiteral("bf3_12")));
        QVERIFY(!QEngineRun::isCopyName(QStringLiteral("bf3_x")));
        QVERIFY(!QEngineRun::isCopyName(QStringLiteral("bf3_1.def")));
    }

    void runsInTheEngineAndCleansUp()
    {
        TestSupport::AskRecorder ask;
        auto root = TestSupport::startProgram(m_dir.path());
        QInterface *ui = root->controller();
        QMugenModel *config = ui->objects().config;
        QSignalSpy ended(ui, &QInterface::engineRunEnded);
        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        auto run = [&] {
            const int before = int(ended.size());
            ui->fileRunMugen();
            if (ui->engineRun())
                QTRY_VERIFY_WITH_TIMEOUT(ended.size() > before, 15000);
        };

        // No engine, then a line without placeholders: the two warnings.
        run();
        QCOMPARE(ask.titles, QStringList{"Warning!"});
        QVERIFY(ask.texts.last().contains("configure a M.U.G.E.N. first"));
        const QString folder = m_dir.filePath(QStringLiteral("engine"));
        const QString exe = makeEngine(folder);
        config->addEngine({QStringLiteral("Stub"), exe, QStringLiteral("-rounds 1"), QString()});
        run();
        QVERIFY(ask.texts.last().contains("wrong parameters"));
        QCOMPARE(ended.size(), 0);

        // An executable that isn't there is named before anything is written.
        config->setEngine(0, {QStringLiteral("Stub"), folder + QStringLiteral("/gone.sh"), QStringLiteral("%0 %0"),
                              QString()});
        run();
        QVERIFY(ask.texts.last().contains("gone.sh"));
        QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/chars/bf3_0")));

        // One engine starts at once, in its own folder, with one copy for "%0 %0".
        // Copies a crash left are removed first; nothing else in chars is touched.
        config->setEngine(0, {QStringLiteral("Stub"), exe, QStringLiteral("%0 %0"), QString()});
        const QString a = copyHero(m_dir.filePath(QStringLiteral("a")), "; tab A\r\n");
        const QString b = copyHero(m_dir.filePath(QStringLiteral("b")), "; tab B\r\n");
        ui->openProject(a);
        writeAll(folder + QStringLiteral("/chars/bf3_0/old.def"), "stale");
        writeAll(folder + QStringLiteral("/chars/bf3_7/bf3_7.def"), "stale");
        writeAll(folder + QStringLiteral("/chars/bf3_x/keep.def"), "mine");
        writeAll(folder + QStringLiteral("/chars/kfm/kfm.def"), "mine");
        writeAll(folder + QStringLiteral("/chars/readme.txt"), "mine");
        const QStringList own{"bf3_x/keep.def", "kfm/kfm.def", "readme.txt"};
        ask.reset();
        run();
        QCOMPARE(ask.titles, QStringList());
        QCOMPARE(readAll(folder + QStringLiteral("/run.log")),
                 "[bf3_0]\n[bf3_0]\n" + QFileInfo(folder).canonicalFilePath().toUtf8() + "\n");
        const QString snapshot = m_dir.filePath(QStringLiteral("snapshot"));
        QCOMPARE(filesUnder(snapshot), QStringList({"bf3_0/States/walk.st", "bf3_0/bf3_0.def", "bf3_0/hero.air",
                                                    "bf3_0/hero.cmd", "bf3_0/hero.cns", "bf3_0/hero.snd",
                                                    "bf3_0/hero1.act", "bf3_x/keep.def", "kfm/kfm.def",
                                                    "readme.txt"}));
        QCOMPARE(readAll(snapshot + QStringLiteral("/bf3_0/hero.snd")), readAll(m_dir.filePath("a/hero.snd")));
        QCOMPARE(filesUnder(folder + QStringLiteral("/chars")), own);
        QVERIFY(!ui->currentProject()->definitions()->isModified());

        // "%1 %0" with two tabs: the first tab is bf3_0, the current one bf3_1.
        ui->openProject(b);
        QCOMPARE(ui->projectCount(), 2);
        config->setEngine(0, {QStringLiteral("Stub"), exe, QStringLiteral("-p1 %1 -p2 %0"), QString()});
        run();
        QCOMPARE(readAll(folder + QStringLiteral("/run.log")).split('\n').mid(0, 4),
                 QList<QByteArray>({"[-p1]", "[bf3_0]", "[-p2]", "[bf3_1]"}));
        QVERIFY(readAll(snapshot + QStringLiteral("/bf3_0/hero.cmd")).contains("tab A"));
        QVERIFY(readAll(snapshot + QStringLiteral("/bf3_1/hero.cmd")).contains("tab B"));

        // "%5 %0" with two tabs: %5 stays as it is, and no bf3_0 is made.
        config->setEngine(0, {QStringLiteral("Stub"), exe, QStringLiteral("%5 %0"), QString()});
        run();
        QVERIFY(readAll(folder + QStringLiteral("/run.log")).startsWith("[%5]\n[bf3_1]\n"));
        QVERIFY(!QFileInfo::exists(snapshot + QStringLiteral("/bf3_0")));
        QVERIFY(QFileInfo::exists(snapshot + QStringLiteral("/bf3_1/bf3_1.def")));
        QCOMPARE(filesUnder(folder + QStringLiteral("/chars")), own);

        // Two engines: the run dialog chooses. The second lies in a folder with
        // a blank, is no executable itself and runs through a launcher; a quoted
        // parameter keeps its blank.
        const QString spaced = m_dir.filePath(QStringLiteral("my engine"));
        const QString script = makeEngine(spaced, false);
        config->addEngine({QStringLiteral("Through sh"), script, QStringLiteral("%0 -log \"my log.txt\""),
                           QStringLiteral("/bin/sh")});
        ask.onDialog = [&](QDialog *dialog) {
            auto *dlg = qobject_cast<MugRunDlg *>(dialog);
            if (!dlg)
                return int(QDialog::Rejected);
            dlg->setEngineRow(1);
            if (!shots.isEmpty()) {
                dlg->show();
                QTest::qWait(100);
                dlg->grab().save(shots + QStringLiteral("/run-in-engine-dialog.png"));
            }
            return int(QDialog::Accepted);
        };
        run();
        QCOMPARE(readAll(spaced + QStringLiteral("/run.log")),
                 "[bf3_0]\n[-log]\n[my log.txt]\n" + QFileInfo(spaced).canonicalFilePath().toUtf8() + "\n");
        // Cancelled, nothing runs.
        ask.onDialog = [](QDialog *) { return int(QDialog::Rejected); };
        QFile::remove(spaced + QStringLiteral("/run.log"));
        run();
        QVERIFY(!QFileInfo::exists(spaced + QStringLiteral("/run.log")));
        config->removeEngine(1);

        // While the engine runs the window goes on, a second run is refused,
        // and the copies stay until it ends.
        config->setEngine(0, {QStringLiteral("Stub"), exe, QStringLiteral("%0 %0"), QString()});
        writeAll(folder + QStringLiteral("/hold"), "");
        QFile::remove(folder + QStringLiteral("/run.log"));
        ask.reset();
        ui->fileRunMugen();
        QVERIFY(ui->engineRun());
        QTRY_VERIFY(QFileInfo::exists(folder + QStringLiteral("/run.log")) && ui->engineRun()->isRunning());
        ui->fileRunMugen();
        QCOMPARE(ask.titles, QStringList{"Run in M.U.G.E.N."});
        QVERIFY(ask.texts.last().contains("still running"));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/chars/bf3_0/bf3_0.def")));
        if (!shots.isEmpty()) {
            // Five seconds of engine, the menus used meanwhile: the screen shows both.
            QMainWindow *window = root->window();
            window->setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window));
            QTest::qWait(2500);
            QMenuBar *bar = window->menuBar();
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(bar->actions().first()).center());
            QTest::qWait(2500);
            QVERIFY(ui->engineRun());
            QGuiApplication::primaryScreen()->grabWindow(0).save(shots + QStringLiteral("/engine-running.png"));
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        }
        QVERIFY(QFile::remove(folder + QStringLiteral("/hold")));
        QTRY_VERIFY_WITH_TIMEOUT(!ui->engineRun(), 15000);
        QCOMPARE(filesUnder(folder + QStringLiteral("/chars")), own);

        // An executable that can't start: a clear message, the copies gone, and the run over.
        const QString broken = m_dir.filePath(QStringLiteral("broken/engine"));
        writeAll(broken, QByteArray("\x7f" "ELF garbage", 12));
        QFile::setPermissions(broken, QFile::permissions(broken) | QFile::ExeOwner);
        QDir().mkpath(m_dir.filePath(QStringLiteral("broken/chars")));
        config->setEngine(0, {QStringLiteral("Broken"), broken, QStringLiteral("%0"), QString()});
        ask.reset();
        run();
        QCOMPARE(ask.titles, QStringList{"Run in M.U.G.E.N."});
        QVERIFY(ask.texts.last().contains("could not be started"));
        QVERIFY(filesUnder(m_dir.filePath(QStringLiteral("broken/chars"))).isEmpty());
        QVERIFY(!ui->engineRun());
    }

    void enginesPageEditsTheList()
    {
        TestSupport::AskRecorder ask;
        QMugenModel config;
        config.addEngine({QStringLiteral("Old"), QStringLiteral("/old/mugen"), QStringLiteral("%0"), QString()});
        config.addEngine({QStringLiteral("Gone"), QStringLiteral("/x"), QStringLiteral("%0"), QString()});
        QVERIFY(config.save(m_dir.filePath(QStringLiteral("engines.xml"))));
        EnginesDlg dlg(&config);
        QEnginesPage *page = dlg.page();

        // Add and Edit go through the engine dialog.
        QMugenModel::Engine wine{QStringLiteral("Wine"), QStringLiteral("/games/mugen/mugen.exe"),
                                 QStringLiteral("%0 %1"), QStringLiteral("wine")};
        ask.onDialog = [&](QDialog *d) {
            auto *edit = qobject_cast<MugenDlg *>(d);
            if (!edit)
                return int(QDialog::Rejected);
            edit->setEngine(wine);
            return int(QDialog::Accepted);
        };
        page->addEngine();
        QCOMPARE(config.rowCount(), 3);
        QCOMPARE(page->currentRow(), 2);
        page->moveUp();
        page->moveUp();
        page->moveUp(); // at the top: nothing
        QCOMPARE(config.engines.at(0).name, QStringLiteral("Wine"));
        QCOMPARE(config.engines.at(0).launcher, QStringLiteral("wine"));
        page->setCurrentRow(2);
        page->removeEngine();
        wine.name = QStringLiteral("Wine 2");
        page->setCurrentRow(0);
        page->editEngine();
        QCOMPARE(config.engines.at(0).name, QStringLiteral("Wine 2"));
        if (!qEnvironmentVariableIsEmpty("BF_SCREENSHOT_DIR")) {
            dlg.show();
            QTest::qWait(100);
            dlg.grab().save(qEnvironmentVariable("BF_SCREENSHOT_DIR") + QStringLiteral("/engines-page.png"));
        }

        // What the page leaves is what the next start reads: the removed engine stays removed.
        QVERIFY(config.save(m_dir.filePath(QStringLiteral("engines.xml"))));
        QMugenModel next;
        QVERIFY(next.load(m_dir.filePath(QStringLiteral("engines.xml"))));
        QCOMPARE(next.rowCount(), 2);
        QCOMPARE(next.engines.at(0).launcher, QStringLiteral("wine"));
        QCOMPARE(next.engines.at(1).name, QStringLiteral("Old"));
        page->clearEngines();
        QCOMPARE(config.rowCount(), 0);
    }

    void backupsAndBugReportsThroughTheMenus()
    {
        BF_REQUIRE_SAMPLE();
        TestSupport::AskRecorder ask;
        auto root = TestSupport::startProgram(m_dir.path());
        QInterface *ui = root->controller();
        const QString dir = m_dir.filePath(QStringLiteral("kfm"));
        for (const QString &name : filesUnder(TestSupport::samplePath(QStringLiteral("chars/kfm"))))
            writeAll(dir + QLatin1Char('/') + name, readAll(TestSupport::samplePath("chars/kfm/" + name)));
        ui->openProject(dir + QStringLiteral("/kfm.def"));
        QProject *kfm = ui->currentProject();
        QCOMPARE(kfm->definitions()->fileName(), dir + QStringLiteral("/kfm.def"));

        // Backups made one right after the other keep both.
        ui->fileBackup();
        const QString first = kfm->lastBackupFolder();
        ui->fileBackup();
        QVERIFY(kfm->lastBackupFolder() != first);
        QCOMPARE(QBakManager(kfm->definitions()->fileName()).rowCount(), 2);
        const QStringList backedUp = filesUnder(first);
        QVERIFY(backedUp.contains(QStringLiteral("kfm.sff")));

        // Changed and saved after the first backup.
        kfm->commands()->document()->setPlainText(QStringLiteral("; changed\r\n"));
        kfm->sprites()->remove(0);
        ui->fileSave();
        QVERIFY(readAll(dir + QStringLiteral("/kfm.sff")) != readAll(first + QStringLiteral("kfm.sff")));

        // Load backup lists newest first: the older one is row 1. The files
        // stay as they are until the save, which makes them the backup's.
        ask.reset();
        ask.onDialog = [&](QDialog *d) {
            auto *dlg = qobject_cast<BakDlg *>(d);
            if (!dlg)
                return int(QDialog::Accepted);
            dlg->setCurrentRow(1);
            dlg->setKeep(2);
            if (!qEnvironmentVariableIsEmpty("BF_SCREENSHOT_DIR")) {
                dlg->show();
                QTest::qWait(100);
                dlg->grab().save(qEnvironmentVariable("BF_SCREENSHOT_DIR") + QStringLiteral("/load-backup.png"));
            }
            return int(QDialog::Accepted);
        };
        ui->fileLoadBackup();
        QCOMPARE(ask.titles, QStringList());
        QVERIFY(kfm->commands()->isModified());
        QCOMPARE(kfm->sprites()->fileName(), dir + QStringLiteral("/kfm.sff"));
        QVERIFY(readAll(dir + QStringLiteral("/kfm.cmd")).contains("; changed"));
        ui->fileSave();
        for (const QString &name : backedUp)
            QVERIFY2(readAll(QProject::resolveFile(dir, name)) == readAll(first + name), qPrintable(name));

        // Two are kept, as chosen in the dialog: the third backup removes the oldest.
        ui->fileBackup();
        const QBakManager left(kfm->definitions()->fileName());
        QCOMPARE(left.rowCount(), 2);
        QVERIFY(!QFileInfo::exists(first));

        // A bug report carries the animations of the current project, and
        // Help > Restore puts them into the project current then.
        QFile::remove(m_dir.filePath(QStringLiteral("bug_descr.txt")));
        const QString package = m_dir.filePath(QStringLiteral("kfm.bfb"));
        ask.files << package;
        ask.onDialog = [](QDialog *d) {
            if (auto *bug = qobject_cast<BugDlg *>(d)) {
                bug->setFlags({false, false, true, false, false, false});
                bug->setDescription(QStringLiteral("the walk stutters"));
            }
            return int(QDialog::Accepted);
        };
        ui->helpReportBug();
        const int actions = kfm->animations()->count();
        QVERIFY(actions > 0);
        ui->fileNew();
        QCOMPARE(ui->currentProject()->animations()->count(), 0);
        ask.files << package;
        ui->restoreBugReport();
        QCOMPARE(ui->currentProject()->animations()->count(), actions);
        QCOMPARE(ui->currentProject()->animations()->fileText(), kfm->animations()->fileText());
        QCOMPARE(readAll(m_dir.filePath(QStringLiteral("bug_descr.txt"))), QByteArray("the walk stutters"));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestEngineRun)
#include "tst_enginerun.moc"
