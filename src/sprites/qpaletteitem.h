#pragma once

#include "sprites/qrgbpal.h"

#include <QtGlobal>
#include <cstring>

// The block that paletteInfo() copies in and out: the first five fields of a
// palette, ten bytes with the natural padding after hasColors.
struct QPaletteInfo
{
    bool hasColors = true;
    qint16 group = 0;
    qint16 number = 0;
    quint16 link = 0;
    quint16 colorCount = 256;

    // The block as two words and a half-word, the way scripts and undo records
    // carry it: byte 0 hasColors, byte 1 padding (0), then group, number, link,
    // colorCount in native byte order.
    void toWords(quint32 *first, quint32 *second, quint16 *third) const
    {
        unsigned char raw[10] = {};
        raw[0] = hasColors ? 1 : 0;
        std::memcpy(raw + 2, &group, 2);
        std::memcpy(raw + 4, &number, 2);
        std::memcpy(raw + 6, &link, 2);
        std::memcpy(raw + 8, &colorCount, 2);
        std::memcpy(first, raw, 4);
        std::memcpy(second, raw + 4, 4);
        std::memcpy(third, raw + 8, 2);
    }
    static QPaletteInfo fromWords(quint32 first, quint32 second, quint16 third)
    {
        unsigned char raw[10];
        std::memcpy(raw, &first, 4);
        std::memcpy(raw + 4, &second, 4);
        std::memcpy(raw + 8, &third, 2);
        QPaletteInfo i;
        i.hasColors = raw[0] != 0;
        std::memcpy(&i.group, raw + 2, 2);
        std::memcpy(&i.number, raw + 4, 2);
        std::memcpy(&i.link, raw + 6, 2);
        std::memcpy(&i.colorCount, raw + 8, 2);
        return i;
    }

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
