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

#include "shell/qaction2.h"
#include "approot.h"
#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "shell/mainwindow.h"
#include "shell/errordlg.h"
#include "shell/qaskuser.h"
#include "shell/qhistorymanager.h"
#include "shell/qinterface.h"
#include "shell/qwindowlayout.h"
#include "base/qbugreport.h"
#include "shell/bugdlg.h"
#include "shell/qprogress.h"
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
    return TestSupport::writeAll(path, text) ? path : QString();
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
    // Start from the shortcuts the program ships with.
    QVERIFY(QFile::copy(QStringLiteral(BF_SOURCE_DIR "/data/shortcuts.xml"), m_dir.filePath("shortcuts.xml")));
}

void TestInterface::init()
{
    // Each case starts from the defaults, not from what the previous one saved.
    QFile::remove(m_dir.filePath("config.xml"));
}

void TestInterface::closingTheOnlyTabLeavesTheNextEmptyProject()
{
    Answers answers;
    auto root = TestSupport::startProgram(m_dir.path());
    QInterface *ui = root->controller();
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->layout().tabBar()->count(), 1);
    const QString first = ui->layout().tabBar()->tabText(0);
    QVERIFY(first.startsWith("Project "));
    const int n = first.mid(8).toInt();
    QProject *old = ui->currentProject();

    ui->fileClose();
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->layout().tabBar()->count(), 1);
    QCOMPARE(ui->layout().tabBar()->tabText(0), QString("Project %1").arg(n + 1));
    QVERIFY(ui->currentProject() != old);
    QCOMPARE(ui->currentProject(), ui->projects().first());

    // New, then close all: again exactly one fresh project.
    ui->fileNew();
    QCOMPARE(ui->projectCount(), 2);
    QCOMPARE(ui->layout().tabBar()->currentIndex(), 1);
    ui->fileCloseAll();
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->layout().tabBar()->tabText(0), QString("Project %1").arg(n + 3));

    // Close others keeps the current one only; bad indexes are ignored.
    ui->fileNew();
    ui->fileNew();
    ui->layout().tabBar()->setCurrentIndex(1);
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
    auto root = TestSupport::startProgram(m_dir.path());
    QInterface *ui = root->controller();
    QCOMPARE(ui->projectCount(), 1);
    ui->openProject(def);
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->layout().tabBar()->tabText(0), QString("Arena"));
    QCOMPARE(ui->currentProject()->type(), QProjectType::Stage);
    QCOMPARE(ui->history()->entries().first(), QFileInfo(def).absoluteFilePath());

    // A changed first project stays.
    ui->fileCloseAll();
    QCOMPARE(ui->projectCount(), 1);
    ui->currentProject()->commands()->setText("; notes");
    ui->openProject(def);
    QCOMPARE(ui->projectCount(), 2);
    QCOMPARE(ui->layout().tabBar()->currentIndex(), 1);

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
    auto root = TestSupport::startProgram(m_dir.path());
    QInterface *ui = root->controller();
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

    // Colours the version can't hold: asked first; No saves nothing.
    sprites->addPalette(QRGBPal(), false, 1, 1);
    QImage glass(3, 3, QImage::Format_ARGB32);
    glass.fill(qRgba(10, 200, 30, 128));
    QVERIFY(sprites->changeImage(0, glass, -1, false, 0, 0));
    answers.asked.clear();
    QVERIFY(!ui->canSave(&project, QProjectFile::Sprites, 0x01000100));
    answers.byTitle["Save SFF"] = QMessageBox::Yes;
    QVERIFY(ui->canSave(&project, QProjectFile::Sprites, 0x01000100));
    QVERIFY(ui->canSave(&project, QProjectFile::Sprites, 0x02000100));
    QCOMPARE(answers.asked, QStringList({"Save SFF", "Save SFF"}));

    // Commands, states and definitions are never refused here.
    QVERIFY(ui->canSave(&project, QProjectFile::Commands, 0));
    QVERIFY(ui->canSave(&project, QProjectFile::States, 0));
    QVERIFY(!ui->canSave(nullptr, QProjectFile::Sprites, 0x02000100));
}

void TestInterface::saveAsAsksPaletteQuestionOnlyForOldCharacters()
{
    Answers answers;
    auto root = TestSupport::startProgram(m_dir.path());
    QInterface *ui = root->controller();

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
    chr->sprites()->setVersion(0x01000100);
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
    auto root = TestSupport::startProgram(m_dir.path());
    MainWindow &w = *root->window();
    QInterface *ui = root->controller();
    QActionManager &m = ui->actionManager();
    // The key's carrier lives on the window, so the key works whatever has focus;
    // which editor's action it runs is the manager's business.
    QAction2 *a = m.addAction({1, -1}, "test_spr_key", 72);
    QAction2 *c = m.addAction({1, -1}, "test_spr_other", 74);
    QVERIFY(m.setShortcut(a, QKeySequence("Ctrl+Shift+F12")));
    QVERIFY(w.actions().contains(a->carrier()));

    // The same key twice in one scope: refused, and the user is told.
    QVERIFY(!m.setShortcut(c, QKeySequence("Ctrl+Shift+F12")));
    QCOMPARE(answers.asked, QStringList({"Conflict!"}));
    QVERIFY(!c->carrier());

    // The shipped keys are in place.
    QCOMPARE(m.action("file_save")->keys(), QKeySequence("Ctrl+S"));
}

void TestInterface::actionListDockSideAndViewSwitches()
{
    Answers answers;
    auto root = TestSupport::startProgram(m_dir.path());
    MainWindow &w = *root->window();
    QInterface *ui = root->controller();
    auto *dock = w.findChild<QDockWidget *>();
    QVERIFY(dock);
    // With nothing stored, the list is shown.
    QVERIFY(!dock->isHidden());
    QVERIFY(ui->actionManager().action("view_actions")->isChecked());

    w.addDockWidget(Qt::LeftDockWidgetArea, dock);
    (*root->objects().config)["action_list_area"] = "0";
    ui->restoreControllerState();
    QCOMPARE(w.dockWidgetArea(dock), Qt::RightDockWidgetArea);
    (*root->objects().config)["action_list_area"] = "1";
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
    QCOMPARE((*root->objects().config)["show_left_panel"].toBool(), false);
    QCOMPARE((*root->objects().config)["action_list_area"].toInt(), int(Qt::LeftDockWidgetArea));
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
    auto root = TestSupport::startProgram(m_dir.path());
    MainWindow &w = *root->window();
    QInterface *ui = root->controller();
    QCOMPARE(ui->layout().projectStatusLabel()->text(), QString("Project: Character, Version: M.U.G.E.N. 1.1"));
    ui->layout().setStatusText(2, "x: 10");
    QVERIFY(!ui->layout().statusField(2)->isHidden());
    ui->layout().setStatusText(2, QString());
    QVERIFY(ui->layout().statusField(2)->isHidden());
    ui->layout().setStatusText(9, "ignored");
    QCOMPARE(ui->layout().statusField(9), nullptr);

    // The recent list sits in the Project menu.
    auto *file = w.findChild<QMenu *>("menuFile");
    QVERIFY(std::any_of(file->actions().cbegin(), file->actions().cend(), [](QAction *a) { return a->menu(); }));

    // The status follows the current project's type and version, and only the current one.
    QProject *p = ui->currentProject();
    p->definitions()->setText("[Info]\r\nmugenversion = 1.0\r\n[BGdef]\r\nspr = a.sff\r\n");
    p->definitions()->updateHierarchy();
    QCOMPARE(ui->layout().projectStatusLabel()->text(), QString("Project: Stage, Version: M.U.G.E.N. 1.0"));
    ui->fileNew();
    QProject other;
    ui->projTypeChanged(&other);
    ui->projTypeChanged(p);
    QCOMPARE(ui->layout().projectStatusLabel()->text(), QString("Project: Character, Version: M.U.G.E.N. 1.1"));

    // Help > About answers through the same seam as every other box.
    ui->helpAbout();
    QCOMPARE(answers.asked.last(), QString("About Brawlforge"));
}

void TestInterface::sampleCharacterOpensAndSavesAgain()
{
    BF_REQUIRE_SAMPLE();
    Answers answers;
    auto root = TestSupport::startProgram(m_dir.path());
    MainWindow &w = *root->window();
    w.resize(1000, 700);
    w.show();
    QInterface *ui = root->controller();
    ui->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
    QCOMPARE(ui->projectCount(), 1);
    QCOMPARE(ui->layout().tabBar()->tabText(0), QString("Kung Fu Man"));
    QCOMPARE(ui->layout().projectStatusLabel()->text(), QString("Project: Character, Version: M.U.G.E.N. 1.0"));
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
    // The program's log lies in its state folder, here the test's own.
    auto root = TestSupport::startProgram(m_dir.path());
    QInterface *ui = root->controller();

    // A sprite file that isn't one: the project opens and a box says which file and why.
    const QString folder = m_dir.filePath("broken");
    const QString def = writeText(folder + "/broken.def",
                                  "[Info]\r\nname = \"Broken\"\r\n[Files]\r\nsprite = broken.sff\r\ncmd = broken.cmd\r\n");
    writeText(folder + "/broken.sff", "no sprites in here");
    writeText(folder + "/broken.cmd", "[Command]\r\n");
    ui->openProject(def);
    QCOMPARE(ui->layout().tabBar()->tabText(ui->layout().tabBar()->currentIndex()), QString("Broken"));
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
}

QTEST_MAIN(TestInterface)
#include "tst_interface.moc"
