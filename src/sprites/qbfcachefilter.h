#pragma once

#include <QByteArray>

#include "sprites/qspritesize.h"

// Turns the bytes a sprite is stored as into raw pixels (see QSpriteSize for
// the layout). Decoders never trust their input: whatever the stored bytes say,
// they stay inside the image, inside the stored bytes and inside the output,
// and they finish in time linear in the output size.
//
// One object per compression is shared by the whole process, in a table indexed
// by the sprite's filter number. Slot 0 (raw pixels) has no filter.
class QBFCacheFilter
{
public:
    // PCXShortPalette: a PCX whose pixels past a 32-colour palette move
    // inside it as they are decoded (QPCXShortPaletteFilter).
    enum Slot : quint16 { None = 0, PCX = 1, RLE8 = 2, RLE5 = 3, LZ5 = 4, PNG = 5, PCXShortPalette = 6, SlotCount = 7 };

    virtual ~QBFCacheFilter();
    // Filters keep no state: once created they may decode on any thread.
    virtual QByteArray decode(const QByteArray &stored, const QSpriteSize &size) const = 0;
    // decode(), telling as well whether the stored bytes held the whole
    // image: false where they can't be read or end before the last pixel
    // (decode() shows what is missing as zeros).
    virtual QByteArray decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const;

    // Creates the shared filters; called once at start-up, before any project
    // is loaded. Calling it again does nothing.
    static void createFilters();
    // Releases the shared filters at exit.
    static void destroyFilters();
    // The shared filter of a slot; null for slot 0, an unknown slot, or before
    // createFilters().
    static const QBFCacheFilter *filter(int slot);
    // The shared pass-through filter (not in the table); null before createFilters().
    static const QBFCacheFilter *byPass();

protected:
    QBFCacheFilter() = default;
};
