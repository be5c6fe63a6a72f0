#include "qpcxcachefilter.h"

#include <QtEndian>
#include <cstring>

#include "sprites/qcodecreader.h"

namespace {

constexpr int HeaderSize = 128;

QImage::Format formatForDepth(int depth)
{
    switch (depth) {
    case 5:
    case 8: return QImage::Format_Indexed8;
    case 24: return QImage::Format_RGB32;
    case 32: return QImage::Format_ARGB32;
    default: return QImage::Format_Invalid;
    }
}

// Reads at most clipW x clipH pixels of the file (the rest of each line is
// decoded and dropped). Work is bounded by the stored bytes and the output:
// once the stream has ended every further value is 0, which the blank image
// already holds.
QImage readPcx(const QByteArray &file, int clipW, int clipH)
{
    QCodecReader in(file);
    if (in.next() != 10 || in.next() != 5)
        return QImage();
    in.seek(3);
    const int bitsPerPixel = in.next();
    const int xMin = in.next16(), yMin = in.next16(), xMax = in.next16(), yMax = in.next16();
    in.seek(65);
    const int planes = in.next();
    const qsizetype bytesPerLine = in.next16();
    const int depth = bitsPerPixel * planes;
    const QImage::Format format = formatForDepth(depth);
    if (format == QImage::Format_Invalid)
        return QImage();
    const int width = qMin(xMax + 1 - xMin, clipW);
    const int height = qMin(yMax + 1 - yMin, clipH);
    if (width <= 0 || height <= 0)
        return QImage();
    const qsizetype needed = qsizetype(width) * height * (format == QImage::Format_Indexed8 ? 1 : 4);
    if (needed > QPCXCacheFilter::MaxImageBytes)
        return QImage();
    QImage image(width, height, format);
    if (image.isNull())
        return image;
    // Padding included, so that equal images give equal buffers.
    std::memset(image.bits(), 0, size_t(image.sizeInBytes()));

    // Byte placement within a line: 8-bit planes are the colour components
    // (red, green, blue, alpha) of 32-bit pixels; anything else goes to byte
    // x * planes + p, clipped to the line.
    const bool components = format != QImage::Format_Indexed8 && bitsPerPixel == 8;
    static const int componentShift[4] = {16, 8, 0, 24};
    const qsizetype lineLimit = format == QImage::Format_Indexed8 ? width : qsizetype(width) * 4;

    in.seek(HeaderSize);
    quint8 value = 0;
    int pending = 0; // values of the current run still to hand out
    bool ended = false;
    for (int y = 0; y < height && !ended; ++y) {
        uchar *line = image.scanLine(y);
        for (int p = 0; p < planes && !ended; ++p) {
            qsizetype x = 0;
            while (x < bytesPerLine) {
                if (pending == 0) {
                    if (in.atEnd()) {
                        ended = true;
                        break;
                    }
                    const quint8 b = in.next();
                    if (b >= 192) {
                        pending = b & 63;
                        value = in.next();
                    } else {
                        pending = 1;
                        value = b;
                    }
                    if (pending == 0)
                        continue;
                }
                // Hand out as much of the run as this plane line takes.
                const qsizetype n = qMin<qsizetype>(pending, bytesPerLine - x);
                const qsizetype visibleEnd = qMin<qsizetype>(x + n, width);
                for (qsizetype c = x; c < visibleEnd; ++c) {
                    if (components) {
                        if (p < 4) {
                            QRgb &px = reinterpret_cast<QRgb *>(line)[c];
                            px |= QRgb(value) << componentShift[p];
                        }
                    } else {
                        const qsizetype at = c * planes + p;
                        if (at < lineLimit)
                            line[at] = value;
                    }
                }
                x += n;
                pending -= int(n);
            }
        }
    }
    if (format == QImage::Format_RGB32) {
        for (int y = 0; y < height; ++y) {
            QRgb *px = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < width; ++x)
                px[x] |= 0xFF000000u;
        }
    }
    if (depth == 8) {
        // The colour table follows the pixels, announced by the byte 12.
        pending = 0;
        if (!in.atEnd() && in.next() == 12 && !in.atEnd()) {
            QList<QRgb> table(256);
            for (QRgb &c : table) {
                const quint8 r = in.next(), g = in.next(), b = in.next();
                c = qRgb(r, g, b);
            }
            image.setColorTable(table);
            return image;
        }
    }
    image.setColorTable(QList<QRgb>());
    return image;
}

} // namespace

QImage QPCXCacheFilter::read(const QByteArray &file)
{
    return readPcx(file, 0x10000, 0x10000);
}

QPCXCacheFilter::Layout QPCXCacheFilter::layout(const QByteArray &file)
{
    Layout out;
    QCodecReader in(file);
    if (in.next() != 10 || in.next() != 5)
        return out;
    in.seek(3);
    const int bitsPerPixel = in.next();
    const int xMin = in.next16(), yMin = in.next16(), xMax = in.next16(), yMax = in.next16();
    in.seek(65);
    const int planes = in.next();
    const qint64 bytesPerLine = in.next16();
    const int depth = bitsPerPixel * planes;
    const QImage::Format format = formatForDepth(depth);
    // The same limits as read(), so that both agree on what a sprite is.
    const int width = qMin(xMax + 1 - xMin, 0x10000);
    const int height = qMin(yMax + 1 - yMin, 0x10000);
    if (format == QImage::Format_Invalid || width <= 0 || height <= 0
        || qsizetype(width) * height * (format == QImage::Format_Indexed8 ? 1 : 4) > MaxImageBytes)
        return out;
    out.width = width;
    out.height = height;
    out.format = format;

    // Every line takes bytesPerLine values per plane; a run left over at the
    // end is dropped, as read() drops it.
    const qint64 wanted = qint64(height) * planes * bytesPerLine;
    qint64 got = 0;
    in.seek(HeaderSize);
    while (got < wanted) {
        if (in.atEnd())
            return out;
        const quint8 b = in.next();
        if (b >= 192) {
            in.next();
            got += b & 63;
        } else {
            ++got;
        }
    }
    out.dataEnd = in.pos();
    if (depth == 8 && !in.atEnd() && in.next() == 12 && !in.atEnd()) {
        out.colorTable.resize(256);
        for (QRgb &c : out.colorTable) {
            const quint8 r = in.next(), g = in.next(), b = in.next();
            c = qRgb(r, g, b);
        }
    }
    return out;
}

QByteArray QPCXCacheFilter::decode(const QByteArray &stored, const QSpriteSize &size) const
{
    if (size.isEmpty())
        return QSpriteSize::rawBytes(read(stored));
    QImage image = readPcx(stored, size.width, size.height);
    if (!image.isNull() && image.format() != size.imageFormat)
        image = image.convertToFormat(size.imageFormat);
    QByteArray out(size.byteCount(), '\0');
    if (image.isNull())
        return out;
    const qsizetype stride = size.bytesPerLine();
    const qsizetype copy = qMin<qsizetype>(stride, (qsizetype(image.width()) * image.depth() + 7) / 8);
    for (int y = 0; y < image.height() && y < size.height; ++y)
        std::memcpy(out.data() + y * stride, image.constScanLine(y), size_t(copy));
    return out;
}

QByteArray QPCXCacheFilter::write(const QImage &source)
{
    if (source.isNull() || source.width() > 0xFFFF || source.height() > 0xFFFF)
        return QByteArray();
    QImage image = source;
    if (image.format() != QImage::Format_Indexed8 && image.format() != QImage::Format_RGB32
        && image.format() != QImage::Format_ARGB32)
        image = image.convertToFormat(QImage::Format_RGB32);
    const bool indexed = image.format() == QImage::Format_Indexed8;
    const int planes = indexed ? 1 : (image.format() == QImage::Format_RGB32 ? 3 : 4);
    const int width = image.width();
    // Indexed lines keep the image's padded length; colour planes are the
    // width rounded up to even, as readers of the format expect.
    const qsizetype bytesPerLine = indexed ? image.bytesPerLine() : ((width + 1) & ~1);
    if (bytesPerLine > 0xFFFF)
        return QByteArray();

    QByteArray out(HeaderSize, '\0');
    uchar *h = reinterpret_cast<uchar *>(out.data());
    h[0] = 10;
    h[1] = 5;
    h[2] = 1;
    h[3] = 8;
    qToLittleEndian<quint16>(quint16(width - 1), h + 8);
    qToLittleEndian<quint16>(quint16(image.height() - 1), h + 10);
    h[65] = quint8(planes);
    qToLittleEndian<quint16>(quint16(bytesPerLine), h + 66);
    h[68] = 1;
    out.reserve(HeaderSize + image.height() * bytesPerLine * planes + 769);

    static const int componentShift[4] = {16, 8, 0, 24};
    QByteArray plane(bytesPerLine, '\0');
    for (int y = 0; y < image.height(); ++y) {
        const uchar *line = image.constScanLine(y);
        for (int p = 0; p < planes; ++p) {
            uchar *v = reinterpret_cast<uchar *>(plane.data());
            std::memset(v, 0, size_t(bytesPerLine));
            for (int x = 0; x < width; ++x)
                v[x] = indexed ? line[x]
                               : quint8(reinterpret_cast<const QRgb *>(line)[x] >> componentShift[p]);
            qsizetype x = 0;
            while (x < bytesPerLine) {
                const uchar c = v[x];
                qsizetype run = 1;
                while (run < 63 && x + run < bytesPerLine && v[x + run] == c)
                    ++run;
                if (run == 1 && c <= 191) {
                    out.append(char(c));
                } else {
                    out.append(char(0xC0 + run));
                    out.append(char(c));
                }
                x += run;
            }
        }
    }
    out.append(char(12));
    const QList<QRgb> table = image.colorTable();
    for (int i = 0; i < 256; ++i) {
        const QRgb c = i < table.size() ? table.at(i) : 0;
        out.append(char(qRed(c)));
        out.append(char(qGreen(c)));
        out.append(char(qBlue(c)));
    }
    return out;
}
