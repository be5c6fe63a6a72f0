#pragma once

#include <QJsonArray>
#include <QString>

class QMessages;

// The issue list of a load in JSON: one object per message with its kind
// ("error", "warning", "information") and its text as "file(line): text".
namespace IssuesJson {
QJsonArray toJson(const QMessages &messages, const QString &file);
QString kindName(int kind);
}
