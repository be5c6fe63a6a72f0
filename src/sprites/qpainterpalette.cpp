#include "qpainterpalette.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QRegularExpression>

bool QPainterPalette::load(QIODevice &device, QRGBPal *colors)
{
    const QByteArray data = readAtMost(device, 1 << 20);
    if (!data.startsWith("ROWS"))
        return fail(QCoreApplication::translate("QPaletteFile", "The file does not start with ROWS."));
    static const QRegularExpression colour(QStringLiteral(
        "^R:\\s?([0-9]{1,3}),\\s?G:\\s?([0-9]{1,3}),\\s?B:\\s?([0-9]{1,3})(?:\\s?A:\\s?([0-9]{1,3}))?"));
    int entry = 0;
    const QList<QByteArray> lines = data.split('\n');
    for (const QByteArray &line : lines) {
        if (entry >= 256)
            break;
        const QRegularExpressionMatch m = colour.match(QString::fromLatin1(line));
        if (!m.hasMatch())
            continue;
        auto channel = [&m](int c) { return quint8(qMin(m.captured(c).toInt(), 255)); };
        (*colors)[entry++] = QRGBColor{channel(1), channel(2), channel(3),
                                       m.capturedLength(4) > 0 ? channel(4) : quint8(255)};
    }
    return true;
}
