#include "qspritesize.h"

#include <QPixelFormat>
#include <cstring>

QSpriteSize QSpriteSize::of(const QImage &image)
{
    if (image.isNull() || image.width() > 0xFFFF || image.height() > 0xFFFF)
        return QSpriteSize();
    return QSpriteSize(quint16(image.width()), quint16(image.height()), image.format());
}

int QSpriteSize::bitsPerPixel() const
{
    switch (imageFormat) {
    case QImage::Format_Indexed8: return 8;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32: return 32;
    case QImage::Format_Invalid: return 0;
    default: return int(QImage::toPixelFormat(imageFormat).bitsPerPixel());
    }
}

qsizetype QSpriteSize::bytesPerLine() const
{
    return ((qsizetype(width) * bitsPerPixel() + 31) / 32) * 4;
}

qsizetype QSpriteSize::byteCount() const
{
    return isEmpty() ? 0 : bytesPerLine() * height;
}

QImage QSpriteSize::toImage(const QByteArray &raw) const
{
    if (isEmpty() || bitsPerPixel() == 0)
        return QImage();
    QImage image(width, height, imageFormat);
    if (image.isNull())
        return image;
    const qsizetype line = qMin<qsizetype>(bytesPerLine(), image.bytesPerLine());
    for (int y = 0; y < height; ++y) {
        uchar *dst = image.scanLine(y);
        const qsizetype from = qsizetype(y) * bytesPerLine();
        const qsizetype have = qBound<qsizetype>(0, raw.size() - from, line);
        if (have > 0)
            std::memcpy(dst, raw.constData() + from, size_t(have));
        if (have < image.bytesPerLine())
            std::memset(dst + have, 0, size_t(image.bytesPerLine() - have));
    }
    return image;
}

QByteArray QSpriteSize::packedPixels(const QImage &image)
{
    if (image.isNull())
        return QByteArray();
    const qsizetype line = (qsizetype(image.width()) * image.depth() + 7) / 8;
    QByteArray out(line * image.height(), Qt::Uninitialized);
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(out.data() + y * line, image.constScanLine(y), size_t(line));
    return out;
}

QByteArray QSpriteSize::rawBytes(const QImage &image)
{
    if (image.isNull())
        return QByteArray();
    // Line by line, with the padding zeroed: QImage leaves it undefined.
    const qsizetype line = (qsizetype(image.width()) * image.depth() + 7) / 8;
    const qsizetype stride = image.bytesPerLine();
    QByteArray out(stride * image.height(), '\0');
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(out.data() + y * stride, image.constScanLine(y), size_t(line));
    return out;
}

QByteArray QSpriteSize::padLines(const QByteArray &packed, int lineBytes) const
{
    const qsizetype stride = bytesPerLine();
    QByteArray out(byteCount(), '\0');
    if (out.isEmpty() || lineBytes <= 0)
        return out;
    const qsizetype copy = qMin<qsizetype>(lineBytes, stride);
    for (int y = 0; y < height; ++y) {
        const qsizetype from = qsizetype(y) * lineBytes;
        const qsizetype have = qBound<qsizetype>(0, packed.size() - from, copy);
        if (have <= 0)
            break;
        std::memcpy(out.data() + y * stride, packed.constData() + from, size_t(have));
    }
    return out;
}
