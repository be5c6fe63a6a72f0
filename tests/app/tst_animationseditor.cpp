// The animations editor on the sample character, as the program runs it:
// play on a fake clock, the frame tools, boxes drawn with the mouse reaching
// the AIR text, the text view read back, undo, and the GIF export.
#include "testsupport.h"

#include "animations/qanimations.h"
#include "animations/ui/qanimationseditor.h"
#include "appdriver.h"
#include "project/qproject.h"
#include "render/qsprrender.h"

#include <QAction>
#include <QDir>
#include <QScrollBar>
#include <QFile>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

namespace {

void mouse(QSprRender *r, QEvent::Type type, const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
    QMouseEvent e(type, QPointF(at), QPointF(at), type == QEvent::MouseMove ? Qt::NoButton : button, held,
                  Qt::NoModifier);
    if (type == QEvent::MouseButtonPress)
        r->mousePressEvent(&e);
    else if (type == QEvent::MouseMove)
        r->mouseMoveEvent(&e);
    else
        r->mouseReleaseEvent(&e);
}

void drag(QSprRender *r, const QPoint &from, const QPoint &to)
{
    mouse(r, QEvent::MouseButtonPress, from);
    mouse(r, QEvent::MouseMove, (from + to) / 2);
    mouse(r, QEvent::MouseMove, to);
    mouse(r, QEvent::MouseButtonRelease, to);
}

} // namespace

class TestAnimationsEditor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        app = std::make_unique<TestSupport::AppDriver>(QSize());
        app->ask.onDialog = [](QDialog *) { return int(QDialog::Rejected); };
        app->ui()->openProject(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def")));
        QVERIFY(app->ui()->currentProject());
        editor = app->showEditor<QAnimationsEditor>(2);
        QVERIFY(editor && editor->isActive());
        editor->setClock([this] { return now; });
        editor->renderer()->resizeEvent(QSize(640, 480));
        editor->renderer()->setZoomIndex(2);
    }
    void cleanupTestCase() { app.reset(); }

    void playFollowsTheClock();
    void frameToolsAndUndo();
    void boxesDrawnOnTheStage();
    void textViewAndGif();
    void screenshots();

private:
    // A new action at the end, from text; returns its row.
    int actionFromText(const QString &text)
    {
        editor->add();
        const int row = editor->store()->count() - 1;
        editor->updateFromText(text);
        return row;
    }

    std::unique_ptr<TestSupport::AppDriver> app;
    QAnimationsEditor *editor = nullptr;
    qint64 now = 0;
};

void TestAnimationsEditor::playFollowsTheClock()
{
    const int row = actionFromText(QStringLiteral("[Begin Action 7001]\n0,0, 0,0, 5\n0,1, 0,0, 5\nLoopstart\n0,2, 0,0, 5\n"));
    QCOMPARE(editor->currentAction(), row);
    QCOMPARE(editor->store()->frameCount(row), 3);
    now = 1000;
    editor->action(QStringLiteral("air_play"))->trigger();
    QVERIFY(editor->isPlaying());
    QVERIFY(!editor->action(QStringLiteral("air_stop"))->isChecked());
    // 15 ms a tick: frame by frame as the clock goes, whatever the timer did.
    const QList<QPair<qint64, int>> steps = {{0, 0}, {74, 0}, {75, 1}, {150, 2}, {224, 2}, {226, 2}, {300, 2}};
    for (const auto &[ms, frame] : steps) {
        now = 1000 + ms;
        editor->playTimeOut();
        QCOMPARE(editor->currentFrame(), frame);
    }
    // From the second lap on the loop starts at the Loopstart frame, not at 0;
    // a long paint skips frames instead of stretching the animation.
    now = 1000 + 15 * 16;
    editor->playTimeOut();
    QCOMPARE(editor->currentFrame(), 2);
    QCOMPARE(editor->framePositionText(), QStringLiteral("3 / 3 - 15 ticks"));
    editor->action(QStringLiteral("air_stop"))->trigger();
    QVERIFY(!editor->isPlaying());

    // Without Loopstart play goes round from frame 0; a time of -1 ends it.
    actionFromText(QStringLiteral("[Begin Action 7002]\n0,0, 0,0, 2\n0,1, 0,0, 2\n"));
    now = 0;
    editor->playChanged(true);
    now = 15 * 5;
    editor->playTimeOut();
    QCOMPARE(editor->currentFrame(), 0);
    editor->forceStop();
    actionFromText(QStringLiteral("[Begin Action 7003]\n0,0, 0,0, -1\n"));
    editor->playChanged(true);
    QVERIFY(!editor->isPlaying());
    QVERIFY(editor->action(QStringLiteral("air_stop"))->isChecked());
}

void TestAnimationsEditor::frameToolsAndUndo()
{
    QAnimations *store = editor->store();
    const int row = actionFromText(QStringLiteral("[Begin Action 7010]\nClsn2: 1\n Clsn2[0] = -10, -80, 10, 0\n"
                                                  "0,0, 0,0, 1\n0,1, 0,0, 2\n0,2, 0,0, 3\n0,3, 0,0, 4\n"));
    QCOMPARE(store->frameCount(row), 4);
    QUndoStack *undo = editor->undoStack();
    const int steps = undo->count();

    editor->frameSelPosChanged(1);
    editor->frameTimeChanged(9);
    editor->frameAllTime();
    QList<int> times;
    for (int i = 0; i < 4; ++i)
        times << store->frame(row, i).time;
    QCOMPARE(times, (QList<int>{1, 9, 9, 9}));
    QCOMPARE(editor->framePositionText(), QStringLiteral("2 / 4 - 10 ticks"));
    QVERIFY(editor->textView()->toPlainText().contains(QStringLiteral("0,3, 0,0, 9")));
    // Frame 0 has no previous frame to copy boxes from.
    editor->frameSelPosChanged(0);
    const QString before = store->actionText(row);
    editor->clsnPrev();
    QCOMPARE(store->actionText(row), before);
    editor->frameSelPosChanged(1);
    editor->clsnPrev();
    QCOMPARE(*store->clsnList(row, 1, 1), (QList<QRect>{QRect(QPoint(-10, -80), QPoint(10, 0))}));

    editor->align({row}, QAnimationsEditor::AlignClsnScale, 50, 200);
    QCOMPARE(*store->clsnList(row, 0, 1), (QList<QRect>{QRect(QPoint(-5, -160), QPoint(5, 0))}));
    editor->align({row}, QAnimationsEditor::AlignOffset, 3, -2);
    QCOMPARE(store->frame(row, 3).x, 3);
    QCOMPARE(store->frame(row, 3).y, -2);

    // Every edit is one step back.
    QCOMPARE(undo->count(), steps + 5);
    undo->undo();
    undo->undo();
    QCOMPARE(*store->clsnList(row, 0, 1), (QList<QRect>{QRect(QPoint(-10, -80), QPoint(10, 0))}));
    undo->undo();
    undo->undo();
    undo->undo();
    QCOMPARE(store->frame(row, 2).time, 3);
    undo->redo();
    QCOMPARE(store->frame(row, 1).time, 9);
    QCOMPARE(store->frame(row, 2).time, 3);

    // Frames and actions come and go; duplicates land after their source.
    const int count = store->count();
    editor->frameAdd();
    QCOMPARE(store->frameCount(row), 5);
    QCOMPARE(editor->currentFrame(), 2);
    editor->frameDel();
    QCOMPARE(store->frameCount(row), 4);
    app->ask.answer = QMessageBox::No;
    editor->duplicate();
    app->ask.answer = QMessageBox::Yes;
    QCOMPARE(store->count(), count + 1);
    QCOMPARE(store->action(row + 1)->number, 7010);
    QCOMPARE(editor->currentAction(), row + 1);
    editor->del();
    QCOMPARE(store->count(), count);

    // Import: copies with their boxes, one step; never from the project itself.
    QAnimations other;
    other.loadText(QStringLiteral("[Begin Action 8000]\nClsn1: 1\n Clsn1[0] = 1, 2, 3, 4\n0,0, 0,0, 5\n"
                                  "[Begin Action 8001]\n0,1, 0,0, 6, V\n"),
                   QStringLiteral("other.air"), false);
    QCOMPARE(editor->importFrom(other, {0, 1}), 2);
    QCOMPARE(store->count(), count + 2);
    QCOMPARE(store->actionText(count), other.actionText(0));
    QCOMPARE(store->actionText(count + 1), other.actionText(1));
    editor->undo();
    QCOMPARE(store->count(), count);
    app->ask.texts.clear();
    app->ask.onDialog = nullptr;
    editor->projImport();
    app->ask.onDialog = [](QDialog *) { return int(QDialog::Rejected); };
    QCOMPARE(app->ask.texts, QStringList{QStringLiteral("You can't import from the destination project!")});
    QCOMPARE(store->count(), count);
}

void TestAnimationsEditor::boxesDrawnOnTheStage()
{
    QAnimations *store = editor->store();
    const int row = actionFromText(QStringLiteral("[Begin Action 7020]\n0,0, 0,0, 5\n"));
    QSprRender *r = editor->renderer();
    QCOMPARE(r->zoom(), 1.0);
    const QPoint o = r->origin();

    // Add: a stroke in Clsn2 mode; a left press never ends the mode.
    editor->action(QStringLiteral("air_clsn_add2"))->trigger();
    QVERIFY(r->isAdding());
    drag(r, o + QPoint(10, -50), o + QPoint(30, -20));
    QVERIFY(r->isAdding());
    QCOMPARE(store->clsnList(row, 0, 1)->size(), 1);
    const QRect added = store->clsnList(row, 0, 1)->first();
    QCOMPARE(added.topLeft(), QPoint(10, -50));
    QVERIFY(editor->textView()->toPlainText().contains(QStringLiteral("Clsn2[0] = 10, -50, ")));
    mouse(r, QEvent::MouseButtonPress, o, Qt::RightButton);
    mouse(r, QEvent::MouseButtonRelease, o, Qt::RightButton);
    QVERIFY(!r->isAdding());
    QVERIFY(!editor->action(QStringLiteral("air_clsn_add2"))->isChecked());

    // Move: a drag inside the box.
    drag(r, o + QPoint(20, -35), o + QPoint(25, -30));
    const QRect moved = store->clsnList(row, 0, 1)->first();
    QCOMPARE(moved, added.translated(5, 5));
    QVERIFY(editor->textView()->toPlainText().contains(QStringLiteral("Clsn2[0] = 15, -45, ")));

    // Resize: the bottom-right handle of the selected box.
    const QPoint handle = r->handle(7);
    drag(r, handle, handle + QPoint(10, 8));
    const QRect resized = store->clsnList(row, 0, 1)->first();
    QCOMPARE(resized.topLeft(), moved.topLeft());
    QVERIFY(resized.width() > moved.width() && resized.height() > moved.height());

    // Delete, and the text says so.
    QVERIFY(r->anySelected());
    editor->action(QStringLiteral("air_clsn_del"))->trigger();
    QVERIFY(store->clsnList(row, 0, 1)->isEmpty());
    QVERIFY(!editor->textView()->toPlainText().contains(QStringLiteral("Clsn2[0]")));
    editor->undo();
    QCOMPARE(store->clsnList(row, 0, 1)->first(), resized);
}

void TestAnimationsEditor::textViewAndGif()
{
    QAnimations *store = editor->store();
    editor->selPosChanged(0);
    QCOMPARE(editor->positionText(), QStringLiteral("1 / %1").arg(store->count()));
    QCOMPARE(editor->textView()->toPlainText(), store->actionText(0).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));

    // The text view, typed into, replaces the action after a pause.
    const int row = actionFromText(QStringLiteral("[Begin Action 7030]\n0,0, 0,0, 5\n"));
    editor->textView()->setPlainText(QStringLiteral("[Begin Action 7031]\n0,0, 0,0, 5\n0,1, 2,3, 6, H\n"));
    QTRY_COMPARE(store->frameCount(row), 2);
    QCOMPARE(store->action(row)->number, 7031);
    QCOMPARE(store->frame(row, 1).x, 2);
    QCOMPARE(store->frame(row, 1).flip, quint8(2));

    // Full text mode shows the whole file; the stage gives way.
    editor->action(QStringLiteral("air_text_full"))->trigger();
    QCOMPARE(editor->textView()->toPlainText(), store->fileText().replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    editor->action(QStringLiteral("air_text_full"))->trigger();
    QCOMPARE(editor->textView()->toPlainText(), store->actionText(row).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));

    // GIF of the stand; an empty action refuses with the message.
    QTemporaryDir out;
    app->ask.files << out.filePath(QStringLiteral("stand.gif"));
    editor->selPosChanged(0);
    editor->saveGIF();
    const QByteArray gif = TestSupport::readAll(out.filePath(QStringLiteral("stand.gif")));
    QVERIFY(gif.startsWith("GIF89a"));
    QCOMPARE(gif.back(), char(0x3B));
    const int empty = actionFromText(QStringLiteral("[Begin Action 7040]\n"));
    QCOMPARE(store->frameCount(empty), 0);
    app->ask.texts.clear();
    app->ask.files = QStringList{out.filePath(QStringLiteral("empty.gif"))};
    editor->saveGIF();
    QCOMPARE(app->ask.texts, QStringList{QStringLiteral("You can't save an empty animation as GIF.")});
    QVERIFY(!QFile::exists(out.filePath(QStringLiteral("empty.gif"))));
    app->ask.files.clear();

    // Find by number, and by name.
    editor->find(QStringLiteral("7031"), {});
    QCOMPARE(editor->currentAction(), row);
    app->ask.texts.clear();
    editor->find(QStringLiteral("no such name at all"), {});
    QCOMPARE(app->ask.texts, QStringList{QStringLiteral("No animation found!")});

    // The stage is shared with the sprites: the text view leaves with the
    // animations and stays away whatever its mode does meanwhile.
    QEditorRegistry &registry = app->registry();
    registry.editorSwitch(1);
    QVERIFY(editor->textView()->isHidden());
    registry.setCurrentProject(app->ui()->currentProject());
    QVERIFY(editor->textView()->isHidden());
    editor->action(QStringLiteral("air_text_full"))->trigger();
    editor->action(QStringLiteral("air_text_full"))->trigger();
    QVERIFY(editor->textView()->isHidden());
    registry.editorSwitch(2);
    QVERIFY(!editor->textView()->isHidden());
}

// With BF_SCREENSHOT_DIR set: the tab mid-play with boxes, the text view,
// and the stand as a GIF, for the README.
void TestAnimationsEditor::screenshots()
{
    const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
    if (shots.isEmpty())
        QSKIP("BF_SCREENSHOT_DIR is not set");
    QDir().mkpath(shots);
    QWidget *window = app->root->window();
    window->resize(1280, 860);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    QAnimations *store = editor->store();
    int punch = 0;
    for (int i = 0; i < store->count(); ++i)
        if (store->action(i)->number == 200)
            punch = i;
    editor->selPosChanged(punch);
    editor->renderer()->setZoomIndex(3);
    editor->renderer()->setOrigin(editor->renderer()->size().width() / 2, editor->renderer()->size().height() * 4 / 5);
    now = 0;
    editor->playChanged(true);
    now = 15 * 3 + 1;
    editor->playTimeOut();
    QTest::qWait(50);
    window->grab().save(QDir(shots).filePath(QStringLiteral("animations-play.png")));
    editor->forceStop();
    editor->selPosChanged(0);
    editor->action(QStringLiteral("air_text_full"))->trigger();
    QTest::qWait(50);
    window->grab().save(QDir(shots).filePath(QStringLiteral("animations-text.png")));
    editor->action(QStringLiteral("air_text_full"))->trigger();
    editor->selPosChanged(0);
    // The dialogs, as they open.
    app->ask.onDialog = [shots](QDialog *dialog) {
        dialog->show();
        QTest::qWait(50);
        dialog->grab().save(QDir(shots).filePath(dialog->objectName() + QStringLiteral(".png")));
        return int(QDialog::Rejected);
    };
    editor->frameAlign();
    editor->editText();
    app->ask.onDialog = [](QDialog *) { return int(QDialog::Rejected); };
    app->ask.files << QDir(shots).filePath(QStringLiteral("kfm-stand.gif"));
    editor->saveGIF();
    QVERIFY(QFile::exists(QDir(shots).filePath(QStringLiteral("kfm-stand.gif"))));
}

QTEST_MAIN(TestAnimationsEditor)
#include "tst_animationseditor.moc"
