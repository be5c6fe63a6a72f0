#include <QtTest>

#include "code/qparenthesesmatcher.h"
#include "code/ui/qtexteditor.h"
#include "testsectionprocessor.h"
#include "testsupport.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QToolTip>

namespace {

// Fold levels of this text, by the test processor: 0 for the statedefs and
// the comment, 1 for their lines and the [State] headers, 2 inside a state.
const char *const statesText = "; header\n"                 // 0
                               "[Statedef 200]\n"           // 1
                               "type = S\n"                 // 2
                               "\n"                         // 3
                               "[State 200, 1]\n"           // 4
                               "type = VelSet\n"            // 5
                               "trigger1 = (Time = 0)\n"    // 6
                               "x = 2\n"                    // 7
                               "[State 200, 2]\n"           // 8
                               "type = Null\n"              // 9
                               "[Statedef 300]\n"           // 10
                               "type = A\n"                 // 11
                               "end";                       // 12

QPoint lineCenter(QTextEditor &editor, int block, int column = 0)
{
    QTextCursor c(editor.document()->findBlockByNumber(block));
    c.setPosition(c.block().position() + column);
    return editor.cursorRect(c).center();
}

QPoint foldColumn(QTextEditor &editor, int block)
{
    return QPoint(editor.extraArea()->width() - 4, lineCenter(editor, block).y());
}

bool visible(QTextEditor &editor, int block)
{
    return editor.document()->findBlockByNumber(block).isVisible();
}

void place(QTextEditor &editor, int block, int column)
{
    QTextCursor c(editor.document()->findBlockByNumber(block));
    c.setPosition(c.block().position() + column);
    editor.setTextCursor(c);
}

void stripMouse(QTextEditor &editor, QEvent::Type type, const QPoint &pos, Qt::MouseButtons buttons)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent e(type, QPointF(pos), editor.extraArea()->mapToGlobal(QPointF(pos)), button, buttons,
                  Qt::NoModifier);
    editor.extraAreaMouseEvent(&e);
}

// A pointer move over the text, delivered at once whatever the platform.
void viewportMove(QTextEditor &editor, const QPoint &pos)
{
    QMouseEvent e(QEvent::MouseMove, QPointF(pos), editor.viewport()->mapToGlobal(QPointF(pos)), Qt::NoButton,
                  Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor.viewport(), &e);
}

QString writeCompletion(const QTemporaryDir &dir)
{
    const QString path = dir.filePath(QStringLiteral("completer.xml"));
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return QString();
    f.write("<!DOCTYPE ORVCompletionML>\n<completion>\n"
            "  <model prefix=\"\"><word value=\"AnimElem\"/><word value=\"AnimTime\"/><word value=\"Time\"/>"
            "<word value=\"ChangeState\"/></model>\n"
            "  <model prefix=\"type =\"><word value=\"ChangeAnim\"/><word value=\"ChangeState\"/>"
            "<word value=\"VelSet\"/></model>\n"
            "  <model prefix=\"movetype=\"><word value=\"A\"/><word value=\"I\"/><word value=\"H\"/></model>\n"
            "  <model prefix=\"const(\"><word value=\"data.life\"/><word value=\"size.height\"/></model>\n"
            "</completion>\n");
    return path;
}

QStringList words(QCompleter *completer)
{
    QStringList list;
    const QAbstractItemModel *m = completer->model();
    for (int r = 0; m && r < m->rowCount(); ++r)
        list << m->index(r, 0).data().toString();
    return list;
}

} // namespace

class TestTextEditor : public QObject
{
    Q_OBJECT

private slots:
    void stripAndFolding()
    {
        QTextEditor editor;
        editor.resize(640, 480);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));

        // The number column widens at line 100, and the margin with it.
        editor.setPlainText(QString(QStringLiteral("x\n")).repeated(98));
        QCOMPARE(editor.blockCount(), 99);
        const int narrow = editor.extraAreaWidth();
        QCOMPARE(editor.viewport()->geometry().left(), narrow);
        editor.appendPlainText(QStringLiteral("x"));
        const int nine = QFontMetrics(editor.extraArea()->font()).horizontalAdvance(QLatin1Char('9'));
        QCOMPARE(editor.extraAreaWidth(), narrow + nine);
        QCOMPARE(editor.viewport()->geometry().left(), narrow + nine);
        QCOMPARE(editor.extraArea()->width(), narrow + nine);

        TestSectionProcessor processor(editor.document());
        editor.setPlainText(QString::fromLatin1(statesText));
        processor.rehighlight();
        QVERIFY(QTextEditorBlockData::canCollapse(editor.document()->findBlockByNumber(1)));
        QVERIFY(!QTextEditorBlockData::canCollapse(editor.document()->findBlockByNumber(2)));

        // A click on a line that can't fold changes nothing.
        stripMouse(editor, QEvent::MouseButtonPress, foldColumn(editor, 2), Qt::LeftButton);
        for (int b = 0; b < editor.blockCount(); ++b)
            QVERIFY(visible(editor, b));

        // The fold box closes the statedef with its states; the cursor that
        // was inside comes up to the first line.
        place(editor, 6, 3);
        stripMouse(editor, QEvent::MouseButtonPress, foldColumn(editor, 1), Qt::LeftButton);
        QVERIFY(visible(editor, 1));
        for (int b = 2; b <= 9; ++b)
            QVERIFY2(!visible(editor, b), qPrintable(QString::number(b)));
        QVERIFY(visible(editor, 10));
        QCOMPARE(editor.textCursor().blockNumber(), 1);
        const QRect marker = editor.collapsedMarkerRect(editor.document()->findBlockByNumber(1));
        QVERIFY(!marker.isEmpty());
        QVERIFY(marker.left() > lineCenter(editor, 1, 14).x());
        QVERIFY(editor.collapsedMarkerRect(editor.document()->findBlockByNumber(10)).isEmpty());

        // Hovering the marker previews the hidden lines; leaving cancels it.
        viewportMove(editor, marker.center());
        QTRY_COMPARE(editor.previewedBlock(), 1);
        QVERIFY(!editor.grab().isNull());
        viewportMove(editor, marker.center() + QPoint(0, 100));
        QCOMPARE(editor.previewedBlock(), -1);

        // A click on the marker opens the fold again.
        QTest::mouseClick(editor.viewport(), Qt::LeftButton, Qt::NoModifier, marker.center());
        for (int b = 0; b < editor.blockCount(); ++b)
            QVERIFY(visible(editor, b));

        // A state folded inside a folded statedef stays folded when the
        // statedef opens; going to a hidden line opens what hides it.
        editor.toggleBlockVisible(editor.document()->findBlockByNumber(4));
        editor.toggleBlockVisible(editor.document()->findBlockByNumber(1));
        QVERIFY(!visible(editor, 4));
        editor.toggleBlockVisible(editor.document()->findBlockByNumber(1));
        QVERIFY(visible(editor, 4) && !visible(editor, 5) && visible(editor, 8));
        editor.toggleBlockVisible(editor.document()->findBlockByNumber(1));
        editor.gotoLine(6);
        QVERIFY(visible(editor, 6) && visible(editor, 2));
        QCOMPARE(editor.textCursor().blockNumber(), 6);

        // An edit that ends a fold (the header becomes a comment) shows its
        // lines again once the levels have followed.
        editor.toggleBlockVisible(editor.document()->findBlockByNumber(8));
        QVERIFY(!visible(editor, 9));
        place(editor, 8, 0);
        editor.textCursor().insertText(QStringLiteral(";"));
        QTRY_VERIFY(visible(editor, 9));

        editor.foldAll();
        QVERIFY(!visible(editor, 2) && !visible(editor, 11) && visible(editor, 12));
        editor.unfoldAll();
        for (int b = 0; b < editor.blockCount(); ++b)
            QVERIFY(visible(editor, b));
    }

    void bracketsAndBlocks()
    {
        QTextEditor editor;
        editor.resize(640, 480);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        TestSectionProcessor processor(editor.document());
        editor.setPlainText(QStringLiteral("x = (a + (b)) ; (c\n"
                                           "y = (1, 2]\n"
                                           "z = (open\n"
                                           "w = [1,\n"
                                           "  2]"));
        processor.rehighlight();
        const auto parens = [&] { return editor.extraSelections(QTextEditor::ParenthesesSelection); };
        const auto matchAt = [&](int block, int column) {
            place(editor, block, column);
            editor.parenthesesMatchingTimeOut();
            return parens();
        };

        // Before an opening bracket: the range and its two ends.
        QList<QTextEdit::ExtraSelection> sel = matchAt(0, 4);
        QCOMPARE(sel.size(), 3);
        QCOMPARE(sel.at(0).cursor.selectedText(), QStringLiteral("(a + (b))"));
        QCOMPARE(sel.at(1).cursor.selectedText(), QStringLiteral("("));
        QCOMPARE(sel.at(2).cursor.selectedText(), QStringLiteral(")"));
        // After a closing one, the same pair from the other side.
        QCOMPARE(matchAt(0, 13).at(0).cursor.selectedText(), QStringLiteral("(a + (b))"));
        editor.setParenRangeMode(false);
        QCOMPARE(matchAt(0, 4).size(), 2);
        editor.setParenRangeMode(true);

        // "(" closed by "]": both ends in the mismatch colour.
        sel = matchAt(1, 4);
        QCOMPARE(sel.size(), 2);
        QCOMPARE(sel.at(0).format.foreground().color(), QColor(Qt::red));
        QCOMPARE(sel.at(1).cursor.selectedText(), QStringLiteral("]"));
        // No partner, a bracket in a comment, no bracket: nothing shown.
        QVERIFY(matchAt(2, 4).isEmpty());
        QVERIFY(matchAt(0, 16).isEmpty());
        QVERIFY(matchAt(0, 1).isEmpty());
        // Across lines.
        QCOMPARE(matchAt(3, 4).at(0).cursor.selectedText(), QStringLiteral("[1,\u2029  2]"));

        // The cursor moves over bracket pairs.
        QTextCursor c(editor.document()->findBlockByNumber(0));
        c.setPosition(10);
        QVERIFY(QParenthesesMatcher::moveToNextClosing(&c));
        QCOMPARE(c.position(), 12);
        c.setPosition(10);
        QVERIFY(QParenthesesMatcher::moveToPreviousOpening(&c));
        QCOMPARE(c.position(), 9);
        c.setPosition(0);
        QVERIFY(QParenthesesMatcher::moveToNextOpening(&c));
        QCOMPARE(c.position(), 4);
        c.setPosition(editor.document()->findBlockByNumber(1).position());
        QVERIFY(QParenthesesMatcher::moveToPreviousClosing(&c));
        QCOMPARE(c.position(), 13);

        // Nested blocks around the cursor's line, innermost first, and the
        // blocks under the pointer in the fold column.
        editor.setPlainText(QString::fromLatin1(statesText));
        processor.rehighlight();
        editor.setHighlightBlocks(true);
        place(editor, 6, 0);
        QTRY_COMPARE(editor.highlightedOpenBlocks(), (QList<int>{4, 1}));
        QCOMPARE(editor.highlightedCloseBlocks(), (QList<int>{7, 9}));
        editor.setHighlightBlocks(false);
        stripMouse(editor, QEvent::MouseMove, foldColumn(editor, 8), Qt::NoButton);
        QCOMPARE(editor.extraAreaHighlightBlock(), 8);
        QTRY_COMPARE(editor.highlightedOpenBlocks(), (QList<int>{8, 1}));
        QCOMPARE(editor.highlightedCloseBlocks(), (QList<int>{9, 9}));
        QVERIFY(!editor.grab().isNull());
        editor.extraAreaLeaveEvent(nullptr);
        QTRY_VERIFY(editor.highlightedOpenBlocks().isEmpty());

        // An issue explains itself under the pointer.
        processor.setIssue(5, {BlockIssue::Error, 7, 12, QStringLiteral("Unknown 'State' type")});
        const QPoint onIssue = lineCenter(editor, 5, 9);
        QHelpEvent tip(QEvent::ToolTip, onIssue, editor.viewport()->mapToGlobal(onIssue));
        QCoreApplication::sendEvent(editor.viewport(), &tip);
        QTRY_VERIFY(QToolTip::isVisible());
        QCOMPARE(QToolTip::text(), QStringLiteral("Unknown 'State' type"));
        QToolTip::hideText();
    }

    void completion()
    {
        QTemporaryDir dir;
        QTextEditor editor;
        editor.resize(640, 480);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        editor.setFocus();
        QAbstractItemView *popup = editor.completer()->popup();

        // Without a completion file, typing never shows anything.
        editor.loadCompletion(dir.filePath(QStringLiteral("none.xml")));
        QVERIFY(editor.completionPrefixes().isEmpty());
        QTest::keyClicks(&editor, QStringLiteral("Ani"));
        QVERIFY(!popup->isVisible());

        editor.loadCompletion(writeCompletion(dir));
        QCOMPARE(editor.completionPrefixes(), (QStringList{"", "const(", "movetype=", "type="}));
        editor.clear();
        // One letter opens the default list, on the first word that fits.
        QTest::keyClicks(&editor, QStringLiteral("trigger1 = A"));
        QVERIFY(popup->isVisible());
        QVERIFY(words(editor.completer()).contains(QStringLiteral("AnimTime")));
        QTest::keyClicks(&editor, QStringLiteral("nimT"));
        QCOMPARE(popup->currentIndex().data().toString(), QStringLiteral("AnimTime"));
        QTest::keyClick(popup, Qt::Key_Return);
        QCOMPARE(editor.textCursor().block().text(), QStringLiteral("trigger1 = AnimTime"));

        // The list follows the text before the word, blanks left out: the
        // longest prefix that fits wins.
        QTest::keyClick(&editor, Qt::Key_Return);
        QTest::keyClicks(&editor, QStringLiteral("type  =  ch"));
        QVERIFY(popup->isVisible());
        QCOMPARE(words(editor.completer()), (QStringList{"ChangeAnim", "ChangeState", "VelSet"}));
        QCOMPARE(popup->currentIndex().data().toString(), QStringLiteral("ChangeAnim"));
        QTest::keyClick(popup, Qt::Key_Escape);
        QTest::keyClick(&editor, Qt::Key_Return);
        QTest::keyClicks(&editor, QStringLiteral("movetype = h"));
        QCOMPARE(words(editor.completer()), (QStringList{"A", "H", "I"}));
        QTest::keyClick(popup, Qt::Key_Return);
        QCOMPARE(editor.textCursor().block().text(), QStringLiteral("movetype = H"));
        QTest::keyClick(&editor, Qt::Key_Return);
        QTest::keyClicks(&editor, QStringLiteral("x = const ( s"));
        QCOMPARE(words(editor.completer()), (QStringList{"data.life", "size.height"}));
        // A word-ending character closes the popup; so does a modifier.
        QTest::keyClicks(&editor, QStringLiteral(")"));
        QVERIFY(!popup->isVisible());
        QTest::keyClicks(&editor, QStringLiteral(" t"));
        QVERIFY(popup->isVisible());
        QTest::keyClick(&editor, Qt::Key_A, Qt::AltModifier);
        QVERIFY(!popup->isVisible());
        // Comments are text like any other.
        QTest::keyClick(&editor, Qt::Key_Return);
        QTest::keyClicks(&editor, QStringLiteral("; a"));
        QVERIFY(popup->isVisible());
    }

    void lineSelectionInStrip()
    {
        QTextEditor editor;
        editor.resize(400, 300);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        QStringList lines;
        for (int i = 0; i < 300; ++i)
            lines << QStringLiteral("line %1").arg(i);
        editor.setPlainText(lines.join(QLatin1Char('\n')));
        editor.verticalScrollBar()->setValue(100);
        const int first = editor.cursorForPosition(QPoint(0, 0)).blockNumber();
        const QPoint numbers(4, 0);

        stripMouse(editor, QEvent::MouseButtonPress, numbers + QPoint(0, lineCenter(editor, first + 2).y()),
                   Qt::LeftButton);
        QCOMPARE(editor.textCursor().selectedText(), QStringLiteral("line %1\u2029").arg(first + 2));
        stripMouse(editor, QEvent::MouseMove, numbers + QPoint(0, lineCenter(editor, first + 4).y()),
                   Qt::LeftButton);
        QCOMPARE(editor.textCursor().selectedText(),
                 QStringLiteral("line %1\u2029line %2\u2029line %3\u2029")
                     .arg(first + 2)
                     .arg(first + 3)
                     .arg(first + 4));
        // Upwards the first line stays in.
        stripMouse(editor, QEvent::MouseMove, numbers + QPoint(0, lineCenter(editor, first + 1).y()),
                   Qt::LeftButton);
        QCOMPARE(editor.textCursor().selectedText(),
                 QStringLiteral("line %1\u2029line %2\u2029").arg(first + 1).arg(first + 2));

        // Above the strip the text scrolls up and the selection grows with it.
        stripMouse(editor, QEvent::MouseMove, QPoint(4, -30), Qt::LeftButton);
        QTRY_VERIFY(editor.verticalScrollBar()->value() < 95);
        QVERIFY(editor.textCursor().selectionStart() < editor.document()->findBlockByNumber(first).position());
        stripMouse(editor, QEvent::MouseButtonRelease, QPoint(4, -30), Qt::NoButton);
        const int stopped = editor.verticalScrollBar()->value();
        QTest::qWait(250);
        QCOMPARE(editor.verticalScrollBar()->value(), stopped);
    }

    // The pictures of the README; written only when BF_SCREENSHOT_DIR names
    // a folder, but painted every time.
    void screenshots()
    {
        BF_REQUIRE_SAMPLE();
        QFile file(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.cns")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll()).remove(QChar(QChar::ByteOrderMark));
        const QString out = qEnvironmentVariable("BF_SCREENSHOT_DIR");

        QWidget window;
        window.resize(860, 900);
        QTextEditor editor(&window);
        editor.setGeometry(window.rect());
        QFont font(QStringLiteral("DejaVu Sans Mono"), 10);
        font.setStyleHint(QFont::TypeWriter);
        editor.setFont(font);
        editor.setColors({{QStringLiteral("line"), QColor(255, 255, 220)},
                          {QStringLiteral("block_range"), QColor(245, 245, 235)},
                          {QStringLiteral("paren"), QColor(255, 0, 0)},
                          {QStringLiteral("paren_range"), QColor(232, 242, 254)}});
        editor.loadCompletion(QCoreApplication::applicationDirPath() + QStringLiteral("/completer.xml"));
        editor.setPlainText(text);
        TestSectionProcessor processor(editor.document());
        processor.rehighlight();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        // A closed state with its marker, a misspelled controller, a
        // bracketed trigger matched and the blocks around it highlighted.
        const QTextBlock folded = editor.document()->find(QStringLiteral("[State 200, 1]")).block();
        const QTextBlock trigger = editor.document()->find(QStringLiteral("trigger1 = (AnimElemTime")).block();
        QTextCursor typo = editor.document()->find(QStringLiteral("Width"), trigger.previous().position());
        QVERIFY(folded.isValid() && trigger.isValid() && !typo.isNull());
        typo.insertText(QStringLiteral("Widht"));
        processor.setIssue(typo.blockNumber(), {BlockIssue::Error, 7, 11, QStringLiteral("Unknown 'State' type")});
        editor.toggleBlockVisible(folded);
        place(editor, trigger.blockNumber(), int(trigger.text().indexOf(QLatin1Char('('))));
        editor.parenthesesMatchingTimeOut();
        QVERIFY(!editor.extraSelections(QTextEditor::ParenthesesSelection).isEmpty());
        stripMouse(editor, QEvent::MouseMove, foldColumn(editor, trigger.blockNumber()), Qt::NoButton);
        QTRY_VERIFY(!editor.highlightedOpenBlocks().isEmpty());
        editor.verticalScrollBar()->setValue(folded.blockNumber() - 6);
        QCoreApplication::processEvents();
        const QPixmap shot = window.grab();
        QVERIFY(!shot.isNull());
        if (!out.isEmpty())
            QVERIFY(shot.save(out + QStringLiteral("/code-editor.png")));

        // The preview of the closed state under the pointer.
        const QRect marker = editor.collapsedMarkerRect(folded);
        QVERIFY(!marker.isEmpty());
        viewportMove(editor, marker.center());
        QTRY_VERIFY(editor.previewedBlock() >= 0);
        const QPixmap preview = window.grab();
        if (!out.isEmpty())
            QVERIFY(preview.save(out + QStringLiteral("/code-editor-preview.png")));
        viewportMove(editor, QPoint(5, 5));

        // The completion popup after "trigger1 = Ani".
        editor.setFocus();
        place(editor, trigger.blockNumber(), 0);
        QTextCursor end = editor.textCursor();
        end.movePosition(QTextCursor::EndOfBlock);
        end.insertText(QStringLiteral("\ntrigger2 = "));
        editor.setTextCursor(end);
        editor.verticalScrollBar()->setValue(editor.verticalScrollBar()->value() + 25);
        QTest::keyClicks(&editor, QStringLiteral("Ani"));
        QAbstractItemView *popup = editor.completer()->popup();
        QVERIFY(popup->isVisible());
        QPixmap combined = window.grab();
        {
            QPainter p(&combined);
            p.drawPixmap(window.mapFromGlobal(popup->mapToGlobal(QPoint(0, 0))), popup->grab());
        }
        if (!out.isEmpty())
            QVERIFY(combined.save(out + QStringLiteral("/code-editor-completion.png")));
    }
};

QTEST_MAIN(TestTextEditor)
#include "tst_texteditor.moc"
