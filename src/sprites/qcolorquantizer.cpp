#include "sprites/qcolorquantizer.h"

#include <algorithm>
#include <bit>

QColorQuantizer::QColorQuantizer(int maxColors, int depth)
    : m_maxColors(std::clamp(maxColors, 1, 256)), m_depth(std::clamp(depth, 1, 8)),
      m_reducible(size_t(m_depth))
{
    m_nodes.reserve(1024);
    newNode(0);
}

int QColorQuantizer::childIndex(QRgb color, int level)
{
    const int shift = 7 - level;
    return (((qRed(color) >> shift) & 1) << 2) | (((qGreen(color) >> shift) & 1) << 1)
           | ((qBlue(color) >> shift) & 1);
}

int QColorQuantizer::newNode(int level)
{
    int id;
    if (!m_free.empty()) {
        id = m_free.back();
        m_free.pop_back();
        m_nodes[size_t(id)] = Node();
    } else {
        id = int(m_nodes.size());
        m_nodes.emplace_back();
    }
    Node &node = m_nodes[size_t(id)];
    node.level = quint8(level);
    if (level >= m_depth) {
        node.leaf = true;
        ++m_leafCount;
    } else {
        m_reducible[size_t(level)].push_back(id);
    }
    return id;
}

void QColorQuantizer::addColor(QRgb color)
{
    m_numbered = false;
    int cur = 0;
    while (!m_nodes[size_t(cur)].leaf) {
        // Interior nodes count what passes through them, so that the least
        // used branch is the one folded first.
        ++m_nodes[size_t(cur)].count;
        const int level = m_nodes[size_t(cur)].level;
        const int ci = childIndex(color, level);
        int child = m_nodes[size_t(cur)].children[ci];
        if (child < 0) {
            child = newNode(level + 1); // may move the vector: index again below
            m_nodes[size_t(cur)].children[ci] = child;
        }
        cur = child;
    }
    Node &leaf = m_nodes[size_t(cur)];
    leaf.red += quint64(qRed(color));
    leaf.green += quint64(qGreen(color));
    leaf.blue += quint64(qBlue(color));
    ++leaf.count;
    while (m_leafCount > m_maxColors)
        reduce();
}

void QColorQuantizer::addImage(const QImage &image, int minAlpha)
{
    if (image.isNull())
        return;
    const QImage src = image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32
                           ? image
                           : image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < src.height(); ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(src.constScanLine(y));
        for (int x = 0; x < src.width(); ++x)
            if (qAlpha(line[x]) >= minAlpha)
                addColor(line[x] | 0xFF000000u);
    }
    m_numbered = false;
}

void QColorQuantizer::reduce()
{
    for (int level = m_depth - 1; level >= 0; --level) {
        std::vector<int> &list = m_reducible[size_t(level)];
        if (list.empty())
            continue;
        // Among the deepest candidates fold the one fewest pixels went
        // through: it costs the least visible colour error.
        auto pick = std::min_element(list.begin(), list.end(), [this](int a, int b) {
            return m_nodes[size_t(a)].count < m_nodes[size_t(b)].count;
        });
        const int id = *pick;
        list.erase(pick);
        Node &node = m_nodes[size_t(id)];
        quint64 r = 0, g = 0, b = 0, n = 0;
        int children = 0;
        for (int &child : node.children) {
            if (child < 0)
                continue;
            // The deepest reducible level has only leaves below it.
            const Node &c = m_nodes[size_t(child)];
            r += c.red;
            g += c.green;
            b += c.blue;
            n += c.count;
            ++children;
            m_free.push_back(child);
            child = -1;
        }
        node.red = r;
        node.green = g;
        node.blue = b;
        node.count = n;
        node.leaf = true;
        m_leafCount -= children - 1;
        m_numbered = false;
        return;
    }
}

void QColorQuantizer::numberLeaves() const
{
    if (m_numbered)
        return;
    int next = 0;
    std::vector<int> stack{0};
    while (!stack.empty()) {
        const int id = stack.back();
        stack.pop_back();
        Node &node = m_nodes[size_t(id)];
        if (node.leaf) {
            node.paletteIndex = next++;
            continue;
        }
        for (int i = 7; i >= 0; --i) // reversed so that child 0 is visited first
            if (node.children[i] >= 0)
                stack.push_back(node.children[i]);
    }
    m_numbered = true;
}

QRGBPal QColorQuantizer::palette(int first) const
{
    QRGBPal pal;
    std::memset(pal.bytes(), 0, sizeof(QRGBPal));
    const QList<QRgb> table = colorTable();
    for (int i = 0; i < table.size() && first + i < 256; ++i) {
        if (first + i < 0)
            continue;
        pal[first + i] = QRGBColor{quint8(qRed(table[i])), quint8(qGreen(table[i])),
                                   quint8(qBlue(table[i])), 255};
    }
    return pal;
}

QList<QRgb> QColorQuantizer::colorTable() const
{
    numberLeaves();
    QList<QRgb> table(m_leafCount);
    for (const Node &node : m_nodes) {
        if (!node.leaf || node.paletteIndex < 0 || node.paletteIndex >= m_leafCount)
            continue;
        if (node.count == 0) {
            table[node.paletteIndex] = qRgb(0, 0, 0);
            continue;
        }
        const quint64 half = node.count / 2;
        table[node.paletteIndex] = qRgb(int((node.red + half) / node.count), int((node.green + half) / node.count),
                                        int((node.blue + half) / node.count));
    }
    return table;
}

int QColorQuantizer::indexOf(QRgb color) const
{
    numberLeaves();
    int cur = 0;
    while (!m_nodes[size_t(cur)].leaf) {
        const Node &node = m_nodes[size_t(cur)];
        const int want = childIndex(color, node.level);
        int best = -1;
        int bestDistance = 4;
        for (int i = 0; i < 8; ++i) {
            if (node.children[i] < 0)
                continue;
            const int distance = std::popcount(unsigned(i ^ want));
            if (distance < bestDistance) {
                bestDistance = distance;
                best = i;
            }
        }
        if (best < 0)
            return 0; // only an empty tree has a childless interior root
        cur = node.children[best];
    }
    return std::max(0, m_nodes[size_t(cur)].paletteIndex);
}

QImage QColorQuantizer::toIndexed(const QImage &image, int first, int transparentIndex) const
{
    if (image.isNull())
        return QImage();
    const QImage src = image.convertToFormat(QImage::Format_ARGB32);
    QImage out(src.size(), QImage::Format_Indexed8);
    QList<QRgb> table(256, qRgba(0, 0, 0, 0));
    const QList<QRgb> mine = colorTable();
    for (int i = 0; i < mine.size(); ++i)
        if (first + i >= 0 && first + i < 256)
            table[first + i] = mine[i];
    out.setColorTable(table);
    for (int y = 0; y < src.height(); ++y) {
        const QRgb *in = reinterpret_cast<const QRgb *>(src.constScanLine(y));
        uchar *dst = out.scanLine(y);
        QRgb last = 0;
        int lastIndex = -1;
        for (int x = 0; x < src.width(); ++x) {
            const QRgb c = in[x];
            if (transparentIndex >= 0 && qAlpha(c) < 128) {
                dst[x] = uchar(transparentIndex);
                continue;
            }
            if (lastIndex < 0 || c != last) {
                lastIndex = std::clamp(first + indexOf(c), 0, 255);
                last = c;
            }
            dst[x] = uchar(lastIndex);
        }
    }
    return out;
}
