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

void QMugenSyntaxProcessor::underline(const BlockIssue &issue, int length)
{
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

// Whether the [State] block that the header opens has a controller but no
// trigger line, read from the text below it up to the next header.
bool QMugenSyntaxProcessor::lacksTrigger(const QTextBlock &header)
{
    bool typed = false;
    int budget = 1000;
    for (QTextBlock b = header.next(); b.isValid() && budget-- > 0; b = b.next()) {
        const QString t = b.text().trimmed();
        if (t.startsWith(QLatin1Char('[')))
            break;
        if (t.startsWith(QLatin1String("trigger"), Qt::CaseInsensitive))
            return false;
        if (t.startsWith(QLatin1String("type"), Qt::CaseInsensitive)
            && t.mid(4).trimmed().startsWith(QLatin1Char('=')))
            typed = true;
    }
    return typed;
}

void QMugenSyntaxProcessor::highlightBlock(const QString &text)
{
    QSyntaxProcessor::highlightBlock(text);
    QTextEditorBlockData *data = blockData();
    m_checker.setEngineVersion(engineVersion());
    const int state = m_checker.checkLine(text, previousBlockState(), m_formats ? this : nullptr);

    const int length = int(text.size());
    for (const BlockIssue &issue : m_checker.issues())
        underline(issue, length);
    data->issues = m_checker.issues();
    data->parens = m_checker.parens();
    data->sectionHeader = m_checker.lineIsHeader();
    const QString noTrigger = tr("State controller without a trigger");
    if (data->sectionHeader && QMugenSyntaxChecker::section(state) == QMugenSyntaxChecker::StateSection
        && m_checker.reportErrors() && lacksTrigger(currentBlock())) {
        BlockIssue issue;
        issue.kind = BlockIssue::Error;
        issue.start = int(text.indexOf(QLatin1Char('[')));
        issue.end = qMax(issue.start, int(text.indexOf(QLatin1Char(']'))));
        issue.message = noTrigger;
        underline(issue, length);
        data->issues.append(issue);
    }
    // At the end of a [State] block, its header is checked again when what
    // it says about the block's triggers has gone stale.
    const bool blockEnds = data->sectionHeader || !currentBlock().next().isValid();
    const int blockState = QMugenSyntaxChecker::section(data->sectionHeader ? previousBlockState() : state);
    if (blockEnds && blockState >= QMugenSyntaxChecker::StateSection && blockState < QMugenSyntaxChecker::FirstBG) {
        QTextBlock header = data->sectionHeader ? currentBlock().previous() : currentBlock();
        while (header.isValid() && !(QTextEditorBlockData::data(header) && QTextEditorBlockData::data(header)->sectionHeader))
            header = header.previous();
        const QTextEditorBlockData *h = QTextEditorBlockData::data(header);
        if (h && QMugenSyntaxChecker::section(header.userState()) == QMugenSyntaxChecker::StateSection) {
            const bool marked = std::any_of(h->issues.begin(), h->issues.end(),
                                            [&](const BlockIssue &i) { return i.message == noTrigger; });
            if (marked != (m_checker.reportErrors() && lacksTrigger(header))) {
                const int number = header.blockNumber();
                QMetaObject::invokeMethod(
                    this,
                    [this, number] {
                        if (document())
                            rehighlightBlock(document()->findBlockByNumber(number));
                    },
                    Qt::QueuedConnection);
            }
        }
    }

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
