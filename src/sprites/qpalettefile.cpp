#include "qpalettefile.h"

#include "sprites/qacopalette.h"
#include "sprites/qactpalette.h"
#include "sprites/qasepalette.h"
#include "sprites/qjascpalette.h"
#include "sprites/qpainterpalette.h"
#include "sprites/qriffpalette.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QSaveFile>
#include <memory>

static QString tr(const char *text)
{
    return QCoreApplication::translate("QPaletteFile", text);
}

static void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

QString QPaletteFile::openFilter()
{
    const QString all = tr("All supported") + QStringLiteral(" (*.act *.pcx *.png *.bmp *.pal *.aco *.ase *.txt);;");
    return all
        + tr("Adobe Color Table (*.act);;Personal Computer eXchange (*.pcx);;Portable Network Graphic (*.png);;"
             "Bitmap (*.bmp);;RIFF / Jasc Palette (*.pal);;Adobe Color Swatch (*.aco);;"
             "Adobe Swatch Exchange (*.ase);;Corel Painter Swatches (*.txt)");
}

QString QPaletteFile::saveFilter()
{
    return tr("Adobe Color Table (*.act)");
}

// The colour table of an 8-bit PCX sits in its last 769 bytes, after the byte 12.
static bool pcxPalette(QIODevice &device, QRGBPal *colors, QString *error)
{
    // Only the header and the tail matter; skip the pixels where the device allows it.
    QByteArray head, tail;
    if (!device.isSequential() && device.size() - device.pos() >= 128 + 769) {
        head = device.read(128);
        device.seek(device.size() - 769);
        tail = device.read(769);
    } else {
        const QByteArray data = QAbstractPalette::readAtMost(device, 64 << 20);
        head = data.left(128);
        if (data.size() >= 128 + 769)
            tail = data.right(769);
    }
    if (head.size() < 128 || tail.size() < 769 || quint8(head[0]) != 10) {
        setError(error, tr("The file is not a PCX image."));
        return false;
    }
    const int bits = quint8(head[3]) * quint8(head[65]);
    const auto *t = reinterpret_cast<const quint8 *>(tail.constData());
    if (bits != 8 || t[0] != 12) {
        setError(error, tr("The image is not color indexed."));
        return false;
    }
    for (int i = 0; i < 256; ++i)
        (*colors)[i] = QRGBColor{t[1 + i * 3], t[2 + i * 3], t[3 + i * 3], 255};
    return true;
}

static bool imagePalette(QIODevice &device, const QString &suffix, QRGBPal *colors, QString *error)
{
    if (suffix == QLatin1String("pcx"))
        return pcxPalette(device, colors, error);
    QImageReader reader(&device, suffix.toLatin1());
    // A palette image is small; refuse absurd sizes before decoding.
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > 64ll * 1024 * 1024) {
        setError(error, tr("The image is too large."));
        return false;
    }
    const QImage image = reader.read();
    if (image.isNull()) {
        setError(error, tr("The image could not be read: %1").arg(reader.errorString()));
        return false;
    }
    if (image.format() != QImage::Format_Indexed8 && image.format() != QImage::Format_Mono
        && image.format() != QImage::Format_MonoLSB) {
        setError(error, tr("The image is not color indexed."));
        return false;
    }
    const QRGBPal old = *colors;
    *colors = QRGBPal::zeroed();
    const QList<QRgb> table = image.colorTable();
    if (table.isEmpty()) {
        *colors = old;
        setError(error, tr("The image has no colour table."));
        return false;
    }
    for (int i = 0; i < 256 && i < table.size(); ++i)
        (*colors)[i] = QRGBColor::fromRgba(table[i]);
    return true;
}

bool QPaletteFile::load(QIODevice &device, const QString &suffix, QRGBPal *colors, QString *error)
{
    if (!colors)
        return false;
    if (suffix == QLatin1String("png") || suffix == QLatin1String("pcx") || suffix == QLatin1String("bmp"))
        return imagePalette(device, suffix, colors, error);

    const QByteArray magic = device.peek(4);
    *colors = QRGBPal::zeroed();
    std::unique_ptr<QAbstractPalette> reader;
    if (suffix == QLatin1String("aco"))
        reader = std::make_unique<QACOPalette>();
    else if (magic == "RIFF")
        reader = std::make_unique<QRIFFPalette>();
    else if (magic == "JASC")
        reader = std::make_unique<QJascPalette>();
    else if (magic == "ASEF")
        reader = std::make_unique<QASEPalette>();
    else if (magic == "ROWS")
        reader = std::make_unique<QPainterPalette>();
    else
        reader = std::make_unique<QACTPalette>();
    const bool ok = reader->load(device, colors);
    if (!ok)
        setError(error, reader->error());
    return ok;
}

bool QPaletteFile::load(const QString &path, QRGBPal *colors, QString *error)
{
    if (!colors)
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        setError(error, tr("%1 could not be opened: %2").arg(QFileInfo(path).fileName(), file.errorString()));
        return false;
    }
    return load(file, QFileInfo(path).suffix().toLower(), colors, error);
}

QByteArray QPaletteFile::actBytes(const QRGBPal &colors)
{
    QByteArray out(768, Qt::Uninitialized);
    for (int i = 0; i < 256; ++i) {
        const QRGBColor &c = colors[255 - i];
        out[i * 3] = char(c.r);
        out[i * 3 + 1] = char(c.g);
        out[i * 3 + 2] = char(c.b);
    }
    return out;
}

bool QPaletteFile::saveAct(const QString &path, const QRGBPal &colors, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        setError(error, tr("%1 could not be written: %2").arg(QFileInfo(path).fileName(), file.errorString()));
        return false;
    }
    const QByteArray data = actBytes(colors);
    if (file.write(data) != data.size() || !file.commit()) {
        setError(error, tr("%1 could not be written: %2").arg(QFileInfo(path).fileName(), file.errorString()));
        file.cancelWriting();
        return false;
    }
    return true;
}
