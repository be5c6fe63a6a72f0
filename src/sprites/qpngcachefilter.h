#pragma once

#include <QImage>

#include "sprites/qbfcachefilter.h"

// A whole PNG file.
class QPNGCacheFilter : public QBFCacheFilter
{
public:
    // The file's pixels converted to the format of `size` and laid out in it;
    // with an empty size, in the file's own size and format. Empty if the
    // file can't be read.
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override;
    QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const override;

    static QImage read(const QByteArray &file);
    // Writes the image as PNG. The colour table of an indexed image is written
    // as 256 opaque blacks: colours belong to the palettes, only indices count.
    // Empty on failure.
    static QByteArray encode(const QImage &image);

private:
    // The image's lines in the layout of `size`, clipped or padded with zeros.
    static QByteArray copyInto(const QImage &image, const QSpriteSize &size);
};
