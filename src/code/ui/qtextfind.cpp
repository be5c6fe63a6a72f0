#include "qtextfind.h"

#include "qtexteditor.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

namespace QTextFind {

namespace {

bool regexOn(const QQuickFindOptions &options)
{
    return options.value(QQuickFindOption::RegularExpression);
}

// The first match at or after `from`, or the last one that starts at or before
// it; no match when there is none.
QRegularExpressionMatch search(const QString &text, const QRegularExpression &re, qsizetype from, bool backward)
{
    if (!re.isValid() || from < 0 || from > text.size())
        return {};
    if (!backward)
        return re.match(text, from);
    QRegularExpressionMatch match;
    return text.lastIndexOf(re, from, &match) >= 0 ? match : QRegularExpressionMatch();
}

void select(QTextEditor *edit, qsizetype start, qsizetype end)
{
    QTextCursor c(edit->document());
    c.setPosition(int(start));
    c.setPosition(int(end), QTextCursor::KeepAnchor);
    // A match inside a closed fold opens it, so that the selection shows.
    for (QTextBlock b = edit->document()->findBlock(int(start)); b.isValid() && b.position() <= end; b = b.next())
        edit->unfoldBlock(b);
    edit->setTextCursor(c);
}

// One search from the cursor, as the options say.
bool findOnce(QTextEditor *edit, const QRegularExpression &re, bool backward)
{
    const QString text = edit->document()->toPlainText();
    const QTextCursor c = edit->textCursor();
    qsizetype from = backward ? c.selectionStart() - 1 : c.selectionEnd();
    QRegularExpressionMatch m = search(text, re, from, backward);
    // An empty match right at a bare cursor would hold it in place.
    if (!backward && !c.hasSelection() && m.hasMatch() && m.capturedLength() == 0 && m.capturedStart() == from)
        m = search(text, re, from + 1, false);
    if (!m.hasMatch())
        return false;
    select(edit, m.capturedStart(), m.capturedEnd());
    return true;
}

} // namespace

QRegularExpression expression(const QString &pattern, const QQuickFindOptions &options)
{
    QRegularExpression::PatternOptions flags = QRegularExpression::MultilineOption;
    if (!options.value(QQuickFindOption::CaseSensitive))
        flags |= QRegularExpression::CaseInsensitiveOption;
    return QRegularExpression(regexOn(options) ? pattern : QRegularExpression::escape(pattern), flags);
}

bool find(QTextEditor *edit, const QString &pattern, const QQuickFindOptions &options)
{
    if (!edit || pattern.isEmpty())
        return false;
    const QRegularExpression re = expression(pattern, options);
    if (!re.isValid())
        return false;
    const bool backward = options.value(QQuickFindOption::Backward);
    if (findOnce(edit, re, backward))
        return true;
    if (!options.value(QQuickFindOption::Circular))
        return false;
    QTextCursor c = edit->textCursor();
    const QTextCursor before = c;
    c.movePosition(backward ? QTextCursor::End : QTextCursor::Start);
    edit->setTextCursor(c);
    if (findOnce(edit, re, backward))
        return true;
    edit->setTextCursor(before);
    return false;
}

QString expand(const QString &with, const QRegularExpressionMatch &match, bool regex)
{
    if (!regex)
        return with;
    QString out;
    out.reserve(with.size());
    for (qsizetype i = 0; i < with.size(); ++i) {
        const QChar ch = with.at(i);
        if ((ch == QLatin1Char('\\') || ch == QLatin1Char('%')) && i + 1 < with.size() && with.at(i + 1).isDigit()) {
            out += match.captured(with.at(i + 1).digitValue());
            ++i;
        } else {
            out += ch;
        }
    }
    return out;
}

bool replace(QTextEditor *edit, const QString &pattern, const QString &with, const QQuickFindOptions &options)
{
    if (!edit || pattern.isEmpty())
        return false;
    const QRegularExpression re = expression(pattern, options);
    if (!re.isValid())
        return false;
    QTextCursor c = edit->textCursor();
    if (c.hasSelection() && !edit->isReadOnly()) {
        QString selected = c.selectedText();
        selected.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
        const QRegularExpression whole(QRegularExpression::anchoredPattern(re.pattern()), re.patternOptions());
        const QRegularExpressionMatch m = whole.match(selected);
        if (m.hasMatch()) {
            c.insertText(expand(with, m, regexOn(options)));
            edit->setTextCursor(c);
        }
    }
    return find(edit, pattern, options);
}

int replaceAll(QTextEditor *edit, const QString &pattern, const QString &with, const QQuickFindOptions &options)
{
    if (!edit || pattern.isEmpty() || edit->isReadOnly())
        return 0;
    const QRegularExpression re = expression(pattern, options);
    if (!re.isValid())
        return 0;
    const bool regex = regexOn(options);
    // Matches are taken from the text as it was, each one moved by what the
    // replacements before it added or removed.
    const QString text = edit->document()->toPlainText();
    QTextCursor c(edit->document());
    qsizetype shift = 0;
    int count = 0;
    QRegularExpressionMatchIterator it = re.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        if (count == 0)
            c.beginEditBlock();
        const QString replacement = expand(with, m, regex);
        c.setPosition(int(m.capturedStart() + shift));
        c.setPosition(int(m.capturedEnd() + shift), QTextCursor::KeepAnchor);
        c.insertText(replacement);
        shift += replacement.size() - m.capturedLength();
        ++count;
    }
    if (count) {
        c.endEditBlock();
        edit->setTextCursor(c);
    }
    return count;
}

} // namespace QTextFind
