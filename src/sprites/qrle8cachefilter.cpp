#include "qrle8cachefilter.h"

#include <cstring>

#include "sprites/qcodecreader.h"

namespace {
// Bytes of pixel data per line: RGB32 lines hold three bytes a pixel here.
int lineDepth(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Indexed8: return 8;
    case QImage::Format_RGB32: return 24;
    case QImage::Format_ARGB32: return 32;
    default: return QSpriteSize(1, 1, format).bitsPerPixel();
    }
}
} // namespace

QByteArray QRLE8CacheFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const
{
    QByteArray out(size.byteCount(), '\0');
    const qsizetype lineBytes = qsizetype(size.width) * lineDepth(size.imageFormat) / 8;
    const qsizetype stride = size.bytesPerLine();
    if (complete)
        *complete = out.isEmpty();
    if (out.isEmpty() || lineBytes <= 0 || lineBytes > stride)
        return out;
    char *dst = out.data();
    qsizetype x = 0;
    int y = 0;
    // Writes a run, skipping line padding; runs cross lines freely.
    auto put = [&](quint8 value, qsizetype count) {
        while (count > 0 && y < size.height) {
            const qsizetype n = qMin(count, lineBytes - x);
            std::memset(dst + qsizetype(y) * stride + x, value, size_t(n));
            x += n;
            count -= n;
            if (x == lineBytes) {
                x = 0;
                ++y;
            }
        }
    };
    QCodecReader in(stored);
    while (!in.atEnd() && y < size.height) {
        const quint8 b = in.next();
        if ((b & 0xC0) == 0x40) {
            const quint8 v = in.next();
            put(v, b & 0x3F);
        } else {
            put(b, 1);
        }
    }
    if (complete)
        *complete = y >= size.height;
    return out;
}

QByteArray QRLE8CacheFilter::encode(const QByteArray &pixels)
{
    const uchar *p = reinterpret_cast<const uchar *>(pixels.constData());
    const qsizetype n = pixels.size();
    QByteArray out;
    out.reserve(n / 2 + 16);
    qsizetype i = 0;
    while (i < n) {
        const uchar c = p[i];
        qsizetype run = 1;
        while (run < 63 && i + run < n && p[i + run] == c)
            ++run;
        if (run >= 2 || (c & 0xC0) == 0x40) {
            out.append(char(0x40 + run));
            out.append(char(c));
        } else {
            out.append(char(c));
        }
        i += run;
    }
    return out;
}
