#include "qtexteditor.h"

#include "code/qtexteditorblockdata.h"
#include "code/ui/qeditorextraarea.h"
#include "code/ui/qtextdoclayout.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>

QTextEditor::QTextEditor(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_lineColor(QColor(Qt::yellow).lighter(160))
    , m_completer(new QCompleter(this))
    , m_parenthesesTimer(new QTimer(this))
    , m_highlightTimer(new QTimer(this))
    , m_extraArea(new QEditorExtraArea(this))
    , m_foldRepairTimer(new QTimer(this))
{
    m_parenFormat.setBackground(QColor(Qt::magenta).lighter(190));
    m_parenMismatchFormat.setForeground(Qt::red);
    m_parenRangeFormat.setBackground(Qt::magenta);

    setFrameStyle(QFrame::NoFrame);
    // Code lines stay whole; long ones scroll sideways.
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_extraArea->setAttribute(Qt::WA_MouseTracking);
    viewport()->setAttribute(Qt::WA_MouseTracking);
    viewport()->setMouseTracking(true);
    m_extraArea->setMouseTracking(true);

    m_completer->setModelSorting(QCompleter::CaseInsensitivelySortedModel);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer->setWrapAround(false);
    m_completer->setWidget(this);
    connect(m_completer, qOverload<const QString &>(&QCompleter::activated), this, &QTextEditor::insertCompletion);

    m_parenthesesTimer->setSingleShot(true);
    connect(m_parenthesesTimer, &QTimer::timeout, this, &QTextEditor::parenthesesMatchingTimeOut);
    m_highlightTimer->setSingleShot(true);
    connect(m_highlightTimer, &QTimer::timeout, this, &QTextEditor::blockHighlightTimeOut);
    m_foldRepairTimer->setSingleShot(true);
    m_foldRepairTimer->setInterval(0);
    connect(m_foldRepairTimer, &QTimer::timeout, this, [this] { applyFolds(true); });

    connect(this, &QPlainTextEdit::blockCountChanged, this, &QTextEditor::slotUpdateExtraAreaWidth);
    connect(this, &QPlainTextEdit::updateRequest, this, &QTextEditor::slotUpdateRequest);
    connect(this, &QPlainTextEdit::selectionChanged, this, &QTextEditor::slotSelectionChanged);
    connect(this, &QTextEditor::requestBlockUpdate, this, [this](const QTextBlock &block) {
        const QRectF r = blockBoundingGeometry(block).translated(contentOffset());
        m_extraArea->update(0, int(r.top()), m_extraArea->width(), int(r.height()) + 1);
    });

    // A document of our own with the folding layout, in place of the one
    // the base class made.
    auto *document = new QTextDocument(this);
    document->setDocumentLayout(new QTextDocLayout(document));
    setDocument(document);
}

QTextEditor::~QTextEditor() = default;

void QTextEditor::setDocument(QTextDocument *document)
{
    m_parenthesesTimer->stop();
    m_extraSelections[ParenthesesSelection].clear();
    for (const QMetaObject::Connection &c : std::as_const(m_documentConnections))
        disconnect(c);
    m_documentConnections.clear();
    if (document && !qobject_cast<QTextDocLayout *>(document->documentLayout()))
        document->setDocumentLayout(new QTextDocLayout(document));

    disconnect(this, &QPlainTextEdit::cursorPositionChanged, this, &QTextEditor::slotCursorPositionChanged);
    QPlainTextEdit::setDocument(document);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &QTextEditor::slotCursorPositionChanged);

    QTextDocument *doc = QPlainTextEdit::document();
    m_documentConnections << connect(doc->documentLayout(), &QAbstractTextDocumentLayout::updateBlock, this,
                                     &QTextEditor::slotUpdateBlockNotify)
                          << connect(doc, &QTextDocument::contentsChange, this,
                                     [this](int, int, int) { scheduleFoldRepair(); });

    m_currentLineNumber = -1;
    m_visibleCollapsedBlock = -1;
    m_suggestedCollapsedBlock = -1;
    m_highlightOpen.clear();
    m_highlightClose.clear();
    m_highlightIndent.clear();
    slotUpdateExtraAreaWidth();
    applyFolds(false);
    updateCurrentLine();
    applySelections();
}

void QTextEditor::setLineNumbersVisible(bool on)
{
    m_lineNumbersVisible = on;
    slotUpdateExtraAreaWidth();
    m_extraArea->update();
}

void QTextEditor::setFoldingVisible(bool on)
{
    m_foldingVisible = on;
    slotUpdateExtraAreaWidth();
    m_extraArea->update();
}

void QTextEditor::setColors(const QMap<QString, QColor> &colors)
{
    if (colors.contains(QStringLiteral("line")))
        m_lineColor = colors.value(QStringLiteral("line"));
    if (colors.contains(QStringLiteral("block_range")))
        m_blockRangeColor = colors.value(QStringLiteral("block_range"));
    if (colors.contains(QStringLiteral("paren"))) {
        // The colour set gives the bracket its own colour on the range.
        m_parenFormat = QTextCharFormat();
        m_parenFormat.setForeground(colors.value(QStringLiteral("paren")));
        m_parenFormat.setFontWeight(QFont::Bold);
    }
    if (colors.contains(QStringLiteral("paren_range")))
        m_parenRangeFormat.setBackground(colors.value(QStringLiteral("paren_range")));
    refreshHighlightOptions();
}

void QTextEditor::setExtraSelections(SelectionKind kind, const QList<QTextEdit::ExtraSelection> &selections)
{
    m_extraSelections[size_t(kind)] = selections;
    applySelections();
}

QList<QTextEdit::ExtraSelection> QTextEditor::extraSelections(SelectionKind kind) const
{
    return m_extraSelections[size_t(kind)];
}

void QTextEditor::applySelections()
{
    QList<QTextEdit::ExtraSelection> all;
    for (const auto &list : m_extraSelections)
        all += list;
    QPlainTextEdit::setExtraSelections(all);
}

void QTextEditor::updateCurrentLine()
{
    QList<QTextEdit::ExtraSelection> line;
    if (m_highlightCurrentLine) {
        QTextEdit::ExtraSelection sel;
        sel.format.setBackground(m_lineColor);
        sel.format.setProperty(QTextFormat::FullWidthSelection, true);
        sel.cursor = textCursor();
        sel.cursor.clearSelection();
        line.append(sel);
    }
    m_extraSelections[CurrentLineSelection] = line;

    const int number = textCursor().blockNumber();
    if (number != m_currentLineNumber) {
        const QTextDocument *doc = document();
        for (int n : {m_currentLineNumber, number}) {
            const QTextBlock block = doc->findBlockByNumber(n);
            if (!block.isValid())
                continue;
            const QRectF r = blockBoundingGeometry(block).translated(contentOffset());
            m_extraArea->update(0, int(r.top()), m_extraArea->width(), int(r.height()) + 1);
        }
        m_currentLineNumber = number;
        emit currentLineChanged(number);
    }
}

void QTextEditor::slotCursorPositionChanged()
{
    if (m_parenMatching && hasFocus())
        m_parenthesesTimer->start(m_extraSelections[ParenthesesSelection].isEmpty() ? 50 : 0);
    updateCurrentLine();
    applySelections();
    if (m_highlightBlocks) {
        m_extraAreaHighlightBlock = textCursor().blockNumber();
        m_highlightTimer->start(100);
    }
    const QTextCursor cursor = textCursor();
    emit cursorChanged(QPoint(cursor.blockNumber(), cursor.positionInBlock()));
}

void QTextEditor::slotSelectionChanged()
{
    // Selected lines show their numbers in full colour.
    m_extraArea->update();
}

void QTextEditor::slotUpdateBlockNotify(const QTextBlock &block)
{
    static bool blockRecursion = false;
    if (blockRecursion)
        return;
    blockRecursion = true;
    const QTextBlock previous = block.previous();
    if (previous.isValid() && previous.userState() != block.userState())
        emit requestBlockUpdate(previous);
    blockRecursion = false;
}

void QTextEditor::refreshHighlightOptions()
{
    if (!m_highlightBlocks) {
        m_highlightOpen.clear();
        m_highlightClose.clear();
        m_highlightIndent.clear();
    }
    if (!m_parenMatching)
        m_extraSelections[ParenthesesSelection].clear();
    updateCurrentLine();
    applySelections();
    if (m_parenMatching)
        m_parenthesesTimer->start(0);
    if (m_highlightBlocks) {
        m_extraAreaHighlightBlock = textCursor().blockNumber();
        m_highlightTimer->start(0);
    }
    slotUpdateExtraAreaWidth();
    viewport()->update();
    m_extraArea->update();
}

int QTextEditor::visibleLines() const
{
    const int line = QFontMetrics(font()).height();
    return line > 0 ? viewport()->rect().height() / line : 0;
}

void QTextEditor::gotoLine(uint line, uint mode)
{
    QTextDocument *doc = document();
    const int last = doc->blockCount() - 1;
    const int target = qMin(int(qMin(line, uint(INT_MAX))), last);
    const QTextBlock block = doc->findBlockByNumber(target);
    unfoldBlock(block);

    const int visible = visibleLines();
    QTextCursor cursor(doc);
    if (target >= visible && mode != 1) {
        // Past the place first, then back: the view scrolls just far enough.
        const int offset = mode == 0 ? qMax(visible - 1, 0) : visible / 2;
        cursor.setPosition(doc->findBlockByNumber(qMin(target + offset, last)).position());
        setTextCursor(cursor);
    }
    cursor.setPosition(block.position());
    setTextCursor(cursor);
    m_parenthesesTimer->start(50);
}

void QTextEditor::restorePosition(int block, int column, int scrollValue)
{
    const QTextBlock b = document()->findBlockByNumber(qMax(block, 0));
    if (b.isValid()) {
        QTextCursor cursor(b);
        cursor.setPosition(b.position() + qBound(0, column, b.length() - 1));
        setTextCursor(cursor);
    }
    verticalScrollBar()->setValue(scrollValue);
    m_parenthesesTimer->start(50);
    const QTextCursor cursor = textCursor();
    emit cursorChanged(QPoint(cursor.blockNumber(), cursor.positionInBlock()));
}

void QTextEditor::ensureCursorVisible(bool scroll)
{
    QTextCursor cursor = textCursor();
    if (!cursor.block().isVisible()) {
        // Up line by line; a hidden block has no lines of its own to step on.
        const int column = cursor.positionInBlock();
        while (!cursor.block().isVisible() && cursor.movePosition(QTextCursor::PreviousBlock)) {
        }
        cursor.setPosition(cursor.block().position() + qMin(column, cursor.block().length() - 1));
        setTextCursor(cursor);
    }
    if (scroll)
        QPlainTextEdit::ensureCursorVisible();
}

void QTextEditor::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    const QRect cr = contentsRect();
    m_extraArea->setGeometry(
        QStyle::visualRect(layoutDirection(), cr, QRect(cr.left(), cr.top(), extraAreaWidth(), cr.height())));
}

void QTextEditor::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_extraArea->setFont(font());
        slotUpdateExtraAreaWidth();
    }
}

bool QTextEditor::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        if (QGuiApplication::keyboardModifiers() & Qt::ControlModifier)
            return true;
        const auto *help = static_cast<QHelpEvent *>(event);
        const QTextCursor cursor = cursorForPosition(help->pos());
        const int column = cursor.positionInBlock();
        for (const BlockIssue &issue : QTextEditorBlockData::issuesOf(cursor.block())) {
            if (issue.start <= column && column <= issue.end) {
                QToolTip::showText(help->globalPos(), issue.message, viewport());
                return true;
            }
        }
        QToolTip::hideText();
        return true;
    }
    if (event->type() == QEvent::ContextMenu) {
        const auto *menu = static_cast<QContextMenuEvent *>(event);
        if (menu->reason() == QContextMenuEvent::Mouse && !textCursor().hasSelection())
            setTextCursor(cursorForPosition(menu->pos()));
    }
    return QPlainTextEdit::viewportEvent(event);
}

void QTextEditor::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_autoScrollTimer.timerId()) {
        autoScrollStep();
        return;
    }
    if (event->timerId() == m_collapsedBlockTimer.timerId()) {
        m_visibleCollapsedBlock = m_suggestedCollapsedBlock;
        m_suggestedCollapsedBlock = -1;
        m_collapsedBlockTimer.stop();
        viewport()->update();
        return;
    }
    QPlainTextEdit::timerEvent(event);
}

void QTextEditor::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        const int marker = collapsedMarkerAt(event->pos());
        if (marker >= 0) {
            toggleBlockVisible(document()->findBlockByNumber(marker));
            viewport()->setCursor(Qt::IBeamCursor);
            m_mouseOnCollapsedMarker = false;
            event->accept();
            return;
        }
    }
    QPlainTextEdit::mousePressEvent(event);
}

void QTextEditor::mouseMoveEvent(QMouseEvent *event)
{
    if (viewport()->cursor().shape() == Qt::BlankCursor)
        viewport()->setCursor(Qt::IBeamCursor);
    if (event->buttons() == Qt::NoButton) {
        const int marker = collapsedMarkerAt(event->pos());
        if (marker >= 0) {
            if (!m_mouseOnCollapsedMarker) {
                m_mouseOnCollapsedMarker = true;
                viewport()->setCursor(Qt::PointingHandCursor);
            }
            if (marker != m_visibleCollapsedBlock && marker != m_suggestedCollapsedBlock) {
                m_suggestedCollapsedBlock = marker;
                m_collapsedBlockTimer.start(40, this);
            }
        } else {
            if (m_mouseOnCollapsedMarker) {
                m_mouseOnCollapsedMarker = false;
                viewport()->setCursor(Qt::IBeamCursor);
            }
            cancelCollapsedPreview();
        }
    }
    QPlainTextEdit::mouseMoveEvent(event);
}

void QTextEditor::leaveEvent(QEvent *event)
{
    cancelCollapsedPreview();
    if (m_mouseOnCollapsedMarker) {
        m_mouseOnCollapsedMarker = false;
        viewport()->setCursor(Qt::IBeamCursor);
    }
    QPlainTextEdit::leaveEvent(event);
}

void QTextEditor::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Insert && event->modifiers() == Qt::NoModifier) {
        setOverwriteMode(!overwriteMode());
        QPlainTextEdit::keyPressEvent(event);
        return;
    }
    viewport()->setCursor(Qt::BlankCursor);
    cancelCollapsedPreview();
    handleCompletion(event);
}

void QTextEditor::paintEvent(QPaintEvent *event)
{
    {
        // Nested-block backgrounds go under the text.
        QPainter painter(viewport());
        paintBlockRanges(painter, event->rect());
    }
    QPlainTextEdit::paintEvent(event);
    QPainter painter(viewport());
    paintCollapsedMarkers(painter, event->rect());
    paintCollapsedPreview(painter);
}
