#pragma once

#include "sprites/qrgbpal.h"

#include <QtGlobal>

// The block that paletteInfo() copies in and out: the first five fields of a
// palette, ten bytes with the natural padding after hasColors.
struct QPaletteInfo
{
    bool hasColors = true;
    qint16 group = 0;
    qint16 number = 0;
    quint16 link = 0;
    quint16 colorCount = 256;

    bool operator==(const QPaletteInfo &o) const
    {
        return hasColors == o.hasColors && group == o.group && number == o.number && link == o.link
            && colorCount == o.colorCount;
    }
};
static_assert(sizeof(QPaletteInfo) == 10);

// One palette of a sprite file. A palette without colours of its own is a link:
// it shows the colours of the palette at index `link` of the list.
struct QPaletteItem
{
    bool hasColors = true;
    qint16 group = 0;
    qint16 number = 0;
    quint16 link = 0;
    // 32 or 256 for palettes made here; whatever the file said for palettes read
    // from a version 2 file. The version 2 writer picks LZ5 for 32-colour palettes.
    quint16 colorCount = 256;
    QRGBPal colors;
    // Scratch for the file layer; `offset` doubles as a reference counter while
    // unused palettes are removed.
    quint32 offset = 0;
    quint32 size = 0;

    QPaletteInfo info() const { return QPaletteInfo{hasColors, group, number, link, colorCount}; }
    void setInfo(const QPaletteInfo &i)
    {
        hasColors = i.hasColors;
        group = i.group;
        number = i.number;
        link = i.link;
        colorCount = i.colorCount;
    }

    // Copies the colours and applies the colour-count rule.
    void setColors(const QRGBPal &c)
    {
        colors = c;
        updateColorCount();
    }
    void updateColorCount() { colorCount = colorCountOf(colors); }

    // Number of significant colours: walking down from entry 254, the first index
    // whose entry differs from entry 255 in any byte; 0 if all equal entry 255.
    static int significantColors(const QRGBPal &c)
    {
        for (int i = 254; i >= 0; --i)
            if (c[i] != c[255])
                return i;
        return 0;
    }
    // Palettes with fewer than 32 significant colours count as 32-colour palettes.
    static quint16 colorCountOf(const QRGBPal &c) { return significantColors(c) < 32 ? 32 : 256; }
};
