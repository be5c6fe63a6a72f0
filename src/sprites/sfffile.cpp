#include "sprites/sfffile.h"

#include "core/qmessages.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qcolorquantizer.h"
#include "sprites/qlz5cachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qpngcachefilter.h"
#include "sprites/qrle8cachefilter.h"
#include "sprites/qsprites.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace Sff {

QByteArray signature()
{
    return QByteArray("ElecbyteSpr", 12); // the terminating zero is part of it
}

QByteArray comment()
{
    QByteArray text("Made in Orvane\nPowered by Brawlforge 3\nhttps://brawlforge.orvane.org/");
    text.resize(CommentSize, '\0');
    text[CommentSize - 1] = '\0';
    return text;
}

QString versionText(quint32 version)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(version >> 24)
        .arg((version >> 16) & 0xFF)
        .arg((version >> 8) & 0xFF)
        .arg(version & 0xFF);
}

bool isSupported(quint32 version)
{
    return version == Version101 || version == Version200 || version == Version201;
}

quint16 filterForCode(quint8 code)
{
    return code < CodePNG8 ? quint16(code) : quint16(QBFCacheFilter::PNG);
}

QImage::Format formatForDepth(quint8 depth)
{
    switch (depth) {
    case 5:
    case 8:
        return QImage::Format_Indexed8;
    case 24:
        return QImage::Format_RGB32;
    case 32:
        return QImage::Format_ARGB32;
    default:
        return QImage::Format_Invalid;
    }
}

quint8 depthForCode(quint8 code)
{
    switch (code) {
    case CodeRLE8:
    case CodePNG8:
        return 8;
    case CodeLZ5:
        return 5;
    case CodePNG24:
        return 24;
    case CodePNG32:
        return 32;
    default:
        return 0;
    }
}

int bytesPerPixel(QImage::Format format)
{
    switch (format) {
    case QImage::Format_RGB32:
        return 3;
    case QImage::Format_ARGB32:
        return 4;
    default:
        return 1;
    }
}

bool ByteReader::seek(qint64 pos)
{
    if (pos < 0 || pos > m_size) {
        m_pos = pos < 0 ? 0 : m_size;
        m_overrun = true;
        return false;
    }
    m_pos = pos;
    return true;
}

quint8 ByteReader::u8()
{
    if (m_pos >= m_size) {
        m_overrun = true;
        return 0;
    }
    return m_data[m_pos++];
}

quint16 ByteReader::u16()
{
    const quint16 lo = u8();
    return quint16(lo | (quint16(u8()) << 8));
}

quint32 ByteReader::u32()
{
    const quint32 lo = u16();
    return lo | (quint32(u16()) << 16);
}

QByteArray ByteReader::bytes(qint64 count)
{
    if (count <= 0)
        return QByteArray();
    qint64 n = count;
    if (n > remaining()) {
        n = remaining();
        m_overrun = true;
    }
    QByteArray out(reinterpret_cast<const char *>(m_data + m_pos), qsizetype(n));
    m_pos += n;
    return out;
}

void ByteWriter::u16(quint16 v)
{
    u8(quint8(v));
    u8(quint8(v >> 8));
}

void ByteWriter::u32(quint32 v)
{
    u16(quint16(v));
    u16(quint16(v >> 16));
}

void ByteWriter::padTo(qint64 size)
{
    if (size > m_out.size())
        zeros(size - m_out.size());
}

Head Head::read(ByteReader &in)
{
    Head head;
    const QByteArray sig = in.bytes(12);
    head.signatureOk = sig == signature();
    head.version = in.u32();
    return head;
}

void Head::write(ByteWriter &out) const
{
    out.bytes(signature());
    out.u32(version);
}

V1Header V1Header::read(ByteReader &in)
{
    V1Header h;
    in.seek(16);
    h.groups = in.u32();
    h.images = in.u32();
    h.firstOffset = in.u32();
    h.subheaderSize = in.u32();
    h.paletteType = in.u8();
    return h;
}

void V1Header::write(ByteWriter &out) const
{
    const qint64 start = out.size();
    Head{true, Version101}.write(out);
    out.u32(groups);
    out.u32(images);
    out.u32(firstOffset);
    out.u32(subheaderSize);
    out.u8(paletteType);
    out.zeros(3);
    out.bytes(comment());
    out.padTo(start + HeaderSize);
}

V1Subheader V1Subheader::read(ByteReader &in)
{
    V1Subheader s;
    s.next = in.u32();
    s.length = in.u32();
    s.x = in.s16();
    s.y = in.s16();
    s.group = in.u16();
    s.number = in.u16();
    s.link = in.u16();
    s.samePalette = in.u8();
    in.skip(13);
    return s;
}

void V1Subheader::write(ByteWriter &out) const
{
    out.u32(next);
    out.u32(length);
    out.u16(quint16(x));
    out.u16(quint16(y));
    out.u16(group);
    out.u16(number);
    out.u16(link);
    out.u8(samePalette);
    out.zeros(13);
}

V2Header V2Header::read(ByteReader &in)
{
    V2Header h;
    in.seek(36);
    h.spriteOffset = in.u32();
    h.spriteCount = in.u32();
    h.paletteOffset = in.u32();
    h.paletteCount = in.u32();
    h.ldataOffset = in.u32();
    h.ldataLength = in.u32();
    h.tdataOffset = in.u32();
    h.tdataLength = in.u32();
    return h;
}

void V2Header::write(ByteWriter &out, quint32 version) const
{
    const qint64 start = out.size();
    Head{true, version}.write(out);
    out.zeros(8);
    out.u32(version);
    out.zeros(8);
    out.u32(spriteOffset);
    out.u32(spriteCount);
    out.u32(paletteOffset);
    out.u32(paletteCount);
    out.u32(ldataOffset);
    out.u32(ldataLength);
    out.u32(tdataOffset);
    out.u32(tdataLength);
    out.zeros(8);
    out.bytes(comment());
    out.padTo(start + HeaderSize);
}

V2PaletteNode V2PaletteNode::read(ByteReader &in)
{
    V2PaletteNode n;
    n.group = in.s16();
    n.number = in.s16();
    n.colorCount = in.u16();
    n.link = in.u16();
    n.offset = in.u32();
    n.length = in.u32();
    return n;
}

void V2PaletteNode::write(ByteWriter &out) const
{
    out.u16(quint16(group));
    out.u16(quint16(number));
    out.u16(colorCount);
    out.u16(link);
    out.u32(offset);
    out.u32(length);
}

V2SpriteNode V2SpriteNode::read(ByteReader &in)
{
    V2SpriteNode n;
    n.group = in.u16();
    n.number = in.u16();
    n.width = in.u16();
    n.height = in.u16();
    n.x = in.s16();
    n.y = in.s16();
    n.link = in.u16();
    n.format = in.u8();
    n.depth = in.u8();
    n.offset = in.u32();
    n.length = in.u32();
    n.palette = in.u16();
    n.flags = in.u16();
    return n;
}

void V2SpriteNode::write(ByteWriter &out) const
{
    out.u16(group);
    out.u16(number);
    out.u16(width);
    out.u16(height);
    out.u16(quint16(x));
    out.u16(quint16(y));
    out.u16(link);
    out.u8(format);
    out.u8(depth);
    out.u32(offset);
    out.u32(length);
    out.u16(palette);
    out.u16(flags);
}

QImage::Format V2SpriteNode::imageFormat() const
{
    const QImage::Format byDepth = formatForDepth(depth);
    if (byDepth != QImage::Format_Invalid)
        return byDepth;
    // The store holds nothing but the three formats; an odd depth byte falls
    // back on what the code implies, so that the sprite still shows.
    if (format == CodePNG24)
        return QImage::Format_RGB32;
    if (format == CodePNG32)
        return QImage::Format_ARGB32;
    return QImage::Format_Indexed8;
}

} // namespace Sff

using namespace Sff;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("QSprites", text);
}

bool isPortrait(quint16 group, quint16 number)
{
    return number == 0 && (group == 9000 || group == 0);
}

QRGBPal zeroPal()
{
    QRGBPal pal;
    std::memset(pal.bytes(), 0, sizeof(QRGBPal));
    return pal;
}

// A colour table as a sprite palette: colour 0 is the transparent one.
QRGBPal spritePal(const QList<QRgb> &table)
{
    QRGBPal pal = QRGBPal::fromColorTable(table);
    pal[0].a = 0;
    return pal;
}

// Follows links from `index` to a sprite with an image. Returns that index,
// `index` of the empty sprite a chain ends on (a sprite linked to itself),
// or -1 when the chain leaves the list or runs in a circle.
int chainEnd(const std::vector<QSpriteItem *> &items, int index)
{
    const int n = int(items.size());
    for (int steps = 0; steps <= n; ++steps) {
        if (index < 0 || index >= n)
            return -1;
        const QSpriteItem *it = items[size_t(index)];
        if (it->info.hasImage || it->info.link == index)
            return index;
        index = it->info.link;
    }
    return -1;
}

// -------------------------------------------------------------------------
// Reading
// -------------------------------------------------------------------------

class SffReader
{
public:
    SffReader(QSprites &store, const QString &name, const uchar *data, qint64 size, bool isCharacter)
        : s(store), name(name), in(data, size), data(data), isCharacter(isCharacter)
    {
    }

    enum Result { Failed, Loaded, Cancelled };

    // Reads everything after the head; the sprites read are left in `items`.
    Result read(quint32 version, const QPaletteList &keptPalettes);

    std::vector<std::unique_ptr<QSpriteItem>> owned;

private:
    Result readV1(const QPaletteList &keptPalettes);
    Result readV2(quint32 version);
    bool progress(uint pos, uint max)
    {
        bool allow = true;
        emit s.progress(pos, max, allow);
        return allow;
    }
    void warn(int line, const QString &text)
    {
        if (s.messages)
            s.messages->addWarning(QStringLiteral("%1(%2): %3").arg(name).arg(line).arg(text));
    }
    void refuseLink(int index, int link)
    {
        const QString text = tr("%1(%2): Sprite incorrectly linked to the index %3").arg(name).arg(index).arg(link);
        if (s.messages)
            s.messages->addError(text);
        emit s.fileError(tr("Sprite loading error"), text);
    }
    std::vector<QSpriteItem *> itemPointers() const
    {
        std::vector<QSpriteItem *> out;
        out.reserve(owned.size());
        for (const auto &it : owned)
            out.push_back(it.get());
        return out;
    }

    QSprites &s;
    QString name;
    ByteReader in;
    const uchar *data;
    bool isCharacter;
};

SffReader::Result SffReader::read(quint32 version, const QPaletteList &keptPalettes)
{
    return version == Version101 ? readV1(keptPalettes) : readV2(version);
}

SffReader::Result SffReader::readV1(const QPaletteList &keptPalettes)
{
    // A character's palette files come before its sprites: keep them.
    s.palettes = keptPalettes;
    const V1Header header = V1Header::read(in);
    const uint images = header.images;
    if (!progress(0, images))
        return Failed;

    int charPal = s.palettes.find(0, 1, 1);
    int last = 0;
    qint64 pos = HeaderSize;
    for (uint i = 0; i < images; ++i) {
        if (in.size() - pos < SubheaderSize) {
            warn(int(i), tr("the file ends before sprite %1: %2 of %3 sprites were read")
                             .arg(i).arg(i).arg(images));
            break;
        }
        in.seek(pos);
        const V1Subheader sh = V1Subheader::read(in);
        const qint64 dataStart = pos + SubheaderSize;
        const bool nextValid = sh.next != 0 && qint64(sh.next) >= dataStart && qint64(sh.next) <= in.size();

        auto item = std::make_unique<QSpriteItem>();
        item->filter = QBFCacheFilter::PCX;
        item->info.x = sh.x;
        item->info.y = sh.y;
        item->info.group = sh.group;
        item->info.number = sh.number;
        item->info.link = sh.link;
        item->info.hasImage = sh.length != 0;

        if (item->info.hasImage) {
            // Many files declare the full PCX length although the colour
            // table was cut off: the distance to the next subfile is the truth.
            qint64 count = nextValid ? qint64(sh.next) - dataStart : qint64(sh.length);
            if (count > in.size() - dataStart) {
                warn(int(i), tr("the data of sprite %1,%2 is cut short by the end of the file")
                                 .arg(sh.group).arg(sh.number));
                count = in.size() - dataStart;
            }
            QByteArray stored(reinterpret_cast<const char *>(data + dataStart), qsizetype(count));
            pos = dataStart + count;

            QImage img = QPCXCacheFilter::read(stored);
            if (img.isNull())
                warn(int(i), tr("the image of sprite %1,%2 can't be read").arg(sh.group).arg(sh.number));
            const QList<QRgb> table = img.colorTable();
            item->width = quint16(img.width());
            item->height = quint16(img.height());
            item->imageFormat = img.isNull() ? QImage::Format_Indexed8 : img.format();

            int pal;
            if (isCharacter && isPortrait(sh.group, sh.number)) {
                if (charPal < 0) {
                    QRGBPal colors = table.isEmpty() ? zeroPal() : spritePal(table);
                    if (table.isEmpty())
                        emit s.charPalette(&colors); // the project supplies the colours as they are
                    charPal = s.palettes.add(colors, false, 1, 1);
                }
                pal = charPal;
            } else if ((i != 0 && sh.samePalette == 1) || (table.isEmpty() && !owned.empty())) {
                pal = last;
            } else {
                if (table.isEmpty())
                    warn(int(i), tr("sprite %1,%2 has no colours of its own and none to share")
                                     .arg(sh.group).arg(sh.number));
                pal = s.palettes.add(table.isEmpty() ? zeroPal() : spritePal(table), true, qint16(sh.group), -1);
            }
            item->info.palette = quint16(pal);

            // Pixels past a short palette are moved to an index of the same
            // colour inside it, so that the sprite can later be packed as LZ5.
            const QPaletteItem *palItem = s.palettes.item(pal);
            const int colorCount = palItem ? palItem->colorCount : 256;
            if (img.format() == QImage::Format_Indexed8 && colorCount < 256 && table.size() == 256) {
                bool changed = false;
                int remap[256];
                for (int c = 0; c < 256; ++c) {
                    remap[c] = c;
                    if (c < colorCount)
                        continue;
                    remap[c] = 255;
                    for (int k = 0; k < colorCount; ++k)
                        if (table[k] == table[c]) {
                            remap[c] = k;
                            break;
                        }
                }
                for (int y = 0; y < img.height(); ++y) {
                    uchar *line = img.scanLine(y);
                    for (int x = 0; x < img.width(); ++x)
                        if (remap[line[x]] != line[x]) {
                            line[x] = uchar(remap[line[x]]);
                            changed = true;
                        }
                }
                if (changed) {
                    item->filter = QBFCacheFilter::None;
                    stored = QSpriteSize::rawBytes(img);
                }
            }
            item->cacheId = s.cache.add(stored, item->filter == QBFCacheFilter::None);
            last = pal;
        } else {
            pos = nextValid ? qint64(sh.next) : dataStart;
            if (sh.link >= owned.size()) {
                refuseLink(int(i), sh.link);
                return Failed;
            }
            int target = sh.link;
            for (size_t steps = 0;; ++steps) {
                const QSpriteItem *t = owned[size_t(target)].get();
                if (t->info.hasImage || target == 0)
                    break;
                if (t->info.link == target || t->info.link >= owned.size() || steps > owned.size()) {
                    refuseLink(int(i), sh.link);
                    return Failed;
                }
                target = t->info.link;
            }
            const QSpriteItem *t = owned[size_t(target)].get();
            item->setSpriteSize(t->spriteSize());
            item->info.palette = sh.samePalette == 1 ? quint16(last) : t->info.palette;
            last = item->info.palette;
        }
        owned.push_back(std::move(item));
        if (!progress(i + 1, images))
            return Failed;
    }
    return Loaded;
}

SffReader::Result SffReader::readV2(quint32 version)
{
    s.palettes.clear();
    const V2Header h = V2Header::read(in);

    // Counts are trusted only as far as the node tables fit in the file.
    auto fitting = [&](quint32 offset, quint32 count, int nodeSize, const QString &what) {
        const qint64 room = qint64(offset) <= in.size() ? (in.size() - qint64(offset)) / nodeSize : 0;
        if (qint64(count) > room) {
            warn(0, tr("the file ends inside the %1 table: %2 of %3 entries were read")
                        .arg(what).arg(room).arg(count));
            return quint32(room);
        }
        return count;
    };
    const quint32 paletteCount = fitting(h.paletteOffset, h.paletteCount, PaletteNodeSize, tr("palette"));
    const quint32 spriteCount = fitting(h.spriteOffset, h.spriteCount, SpriteNodeSize, tr("sprite"));
    const uint total = paletteCount + spriteCount;
    if (!progress(0, total))
        return Cancelled;

    in.seek(h.paletteOffset);
    std::vector<V2PaletteNode> palNodes(paletteCount);
    for (auto &node : palNodes)
        node = V2PaletteNode::read(in);
    in.seek(h.spriteOffset);
    std::vector<V2SpriteNode> sprNodes(spriteCount);
    owned.reserve(spriteCount);
    for (auto &node : sprNodes) {
        node = V2SpriteNode::read(in);
        auto item = std::make_unique<QSpriteItem>();
        item->filter = filterForCode(node.format);
        item->width = node.width;
        item->height = node.height;
        item->imageFormat = node.imageFormat();
        item->info.hasImage = node.length != 0;
        item->info.x = node.x;
        item->info.y = node.y;
        item->info.group = node.group;
        item->info.number = node.number;
        item->info.link = node.link;
        item->info.palette = node.palette;
        item->info.flags = node.flags;
        item->offset = node.offset;
        item->format = node.format;
        item->size = node.length;
        owned.push_back(std::move(item));
    }

    // Links that leave the list or run in a circle would leave sprites with
    // no image to show and the link flattening without an end.
    const std::vector<QSpriteItem *> items = itemPointers();
    for (size_t i = 0; i < items.size(); ++i)
        if (!items[i]->info.hasImage && chainEnd(items, int(i)) < 0) {
            refuseLink(int(i), items[i]->info.link);
            return Failed;
        }

    uint done = 0;
    for (const V2PaletteNode &node : palNodes) {
        auto pal = std::make_unique<QPaletteItem>();
        pal->hasColors = node.length != 0;
        pal->group = node.group;
        pal->number = node.number;
        pal->colorCount = node.colorCount;
        pal->link = node.link;
        pal->offset = node.offset;
        pal->size = node.length;
        pal->colors = zeroPal();
        if (pal->hasColors) {
            const qint64 start = qint64(h.ldataOffset) + node.offset;
            const qint64 wanted = qMin<qint64>(node.length, qint64(sizeof(QRGBPal)));
            in.clearOverrun();
            in.seek(start);
            const QByteArray bytes = in.bytes(wanted);
            std::memcpy(pal->colors.bytes(), bytes.constData(), size_t(bytes.size()));
            if (in.overrun())
                warn(0, tr("the colours of palette %1,%2 are cut short by the end of the file")
                            .arg(node.group).arg(node.number));
            if (version == Version200) {
                // This version kept no alpha: colour 0 is the transparent one.
                pal->colors[0].a = 0;
                for (int c = 1; c < 256; ++c)
                    pal->colors[c].a = 255;
            }
        }
        s.palettes.append(std::move(pal));
        if (!progress(++done, total))
            return Failed;
    }
    for (int p = 0; p < s.palettes.count(); ++p) {
        const QPaletteItem *pal = s.palettes.item(p);
        if (!pal->hasColors && s.palettes.root(p) < 0)
            warn(0, tr("palette %1,%2 is linked to the index %3, which leads to no colours")
                        .arg(pal->group).arg(pal->number).arg(pal->link));
    }

    for (size_t i = 0; i < items.size(); ++i) {
        QSpriteItem *item = items[i];
        const V2SpriteNode &node = sprNodes[i];
        if (item->info.hasImage) {
            const qint64 block = (node.flags & 1) ? h.tdataOffset : h.ldataOffset;
            in.clearOverrun();
            in.seek(block + qint64(node.offset));
            if (node.format == CodeRaw) {
                // Raw pixels come without the size word, packed line after
                // line: spread them into the padded layout of the cache.
                const QByteArray packed = in.bytes(node.length);
                const QSpriteSize size = item->spriteSize();
                if (size.imageFormat == QImage::Format_Indexed8) {
                    // Kept as RLE8: compact whatever size the node claims,
                    // and missing pixels decode as zeros.
                    item->filter = QBFCacheFilter::RLE8;
                    const QByteArray pixels = packed.left(qsizetype(size.width) * size.height);
                    item->cacheId = s.cache.add(QRLE8CacheFilter::encode(pixels), false);
                } else if (size.byteCount() > QPCXCacheFilter::MaxImageBytes) {
                    warn(int(i), tr("sprite %1,%2 is too large (%3 x %4) and is left empty")
                                     .arg(node.group).arg(node.number).arg(size.width).arg(size.height));
                    item->filter = QBFCacheFilter::None;
                    item->cacheId = s.cache.add(QByteArray(), true);
                } else {
                    item->filter = QBFCacheFilter::None;
                    item->cacheId = s.cache.add(rawToPadded(packed, size), true);
                }
            } else {
                in.u32(); // uncompressed size, not needed
                const QByteArray bytes = in.bytes(qint64(node.length) - 4);
                item->cacheId = s.cache.add(bytes, false);
            }
            if (in.overrun())
                warn(int(i), tr("the data of sprite %1,%2 is cut short by the end of the file")
                                 .arg(node.group).arg(node.number));
        }
        if (!progress(++done, total))
            return Failed;
    }
    return Loaded;
}

} // namespace

QByteArray Sff::rawToPadded(const QByteArray &packed, const QSpriteSize &size)
{
    if (size.isEmpty())
        return QByteArray();
    if (size.imageFormat == QImage::Format_Indexed8)
        return size.padLines(packed, size.width);
    // 24 and 32-bit raw pixels: blue, green, red (and alpha) per pixel, as
    // a little-endian word lays them out.
    const int bpp = size.imageFormat == QImage::Format_ARGB32 ? 4 : 3;
    QByteArray out(size.byteCount(), '\0');
    const qsizetype line = size.bytesPerLine();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const qsizetype src = (qsizetype(y) * size.width + x) * bpp;
            if (src + bpp > packed.size())
                return out;
            uchar *dst = reinterpret_cast<uchar *>(out.data()) + y * line + x * 4;
            dst[0] = uchar(packed[src]);
            dst[1] = uchar(packed[src + 1]);
            dst[2] = uchar(packed[src + 2]);
            dst[3] = bpp == 4 ? uchar(packed[src + 3]) : 0xFF;
        }
    return out;
}

bool QSprites::fromFile(const QString &path, bool isCharacter, bool keepName)
{
    QFile file(path);
    if (!file.exists() || !file.open(QIODevice::ReadOnly))
        return false;
    QBFCacheFilter::createFilters();

    const QString name = QFileInfo(path).fileName();
    const QPaletteList keptPalettes = palettes;
    clear();
    undoEnabled = false;
    // The palette list is filled directly; its views hear of it once.
    paletteObject.beginReset();

    // The whole file is mapped (or read) at once: three sweeps over it then
    // cost no system calls, and every offset is checked against its size.
    const qint64 size = file.size();
    QByteArray buffer;
    const uchar *data = size > 0 ? file.map(0, size) : nullptr;
    if (!data && size > 0) {
        buffer = file.readAll();
        data = reinterpret_cast<const uchar *>(buffer.constData());
    }
    SffReader reader(*this, name, data, data ? size : 0, isCharacter);

    ByteReader headIn(data, data ? size : 0);
    const Head head = Head::read(headIn);
    version = head.version;
    if (!head.signatureOk || !isSupported(head.version))
        paletteObject.endReset();
    if (!head.signatureOk)
        return false;
    if (!isSupported(head.version)) {
        if (messages)
            messages->addError(QCoreApplication::translate("QSprites", "%1(0): SFF version '%2.%3.%4.%5' not supported yet")
                                   .arg(name)
                                   .arg(head.version >> 24)
                                   .arg((head.version >> 16) & 0xFF)
                                   .arg((head.version >> 8) & 0xFF)
                                   .arg(head.version & 0xFF));
        return false;
    }

    const auto result = reader.read(head.version, keptPalettes);
    paletteObject.endReset();
    if (result == SffReader::Failed) {
        reader.owned.clear();
        clear();
        return false;
    }
    if (result == SffReader::Cancelled) {
        undoEnabled = true;
        return true;
    }

    if (!reader.owned.empty()) {
        beginInsertRows(QModelIndex(), 0, int(reader.owned.size()) - 1);
        sprites.reserve(qsizetype(reader.owned.size()));
        for (auto &item : reader.owned)
            sprites.append(item.release());
        endInsertRows();
    }
    reader.owned.clear();
    undoEnabled = true;

    // Every link points straight at a sprite with an image and shows its
    // size; the readers refused chains that leave the list or circle.
    std::vector<QSpriteItem *> items(sprites.begin(), sprites.end());
    for (size_t i = 0; i < items.size(); ++i)
        if (!items[i]->info.hasImage) {
            const int end = chainEnd(items, int(i));
            if (end >= 0 && size_t(end) != i) {
                items[i]->info.link = quint16(end);
                items[i]->setSpriteSize(items[size_t(end)]->spriteSize());
            }
        }

    if (!keepName)
        fileName = path;
    modified = false;
    emit changed();
    return true;
}

// -------------------------------------------------------------------------
// Writing
// -------------------------------------------------------------------------

namespace {

class SffWriter
{
public:
    SffWriter(QSprites &store, bool isCharacter, quint32 previous, quint32 version, bool lzSearch, bool temporary)
        : s(store), isCharacter(isCharacter), previous(previous), version(version), lzSearch(lzSearch),
          temporary(temporary),
          total(uint(store.paletteCount()) + 2 * uint(store.count()))
    {
    }

    void prepare();
    // Writes the whole file into `out`; false on cancel or error (reported).
    bool writeV1(QIODevice &out);
    bool writeV2(QIODevice &out);

    // True once a cancel or an error (already reported) stopped the writing.
    bool stopped = false;

private:
    void foldDuplicates();
    void flattenLinks();
    void convertTo8Bits();
    void markSharedPalettes();
    // Preparation only tells how far it got; it can't be cancelled.
    void announce(uint pos)
    {
        bool allow = true;
        emit s.progress(pos, total, allow);
    }
    bool progress(uint pos)
    {
        bool allow = true;
        emit s.progress(pos, total, allow);
        stopped |= !allow;
        return allow;
    }
    bool fail(int index, const char *reason)
    {
        stopped = true;
        emit s.fileError(tr("Sprite saving error"),
                         tr("An error occurred when saving the sprite %1.\n%2").arg(index).arg(tr(reason)));
        return false;
    }
    bool decoded(const QSpriteItem *item, QImage &image) const;
    quint8 chooseCode(const QSpriteItem *item) const;

    QSprites &s;
    bool isCharacter;
    quint32 previous;
    quint32 version;
    bool lzSearch;
    bool temporary;
    uint total;
};

void SffWriter::prepare()
{
    if (!temporary && s.count() >= 2) {
        announce(0);
        foldDuplicates();
    }
    flattenLinks();
    if (version == Version101 || version == Version200)
        convertTo8Bits();
    if (version == Version101)
        markSharedPalettes();
}

// Identical images stored the same way become links to the first of them,
// whether or not the user asked: the file gets smaller and nothing shows
// differently.
void SffWriter::foldDuplicates()
{
    QHash<size_t, QList<int>> seen;
    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    for (int i = 0; i < s.count(); ++i) {
        QSpriteItem *item = s.sprites[i];
        if (item->info.hasImage && item->cacheId != 0) {
            QByteArray bytes;
            s.cache.get(item->cacheId, bytes, byPass, item->spriteSize());
            const size_t key = qHashMulti(0, bytes, item->filter, int(item->imageFormat), item->width, item->height);
            QList<int> &candidates = seen[key];
            bool folded = false;
            for (qsizetype c = candidates.size() - 1; c >= 0; --c) {
                const QSpriteItem *other = s.sprites[candidates[c]];
                if (other->filter == item->filter && other->imageFormat == item->imageFormat
                    && other->width == item->width && other->height == item->height
                    && s.cache.same(other->cacheId, item->cacheId)) {
                    s.cache.remove(item->cacheId);
                    item->cacheId = 0;
                    item->info.hasImage = false;
                    item->info.link = quint16(candidates[c]);
                    folded = true;
                    break;
                }
            }
            if (!folded)
                candidates.append(i);
        }
        if (i > 0)
            announce(uint(i) + 1);
    }
}

void SffWriter::flattenLinks()
{
    std::vector<QSpriteItem *> items(s.sprites.begin(), s.sprites.end());
    for (size_t i = 0; i < items.size(); ++i)
        if (!items[i]->info.hasImage) {
            const int end = chainEnd(items, int(i));
            if (end >= 0)
                items[i]->info.link = quint16(end);
        }
}

// The two older versions are meant for indexed sprites. Index 0 is kept free
// for the transparent colour (it is what the engine leaves out), so the
// octree gets the 255 entries after it. A 2.00 file that already held PNG
// sprites of more bits keeps them when saved as 2.00 again: the file showed
// they are wanted, and re-saving must not degrade it.
void SffWriter::convertTo8Bits()
{
    for (int i = 0; i < s.count(); ++i) {
        const QSpriteItem *item = s.sprites[i];
        if (item->imageFormat == QImage::Format_Indexed8 || !item->info.hasImage || item->cacheId == 0)
            continue;
        if (version == Version200 && previous == Version200 && item->filter == QBFCacheFilter::PNG)
            continue;
        const QImage image = s.image(i);
        if (image.isNull())
            continue;
        const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
        QColorQuantizer quantizer(255, 8);
        for (int y = 0; y < argb.height(); ++y) {
            const QRgb *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
            for (int x = 0; x < argb.width(); ++x)
                if (qAlpha(line[x]) >= 128)
                    quantizer.addColor(line[x]);
        }
        QImage indexed = quantizer.toIndexed(argb, 1, 0);
        QList<QRgb> table = indexed.colorTable();
        table[0] = qRgba(0, 0, 0, 0);
        indexed.setColorTable(table);
        s.changeImage(i, indexed, 0, false, 0, 0);
    }
}

void SffWriter::markSharedPalettes()
{
    auto paletteGroup = [this](int palette) {
        const QPaletteItem *p = s.palettes.item(palette);
        return p ? int(p->group) : -1;
    };
    if (isCharacter) {
        // Sprites on the character's palettes share them through the
        // same-palette chain, which breaks wherever another palette
        // comes between.
        QList<uint> outOfOrder;
        for (int i = 0; i < s.count(); ++i) {
            const QSpriteItem *item = s.sprites[i];
            if (isPortrait(item->info.group, item->info.number))
                continue;
            if (paletteGroup(item->info.palette) == 1
                && (i == 0 || paletteGroup(s.sprites[i - 1]->info.palette) != 1))
                outOfOrder.append(uint(i));
        }
        if (!outOfOrder.isEmpty())
            emit s.orderMustBeChanged(outOfOrder);
    }
    for (int i = 0; i < s.count(); ++i)
        s.sprites[i]->offset = i > 0 && s.sprites[i]->info.palette == s.sprites[i - 1]->info.palette ? 1 : 0;
}

bool SffWriter::decoded(const QSpriteItem *item, QImage &image) const
{
    QByteArray raw;
    const QBFCacheFilter *filter = QBFCacheFilter::filter(item->filter);
    if (!s.cache.get(item->cacheId, raw, filter, item->spriteSize()))
        return false;
    image = item->spriteSize().toImage(raw);
    return true;
}

quint8 SffWriter::chooseCode(const QSpriteItem *item) const
{
    if (item->imageFormat == QImage::Format_ARGB32)
        return CodePNG32;
    if (item->imageFormat == QImage::Format_RGB32)
        return CodePNG24;
    // A palette index outside the list counts as a full palette.
    const QPaletteItem *pal = s.palettes.item(item->info.palette);
    if (pal && pal->colorCount == 32)
        return CodeLZ5;
    return version == Version200 ? CodeRLE8 : CodePNG8;
}

bool SffWriter::writeV1(QIODevice &out)
{
    QByteArray header;
    ByteWriter hw(header);
    V1Header h;
    h.images = quint32(s.count());
    h.write(hw);
    if (out.write(header) != header.size())
        return false;
    qint64 pos = HeaderSize;
    for (int i = 0; i < s.count(); ++i) {
        const QSpriteItem *item = s.sprites[i];
        QByteArray pcx;
        if (item->info.hasImage && item->cacheId != 0) {
            QImage image;
            if (!decoded(item, image))
                return fail(i, "Failed to retrieve the image data from cache.");
            if (image.format() == QImage::Format_Indexed8) {
                if (const QRGBPal *colors = s.palettes.colors(item->info.palette))
                    image.setColorTable(colors->toColorTable());
                else
                    image.setColorTable(QList<QRgb>(256, qRgb(0, 0, 0)));
            }
            pcx = QPCXCacheFilter::write(image);
            if (pcx.isEmpty())
                return fail(i, "Can't create the PCX file.");
            // The colour triples are left out when the previous sprite's
            // colours are to be used; the marker byte 12 stays.
            if (item->offset == 1 && pcx.size() > 768)
                pcx.chop(768);
        }
        V1Subheader sh;
        sh.length = quint32(pcx.size());
        sh.next = quint32(pos + SubheaderSize + pcx.size());
        sh.x = item->info.x;
        sh.y = item->info.y;
        sh.group = item->info.group;
        sh.number = item->info.number;
        sh.link = item->info.hasImage ? 0 : item->info.link;
        sh.samePalette = quint8(item->offset == 1);
        QByteArray sub;
        ByteWriter sw(sub);
        sh.write(sw);
        sub.append(pcx);
        if (out.write(sub) != sub.size())
            return false;
        pos += sub.size();
        if (!progress(uint(s.count()) + uint(i) + 1))
            return false;
    }
    return true;
}

bool SffWriter::writeV2(QIODevice &out)
{
    QByteArray ldata, tdata;
    ldata.reserve(qsizetype(s.cache.storedTotal()) + 1024 * s.paletteCount() + 8 * s.count());
    std::vector<V2PaletteNode> palNodes(size_t(s.paletteCount()));
    for (int p = 0; p < s.paletteCount(); ++p) {
        const QPaletteItem *pal = s.palettes.item(p);
        V2PaletteNode &node = palNodes[size_t(p)];
        node.group = pal->group;
        node.number = pal->number;
        node.colorCount = pal->colorCount;
        node.link = pal->link;
        if (pal->hasColors) {
            const int colors = pal->colorCount >= 1 && pal->colorCount <= 256 ? pal->colorCount : 256;
            node.offset = quint32(ldata.size());
            node.length = quint32(colors * 4);
            ldata.append(reinterpret_cast<const char *>(pal->colors.bytes()), colors * 4);
        }
        if (!progress(uint(s.count()) + uint(p) + 1))
            return false;
    }

    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    std::vector<V2SpriteNode> sprNodes(size_t(s.count()));
    for (int i = 0; i < s.count(); ++i) {
        QSpriteItem *item = s.sprites[i];
        V2SpriteNode &node = sprNodes[size_t(i)];
        node.group = item->info.group;
        node.number = item->info.number;
        node.width = item->width;
        node.height = item->height;
        node.x = item->info.x;
        node.y = item->info.y;
        node.link = item->info.link;
        node.palette = item->info.palette;
        node.flags = item->info.flags;
        QByteArray &block = (item->info.flags & 1) ? tdata : ldata;
        node.offset = quint32(block.size());
        if (!item->info.hasImage || item->cacheId == 0) {
            node.format = CodeLinked;
        } else {
            quint8 code = chooseCode(item);
            quint8 current = quint8(item->filter);
            if (item->filter == QBFCacheFilter::PNG)
                current = item->imageFormat == QImage::Format_ARGB32  ? CodePNG32
                          : item->imageFormat == QImage::Format_RGB32 ? CodePNG24
                                                                       : CodePNG8;
            QByteArray bytes;
            if (current == code) {
                if (!s.cache.get(item->cacheId, bytes, byPass, item->spriteSize()))
                    return fail(i, "Failed to retrieve the image data from cache.");
            } else {
                QImage image;
                if (!decoded(item, image))
                    return fail(i, "Failed to retrieve the image data from cache.");
                quint16 filter = QBFCacheFilter::PNG;
                if (code == CodeLZ5) {
                    // LZ5 keeps five bits of colour: a sprite with a higher
                    // index goes the other way of its version.
                    const QByteArray packed = QSpriteSize::packedPixels(image);
                    const bool fits = std::all_of(packed.begin(), packed.end(),
                                                  [](char c) { return uchar(c) < 32; });
                    if (fits) {
                        bytes = QLZ5CacheFilter::encode(packed, lzSearch);
                        filter = QBFCacheFilter::LZ5;
                    } else {
                        code = version == Version200 ? CodeRLE8 : CodePNG8;
                    }
                }
                if (code == CodeRLE8) {
                    bytes = QRLE8CacheFilter::encode(QSpriteSize::packedPixels(image));
                    filter = QBFCacheFilter::RLE8;
                } else if (code >= CodePNG8) {
                    bytes = QPNGCacheFilter::encode(image);
                    if (bytes.isEmpty())
                        return fail(i, "Can't compress the image.");
                }
                // The next save copies what was made now.
                if (!temporary && code != current && !bytes.isEmpty()) {
                    item->filter = filter;
                    s.cache.replace(item->cacheId, bytes, false);
                }
            }
            node.format = code;
            node.depth = depthForCode(code);
            node.length = quint32(bytes.size() + 4);
            ByteWriter bw(block);
            bw.u32(quint32(item->width) * item->height * quint32(bytesPerPixel(item->imageFormat)));
            bw.bytes(bytes);
        }
        if (!progress(uint(s.count()) + uint(s.paletteCount()) + uint(i) + 1))
            return false;
    }

    V2Header h;
    h.paletteOffset = HeaderSize;
    h.paletteCount = quint32(palNodes.size());
    h.spriteOffset = HeaderSize + PaletteNodeSize * h.paletteCount;
    h.spriteCount = quint32(sprNodes.size());
    h.ldataOffset = h.spriteOffset + SpriteNodeSize * h.spriteCount;
    h.ldataLength = quint32(ldata.size());
    h.tdataOffset = h.ldataOffset + h.ldataLength;
    h.tdataLength = quint32(tdata.size());
    QByteArray tables;
    tables.reserve(HeaderSize + PaletteNodeSize * palNodes.size() + SpriteNodeSize * sprNodes.size());
    ByteWriter tw(tables);
    h.write(tw, version);
    for (const auto &node : palNodes)
        node.write(tw);
    for (const auto &node : sprNodes)
        node.write(tw);
    return out.write(tables) == tables.size() && out.write(ldata) == ldata.size()
        && out.write(tdata) == tdata.size();
}

} // namespace

bool QSprites::toFile(const QString &path, bool isCharacter, quint32 newVersion, bool lzSearch, bool temporary)
{
    QBFCacheFilter::createFilters();
    const quint32 previous = version;
    if (newVersion != 0)
        version = newVersion;
    if (!isSupported(version))
        version = Version201; // the one that holds every kind of sprite

    SffWriter writer(*this, isCharacter, previous, version, lzSearch, temporary);
    writer.prepare();

    // The old file stays untouched until the new one is complete.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        emit fileError(tr("Sprite saving error"),
                       tr("Can't write the file \"%1\":\n%2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }
    bool allow = true;
    emit progress(uint(count()), uint(paletteCount()) + 2 * uint(count()), allow);
    const bool written = version == Version101 ? writer.writeV1(file) : writer.writeV2(file);
    if (!written) {
        const QString reason = file.errorString();
        file.cancelWriting();
        if (!writer.stopped)
            emit fileError(tr("Sprite saving error"),
                           tr("Can't write the file \"%1\":\n%2").arg(QDir::toNativeSeparators(path), reason));
        return false;
    }
    if (!file.commit()) {
        emit fileError(tr("Sprite saving error"),
                       tr("Can't write the file \"%1\":\n%2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }

    if (!temporary)
        fileName = path;
    modified = false;
    emit changed();
    return true;
}
