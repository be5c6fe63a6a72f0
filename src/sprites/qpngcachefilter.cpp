#include "qpngcachefilter.h"

#include <QBuffer>
#include <cstring>

QImage QPNGCacheFilter::read(const QByteArray &file)
{
    QImage image;
    if (!image.loadFromData(file, "PNG"))
        return QImage();
    return image;
}

QByteArray QPNGCacheFilter::decode(const QByteArray &stored, const QSpriteSize &size) const
{
    QImage image = read(stored);
    if (size.isEmpty())
        return QSpriteSize::rawBytes(image);
    QByteArray out(size.byteCount(), '\0');
    if (image.isNull())
        return out;
    if (image.format() != size.imageFormat)
        image = image.convertToFormat(size.imageFormat);
    if (image.isNull())
        return out;
    const qsizetype stride = size.bytesPerLine();
    const qsizetype copy = qMin<qsizetype>(stride, (qsizetype(image.width()) * image.depth() + 7) / 8);
    for (int y = 0; y < image.height() && y < size.height; ++y)
        std::memcpy(out.data() + y * stride, image.constScanLine(y), size_t(copy));
    return out;
}

QByteArray QPNGCacheFilter::encode(const QImage &source)
{
    if (source.isNull())
        return QByteArray();
    QImage image = source;
    if (image.format() == QImage::Format_Indexed8)
        image.setColorTable(QList<QRgb>(256, qRgb(0, 0, 0)));
    QByteArray out;
    QBuffer buffer(&out);
    if (!buffer.open(QIODevice::WriteOnly))
        return QByteArray();
    if (!image.save(&buffer, "PNG", 0))
        return QByteArray();
    return out;
}
