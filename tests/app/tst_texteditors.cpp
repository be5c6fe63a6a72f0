// The definitions, commands and states editors driven as the author drives
// them: through the registry, their actions and the QAskUser seam, on a copy
// of the sample character.
#include <QtTest>

#include "approot.h"
#include "testsupport.h"

#include "code/qsyntaxtexteditor.h"
#include "code/ui/qstateseditor.h"
#include "code/ui/qtexteditor.h"
#include "base/qmugenmodel.h"
#include "code/ui/qtextworkspace.h"
#include "project/qproject.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/finddlgmlt.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qquickfind.h"
#include "shell/qwindowlayout.h"

#include <QComboBox>
#include <QDialog>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTemporaryDir>

using namespace TestSupport;

namespace {

// Answers Yes to every question and fills the go-to-line dialog with `line`.
struct Answers
{
    QStringList texts;
    int line = 1;
    Answers()
    {
        QAskUser::setMessageHandler([this](QMessageBox::Icon, const QString &, const QString &text,
                                           QMessageBox::StandardButtons buttons, QMessageBox::StandardButton) {
            texts << text;
            return buttons.testFlag(QMessageBox::Yes) ? QMessageBox::Yes : QMessageBox::Ok;
        });
        QAskUser::setDialogHandler([this](QDialog *dialog) {
            if (auto *spin = dialog->findChild<QSpinBox *>(QStringLiteral("line")))
                spin->setValue(line);
            return int(QDialog::Accepted);
        });
    }
    ~Answers()
    {
        QAskUser::setMessageHandler({});
        QAskUser::setDialogHandler({});
    }
};

// A copy of a sample folder, so that saves can be compared with the original.
QString copyFolder(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files);
    while (it.hasNext()) {
        const QString file = it.next();
        QFile::copy(file, to + QLatin1Char('/') + QFileInfo(file).fileName());
    }
    return to;
}

struct App
{
    std::unique_ptr<QAppRoot> root;
    QEditorRegistry &registry() const { return root->controller()->registry(); }
    QTextWorkspace *workspace() const { return static_cast<QTextWorkspace *>(registry().workspace(0)); }
    QTextEditor *view() const { return workspace()->editor(); }
    QProject *project() const { return root->controller()->currentProject(); }
    QString status(int field) const { return registry().layout().statusField(field)->text(); }
    void trigger(const char *key) const { registry().actionManager().action(QString::fromLatin1(key))->trigger(); }
    int line() const { return view()->textCursor().blockNumber(); }
};

App start(const QString &dir, const QString &def)
{
    App a;
    a.root = startProgram(dir);
    a.root->window()->resize(1100, 760);
    a.root->window()->show();
    a.root->controller()->openProject(def);
    return a;
}

} // namespace

class TestTextEditors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    // kfm in the three editors: the status fields, the state tabs, issues
    // walked without wrapping, go to line, comments, edits undone and saved.
    void sampleCharacter()
    {
        BF_REQUIRE_SAMPLE();
        Answers answers;
        const QString folder = copyFolder(samplePath(QStringLiteral("chars/kfm")), m_dir.filePath(QStringLiteral("kfm")));
        App app = start(m_dir.filePath(QStringLiteral("cfg")), folder + QStringLiteral("/kfm.def"));
        QProject *project = app.project();
        QVERIFY(project);

        app.registry().editorSwitch(0);
        const int defLines = project->definitions()->document()->lineCount();
        QCOMPARE(app.status(0), QStringLiteral("Line: 1, Column: 1, Line count: %1").arg(defLines));
        QVERIFY(app.status(1).startsWith(QStringLiteral("Encoding: ")));
        QCOMPARE(app.status(2), QStringLiteral("Syntax error count: 0"));
        QCOMPARE(app.view()->document(), project->definitions()->document());

        app.registry().editorSwitch(3);
        QCOMPARE(app.view()->document(), project->commands()->document());
        QVERIFY2(app.status(2).startsWith(QStringLiteral("Syntax error count: 0, Unique commands: ")), qPrintable(app.status(2)));
        const int unique = app.status(2).section(QLatin1Char(' '), -1).toInt();
        QVERIFY(unique > 20);

        app.registry().editorSwitch(4);
        auto *states = static_cast<QStatesEditor *>(app.registry().editor(4));
        QTabBar *tabs = app.workspace()->tabBar();
        QVERIFY(tabs->isVisible());
        QCOMPARE(tabs->count(), project->statesCount());
        QCOMPARE(tabs->tabText(0), QStringLiteral("States kfm.cns"));
        QSyntaxTextEditor *cns = project->state(0);
        QCOMPARE(app.view()->document(), cns->document());
        QCOMPARE(app.status(2), QStringLiteral("Syntax error count: 0"));

        // Two mistakes: the walk visits both, then stops at the last.
        QTextCursor c(cns->document()->findBlockByNumber(134));
        c.insertText(QStringLiteral("[State 170, oops]\ntype = NoSuchController\ntrigger1 = 1\n"));
        QTextCursor(cns->document()->findBlockByNumber(152)).insertText(QStringLiteral("trigger2 = (1\n"));
        QVERIFY(states->isModified());
        QTRY_COMPARE(app.status(2), QStringLiteral("Syntax error count: 2"));
        QCOMPARE(app.workspace()->issueBox()->count() >= 2, true);
        app.view()->setTextCursor(QTextCursor(cns->document()));
        QList<int> visited;
        for (int i = 0; i < 4; ++i) {
            app.trigger("txt_next_error");
            if (visited.isEmpty() || visited.last() != app.line())
                visited << app.line();
        }
        QCOMPARE(visited, QList<int>({135, 152}));
        app.trigger("txt_prev_error");
        QCOMPARE(app.line(), 135);
        app.trigger("txt_prev_error");
        QCOMPARE(app.line(), 135);
        QVERIFY(app.status(0).startsWith(QStringLiteral("Line: 136, Column: ")));

        // Go to line: too far asks, and yes goes to the last line.
        answers.line = 99999;
        app.trigger("txt_goto");
        QCOMPARE(answers.texts, QStringList(QStringLiteral("Invalid line! Do you want go to the last line?")));
        QCOMPARE(app.line(), cns->document()->blockCount() - 1);
        answers.line = 0;
        app.trigger("txt_goto");
        QCOMPARE(app.line(), 0);

        // Comment and uncomment the lines of a selection, one undo step a line.
        QTextCursor sel(cns->document()->findBlockByNumber(134));
        sel.setPosition(cns->document()->findBlockByNumber(136).position() + 2, QTextCursor::KeepAnchor);
        app.view()->setTextCursor(sel);
        app.trigger("txt_comment");
        for (int b = 134; b <= 136; ++b)
            QVERIFY(cns->document()->findBlockByNumber(b).text().startsWith(QLatin1Char(';')));
        QTRY_COMPARE(app.status(2), QStringLiteral("Syntax error count: 1"));
        app.trigger("edit_undo");
        QVERIFY(!cns->document()->findBlockByNumber(136).text().startsWith(QLatin1Char(';')));
        QVERIFY(cns->document()->findBlockByNumber(135).text().startsWith(QLatin1Char(';')));
        app.trigger("edit_redo");
        app.view()->setTextCursor(sel);
        app.trigger("txt_comment");
        QCOMPARE(cns->document()->findBlockByNumber(135).text(), QStringLiteral("type = NoSuchController"));

        // Closing with unsaved states asks first.
        answers.texts.clear();
        QVERIFY(app.registry().canCloseProject(project));
        QCOMPARE(answers.texts, QStringList(QStringLiteral("Do you really want to discard the changes made in the states?")));

        // The project's save writes the edited state file and nothing else.
        QMap<QString, QByteArray> before;
        for (const QFileInfo &f : QDir(folder).entryInfoList(QDir::Files))
            before.insert(f.fileName(), readAll(f.filePath()));
        app.root->controller()->fileSave();
        QVERIFY(!cns->isModified());
        QVERIFY(!states->isModified());
        answers.texts.clear();
        QVERIFY(app.registry().canCloseProject(project));
        QVERIFY(answers.texts.isEmpty());
        for (auto it = before.cbegin(); it != before.cend(); ++it) {
            const QByteArray now = readAll(folder + QLatin1Char('/') + it.key());
            if (it.key() == QLatin1String("kfm.cns"))
                QVERIFY(now.contains("type = NoSuchController\r\n"));
            else
                QVERIFY2(now == it.value(), qPrintable(it.key()));
        }

        // An issue line "file(N): ..." opens its document on line N.
        app.root->controller()->itemClicked(folder + QStringLiteral("/kfm.cmd"), 10);
        QCOMPARE(app.registry().currentEditorId(), 3);
        QCOMPARE(app.line(), 10);
        app.root->controller()->itemClicked(folder + QStringLiteral("/kfm.cns"), 152);
        QCOMPARE(app.registry().currentEditorId(), 4);
        QCOMPARE(app.view()->document(), cns->document());
        QCOMPARE(app.line(), 152);
        // Each document keeps its place while another one is shown.
        app.registry().editorSwitch(0);
        app.registry().editorSwitch(4);
        QCOMPARE(app.line(), 152);

        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            app.view()->gotoLine(128, 0);
            app.trigger("txt_next_error");
            QTest::qWait(300);
            QVERIFY(app.root->window()->grab().save(shots + QStringLiteral("/states-kfm.png")));
        }
    }

    // The search bar and the multi-line dialog on kfm's states: replace all as
    // one undo step, bad expressions, the ends of the document, captures.
    void findAndReplace()
    {
        BF_REQUIRE_SAMPLE();
        Answers answers;
        const QString folder = copyFolder(samplePath(QStringLiteral("chars/kfm")), m_dir.filePath(QStringLiteral("find")));
        App app = start(m_dir.filePath(QStringLiteral("cfg3")), folder + QStringLiteral("/kfm.def"));
        app.registry().editorSwitch(4);
        QTextDocument *doc = app.view()->document();
        QQuickFind *bar = app.root->controller()->quickFind();
        app.trigger("edit_find_replace");
        QVERIFY(bar->isVisible());
        const auto set = [&app](const char *key, bool on) { app.registry().actionManager().action(QString::fromLatin1(key))->setChecked(on); };
        set("quick_search_case", true);
        set("quick_search_circular", false);

        const QString original = doc->toPlainText();
        bar->findField()->setText(QStringLiteral("a"));
        bar->replaceField()->setText(QStringLiteral("aa"));
        bar->findChild<QPushButton *>(QStringLiteral("replaceAllButton"))->click();
        QCOMPARE(doc->toPlainText().count(QLatin1Char('a')), 2 * original.count(QLatin1Char('a')));
        app.trigger("edit_undo");
        QCOMPARE(doc->toPlainText(), original);
        QVERIFY(answers.texts.isEmpty());

        set("quick_search_regexp", true);
        bar->findField()->setText(QStringLiteral("(["));
        bar->find();
        QCOMPARE(answers.texts, QStringList(QStringLiteral("No text found!")));

        // Backward from the start stops there; circular goes round to the last match.
        set("quick_search_regexp", false);
        set("quick_search_backward", true);
        app.view()->setTextCursor(QTextCursor(doc));
        bar->findField()->setText(QStringLiteral("[Statedef"));
        bar->find();
        QCOMPARE(answers.texts.size(), 2);
        QVERIFY(!app.view()->textCursor().hasSelection());
        set("quick_search_circular", true);
        bar->find();
        QCOMPARE(app.view()->textCursor().selectionStart(), original.lastIndexOf(QStringLiteral("[Statedef")));
        QCOMPARE(app.root->objects().config->map.value(QStringLiteral("quicksearch_back")).toBool(), true);

        // A capture goes into the replacement; Replace then moves to the next match.
        set("quick_search_backward", false);
        set("quick_search_regexp", true);
        app.view()->setTextCursor(QTextCursor(doc));
        bar->findField()->setText(QStringLiteral("\\[Statedef (\\d+)"));
        bar->replaceField()->setText(QStringLiteral("[Statedef 9\\1"));
        bar->replace();
        const int first = app.view()->textCursor().selectionStart();
        const QString number = app.view()->textCursor().selectedText().mid(10);
        bar->replace();
        QCOMPARE(doc->toPlainText().mid(first, 11 + number.size()), QStringLiteral("[Statedef 9") + number);
        QVERIFY(app.view()->textCursor().selectionStart() > first);

        // The dialog finds a pattern of two lines.
        FindDlgMlt *dialog = app.root->controller()->findDialog();
        app.trigger("edit_find_replace_multi");
        const QTextBlock block = doc->findBlockByNumber(40);
        const QString twoLines = block.text() + QLatin1Char('\n') + block.next().text();
        set("quick_search_regexp", false);
        dialog->findField()->setPlainText(twoLines);
        app.view()->setTextCursor(QTextCursor(doc));
        dialog->findChild<QPushButton *>(QStringLiteral("findButton"))->click();
        QCOMPARE(app.view()->textCursor().selectedText().replace(QChar::ParagraphSeparator, QLatin1Char('\n')), twoLines);

        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            dialog->hide();
            app.trigger("edit_undo");
            set("quick_search_regexp", false);
            bar->findField()->setText(QStringLiteral("ChangeState"));
            bar->replaceField()->setText(QStringLiteral("SelfState"));
            app.view()->gotoLine(60, 0);
            bar->find();
            QTest::qWait(300);
            QVERIFY(app.root->window()->grab().save(shots + QStringLiteral("/find-bar.png")));
            dialog->findField()->setPlainText(QStringLiteral("[State 0, 1]\ntype = ChangeAnim"));
            dialog->replaceField()->setPlainText(QStringLiteral("[State 0, 1]\ntype = ChangeAnim2"));
            dialog->show();
            QTest::qWait(300);
            QVERIFY(dialog->grab().save(shots + QStringLiteral("/find-dialog.png")));
        }
    }

    // Every text document of the sample characters, shown in its editor and
    // left untouched, stays unmodified and saves back byte for byte.
    void untouchedDocumentsSaveBack()
    {
        BF_REQUIRE_SAMPLE();
        for (const char *name : {"kfm", "kfm720"}) {
            const QString folder = copyFolder(samplePath(QStringLiteral("chars/") + QLatin1String(name)),
                                              m_dir.filePath(QStringLiteral("copy-") + QLatin1String(name)));
            App app = start(m_dir.filePath(QStringLiteral("cfg2")), folder + QLatin1Char('/') + QLatin1String(name)
                                                                       + QStringLiteral(".def"));
            QProject *project = app.project();
            QList<QSyntaxTextEditor *> docs = {project->definitions(), project->commands()};
            app.registry().editorSwitch(0);
            app.registry().editorSwitch(3);
            app.registry().editorSwitch(4);
            for (int i = 0; i < project->statesCount(); ++i) {
                app.workspace()->tabBar()->setCurrentIndex(i);
                QCOMPARE(app.view()->document(), project->state(i)->document());
                docs << project->state(i);
            }
            QCoreApplication::processEvents();
            for (QSyntaxTextEditor *doc : std::as_const(docs)) {
                QVERIFY2(!doc->isModified(), qPrintable(doc->fileName()));
                const QString out = m_dir.filePath(QStringLiteral("out.txt"));
                QVERIFY(doc->saveFile(out, false, true));
                QVERIFY2(readAll(out) == readAll(doc->fileName()), qPrintable(doc->fileName()));
                QCOMPARE(QTextWorkspace::issueCount(doc->document(), 1), 0);
            }
        }
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestTextEditors)
#include "tst_texteditors.moc"
