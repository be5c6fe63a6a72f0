#include "qacopalette.h"

#include <QColor>
#include <QCoreApplication>
#include <QIODevice>
#include <QtEndian>

static QString tr(const char *text)
{
    return QCoreApplication::translate("QPaletteFile", text);
}

bool QACOPalette::load(QIODevice &device, QRGBPal *colors)
{
    const QByteArray head = device.read(4);
    if (head.size() < 4)
        return fail(tr("The swatch file is too short."));
    if (qFromBigEndian<quint16>(head.constData()) != 1)
        return fail(tr("This version of the swatch file is not supported."));
    const int count = qFromBigEndian<quint16>(head.constData() + 2);
    int entry = 0;
    for (int i = 0; i < count && entry < 256; ++i) {
        const QByteArray rec = device.read(10);
        if (rec.size() < 10)
            return fail(tr("The swatch file is truncated."));
        quint16 v[5];
        for (int k = 0; k < 5; ++k)
            v[k] = qFromBigEndian<quint16>(rec.constData() + 2 * k);
        const quint16 w = v[1], x = v[2], y = v[3], z = v[4];
        QColor c;
        switch (v[0]) {
        case 0: // RGB
            c = QColor(w / 257, x / 257, y / 257);
            break;
        case 1: // HSB
            c = QColor::fromHsv(qMin(qRound(w / 182.5487), 359), x / 257, y / 257).toRgb();
            break;
        case 2: // CMYK, stored inverted
            c = QColor::fromCmyk(255 - (w >> 8), 255 - (x >> 8), 255 - (y >> 8), z / 257).toRgb();
            break;
        case 8: { // grey, 0 to 10000, stored inverted
            const int g = 255 - qBound(0, qRound(w / 39.2157), 255);
            c = QColor(g, g, g);
            break;
        }
        default:
            continue;
        }
        (*colors)[entry++] = QRGBColor{quint8(c.red()), quint8(c.green()), quint8(c.blue()), 255};
    }
    return true;
}
