#pragma once

#include "sprites/qrgbpal.h"

#include <QImage>
#include <QList>
#include <QRgb>
#include <vector>

// Octree colour reduction. Colours are inserted from their most significant
// bit down; whenever the tree holds more leaves than allowed, the deepest
// reducible node is folded into a single leaf carrying the sum of its
// children, so that each leaf ends up as the mean of the colours it absorbed.
// With no more distinct colours than the maximum, every colour stays exact.
class QColorQuantizer
{
public:
    explicit QColorQuantizer(int maxColors = 256, int depth = 8);

    void addColor(QRgb color);
    // Adds the pixels of the image whose alpha is at least `minAlpha` (alpha
    // itself is not part of the colour); any format is accepted.
    void addImage(const QImage &image, int minAlpha = 0);

    int colorCount() const { return m_leafCount; }

    // Zero-filled buffer with one opaque entry per leaf, in tree order, from
    // entry `first` on (room before it is left zero for callers that reserve
    // entries, such as the transparent colour 0 of a sprite).
    QRGBPal palette(int first = 0) const;
    QList<QRgb> colorTable() const;

    // Palette entry (counted from 0 in tree order) that the colour falls into.
    // Colours never added land in the nearest existing branch.
    int indexOf(QRgb color) const;

    // Maps the image onto the tree's palette: an indexed image whose pixels
    // are `first + indexOf(pixel)`. With `transparentIndex` >= 0, pixels with
    // alpha below 128 take that index instead.
    QImage toIndexed(const QImage &image, int first = 0, int transparentIndex = -1) const;

private:
    struct Node
    {
        quint64 red = 0, green = 0, blue = 0;
        quint64 count = 0;
        qint32 children[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
        qint32 paletteIndex = -1;
        quint8 level = 0;
        bool leaf = false;
    };

    int newNode(int level);
    void reduce();
    void numberLeaves() const;
    static int childIndex(QRgb color, int level);

    int m_maxColors;
    int m_depth;
    int m_leafCount = 0;
    mutable bool m_numbered = false;
    mutable std::vector<Node> m_nodes;      // node 0 is the root
    std::vector<std::vector<int>> m_reducible; // interior nodes per level
    std::vector<int> m_free;                // folded-away nodes, reused
};
