#pragma once

// Everything of a sprite store that a save must leave as it found it, taken
// in one go and compared field by field, so that a test can say "nothing
// changed but these" after any kind of save.
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"

namespace TestSupport {

// What an indexed or true-colour sprite shows, pixel by pixel: index 0 and
// fully transparent pixels alike as 0, other indices as their opaque colour.
inline QList<QRgb> shownPixels(const QImage &image)
{
    if (image.isNull())
        return {};
    const int w = image.width(), h = image.height();
    QList<QRgb> out(qsizetype(w) * h + 1);
    QRgb *o = out.data();
    *o++ = QRgb(w << 16 | h);
    QRgb table[256];
    const QList<QRgb> colours = image.colorTable();
    for (int k = 0; k < 256; ++k)
        table[k] = k == 0 ? 0 : 0xFF000000u | (k < colours.size() ? colours[k] : 0);
    const QImage argb = image.format() == QImage::Format_Indexed8 ? image : image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y) {
        if (image.format() == QImage::Format_Indexed8) {
            const uchar *line = argb.constScanLine(y);
            for (int x = 0; x < w; ++x)
                *o++ = table[line[x]];
        } else {
            const QRgb *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
            for (int x = 0; x < w; ++x)
                *o++ = qAlpha(line[x]) == 0 ? 0 : line[x];
        }
    }
    return out;
}

struct SpriteStoreSnapshot
{
    struct Sprite
    {
        QSpriteInfo info;
        quint16 filter = 0;
        quint32 cacheId = 0;
        QSpriteSize size;
        QByteArray stored; // the sprite's own cache entry, as stored
        QImage image;      // what it shows, with colours
    };
    QList<Sprite> sprites;
    QList<QPaletteInfo> paletteInfos;
    QList<QRGBPal> paletteColours;
    int cacheEntries = 0;
    int undoCount = 0;
    int undoIndex = 0;
    QStringList undoTexts;
    bool modified = false;
    QString fileName;
    quint32 version = 0;

    static SpriteStoreSnapshot of(const QSprites &s)
    {
        SpriteStoreSnapshot out;
        for (int i = 0; i < s.count(); ++i) {
            const QSpriteItem *it = s.item(i);
            out.sprites << Sprite{it->info, it->filter, it->cacheId, it->spriteSize(), s.storedBytes(i), s.image(i)};
        }
        for (int p = 0; p < s.paletteCount(); ++p) {
            out.paletteInfos << s.paletteInfo(p);
            out.paletteColours << s.palettes().item(p)->colors;
        }
        out.cacheEntries = s.cache().count();
        out.undoCount = s.undoStack()->count();
        out.undoIndex = s.undoStack()->index();
        for (int k = 0; k < s.undoStack()->count(); ++k)
            out.undoTexts << s.undoStack()->text(k);
        out.modified = s.isModified();
        out.fileName = s.fileName();
        out.version = s.version();
        return out;
    }

    // The first difference from `o`, in words; empty if there is none.
    QString differenceFrom(const SpriteStoreSnapshot &o) const
    {
        if (sprites.size() != o.sprites.size())
            return QStringLiteral("%1 sprites, then %2").arg(o.sprites.size()).arg(sprites.size());
        for (qsizetype i = 0; i < sprites.size(); ++i) {
            const Sprite &a = o.sprites[i], &b = sprites[i];
            if (!(a.info == b.info))
                return QStringLiteral("record of sprite %1").arg(i);
            if (a.filter != b.filter || a.cacheId != b.cacheId || !(a.size == b.size))
                return QStringLiteral("storage of sprite %1").arg(i);
            if (a.stored != b.stored)
                return QStringLiteral("cached bytes of sprite %1").arg(i);
            if (a.image != b.image)
                return QStringLiteral("image of sprite %1").arg(i);
        }
        if (paletteInfos != o.paletteInfos || paletteColours != o.paletteColours)
            return QStringLiteral("palettes");
        if (cacheEntries != o.cacheEntries)
            return QStringLiteral("cache entries %1, then %2").arg(o.cacheEntries).arg(cacheEntries);
        if (undoCount != o.undoCount || undoIndex != o.undoIndex || undoTexts != o.undoTexts)
            return QStringLiteral("undo stack");
        if (modified != o.modified)
            return QStringLiteral("modified %1, then %2").arg(o.modified).arg(modified);
        if (fileName != o.fileName)
            return QStringLiteral("file name \"%1\", then \"%2\"").arg(o.fileName, fileName);
        if (version != o.version)
            return QStringLiteral("version %1, then %2").arg(o.version, 0, 16).arg(version, 0, 16);
        return QString();
    }
};

} // namespace TestSupport
