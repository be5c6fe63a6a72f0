#include "qabstractpalette.h"

#include <QIODevice>

QByteArray QAbstractPalette::readAtMost(QIODevice &device, qint64 limit)
{
    QByteArray out;
    char chunk[16384];
    while (out.size() < limit) {
        const qint64 got = device.read(chunk, qMin<qint64>(qint64(sizeof chunk), limit - out.size()));
        if (got <= 0)
            break;
        out.append(chunk, qsizetype(got));
    }
    return out;
}
