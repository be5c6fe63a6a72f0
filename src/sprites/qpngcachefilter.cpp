#include "qpngcachefilter.h"

#include <QBuffer>
#include <QImageReader>
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
    bool complete;
    return decodeChecked(stored, size, &complete);
}

QByteArray QPNGCacheFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const
{
    *complete = false;
    if (size.isEmpty()) {
        const QImage image = read(stored);
        *complete = !image.isNull();
        return QSpriteSize::rawBytes(image);
    }
    QByteArray out(size.byteCount(), '\0');
    QByteArray file = stored; // the buffer device wants an array of its own
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    QImageReader reader(&device, "PNG");
    // Where the file already has the sprite's size and format (as a sprite
    // written by a version 2 file has), its lines are decoded straight into
    // the sprite's layout: an image over the output's bytes, which the reader
    // fills since it has the size and format it makes.
    if (reader.size() == QSize(size.width, size.height) && reader.imageFormat() == size.imageFormat) {
        QImage target(reinterpret_cast<uchar *>(out.data()), size.width, size.height, size.bytesPerLine(),
                      size.imageFormat);
        if (!reader.read(&target))
            return out;
        *complete = true;
        if (target.constBits() == reinterpret_cast<const uchar *>(out.constData()))
            return out;
        // The reader made an image of its own after all: copied below.
        return copyInto(target, size);
    }
    QImage image;
    if (!reader.read(&image))
        return out;
    *complete = true;
    if (image.format() != size.imageFormat)
        image = image.convertToFormat(size.imageFormat);
    return copyInto(image, size);
}

QByteArray QPNGCacheFilter::copyInto(const QImage &image, const QSpriteSize &size)
{
    QByteArray out(size.byteCount(), '\0');
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
