#pragma once

#include <QList>
#include <QRgb>
#include <QtGlobal>
#include <cstring>

// One palette entry, in the byte order of the buffer: red, green, blue, alpha.
struct QRGBColor
{
    quint8 r = 0;
    quint8 g = 0;
    quint8 b = 0;
    quint8 a = 255;

    // From and to an ARGB word as QImage and QColor use it.
    static QRGBColor fromRgba(QRgb c) { return QRGBColor{quint8(qRed(c)), quint8(qGreen(c)), quint8(qBlue(c)), quint8(qAlpha(c))}; }
    QRgb rgba() const { return qRgba(r, g, b, a); }

    bool operator==(const QRGBColor &o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
    bool operator!=(const QRGBColor &o) const { return !(*this == o); }
};
static_assert(sizeof(QRGBColor) == 4);

// The colour type of the whole program: 256 entries, 1,024 bytes, copied and
// compared as one block. A default entry is opaque black.
struct QRGBPal
{
    QRGBColor colors[256];

    QRGBColor &operator[](int i) { return colors[i]; }
    const QRGBColor &operator[](int i) const { return colors[i]; }

    bool operator==(const QRGBPal &o) const { return std::memcmp(colors, o.colors, sizeof colors) == 0; }
    bool operator!=(const QRGBPal &o) const { return !(*this == o); }

    // Every byte zero, alpha included: what readers start from, so that a short
    // file leaves zeros behind.
    static QRGBPal zeroed()
    {
        QRGBPal pal;
        for (QRGBColor &c : pal.colors)
            c = QRGBColor{0, 0, 0, 0};
        return pal;
    }

    quint8 *bytes() { return reinterpret_cast<quint8 *>(colors); }
    const quint8 *bytes() const { return reinterpret_cast<const quint8 *>(colors); }

    // Entry by entry to and from a QImage colour table (ARGB words).
    QList<QRgb> toColorTable() const
    {
        QList<QRgb> table(256);
        for (int i = 0; i < 256; ++i)
            table[i] = colors[i].rgba();
        return table;
    }
    static QRGBPal fromColorTable(const QList<QRgb> &table)
    {
        QRGBPal pal;
        for (int i = 0; i < 256 && i < table.size(); ++i)
            pal.colors[i] = QRGBColor::fromRgba(table[i]);
        return pal;
    }
};
static_assert(sizeof(QRGBPal) == 1024);
