#pragma once

#include <QImage>
#include <QtGlobal>
#include <QMutex>
#include <cstddef>
#include <memory>
#include <vector>

#include "sprites/qspritesize.h"

// The part of a sprite record that SpriteChangeInfo swaps as one value.
// Sixteen bytes: the natural padding sits after hasImage.
struct QSpriteInfo
{
    // True: this sprite owns a cache entry. False: it is a link (or, with no
    // cache entry and no useful target, an empty sprite).
    bool hasImage = false;
    qint16 x = 0;
    qint16 y = 0;
    quint16 group = 0;
    quint16 number = 0;
    // Index of the sprite whose image this one shows; meaningful only for a link.
    quint16 link = 0;
    // Index in the palette list.
    quint16 palette = 0;
    // Bit 0: the image lives in the tdata block of a version 2 file.
    quint16 flags = 0;

    bool operator==(const QSpriteInfo &o) const
    {
        return hasImage == o.hasImage && x == o.x && y == o.y && group == o.group
            && number == o.number && link == o.link && palette == o.palette && flags == o.flags;
    }
    bool operator!=(const QSpriteInfo &o) const { return !(*this == o); }

    // The four words setInfo() takes: the first-named value in the low half.
    quint32 axisWord() const { return pack(quint16(x), quint16(y)); }
    quint32 idWord() const { return pack(group, number); }
    quint32 linkPaletteWord() const { return pack(link, palette); }
    static quint32 pack(quint16 low, quint16 high) { return quint32(low) | (quint32(high) << 16); }
};
static_assert(sizeof(QSpriteInfo) == 16);

// One sprite of a sprite file. The pixels are not here: they sit in the
// store's cache under `cacheId`, in the form `filter` says.
struct QSpriteItem
{
    // How the cached bytes are stored: 0 raw, 1 PCX, 2 RLE8, 3 RLE5, 4 LZ5, 5 PNG.
    quint16 filter = 0;
    // Cache handle; 0 for a linked or empty sprite.
    quint32 cacheId = 0;
    QSpriteInfo info;
    // A link carries a copy of its target's size and format.
    quint16 width = 0;
    quint16 height = 0;
    // Format_Indexed8, Format_RGB32 or Format_ARGB32, nothing else.
    QImage::Format imageFormat = QImage::Format_Indexed8;

    QSpriteSize spriteSize() const { return QSpriteSize(width, height, imageFormat); }
    void setSpriteSize(const QSpriteSize &s)
    {
        width = s.width;
        height = s.height;
        imageFormat = s.imageFormat;
    }
    bool isLink() const { return !info.hasImage; }
};

// Storage for the sprite records of one store: chunks of records reused as
// sprites come and go, so that a file of thousands of sprites costs a few
// allocations instead of one per sprite. The chunks go with the store.
class QSpriteItemPool
{
public:
    QSpriteItemPool() = default;
    QSpriteItemPool(const QSpriteItemPool &) = delete;
    QSpriteItemPool &operator=(const QSpriteItemPool &) = delete;

    QSpriteItem *create();
    void destroy(QSpriteItem *item);
    // `count` default records, or their end, with one lock for all.
    void createMany(QSpriteItem **out, qsizetype count);
    void destroyMany(QSpriteItem *const *items, qsizetype count);

    // Records made so far, and how many of them are free.
    qsizetype size() const;
    qsizetype freeCount() const;

private:
    struct alignas(QSpriteItem) Slot
    {
        unsigned char bytes[sizeof(QSpriteItem)];
    };
    static constexpr qsizetype ChunkSize = 1024;

    void *take();

    mutable QMutex m_lock;
    std::vector<std::unique_ptr<Slot[]>> m_chunks;
    qsizetype m_used = 0;
    std::vector<void *> m_free;
};
