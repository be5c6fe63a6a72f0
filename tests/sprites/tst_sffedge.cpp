// Hand-built sprite files exercising the rules of the loader and the writer
// one by one.
#include "base/qmessages.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qsprites.h"
#include "sprites/sfffile.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "testsupport.h"

using namespace Sff;

using TestSupport::readAll;

namespace {

QImage indexedImage(int w, int h, int seed, int maxIndex = 256)
{
    QImage img(w, h, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int i = 0; i < 256; ++i)
        table << qRgb((i * 3 + seed) & 255, (i * 5 + seed * 7) & 255, (i * 11) & 255);
    img.setColorTable(table);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.scanLine(y)[x] = uchar((x + y * 3 + seed) % maxIndex);
    return img;
}

struct V1Sprite
{
    quint16 group = 0, number = 0;
    QImage image; // null: a link
    quint16 link = 0;
    quint8 same = 0;
    bool cutColours = false; // colour triples left out
    bool fullLength = false; // length field keeps the 768 bytes that were cut
};

QByteArray buildV1(const QList<V1Sprite> &list)
{
    QByteArray file;
    ByteWriter w(file);
    V1Header h;
    h.images = quint32(list.size());
    h.write(w);
    for (int i = 0; i < list.size(); ++i) {
        const V1Sprite &s = list[i];
        QByteArray pcx = s.image.isNull() ? QByteArray() : QPCXCacheFilter::write(s.image);
        if (s.cutColours)
            pcx.chop(768);
        V1Subheader sh;
        sh.group = s.group;
        sh.number = s.number;
        sh.link = s.link;
        sh.samePalette = s.same;
        sh.length = quint32(pcx.size() + (s.fullLength ? 768 : 0));
        sh.next = i + 1 < list.size() ? quint32(file.size() + SubheaderSize + pcx.size()) : 0;
        sh.write(w);
        w.bytes(pcx);
    }
    return file;
}

struct V2Palette
{
    qint16 group = 1, number = 1;
    quint16 colorCount = 256, link = 0;
    QByteArray colours; // empty: a link
};
struct V2Sprite
{
    V2SpriteNode node;
    QByteArray data; // written with the size word unless the code is raw
};

QByteArray buildV2(quint32 version, const QList<V2Palette> &pals, QList<V2Sprite> sprs)
{
    QByteArray ldata;
    ByteWriter lw(ldata);
    QList<V2PaletteNode> pn;
    for (const V2Palette &p : pals) {
        V2PaletteNode n{p.group, p.number, p.colorCount, p.link, quint32(ldata.size()), quint32(p.colours.size())};
        lw.bytes(p.colours);
        pn << n;
    }
    for (V2Sprite &s : sprs) {
        if (s.node.length == 0 && s.data.isEmpty())
            continue;
        s.node.offset = quint32(ldata.size());
        if (s.node.format != CodeRaw)
            lw.u32(0);
        lw.bytes(s.data);
        s.node.length = quint32(s.data.size() + (s.node.format != CodeRaw ? 4 : 0));
    }
    QByteArray file;
    ByteWriter w(file);
    V2Header h;
    h.paletteOffset = HeaderSize;
    h.paletteCount = quint32(pn.size());
    h.spriteOffset = HeaderSize + PaletteNodeSize * h.paletteCount;
    h.spriteCount = quint32(sprs.size());
    h.ldataOffset = h.spriteOffset + SpriteNodeSize * h.spriteCount;
    h.ldataLength = quint32(ldata.size());
    h.tdataOffset = h.ldataOffset + h.ldataLength;
    h.write(w, version);
    for (const auto &n : pn)
        n.write(w);
    for (const auto &s : sprs)
        s.node.write(w);
    w.bytes(ldata);
    return file;
}

QByteArray paletteBytes(int colours, quint8 alpha)
{
    QByteArray b;
    for (int i = 0; i < colours; ++i)
        b.append(char(i)).append(char(255 - i)).append(char(i / 2)).append(char(alpha));
    return b;
}


} // namespace

class TestSffEdge : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void version1Loading();
    void version1Links();
    void version2Loading();
    void damagedInput();
    void writerFormats();
    void duplicatesAndVersion1Save();
    void atomicSaveAndCancel();

private:
    QString write(const QByteArray &bytes, const QString &name = "t.sff")
    {
        const QString path = dir.filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly | QIODevice::Truncate);
        f.write(bytes);
        return path;
    }
    QTemporaryDir dir;
    QMessages messages;
};

void TestSffEdge::initTestCase()
{
    QBFCacheFilter::createFilters();
    QVERIFY(dir.isValid());
}

void TestSffEdge::init()
{
    messages.clear();
}

void TestSffEdge::version1Loading()
{
    // Character: 9000,0 comes before 0,0; both take palette 1,1, the colours
    // of the second add nothing. A sprite with the same-palette flag shares.
    {
        QSprites s;
        s.setMessages(&messages);
        const QString path = write(buildV1({{9000, 0, indexedImage(8, 6, 1)},
                                            {0, 0, indexedImage(10, 4, 2)},
                                            {200, 0, indexedImage(5, 5, 3), 0, 1, true, true},
                                            {200, 1, indexedImage(5, 5, 4)}}));
        QVERIFY(s.fromFile(path, true, false));
        QCOMPARE(s.count(), 4);
        const int p11 = s.findPalette(0, 1, 1);
        QVERIFY(p11 >= 0);
        QCOMPARE(int(s.item(0)->info.palette), p11);
        QCOMPARE(int(s.item(1)->info.palette), p11);
        QCOMPARE(int(s.item(2)->info.palette), p11); // flag: shares the previous sprite's
        QCOMPARE(s.paletteCount(), 2);               // 1,1 and 200,0
        QCOMPARE(s.paletteInfo(s.item(3)->info.palette).group, qint16(200));
        // The portrait's own colours, colour 0 transparent.
        const QRGBPal *c = s.paletteColors(p11);
        QCOMPARE(qRgb(c->colors[5].r, c->colors[5].g, c->colors[5].b), indexedImage(1, 1, 1).color(5));
        QCOMPARE(c->colors[0].a, quint8(0));
        // The declared length was 768 too long; the gap to the next subfile rules.
        QCOMPARE(s.item(2)->width, quint16(5));
        QCOMPARE(s.image(3).pixelIndex(2, 1), (2 + 3 + 4) % 256);
        QCOMPARE(s.fileName(), path);
        QVERIFY(!s.isModified());
        QVERIFY(messages.messages().isEmpty());
    }
    // Palette files given before: 0,0 uses the existing 1,1 and drops its colours.
    {
        QSprites s;
        QRGBPal given;
        given[7] = QRGBColor{1, 2, 3, 255};
        s.addPalette(given, false, 1, 1);
        s.addPalette(given, false, 1, 2);
        QVERIFY(s.fromFile(write(buildV1({{0, 0, indexedImage(4, 4, 9)}})), true, true));
        QCOMPARE(s.paletteCount(), 2);
        QCOMPARE(s.item(0)->info.palette, quint16(0));
        QCOMPARE(s.paletteColors(0)->colors[7].b, quint8(3));
        QVERIFY(s.fileName().isEmpty()); // keepName
    }
    // Not a character: group 5 creates 5,0, other colours in that group 5,1,
    // identical colours reuse; 0,0 isn't special.
    {
        QSprites s;
        QVERIFY(s.fromFile(write(buildV1({{5, 0, indexedImage(4, 4, 1)},
                                          {5, 1, indexedImage(4, 4, 2)},
                                          {5, 2, indexedImage(4, 4, 1)},
                                          {0, 0, indexedImage(4, 4, 3)}})),
                           false, false));
        QCOMPARE(s.paletteCount(), 3);
        QCOMPARE(s.paletteInfo(0).group, qint16(5));
        QCOMPARE(s.paletteInfo(0).number, qint16(0));
        QCOMPARE(s.paletteInfo(1).number, qint16(1));
        QCOMPARE(s.item(2)->info.palette, quint16(0));
        QCOMPARE(s.paletteInfo(2).group, qint16(0));
    }
    // A short palette: pixels past it move to the first index of the same
    // colour inside it, as the sprite is decoded; the file's bytes stay.
    {
        QImage img = indexedImage(6, 2, 0, 20);
        QList<QRgb> table = img.colorTable();
        for (int i = 20; i < 256; ++i)
            table[i] = table[19];
        img.setColorTable(table);
        img.scanLine(0)[0] = 200; // shows table[19]
        QSprites s;
        QVERIFY(s.fromFile(write(buildV1({{3, 0, img}})), false, false));
        QCOMPARE(s.paletteInfo(0).colorCount, quint16(32));
        QCOMPARE(s.item(0)->filter, quint16(QBFCacheFilter::PCXShortPalette));
        QCOMPARE(s.image(0).pixelIndex(0, 0), 19);
        QCOMPARE(s.image(0).pixelIndex(1, 0), 1);
        // Saved as it shows: the moved pixels are written, not the file's.
        QSprites back;
        QVERIFY(s.toFile(dir.filePath("moved.sff"), false, QSffVersion::V101, true, true));
        QVERIFY(back.fromFile(dir.filePath("moved.sff"), false, false));
        QCOMPARE(back.image(0).pixelIndex(0, 0), 19);
    }
}

void TestSffEdge::version1Links()
{
    // The first sprite linked is refused, naming index 0.
    QSprites s;
    s.setMessages(&messages);
    QSignalSpy errors(&s, &QSprites::fileError);
    QVERIFY(!s.fromFile(write(buildV1({{1, 0, QImage(), 0}, {1, 1, indexedImage(3, 3, 1)}})), false, false));
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors[0][0].toString(), QString("Sprite loading error"));
    QCOMPARE(errors[0][1].toString(), QString("t.sff(0): Sprite incorrectly linked to the index 0"));
    QCOMPARE(s.count(), 0);
    QVERIFY(!s.undoEnabled());

    // A forward link is refused too; good links are followed and flattened.
    QVERIFY(!s.fromFile(write(buildV1({{1, 0, indexedImage(3, 3, 1)}, {1, 1, QImage(), 2}})), false, false));
    QVERIFY(s.fromFile(write(buildV1({{1, 0, indexedImage(3, 4, 1)},
                                      {1, 1, QImage(), 0},
                                      {1, 2, QImage(), 1, 1}})),
                       false, false));
    QVERIFY(s.undoEnabled());
    QCOMPARE(s.item(2)->info.link, quint16(0));
    QCOMPARE(s.item(2)->height, quint16(4));
    QCOMPARE(s.image(2).pixelIndex(1, 1), s.image(0).pixelIndex(1, 1));
}

void TestSffEdge::version2Loading()
{
    // 2.00 keeps no alpha; a link palette stays zero; an oversized palette
    // node is cut at 256 colours; raw sprites have no size word and show.
    V2Sprite raw;
    raw.node = {};
    raw.node.width = 3;
    raw.node.height = 2;
    raw.node.format = CodeRaw;
    raw.node.depth = 8;
    raw.data = QByteArray("\x01\x02\x03\x04\x05\x06", 6);
    V2Sprite link;
    link.node.group = 1;
    link.node.link = 0;
    link.node.palette = 7; // beyond the list: loads, shows no colours
    V2Palette a{1, 1, 256, 0, paletteBytes(256, 17)};
    V2Palette b{1, 2, 256, 0, {}};
    V2Palette big{1, 3, 256, 0, paletteBytes(256, 200) + QByteArray(4000, 'x')};
    b.link = 0;
    QSprites s;
    s.setMessages(&messages);
    s.addPalette(QRGBPal(), false, 1, 9); // dropped by a version 2 read
    QVERIFY(s.fromFile(write(buildV2(QSffVersion::V200, {a, b, big}, {raw, link})), true, false));
    QCOMPARE(s.version(), QSffVersion::V200);
    QCOMPARE(s.paletteCount(), 3);
    QCOMPARE(s.palettes().item(0)->colors[0].a, quint8(0));
    QCOMPARE(s.palettes().item(0)->colors[1].a, quint8(255));
    QCOMPARE(s.palettes().item(0)->colors[3].r, quint8(3));
    QVERIFY(!s.palettes().item(1)->hasColors);
    QCOMPARE(s.palettes().item(1)->colors[3].r, quint8(0));
    QCOMPARE(s.palettes().item(2)->colors[255].r, quint8(255));
    const QImage img = s.image(0);
    QCOMPARE(img.pixelIndex(0, 0), 1);
    QCOMPARE(img.pixelIndex(2, 1), 6);
    QVERIFY(!s.image(1).isNull());
    QCOMPARE(s.image(1).pixelIndex(1, 0), 2);
    QVERIFY(messages.messages().isEmpty());

    // 2.01 keeps the alpha bytes.
    QVERIFY(s.fromFile(write(buildV2(QSffVersion::V201, {a}, {raw})), false, false));
    QCOMPARE(s.palettes().item(0)->colors[1].a, quint8(17));

    // Links that leave the list or run in a circle are refused.
    V2Sprite c1, c2;
    c1.node.link = 2; // sprites 1 and 2 point at each other
    c2.node.link = 1;
    QSignalSpy errors(&s, &QSprites::fileError);
    QVERIFY(!s.fromFile(write(buildV2(QSffVersion::V201, {a}, {raw, c1, c2})), false, false));
    V2Sprite away;
    away.node.link = 40;
    QVERIFY(!s.fromFile(write(buildV2(QSffVersion::V201, {a}, {raw, away})), false, false));
    QCOMPARE(errors.count(), 2);
    QCOMPARE(errors[1][1].toString(), QString("t.sff(1): Sprite incorrectly linked to the index 40"));
    QCOMPARE(s.count(), 0);

    // Signature and version.
    QVERIFY(!s.fromFile(write("ElecbyteSpx" + QByteArray(20, '\0')), false, false));
    QByteArray odd = buildV2(QSffVersion::V201, {}, {});
    odd[13] = 7;
    messages.clear();
    QVERIFY(!s.fromFile(write(odd), false, false));
    QCOMPARE(messages.messages().constLast().text, QString("t.sff(0): SFF version '2.0.7.0' not supported yet"));
    QVERIFY(!s.fromFile(dir.filePath("missing.sff"), false, false));
}

void TestSffEdge::damagedInput()
{
    // Truncated anywhere, or with counts far beyond the data: whatever can be
    // read is kept, the rest is reported, nothing crashes.
    V2Sprite raw;
    raw.node.width = 4;
    raw.node.height = 4;
    raw.node.format = CodeRaw;
    raw.node.depth = 8;
    raw.data = QByteArray(16, '\x02');
    V2Palette a{1, 1, 256, 0, paletteBytes(256, 255)};
    const QByteArray v2 = buildV2(QSffVersion::V201, {a}, {raw, raw, raw});
    const QByteArray v1 = buildV1({{1, 0, indexedImage(20, 20, 1)}, {1, 1, indexedImage(20, 20, 2)}});
    for (const QByteArray &whole : {v1, v2})
        for (int cut = 16; cut < whole.size(); cut += 37) {
            QSprites s;
            s.setMessages(&messages);
            s.fromFile(write(whole.left(cut)), false, false);
            for (int i = 0; i < s.count(); ++i)
                s.image(i);
        }
    QVERIFY(messages.issueCount() > 0);

    // Counts of 2^31 - 1: a table holds what it has room for, up to the next
    // part of the file, and each says so once.
    auto claim = [](QByteArray bytes, int at) {
        qToLittleEndian<quint32>(0x7FFFFFFF, bytes.data() + at);
        return bytes;
    };
    QSprites s;
    s.setMessages(&messages);
    messages.clear();
    QVERIFY(s.fromFile(write(claim(claim(v2, 40), 48)), false, false));
    QCOMPARE(s.count(), 3);
    QCOMPARE(s.paletteCount(), 1);
    QCOMPARE(messages.messages().size(), 2);
    QVERIFY(s.fromFile(write(claim(v1, 20)), false, false));
    QCOMPARE(s.count(), 2);
    QCOMPARE(messages.messages().size(), 3);

    // A table that runs to the end of the file, over damaged nodes: a run of
    // the same damage is one issue with a count, and a file lists at most a
    // few hundred.
    auto tableLast = [&](int nodes, bool alternate) {
        QByteArray file = buildV2(QSffVersion::V201, {a}, {});
        const quint32 table = quint32(file.size());
        qToLittleEndian<quint32>(table, file.data() + 36);
        file = claim(file, 40);
        ByteWriter w(file);
        for (int i = 0; i < nodes; ++i) {
            V2SpriteNode n;
            n.number = quint16(i);
            n.width = n.height = 2;
            n.format = CodeRLE8;
            n.depth = 8;
            n.length = alternate && i % 2 ? 0 : 100;
            n.offset = 0x7FFF0000;
            n.write(w);
        }
        return write(file);
    };
    messages.clear();
    QVERIFY(s.fromFile(tableLast(5000, false), false, false));
    QCOMPARE(s.count(), 5000);
    QCOMPARE(messages.messages().size(), 2);
    QCOMPARE(messages.messages().constLast().text,
             QString("t.sff(0): the data of sprite 0,0 is cut short by the end of the file ... "
                     "and 4,999 more sprites cut short"));
    messages.clear();
    QVERIFY(s.fromFile(tableLast(5000, true), false, false));
    QVERIFY(messages.messages().size() < 300);
    QVERIFY(messages.messages().constLast().text.endsWith("more issues not listed"));
}

void TestSffEdge::writerFormats()
{
    QSprites s;
    // A 32-colour palette: LZ5 with depth 5, unless an index is 32 or more.
    QImage small = indexedImage(16, 8, 0, 32);
    QImage wide = indexedImage(16, 8, 0, 200);
    QList<QRgb> table = small.colorTable();
    for (int i = 32; i < 256; ++i)
        table[i] = table[31];
    small.setColorTable(table);
    wide.setColorTable(table);
    s.add();
    s.add();
    s.add();
    QVERIFY(s.changeImage(0, small, 0, false, 0, 0));
    QVERIFY(s.changeImage(1, wide, 2, false, 0, 0)); // same palette, keeps its pixels
    QVERIFY(s.changeImage(2, indexedImage(7, 3, 5), 0, false, 0, 0));
    s.item(1)->info.palette = s.item(0)->info.palette;
    QCOMPARE(s.paletteInfo(s.item(0)->info.palette).colorCount, quint16(32));
    s.setInfo(2, 0, 0, quint32(99) << 16, 0); // palette out of the list
    const QImage wideBefore = s.image(1);

    for (quint32 v : {QSffVersion::V200, QSffVersion::V201}) {
        const QString path = dir.filePath(QString("fmt%1.sff").arg(v, 0, 16));
        QVERIFY(s.toFile(path, false, v, true, false));
        const QByteArray f = readAll(path);
        ByteReader in(reinterpret_cast<const uchar *>(f.constData()), f.size());
        const V2Header h = V2Header::read(in);
        in.seek(h.spriteOffset);
        const V2SpriteNode n0 = V2SpriteNode::read(in), n1 = V2SpriteNode::read(in), n2 = V2SpriteNode::read(in);
        QCOMPARE(n0.format, quint8(CodeLZ5));
        QCOMPARE(n0.depth, quint8(5));
        const quint8 other = v == QSffVersion::V200 ? CodeRLE8 : CodePNG8;
        QCOMPARE(n1.format, other);
        QCOMPARE(n2.format, other);
        QCOMPARE(n2.palette, quint16(99));
        QSprites back;
        QVERIFY(back.fromFile(path, false, false));
        QCOMPARE(back.image(1).pixelIndex(5, 5), wideBefore.pixelIndex(5, 5));
        for (int y = 0; y < 8; ++y)
            QVERIFY(memcmp(back.image(1).constScanLine(y), wideBefore.constScanLine(y), 16) == 0);
    }

    // A 32-bit sprite saved as 1.01 becomes indexed, with a palette in group 0.
    QSprites t;
    t.add();
    QImage argb(5, 5, QImage::Format_ARGB32);
    argb.fill(qRgba(0, 0, 0, 0));
    argb.setPixel(2, 2, qRgb(200, 10, 10));
    argb.setPixel(3, 2, qRgb(10, 200, 10));
    QVERIFY(t.changeImage(0, argb, 0, false, 0, 0));
    QVERIFY(t.toFile(dir.filePath("conv.sff"), false, QSffVersion::V101, true, false));
    QSprites u;
    QVERIFY(u.fromFile(dir.filePath("conv.sff"), false, false));
    QCOMPARE(u.item(0)->imageFormat, QImage::Format_Indexed8);
    const QImage img = u.image(0);
    QCOMPARE(img.pixelIndex(0, 0), 0);
    QCOMPARE(img.pixel(2, 2), qRgb(200, 10, 10));
    QCOMPARE(img.pixel(3, 2), qRgb(10, 200, 10));

    // An empty store makes a 512-byte file that loads again.
    QSprites empty;
    QVERIFY(empty.toFile(dir.filePath("empty.sff"), false, QSffVersion::V201, true, false));
    QCOMPARE(QFileInfo(dir.filePath("empty.sff")).size(), 512);
    QVERIFY(empty.fromFile(dir.filePath("empty.sff"), false, false));
}

void TestSffEdge::duplicatesAndVersion1Save()
{
    auto make = [](QSprites &s) {
        for (int i = 0; i < 3; ++i)
            s.add();
        s.changeImage(0, indexedImage(9, 9, 1), 0, false, 0, 0);
        s.changeImage(1, indexedImage(9, 9, 1), 0, false, 0, 0);
        s.changeImage(2, indexedImage(9, 9, 2), 0, false, 0, 0);
    };
    // Identical pixels on the same palette are written once by a real save.
    QSprites s, back;
    make(s);
    QVERIFY(s.toFile(dir.filePath("tmp.sff"), false, QSffVersion::V201, false, true));
    QVERIFY(back.fromFile(dir.filePath("tmp.sff"), false, false));
    QVERIFY(back.item(1)->info.hasImage);
    QVERIFY(s.toFile(dir.filePath("real.sff"), false, QSffVersion::V201, true, false));
    QVERIFY(back.fromFile(dir.filePath("real.sff"), false, false));
    QVERIFY(!back.item(1)->info.hasImage);
    QCOMPARE(back.item(1)->info.link, quint16(0));
    QVERIFY(back.item(2)->info.hasImage);

    // Version 1: the same palette as the sprite before costs 768 bytes less.
    QSprites t;
    make(t);
    t.item(2)->info.palette = t.item(1)->info.palette;
    QSignalSpy order(&t, &QSprites::orderMustBeChanged);
    QVERIFY(t.toFile(dir.filePath("v1.sff"), false, QSffVersion::V101, true, false));
    const QByteArray f = readAll(dir.filePath("v1.sff"));
    ByteReader in(reinterpret_cast<const uchar *>(f.constData()), f.size());
    in.seek(HeaderSize);
    const V1Subheader a = V1Subheader::read(in);
    in.seek(a.next);
    const V1Subheader b = V1Subheader::read(in);
    in.seek(b.next);
    const V1Subheader c = V1Subheader::read(in);
    QCOMPARE(a.samePalette, quint8(0));
    QCOMPARE(b.length, 0u); // folded into a link
    QCOMPARE(c.samePalette, quint8(1));
    QCOMPARE(a.length - c.length, 768u);
    QVERIFY(c.next == quint32(f.size()));
    QCOMPARE(order.count(), 0);
    QVERIFY(back.fromFile(dir.filePath("v1.sff"), false, false));
    QCOMPARE(back.image(2).pixel(3, 3), t.image(2).pixel(3, 3));

    // A character whose palette-1 sprites are cut apart by another palette.
    QSprites ch;
    make(ch);
    const int p1 = ch.addPalette(QRGBPal(), false, 1, 1);
    for (int i = 0; i < 3; ++i)
        ch.item(i)->info.group = quint16(10 + i); // 0,0 would be the portrait, left out
    ch.item(0)->info.palette = quint16(p1);
    ch.item(2)->info.palette = quint16(p1);
    QSignalSpy chOrder(&ch, &QSprites::orderMustBeChanged);
    QVERIFY(ch.toFile(dir.filePath("ch.sff"), true, QSffVersion::V101, true, true));
    QCOMPARE(chOrder.count(), 1);
    QCOMPARE(chOrder[0][0].value<QList<uint>>(), QList<uint>({0, 2}));
}

void TestSffEdge::atomicSaveAndCancel()
{
    QSprites s;
    for (int i = 0; i < 4; ++i) {
        s.add();
        s.changeImage(i, indexedImage(12, 12, i), 0, false, 0, 0);
    }
    const QString path = dir.filePath("keep.sff");
    QVERIFY(s.toFile(path, false, QSffVersion::V201, true, false));
    const QByteArray before = readAll(path);
    s.changeImage(1, indexedImage(30, 30, 77), 0, false, 0, 0);

    for (quint32 v : {QSffVersion::V101, QSffVersion::V201}) {
        int calls = 0;
        auto c = connect(&s, &QSprites::progress, this, [&](uint, uint, bool &allow) {
            if (++calls == 6)
                allow = false;
        });
        QVERIFY(!s.toFile(path, false, v, true, false));
        disconnect(c);
        QCOMPARE(readAll(path), before);
    }
    QVERIFY(s.isModified());

    // A folder in the way: no file can be written, the reason is reported.
    QSignalSpy errors(&s, &QSprites::fileError);
    QDir(dir.path()).mkdir("blocked.sff");
    QVERIFY(!s.toFile(dir.filePath("blocked.sff"), false, QSffVersion::V201, true, false));
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors[0][0].toString(), QString("Sprite saving error"));

    // Cancel at the first progress of a version 2 load: true, empty store.
    auto c = connect(&s, &QSprites::progress, this, [](uint, uint, bool &allow) { allow = false; });
    QVERIFY(s.fromFile(path, false, false));
    QCOMPARE(s.count(), 0);
    QCOMPARE(s.paletteCount(), 0);
    disconnect(c);
}

QTEST_GUILESS_MAIN(TestSffEdge)
#include "tst_sffedge.moc"
