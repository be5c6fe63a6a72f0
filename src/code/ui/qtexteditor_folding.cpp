// Folding: closed folds, the " ... " marker after their first line and the
// preview of their hidden lines.
//
// A fold is closed by a flag in the first line's block data; which blocks are
// hidden follows from the flags and the fold levels alone (applyFolds), so
// that edits that change the levels can never leave lines hidden without a
// closed fold above them.

#include "qtexteditor.h"

#include "code/qtexteditorblockdata.h"
#include "code/ui/qeditorextraarea.h"
#include "code/ui/qtextdoclayout.h"

#include <QPainter>
#include <QTextDocument>
#include <QTimer>

namespace {

// Clears the closed flag of every fold that encloses the block.
void openAncestors(const QTextBlock &block)
{
    int indent = QTextEditorBlockData::foldingIndent(block);
    for (QTextBlock b = block.previous(); b.isValid() && indent > 0; b = b.previous()) {
        const int level = QTextEditorBlockData::foldingIndent(b);
        if (level < indent) {
            QTextEditorBlockData::setCollapsed(b, false);
            indent = level;
        }
    }
}

} // namespace

QTextDocLayout::QTextDocLayout(QTextDocument *document)
    : QPlainTextDocumentLayout(document)
{
}

bool QTextEditor::hasFoldingLayout() const
{
    return qobject_cast<QTextDocLayout *>(document()->documentLayout()) != nullptr;
}

void QTextEditor::applyFolds(bool keepCursor)
{
    if (!hasFoldingLayout())
        return;
    QTextDocument *doc = document();
    if (keepCursor)
        openAncestors(textCursor().block());

    bool changed = false;
    bool hiding = false;
    int hideDeeperThan = 0;
    bool anyClosed = false;
    for (QTextBlock b = doc->begin(); b.isValid(); b = b.next()) {
        const int indent = QTextEditorBlockData::foldingIndent(b);
        bool visible = !(hiding && indent > hideDeeperThan);
        if (visible)
            hiding = false;
        // The last line always shows, so that the end of the text stays reachable.
        if (!b.next().isValid())
            visible = true;
        if (visible && QTextEditorBlockData::isCollapsed(b)) {
            if (QTextEditorBlockData::canCollapse(b)) {
                hiding = true;
                hideDeeperThan = indent;
                anyClosed = true;
            } else {
                QTextEditorBlockData::setCollapsed(b, false);
            }
        }
        if (b.isVisible() != visible) {
            b.setVisible(visible);
            b.setLineCount(visible ? qMax(1, b.layout()->lineCount()) : 0);
            changed = true;
        }
    }
    m_foldsPresent = anyClosed;
    if (changed)
        foldingChanged();
}

void QTextEditor::foldingChanged()
{
    auto *layout = static_cast<QTextDocLayout *>(document()->documentLayout());
    layout->requestUpdate();
    layout->emitDocumentSizeChanged();
    m_visibleCollapsedBlock = -1;
    m_suggestedCollapsedBlock = -1;
    viewport()->update();
    m_extraArea->update();
}

void QTextEditor::scheduleFoldRepair()
{
    if (m_foldsPresent)
        m_foldRepairTimer->start();
}

void QTextEditor::toggleBlockVisible(const QTextBlock &block)
{
    if (!hasFoldingLayout() || !block.isValid())
        return;
    QTextBlock b = block;
    const bool closed = b.next().isValid() && !b.next().isVisible();
    if (closed) {
        QTextEditorBlockData::setCollapsed(b, false);
    } else {
        if (!QTextEditorBlockData::canCollapse(b))
            return;
        QTextEditorBlockData::setCollapsed(b, true);
    }
    applyFolds(false);
    ensureCursorVisible(false);
}

void QTextEditor::unfoldBlock(const QTextBlock &block)
{
    if (!block.isValid() || block.isVisible())
        return;
    openAncestors(block);
    applyFolds(false);
}

void QTextEditor::foldAll()
{
    for (QTextBlock b = document()->begin(); b.isValid(); b = b.next()) {
        if (QTextEditorBlockData::canCollapse(b))
            QTextEditorBlockData::setCollapsed(b, true);
    }
    applyFolds(false);
    ensureCursorVisible(true);
}

void QTextEditor::unfoldAll()
{
    for (QTextBlock b = document()->begin(); b.isValid(); b = b.next())
        QTextEditorBlockData::setCollapsed(b, false);
    applyFolds(false);
}

QRect QTextEditor::collapsedMarkerRect(const QTextBlock &block) const
{
    if (!block.isValid() || !block.isVisible() || !block.next().isValid() || block.next().isVisible())
        return QRect();
    const QTextLayout *layout = block.layout();
    if (!layout || layout->lineCount() == 0)
        return QRect();
    const QRectF r = blockBoundingGeometry(block).translated(contentOffset());
    const QTextLine line = layout->lineAt(layout->lineCount() - 1);
    const int width = QFontMetrics(font()).horizontalAdvance(QStringLiteral(" ... "));
    return QRect(int(r.left() + line.x() + line.naturalTextWidth()) + 12, int(r.top() + line.y()), width,
                 int(line.height()));
}

int QTextEditor::collapsedMarkerAt(const QPoint &pos) const
{
    if (!m_foldsPresent)
        return -1;
    const int bottom = viewport()->height();
    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    while (block.isValid() && top <= bottom) {
        if (block.isVisible()) {
            if (collapsedMarkerRect(block).contains(pos))
                return block.blockNumber();
            top += blockBoundingRect(block).height();
        }
        block = block.next();
    }
    return -1;
}

void QTextEditor::cancelCollapsedPreview()
{
    m_collapsedBlockTimer.stop();
    m_suggestedCollapsedBlock = -1;
    if (m_visibleCollapsedBlock >= 0) {
        m_visibleCollapsedBlock = -1;
        viewport()->update();
    }
}

void QTextEditor::paintCollapsedMarkers(QPainter &painter, const QRect &clip)
{
    if (!m_foldsPresent)
        return;
    painter.save();
    painter.setFont(font());
    painter.setRenderHint(QPainter::Antialiasing, true);
    QTextBlock block = firstVisibleBlock();
    qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    while (block.isValid() && top <= clip.bottom()) {
        if (block.isVisible()) {
            const QRect marker = collapsedMarkerRect(block);
            if (!marker.isEmpty() && marker.intersects(clip)) {
                painter.setPen(Qt::gray);
                painter.setBrush(Qt::NoBrush);
                painter.drawRoundedRect(QRectF(marker).adjusted(0.5, 1.5, -0.5, -1.5), 2, 2);
                painter.setPen(palette().color(QPalette::Text));
                painter.drawText(marker, Qt::AlignCenter, QStringLiteral(" ... "));
            }
            top += blockBoundingRect(block).height();
        }
        block = block.next();
    }
    painter.restore();
}

void QTextEditor::paintCollapsedPreview(QPainter &painter)
{
    if (m_visibleCollapsedBlock < 0)
        return;
    const QTextBlock block = document()->findBlockByNumber(m_visibleCollapsedBlock);
    if (collapsedMarkerRect(block).isEmpty())
        return;
    const QPointF offset = contentOffset();
    const qreal top = blockBoundingGeometry(block).translated(offset).bottom();
    const qreal limit = viewport()->height();

    // The hidden lines are made visible only while they are measured and drawn.
    QList<QTextBlock> lines;
    qreal height = 0;
    qreal width = 0;
    for (QTextBlock b = block.next(); b.isValid() && !b.isVisible() && top + height < limit; b = b.next()) {
        b.setVisible(true);
        const QRectF r = blockBoundingRect(b);
        b.setVisible(false);
        lines.append(b);
        height += r.height();
        width = qMax(width, r.width());
    }
    if (lines.isEmpty())
        return;

    // Shadowed, so that it reads as lying over the text, not being part of it.
    const qreal inset = 1;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    const QRectF box(offset.x() + inset, top + 1, width + 4 - inset, height + 2);
    QColor shadow = palette().color(QPalette::Shadow);
    shadow.setAlpha(60);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    painter.drawRoundedRect(box.translated(3, 3), 2, 2);
    painter.setPen(Qt::gray);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.setClipRect(box.adjusted(1, 1, -1, -1));
    painter.setPen(palette().color(QPalette::Text));
    qreal y = box.top() + 1;
    for (QTextBlock b : lines) {
        b.setVisible(true);
        const QRectF r = blockBoundingRect(b);
        b.layout()->draw(&painter, QPointF(offset.x(), y));
        b.setVisible(false);
        y += r.height();
    }
    painter.restore();
}
