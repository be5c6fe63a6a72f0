#include "qrawcachefilter.h"

QByteArray QRawCacheFilter::decode(const QByteArray &stored, const QSpriteSize &size) const
{
    const qsizetype want = size.byteCount();
    if (stored.size() == want)
        return stored;
    QByteArray out = stored.left(want);
    if (out.size() < want)
        out.append(want - out.size(), '\0');
    return out;
}
