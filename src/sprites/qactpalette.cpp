#include "qactpalette.h"

#include <QCoreApplication>
#include <QIODevice>

bool QACTPalette::load(QIODevice &device, QRGBPal *colors)
{
    // Only the first 768 bytes count: some writers append a colour count.
    const QByteArray data = device.read(768);
    if (data.size() < 768)
        return fail(QCoreApplication::translate("QPaletteFile", "The file is too short for a colour table (768 bytes)."));
    const auto *b = reinterpret_cast<const quint8 *>(data.constData());
    for (int i = 0; i < 256; ++i)
        (*colors)[255 - i] = QRGBColor{b[i * 3], b[i * 3 + 1], b[i * 3 + 2], 255};
    return true;
}
