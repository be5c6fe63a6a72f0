// Bracket matching and the nested-block highlight. Both run from timers, off
// the key path, and read only what the syntax processors recorded per line.

#include "qtexteditor.h"

#include "code/qparenthesesmatcher.h"
#include "code/qtexteditorblockdata.h"
#include "code/ui/qeditorextraarea.h"

#include <QPainter>
#include <QTextDocument>

namespace {

QTextEdit::ExtraSelection selectionOf(const QTextCursor &cursor, const QTextCharFormat &format)
{
    QTextEdit::ExtraSelection sel;
    sel.cursor = cursor;
    sel.format = format;
    return sel;
}

// The two end characters of a matched span.
QPair<QTextCursor, QTextCursor> ends(const QTextCursor &span)
{
    QTextCursor first = span;
    first.setPosition(span.selectionStart());
    first.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
    QTextCursor last = span;
    last.setPosition(span.selectionEnd());
    last.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor);
    return {first, last};
}

int channel(int value, int delta)
{
    return qBound(0, value + delta, 255);
}

QColor shifted(const QColor &c, int delta)
{
    return QColor(channel(c.red(), delta), channel(c.green(), delta), channel(c.blue(), delta));
}

QColor blend(const QColor &a, const QColor &b, int step)
{
    // step in 1/256 from a to b
    const auto mix = [step](int x, int y) { return x + ((y - x) * step) / 256; };
    return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()));
}

} // namespace

void QTextEditor::parenthesesMatchingTimeOut()
{
    if (isReadOnly())
        return;
    QTextCursor backward = textCursor();
    backward.clearSelection();
    QTextCursor forward = backward;
    const QParenthesesMatcher::Result back = QParenthesesMatcher::matchBackward(&backward);
    const QParenthesesMatcher::Result fore = QParenthesesMatcher::matchForward(&forward);

    QList<QTextEdit::ExtraSelection> list;
    const auto add = [&](QParenthesesMatcher::Result result, const QTextCursor &span) {
        if (result == QParenthesesMatcher::NoMatch)
            return;
        const auto pair = ends(span);
        if (result == QParenthesesMatcher::Mismatch) {
            list << selectionOf(pair.first, m_parenMismatchFormat) << selectionOf(pair.second, m_parenMismatchFormat);
            return;
        }
        if (m_parenRangeMode)
            list << selectionOf(span, m_parenRangeFormat);
        list << selectionOf(pair.first, m_parenFormat) << selectionOf(pair.second, m_parenFormat);
    };
    add(back, backward);
    add(fore, forward);
    m_extraSelections[ParenthesesSelection] = list;
    applySelections();
}

int QTextEditor::firstTextPixel(const QTextBlock &block) const
{
    const QString text = block.text();
    int column = 0;
    while (column < text.size() && text.at(column).isSpace())
        ++column;
    const QTextLayout *layout = block.layout();
    if (!layout || layout->lineCount() == 0)
        return 0;
    return int(layout->lineAt(0).cursorToX(column));
}

void QTextEditor::blockHighlightTimeOut()
{
    QList<int> open;
    QList<int> close;
    QList<int> indent;
    QTextBlock block = document()->findBlockByNumber(m_extraAreaHighlightBlock);
    if (block.isValid()) {
        // On a fold's first line the block it opens is meant.
        if (QTextEditorBlockData::canCollapse(block))
            block = block.next();
        int level = QTextEditorBlockData::foldingIndent(block);
        while (level > 0) {
            QTextBlock first = block.previous();
            while (first.isValid() && QTextEditorBlockData::foldingIndent(first) >= level)
                first = first.previous();
            if (!first.isValid())
                break;
            QTextBlock last = block;
            while (last.next().isValid() && QTextEditorBlockData::foldingIndent(last.next()) >= level)
                last = last.next();
            open << first.blockNumber();
            close << last.blockNumber();
            indent << qMin(firstTextPixel(first), firstTextPixel(last));
            block = first;
            level = QTextEditorBlockData::foldingIndent(first);
        }
    }
    if (open == m_highlightOpen && close == m_highlightClose && indent == m_highlightIndent)
        return;
    m_highlightOpen = open;
    m_highlightClose = close;
    m_highlightIndent = indent;
    viewport()->update();
    m_extraArea->update();
}

void QTextEditor::paintBlockRanges(QPainter &painter, const QRect &clip)
{
    const int count = int(m_highlightOpen.size());
    if (!m_blockColorsVisible || count == 0)
        return;
    const QColor base = palette().color(QPalette::Base);
    const bool light = base.value() > 128;
    const QColor outer = shifted(base, light ? -15 : 20);
    const QColor inner = shifted(base, light ? -30 : 40);
    const QPointF offset = contentOffset();
    const int right = viewport()->width();

    // Outermost first, so that each inner range paints over its parent.
    for (int i = count - 1; i >= 0; --i) {
        QColor color;
        if (i == 0)
            color = m_blockRangeColor.isValid() ? m_blockRangeColor : inner;
        else if (count == 2)
            color = outer;
        else
            color = blend(inner, outer, ((i - 1) * 256) / (count - 2));
        const QTextBlock first = document()->findBlockByNumber(m_highlightOpen.at(i));
        const QTextBlock last = document()->findBlockByNumber(m_highlightClose.at(i));
        if (!first.isValid() || !last.isValid())
            continue;
        const qreal top = blockBoundingGeometry(first).translated(offset).top();
        const QRectF lastRect = blockBoundingGeometry(last).translated(offset);
        qreal bottom = lastRect.top() + lastRect.height();
        if (!last.isVisible())
            bottom = blockBoundingGeometry(first).translated(offset).bottom();
        const qreal left = offset.x() + m_highlightIndent.at(i);
        const QRectF range(left, top, right - left, bottom - top);
        if (range.intersects(clip))
            painter.fillRect(range, color);
    }
}
