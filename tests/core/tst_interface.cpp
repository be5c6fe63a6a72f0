#include <QApplication>
#include <QDockWidget>
#include <QLabel>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "core/qaction2.h"
#include "core/qappobjects.h"
#include "core/qbugreport.h"
#include "core/qlog.h"
#include "core/qmugenmodel.h"
#include "core/qproject.h"
#include "core/ui/bugdlg.h"
#include "core/ui/mainwindow.h"
#include "core/ui/errordlg.h"
#include "core/ui/qaskuser.h"
#include "core/ui/qhistorymanager.h"
#include "core/ui/qinterface.h"
#include "core/ui/qprogress.h"
#include "sprites/qsprites.h"
#include "testsupport.h"

namespace {

// Records every question and answers from a script of answers by title.
struct Answers
{
    QStringList asked;
    QStringList texts; // what each box said, beside `asked`
    QMap<QString, QMessageBox::StandardButton> byTitle;
    QStringList files;       // handed out in order by file dialogs
    QStringList fileTitles;  // what the file dialogs were titled
    // Asked when `files` is empty: title and filter to a name.
    std::function<QString(const QString &, const QString &)> fileFor;
    QAskUser::MessageHandler oldMessages;
    QAskUser::FileHandler oldFiles;
    QAskUser::DialogHandler oldDialogs;

    Answers()
    {
        oldMessages = QAskUser::setMessageHandler([this](QMessageBox::Icon, const QString &title, const QString &text,
                                                         QMessageBox::StandardButtons,
                                                         QMessageBox::StandardButton def) {
            asked << title;
            texts << text;
            return byTitle.value(title, def == QMessageBox::NoButton ? QMessageBox::Ok : def);
        });
        oldFiles = QAskUser::setFileHandler([this](QAskUser::FileMode, const QString &title, const QString &,
                                                   const QString &filter) {
            fileTitles << title;
            if (!files.isEmpty())
                return files.takeFirst();
            return fileFor ? fileFor(title, filter) : QString();
        });
        // Modal dialogs (template choice, SFF version) are accepted as they stand.
        oldDialogs = QAskUser::setDialogHandler([](QDialog *) { return int(QDialog::Accepted); });
    }
    ~Answers()
    {
        QAskUser::setMessageHandler(oldMessages);
        QAskUser::setFileHandler(oldFiles);
        QAskUser::setDialogHandler(oldDialogs);
    }
};

QString writeText(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return QString();
    f.write(text);
    return path;
}

QImage rgbImage()
{
    QImage img(4, 4, QImage::Format_RGB32);
    img.fill(Qt::red);
    return img;
}

QImage indexedImage()
{
    QImage img(4, 4, QImage::Format_Indexed8);
    QList<QRgb> table(256, qRgb(0, 0, 0));
    table[1] = qRgb(255, 0, 0);
    img.setColorTable(table);
    img.fill(1);
    return img;
}

} // namespace

class TestInterface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void closingTheOnlyTabLeavesTheNextEmptyProject();
    void openingReplacesOnlyAnUntouchedFirstProject();
    void canSaveRefusesWhatTheEngineCannotRead();
    void saveAsAsksPaletteQuestionOnlyForOldCharacters();
    void shortcutsFollowTheCurrentEditor();
    void actionListDockSideAndViewSwitches();
    void statusTextAndMenus();
    void sampleCharacterOpensAndSavesAgain();
    void failuresReachTheUserAndTheLog();
    void cleanupTestCase();

private:
    QTemporaryDir m_dir;
};

void TestInterface::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QInterface::setStateFolder(m_dir.path());
    // The main window writes its configuration beside the program: start clean.
    QFile::remove(QCoreApplication::applicationDirPath() + "/config.xml");
    // Start from the shortcuts the program ships with.
    QVERIFY(QFile::copy(QStringLiteral(BF_SOURCE_DIR "/data/shortcuts.xml"), m_dir.filePath("shortcuts.xml")));
}

void TestInterface::init()
{
    // Each case starts from the defaults, not from what the previous one saved.
    QFile::remove(QCoreApplication::applicationDirPath() + "/config.xml");
}

void TestInterface::closingTheOnlyTabLeavesTheNextEmptyProject()
{
    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->tabBar()->count(), 1);
    const QString first = ui->tabBar()->tabText(0);
    QVERIFY(first.startsWith("Project "));
    const int n = first.mid(8).toInt();
    QProject *old = ui->currentProject();

    ui->fileClose();
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->tabBar()->count(), 1);
    QCOMPARE(ui->tabBar()->tabText(0), QString("Project %1").arg(n + 1));
    QVERIFY(ui->currentProject() != old);
    QCOMPARE(ui->currentProject(), ui->projects().first());

    // New, then close all: again exactly one fresh project.
    ui->fileNew();
    QCOMPARE(ui->projectCount(), 2);
    QCOMPARE(ui->tabBar()->currentIndex(), 1);
    ui->fileCloseAll();
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->tabBar()->tabText(0), QString("Project %1").arg(n + 3));

    // Close others keeps the current one only; bad indexes are ignored.
    ui->fileNew();
    ui->fileNew();
    ui->tabBar()->setCurrentIndex(1);
    QProject *keep = ui->currentProject();
    ui->fileCloseAllCurr();
    QCOMPARE(ui->projects(), QList<QProject *>({keep}));
    ui->projTabsClosed(7);
    ui->projTabsClosed(-1);
    ui->projTabsMoved(0, 9);
    QCOMPARE(ui->projectCount(), 1);
}

void TestInterface::openingReplacesOnlyAnUntouchedFirstProject()
{
    Answers answers;
    const QString def = writeText(m_dir.filePath("stage1/arena.def"),
                                  "[Info]\r\nname = \"Arena\"\r\nmugenversion = 1.1\r\n[BGdef]\r\nspr = arena.sff\r\n");
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    QCOMPARE(ui->projectCount(), 1);
    ui->openProject(def);
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->tabBar()->tabText(0), QString("Arena"));
    QCOMPARE(ui->currentProject()->type(), QProjectType::Stage);
    QCOMPARE(ui->history()->entries().first(), QFileInfo(def).absoluteFilePath());

    // A changed first project stays.
    ui->fileCloseAll();
    QCOMPARE(ui->projectCount(), 1);
    ui->currentProject()->commands()->setText("; notes");
    ui->openProject(def);
    QCOMPARE(ui->projectCount(), 2);
    QCOMPARE(ui->tabBar()->currentIndex(), 1);

    // A DEF that can't be read leaves the tabs as they were.
    ui->openProject(m_dir.filePath("missing/none.def"));
    ui->openProject(QString());
    QCOMPARE(ui->projectCount(), 2);

    // Opening through the dialog: cancelled, then chosen.
    ui->fileOpen();
    QCOMPARE(ui->projectCount(), 2);
    answers.files << def;
    ui->fileOpen();
    QCOMPARE(ui->projectCount(), 3);
    QCOMPARE(answers.fileTitles, QStringList({"Open project", "Open project"}));
}

void TestInterface::canSaveRefusesWhatTheEngineCannotRead()
{
    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    QProject project;
    QSprites *sprites = project.sprites();

    QVERIFY(!ui->canSave(&project, QProjectFile::Sprites, 0x02000000));
    QVERIFY(!ui->canSave(&project, QProjectFile::Animations, 0x02000000));
    QVERIFY(!ui->canSave(&project, QProjectFile::Sounds, 0x02000000));
    QCOMPARE(answers.asked, QStringList({"Save Sprites", "Save AIR", "Save SND"}));
    answers.asked.clear();

    // True-colour sprites without palettes: only a 2.01 file can hold them.
    sprites->add();
    QVERIFY(sprites->changeImage(0, rgbImage(), -1, false, 0, 0));
    QCOMPARE(sprites->paletteCount(), 0);
    QVERIFY(!ui->canSave(&project, QProjectFile::Sprites, 0x02000000));
    QVERIFY(!ui->canSave(&project, QProjectFile::Sprites, 0x01000100));
    QVERIFY(ui->canSave(&project, QProjectFile::Sprites, 0x02000100));
    QCOMPARE(answers.asked, QStringList({"Save SFF", "Save SFF"}));

    // One indexed sprite among them needs a palette, whatever the version.
    sprites->add();
    QVERIFY(sprites->changeImage(1, indexedImage(), -1, false, 0, 0));
    if (sprites->paletteCount() == 0)
        QVERIFY(!ui->canSave(&project, QProjectFile::Sprites, 0x02000100));

    // Commands, states and definitions are never refused here.
    QVERIFY(ui->canSave(&project, QProjectFile::Commands, 0));
    QVERIFY(ui->canSave(&project, QProjectFile::States, 0));
    QVERIFY(!ui->canSave(nullptr, QProjectFile::Sprites, 0x02000100));
}

void TestInterface::saveAsAsksPaletteQuestionOnlyForOldCharacters()
{
    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;

    // A stage: the name, the UTF-8 question, nothing about palettes.
    ui->currentProject()->definitions()->setText("[Info]\r\nname = \"Yard\"\r\n[BGdef]\r\nspr = yard.sff\r\n");
    ui->currentProject()->definitions()->updateHierarchy();
    QCOMPARE(ui->currentProject()->type(), QProjectType::Stage);
    answers.files << m_dir.filePath("yard/yard.def");
    QDir().mkpath(m_dir.filePath("yard"));
    ui->fileSaveAs();
    QCOMPARE(answers.asked, QStringList({"Save as UTF-8"}));
    QCOMPARE(answers.fileTitles.first(), QString("Save project"));
    QVERIFY(QFile::exists(m_dir.filePath("yard/yard.def")));

    // A character with a 1.01 sprite file is asked, in a box titled "Palettes".
    answers.asked.clear();
    ui->fileNew();
    QProject *chr = ui->currentProject();
    chr->definitions()->setText("[Info]\r\nname = \"Old\"\r\n[Files]\r\nsprite = old.sff\r\n");
    chr->definitions()->updateHierarchy();
    chr->sprites()->version = 0x01000100;
    QDir().mkpath(m_dir.filePath("old"));
    answers.files << m_dir.filePath("old/old.def");
    ui->fileSaveAs();
    QVERIFY(answers.asked.contains("Palettes"));
    QCOMPARE(answers.asked.first(), QString("Save as UTF-8"));

    // A cancelled name stops everything.
    answers.asked.clear();
    ui->fileSaveAs();
    QVERIFY(answers.asked.isEmpty());
    QVERIFY(ui->saveFileName(QProjectFile(9), QString()).isEmpty());
}

void TestInterface::shortcutsFollowTheCurrentEditor()
{
    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    QActionManager &m = ui->actionManager();
    QAction2 *a = m.addAction({1, -1}, "test_spr_key", 72);
    QAction2 *b = m.addAction({4, -1}, "test_st_key", 203);
    QAction2 *c = m.addAction({1, -1}, "test_spr_other", 74);
    int hitsA = 0, hitsB = 0;
    connect(a, &QAction::triggered, this, [&] { ++hitsA; });
    connect(b, &QAction::triggered, this, [&] { ++hitsB; });
    QVERIFY(m.setShortcut(a, QKeySequence("Ctrl+Shift+F12")));
    QVERIFY(m.setShortcut(b, QKeySequence("Ctrl+Shift+F12")));
    QAction *carrier = a->carrier();
    QVERIFY(w.actions().contains(carrier));

    m.setScope(1);
    carrier->trigger();
    m.setScope(4);
    carrier->trigger();
    QCOMPARE(hitsA, 1);
    QCOMPARE(hitsB, 1);

    // The same key twice in one scope: refused, with the warning.
    QVERIFY(!m.setShortcut(c, QKeySequence("Ctrl+Shift+F12")));
    QCOMPARE(answers.asked, QStringList({"Conflict!"}));
    QVERIFY(!c->carrier());

    // The shipped keys are in place.
    QCOMPARE(m.action("file_save")->keys(), QKeySequence("Ctrl+S"));
    QCOMPARE(m.action("file_new")->text(), QString("New (Ctrl+N)"));
}

void TestInterface::actionListDockSideAndViewSwitches()
{
    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    auto *dock = w.findChild<QDockWidget *>();
    QVERIFY(dock);
    // With nothing stored, the list is shown.
    QVERIFY(!dock->isHidden());
    QVERIFY(ui->actionManager().action("view_actions")->isChecked());

    w.addDockWidget(Qt::LeftDockWidgetArea, dock);
    (*Bf::config)["action_list_area"] = "0";
    ui->restoreControllerState();
    QCOMPARE(w.dockWidgetArea(dock), Qt::RightDockWidgetArea);
    (*Bf::config)["action_list_area"] = "1";
    ui->restoreControllerState();
    QCOMPARE(w.dockWidgetArea(dock), Qt::LeftDockWidgetArea);

    // The view switch and the dock agree, and the state goes back to the configuration.
    QAction *view = ui->actionManager().action("view_actions");
    view->setChecked(false);
    QVERIFY(dock->isHidden());
    view->setChecked(true);
    QVERIFY(!dock->isHidden());
    ui->actionManager().action("view_left_panel")->setChecked(false);
    ui->saveControllerState();
    QCOMPARE((*Bf::config)["show_left_panel"].toBool(), false);
    QCOMPARE((*Bf::config)["action_list_area"].toInt(), int(Qt::LeftDockWidgetArea));
    QVERIFY(QFile::exists(m_dir.filePath("shortcuts.xml")));
    QVERIFY(QFile::exists(m_dir.filePath("history.xml")));

    // The side list runs the row's action when it is enabled.
    QAction2 *own = ui->actionManager().addAction({1, -1}, "test_listed", 74);
    int hits = 0;
    connect(own, &QAction::triggered, this, [&] { ++hits; });
    ui->actionManager().list().setEditor(1);
    const int row = int(ui->actionManager().list().rowCount()) - 1;
    QCOMPARE(ui->actionManager().list().action(row), own);
    ui->actionChanged(ui->actionManager().list().index(row));
    own->setEnabled(false);
    ui->actionChanged(ui->actionManager().list().index(row));
    ui->actionChanged(QModelIndex());
    QCOMPARE(hits, 1);
}

void TestInterface::statusTextAndMenus()
{
    QCOMPARE(QInterface::projectStatusText(1, 0x01000000), QString("Project: Character, Version: M.U.G.E.N. 1.0"));
    QCOMPARE(QInterface::projectStatusText(4, 0x01010000), QString("Project: Stage, Version: M.U.G.E.N. 1.1"));
    QCOMPARE(QInterface::projectStatusText(2, 0), QString("Project: Storyboard, Version: M.U.G.E.N. Beta"));
    QCOMPARE(QInterface::projectStatusText(8, 0x0a0b0000), QString("Project: Font, Version: M.U.G.E.N. 10.11"));

    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    QCOMPARE(ui->projectStatusLabel()->text(), QString("Project: Character, Version: M.U.G.E.N. 1.1"));
    for (int i = 0; i < QInterface::StatusFieldCount; ++i)
        QVERIFY(ui->statusField(i)->minimumWidth() >= 250);
    ui->setStatusText(2, "x: 10");
    QVERIFY(!ui->statusField(2)->isHidden());
    ui->setStatusText(2, QString());
    QVERIFY(ui->statusField(2)->isHidden());
    ui->setStatusText(9, "ignored");
    QCOMPARE(ui->statusField(9), nullptr);

    // Every command of the Project menu, in order, with the recent list after "Open".
    auto *file = w.findChild<QMenu *>("menuFile");
    QStringList keys;
    for (QAction *a : file->actions()) {
        if (a->menu())
            keys << "recent";
        else if (!a->isSeparator())
            keys << a->objectName();
    }
    QCOMPARE(keys, QStringList({"file_new", "file_open", "recent", "file_close", "file_close_all",
                                "file_close_others", "file_save", "file_saveas", "file_backup", "file_load_backup",
                                "file_run_mugen", "file_exit"}));
    for (const char *key : {"edit_undo", "edit_find_replace", "edit_find_replace_multi", "view_left_panel",
                            "view_right_panel", "view_organizer", "view_actions", "view_calculator",
                            "view_clipboard", "view_issues", "tools_options", "tools_script_editor",
                            "help_reportbug", "help_about"})
        QVERIFY2(ui->actionManager().action(key), key);
    QCOMPARE(ui->actionManager().action("edit_find_replace")->isCheckable(), true);

    // The status follows the current project's type and version, and only the current one.
    QProject *p = ui->currentProject();
    p->definitions()->setText("[Info]\r\nmugenversion = 1.0\r\n[BGdef]\r\nspr = a.sff\r\n");
    p->definitions()->updateHierarchy();
    QCOMPARE(ui->projectStatusLabel()->text(), QString("Project: Stage, Version: M.U.G.E.N. 1.0"));
    ui->fileNew();
    QProject other;
    ui->projTypeChanged(&other);
    ui->projTypeChanged(p);
    QCOMPARE(ui->projectStatusLabel()->text(), QString("Project: Character, Version: M.U.G.E.N. 1.1"));

    // Help > About answers through the same seam as every other box.
    ui->helpAbout();
    QCOMPARE(answers.asked.last(), QString("About Brawlforge"));
}

void TestInterface::sampleCharacterOpensAndSavesAgain()
{
    BF_REQUIRE_SAMPLE();
    Answers answers;
    MainWindow w;
    w.resize(1000, 700);
    w.show();
    QInterface *ui = Bf::mainInterface;
    ui->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->tabBar()->tabText(0), QString("Kung Fu Man"));
    QCOMPARE(ui->projectStatusLabel()->text(), QString("Project: Character, Version: M.U.G.E.N. 1.0"));
    QProject *kfm = ui->currentProject();
    const int sprites = kfm->sprites()->count();
    QVERIFY(sprites > 0);
    QVERIFY(kfm->statesCount() > 0);

    const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
    if (!shots.isEmpty()) {
        QTest::qWait(200);
        QVERIFY(w.grab().save(shots + "/kfm-open.png"));
    }

    // Save As asks for the DEF only and writes every file it names beside it.
    const QString out = m_dir.filePath("kfm-copy");
    answers.files << out + "/kfm.def";
    ui->fileSaveAs();
    QCOMPARE(answers.fileTitles, QStringList{"Save project"});
    for (const char *name : {"kfm.def", "kfm.sff", "kfm.air", "kfm.snd", "kfm.cmd", "kfm.cns"})
        QVERIFY2(QFile::exists(out + "/" + name), name);
    QVERIFY(!answers.asked.contains("Save project")); // no failure to report

    // What was written opens again as the whole project.
    ui->openProject(out + "/kfm.def");
    QCOMPARE(ui->projectCount(), 2);
    QProject *copy = ui->currentProject();
    QCOMPARE(copy->sprites()->count(), sprites);
    QCOMPARE(copy->statesCount(), kfm->statesCount());
    QCOMPARE(copy->commands()->text(), kfm->commands()->text());

    // A long load shows the sprite file's progress too, and the window stops it.
    int largest = 0;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        for (QWidget *top : QApplication::topLevelWidgets()) {
            auto *progress = qobject_cast<QProgress *>(top);
            if (progress && progress->isVisible()) {
                largest = qMax(largest, progress->maximum());
                if (progress->maximum() > 50)
                    progress->cancel();
            }
        }
    });
    watch.start(0);
    answers.asked.clear();
    ui->openProject(out + "/kfm.def");
    watch.stop();
    QVERIFY2(largest >= sprites, qPrintable(QString::number(largest)));
    QCOMPARE(ui->projectCount(), 3);
    QCOMPARE(ui->currentProject()->statesCount(), 0);
    QVERIFY(!answers.asked.contains("Open project")); // cancelled is not failed
}

void TestInterface::failuresReachTheUserAndTheLog()
{
    Answers answers;
    MainWindow w;
    QInterface *ui = Bf::mainInterface;
    QLog log(m_dir.filePath("log.txt"));
    QLog::setCurrent(&log);

    // A sprite file that isn't one: the project opens and a box says which file and why.
    const QString folder = m_dir.filePath("broken");
    const QString def = writeText(folder + "/broken.def",
                                  "[Info]\r\nname = \"Broken\"\r\n[Files]\r\nsprite = broken.sff\r\ncmd = broken.cmd\r\n");
    writeText(folder + "/broken.sff", "no sprites in here");
    writeText(folder + "/broken.cmd", "[Command]\r\n");
    ui->openProject(def);
    QCOMPARE(ui->tabBar()->tabText(ui->tabBar()->currentIndex()), QString("Broken"));
    QCOMPARE(answers.asked.first(), QString("Open project"));
    QVERIFY(answers.texts.first().contains("broken.sff") && answers.texts.first().contains("signature"));

    // A save that fails says so by name; it is not taken for a project without a name.
    QProject *project = ui->currentProject();
    project->definitions()->document()->setPlainText(project->definitions()->text() + "\n; edited");
    project->definitions()->setFileName(folder + "/broken.sff/broken.def");
    answers.asked.clear();
    ui->fileSave();
    QCOMPARE(answers.asked, QStringList{"Save project"});
    QVERIFY(answers.texts.last().contains("broken.def: Can't be saved: "));
    QVERIFY(answers.fileTitles.isEmpty());

    // A sprite file written on its own reports at once; a backup needs a saved project.
    answers.asked.clear();
    QVERIFY(!project->sprites()->toFile(folder + "/broken.sff/x.sff", false, 0, true, false));
    ui->fileNew();
    ui->fileBackup();
    QCOMPARE(answers.asked, QStringList({"Sprite saving error", "Backup"}));

    // Help > Report a bug packs the log with what happened and the description.
    const QString package = m_dir.filePath("report.bfb");
    answers.files << package;
    const QAskUser::DialogHandler accept = QAskUser::setDialogHandler([](QDialog *dialog) {
        if (auto *bug = qobject_cast<BugDlg *>(dialog))
            bug->setDescription("the sprites vanished");
        return int(QDialog::Accepted);
    });
    ui->helpReportBug();
    QAskUser::setDialogHandler(accept);
    QLog::setCurrent(nullptr);
    QBugReport report;
    QFile file(package);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(report.read(file, nullptr));
    QCOMPARE(report.description, QString("the sprites vanished"));
    QVERIFY(report.log.contains("Open project - " + def.toUtf8()));
    QVERIFY(report.log.contains("broken.sff: The sprites can't be read: "));
}

void TestInterface::cleanupTestCase()
{
    QFile::remove(QCoreApplication::applicationDirPath() + "/config.xml");
}

QTEST_MAIN(TestInterface)
#include "tst_interface.moc"
