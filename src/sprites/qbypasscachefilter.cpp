#include "qbypasscachefilter.h"

QByteArray QByPassCacheFilter::decode(const QByteArray &stored, const QSpriteSize &) const
{
    return stored;
}
