#include "qsctrlmanager.h"

#include "base/qlifecyclelog.h"
#include "code/qtextencoding.h"

#include <QFile>

QSCtrlManager::QSCtrlManager(const QStringList &folders, QObject *parent)
    : QEntryFolder(folders, QEntryFolder::Files, QStringLiteral("*.sctrl"), parent)
{
    QLifecycleLog::record(QStringLiteral("+QSCtrlManager"));
}

QSCtrlManager::~QSCtrlManager()
{
    QLifecycleLog::record(QStringLiteral("-QSCtrlManager"));
}

QString QSCtrlManager::text(const QString &name, int codepage) const
{
    QFile file(filePath(name));
    // A controller is a few lines; anything huge is not one.
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > 1 << 20)
        return QString();
    const QByteArray bytes = file.readAll();
    QString text = QTextEncoding::decode(bytes, QTextEncoding::detectCodec(bytes, codepage));
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}
