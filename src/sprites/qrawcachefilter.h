#pragma once

#include "sprites/qbfcachefilter.h"

// Raw pixels already in the padded layout. Fits them to the size: short data
// is completed with zeros, surplus bytes are dropped. Not in the filter table
// (slot 0 goes through the cache's own compression); handy where raw bytes
// come from outside and must not be trusted.
class QRawCacheFilter : public QBFCacheFilter
{
public:
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override;
};
