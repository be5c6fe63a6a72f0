// The definitions, commands and states editors driven as the author drives
// them: through the registry, their actions and the QAskUser seam, on a copy
// of the sample character.
#include <QtTest>

#include "approot.h"
#include "testsupport.h"

#include "animations/ui/qanimationseditor.h"
#include "base/qmugenmodel.h"
#include "code/qmugensyntaxhierarchy.h"
#include "code/qsyntaxtexteditor.h"
#include "code/ui/qstateseditor.h"
#include "code/ui/sctrledit.h"
#include "code/ui/qtexteditor.h"
#include "code/ui/qtextworkspace.h"
#include "project/qproject.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/errordlg.h"
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
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QTreeView>

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
    QString folder; // the character's copy
    QEditorRegistry &registry() const { return root->controller()->registry(); }
    QTextWorkspace *workspace() const { return static_cast<QTextWorkspace *>(registry().workspace(0)); }
    QTextEditor *view() const { return workspace()->editor(); }
    QProject *project() const { return root->controller()->currentProject(); }
    QString status(int field) const { return registry().layout().statusField(field)->text(); }
    void trigger(const char *key) const { registry().actionManager().action(QString::fromLatin1(key))->trigger(); }
    int line() const { return view()->textCursor().blockNumber(); }
};

} // namespace

class TestTextEditors : public QObject
{
    Q_OBJECT

    // The program, its settings in `config`, on a copy in `copy` of the sample
    // character `name`, both folders in m_dir.
    App start(const char *config, const char *name, const QString &copy)
    {
        App a;
        a.folder = copyFolder(samplePath(QStringLiteral("chars/") + QLatin1String(name)), m_dir.filePath(copy));
        a.root = startProgram(m_dir.filePath(QLatin1String(config)));
        a.root->window()->resize(1100, 760);
        a.root->window()->show();
        a.root->controller()->openProject(a.folder + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".def"));
        return a;
    }

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    // The states editor's library and the snippets: each lands at the cursor
    // as one undo step, a snippet's CURSOR mark placing the caret.
    void snippetsAndLibrary()
    {
        BF_REQUIRE_SAMPLE();
        Answers answers;
        App app = start("cfg3", "kfm", QStringLiteral("lib"));
        app.registry().editorSwitch(4);
        QTextWorkspace *ws = app.workspace();
        QVERIFY(ws->sctrlList()->isVisible());
        QTextDocument *doc = app.view()->document();
        const QString original = doc->toPlainText();

        const QModelIndexList found = ws->sctrlList()->model()->match(ws->sctrlList()->model()->index(0, 0),
                                                                      Qt::DisplayRole, QStringLiteral("VarSet"));
        QCOMPARE(found.size(), 1);
        ws->sctrlList()->setCurrentIndex(found.first());
        QVERIFY(ws->textBar()->toPlainText().startsWith(QStringLiteral("[State 0, VarSet]\ntype = VarSet\n")));
        app.view()->setTextCursor(QTextCursor(doc->findBlockByNumber(3)));
        ws->insertSCtrl(found.first());
        QCOMPARE(doc->findBlockByNumber(3).text(), QStringLiteral("[State 0, VarSet]"));
        app.trigger("edit_undo");
        QCOMPARE(doc->toPlainText(), original);

        // A new controller, saved into the user's folder, joins the list; deleting asks and removes it.
        QAskUser::setDialogHandler([](QDialog *dialog) {
            static_cast<SCtrlEdit *>(dialog)->editor()->setPlainText(QStringLiteral("[State 0, Mine]\ntype = Null\n"));
            QMetaObject::invokeMethod(dialog->findChild<QObject *>(QStringLiteral("pushButton")), "click");
            return dialog->result();
        });
        QAskUser::setFileHandler([](QAskUser::FileMode, const QString &, const QString &start, const QString &) {
            return QFileInfo(start).absolutePath() + QStringLiteral("/Mine");
        });
        app.trigger("st_sctrl_new");
        QAskUser::setFileHandler({});
        QCOMPARE(ws->sctrlList()->currentIndex().data().toString(), QStringLiteral("Mine"));
        QVERIFY(ws->textBar()->toPlainText().startsWith(QStringLiteral("[State 0, Mine]\ntype = Null")));
        answers.texts.clear();
        app.trigger("st_sctrl_delete");
        QCOMPARE(answers.texts, QStringList(QStringLiteral("Do you really want to delete the state controller?")));
        QVERIFY(!ws->sctrlList()->model()->match(ws->sctrlList()->model()->index(0, 0), Qt::DisplayRole,
                                                 QStringLiteral("Mine")).size());

        // A snippet whose fields the dialog asks for.
        QAskUser::setDialogHandler([](QDialog *dialog) {
            dialog->findChild<QObject *>(QStringLiteral("COMMAND"))->setProperty("text", QStringLiteral("QCF_x"));
            dialog->findChild<QSpinBox *>(QStringLiteral("STATENO"))->setValue(1000);
            return int(QDialog::Accepted);
        });
        app.view()->setTextCursor(QTextCursor(doc->findBlockByNumber(3)));
        ws->snipActivated(int(ws->snippetBox()->findText(QStringLiteral("Command entry"))));
        QCOMPARE(doc->findBlockByNumber(3).text(), QStringLiteral("[State -1, QCF_x]"));
        QCOMPARE(doc->findBlockByNumber(4).text(), QStringLiteral("type = ChangeState"));
        QCOMPARE(doc->findBlockByNumber(5).text(), QStringLiteral("value = 1000"));
        QCOMPARE(doc->findBlockByNumber(6).text(), QStringLiteral("triggerall = command = \"QCF_x\""));
        const QTextCursor caret = app.view()->textCursor();
        QCOMPARE(caret.blockNumber(), 9);
        QCOMPARE(caret.positionInBlock(), 0);
        QCOMPARE(doc->findBlockByNumber(8).text(), QStringLiteral("trigger1 = ctrl"));
        app.trigger("edit_undo");
        QCOMPARE(doc->toPlainText(), original);

        // The library belongs to the states alone, also when a project
        // switch refreshes every editor.
        app.registry().editorSwitch(3);
        QVERIFY(!ws->sctrlList()->isVisible());
        QVERIFY(ws->snippetBox()->isVisible());
        app.registry().setCurrentProject(app.project());
        QVERIFY(!ws->sctrlList()->isVisible());

        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            app.registry().editorSwitch(4);
            ws->sctrlList()->setCurrentIndex(found.first());
            ws->snippetBox()->setCurrentIndex(ws->snippetBox()->findText(QStringLiteral("Attack state")));
            app.view()->gotoLine(120, 0);
            QTest::qWait(300);
            QVERIFY(app.root->window()->grab().save(shots + QStringLiteral("/states-library.png")));
            // The field dialog of a snippet and the controller editor, looked at and cancelled.
            QAskUser::setDialogHandler([&shots](QDialog *d) {
                d->show();
                QTest::qWait(100);
                d->grab().save(shots + QLatin1Char('/') + d->objectName() + QStringLiteral(".png"));
                return int(QDialog::Rejected);
            });
            ws->snipActivated(int(ws->snippetBox()->findText(QStringLiteral("Attack state"))));
            app.trigger("st_sctrl_edit");
        }
    }

    // kfm in the three editors: the status fields, the state tabs, issues
    // walked without wrapping, go to line, comments, edits undone and saved.
    void sampleCharacter()
    {
        BF_REQUIRE_SAMPLE();
        Answers answers;
        App app = start("cfg", "kfm", QStringLiteral("kfm"));
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
        for (const QFileInfo &f : QDir(app.folder).entryInfoList(QDir::Files))
            before.insert(f.fileName(), readAll(f.filePath()));
        app.root->controller()->fileSave();
        QVERIFY(!cns->isModified());
        QVERIFY(!states->isModified());
        answers.texts.clear();
        QVERIFY(app.registry().canCloseProject(project));
        QVERIFY(answers.texts.isEmpty());
        for (auto it = before.cbegin(); it != before.cend(); ++it) {
            const QByteArray now = readAll(app.folder + QLatin1Char('/') + it.key());
            if (it.key() == QLatin1String("kfm.cns"))
                QVERIFY(now.contains("type = NoSuchController\r\n"));
            else
                QVERIFY2(now == it.value(), qPrintable(it.key()));
        }

        // An issue line "file(N): ..." opens its document on line N.
        app.root->controller()->itemClicked(app.folder + QStringLiteral("/kfm.cmd"), 10);
        QCOMPARE(app.registry().currentEditorId(), 3);
        QCOMPARE(app.line(), 10);
        app.root->controller()->itemClicked(app.folder + QStringLiteral("/kfm.cns"), 152);
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
        App app = start("cfg-find", "kfm", QStringLiteral("find"));
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

    // The outline beside the states: clicks jump, the selection follows the
    // cursor, the variable view lists who sets what. Issue lines jump into
    // the text and animation editors; a new engine version checks the states
    // again; a file changed by another program is read again when agreed.
    void outlineJumpsAndOutsideChanges()
    {
        BF_REQUIRE_SAMPLE();
        Answers answers;
        App app = start("cfg3", "kfm", QStringLiteral("kfm3"));
        QProject *project = app.project();
        app.registry().editorSwitch(4);
        auto *states = static_cast<QStatesEditor *>(app.registry().editor(4));
        QSyntaxTextEditor *cns = project->state(0);
        auto *h = qobject_cast<QMugenSyntaxHierarchy *>(cns->hierarchy());
        QTreeView *tree = states->outline();
        QVERIFY(tree->isVisible());
        QCOMPARE(tree->model(), h);

        QModelIndex statedef;
        for (int r = 0; r < h->rowCount() && !statedef.isValid(); ++r)
            if (h->index(r, 0).data().toString() == QLatin1String("Statedef 200"))
                statedef = h->index(r, 0);
        tree->scrollTo(statedef);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(statedef).center());
        QCOMPARE(app.line(), 255);
        app.view()->setTextCursor(QTextCursor(cns->document()->findBlockByNumber(272)));
        QCOMPARE(tree->currentIndex().data().toString(), QStringLiteral("State 200, 1"));
        QCOMPARE(tree->currentIndex().parent(), statedef);

        tree->parentWidget()->findChild<QToolButton *>(QStringLiteral("outlineVariables"))->click();
        QCOMPARE(h->rowCount(), 2);
        const QModelIndex setter = h->index(0, 0, h->index(2, 0, h->index(0, 0)));
        QCOMPARE(setter.data().toString(), QStringLiteral("State 810, Holding fwd?"));
        tree->scrollTo(setter);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(setter).center());
        QCOMPARE(app.line(), 930);
        tree->parentWidget()->findChild<QToolButton *>(QStringLiteral("outlineSections"))->click();
        QCOMPARE(h->view(), int(QMugenSyntaxHierarchy::SectionsView));

        // A trigger of engine 1.1 in a character for 1.0 is an issue, until the DEF says 1.1.
        const int issues = app.workspace()->issueBox()->count();
        QTextCursor(cns->document()->findBlockByNumber(272)).insertText(QStringLiteral("trigger2 = topedge\n"));
        QTRY_COMPARE(app.workspace()->issueBox()->count(), issues + 1);
        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            app.view()->gotoLine(266, 0);
            app.view()->setTextCursor(QTextCursor(cns->document()->findBlockByNumber(272)));
            tree->collapseAll();
            tree->scrollTo(tree->currentIndex());
            QComboBox *box = app.workspace()->issueBox();
            for (int i = 0; i < box->count(); ++i)
                if (box->itemData(i).toPoint().x() == 272)
                    box->setCurrentIndex(i);
            QTest::qWait(300);
            QVERIFY(app.root->window()->grab().save(shots + QStringLiteral("/states-outline.png")));
        }
        QTextDocument *def = project->definitions()->document();
        QTextCursor version = def->find(QStringLiteral("mugenversion = 1.0"));
        version.insertText(QStringLiteral("mugenversion = 1.1"));
        QTRY_COMPARE(project->version(), 0x01010000u);
        QTRY_COMPARE(app.workspace()->issueBox()->count(), issues);

        // Issue lines of the states and the animations land on their line.
        QMessages *messages = project->messages();
        messages->addWarning(QStringLiteral("kfm.cns(931): one"));
        messages->addWarning(QStringLiteral("kfm.air(25): two"));
        auto *list = app.root->controller()->issuesDialog()->findChild<QListView *>();
        app.registry().editorSwitch(0);
        for (int back : {2, 1}) {
            const QModelIndex row = list->model()->index(list->model()->rowCount() - back, 0);
            emit list->doubleClicked(row);
        }
        QCOMPARE(app.registry().currentEditorId(), 2);
        QCOMPARE(static_cast<QAnimationsEditor *>(app.registry().editor(2))->currentAction(), 1);
        app.registry().editorSwitch(4);
        QCOMPARE(app.line(), 930);

        // Another program writes the commands: asked first, then read again, unmodified.
        app.root->controller()->objects().config->set(QStringLiteral("enable_file_watcher"), true);
        QSyntaxTextEditor *cmd = project->commands();
        QTextCursor(cmd->document()).insertText(QStringLiteral("; mine\n"));
        answers.texts.clear();
        const QString cmdFile = app.folder + QStringLiteral("/kfm.cmd");
        QVERIFY(writeAll(cmdFile, readAll(cmdFile) + "; outside\r\n"));
        QTRY_COMPARE(answers.texts.size(), 1);
        QVERIFY(answers.texts.at(0).startsWith(QStringLiteral("The file '")));
        QVERIFY(!cmd->isModified());
        QVERIFY(cmd->text().endsWith(QStringLiteral("; outside\n")) && !cmd->text().startsWith(QStringLiteral("; mine")));
        // The program's own save asks nothing, and the file stays watched.
        QTextCursor(cmd->document()).insertText(QStringLiteral("; mine\n"));
        app.registry().editorSwitch(3);
        app.registry().editor(3)->save();
        QTest::qWait(500);
        QCOMPARE(answers.texts.size(), 1);
        QVERIFY(writeAll(cmdFile, readAll(cmdFile) + "; again\r\n"));
        QTRY_COMPARE(answers.texts.size(), 2);
        QVERIFY(cmd->text().startsWith(QStringLiteral("; mine\n")) && cmd->text().endsWith(QStringLiteral("; again\n")));
    }

    // Every text document of the sample characters, shown in its editor and
    // left untouched, stays unmodified and saves back byte for byte.
    void untouchedDocumentsSaveBack()
    {
        BF_REQUIRE_SAMPLE();
        for (const char *name : {"kfm", "kfm720"}) {
            App app = start("cfg2", name, QStringLiteral("copy-") + QLatin1String(name));
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
