#pragma once

#include <QByteArray>
#include <QImage>
#include <QtGlobal>

// Width, height and pixel format of a sprite: everything a codec needs to lay
// decoded pixels out. Raw pixels are always in the layout a QImage of this size
// and format uses: every line padded to a multiple of four bytes, no header.
struct QSpriteSize
{
    quint16 width = 0;
    quint16 height = 0;
    QImage::Format imageFormat = QImage::Format_Indexed8;

    QSpriteSize() = default;
    QSpriteSize(quint16 w, quint16 h, QImage::Format f = QImage::Format_Indexed8)
        : width(w), height(h), imageFormat(f) {}
    static QSpriteSize of(const QImage &image);

    bool isEmpty() const { return width == 0 || height == 0; }
    // Bits per pixel in the buffer: 8 for indexed images, 32 otherwise.
    int bitsPerPixel() const;
    // Bytes of one buffer line, padding included.
    qsizetype bytesPerLine() const;
    // Bytes of the whole buffer; 0 for an empty size.
    qsizetype byteCount() const;

    // A detached image of this size and format filled from raw bytes; missing
    // bytes read as 0 and surplus bytes are ignored. Null for an empty size.
    QImage toImage(const QByteArray &raw) const;
    // The image's lines without padding, back to back.
    static QByteArray packedPixels(const QImage &image);
    // The image's buffer as raw bytes, padding included (as zeros).
    static QByteArray rawBytes(const QImage &image);
    // Pixels packed line after line, spread into the padded layout of this size.
    QByteArray padLines(const QByteArray &packed, int lineBytes) const;

    bool operator==(const QSpriteSize &o) const
    {
        return width == o.width && height == o.height && imageFormat == o.imageFormat;
    }
};
