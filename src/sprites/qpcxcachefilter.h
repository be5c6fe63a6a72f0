#pragma once

#include <QImage>

#include "sprites/qbfcachefilter.h"

// A whole PCX file (128-byte header, run-length lines, optional 256-colour
// tail) held in memory.
class QPCXCacheFilter : public QBFCacheFilter
{
public:
    // Largest decoded image accepted, in bytes; a header asking for more reads
    // as a null image.
    static constexpr qsizetype MaxImageBytes = qsizetype(1) << 28;

    // The file's pixels in the layout of `size`; with an empty size, in the
    // file's own size and format.
    QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const override;

    // Reads the file: Format_Indexed8 (depth 5 or 8), Format_RGB32 (24) or
    // Format_ARGB32 (32). A depth-8 file carries its colour table only if the
    // 256-colour tail is present, otherwise the table is empty. Null on a
    // header that isn't PCX or a format that can't be mapped.
    static QImage read(const QByteArray &file);

    // What a file says about itself, found by walking its run-length stream
    // without producing pixels: the cost is the stored bytes, whatever size
    // the header claims.
    struct Layout
    {
        int width = 0;
        int height = 0;
        // Format_Invalid where read() would give a null image.
        QImage::Format format = QImage::Format_Invalid;
        // Where the pixel lines end; -1 when the stream stops short of them.
        qsizetype dataEnd = -1;
        // The 256 colours of the tail, as read() installs them; empty if none.
        QList<QRgb> colorTable;
        bool isNull() const { return format == QImage::Format_Invalid; }
    };
    static Layout layout(const QByteArray &file);
    // Writes an indexed, RGB32 or ARGB32 image (others are converted to RGB32);
    // empty for a null image.
    static QByteArray write(const QImage &image);
};
