#include "spriteexporter.h"

#include "atomicwrite.h"
#include "palettepng.h"
#include "progressmeter.h"
#include "spritefile.h"
#include "sprites/qspritedecoder.h"
#include "sprites/qsprites.h"

#include <QDir>

SpriteExporter::SpriteExporter(const QSprites &store, const QString &fileName)
    : m_store(store)
    , m_fileName(fileName)
{
}

void SpriteExporter::warn(const QString &text)
{
    m_warnings << QStringLiteral("%1(0): %2").arg(m_fileName, text);
}

QImage SpriteExporter::exportImage(int index)
{
    return exportImage(index, [this, index] { return m_store.image(index); });
}

QImage SpriteExporter::exportImage(int index, const std::function<QImage()> &shown)
{
    const QSpriteItem *sprite = m_store.item(index);
    if (!sprite)
        return QImage();
    const qint64 bytes = qint64(sprite->width) * sprite->height
                         * (sprite->imageFormat == QImage::Format_Indexed8 ? 1 : 4);
    if (bytes > SpriteFile::kMaxSpriteBytes) {
        warn(QStringLiteral("sprite %1 (%2,%3) claims %4x%5 pixels, which no sprite has; not exported")
                 .arg(index).arg(sprite->info.group).arg(sprite->info.number).arg(sprite->width).arg(sprite->height));
        return QImage();
    }
    QImage image = shown();
    if (image.isNull()) {
        if (sprite->width && sprite->height)
            warn(QStringLiteral("sprite %1 (%2,%3) could not be decoded; not exported")
                     .arg(index).arg(sprite->info.group).arg(sprite->info.number));
        return QImage();
    }
    switch (image.format()) {
    case QImage::Format_Indexed8:
        if (image.colorCount() == 0) {
            // No palette to show it with: keep the indices, visible as grey levels.
            QList<QRgb> grey(256);
            for (int i = 0; i < 256; ++i)
                grey[i] = qRgb(i, i, i);
            image.setColorTable(grey);
            warn(QStringLiteral("sprite %1 (%2,%3) uses palette %4, which the file doesn't have; exported "
                                "with grey levels")
                     .arg(index).arg(sprite->info.group).arg(sprite->info.number).arg(sprite->info.palette));
        }
        return image;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return image;
    default:
        return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    }
}

bool SpriteExporter::exportTo(const QString &outDir, QString *error)
{
    m_warnings.clear();
    m_entries.clear();
    const QDir dir(outDir);
    if (!QDir().mkpath(outDir) || !dir.exists()) {
        *error = QStringLiteral("cannot create the folder '%1'").arg(QDir::toNativeSeparators(outDir));
        return false;
    }

    const int count = m_store.count();
    ProgressMeter meter(QStringLiteral("Exporting %1").arg(m_fileName));
    bool allow = true;
    // The sprites are decoded on every core, a batch at a time, and written
    // here in file order.
    bool written = true;
    QSpriteDecoder(m_store, QSpriteDecoder::AsShown).run({}, [&](QSpriteDecoder::Result &result) {
        const int i = result.index;
        const QSpriteItem &sprite = *m_store.item(i);
        SpriteListEntry entry;
        entry.index = i;
        entry.group = sprite.info.group;
        entry.number = sprite.info.number;
        entry.x = sprite.info.x;
        entry.y = sprite.info.y;
        entry.link = sprite.isLink() ? int(sprite.info.link) : -1;
        const int palette = m_store.remapPalette(sprite.info.palette);
        if (palette >= 0 && palette < m_store.paletteCount()) {
            const QPaletteInfo info = m_store.paletteInfo(palette);
            entry.hasPalette = true;
            entry.paletteGroup = info.group;
            entry.paletteNumber = info.number;
        }

        const QImage image = exportImage(i, [&result] { return std::move(result.image); });
        if (!image.isNull()) {
            entry.fileName = SpriteList::exportFileName(i, entry.group, entry.number);
            const QString path = dir.filePath(entry.fileName);
            if (image.format() == QImage::Format_Indexed8) {
                const QByteArray png = PalettePng::encode(image);
                written = !png.isEmpty() && AtomicWrite::writeBytes(path, png, error);
                if (png.isEmpty())
                    *error = QStringLiteral("cannot encode '%1'").arg(QDir::toNativeSeparators(path));
            } else {
                written = AtomicWrite::writePng(path, image, error);
            }
            if (!written)
                return false;
        }
        m_entries.append(entry);
        meter.update(uint(i + 1), uint(count), allow);
        return true;
    });
    meter.finish();
    if (!written)
        return false;
    return AtomicWrite::writeBytes(dir.filePath(QStringLiteral("sprites.txt")), SpriteList::text(m_entries), error);
}
