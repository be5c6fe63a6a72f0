#include "sprites/qpaletteops.h"

#include "sprites/qcolorquantizer.h"

#include <algorithm>
#include <vector>

namespace QPaletteOps {

namespace {

int distance2(const QRGBColor &a, const QRGBColor &b)
{
    const int dr = a.r - b.r, dg = a.g - b.g, db = a.b - b.b;
    return dr * dr + dg * dg + db * db;
}

int grey(const QRGBColor &c)
{
    return qGray(c.r, c.g, c.b);
}

} // namespace

QImage remapped(const QImage &image, const IndexMap &map)
{
    if (image.format() != QImage::Format_Indexed8)
        return image;
    QImage out = image.copy();
    for (int y = 0; y < out.height(); ++y) {
        uchar *line = out.scanLine(y);
        for (int x = 0; x < out.width(); ++x)
            line[x] = map[line[x]];
    }
    return out;
}

IndexMap nearestMap(const QRGBPal &from, const QRGBPal &to)
{
    IndexMap map{};
    for (int i = 1; i < 256; ++i) {
        int best = 1;
        int bestDistance = distance2(from[i], to[1]);
        for (int j = 2; j < 256 && bestDistance > 0; ++j) {
            const int d = distance2(from[i], to[j]);
            if (d < bestDistance) {
                best = j;
                bestDistance = d;
            }
        }
        map[i] = quint8(best);
    }
    return map;
}

QImage inPalette(const QImage &indexed, const QRGBPal &colors)
{
    if (indexed.format() != QImage::Format_Indexed8)
        return indexed;
    QList<QRgb> table = colors.toColorTable();
    table[0] = qRgba(colors[0].r, colors[0].g, colors[0].b, 0);
    QImage out = indexed;
    out.setColorTable(table);
    return out;
}

Reduced optimize(const QImage &image)
{
    Reduced out;
    if (image.isNull())
        return out;
    QImage argb;
    QRGBColor zero{0, 0, 0, 0};
    if (image.format() == QImage::Format_Indexed8) {
        QList<QRgb> table = image.colorTable();
        table.resize(256, qRgb(0, 0, 0));
        for (QRgb &c : table)
            c |= 0xFF000000u;
        zero = QRGBColor{quint8(qRed(table[0])), quint8(qGreen(table[0])), quint8(qBlue(table[0])), 0};
        table[0] &= 0x00FFFFFFu;
        QImage retabled = image;
        retabled.setColorTable(table);
        argb = retabled.convertToFormat(QImage::Format_ARGB32);
    } else {
        argb = image.convertToFormat(QImage::Format_ARGB32);
    }
    QColorQuantizer quantizer(255, 8);
    quantizer.addImage(argb, 128);
    out.colors = quantizer.colorCount();
    out.palette = quantizer.palette(1);
    out.palette[0] = zero;
    // Past the leaves the default colour, so that the palette's colour count
    // reads as small as the image is.
    for (int i = out.colors + 1; i < 256; ++i)
        out.palette[i] = QRGBColor();
    out.image = quantizer.toIndexed(argb, 1, 0);
    out.image.setColorTable(out.palette.toColorTable());
    return out;
}

Grey greyScale(const QImage &image, const QRGBPal &colors)
{
    bool levels[256] = {};
    if (image.isNull()) {
        for (int i = 1; i < 256; ++i)
            levels[grey(colors[i])] = true;
    } else if (image.format() == QImage::Format_Indexed8) {
        bool used[256] = {};
        for (int y = 0; y < image.height(); ++y) {
            const uchar *line = image.constScanLine(y);
            for (int x = 0; x < image.width(); ++x)
                used[line[x]] = true;
        }
        for (int i = 1; i < 256; ++i)
            if (used[i])
                levels[grey(colors[i])] = true;
    } else {
        const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < argb.height(); ++y) {
            const QRgb *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
            for (int x = 0; x < argb.width(); ++x)
                if (qAlpha(line[x]) >= 128)
                    levels[qGray(line[x])] = true;
        }
    }
    std::vector<int> shades;
    for (int v = 0; v < 256; ++v)
        if (levels[v])
            shades.push_back(v);
    if (shades.size() > 255) {
        std::vector<int> thinned(255);
        for (size_t j = 0; j < thinned.size(); ++j)
            thinned[j] = shades[j * shades.size() / thinned.size()];
        shades.swap(thinned);
    }

    Grey out;
    out.shades = int(shades.size());
    out.palette[0] = colors[0];
    for (int j = 0; j < out.shades; ++j)
        out.palette[j + 1] = QRGBColor{quint8(shades[j]), quint8(shades[j]), quint8(shades[j]), 255};
    out.map[0] = 0;
    for (int i = 1; i < 256; ++i) {
        if (shades.empty()) {
            out.map[i] = 0;
            continue;
        }
        const int level = grey(colors[i]);
        const auto at = std::lower_bound(shades.begin(), shades.end(), level);
        size_t j = size_t(at - shades.begin());
        if (j == shades.size() || (j > 0 && level - shades[j - 1] <= shades[j] - level))
            j = j == 0 ? 0 : j - 1;
        out.map[i] = quint8(j + 1);
    }
    return out;
}

} // namespace QPaletteOps
