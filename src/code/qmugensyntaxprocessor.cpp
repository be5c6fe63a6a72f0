#include "qmugensyntaxprocessor.h"

#include "code/qsyntaxproperties.h"
#include "code/syntaxformats.h"

#include <QTextDocument>

QMugenSyntaxProcessor::QMugenSyntaxProcessor(QMugenSyntaxProperties *syntax, const SyntaxFormats *formats,
                                             QTextDocument *document, bool reportErrors)
    : QSyntaxProcessor(Mugen, syntax, nullptr)
    , m_formats(formats)
    , m_checker(syntax)
{
    m_checker.setReportErrors(reportErrors);
    // Attached only now, so that the first pass sees a complete object; the
    // document owns its highlighter.
    setParent(document);
    setDocument(document);
}

void QMugenSyntaxProcessor::setReportErrors(bool on)
{
    if (on == m_checker.reportErrors())
        return;
    m_checker.setReportErrors(on);
    refresh();
}

void QMugenSyntaxProcessor::format(int start, int length, int role)
{
    setFormat(start, length, m_formats->charFormat(role));
}

void QMugenSyntaxProcessor::highlightBlock(const QString &text)
{
    QSyntaxProcessor::highlightBlock(text);
    QTextEditorBlockData *data = blockData();
    m_checker.setEngineVersion(engineVersion());
    const int state = m_checker.checkLine(text, previousBlockState(), m_formats ? this : nullptr);

    const int length = int(text.size());
    for (const BlockIssue &issue : m_checker.issues()) {
        // An issue at the end of the line marks its last character.
        const int first = qBound(0, issue.start, qMax(0, length - 1));
        const int last = qMin(issue.end, length - 1);
        for (int i = first; i <= qMax(first, last) && i < length; ++i) {
            QTextCharFormat f = QSyntaxHighlighter::format(i);
            f.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
            f.setUnderlineColor(issue.kind == BlockIssue::Error ? QColor(Qt::red) : warningColor());
            setFormat(i, 1, f);
        }
    }
    data->issues = m_checker.issues();
    data->parens = m_checker.parens();
    data->sectionHeader = m_checker.lineIsHeader();

    // The fold closes on the last line before the next header: look ahead
    // past blank and comment lines for it.
    bool beforeHeader = false;
    bool nextIsState = false;
    // (A long run of blank lines is not searched to its end.)
    int budget = 1000;
    for (QTextBlock b = currentBlock(); b.isValid() && budget-- > 0; b = b.next()) {
        bool isHeader = false;
        bool isState = false;
        if (!QMugenSyntaxChecker::isBlankOrComment(b.text(), &isHeader, &isState)) {
            beforeHeader = isHeader;
            nextIsState = isState;
            break;
        }
    }
    data->beforeHeader = beforeHeader;
    data->indent = QMugenSyntaxChecker::foldLevel(state, previousBlockState(), data->sectionHeader, beforeHeader, nextIsState);
    setCurrentBlockState(state);
}
