#pragma once

#include <QBasicTimer>
#include <QColor>
#include <QHash>
#include <QMap>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCharFormat>

#include <array>

class QAbstractItemModel;
class QCompleter;
class QEditorExtraArea;
class QTimer;

// The plain-text code widget of every text editor of the program. Beside the
// text it has a strip with line numbers and fold boxes, folds blocks of lines
// behind a " ... " marker, highlights the current line and the nested blocks
// around it, matches brackets, explains syntax issues in tool tips and offers
// completions after typed prefixes. It knows no language: fold levels,
// brackets and issues come from the syntax processors through the per-line
// QTextEditorBlockData, and the completion lists from a data file.
class QTextEditor : public QPlainTextEdit
{
    Q_OBJECT

public:
    // The merged lists of extra selections, in drawing order.
    enum SelectionKind { CurrentLineSelection = 0, ParenthesesSelection = 1, FindSelection = 2, OtherSelection = 3 };

    explicit QTextEditor(QWidget *parent = nullptr);
    ~QTextEditor() override;

    // Strip width; markWidth receives the width left of the line numbers
    // that belongs to no number (always 0: there is no mark column).
    virtual int extraAreaWidth(int *markWidth = nullptr);
    virtual void extraAreaPaintEvent(QPaintEvent *event);
    virtual void extraAreaLeaveEvent(QEvent *event);
    virtual void extraAreaMouseEvent(QMouseEvent *event);

    // Reads the completion lists; a missing or foreign file leaves none.
    void loadCompletion(const QString &path);
    // Shows another document. Its layout becomes a folding one if it is not.
    void setDocument(QTextDocument *document);
    // Puts the cursor on the line (0-based) and scrolls so that the line is at
    // the top (mode 0), the bottom (1) or the middle (2) of the view.
    void gotoLine(uint line, uint mode = 0);
    void restorePosition(int block, int column, int scrollValue);
    int visibleLines() const;
    // Call after changing the options below.
    void refreshHighlightOptions();
    using QPlainTextEdit::ensureCursorVisible;
    // Moves the cursor up out of a closed fold; with scroll, scrolls to it.
    void ensureCursorVisible(bool scroll);

    bool lineNumbersVisible() const { return m_lineNumbersVisible; }
    void setLineNumbersVisible(bool on);
    bool foldingVisible() const { return m_foldingVisible; }
    void setFoldingVisible(bool on);
    bool highlightCurrentLine() const { return m_highlightCurrentLine; }
    void setHighlightCurrentLine(bool on) { m_highlightCurrentLine = on; }
    bool highlightBlocks() const { return m_highlightBlocks; }
    void setHighlightBlocks(bool on) { m_highlightBlocks = on; }
    bool blockColorsVisible() const { return m_blockColorsVisible; }
    void setBlockColorsVisible(bool on) { m_blockColorsVisible = on; }
    bool parenMatching() const { return m_parenMatching; }
    void setParenMatching(bool on) { m_parenMatching = on; }
    bool parenRangeMode() const { return m_parenRangeMode; }
    void setParenRangeMode(bool on) { m_parenRangeMode = on; }
    // Colours by key: "line", "block_range", "paren", "paren_range".
    void setColors(const QMap<QString, QColor> &colors);

    using QPlainTextEdit::extraSelections;
    using QPlainTextEdit::setExtraSelections;
    void setExtraSelections(SelectionKind kind, const QList<QTextEdit::ExtraSelection> &selections);
    QList<QTextEdit::ExtraSelection> extraSelections(SelectionKind kind) const;

    // Folding. A document whose layout is not the folding one never folds.
    void toggleBlockVisible(const QTextBlock &block);
    // Opens every closed fold that hides the block.
    void unfoldBlock(const QTextBlock &block);
    void foldAll();
    void unfoldAll();
    // The " ... " marker after a closed fold's first line, in viewport
    // coordinates; empty when the block shows no marker.
    QRect collapsedMarkerRect(const QTextBlock &block) const;
    // The closed block whose hidden lines are shown as a preview, or -1.
    int previewedBlock() const { return m_visibleCollapsedBlock; }

    // The nested blocks around the highlighted line, innermost first: the
    // block numbers of their first and last lines.
    QList<int> highlightedOpenBlocks() const { return m_highlightOpen; }
    QList<int> highlightedCloseBlocks() const { return m_highlightClose; }
    int extraAreaHighlightBlock() const { return m_extraAreaHighlightBlock; }
    void setExtraAreaHighlightBlock(int block);

    QCompleter *completer() const { return m_completer; }
    QStringList completionPrefixes() const { return m_completionModels.keys(); }
    QWidget *extraArea() const;

signals:
    void requestBlockUpdate(const QTextBlock &block);
    // x: block number, y: column.
    void cursorChanged(const QPoint &position);
    void currentLineChanged(int line);

public slots:
    void slotUpdateExtraAreaWidth();
    void slotUpdateRequest(const QRect &rect, int dy);
    void slotCursorPositionChanged();
    void slotUpdateBlockNotify(const QTextBlock &block);
    void slotSelectionChanged();
    void insertCompletion(const QString &word);
    void parenthesesMatchingTimeOut();
    void blockHighlightTimeOut();

protected:
    void timerEvent(QTimerEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class QEditorExtraArea;

    int foldBoxWidth() const;
    QRect foldBoxRect(const QTextBlock &block) const;
    void applySelections();
    void updateCurrentLine();
    void updateExtraAreaBlock(int blockNumber);
    // Brings block visibility in line with the closed folds, opening those
    // that would hide the cursor when keepCursor is set.
    void applyFolds(bool keepCursor);
    void scheduleFoldRepair();
    void foldingChanged();
    bool hasFoldingLayout() const;
    // Collapsed-marker and preview handling of the viewport.
    int collapsedMarkerAt(const QPoint &pos) const;
    void cancelCollapsedPreview();
    void paintCollapsedMarkers(QPainter &painter, const QRect &clip);
    void paintCollapsedPreview(QPainter &painter);
    void paintBlockRanges(QPainter &painter, const QRect &clip);
    int firstTextPixel(const QTextBlock &block) const;
    // Completion: the model for the text before the word being typed.
    QAbstractItemModel *completionModelFor(const QString &textBeforeWord) const;
    QString wordBeforeCursor() const;
    void handleCompletion(QKeyEvent *event);
    int popupWidth();
    void autoScrollStep();

    QColor m_lineColor;
    QColor m_blockRangeColor;
    QTextCharFormat m_parenFormat;
    QTextCharFormat m_parenMismatchFormat;
    QTextCharFormat m_parenRangeFormat;
    bool m_lineNumbersVisible = true;
    bool m_foldingVisible = true;
    bool m_highlightCurrentLine = true;
    bool m_highlightBlocks = false;
    bool m_blockColorsVisible = true;
    bool m_parenMatching = true;
    QCompleter *m_completer = nullptr;
    QMap<QString, QAbstractItemModel *> m_completionModels;
    QHash<QAbstractItemModel *, int> m_popupWidths;
    int m_currentLineNumber = -1;
    int m_visibleCollapsedBlock = -1;
    int m_suggestedCollapsedBlock = -1;
    std::array<QList<QTextEdit::ExtraSelection>, 4> m_extraSelections;
    bool m_parenRangeMode = true;
    QTimer *m_parenthesesTimer = nullptr;
    QList<int> m_highlightOpen;
    QList<int> m_highlightClose;
    QList<int> m_highlightIndent;
    QTimer *m_highlightTimer = nullptr;
    QBasicTimer m_collapsedBlockTimer;
    bool m_mouseOnCollapsedMarker = false;
    QBasicTimer m_autoScrollTimer;
    QEditorExtraArea *m_extraArea = nullptr;
    int m_extraAreaSelectionBlock = -1;
    int m_extraAreaHighlightBlock = -1;
    QTimer *m_foldRepairTimer = nullptr;
    int m_lastExtraAreaWidth = -1;
    QPoint m_stripPointer; // last pointer position over the strip
    bool m_foldsPresent = false;
    QList<QMetaObject::Connection> m_documentConnections;
};
