#include "qsnippetmanager.h"

#include "base/qlifecyclelog.h"

QSnippetManager::QSnippetManager(const QStringList &folders, QObject *parent)
    : QEntryFolder(folders, QEntryFolder::Files, QStringLiteral("*.xml"), parent)
{
    QLifecycleLog::record(QStringLiteral("+QSnippetManager"));
}

QSnippetManager::~QSnippetManager()
{
    QLifecycleLog::record(QStringLiteral("-QSnippetManager"));
}
