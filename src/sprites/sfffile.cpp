#include "sprites/sfffile.h"

#include "base/qmessages.h"
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
#include <QLocale>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <bitset>
#include <functional>
#include <optional>
#include <unordered_map>
#include <cstring>
#include <memory>
#include <utility>
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

quint16 ByteReader::slowU16()
{
    const quint16 lo = u8();
    return quint16(lo | (quint16(u8()) << 8));
}

quint32 ByteReader::slowU32()
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
    Head{true, QSffVersion::V101}.write(out);
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
    if (in.remaining() >= SpriteNodeSize) {
        // The usual case, read straight from the bytes.
        const uchar *b = in.current();
        n.group = qFromLittleEndian<quint16>(b);
        n.number = qFromLittleEndian<quint16>(b + 2);
        n.width = qFromLittleEndian<quint16>(b + 4);
        n.height = qFromLittleEndian<quint16>(b + 6);
        n.x = qFromLittleEndian<qint16>(b + 8);
        n.y = qFromLittleEndian<qint16>(b + 10);
        n.link = qFromLittleEndian<quint16>(b + 12);
        n.format = b[14];
        n.depth = b[15];
        n.offset = qFromLittleEndian<quint32>(b + 16);
        n.length = qFromLittleEndian<quint32>(b + 20);
        n.palette = qFromLittleEndian<quint16>(b + 24);
        n.flags = qFromLittleEndian<quint16>(b + 26);
        in.skip(SpriteNodeSize);
        return n;
    }
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
    // Laid out in place and appended at once: the writer emits thousands.
    char b[SpriteNodeSize];
    qToLittleEndian(group, b);
    qToLittleEndian(number, b + 2);
    qToLittleEndian(width, b + 4);
    qToLittleEndian(height, b + 6);
    qToLittleEndian(quint16(x), b + 8);
    qToLittleEndian(quint16(y), b + 10);
    qToLittleEndian(link, b + 12);
    b[14] = char(format);
    b[15] = char(depth);
    qToLittleEndian(offset, b + 16);
    qToLittleEndian(length, b + 20);
    qToLittleEndian(palette, b + 24);
    qToLittleEndian(flags, b + 26);
    out.bytes(b, SpriteNodeSize);
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

namespace Sff {

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
int chainEnd(QSpriteItem *const *items, int n, int index)
{
    for (int steps = 0; steps <= n; ++steps) {
        if (index < 0 || index >= n)
            return -1;
        const QSpriteItem *it = items[index];
        if (it->info.hasImage || it->info.link == index)
            return index;
        index = it->info.link;
    }
    return -1;
}

// -------------------------------------------------------------------------
// Reading
// -------------------------------------------------------------------------

// Sprite records made by a load and not yet handed to the store.
class ItemList
{
public:
    explicit ItemList(QSpriteItemPool &pool) : m_pool(pool) {}
    ItemList(const ItemList &) = delete;
    ItemList &operator=(const ItemList &) = delete;
    ~ItemList() { clear(); }

    void clear()
    {
        m_pool.destroyMany(m_items.data(), qsizetype(m_items.size()));
        m_items.clear();
    }
    // Appends `count` fresh records.
    void grow(qsizetype count)
    {
        const size_t start = m_items.size();
        m_items.resize(start + size_t(count));
        m_pool.createMany(m_items.data() + start, count);
    }
    // A fresh record outside the list, given back to the pool unless pushed.
    struct Drop
    {
        QSpriteItemPool *pool;
        void operator()(QSpriteItem *item) const { pool->destroy(item); }
    };
    using Item = std::unique_ptr<QSpriteItem, Drop>;
    Item make() { return Item(m_pool.create(), Drop{&m_pool}); }
    void push(Item item) { m_items.push_back(item.release()); }
    // Hands the records over; the list is left empty.
    std::vector<QSpriteItem *> release() { return std::exchange(m_items, {}); }

    size_t size() const { return m_items.size(); }
    bool empty() const { return m_items.empty(); }
    QSpriteItem *operator[](size_t i) const { return m_items[i]; }
    const std::vector<QSpriteItem *> &pointers() const { return m_items; }

private:
    QSpriteItemPool &m_pool;
    std::vector<QSpriteItem *> m_items;
};

// The issues of one load. Damage seldom comes alone: the same damage on
// consecutive sprites (or palettes) is one issue that counts the rest, and a
// file lists at most MaxIssues, so that a damaged count can't bury the list
// or cost memory by itself.
class IssueLog
{
public:
    enum Kind { FileEnds, SpriteCut, SpriteUnreadable, NoColours, TableShort, PaletteCut, PaletteNoColours, TooLarge };
    static constexpr int MaxIssues = 200;

    IssueLog(QMessages *messages, const QString &name) : m_messages(messages), m_name(name) {}
    IssueLog(const IssueLog &) = delete;
    IssueLog &operator=(const IssueLog &) = delete;
    ~IssueLog() { finish(); }

    // Damage of sprite (or palette) `index`, reported at `line`; `rest`
    // names the rest of a run: "more sprites cut short".
    void add(Kind kind, int index, int line, const QString &text, const char *rest)
    {
        if (kind == m_run.kind && index == m_run.last + 1) {
            m_run.last = index;
            ++m_run.extra;
            return;
        }
        flush();
        m_run = Run{int(kind), line, index, 0, text, rest};
    }
    void finish()
    {
        flush();
        if (m_unlisted > 0 && m_messages)
            m_messages->addWarning(tr("%1(0): ... and %2 more issues not listed").arg(m_name, count(m_unlisted)));
        m_unlisted = 0;
    }

private:
    static QString count(qint64 n)
    {
        QLocale c = QLocale::c();
        c.setNumberOptions(QLocale::DefaultNumberOptions);
        return c.toString(n);
    }
    void flush()
    {
        if (m_run.kind < 0)
            return;
        if (m_listed >= MaxIssues) {
            m_unlisted += 1;
        } else {
            ++m_listed;
            QString text = m_run.text;
            if (m_run.extra > 0)
                text += QStringLiteral(" ... ") + tr("and %1 %2").arg(count(m_run.extra), tr(m_run.rest));
            if (m_messages)
                m_messages->addWarning(QStringLiteral("%1(%2): %3").arg(m_name).arg(m_run.line).arg(text));
        }
        m_run = Run();
    }
    struct Run
    {
        int kind = -1;
        int line = 0;
        int last = 0;
        qint64 extra = 0;
        QString text;
        const char *rest = nullptr;
    };
    QMessages *m_messages;
    QString m_name;
    Run m_run;
    int m_listed = 0;
    qint64 m_unlisted = 0;
};

class SffReader
{
public:
    // `data` holds the file's `size` bytes: those of `wholeFile`, an array
    // the cache may share.
    SffReader(QSprites &store, const QString &name, const uchar *data, qint64 size,
              const QByteArray &wholeFile, bool isCharacter)
        : owned(store.m_itemPool), s(store), name(name), in(data, size), data(data), wholeFile(wholeFile),
          isCharacter(isCharacter), issues(store.m_messages, name)
    {
    }

    enum Result { Failed, Loaded, Cancelled };

    // Reads everything after the head; the sprites read are left in `items`.
    Result read(quint32 version, const QPaletteList &keptPalettes);

    ItemList owned;
    // Some sprite read is a link (or empty).
    bool anyLink = false;

private:
    Result readV1(const QPaletteList &keptPalettes);
    Result readV2(quint32 version);
    bool progress(uint pos, uint max)
    {
        // No progress bar shows more than about a thousand steps: a large
        // file is reported every few sprites.
        const uint step = max / 1024 + 1;
        if (pos != 0 && pos != max && pos % step != 0)
            return true;
        bool allow = true;
        emit s.progress(pos, max, allow);
        return allow;
    }
    // Sprite issues are reported at the sprite's index, palette issues at 0.
    void warn(IssueLog::Kind kind, int sprite, const QString &text, const char *rest)
    {
        issues.add(kind, sprite, sprite, text, rest);
    }
    void warnPalette(IssueLog::Kind kind, int palette, const QString &text, const char *rest)
    {
        issues.add(kind, palette, 0, text, rest);
    }
    void refuseLink(int index, int link)
    {
        issues.finish();
        const QString text = tr("%1(%2): Sprite incorrectly linked to the index %3").arg(name).arg(index).arg(link);
        if (s.m_messages)
            s.m_messages->addError(text);
        emit s.fileError(tr("Sprite loading error"), text);
    }
    QSprites &s;
    QString name;
    ByteReader in;
    const uchar *data;
    QByteArray wholeFile;
    bool isCharacter;

public:
    IssueLog issues;
};

SffReader::Result SffReader::read(quint32 version, const QPaletteList &keptPalettes)
{
    return version == QSffVersion::V101 ? readV1(keptPalettes) : readV2(version);
}

SffReader::Result SffReader::readV1(const QPaletteList &keptPalettes)
{
    // A character's palette files come before its sprites: keep them.
    s.m_palettes = keptPalettes;
    const V1Header header = V1Header::read(in);
    const uint images = header.images;
    if (!progress(0, images))
        return Failed;

    int charPal = s.m_palettes.find(0, 1, 1);
    int last = 0;
    qint64 pos = HeaderSize;
    // Nothing is decoded here: size and format come from the PCX header,
    // colours from its tail, and the stored bytes stay slices of the file's.
    // A stream is walked only for colours that aren't in the tail.
    std::vector<QSpriteCache::Slice> slices;
    std::vector<QSpriteItem *> sliceOwners;
    const qint64 sliceable = qMin<qint64>(in.size(), 0xFFFFFFFFll);
    // Palettes by their colours, for the lookup that shares equal ones.
    std::unordered_multimap<size_t, int> byColours;
    for (int p = 0; p < s.m_palettes.count(); ++p)
        byColours.emplace(qHashBits(s.m_palettes.item(p)->colors.bytes(), sizeof(QRGBPal)), p);
    auto addPalette = [&](const QRGBPal &colors, qint16 group) {
        const size_t key = qHashBits(colors.bytes(), sizeof(QRGBPal));
        int found = -1;
        for (auto [it, end] = byColours.equal_range(key); it != end; ++it)
            if (s.m_palettes.item(it->second)->colors == colors && (found < 0 || it->second < found))
                found = it->second;
        if (found >= 0)
            return found;
        const int added = s.m_palettes.add(colors, false, group, -1);
        byColours.emplace(key, added);
        return added;
    };
    for (uint i = 0; i < images; ++i) {
        if (in.size() - pos < SubheaderSize) {
            warn(IssueLog::FileEnds, int(i),
                 tr("the file ends before sprite %1: %2 of %3 sprites were read").arg(i).arg(i).arg(images), "");
            break;
        }
        in.seek(pos);
        const V1Subheader sh = V1Subheader::read(in);
        const qint64 dataStart = pos + SubheaderSize;
        const bool nextValid = sh.next != 0 && qint64(sh.next) >= dataStart && qint64(sh.next) <= in.size();

        ItemList::Item item = owned.make();
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
                warn(IssueLog::SpriteCut, int(i),
                     tr("the data of sprite %1,%2 is cut short by the end of the file").arg(sh.group).arg(sh.number),
                     QT_TR_NOOP("more sprites cut short"));
                count = in.size() - dataStart;
            }
            const QByteArrayView stored(data + dataStart, qsizetype(count));
            pos = dataStart + count;

            const QPCXCacheFilter::Layout pcx = QPCXCacheFilter::header(stored);
            if (pcx.isNull())
                warn(IssueLog::SpriteUnreadable, int(i),
                     tr("the image of sprite %1,%2 can't be read").arg(sh.group).arg(sh.number),
                     QT_TR_NOOP("more sprites that can't be read"));
            item->width = quint16(pcx.width);
            item->height = quint16(pcx.height);
            item->imageFormat = pcx.isNull() ? QImage::Format_Indexed8 : pcx.format;
            // Colours are looked for only where they are asked for.
            const bool portrait = isCharacter && isPortrait(sh.group, sh.number);
            const bool sharing = portrait ? charPal >= 0 : i != 0 && sh.samePalette == 1;
            const QList<QRgb> table = sharing || pcx.isNull() ? QList<QRgb>() : QPCXCacheFilter::colorTable(stored);

            int pal;
            if (portrait) {
                if (charPal < 0) {
                    QRGBPal colors = table.isEmpty() ? zeroPal() : spritePal(table);
                    if (table.isEmpty())
                        emit s.charPalette(&colors); // the project supplies the colours as they are
                    charPal = s.m_palettes.add(colors, false, 1, 1);
                    byColours.emplace(qHashBits(colors.bytes(), sizeof(QRGBPal)), charPal);
                }
                pal = charPal;
            } else if (sharing || (table.isEmpty() && !owned.empty())) {
                pal = last;
            } else {
                if (table.isEmpty())
                    warn(IssueLog::NoColours, int(i),
                         tr("sprite %1,%2 has no colours of its own and none to share").arg(sh.group).arg(sh.number),
                         QT_TR_NOOP("more sprites without colours"));
                pal = addPalette(table.isEmpty() ? zeroPal() : spritePal(table), qint16(sh.group));
            }
            item->info.palette = quint16(pal);

            // Pixels past a short palette are moved to an index of the same
            // colour inside it, so that the sprite can later be packed as LZ5.
            // Never to index 0, which shows nothing. That happens as the
            // sprite is decoded, through a filter of its own (which finds out
            // whether the file has colours to move by), and the stored bytes
            // stay as they are. Only a stream that could hold the pixels is
            // moved: a damaged header must not cost memory the file's bytes
            // don't justify.
            const QPaletteItem *palItem = s.m_palettes.item(pal);
            const int colorCount = palItem ? palItem->colorCount : 256;
            const qint64 claimed = qint64(pcx.width) * pcx.height;
            const bool shortPalette = pcx.format == QImage::Format_Indexed8 && colorCount < 256
                                      && (sharing || table.size() == 256)
                                      && claimed <= 64 * qint64(stored.size()) + 65536;
            if (shortPalette && colorCount != QPCXShortPaletteFilter::ColorCount) {
                // A palette of another length (from a palette file): the
                // pixels are moved now.
                const QByteArray copy = stored.toByteArray();
                uchar remap[256];
                QPCXCacheFilter::shortPaletteRemap(copy, colorCount, remap);
                QImage img = QPCXCacheFilter::read(copy);
                bool changed = false;
                for (int y = 0; y < img.height(); ++y) {
                    uchar *line = img.scanLine(y);
                    for (int x = 0; x < img.width(); ++x)
                        if (remap[line[x]] != line[x]) {
                            line[x] = remap[line[x]];
                            changed = true;
                        }
                }
                item->filter = changed ? QBFCacheFilter::None : QBFCacheFilter::PCX;
                item->cacheId = s.m_cache.add(changed ? QSpriteSize::rawBytes(img) : copy, changed);
            } else {
                if (shortPalette)
                    item->filter = QBFCacheFilter::PCXShortPalette;
                if (dataStart + count <= sliceable) {
                    slices.push_back({quint32(dataStart), quint32(count)});
                    sliceOwners.push_back(item.get());
                } else {
                    item->cacheId = s.m_cache.add(stored.toByteArray(), false);
                }
            }
            last = pal;
        } else {
            pos = nextValid ? qint64(sh.next) : dataStart;
            if (sh.link >= owned.size()) {
                refuseLink(int(i), sh.link);
                return Failed;
            }
            int target = sh.link;
            for (size_t steps = 0;; ++steps) {
                const QSpriteItem *t = owned[size_t(target)];
                if (t->info.hasImage || target == 0)
                    break;
                if (t->info.link == target || t->info.link >= owned.size() || steps > owned.size()) {
                    refuseLink(int(i), sh.link);
                    return Failed;
                }
                target = t->info.link;
            }
            const QSpriteItem *t = owned[size_t(target)];
            item->setSpriteSize(t->spriteSize());
            item->info.palette = sh.samePalette == 1 ? quint16(last) : t->info.palette;
            last = item->info.palette;
        }
        anyLink |= !item->info.hasImage;
        owned.push(std::move(item));
        if (!progress(i + 1, images))
            return Failed;
    }
    if (!slices.empty()) {
        std::vector<quint32> ids(slices.size());
        s.m_cache.addSlices(wholeFile, slices.data(), qsizetype(slices.size()), ids.data());
        for (size_t k = 0; k < ids.size(); ++k)
            sliceOwners[k]->cacheId = ids[k];
    }
    return Loaded;
}

SffReader::Result SffReader::readV2(quint32 version)
{
    s.m_palettes.clear();
    const V2Header h = V2Header::read(in);

    // Counts are trusted only as far as their tables have room: up to the
    // next part of the file that starts after a table (the other table, a
    // data block that holds anything) or the end of the file. So a damaged
    // count costs nothing but the warning, and memory follows the bytes.
    auto fitting = [&](quint32 offset, quint32 count, int nodeSize, quint32 most, const QString &what) {
        qint64 end = in.size();
        const std::pair<qint64, bool> parts[] = {{h.paletteOffset, h.paletteCount != 0},
                                                  {h.spriteOffset, h.spriteCount != 0},
                                                  {h.ldataOffset, h.ldataLength != 0},
                                                  {h.tdataOffset, h.tdataLength != 0}};
        for (const auto &[start, used] : parts)
            if (used && start > qint64(offset) && start < end)
                end = start;
        const qint64 room = qMin<qint64>(qint64(offset) <= end ? (end - qint64(offset)) / nodeSize : 0, most);
        if (qint64(count) > room) {
            warnPalette(IssueLog::TableShort, 0,
                        tr("the %1 table has room for %2 of the %3 entries the header claims")
                            .arg(what).arg(room).arg(count), "");
            return quint32(room);
        }
        return count;
    };
    // Palettes beyond the reach of a 16-bit index can't be used by anything.
    const quint32 paletteCount = fitting(h.paletteOffset, h.paletteCount, PaletteNodeSize, 0x10000, tr("palette"));
    const quint32 spriteCount = fitting(h.spriteOffset, h.spriteCount, SpriteNodeSize, 0xFFFFFFFFu, tr("sprite"));
    const uint total = paletteCount + spriteCount;
    if (!progress(0, total))
        return Cancelled;

    in.seek(h.paletteOffset);
    std::vector<V2PaletteNode> palNodes(paletteCount);
    for (auto &node : palNodes)
        node = V2PaletteNode::read(in);
    // Stored bytes that lie inside their data block become slices of the
    // file's bytes, shared by the cache; the rest (raw pixels, and data that
    // lies outside its block in a damaged file) is copied sprite by sprite.
    struct Shared
    {
        qint64 offset = 0, end = 0; // the block in the file
        std::vector<QSpriteCache::Slice> slices;
        std::vector<QSpriteItem *> owners;
    } shared[2];
    shared[0].offset = h.ldataOffset;
    shared[0].end = qint64(h.ldataOffset) + h.ldataLength;
    shared[1].offset = h.tdataOffset;
    shared[1].end = qint64(h.tdataOffset) + h.tdataLength;
    for (Shared &b : shared) {
        // Slices are placed by 32-bit offsets.
        b.end = qMin<qint64>(qMin<qint64>(b.end, in.size()), 0xFFFFFFFFll);
        b.slices.reserve(spriteCount);
        b.owners.reserve(spriteCount);
    }

    // One sweep over the node table fills the records and sorts the sprites
    // into links, slices and copies.
    std::vector<std::pair<size_t, V2SpriteNode>> copies;
    std::vector<size_t> links;
    in.seek(h.spriteOffset);
    owned.grow(spriteCount);
    for (size_t i = 0; i < spriteCount; ++i) {
        const V2SpriteNode node = V2SpriteNode::read(in);
        QSpriteItem *item = owned[i];
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
        if (node.length == 0) {
            links.push_back(i);
            continue;
        }
        Shared &b = shared[node.flags & 1];
        // After the four-byte size word, which isn't needed.
        const qint64 from = b.offset + qint64(node.offset) + 4;
        if (node.format != CodeRaw && node.length >= 4 && from + qint64(node.length) - 4 <= b.end) {
            b.slices.push_back({quint32(from), node.length - 4});
            b.owners.push_back(item);
        } else {
            copies.emplace_back(i, node);
        }
    }

    // Links that leave the list or run in a circle would leave sprites with
    // no image to show and the link flattening without an end.
    const std::vector<QSpriteItem *> &items = owned.pointers();
    anyLink = !links.empty();
    for (size_t i : links)
        if (chainEnd(items.data(), int(items.size()), int(i)) < 0) {
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
                warnPalette(IssueLog::PaletteCut, int(done),
                            tr("the colours of palette %1,%2 are cut short by the end of the file")
                                .arg(node.group).arg(node.number),
                            QT_TR_NOOP("more palettes cut short"));
            if (version == QSffVersion::V200) {
                // This version kept no alpha: colour 0 is the transparent one.
                pal->colors[0].a = 0;
                for (int c = 1; c < 256; ++c)
                    pal->colors[c].a = 255;
            }
        }
        s.m_palettes.append(std::move(pal));
        if (!progress(++done, total))
            return Failed;
    }
    for (int p = 0; p < s.m_palettes.count(); ++p) {
        const QPaletteItem *pal = s.m_palettes.item(p);
        if (!pal->hasColors && s.m_palettes.root(p) < 0)
            warnPalette(IssueLog::PaletteNoColours, p,
                        tr("palette %1,%2 is linked to the index %3, which leads to no colours")
                            .arg(pal->group).arg(pal->number).arg(pal->link),
                        QT_TR_NOOP("more palettes without colours"));
    }

    auto copy = copies.cbegin();
    for (size_t i = 0; i < items.size(); ++i) {
        if (copy != copies.cend() && copy->first == i) {
            QSpriteItem *item = items[i];
            const V2SpriteNode &node = copy->second;
            ++copy;
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
                    item->cacheId = s.m_cache.add(QRLE8CacheFilter::encode(pixels), false);
                } else if (size.byteCount() > QPCXCacheFilter::MaxImageBytes
                           || size.byteCount() > 2 * packed.size() + (1 << 20)) {
                    // Too large to hold, or so far beyond its bytes that
                    // spreading them would cost memory the file doesn't have.
                    warn(IssueLog::TooLarge, int(i),
                         tr("sprite %1,%2 is too large (%3 x %4) and is left empty")
                             .arg(node.group).arg(node.number).arg(size.width).arg(size.height),
                         QT_TR_NOOP("more sprites left empty"));
                    item->filter = QBFCacheFilter::None;
                    item->cacheId = s.m_cache.add(QByteArray(), true);
                } else {
                    item->filter = QBFCacheFilter::None;
                    item->cacheId = s.m_cache.add(rawToPadded(packed, size), true);
                }
            } else {
                in.u32(); // uncompressed size, not needed
                const QByteArray bytes = in.bytes(qint64(node.length) - 4);
                item->cacheId = s.m_cache.add(bytes, false);
            }
            if (in.overrun())
                warn(IssueLog::SpriteCut, int(i),
                     tr("the data of sprite %1,%2 is cut short by the end of the file").arg(node.group).arg(node.number),
                     QT_TR_NOOP("more sprites cut short"));
        }
        if (!progress(++done, total))
            return Failed;
    }

    std::vector<quint32> ids;
    for (Shared &b : shared) {
        if (b.slices.empty())
            continue;
        ids.resize(b.slices.size());
        s.m_cache.addSlices(wholeFile, b.slices.data(), qsizetype(b.slices.size()), ids.data());
        for (size_t k = 0; k < ids.size(); ++k)
            b.owners[k]->cacheId = ids[k];
    }
    return Loaded;
}

} // namespace Sff

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
    if (!file.exists() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    QBFCacheFilter::createFilters();

    const QString name = QFileInfo(path).fileName();
    const QPaletteList keptPalettes = m_palettes;
    clear();
    m_undoEnabled = false;
    // The palette list is filled directly; its views hear of it once.
    m_paletteObject.beginReset();

    // The whole file is read at once, in one call: the sweeps over it then
    // cost no system calls, every offset is checked against its size, and
    // the sprites' stored bytes stay where they are, shared with the cache.
    QByteArray buffer(qsizetype(qMax<qint64>(0, file.size())), Qt::Uninitialized);
    const qint64 got = buffer.isEmpty() ? 0 : file.read(buffer.data(), buffer.size());
    buffer.resize(qsizetype(qMax<qint64>(0, got)));
    file.close();
    const uchar *data = reinterpret_cast<const uchar *>(buffer.constData());
    const qint64 size = buffer.size();
    SffReader reader(*this, name, data, size, buffer, isCharacter);

    ByteReader headIn(data, size);
    const Head head = Head::read(headIn);
    m_version = head.version;
    if (!head.signatureOk || !QSffVersion::isSupported(head.version))
        m_paletteObject.endReset();
    if (!head.signatureOk)
        return false;
    if (!QSffVersion::isSupported(head.version)) {
        if (m_messages)
            m_messages->addError(QCoreApplication::translate("QSprites", "%1(0): SFF version '%2.%3.%4.%5' not supported yet")
                                   .arg(name)
                                   .arg(head.version >> 24)
                                   .arg((head.version >> 16) & 0xFF)
                                   .arg((head.version >> 8) & 0xFF)
                                   .arg(head.version & 0xFF));
        return false;
    }

    const auto result = reader.read(head.version, keptPalettes);
    reader.issues.finish();
    m_paletteObject.endReset();
    if (result == SffReader::Failed) {
        reader.owned.clear();
        clear();
        return false;
    }
    if (result == SffReader::Cancelled) {
        m_undoEnabled = true;
        return true;
    }

    const bool anyLink = reader.anyLink;
    if (!reader.owned.empty()) {
        const std::vector<QSpriteItem *> items = reader.owned.release();
        beginInsertRows(QModelIndex(), 0, int(items.size()) - 1);
        m_sprites = QList<QSpriteItem *>(items.begin(), items.end());
        endInsertRows();
    }
    m_undoEnabled = true;

    // Every link points straight at a sprite with an image and shows its
    // size; the readers refused chains that leave the list or circle.
    QSpriteItem *const *items = m_sprites.constData();
    const int n = anyLink ? count() : 0;
    for (int i = 0; i < n; ++i)
        if (!items[i]->info.hasImage) {
            const int end = chainEnd(items, n, i);
            if (end >= 0 && end != i) {
                items[i]->info.link = quint16(end);
                items[i]->setSpriteSize(items[end]->spriteSize());
            }
        }

    if (!keepName)
        m_fileName = path;
    m_modified = false;
    emit changed();
    return true;
}

// -------------------------------------------------------------------------
// Writing
// -------------------------------------------------------------------------

namespace Sff {

// A data block of the file being written, kept as pieces that point where
// the bytes are (the stored bytes of sprites stay in the cache's arrays), then
// written in writes of about a megabyte: every write of a file costs a system
// call and file-system bookkeeping, whatever its size. Pieces are gathered
// by one sequential copy, which the processor streams; checking whether
// stored bytes already lie back to back with the right size words between
// them would cost a cache miss per sprite, more than the copy.
class OutBlock
{
public:
    qint64 size() const { return m_size; }

    void append(QByteArray bytes)
    {
        const qsizetype length = bytes.size();
        m_pieces.push_back(Piece{bytes.constData(), length, 0, false});
        keep(std::move(bytes));
        m_size += length;
    }

    // `length` bytes of `bytes` from `from`; the array must not change
    // (grow, or be written to) while the block is in use.
    void appendPart(const QByteArray &bytes, qsizetype from, qsizetype length)
    {
        m_pieces.push_back(Piece{bytes.constData() + from, length, 0, false});
        keep(bytes);
        m_size += length;
    }

    // A four-byte word, then stored bytes.
    void appendStored(quint32 word, QByteArray bytes)
    {
        const qsizetype length = bytes.size();
        m_pieces.push_back(Piece{bytes.constData(), length, word, true});
        keep(std::move(bytes));
        m_size += 4 + length;
    }

    bool writeTo(QIODevice &out) const
    {
        constexpr qsizetype Gather = 1 << 20;
        QByteArray staging(Gather, Qt::Uninitialized);
        qsizetype used = 0;
        auto flush = [&] {
            const bool ok = out.write(staging.constData(), used) == used;
            used = 0;
            return ok;
        };
        for (const Piece &p : m_pieces) {
            if (p.hasWord) {
                if (used + 4 > Gather && !flush())
                    return false;
                qToLittleEndian(p.word, staging.data() + used);
                used += 4;
            }
            if (p.length >= Gather / 2) {
                if (!flush() || out.write(p.data, p.length) != p.length)
                    return false;
                continue;
            }
            if (used + p.length > Gather && !flush())
                return false;
            std::memcpy(staging.data() + used, p.data, size_t(p.length));
            used += p.length;
        }
        return flush();
    }

private:
    // Holds the arrays the pieces point into; one reference per run of
    // pieces in the same array is enough.
    void keep(QByteArray bytes)
    {
        QArrayData *array = bytes.data_ptr().d_ptr();
        if (!array || m_keep.empty() || m_keep.back().data_ptr().d_ptr() != array)
            m_keep.push_back(std::move(bytes));
    }

    struct Piece
    {
        const char *data;
        qsizetype length;
        quint32 word;
        bool hasWord;
    };
    std::vector<Piece> m_pieces;
    std::vector<QByteArray> m_keep;
    qint64 m_size = 0;
};

// Colours as an indexed sprite shows them: index 0 transparent, every other
// entry opaque. The engine shows no palette alpha on indexed sprites, and
// not every version keeps it, so it takes no part in comparisons.
using Shown = std::array<QRgb, 256>;

Shown shownColours(const QRGBPal *pal)
{
    Shown out;
    out[0] = 0;
    for (int k = 1; k < 256; ++k)
        out[k] = 0xFF000000u | (pal ? pal->colors[k].rgba() & 0xFFFFFFu : 0u);
    return out;
}

// A pixel as it shows: fully transparent pixels all alike.
QRgb shownPixel(QRgb argb)
{
    return qAlpha(argb) == 0 ? 0 : argb;
}

// One sprite of the file being written. The store is only read: whatever
// the version needs (links folded or flattened, 8-bit pixels, new palettes)
// lives here and goes into the file's bytes alone.
struct Planned
{
    QSpriteInfo info; // hasImage: the file holds data for it; link and palette as written
    QSpriteSize size;
    // The store's sprite whose cached bytes hold the pixels; -1 when `image`
    // holds them, or when there are none.
    int source = -1;
    // Pixels to write instead of stored bytes: an 8-bit reduction, or a
    // blank for a sprite that shows nothing.
    QImage image;
    // The planned sprite whose pixels this one shows (itself for an owner).
    int pixelsOf = -1;

    // Version 1 only.
    enum Data : quint8 { Stored, StoredWithoutTable, StoredWithTable, Encoded };
    Data data = Encoded;
    quint8 samePalette = 0;
    // Palette (in the plan's list) whose colours the PCX carries; -1: none.
    int table = -1;
};

// What a version 1 reader will make of the file: its palettes as they show,
// with the colour count it gives each.
struct ReadPalette
{
    Shown shown;
    int colorCount;
};

class SffPlan
{
public:
    SffPlan(const QSprites &store, quint32 version, bool isCharacter)
        : palettes(store.m_palettes), s(store), version(version), previous(store.m_version), isCharacter(isCharacter)
    {
    }

    // `fold` looks for duplicate images; `announce` hears how far it got.
    void build(bool fold, const std::function<void(uint)> &announce);
    // Sprites on the character's palettes that the same-palette chain of
    // version 1 can't reach (another palette comes between).
    QList<uint> outOfOrder() const;

    std::vector<Planned> sprites;
    QPaletteList palettes;
    // Sprites that will show other colours once the file is read back.
    QList<uint> changed;

    // The pixels a planned sprite writes, decoded; null if there are none.
    QImage pixels(const Planned &p) const;

private:
    void foldDuplicates(std::vector<int> &foldedInto, const std::function<void(uint)> &announce);
    void reduceTo8Bits(std::vector<char> &lost);
    void layoutVersion1(std::vector<char> &lost);
    // Colour indices the pixels of planned sprite `i` use.
    const std::bitset<256> &usedIndices(int i);

    const QSprites &s;
    quint32 version;
    quint32 previous;
    bool isCharacter;
    std::vector<std::optional<std::bitset<256>>> used;
};

QImage SffPlan::pixels(const Planned &p) const
{
    if (!p.image.isNull())
        return p.image;
    const QSpriteItem *item = s.item(p.source);
    if (!item || item->cacheId == 0 || p.size.isEmpty())
        return QImage();
    QByteArray raw;
    if (!s.m_cache.get(item->cacheId, raw, QBFCacheFilter::filter(item->filter), p.size))
        return QImage();
    return p.size.toImage(raw);
}

const std::bitset<256> &SffPlan::usedIndices(int i)
{
    const int from = sprites[size_t(i)].pixelsOf;
    std::optional<std::bitset<256>> &memo = used[size_t(from < 0 ? i : from)];
    if (!memo) {
        memo.emplace();
        const QImage image = from < 0 ? QImage() : pixels(sprites[size_t(from)]);
        if (image.format() == QImage::Format_Indexed8)
            for (int y = 0; y < image.height(); ++y) {
                const uchar *line = image.constScanLine(y);
                for (int x = 0; x < image.width(); ++x)
                    memo->set(line[x]);
            }
    }
    return *memo;
}

void SffPlan::build(bool fold, const std::function<void(uint)> &announce)
{
    const int n = s.count();
    sprites.resize(size_t(n));
    used.assign(size_t(n), std::nullopt);
    QSpriteItem *const *items = s.m_sprites.constData();
    for (int i = 0; i < n; ++i) {
        const QSpriteItem *item = items[i];
        Planned &p = sprites[size_t(i)];
        p.info = item->info;
        if (item->info.hasImage && item->cacheId != 0) {
            p.source = i;
            p.pixelsOf = i;
            p.size = item->spriteSize();
        }
    }

    std::vector<int> foldedInto(size_t(n), -1);
    if (fold && n >= 2)
        foldDuplicates(foldedInto, announce);

    // Links point straight at the sprite that owns the pixels, as the
    // readers want them. A sprite that shows nothing at all is written as a
    // blank pixel: the versions hold no empty sprite that every reader takes.
    for (int i = 0; i < n; ++i) {
        Planned &p = sprites[size_t(i)];
        if (p.source == i || foldedInto[size_t(i)] >= 0)
            continue;
        int root = items[i]->info.hasImage ? -1 : chainEnd(items, n, i);
        if (root >= 0 && foldedInto[size_t(root)] >= 0)
            root = foldedInto[size_t(root)];
        if (root >= 0 && root != i && sprites[size_t(root)].source == root) {
            p.info.hasImage = false;
            p.info.link = quint16(root);
            p.size = sprites[size_t(root)].size;
            p.pixelsOf = root;
        } else {
            p.info.hasImage = true;
            p.info.link = 0;
            p.image = QImage(1, 1, QImage::Format_Indexed8);
            p.image.fill(0);
            p.size = QSpriteSize::of(p.image);
            p.pixelsOf = i;
        }
    }

    std::vector<char> lost(size_t(n), 0);
    if (version == QSffVersion::V101 || version == QSffVersion::V200)
        reduceTo8Bits(lost);
    if (version == QSffVersion::V101)
        layoutVersion1(lost);
    for (int i = 0; i < n; ++i)
        if (lost[size_t(i)] || (sprites[size_t(i)].pixelsOf >= 0 && lost[size_t(sprites[size_t(i)].pixelsOf)]))
            changed.append(uint(i));
}

// What tells most stored images apart without reading them whole: shape,
// length, and eight bytes from the start, the middle and the end.
size_t cheapKey(const QSpriteItem &item, QByteArrayView bytes)
{
    auto word = [&bytes](qsizetype at) {
        quint64 v = 0;
        const qsizetype n = qMin<qsizetype>(8, bytes.size() - at);
        if (at >= 0 && n > 0)
            std::memcpy(&v, bytes.constData() + at, size_t(n));
        return v;
    };
    const qsizetype n = bytes.size();
    quint64 k = quint64(n) * 0x9E3779B97F4A7C15ull;
    k ^= quint64(item.filter) | (quint64(item.imageFormat) << 8) | (quint64(item.width) << 24)
         | (quint64(item.height) << 40);
    for (quint64 w : {word(0), word(n / 2 - 4), word(n - 8)}) {
        k = (k ^ w) * 0xFF51AFD7ED558CCDull;
        k ^= k >> 33;
    }
    return size_t(k);
}

// Identical images on the same palette (or of true colour, which has none)
// are written once, the others as links to the first: the file gets smaller
// and nothing shows differently. Sprites are first told apart by what is
// cheap to know (shape, stored length, the ends of the stored bytes); only
// those that agree on all of it are hashed whole and compared.
void SffPlan::foldDuplicates(std::vector<int> &foldedInto, const std::function<void(uint)> &announce)
{
    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    const int n = s.count();
    if (announce)
        announce(0);
    // Key -> latest unfolded sprite with it: open addressing, twice as many
    // places as sprites, the keys being well mixed already.
    struct Place
    {
        size_t key = 0;
        int sprite = -1;
    };
    size_t mask = 15;
    while (mask < size_t(n) * 2)
        mask = mask * 2 + 1;
    std::vector<Place> newest(mask + 1);
    auto placeOf = [&](size_t key) -> Place & {
        size_t at = key & mask;
        while (newest[at].sprite >= 0 && newest[at].key != key)
            at = (at + 1) & mask;
        return newest[at];
    };
    std::vector<int> older(size_t(n), -1);  // the one before it with the same key
    std::vector<size_t> full(size_t(n), 0); // whole-bytes hash, 0 until needed
    QByteArray held;
    auto fullHash = [&](int i) {
        size_t &h = full[size_t(i)];
        if (h == 0) {
            QByteArray bytes;
            s.m_cache.get(s.m_sprites[i]->cacheId, bytes, byPass);
            h = qHash(bytes) | 1;
        }
        return h;
    };
    // The keys first, in a sweep of their own: stored bytes in memory are
    // looked at where they are, a few sprites ahead fetched early, so that
    // their cache misses overlap instead of coming one after the other.
    std::vector<size_t> keys(size_t(n), 0);
    {
        std::vector<QByteArrayView> views(static_cast<size_t>(n));
        std::vector<char> inMemory(size_t(n), 0);
        for (int i = 0; i < n; ++i)
            if (sprites[size_t(i)].source == i)
                inMemory[size_t(i)] = s.m_cache.peek(s.m_sprites[i]->cacheId, views[size_t(i)]);
        constexpr int Ahead = 8;
        for (int i = 0; i < n; ++i) {
            if (i + Ahead < n && inMemory[size_t(i + Ahead)]) {
                const QByteArrayView v = views[size_t(i + Ahead)];
                if (!v.isEmpty()) {
                    __builtin_prefetch(v.data());
                    __builtin_prefetch(v.data() + v.size() / 2);
                    __builtin_prefetch(v.data() + v.size() - 1);
                }
            }
            const QSpriteItem *item = s.m_sprites[i];
            if (sprites[size_t(i)].source != i)
                continue;
            if (inMemory[size_t(i)]) {
                keys[size_t(i)] = cheapKey(*item, views[size_t(i)]);
            } else {
                s.m_cache.get(item->cacheId, held, byPass, item->spriteSize());
                keys[size_t(i)] = cheapKey(*item, held);
            }
        }
    }

    for (int i = 0; i < n; ++i) {
        const QSpriteItem *item = s.m_sprites[i];
        if (sprites[size_t(i)].source == i) {
            const size_t key = keys[size_t(i)];
            Place &place = placeOf(key);
            bool folded = false;
            for (int c = place.sprite; c >= 0; c = older[size_t(c)]) {
                const QSpriteItem *other = s.m_sprites[c];
                if (other->filter == item->filter && other->imageFormat == item->imageFormat
                    && other->width == item->width && other->height == item->height
                    && (item->imageFormat != QImage::Format_Indexed8 || other->info.palette == item->info.palette)
                    && fullHash(c) == fullHash(i) && s.m_cache.same(other->cacheId, item->cacheId)) {
                    Planned &p = sprites[size_t(i)];
                    p.source = -1;
                    p.pixelsOf = c;
                    p.info.hasImage = false;
                    p.info.link = quint16(c);
                    foldedInto[size_t(i)] = c;
                    folded = true;
                    break;
                }
            }
            if (!folded) {
                older[size_t(i)] = place.sprite;
                place.key = key;
                place.sprite = i;
            }
        }
        if (i > 0 && announce)
            announce(uint(i) + 1);
    }
}

// The two older versions are meant for indexed sprites. Index 0 is kept free
// for the transparent colour (it is what the engine leaves out), so the
// octree gets the 255 entries after it; the colours become a palette of
// group 0, shared by equal reductions. A 2.00 file that already held PNG
// sprites of more bits keeps them when saved as 2.00 again: the file showed
// they are wanted, and re-saving must not degrade it.
void SffPlan::reduceTo8Bits(std::vector<char> &lost)
{
    for (size_t i = 0; i < sprites.size(); ++i) {
        Planned &p = sprites[i];
        if (p.source != int(i) || p.size.imageFormat == QImage::Format_Indexed8)
            continue;
        if (version == QSffVersion::V200 && previous == QSffVersion::V200 && s.m_sprites[int(i)]->filter == QBFCacheFilter::PNG)
            continue;
        const QImage argb = pixels(p).convertToFormat(QImage::Format_ARGB32);
        QImage indexed(1, 1, QImage::Format_Indexed8);
        indexed.fill(0);
        if (!argb.isNull()) {
            QColorQuantizer quantizer(255, 8);
            quantizer.addImage(argb, 128);
            indexed = quantizer.toIndexed(argb, 1, 0);
        }
        QRGBPal pal = QRGBPal::fromColorTable(indexed.colorTable());
        for (int k = 0; k < 256; ++k)
            pal[k].a = k == 0 ? 0 : 255;
        const int palette = palettes.add(pal, true, 0, -1);
        const Shown shown = shownColours(&pal);
        // Lost whenever a pixel shows otherwise than before.
        for (int y = 0; y < argb.height() && !lost[i]; ++y) {
            const QRgb *before = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
            const uchar *after = indexed.constScanLine(y);
            for (int x = 0; x < argb.width(); ++x)
                if (shownPixel(before[x]) != shown[after[x]]) {
                    lost[i] = 1;
                    break;
                }
        }
        p.source = -1;
        p.image = indexed;
        p.size = QSpriteSize::of(indexed);
        p.info.palette = quint16(palette);
        for (Planned &l : sprites)
            if (!l.info.hasImage && l.pixelsOf == int(i)) {
                l.size = p.size;
                l.info.palette = quint16(palette);
            }
    }
}

// Version 1 keeps no palette list: every sprite either carries colours in
// its PCX or takes those of the sprite before it (the same-palette flag),
// and a character's two portraits both take the character's palette. The
// layout is found by reading the file back in advance, as the loader will:
// sprites share colours where they show the same ones, a link is written as
// a link only where it reads back with its colours (else with pixels of its
// own), and a sprite read back differently is lost.
void SffPlan::layoutVersion1(std::vector<char> &lost)
{
    std::vector<ReadPalette> read; // palettes the loader will make
    auto makePalette = [&](const QList<QRgb> &table) {
        QRGBPal pal = table.isEmpty() ? QRGBPal::zeroed() : spritePal(table);
        read.push_back({shownColours(&pal), QPaletteItem::colorCountOf(pal)});
        return int(read.size()) - 1;
    };
    auto tableOf = [&](int palette) {
        const QRGBPal *c = palettes.colors(palette);
        return c ? c->toColorTable() : QList<QRgb>(256, qRgb(0, 0, 0));
    };
    const int characterPalette = palettes.find(0, 1, 1);
    int portraitPalette = -1; // the character's palette once the loader has it
    int last = -1;            // palette of the sprite before
    std::vector<int> readAs(sprites.size(), -1);
    std::vector<QList<QRgb>> tableRead(sprites.size()); // the PCX colours the loader finds

    // The colours `i` shows on the loader's palette `r` (with the PCX
    // colours `table`, which the loader uses to move pixels past a short
    // palette back inside it) are those it shows now.
    auto keeps = [&](int i, int r, const QList<QRgb> &table) {
        const Shown want = shownColours(palettes.colors(sprites[size_t(i)].info.palette));
        const ReadPalette &got = read[size_t(r)];
        const bool moved = got.colorCount < 256 && table.size() == 256;
        if (got.shown == want && !moved)
            return true;
        const std::bitset<256> &u = usedIndices(i);
        for (int c = 0; c < 256; ++c) {
            if (!u.test(size_t(c)))
                continue;
            int k = c;
            if (moved && c >= got.colorCount) {
                k = 255;
                for (int m = 1; m < got.colorCount; ++m)
                    if (table[m] == table[c]) {
                        k = m;
                        break;
                    }
            }
            if (got.shown[size_t(k)] != want[size_t(c)])
                return false;
        }
        return true;
    };

    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    for (size_t idx = 0; idx < sprites.size(); ++idx) {
        const int i = int(idx);
        Planned &p = sprites[idx];
        const Shown want = shownColours(palettes.colors(p.info.palette));
        if (!p.info.hasImage) {
            // The loader takes only links backwards (a damaged file of
            // another version may have given others).
            const int root = p.info.link;
            if (root < i && keeps(i, readAs[size_t(root)], {})) {
                readAs[idx] = readAs[size_t(root)];
                last = readAs[idx];
                continue;
            }
            if (root < i && last >= 0 && keeps(i, last, {})) {
                p.samePalette = 1;
                readAs[idx] = last;
                continue;
            }
            // Its own copy of the pixels then, with its own colours.
            const Planned &r = sprites[size_t(root)];
            p.info.hasImage = true;
            p.info.link = 0;
            p.source = r.source;
            p.image = r.image;
            p.size = r.size;
        }

        // Stored PCX bytes (from a version 1 file, never edited) go out as
        // they are, whatever they hold; at most their colour table changes.
        // A PCX that moves pixels past a short palette as it is decoded is
        // stored PCX as long as the move changes nothing.
        QPCXCacheFilter::Layout pcx;
        QByteArray stored;
        const QSpriteItem *item = s.item(p.source);
        bool storedPcx = p.image.isNull() && item
                         && (item->filter == QBFCacheFilter::PCX || item->filter == QBFCacheFilter::PCXShortPalette);
        if (storedPcx) {
            s.m_cache.get(item->cacheId, stored, byPass);
            if (item->filter == QBFCacheFilter::PCXShortPalette && QPCXShortPaletteFilter::changesPixels(stored)) {
                storedPcx = false;
                stored.clear();
            } else {
                pcx = QPCXCacheFilter::header(stored);
            }
        }
        // The colours (in the tail, as a rule) and where the pixel lines end
        // (a walk over the stream) are found once, and only where they are
        // asked for: colours of its own, a palette short enough to move
        // pixels, a colour table to change.
        std::optional<QList<QRgb>> ownColours;
        auto colours = [&] {
            if (!ownColours)
                ownColours = storedPcx && !pcx.isNull() ? QPCXCacheFilter::colorTable(stored) : QList<QRgb>();
            return *ownColours;
        };
        auto canRetable = [&] { return storedPcx && !pcx.isNull() && QPCXCacheFilter::dataEnd(stored) >= 0; };
        const bool canEncode = !storedPcx || (!pcx.isNull() && pcx.width <= 0xFFFC);
        // The loader's pixel fix for short palettes only runs on streams
        // that could hold the pixels they claim.
        const bool fixable = !storedPcx || qint64(pcx.width) * pcx.height <= 64 * qint64(stored.size()) + 65536;

        auto withTable = [&](int palette) {
            p.table = palette;
            const QList<QRgb> table = colours();
            const QRGBPal own = spritePal(table);
            if (storedPcx && !table.isEmpty() && shownColours(palettes.colors(palette)) == shownColours(&own))
                p.data = Planned::Stored;
            else if (canRetable())
                p.data = Planned::StoredWithTable;
            else if (canEncode)
                p.data = Planned::Encoded;
            else
                p.data = Planned::Stored;
            tableRead[idx] = p.data == Planned::Stored ? table : tableOf(palette);
        };
        // Colours the loader takes from elsewhere: a new PCX goes without
        // any, and stored ones lose theirs where they would only move pixels
        // past a short palette.
        auto withoutTable = [&](int r) {
            const bool drop = read[size_t(r)].colorCount < 256;
            if (!storedPcx)
                p.data = Planned::Encoded;
            else if (drop && !colours().isEmpty() && canRetable())
                p.data = Planned::StoredWithoutTable;
            else
                p.data = Planned::Stored;
            p.table = -1;
            // The colours matter only to a short palette, which moves pixels
            // by them.
            tableRead[idx] = p.data == Planned::Stored && drop ? colours() : QList<QRgb>();
        };

        if (isCharacter && isPortrait(p.info.group, p.info.number)) {
            // Both portraits take the character's palette; the first one
            // read brings it when no palette file does. That is palette 1,1
            // when there is one, so that every sprite sharing it keeps it.
            if (portraitPalette < 0) {
                withTable(characterPalette >= 0 ? characterPalette : p.info.palette);
                portraitPalette = makePalette(tableRead[idx]);
            } else {
                withoutTable(portraitPalette);
            }
            readAs[idx] = portraitPalette;
        } else if (i > 0 && last >= 0 && read[size_t(last)].shown == want) {
            p.samePalette = 1;
            withoutTable(last);
            readAs[idx] = last;
        } else {
            withTable(p.info.palette);
            if (tableRead[idx].isEmpty() && i > 0 && last >= 0)
                readAs[idx] = last; // a PCX without colours takes those before it
            else
                readAs[idx] = makePalette(tableRead[idx]);
        }
        last = readAs[idx];
        if (!fixable)
            tableRead[idx].clear();
    }

    for (size_t idx = 0; idx < sprites.size(); ++idx)
        if (!lost[idx] && !keeps(int(idx), readAs[idx], sprites[idx].info.hasImage ? tableRead[idx] : QList<QRgb>()))
            lost[idx] = 1;
}

QList<uint> SffPlan::outOfOrder() const
{
    auto paletteGroup = [this](int palette) {
        const QPaletteItem *p = palettes.item(palette);
        return p ? int(p->group) : -1;
    };
    QList<uint> out;
    for (size_t i = 0; i < sprites.size(); ++i) {
        const QSpriteInfo &info = sprites[i].info;
        if (isPortrait(info.group, info.number))
            continue;
        if (paletteGroup(info.palette) == 1 && (i == 0 || paletteGroup(sprites[i - 1].info.palette) != 1))
            out.append(uint(i));
    }
    return out;
}

class SffWriter
{
public:
    SffWriter(QSprites &store, const SffPlan &plan, quint32 version, bool lzSearch)
        : total(uint(plan.palettes.count()) + 2 * uint(plan.sprites.size())), s(store), plan(plan), version(version),
          lzSearch(lzSearch)
    {
    }

    // Writes the whole file into `out`; false on cancel or error (reported).
    bool writeV1(QIODevice &out);
    bool writeV2(QIODevice &out);

    // True once a cancel or an error (already reported) stopped the writing.
    bool stopped = false;
    uint total;

private:
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
        emit s.fileError(
            tr("Sprite saving error"), tr("An error occurred when saving the sprite %1.\n%2").arg(index).arg(tr(reason)));
        return false;
    }
    quint8 chooseCode(QImage::Format format, int palette) const;

    QSprites &s;
    const SffPlan &plan;
    quint32 version;
    bool lzSearch;
};

quint8 SffWriter::chooseCode(QImage::Format format, int palette) const
{
    if (format == QImage::Format_ARGB32)
        return CodePNG32;
    if (format == QImage::Format_RGB32)
        return CodePNG24;
    // A palette index outside the list counts as a full palette.
    const QPaletteItem *pal = plan.palettes.item(palette);
    if (pal && pal->colorCount == 32)
        return CodeLZ5;
    return version == QSffVersion::V200 ? CodeRLE8 : CodePNG8;
}

bool SffWriter::writeV1(QIODevice &out)
{
    QByteArray header;
    ByteWriter hw(header);
    V1Header h;
    h.images = quint32(plan.sprites.size());
    h.write(hw);
    // Stored PCX bytes go out as they are, gathered with the subheaders into
    // large writes (see OutBlock); the subheaders are made in one array.
    OutBlock block;
    block.append(header);
    QByteArray subheaders;
    subheaders.reserve(qsizetype(plan.sprites.size()) * SubheaderSize);
    ByteWriter sw(subheaders);
    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    qint64 pos = HeaderSize;
    for (size_t idx = 0; idx < plan.sprites.size(); ++idx) {
        const int i = int(idx);
        const Planned &p = plan.sprites[idx];
        QByteArray pcx;
        if (p.info.hasImage) {
            if (p.data == Planned::Encoded) {
                QImage image = plan.pixels(p);
                if (image.isNull())
                    return fail(i, "Failed to retrieve the image data from cache.");
                if (image.format() == QImage::Format_Indexed8) {
                    const QRGBPal *colors = plan.palettes.colors(p.table >= 0 ? p.table : p.info.palette);
                    image.setColorTable(colors ? colors->toColorTable() : QList<QRgb>(256, qRgb(0, 0, 0)));
                }
                pcx = QPCXCacheFilter::write(image);
                if (pcx.isEmpty())
                    return fail(i, "Can't create the PCX file.");
                // The colour triples are left out when the loader takes the
                // colours from elsewhere; the marker byte 12 stays.
                if (p.table < 0 && pcx.size() > 768)
                    pcx.chop(768);
            } else {
                const QSpriteItem *item = s.item(p.source);
                if (!item || !s.m_cache.get(item->cacheId, pcx, byPass))
                    return fail(i, "Failed to retrieve the image data from cache.");
                if (p.data != Planned::Stored) {
                    const qsizetype end = QPCXCacheFilter::dataEnd(pcx);
                    pcx.truncate(end);
                    pcx.append(char(12));
                    if (p.data == Planned::StoredWithTable) {
                        const QRGBPal *colors = plan.palettes.colors(p.table);
                        for (int k = 0; k < 256; ++k) {
                            const QRGBColor c = colors ? colors->colors[k] : QRGBColor{0, 0, 0, 255};
                            pcx.append(char(c.r)).append(char(c.g)).append(char(c.b));
                        }
                    }
                }
            }
        }
        V1Subheader sh;
        sh.length = quint32(pcx.size());
        sh.next = quint32(pos + SubheaderSize + pcx.size());
        sh.x = p.info.x;
        sh.y = p.info.y;
        sh.group = p.info.group;
        sh.number = p.info.number;
        sh.link = p.info.hasImage ? 0 : p.info.link;
        sh.samePalette = p.samePalette;
        sh.write(sw);
        block.appendPart(subheaders, subheaders.size() - SubheaderSize, SubheaderSize);
        pos += SubheaderSize + pcx.size();
        if (!pcx.isEmpty())
            block.append(std::move(pcx));
        if (!progress(uint(plan.sprites.size()) + uint(i) + 1))
            return false;
    }
    return block.writeTo(out);
}

bool SffWriter::writeV2(QIODevice &out)
{
    OutBlock ldata, tdata;
    const int paletteCount = plan.palettes.count();
    const uint spriteCount = uint(plan.sprites.size());
    std::vector<V2PaletteNode> palNodes(static_cast<size_t>(paletteCount));
    for (int p = 0; p < paletteCount; ++p) {
        const QPaletteItem *pal = plan.palettes.item(p);
        V2PaletteNode &node = palNodes[size_t(p)];
        node.group = pal->group;
        node.number = pal->number;
        node.colorCount = pal->colorCount;
        node.link = pal->link;
        if (pal->hasColors) {
            const int colors = pal->colorCount >= 1 && pal->colorCount <= 256 ? pal->colorCount : 256;
            node.offset = quint32(ldata.size());
            node.length = quint32(colors * 4);
            ldata.append(QByteArray(reinterpret_cast<const char *>(pal->colors.bytes()), colors * 4));
        }
        if (!progress(spriteCount + uint(p) + 1))
            return false;
    }

    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    std::vector<V2SpriteNode> sprNodes(spriteCount);
    for (size_t idx = 0; idx < plan.sprites.size(); ++idx) {
        const int i = int(idx);
        const Planned &p = plan.sprites[idx];
        V2SpriteNode &node = sprNodes[idx];
        node.group = p.info.group;
        node.number = p.info.number;
        node.width = p.size.width;
        node.height = p.size.height;
        node.x = p.info.x;
        node.y = p.info.y;
        node.link = p.info.link;
        node.palette = p.info.palette;
        node.flags = p.info.flags;
        OutBlock &block = (p.info.flags & 1) ? tdata : ldata;
        node.offset = quint32(block.size());
        if (!p.info.hasImage) {
            node.format = CodeLinked;
        } else {
            const QSpriteItem *item = p.image.isNull() ? s.item(p.source) : nullptr;
            quint8 code = chooseCode(p.size.imageFormat, p.info.palette);
            quint8 current = 0xFF; // the form the bytes are in, if they are stored
            if (item) {
                current = quint8(item->filter);
                if (item->filter == QBFCacheFilter::PNG)
                    current = item->imageFormat == QImage::Format_ARGB32  ? CodePNG32
                              : item->imageFormat == QImage::Format_RGB32 ? CodePNG24
                                                                           : CodePNG8;
            }
            // A 2.01 file saved as 2.01 keeps the compression its indexed sprites
            // came in: every such form is valid there, and re-encoding would
            // change an unedited file and cost a whole encode per sprite.
            const auto indexedCode = [](quint8 c) {
                return c == CodeRLE8 || c == CodeRLE5 || c == CodeLZ5 || c == CodePNG8;
            };
            if (item && version == QSffVersion::V201 && s.version() == QSffVersion::V201 && indexedCode(code)
                && indexedCode(current))
                code = current;
            QByteArray bytes;
            if (current == code) {
                if (!s.m_cache.get(item->cacheId, bytes, byPass, item->spriteSize()))
                    return fail(i, "Failed to retrieve the image data from cache.");
            } else {
                QImage image = plan.pixels(p);
                if (image.isNull()) {
                    // Pixels that can't be decoded show nothing, and so does a blank.
                    image = QImage(1, 1, p.size.imageFormat == QImage::Format_Invalid ? QImage::Format_Indexed8
                                                                                      : p.size.imageFormat);
                    image.fill(0);
                }
                if (code == CodeLZ5) {
                    // LZ5 keeps five bits of colour: a sprite with a higher
                    // index goes the other way of its version.
                    const QByteArray packed = QSpriteSize::packedPixels(image);
                    const bool fits = std::all_of(packed.begin(), packed.end(),
                                                  [](char c) { return uchar(c) < 32; });
                    if (fits)
                        bytes = QLZ5CacheFilter::encode(packed, lzSearch);
                    else
                        code = version == QSffVersion::V200 ? CodeRLE8 : CodePNG8;
                }
                if (code == CodeRLE8) {
                    bytes = QRLE8CacheFilter::encode(QSpriteSize::packedPixels(image));
                } else if (code >= CodePNG8) {
                    bytes = QPNGCacheFilter::encode(image);
                    if (bytes.isEmpty())
                        return fail(i, "Can't compress the image.");
                }
            }
            node.format = code;
            node.depth = depthForCode(code);
            node.length = quint32(bytes.size() + 4);
            block.appendStored(quint32(p.size.width) * p.size.height * quint32(bytesPerPixel(p.size.imageFormat)),
                               std::move(bytes));
        }
        if (!progress(spriteCount + uint(paletteCount) + uint(i) + 1))
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
    return out.write(tables) == tables.size() && ldata.writeTo(out) && tdata.writeTo(out);
}

quint32 versionToWrite(quint32 asked, quint32 current)
{
    const quint32 v = asked != 0 ? asked : current;
    return QSffVersion::isSupported(v) ? v : QSffVersion::V201; // the one that holds every kind of sprite
}

} // namespace Sff

QList<uint> QSprites::spritesChangedBy(quint32 newVersion, bool isCharacter) const
{
    QBFCacheFilter::createFilters();
    SffPlan plan(*this, versionToWrite(newVersion, m_version), isCharacter);
    plan.build(true, {});
    return plan.changed;
}

bool QSprites::toFile(const QString &path, bool isCharacter, quint32 newVersion, bool lzSearch, bool temporary)
{
    QBFCacheFilter::createFilters();
    const quint32 target = versionToWrite(newVersion, m_version);

    // Everything the version needs is worked out on a copy: the store, its
    // cache and its undo stack come out of any save as they went in.
    SffPlan plan(*this, target, isCharacter);
    const uint total = uint(paletteCount()) + 2 * uint(count());
    plan.build(!temporary, [this, total](uint pos) {
        bool allow = true; // preparing can't be cancelled
        emit progress(pos, total, allow);
    });
    if (target == QSffVersion::V101 && isCharacter) {
        const QList<uint> outOfOrder = plan.outOfOrder();
        if (!outOfOrder.isEmpty())
            emit orderMustBeChanged(outOfOrder);
    }

    // The old file stays untouched until the new one is complete.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        emit fileError(tr("Sprite saving error"),
                       tr("Can't write the file \"%1\":\n%2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }
    SffWriter writer(*this, plan, target, lzSearch);
    bool allow = true;
    emit progress(uint(count()), writer.total, allow);
    const bool written = allow && (target == QSffVersion::V101 ? writer.writeV1(file) : writer.writeV2(file));
    if (!written) {
        const QString reason = file.errorString();
        file.cancelWriting();
        if (allow && !writer.stopped)
            emit fileError(tr("Sprite saving error"),
                           tr("Can't write the file \"%1\":\n%2").arg(QDir::toNativeSeparators(path), reason));
        return false;
    }
    if (!file.commit()) {
        emit fileError(tr("Sprite saving error"),
                       tr("Can't write the file \"%1\":\n%2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return false;
    }

    // A test copy or a backup is no save of the store's own.
    if (temporary)
        return true;
    m_fileName = path;
    m_version = target;
    m_modified = false;
    emit changed();
    return true;
}
