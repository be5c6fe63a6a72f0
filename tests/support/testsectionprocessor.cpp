#include "testsectionprocessor.h"

#include <QTextDocument>

TestSectionProcessor::TestSectionProcessor(QTextDocument *document)
    : QSyntaxProcessor(Mugen, nullptr, document)
{
}

void TestSectionProcessor::setIssue(int line, const BlockIssue &issue)
{
    m_issues.insert(line, issue);
    rehighlightBlock(document()->findBlockByNumber(line));
}

void TestSectionProcessor::highlightBlock(const QString &text)
{
    QSyntaxProcessor::highlightBlock(text);
    QTextEditorBlockData *data = blockData();
    data->parens.clear();
    data->issues.clear();

    const int previous = qMax(0, previousBlockState());
    int indent = previous;
    int state = previous;
    const QString trimmed = text.trimmed();
    data->sectionHeader = trimmed.startsWith(QLatin1Char('['));
    if (data->sectionHeader) {
        const QString word = trimmed.mid(1).trimmed().section(QLatin1Char(' '), 0, 0).toLower();
        indent = word.startsWith(QLatin1String("state")) && word != QLatin1String("statedef") ? 1 : 0;
        state = indent + 1;
        QTextCharFormat header;
        header.setForeground(QColor(0, 0, 160));
        header.setFontWeight(QFont::Bold);
        setFormat(0, int(text.size()), header);
    }
    setCurrentBlockState(state);
    data->indent = indent;

    QTextCharFormat comment;
    comment.setForeground(QColor(0, 128, 0));
    comment.setFontItalic(true);
    QTextCharFormat number;
    number.setForeground(QColor(160, 0, 160));
    bool inString = false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"')) {
            inString = !inString;
        } else if (inString) {
            continue;
        } else if (c == QLatin1Char(';')) {
            setFormat(i, int(text.size()) - i, comment);
            break;
        } else if (c == QLatin1Char('(') || c == QLatin1Char('[')) {
            data->parens.append({Parenthesis::Opening, c, i});
        } else if (c == QLatin1Char(')') || c == QLatin1Char(']')) {
            data->parens.append({Parenthesis::Closing, c, i});
        } else if (c.isDigit() && !data->sectionHeader && (i == 0 || !text.at(i - 1).isLetter())) {
            setFormat(i, 1, number);
        }
    }

    const auto issue = m_issues.constFind(currentBlock().blockNumber());
    if (issue != m_issues.constEnd()) {
        data->issues.append(*issue);
        for (int i = issue->start; i <= issue->end && i < text.size(); ++i) {
            QTextCharFormat f = format(i);
            f.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
            f.setUnderlineColor(issue->kind == BlockIssue::Error ? QColor(Qt::red) : QColor(255, 127, 0));
            setFormat(i, 1, f);
        }
    }
}
