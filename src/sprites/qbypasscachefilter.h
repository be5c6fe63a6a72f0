#pragma once

#include "sprites/qbfcachefilter.h"

// Returns the stored bytes as they are: lifts compressed sprite data out of a
// cache so that a save or a copy can reuse it without decoding it.
class QByPassCacheFilter : public QBFCacheFilter
{
public:
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override;
};
