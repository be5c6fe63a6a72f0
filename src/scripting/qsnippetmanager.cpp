#include "qsnippetmanager.h"

#include "base/qlifecyclelog.h"
#include "base/qxmlhelper.h"

#include <QDomDocument>

QSnippetManager::QSnippetManager(const QStringList &folders, QObject *parent)
    : QEntryFolder(folders, QEntryFolder::Files, QStringLiteral("*.xml"), parent)
{
    QLifecycleLog::record(QStringLiteral("+QSnippetManager"));
}

QSnippetManager::~QSnippetManager()
{
    QLifecycleLog::record(QStringLiteral("-QSnippetManager"));
}

QSnippetManager::Snippet QSnippetManager::snippet(const QString &name) const
{
    Snippet s;
    const QString file = filePath(name);
    QDomDocument doc(QStringLiteral("ORVSnippetML"));
    if (file.isEmpty() || !QXmlHelper::parseFile(doc, file))
        return s;
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("snippet"))
        return s;
    for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        if (e.tagName() == QLatin1String("code")) {
            s.code = e.text();
            continue;
        }
        if (e.tagName() != QLatin1String("field"))
            continue;
        Field f;
        f.name = e.attribute(QStringLiteral("name"));
        f.title = e.attribute(QStringLiteral("title"));
        f.type = e.attribute(QStringLiteral("type"));
        f.column = qMax(0, e.attribute(QStringLiteral("column")).toInt());
        for (QDomElement i = e.firstChildElement(QStringLiteral("items")); !i.isNull();
             i = i.nextSiblingElement(QStringLiteral("items")))
            f.items.append({i.attribute(QStringLiteral("value")), i.attribute(QStringLiteral("value_title"))});
        // A field without a name would replace nothing, or everything.
        if (!f.name.isEmpty())
            s.fields.append(f);
    }
    // The code element starts and ends with the line breaks around it.
    while (s.code.startsWith(QLatin1Char('\n')) || s.code.startsWith(QLatin1Char('\r')))
        s.code.remove(0, 1);
    while (s.code.endsWith(QLatin1Char('\t')) || s.code.endsWith(QLatin1Char(' ')))
        s.code.chop(1);
    s.valid = true;
    return s;
}

QString QSnippetManager::expand(const Snippet &snippet, const QStringList &answers)
{
    QString code = snippet.code;
    for (int i = 0; i < snippet.fields.size(); ++i)
        code.replace(snippet.fields.at(i).name, answers.value(i), Qt::CaseSensitive);
    return code;
}
