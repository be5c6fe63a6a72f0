#include "qrle5cachefilter.h"

#include <cstring>

#include "sprites/qcodecreader.h"

QByteArray QRLE5CacheFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const
{
    const QSpriteSize target(size.width, size.height, QImage::Format_Indexed8);
    QByteArray out(target.byteCount(), '\0');
    if (complete)
        *complete = out.isEmpty();
    if (out.isEmpty())
        return out;
    const qsizetype width = target.width;
    const qsizetype stride = target.bytesPerLine();
    char *dst = out.data();
    qsizetype x = 0;
    int y = 0;
    // A run crossing the end of a line goes on after the padding.
    auto put = [&](quint8 value, qsizetype count) {
        while (count > 0 && y < target.height) {
            const qsizetype n = qMin(count, width - x);
            std::memset(dst + qsizetype(y) * stride + x, value, size_t(n));
            x += n;
            count -= n;
            if (x == width) {
                x = 0;
                ++y;
            }
        }
    };
    QCodecReader in(stored);
    while (!in.atEnd() && y < target.height) {
        const quint8 a = in.next();
        const quint8 b = in.next();
        const quint8 colour = (b & 0x80) ? (in.next() & 31) : 0;
        put(colour, qsizetype(a) + 1);
        for (int k = b & 31; k > 0 && y < target.height; --k) {
            const quint8 e = in.next();
            put(e & 31, (e >> 5) + 1);
        }
    }
    if (complete)
        *complete = y >= target.height;
    return out;
}
