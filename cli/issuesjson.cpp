#include "issuesjson.h"

#include "console.h"
#include "base/qmessages.h"

#include <QJsonObject>

namespace IssuesJson {

QString kindName(int kind)
{
    switch (kind) {
    case QMessages::Error: return QStringLiteral("error");
    case QMessages::Warning: return QStringLiteral("warning");
    default: return QStringLiteral("information");
    }
}

QJsonArray toJson(const QMessages &messages, const QString &file)
{
    QJsonArray out;
    for (const QMessages::Message &m : messages.messages()) {
        // Information lines are not about a place in a file: keep them as they are.
        const QString text = m.kind == QMessages::Information ? m.text : Console::issueLine(m.text, file);
        out.append(QJsonObject{{QStringLiteral("kind"), kindName(m.kind)}, {QStringLiteral("text"), text}});
    }
    return out;
}

} // namespace IssuesJson
