#include "palettepng.h"

#include <QtEndian>

#include <zlib.h>

namespace PalettePng {

static void appendChunk(QByteArray &png, const char type[4], const QByteArray &data)
{
    const quint32 length = qToBigEndian(quint32(data.size()));
    png.append(reinterpret_cast<const char *>(&length), 4);
    const qsizetype typeAt = png.size();
    png.append(type, 4);
    png.append(data);
    uLong crc = crc32(0, reinterpret_cast<const Bytef *>(png.constData() + typeAt), uInt(4 + data.size()));
    const quint32 crcBig = qToBigEndian(quint32(crc));
    png.append(reinterpret_cast<const char *>(&crcBig), 4);
}

static void appendBig32(QByteArray &out, quint32 value)
{
    const quint32 big = qToBigEndian(value);
    out.append(reinterpret_cast<const char *>(&big), 4);
}

QByteArray encode(const QImage &image)
{
    if (image.isNull() || image.format() != QImage::Format_Indexed8)
        return QByteArray();
    const int width = image.width();
    const int height = image.height();

    // Enough entries for every index in use, and for the whole table given.
    int highest = 0;
    for (int y = 0; y < height; ++y) {
        const uchar *row = image.constScanLine(y);
        for (int x = 0; x < width; ++x)
            highest = qMax(highest, int(row[x]));
    }
    const QList<QRgb> table = image.colorTable();
    const int entries = qBound(highest + 1, int(table.size()), 256);

    QByteArray png("\x89PNG\r\n\x1a\n", 8);

    QByteArray header;
    appendBig32(header, quint32(width));
    appendBig32(header, quint32(height));
    header.append(char(8)); // bits per index
    header.append(char(3)); // palette colour type
    header.append(3, char(0)); // deflate, standard filters, no interlace
    appendChunk(png, "IHDR", header);

    QByteArray plte;
    QByteArray trns;
    int lastTranslucent = -1;
    for (int i = 0; i < entries; ++i) {
        const QRgb c = i < table.size() ? table.at(i) : qRgb(0, 0, 0);
        plte.append(char(qRed(c)));
        plte.append(char(qGreen(c)));
        plte.append(char(qBlue(c)));
        trns.append(char(qAlpha(c)));
        if (qAlpha(c) != 255)
            lastTranslucent = i;
    }
    appendChunk(png, "PLTE", plte);
    // tRNS may stop after the last entry that isn't opaque.
    if (lastTranslucent >= 0)
        appendChunk(png, "tRNS", trns.left(lastTranslucent + 1));

    QByteArray raw;
    raw.reserve(qsizetype(height) * (width + 1));
    for (int y = 0; y < height; ++y) {
        raw.append(char(0)); // no filter: indices don't predict well
        raw.append(reinterpret_cast<const char *>(image.constScanLine(y)), width);
    }
    uLongf packedSize = compressBound(uLong(raw.size()));
    QByteArray packed(qsizetype(packedSize), Qt::Uninitialized);
    if (compress2(reinterpret_cast<Bytef *>(packed.data()), &packedSize,
                  reinterpret_cast<const Bytef *>(raw.constData()), uLong(raw.size()), Z_DEFAULT_COMPRESSION)
        != Z_OK)
        return QByteArray();
    packed.truncate(qsizetype(packedSize));
    appendChunk(png, "IDAT", packed);
    appendChunk(png, "IEND", QByteArray());
    return png;
}

} // namespace PalettePng
