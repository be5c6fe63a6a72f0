#include "qrgbpalette.h"

#include "sprites/qpalettefile.h"

#include <QColor>
#include <cmath>
#include <utility>

namespace {

bool selected(const quint8 *selection, int i)
{
    return !selection || selection[i] != 0;
}

quint8 saturate(int v)
{
    return quint8(qBound(0, v, 255));
}

int distance2(const QRGBColor &a, const QRGBColor &b)
{
    const int dr = a.r - b.r, dg = a.g - b.g, db = a.b - b.b;
    return dr * dr + dg * dg + db * db;
}

QRGBColor applyEffect(int kind, QRGBColor c)
{
    const int m = (c.r + c.g + c.b) / 3;
    switch (kind) {
    case QRGBPalette::BlueToRed:
    case QRGBPalette::RedToBlue:
        std::swap(c.r, c.b);
        break;
    case QRGBPalette::BlueToGreen:
    case QRGBPalette::GreenToBlue:
        std::swap(c.g, c.b);
        break;
    case QRGBPalette::GreenToRed:
    case QRGBPalette::RedToGreen:
        std::swap(c.r, c.g);
        break;
    case QRGBPalette::Lighter:
        c.r = saturate(c.r + 32), c.g = saturate(c.g + 32), c.b = saturate(c.b + 32);
        break;
    case QRGBPalette::Darker:
        c.r = saturate(c.r - 32), c.g = saturate(c.g - 32), c.b = saturate(c.b - 32);
        break;
    case QRGBPalette::Monochrome:
        c.r = c.g = c.b = quint8(m);
        break;
    case QRGBPalette::Fire:
        c.r = saturate(m + 100), c.g = quint8(m / 2), c.b = 0;
        break;
    case QRGBPalette::Sapphire:
        c.r = quint8(m / 4 + 60), c.g = 0, c.b = quint8(m / 2 + 60);
        break;
    case QRGBPalette::Stone:
        c.r = c.g = c.b = quint8(m > 127 ? m - 50 : m + 50);
        break;
    case QRGBPalette::MuchLighter:
        c.r = saturate(c.r + 128), c.g = saturate(c.g + 128), c.b = saturate(c.b + 128);
        break;
    case QRGBPalette::MuchDarker:
        c.r = saturate(c.r - 128), c.g = saturate(c.g - 128), c.b = saturate(c.b - 128);
        break;
    default:
        break;
    }
    return c;
}

// One step of a gradient: k-th of n entries from `from` towards `to`.
QRGBColor between(QRGBColor from, QRGBColor to, int k, int n)
{
    if (n <= 0)
        return QRGBColor{from.r, from.g, from.b, 255};
    return QRGBColor{quint8(from.r + (to.r - from.r) * k / n), quint8(from.g + (to.g - from.g) * k / n),
                     quint8(from.b + (to.b - from.b) * k / n), 255};
}

} // namespace

QRGBPalette::QRGBPalette(QRGBPal *colors, QObject *parent)
    : QObject(parent)
    , m_colors(colors)
{
}

void QRGBPalette::setColors(const QRGBPal &colors)
{
    if (!m_colors)
        return;
    emit changing();
    *m_colors = colors;
    emit changed();
}

void QRGBPalette::setColorsQuiet(const QRGBPal &colors)
{
    if (m_colors)
        *m_colors = colors;
}

void QRGBPalette::setColor(int index, QRGBColor color)
{
    if (!m_colors || index < 0 || index > 255)
        return;
    emit changing();
    (*m_colors)[index] = color;
    emit changed();
}

void QRGBPalette::fill(const quint8 *selection, QRGBColor color)
{
    if (!m_colors)
        return;
    emit changing();
    for (int i = 0; i < 256; ++i)
        if (selected(selection, i))
            (*m_colors)[i] = color;
    emit changed();
}

void QRGBPalette::reverse(const quint8 *selection)
{
    if (!m_colors)
        return;
    emit changing();
    int picked[256];
    int n = 0;
    for (int i = 0; i < 256; ++i)
        if (selected(selection, i))
            picked[n++] = i;
    for (int a = 0, b = n - 1; a < b; ++a, --b)
        std::swap((*m_colors)[picked[a]], (*m_colors)[picked[b]]);
    emit changed();
}

void QRGBPalette::effect(int kind, const quint8 *selection)
{
    if (!m_colors)
        return;
    emit changing();
    for (int i = 0; i < 256; ++i)
        if (selected(selection, i)) {
            QRGBColor c = applyEffect(kind, (*m_colors)[i]);
            c.a = (*m_colors)[i].a;
            (*m_colors)[i] = c;
        }
    emit changed();
}

void QRGBPalette::sort()
{
    if (!m_colors)
        return;
    emit changing();
    QRGBPal &p = *m_colors;
    for (int i = 1; i < 255; ++i) {
        int best = i;
        int bestDistance = distance2(p[i - 1], p[i]);
        for (int j = i + 1; j < 256; ++j) {
            const int d = distance2(p[i - 1], p[j]);
            if (d < bestDistance) {
                best = j;
                bestDistance = d;
            }
        }
        std::swap(p[i], p[best]);
    }
    emit changed();
}

void QRGBPalette::gradient(const quint8 *selection, QRGBColor from, QRGBColor to)
{
    if (!m_colors)
        return;
    emit changing();
    int n = 0;
    for (int i = 0; i < 256; ++i)
        if (selected(selection, i))
            ++n;
    int k = 0;
    for (int i = 0; i < 256; ++i) {
        if (!selected(selection, i))
            continue;
        (*m_colors)[i] = between(from, to, k, n);
        // After the first entry the divisor drops by one, so the last lands on `to`.
        if (k == 0)
            --n;
        ++k;
    }
    emit changed();
}

void QRGBPalette::gradientRange(int first, QRGBColor from, int last, QRGBColor to)
{
    if (!m_colors)
        return;
    first = qBound(0, first, 256);
    last = qBound(0, last, 256);
    emit changing();
    int n = last - first;
    for (int i = first, k = 0; i < last; ++i, ++k) {
        (*m_colors)[i] = between(from, to, k, n);
        if (k == 0)
            --n;
    }
    emit changed();
}

static bool contains(const QRGBPal &p, const QRGBColor &c)
{
    for (int i = 0; i < 256; ++i)
        if (p[i] == c)
            return true;
    return false;
}

void QRGBPalette::addDifferent(const QRGBPal &other)
{
    if (!m_colors)
        return;
    emit changing();
    // Entry 0 is the transparent colour of indexed sprites and is kept.
    int place = 255;
    for (int i = 0; i < 256 && place >= 1; ++i) {
        if (contains(*m_colors, other[i]))
            continue;
        (*m_colors)[place--] = other[i];
    }
    emit changed();
}

void QRGBPalette::deleteDuplicates(QRGBColor replacement)
{
    if (!m_colors)
        return;
    emit changing();
    replacement.a = 255;
    QRGBPal &p = *m_colors;
    for (int i = 1; i < 256; ++i)
        for (int j = i - 1; j >= 0; --j)
            if (p[j] == p[i]) {
                p[j] = replacement;
                break;
            }
    emit changed();
}

void QRGBPalette::adjustHsl(const quint8 *selection, int hue, int saturation, int lightness)
{
    if (!m_colors)
        return;
    emit changing();
    for (int i = 0; i < 256; ++i) {
        if (!selected(selection, i))
            continue;
        QRGBColor &c = (*m_colors)[i];
        // Float HSL keeps a plain hue turn exact: 8-bit lightness would shave
        // a step off saturated colours.
        float h, s, l;
        QColor::fromRgb(c.r, c.g, c.b).getHslF(&h, &s, &l);
        // Hue goes round the circle; an achromatic colour (hue -1) stays grey.
        if (h >= 0) {
            h = std::fmod(h + hue / 360.0f, 1.0f);
            if (h < 0)
                h += 1.0f;
        }
        const QColor out = QColor::fromHslF(h, qBound(0.0f, s + saturation / 255.0f, 1.0f),
                                            qBound(0.0f, l + lightness / 255.0f, 1.0f)).toRgb();
        c.r = quint8(out.red());
        c.g = quint8(out.green());
        c.b = quint8(out.blue());
    }
    emit changed();
}

void QRGBPalette::adjustRgb(const quint8 *selection, int red, int green, int blue)
{
    if (!m_colors)
        return;
    emit changing();
    for (int i = 0; i < 256; ++i) {
        if (!selected(selection, i))
            continue;
        QRGBColor &c = (*m_colors)[i];
        c.r = saturate(c.r + red);
        c.g = saturate(c.g + green);
        c.b = saturate(c.b + blue);
    }
    emit changed();
}

QList<QRgb> QRGBPalette::toColorTable() const
{
    return m_colors ? m_colors->toColorTable() : QList<QRgb>();
}

void QRGBPalette::fromColorTable(const QList<QRgb> &table)
{
    if (!m_colors)
        return;
    emit changing();
    for (int i = 0; i < 256 && i < table.size(); ++i)
        (*m_colors)[i] = QRGBColor::fromRgba(table[i]);
    emit changed();
}

bool QRGBPalette::saveAct(const QString &path, QString *error) const
{
    if (!m_colors) {
        if (error)
            *error = tr("There is no palette to save.");
        return false;
    }
    return QPaletteFile::saveAct(path, *m_colors, error);
}

bool QRGBPalette::load(const QString &path, QString *error)
{
    if (!m_colors)
        return false;
    emit changing();
    const bool ok = QPaletteFile::load(path, m_colors, error);
    emit changed();
    return ok;
}
