#include "qsffversion.h"

QString QSffVersion::dotted(quint32 version)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(version >> 24)
        .arg((version >> 16) & 0xFF)
        .arg((version >> 8) & 0xFF)
        .arg(version & 0xFF);
}

QString QSffVersion::name(quint32 version)
{
    return QStringLiteral("%1.%2%3").arg(version >> 24).arg((version >> 16) & 0xFF).arg((version >> 8) & 0xFF);
}

quint32 QSffVersion::fromName(const QString &text)
{
    for (quint32 version : All) {
        if (text == name(version) || text == dotted(version))
            return version;
    }
    return 0;
}
