#include "qcommandseditor.h"

#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"

#include <QTextDocument>

#include <QRegularExpression>
#include <QSet>

QSyntaxTextEditor *QCommandsEditor::document() const
{
    return m_project ? m_project->commands() : nullptr;
}

int QCommandsEditor::uniqueCommands(const QString &text)
{
    static const QRegularExpression header(QStringLiteral("^\\s*\\[\\s*([^\\]]*)\\]"));
    static const QRegularExpression name(QStringLiteral("^\\s*name\\s*=\\s*\"?([^\";]*)\"?"),
                                         QRegularExpression::CaseInsensitiveOption);
    QSet<QString> names;
    bool inCommand = false;
    for (const QStringView line : QStringView(text).split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch h = header.match(line);
        if (h.hasMatch()) {
            inCommand = h.captured(1).trimmed().compare(QLatin1String("command"), Qt::CaseInsensitive) == 0;
            continue;
        }
        if (!inCommand)
            continue;
        const QRegularExpressionMatch n = name.match(line);
        if (n.hasMatch() && !n.captured(1).trimmed().isEmpty())
            names.insert(n.captured(1).trimmed());
    }
    return int(names.size());
}

QString QCommandsEditor::errorStatusText() const
{
    const QSyntaxTextEditor *doc = document();
    if (!doc)
        return QTextDocumentEditor::errorStatusText();
    // The status follows every cursor move: count again only after an edit.
    if (m_countedDocument != doc || m_countedRevision != doc->document()->revision()) {
        m_countedDocument = doc;
        m_countedRevision = doc->document()->revision();
        m_count = uniqueCommands(doc->text());
    }
    return tr("%1, Unique commands: %2").arg(QTextDocumentEditor::errorStatusText()).arg(m_count);
}
