#include "qimagefile.h"

#include "sprites/qpcxcachefilter.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("QImageFile", text);
}

// The PCX codec is chosen by the exact suffix, as the dialogs write it.
bool isPcx(const QString &path)
{
    return QFileInfo(path).suffix() == QLatin1String("pcx");
}

} // namespace

QString QImageFile::openFilter()
{
    return tr("All supported") + QStringLiteral(" (*.pcx *.png *.bmp);;")
        + tr("Personal Computer eXchange (*.pcx);;Portable Network Graphic (*.png);;Bitmap (*.bmp)");
}

QString QImageFile::saveFilter()
{
    return tr("Portable Network Graphic (*.png);;Personal Computer eXchange (*.pcx);;Bitmap (*.bmp)");
}

QImage QImageFile::read(const QString &path)
{
    if (!isPcx(path))
        return QImage(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QImage();
    // A PCX file holds its pixels run-length coded; the codec refuses headers
    // that ask for more than the stored bytes can give.
    return QPCXCacheFilter::read(file.readAll());
}

bool QImageFile::write(const QString &path, const QImage &image, QString *error)
{
    auto fail = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (image.isNull())
        return fail(tr("There is no image to write."));
    QByteArray bytes;
    if (isPcx(path)) {
        bytes = QPCXCacheFilter::write(image);
    } else {
        const QByteArray format = QFileInfo(path).suffix().toLatin1().toLower();
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return fail(file.errorString());
        if (!image.save(&file, format.isEmpty() ? "png" : format.constData())) {
            file.cancelWriting();
            return fail(tr("The image can't be written in this format."));
        }
        if (!file.commit())
            return fail(file.errorString());
        return true;
    }
    if (bytes.isEmpty())
        return fail(tr("The image can't be written in this format."));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return fail(file.errorString());
    }
    if (!file.commit())
        return fail(file.errorString());
    return true;
}

QImage QImageFile::adapt(const QImage &image, const QRGBPal &colors)
{
    if (image.isNull())
        return QImage();
    bool keepAlpha = image.format() == QImage::Format_ARGB32 || image.format() == QImage::Format_ARGB32_Premultiplied;
    if (image.format() == QImage::Format_Indexed8) {
        for (QRgb c : image.colorTable())
            keepAlpha = keepAlpha || qAlpha(c) < 255;
    }
    QList<QRgb> table(256);
    for (int i = 0; i < 256; ++i) {
        const QRGBColor &c = colors[i];
        table[i] = qRgba(c.r, c.g, c.b, keepAlpha ? c.a : 255);
    }
    QImage argb = image.format() == QImage::Format_ARGB32 ? image : image.convertToFormat(QImage::Format_ARGB32);
    return argb.convertToFormat(QImage::Format_Indexed8, table, Qt::ThresholdDither | Qt::AvoidDither);
}
