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
    QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const override;

    // Reads the file: Format_Indexed8 (depth 5 or 8), Format_RGB32 (24) or
    // Format_ARGB32 (32). A depth-8 file carries its colour table only if the
    // 256-colour tail is present, otherwise the table is empty.
    // Null on a header that isn't PCX or a format that can't be mapped.
    static QImage read(const QByteArray &file);

    // What a file says about itself.
    struct Layout
    {
        int width = 0;
        int height = 0;
        // Format_Invalid where read() would give a null image.
        QImage::Format format = QImage::Format_Invalid;
        // Where the pixel lines end (found by walking the run-length stream,
        // see dataEnd()); -1 when the stream stops short of them.
        qsizetype dataEnd = -1;
        // The 256 colours of the tail (see colorTable()); empty if none.
        QList<QRgb> colorTable;
        bool isNull() const { return format == QImage::Format_Invalid; }
    };
    // The header alone, at no cost whatever it claims: dataEnd stays -1 and
    // the colour table empty.
    static Layout header(QByteArrayView file);
    // Everything, found by walking the run-length stream without producing
    // pixels: the cost is the stored bytes, whatever size the header claims.
    static Layout layout(QByteArrayView file);
    // Where the pixel lines end, by that walk; -1 when the stream stops
    // short of them.
    static qsizetype dataEnd(QByteArrayView file);
    // The colours that follow pixel lines ending at `dataEnd` in a depth-8
    // file, announced by the byte 12 (missing entries black); empty if none.
    static QList<QRgb> colorTableAt(QByteArrayView file, qsizetype dataEnd);
    // The colours of a depth-8 file as a sprite file holds them: the 768
    // bytes after the byte 12 that starts the file's last 769, where the
    // engine takes them from, at no cost; failing that, colorTableAt() the
    // end of the pixel lines. Empty if none.
    static QList<QRgb> colorTable(QByteArrayView file);
    // The colour indices of the pixels past a palette of `colorCount` colours
    // move to the first index inside it that shows the same colour in the
    // file's own table, or to 255 (never to index 0, which shows nothing).
    // Identity where the file has no table or the palette is full.
    static void shortPaletteRemap(QByteArrayView file, int colorCount, uchar remap[256]);
    // Writes an indexed, RGB32 or ARGB32 image (others are converted to RGB32);
    // empty for a null image.
    static QByteArray write(const QImage &image);
};

// A PCX shown on a 32-colour palette: decoded as the file is, then every
// pixel past the 32 colours moved inside them (shortPaletteRemap()). The
// version 1 reader gives sprites this filter instead of decoding them at
// load, so that the stored bytes stay as the file had them.
class QPCXShortPaletteFilter : public QPCXCacheFilter
{
public:
    static constexpr int ColorCount = 32;
    QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const override;
    // True if the move changes any pixel of the file.
    static bool changesPixels(const QByteArray &stored);
};
