#include "qriffpalette.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QtEndian>
#include <algorithm>

static QString tr(const char *text)
{
    return QCoreApplication::translate("QPaletteFile", text);
}

bool QRIFFPalette::load(QIODevice &device, QRGBPal *colors)
{
    const QByteArray head = device.read(24);
    if (head.size() < 24 || !head.startsWith("RIFF"))
        return fail(tr("The RIFF head is incomplete."));
    if (head.mid(8, 8) != "PAL data")
        return fail(tr("The RIFF file holds no palette."));
    const quint32 chunk = qFromLittleEndian<quint32>(head.constData() + 16);
    if (chunk < 8 || chunk - 8 > 1024)
        return fail(tr("The palette chunk has an impossible size."));
    const int count = int(chunk - 8);
    const QByteArray data = device.read(count);
    if (data.size() < count)
        return fail(tr("The palette chunk is truncated."));
    const auto *b = reinterpret_cast<const quint8 *>(data.constData());
    for (int i = 0; i < count / 4; ++i)
        (*colors)[i] = QRGBColor{b[i * 4], b[i * 4 + 1], b[i * 4 + 2], 255};
    for (int i = 0; i < 256; ++i)
        (*colors)[i].a = 255;
    std::reverse(colors->colors, colors->colors + 256);
    return true;
}
