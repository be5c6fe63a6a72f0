#pragma once

#include "sprites/qbfcachefilter.h"

// Byte runs: 0x40 | count followed by the value, or a value alone.
class QRLE8CacheFilter : public QBFCacheFilter
{
public:
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override
    {
        return decodeChecked(stored, size, nullptr);
    }
    QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const override;
    // Encodes pixels given without line padding.
    static QByteArray encode(const QByteArray &pixels);
};
