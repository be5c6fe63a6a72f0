#include "qsctrlmanager.h"

#include "base/qlifecyclelog.h"

QSCtrlManager::QSCtrlManager(const QStringList &folders, QObject *parent)
    : QEntryFolder(folders, QEntryFolder::Files, QStringLiteral("*.sctrl"), parent)
{
    QLifecycleLog::record(QStringLiteral("+QSCtrlManager"));
}

QSCtrlManager::~QSCtrlManager()
{
    QLifecycleLog::record(QStringLiteral("-QSCtrlManager"));
}
