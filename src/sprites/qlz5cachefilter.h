#pragma once

#include "sprites/qbfcachefilter.h"

// 5-bit colour runs mixed with back references, in groups of eight packets
// announced by a control byte.
class QLZ5CacheFilter : public QBFCacheFilter
{
public:
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override
    {
        return decodeChecked(stored, size, nullptr);
    }
    QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const override;

    // Encodes pixels given without line padding. With `search` off only colour
    // runs are written: a valid stream, much faster to make, larger.
    // Colours are 5-bit: the upper three bits of a pixel are lost.
    static QByteArray encode(const QByteArray &pixels, bool search);
    static QByteArray encode(const uchar *pixels, qsizetype count, bool search);
};
