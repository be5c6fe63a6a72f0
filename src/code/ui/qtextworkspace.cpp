#include "qtextworkspace.h"

#include "base/qapppaths.h"
#include "base/qmugenmodel.h"
#include "code/qsyntaxtexteditor.h"
#include "code/qtexteditorblockdata.h"
#include "code/syntaxformats.h"
#include "code/qsyntaxprocessor.h"
#include "qtexteditor.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qcolorsetmanager.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QMenu>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QVBoxLayout>

#include <climits>

namespace {

// The colours of the nine roles until the options give others.
void applyDefaultColors(SyntaxFormats *formats)
{
    if (!formats)
        return;
    QMap<QString, SyntaxFormats::Record> colors;
    colors.insert(QStringLiteral("comment"), {QColor(0, 128, 0), false, true});
    colors.insert(QStringLiteral("number"), {QColor(160, 0, 160), false, false});
    colors.insert(QStringLiteral("string"), {QColor(160, 80, 0), false, false});
    colors.insert(QStringLiteral("keyword"), {QColor(0, 0, 200), true, false});
    colors.insert(QStringLiteral("block"), {QColor(128, 0, 0), true, false});
    colors.insert(QStringLiteral("controller"), {QColor(0, 96, 160), true, false});
    colors.insert(QStringLiteral("trigger"), {QColor(0, 64, 192), false, false});
    colors.insert(QStringLiteral("const"), {QColor(96, 96, 0), false, false});
    colors.insert(QStringLiteral("value"), {QColor(0, 0, 0), false, false});
    formats->applyColors(colors);
}

} // namespace

QTextWorkspace::QTextWorkspace(const QAppObjects &objects, QObject *parent)
    : QInterfaceWorkspace(parent)
    , m_config(objects.config)
{
    applyDefaultColors(objects.syntaxFormats);
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("textWorkspace"));
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    m_tabs = new QTabBar(page);
    m_tabs->setObjectName(QStringLiteral("textTabs"));
    m_tabs->setDocumentMode(true);
    m_tabs->setExpanding(false);
    m_tabs->hide();
    layout->addWidget(m_tabs);
    m_editor = new QTextEditor(page);
    m_editor->setObjectName(QStringLiteral("textEditor"));
    m_editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_editor->setContextMenuPolicy(Qt::CustomContextMenu);
    if (objects.paths)
        m_editor->loadCompletion(objects.paths->dataPath(QStringLiteral("completer.xml")));
    if (objects.syntaxFormats)
        m_editor->setFont(objects.syntaxFormats->font());
    layout->addWidget(m_editor, 1);
    m_issues = new QComboBox(page);
    m_issues->setObjectName(QStringLiteral("textIssues"));
    m_issues->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    layout->addWidget(m_issues);
    m_widget = page;

    m_empty = new QTextDocument(this);
    m_editor->setDocument(m_empty);
    m_editor->setReadOnly(true);

    m_issueTimer.setSingleShot(true);
    m_issueTimer.setInterval(300);
    connect(&m_issueTimer, &QTimer::timeout, this, &QTextWorkspace::updateErrorList);
    connect(m_issues, qOverload<int>(&QComboBox::activated), this, &QTextWorkspace::errorActivated);
    connect(m_editor, &QWidget::customContextMenuRequested, this, &QTextWorkspace::showContextMenu);
    // Snippet combo and state-controller library around the editor.
    buildLibrary(objects);
}

QTextWorkspace::~QTextWorkspace()
{
    disconnect(m_contentsConnection);
    disconnect(m_hierarchyConnection);
    // The documents belong to projects that may outlive this page.
    if (m_editor)
        m_editor->setDocument(m_empty);
}

void QTextWorkspace::applyConfig()
{
    if (!m_config)
        return;
    QFont font(m_config->text(QStringLiteral("font_name"), QStringLiteral("Courier")),
               m_config->number(QStringLiteral("font_size"), 10));
    font.setFixedPitch(true);
    font.setStyleHint(QFont::TypeWriter);
    m_editor->setFont(font);
    m_editor->setLineNumbersVisible(m_config->flag(QStringLiteral("code_line_numbers"), true));
    m_editor->setHighlightCurrentLine(m_config->flag(QStringLiteral("code_highlight_line"), true));
    m_editor->setHighlightBlocks(m_config->flag(QStringLiteral("code_highlight_blocks"), false));
    m_editor->setFoldingVisible(m_config->flag(QStringLiteral("code_folding_markers"), true));
    m_editor->setParenMatching(m_config->flag(QStringLiteral("code_paren_matching"), true));
    // The shared font and colours, then every open document painted again.
    QMap<QString, QColor> editorColors;
    bool changed = false;
    if (m_colorsets && m_formats) {
        QMap<QString, SyntaxFormats::Record> roles;
        for (int i = 0; i < SyntaxFormats::Count; ++i) {
            const QString role = SyntaxFormats::roleName(i);
            const SyntaxFormats::Record current = m_formats->format(i);
            const QColorsetManager::Entry e = m_colorsets->colors().value(role, {current.color, current.bold, current.italic});
            roles.insert(role, {e.color, e.bold, e.italic});
        }
        changed = m_formats->applyColors(roles);
        for (const char *key : {"line", "block_range", "paren", "paren_range"})
            if (m_colorsets->colors().contains(QString::fromLatin1(key)))
                editorColors.insert(QString::fromLatin1(key), m_colorsets->color(QString::fromLatin1(key)).color);
    }
    if (m_formats && m_formats->font() != font) {
        m_formats->setFont(font, true);
        changed = true;
    }
    if (!editorColors.isEmpty())
        m_editor->setColors(editorColors);
    if (m_textBar)
        m_textBar->setFont(font);
    m_editor->refreshHighlightOptions();
    if (changed)
        rehighlightAll(m_editor->window());
    showSctrlListTextBar(m_config->flag(QStringLiteral("show_sctrl_list"), true));
    showTextBar(m_config->flag(QStringLiteral("show_text_bar"), true));
}

void QTextWorkspace::savePosition()
{
    if (!m_document)
        return;
    // Kept on the document itself, so that it goes with the document.
    const QTextCursor c = m_editor->textCursor();
    m_document->setProperty("bf_position", QVariantList{c.blockNumber(), c.positionInBlock(),
                                                        m_editor->verticalScrollBar()->value()});
}

void QTextWorkspace::showDocument(QSyntaxTextEditor *document)
{
    if (document == m_document)
        return;
    savePosition();
    disconnect(m_contentsConnection);
    disconnect(m_hierarchyConnection);
    if (m_document)
        disconnect(m_document, &QObject::destroyed, this, nullptr);
    m_document = document;
    if (!document) {
        m_editor->setDocument(m_empty);
        m_editor->setReadOnly(true);
    } else {
        // A text read while no view showed it was never laid out, so the
        // checker has not seen it yet: the first showing checks it whole.
        QTextDocument *text = document->document();
        const bool firstShowing = !text->property("bf_shown").toBool();
        text->setProperty("bf_shown", true);
        m_editor->setDocument(text);
        m_editor->setReadOnly(false);
        if (firstShowing && document->processor())
            document->processor()->refresh();
        // A document that goes while shown leaves the page empty, never dangling.
        connect(document, &QObject::destroyed, this, [this] {
            m_document = nullptr;
            disconnect(m_contentsConnection);
            disconnect(m_hierarchyConnection);
            m_editor->setDocument(m_empty);
            m_editor->setReadOnly(true);
            updateErrorList();
        });
        // The checker may re-mark other lines after an edit: count a moment later.
        m_contentsConnection =
            connect(document->document(), &QTextDocument::contentsChanged, this, [this] { m_issueTimer.start(); });
        // A new engine version re-checks the text without changing it.
        m_hierarchyConnection =
            connect(document, &QSyntaxTextEditor::hierarchyUpdated, this, [this] { m_issueTimer.start(); });
        const QVariantList place = document->property("bf_position").toList();
        if (place.size() == 3)
            m_editor->restorePosition(place[0].toInt(), place[1].toInt(), place[2].toInt());
    }
    updateErrorList();
}

int QTextWorkspace::issueCount(const QTextDocument *document, int kind)
{
    int count = 0;
    if (!document)
        return 0;
    for (QTextBlock b = document->begin(); b.isValid(); b = b.next())
        for (const BlockIssue &issue : QTextEditorBlockData::issuesOf(b))
            count += issue.kind == kind ? 1 : 0;
    return count;
}

void QTextWorkspace::updateErrorList()
{
    m_issueTimer.stop();
    static const QIcon error(QStringLiteral(":/imgs/Imgs/error.png"));
    static const QIcon warning(QStringLiteral(":/imgs/Imgs/warn.png"));
    m_issues->clear();
    if (m_document) {
        const QTextDocument *doc = m_document->document();
        for (QTextBlock b = doc->begin(); b.isValid(); b = b.next())
            for (const BlockIssue &issue : QTextEditorBlockData::issuesOf(b))
                m_issues->addItem(issue.kind == BlockIssue::Error ? error : warning,
                                  tr("Line %1: %2").arg(b.blockNumber() + 1).arg(issue.message),
                                  QPoint(b.blockNumber(), issue.start));
    }
    m_issues->setEnabled(m_issues->count() > 0);
    emit issuesUpdated();
}

void QTextWorkspace::errorActivated(int row)
{
    const QPoint at = m_issues->itemData(row).toPoint();
    if (!m_document || row < 0)
        return;
    const QTextBlock block = m_document->document()->findBlockByNumber(at.x());
    if (!block.isValid())
        return;
    QTextCursor c(block);
    c.setPosition(block.position() + qMin(at.y(), block.length() - 1));
    m_editor->setTextCursor(c);
    m_editor->ensureCursorVisible(true);
    m_editor->setFocus();
}

bool QTextWorkspace::findIssue(int kind, bool forward)
{
    if (!m_document)
        return false;
    const QTextCursor cursor = m_editor->textCursor();
    const int column = cursor.positionInBlock();
    QTextBlock block = cursor.block();
    int hitColumn = -1;
    // The cursor's own line counts only beyond (or before) the cursor.
    for (const BlockIssue &issue : QTextEditorBlockData::issuesOf(block)) {
        if (issue.kind != kind)
            continue;
        if (forward && issue.start >= column + 1 && (hitColumn < 0 || issue.start < hitColumn))
            hitColumn = issue.start;
        if (!forward && issue.start < column && issue.start > hitColumn)
            hitColumn = issue.start;
    }
    while (hitColumn < 0) {
        block = forward ? block.next() : block.previous();
        if (!block.isValid())
            return false; // no wrapping at the ends
        for (const BlockIssue &issue : QTextEditorBlockData::issuesOf(block)) {
            if (issue.kind != kind)
                continue;
            if (hitColumn < 0 || (forward ? issue.start < hitColumn : issue.start > hitColumn))
                hitColumn = issue.start;
        }
    }
    QTextCursor c(block);
    c.setPosition(block.position() + qMin(hitColumn, block.length() - 1));
    m_editor->setTextCursor(c);
    m_editor->ensureCursorVisible(true);
    return true;
}

void QTextWorkspace::goToLine()
{
    if (!m_document)
        return;
    const int lineCount = m_document->document()->blockCount();
    QDialog dialog(m_editor->window());
    dialog.setObjectName(QStringLiteral("GoToDlg"));
    dialog.setWindowTitle(tr("Go to line"));
    auto *form = new QFormLayout(&dialog);
    auto *line = new QSpinBox(&dialog);
    line->setObjectName(QStringLiteral("line"));
    line->setRange(0, INT_MAX);
    line->setValue(m_editor->textCursor().blockNumber() + 1);
    line->selectAll();
    form->addRow(tr("Line (1 - %1):").arg(lineCount), line);
    form->addRow(QAskUser::okCancelButtons(&dialog));
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    int target = line->value();
    if (target > lineCount) {
        if (!QAskUser::question(m_editor->window(), tr("Go to line"),
                                tr("Invalid line! Do you want go to the last line?")))
            return;
        target = lineCount;
    }
    m_editor->gotoLine(uint(qMax(target - 1, 0)), 2);
    m_editor->setFocus();
}

void QTextWorkspace::comment()
{
    if (!m_document || m_editor->isReadOnly())
        return;
    QTextDocument *doc = m_document->document();
    const QTextCursor selection = m_editor->textCursor();
    int end = selection.selectionEnd();
    QTextBlock block = doc->findBlock(selection.selectionStart());
    const bool uncomment = block.text().startsWith(QLatin1Char(';'));
    // Each line is an undo step of its own; the end of the selection moves
    // with every character added or taken.
    do {
        QTextCursor c(block);
        if (uncomment) {
            if (block.text().startsWith(QLatin1Char(';'))) {
                c.deleteChar();
                --end;
            }
        } else {
            c.insertText(QStringLiteral(";"));
            ++end;
        }
        block = block.next();
    } while (block.isValid() && block.position() < end);
}

void QTextWorkspace::showContextMenu(const QPoint &pos)
{
    QMenu *menu = m_editor->createStandardContextMenu(pos);
    if (!m_contextActions.isEmpty())
        menu->addSeparator();
    for (QAction *a : std::as_const(m_contextActions))
        menu->addAction(a);
    menu->exec(m_editor->viewport()->mapToGlobal(pos));
    delete menu;
}
