#include "qasepalette.h"

#include <QColor>
#include <QCoreApplication>
#include <QIODevice>
#include <QtEndian>
#include <cmath>
#include <cstring>

static QString tr(const char *text)
{
    return QCoreApplication::translate("QPaletteFile", text);
}

namespace {

// A bounded big-endian cursor over one block.
struct Cursor
{
    const QByteArray &data;
    qsizetype pos = 0;
    bool ok = true;

    bool need(qsizetype n)
    {
        if (pos + n > data.size())
            ok = false;
        return ok;
    }
    quint16 u16()
    {
        if (!need(2))
            return 0;
        pos += 2;
        return qFromBigEndian<quint16>(data.constData() + pos - 2);
    }
    float f32()
    {
        if (!need(4))
            return 0;
        const quint32 bits = qFromBigEndian<quint32>(data.constData() + pos);
        pos += 4;
        float f;
        std::memcpy(&f, &bits, 4);
        return f;
    }
    void skip(qsizetype n)
    {
        if (need(n))
            pos += n;
    }
};

int channel(float v)
{
    const float scaled = v * 255.0f + 0.5f;
    if (!(scaled >= 0.0f)) // also NaN
        return 0;
    if (scaled >= 255.0f)
        return 255;
    return int(scaled);
}

} // namespace

bool QASEPalette::load(QIODevice &device, QRGBPal *colors)
{
    const QByteArray head = device.read(12);
    if (head.size() < 12 || !head.startsWith("ASEF"))
        return fail(tr("The swatch exchange head is incomplete."));
    const quint32 blocks = qFromBigEndian<quint32>(head.constData() + 8);
    int entry = 0;
    for (quint32 b = 0; b < blocks && entry < 256; ++b) {
        const QByteArray bh = device.read(6);
        if (bh.isEmpty())
            break; // fewer blocks than announced: keep what was read
        if (bh.size() < 6)
            return fail(tr("The swatch exchange file is truncated."));
        const quint16 type = qFromBigEndian<quint16>(bh.constData());
        const quint32 length = qFromBigEndian<quint32>(bh.constData() + 2);
        if (length > (1u << 20))
            return fail(tr("A block of the swatch exchange file is too large."));
        const QByteArray body = readAtMost(device, length);
        if (body.size() < qsizetype(length))
            return fail(tr("The swatch exchange file is truncated."));
        // Groups and unknown blocks are skipped by their length.
        if (type != 1)
            continue;
        Cursor c{body};
        c.skip(qsizetype(c.u16()) * 2);
        if (!c.need(4))
            return fail(tr("A colour of the swatch exchange file is truncated."));
        const QByteArray model = body.mid(c.pos, 4);
        c.pos += 4;
        QRGBColor out{0, 0, 0, 255};
        if (model == "RGB ") {
            const int r = channel(c.f32()), g = channel(c.f32()), bl = channel(c.f32());
            out = QRGBColor{quint8(r), quint8(g), quint8(bl), 255};
        } else if (model == "CMYK") {
            const int cy = channel(c.f32()), m = channel(c.f32()), y = channel(c.f32()), k = channel(c.f32());
            const QColor rgb = QColor::fromCmyk(cy, m, y, k).toRgb();
            out = QRGBColor{quint8(rgb.red()), quint8(rgb.green()), quint8(rgb.blue()), 255};
        } else if (model == "Gray") {
            const quint8 g = quint8(channel(c.f32()));
            out = QRGBColor{g, g, g, 255};
        }
        if (!c.ok)
            return fail(tr("A colour of the swatch exchange file is truncated."));
        (*colors)[entry++] = out;
    }
    return true;
}
