// The strip beside the text: line numbers, fold boxes, the bracket lines of
// the highlighted blocks, line selection by dragging, and its auto scroll.

#include "qtexteditor.h"

#include "code/qtexteditorblockdata.h"
#include "code/ui/qeditorextraarea.h"

#include <QCoreApplication>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QTimer>

QEditorExtraArea::QEditorExtraArea(QTextEditor *editor)
    : QWidget(editor)
    , m_editor(editor)
{
    setAutoFillBackground(false);
}

QSize QEditorExtraArea::sizeHint() const
{
    return QSize(m_editor->extraAreaWidth(), 0);
}

void QEditorExtraArea::paintEvent(QPaintEvent *event)
{
    m_editor->extraAreaPaintEvent(event);
}

void QEditorExtraArea::mousePressEvent(QMouseEvent *event)
{
    m_editor->extraAreaMouseEvent(event);
}

void QEditorExtraArea::mouseDoubleClickEvent(QMouseEvent *event)
{
    m_editor->extraAreaMouseEvent(event);
}

void QEditorExtraArea::mouseReleaseEvent(QMouseEvent *event)
{
    m_editor->extraAreaMouseEvent(event);
}

void QEditorExtraArea::mouseMoveEvent(QMouseEvent *event)
{
    m_editor->extraAreaMouseEvent(event);
}

void QEditorExtraArea::leaveEvent(QEvent *event)
{
    m_editor->extraAreaLeaveEvent(event);
}

void QEditorExtraArea::wheelEvent(QWheelEvent *event)
{
    // Scrolling over the strip scrolls the text; sendEvent marks the copy as
    // not spontaneous.
    QCoreApplication::sendEvent(m_editor->viewport(), event);
}

QWidget *QTextEditor::extraArea() const
{
    return m_extraArea;
}

int QTextEditor::foldBoxWidth() const
{
    const int spacing = QFontMetrics(m_extraArea->font()).lineSpacing();
    return spacing + 1 + (spacing % 2);
}

int QTextEditor::extraAreaWidth(int *markWidth)
{
    const QFontMetrics fm(m_extraArea->font());
    int space = 0;
    if (m_lineNumbersVisible) {
        int digits = 2;
        int count = qMax(1, blockCount());
        while (count > 99) {
            count /= 10;
            ++digits;
        }
        space += fm.horizontalAdvance(QLatin1Char('9')) * digits;
    }
    if (markWidth)
        *markWidth = 0;
    space += 2 + 4;
    if (m_foldingVisible)
        space += foldBoxWidth();
    return space;
}

void QTextEditor::slotUpdateExtraAreaWidth()
{
    const int width = extraAreaWidth();
    if (isLeftToRight())
        setViewportMargins(width, 0, 0, 0);
    else
        setViewportMargins(0, 0, width, 0);
    if (width != m_lastExtraAreaWidth) {
        m_lastExtraAreaWidth = width;
        const QRect cr = contentsRect();
        m_extraArea->setGeometry(
            QStyle::visualRect(layoutDirection(), cr, QRect(cr.left(), cr.top(), width, cr.height())));
        m_extraArea->update();
    }
}

void QTextEditor::slotUpdateRequest(const QRect &rect, int dy)
{
    if (dy)
        m_extraArea->scroll(0, dy);
    else if (rect.width() > 3)
        m_extraArea->update(0, rect.y(), m_extraArea->width(), rect.height());
    if (rect.contains(viewport()->rect()))
        slotUpdateExtraAreaWidth();
}

QRect QTextEditor::foldBoxRect(const QTextBlock &block) const
{
    const QRectF r = blockBoundingGeometry(block).translated(contentOffset());
    const QTextLayout *layout = block.layout();
    const qreal lineHeight = layout && layout->lineCount() > 0 ? layout->lineAt(0).height() : r.height();
    const int column = foldBoxWidth();
    const int size = qMax(9, ((column * 2) / 3) | 1);
    const int left = m_extraArea->width() - column + (column - size) / 2;
    const int top = int(r.top() + (lineHeight - size) / 2);
    return QRect(left, top, size, size);
}

void QTextEditor::extraAreaPaintEvent(QPaintEvent *event)
{
    QPainter painter(m_extraArea);
    const QPalette pal = palette();
    const QRect area = event->rect();
    const int fold = m_foldingVisible ? foldBoxWidth() : 0;
    const int width = m_extraArea->width();
    painter.fillRect(area, pal.color(QPalette::Base));
    painter.fillRect(QRect(0, area.top(), width - fold, area.height()), pal.color(QPalette::Base).darker(115));

    const QTextDocument *doc = document();
    const QTextCursor cursor = textCursor();
    const int selFirst = doc->findBlock(cursor.selectionStart()).blockNumber();
    QTextBlock lastSel = doc->findBlock(cursor.selectionEnd());
    int selLast = lastSel.blockNumber();
    if (cursor.hasSelection() && selLast > selFirst && cursor.selectionEnd() == lastSel.position())
        --selLast;

    QColor dim = pal.color(QPalette::WindowText);
    dim.setAlpha(100);
    const QColor full = pal.color(QPalette::WindowText);
    QColor boxPen = full;
    boxPen.setAlpha(150);

    painter.setFont(m_extraArea->font());
    const int lineHeight = QFontMetrics(m_extraArea->font()).height();
    // The brackets of the highlighted nested blocks, in the fold column,
    // under the fold boxes.
    if (m_foldingVisible && !m_highlightOpen.isEmpty()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(Qt::gray);
        for (int i = 0; i < m_highlightOpen.size(); ++i) {
            const QTextBlock open = doc->findBlockByNumber(m_highlightOpen.at(i));
            const QTextBlock close = doc->findBlockByNumber(m_highlightClose.at(i));
            if (!open.isValid() || !close.isValid())
                continue;
            const QRect box = foldBoxRect(open);
            const qreal x = box.center().x() + 0.5;
            const QRectF closeRect = blockBoundingGeometry(close).translated(contentOffset());
            qreal y1 = box.bottom() + 1.5;
            qreal y2 = closeRect.top() + qMax<qreal>(closeRect.height(), lineHeight) - 2.5;
            if (!close.isVisible())
                y2 = box.bottom() + 3.5;
            if (y2 <= y1)
                continue;
            painter.drawLine(QPointF(x, y1), QPointF(x, y2));
            painter.drawLine(QPointF(x, y2), QPointF(width - 2.5, y2));
        }
    }

    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    while (block.isValid() && top <= area.bottom()) {
        const qreal height = blockBoundingRect(block).height();
        const qreal bottom = top + height;
        if (block.isVisible() && bottom >= area.top()) {
            const int number = block.blockNumber();
            if (m_lineNumbersVisible) {
                const bool selected = number >= selFirst && number <= selLast;
                painter.setPen(selected ? full : dim);
                painter.drawText(QRect(0, int(top), width - fold - 4, lineHeight), Qt::AlignRight | Qt::AlignTop,
                                 QString::number(number + 1));
            }
            if (m_foldingVisible && QTextEditorBlockData::canCollapse(block)) {
                const QRect box = foldBoxRect(block);
                const bool closed = block.next().isValid() && !block.next().isVisible();
                const bool hot = number == m_extraAreaHighlightBlock;
                painter.setRenderHint(QPainter::Antialiasing, false);
                painter.setPen(hot ? full : boxPen);
                painter.setBrush(pal.color(QPalette::Base));
                painter.drawRect(box.adjusted(0, 0, -1, -1));
                const int cx = box.center().x();
                const int cy = box.center().y();
                const int arm = box.width() / 2 - 2;
                painter.drawLine(cx - arm, cy, cx + arm, cy);
                if (closed)
                    painter.drawLine(cx, cy - arm, cx, cy + arm);
            }
        }
        top = bottom;
        block = block.next();
    }

}

void QTextEditor::setExtraAreaHighlightBlock(int block)
{
    if (block == m_extraAreaHighlightBlock)
        return;
    m_extraAreaHighlightBlock = block;
    m_highlightTimer->start(m_highlightOpen.isEmpty() ? 120 : 0);
}

void QTextEditor::extraAreaMouseEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    m_stripPointer = pos;
    const QTextCursor cursor = cursorForPosition(QPoint(0, pos.y()));
    int markWidth = 0;
    extraAreaWidth(&markWidth);
    const int fold = foldBoxWidth();
    const bool inFoldColumn = m_foldingVisible && pos.x() > m_extraArea->width() - fold;
    QTextDocument *doc = document();

    if (event->type() == QEvent::MouseMove && m_extraAreaSelectionBlock < 0 && !(event->buttons() & Qt::LeftButton)) {
        int hot = -1;
        if (inFoldColumn && pos.x() >= 0)
            hot = cursor.blockNumber();
        else if (m_highlightBlocks)
            hot = textCursor().blockNumber();
        if (hot != m_extraAreaHighlightBlock) {
            setExtraAreaHighlightBlock(hot);
            m_extraArea->update();
        }
        return;
    }

    if ((event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
        && event->button() == Qt::LeftButton) {
        if (inFoldColumn) {
            const QTextBlock block = cursor.block();
            if (block.next().isValid() && !block.next().isVisible()) {
                toggleBlockVisible(block);
            } else if (QTextEditorBlockData::canCollapse(block)) {
                toggleBlockVisible(block);
            } else if (!m_highlightOpen.isEmpty()) {
                const QTextBlock inner = doc->findBlockByNumber(m_highlightOpen.first());
                if (foldBoxRect(inner).contains(pos))
                    toggleBlockVisible(inner);
            }
            ensureCursorVisible(false);
            return;
        }
        if (m_lineNumbersVisible && pos.x() > markWidth) {
            QTextCursor selection = cursor;
            selection.setPosition(cursor.block().position());
            selection.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
            selection.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor);
            setTextCursor(selection);
            m_extraAreaSelectionBlock = cursor.blockNumber();
        }
        return;
    }

    if (event->type() == QEvent::MouseMove && m_extraAreaSelectionBlock >= 0) {
        const QTextBlock anchor = doc->findBlockByNumber(m_extraAreaSelectionBlock);
        QTextCursor selection(doc);
        if (cursor.blockNumber() >= m_extraAreaSelectionBlock) {
            selection.setPosition(anchor.position());
            selection.setPosition(cursor.block().position(), QTextCursor::KeepAnchor);
            selection.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
            selection.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor);
        } else {
            // Upwards the anchor line stays selected: the anchor is its end.
            selection.setPosition(anchor.position());
            selection.movePosition(QTextCursor::EndOfBlock);
            selection.movePosition(QTextCursor::Right);
            selection.setPosition(cursor.block().position(), QTextCursor::KeepAnchor);
        }
        setTextCursor(selection);
        if (pos.y() < 0 || pos.y() >= m_extraArea->height()) {
            if (!m_autoScrollTimer.isActive())
                m_autoScrollTimer.start(100, this);
        } else {
            m_autoScrollTimer.stop();
        }
        return;
    }

    if (event->type() == QEvent::MouseButtonRelease) {
        m_extraAreaSelectionBlock = -1;
        m_autoScrollTimer.stop();
    }
}

void QTextEditor::extraAreaLeaveEvent(QEvent *event)
{
    Q_UNUSED(event);
    QMouseEvent move(QEvent::MouseMove, QPointF(-1, -1), m_extraArea->mapToGlobal(QPointF(-1, -1)), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    extraAreaMouseEvent(&move);
}

void QTextEditor::autoScrollStep()
{
    const QPoint pos = m_stripPointer;
    const int height = m_extraArea->height();
    verticalScrollBar()->triggerAction(pos.y() < height / 2 ? QAbstractSlider::SliderSingleStepSub
                                                             : QAbstractSlider::SliderSingleStepAdd);
    QMouseEvent move(QEvent::MouseMove, QPointF(pos), m_extraArea->mapToGlobal(QPointF(pos)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    extraAreaMouseEvent(&move);
    if (m_extraAreaSelectionBlock < 0 || (pos.y() >= 0 && pos.y() < height))
        return;
    // Farther out scrolls faster: 100 ms up to 6 pixels, then 4900 / d².
    const int distance = qMax(height - pos.y(), pos.y()) - (height - 1);
    m_autoScrollTimer.start(4900 / qMax(49, distance * distance), this);
}
