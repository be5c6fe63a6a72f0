#pragma once

#include "sprites/qbfcachefilter.h"

// Runs of 5-bit colours in groups (read only; the program never writes it).
class QRLE5CacheFilter : public QBFCacheFilter
{
public:
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override
    {
        return decodeChecked(stored, size, nullptr);
    }
    QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const override;
};
