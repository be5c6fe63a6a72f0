#pragma once

#include "sprites/qrgbpal.h"

#include <QImage>
#include <array>

// Palette work that involves pictures: reducing an image to a palette,
// grey palettes, moving the pixels of an indexed image from one palette to
// another. No widgets, so the editors, the command line and scripts share it.
//
// Index 0 of an indexed sprite is its transparent colour: every operation here
// keeps the pixels of index 0 on index 0 and never hands entry 0 to a colour.
namespace QPaletteOps {

// For every old index, the new one.
using IndexMap = std::array<quint8, 256>;

// Pixels of an indexed image renumbered through `map`; other images as they are.
QImage remapped(const QImage &image, const IndexMap &map);

// Each entry of `from` (1 to 255) to the entry of `to` (1 to 255) nearest in
// red, green and blue, the lower index on a tie; 0 stays 0.
IndexMap nearestMap(const QRGBPal &from, const QRGBPal &to);

// The indexed image with `colors` as its colour table, entry 0 transparent:
// how a sprite looks in that palette.
QImage inPalette(const QImage &indexed, const QRGBPal &colors);

struct Reduced
{
    QImage image;    // indexed, transparent pixels on 0
    QRGBPal palette; // entry 0 transparent, one entry per leaf from 1 on
    int colors = 0;  // leaves used
};
// An octree palette of at most 255 colours for `image` and the image mapped
// onto it. Pixels that are transparent (alpha below 128, or index 0 of an
// indexed image) are left out of the tree and land on entry 0. An image of at
// most 255 opaque colours keeps every one of them exactly.
Reduced optimize(const QImage &image);

struct Grey
{
    QRGBPal palette; // entry 0 kept, then the shades, darkest first; the rest opaque black
    IndexMap map;    // old index to the entry of its shade
    int shades = 0;
};
// The fewest grey entries that show the image in grey: one per distinct grey
// level (qGray) among the colours the image uses. An indexed image is read
// through `colors` (index 0, transparent, is not counted); a null image takes
// entries 1 to 255 of `colors`; a true-colour image its opaque pixels.
// Past 255 levels the shades are thinned evenly.
Grey greyScale(const QImage &image, const QRGBPal &colors);

} // namespace QPaletteOps
