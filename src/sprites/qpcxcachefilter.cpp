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
QImage readPcx(const QByteArray &file, int clipW, int clipH, bool *complete = nullptr)
{
    if (complete)
        *complete = false;
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
    const bool bytePixels = planes == 1 && format == QImage::Format_Indexed8;
    if (bytePixels) {
        // The common sprite, one byte a pixel: runs go into the line whole.
        const uchar *data = reinterpret_cast<const uchar *>(file.constData());
        const uchar *const end = data + file.size();
        const uchar *src = data + in.pos();
        for (int y = 0; y < height && !ended; ++y) {
            uchar *line = image.scanLine(y);
            qsizetype x = 0;
            while (x < bytesPerLine) {
                if (pending == 0) {
                    if (src >= end) {
                        ended = true;
                        break;
                    }
                    const uchar b = *src++;
                    if (b >= 192) {
                        pending = b & 63;
                        value = src < end ? *src++ : 0;
                    } else {
                        pending = 1;
                        value = b;
                    }
                    if (pending == 0)
                        continue;
                }
                const qsizetype n = qMin<qsizetype>(pending, bytesPerLine - x);
                if (x < width)
                    std::memset(line + x, value, size_t(qMin<qsizetype>(x + n, width) - x));
                x += n;
                pending -= int(n);
            }
        }
        in.seek(src - data);
    }
    for (int y = 0; y < height && !ended && !bytePixels; ++y) {
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
    if (complete)
        *complete = !ended;
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

namespace {
// The header with zeros where the file is shorter, as the reader sees it.
struct Header
{
    uchar bytes[HeaderSize] = {};
    explicit Header(QByteArrayView file)
    {
        if (!file.isEmpty())
            std::memcpy(bytes, file.data(), size_t(qMin<qsizetype>(file.size(), HeaderSize)));
    }
};
} // namespace

QPCXCacheFilter::Layout QPCXCacheFilter::header(QByteArrayView file)
{
    Layout out;
    const Header head(file);
    const uchar *h = head.bytes;
    if (h[0] != 10 || h[1] != 5)
        return out;
    const int bitsPerPixel = h[3];
    const int xMin = qFromLittleEndian<quint16>(h + 4), yMin = qFromLittleEndian<quint16>(h + 6);
    const int xMax = qFromLittleEndian<quint16>(h + 8), yMax = qFromLittleEndian<quint16>(h + 10);
    const int planes = h[65];
    const QImage::Format format = formatForDepth(bitsPerPixel * planes);
    // The same limits as read(), so that both agree on what a sprite is.
    const int width = qMin(xMax + 1 - xMin, 0x10000);
    const int height = qMin(yMax + 1 - yMin, 0x10000);
    if (format == QImage::Format_Invalid || width <= 0 || height <= 0
        || qsizetype(width) * height * (format == QImage::Format_Indexed8 ? 1 : 4) > MaxImageBytes)
        return out;
    out.width = width;
    out.height = height;
    out.format = format;
    return out;
}

qsizetype QPCXCacheFilter::dataEnd(QByteArrayView file)
{
    const Header head(file);
    const uchar *h = head.bytes;
    const uchar *data = reinterpret_cast<const uchar *>(file.data());
    const int yMin = qFromLittleEndian<quint16>(h + 6), yMax = qFromLittleEndian<quint16>(h + 10);
    const int height = qMin(yMax + 1 - yMin, 0x10000);
    // Every line takes bytesPerLine values per plane; a run left over at the
    // end is dropped, as read() drops it.
    const qint64 wanted = qint64(qMax(height, 0)) * h[65] * qFromLittleEndian<quint16>(h + 66);
    qint64 got = 0;
    const qsizetype size = file.size();
    qsizetype pos = qMin<qsizetype>(HeaderSize, size);
    while (got < wanted) {
        if (pos >= size)
            return -1;
        const uchar b = data[pos];
        const bool run = b >= 192;
        got += run ? (b & 63) : 1;
        pos += run ? 2 : 1;
    }
    // A run whose value byte is missing ends the stream there.
    return qMin(pos, size);
}

QList<QRgb> QPCXCacheFilter::colorTableAt(QByteArrayView file, qsizetype end)
{
    QList<QRgb> table;
    const Header head(file);
    if (end < 0 || end + 1 >= file.size() || head.bytes[3] * head.bytes[65] != 8 || file[end] != 12)
        return table;
    QCodecReader in(reinterpret_cast<const uchar *>(file.data()), file.size());
    in.seek(end + 1);
    table.resize(256);
    for (QRgb &c : table) {
        const quint8 r = in.next(), g = in.next(), b = in.next();
        c = qRgb(r, g, b);
    }
    return table;
}

QList<QRgb> QPCXCacheFilter::colorTable(QByteArrayView file)
{
    const qsizetype tail = file.size() - 769;
    if (tail >= HeaderSize && file[tail] == 12)
        return colorTableAt(file, tail);
    return colorTableAt(file, dataEnd(file));
}

QPCXCacheFilter::Layout QPCXCacheFilter::layout(QByteArrayView file)
{
    Layout out = header(file);
    if (out.isNull())
        return out;
    out.dataEnd = dataEnd(file);
    const qsizetype tail = file.size() - 769;
    out.colorTable = colorTableAt(file, tail >= HeaderSize && file[tail] == 12 ? tail : out.dataEnd);
    return out;
}

void QPCXCacheFilter::shortPaletteRemap(QByteArrayView file, int colorCount, uchar remap[256])
{
    for (int c = 0; c < 256; ++c)
        remap[c] = uchar(c);
    if (colorCount >= 256 || header(file).format != QImage::Format_Indexed8)
        return;
    const QList<QRgb> table = colorTable(file);
    if (table.size() != 256)
        return;
    for (int c = qMax(colorCount, 0); c < 256; ++c) {
        remap[c] = 255;
        for (int k = 1; k < colorCount; ++k)
            if (table[k] == table[c]) {
                remap[c] = uchar(k);
                break;
            }
    }
}

QByteArray QPCXCacheFilter::decode(const QByteArray &stored, const QSpriteSize &size) const
{
    bool complete;
    return decodeChecked(stored, size, &complete);
}

QByteArray QPCXCacheFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const
{
    if (size.isEmpty())
        return QSpriteSize::rawBytes(readPcx(stored, 0x10000, 0x10000, complete));
    QImage image = readPcx(stored, size.width, size.height, complete);
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

QByteArray QPCXShortPaletteFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size,
                                                 bool *complete) const
{
    QByteArray out = QPCXCacheFilter::decodeChecked(stored, size, complete);
    if (!size.isEmpty() && size.imageFormat != QImage::Format_Indexed8)
        return out;
    uchar remap[256];
    shortPaletteRemap(stored, ColorCount, remap);
    uchar *p = reinterpret_cast<uchar *>(out.data());
    for (qsizetype i = 0, n = out.size(); i < n; ++i)
        p[i] = remap[p[i]];
    return out;
}

bool QPCXShortPaletteFilter::changesPixels(const QByteArray &stored)
{
    uchar remap[256];
    shortPaletteRemap(stored, ColorCount, remap);
    bool any = false;
    for (int c = ColorCount; c < 256; ++c)
        any |= remap[c] != c;
    if (!any)
        return false;
    const QImage image = read(stored);
    if (image.format() != QImage::Format_Indexed8)
        return false;
    for (int y = 0; y < image.height(); ++y) {
        const uchar *line = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x)
            if (remap[line[x]] != line[x])
                return true;
    }
    return false;
}
