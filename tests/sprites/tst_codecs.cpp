#include <QRandomGenerator>
#include <QtTest>

#include "lz5reference.h"
#include "sffsamples.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qbypasscachefilter.h"
#include "sprites/qlz5cachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qpngcachefilter.h"
#include "sprites/qrawcachefilter.h"
#include "sprites/qrle5cachefilter.h"
#include "sprites/qrle8cachefilter.h"
#include "testsupport.h"

namespace {

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

// Expected padded rows of an indexed image.
QByteArray rows(int stride, std::initializer_list<std::initializer_list<int>> lines)
{
    QByteArray out;
    for (const auto &line : lines) {
        QByteArray row = bytes(line);
        row.append(stride - row.size(), '\0');
        out += row;
    }
    return out;
}

QByteArray pcxHeader(int width, int height, int bytesPerLine, int bitsPerPixel = 8, int planes = 1)
{
    QByteArray h(128, '\0');
    h[0] = 10;
    h[1] = 5;
    h[2] = 1;
    h[3] = char(bitsPerPixel);
    h[8] = char((width - 1) & 0xFF);
    h[9] = char((width - 1) >> 8);
    h[10] = char((height - 1) & 0xFF);
    h[11] = char((height - 1) >> 8);
    h[65] = char(planes);
    h[66] = char(bytesPerLine & 0xFF);
    h[67] = char(bytesPerLine >> 8);
    return h;
}

QImage indexedImage(int w, int h, const QByteArray &packed)
{
    QImage img = QSpriteSize(quint16(w), quint16(h)).toImage(QSpriteSize(quint16(w), quint16(h)).padLines(packed, w));
    QList<QRgb> table;
    for (int i = 0; i < 256; ++i)
        table << qRgb(i, 255 - i, (i * 7) & 0xFF);
    img.setColorTable(table);
    return img;
}

// Images that stress the LZ5 encoder: noise, long runs, short repeats,
// patterns at the offset limits, and shapes that the search finds hard.
QList<QPair<QString, QByteArray>> lz5Cases()
{
    QList<QPair<QString, QByteArray>> cases;
    QRandomGenerator rng(20240607);
    auto add = [&](const QString &name, const QByteArray &b) { cases.append({name, b}); };
    add(QStringLiteral("1x1"), bytes({7}));
    add(QStringLiteral("two"), bytes({7, 7}));
    add(QStringLiteral("run 10000"), QByteArray(10000, char(3)));
    add(QStringLiteral("run 263+7"), QByteArray(270, char(4)));
    for (int period : {2, 3, 5, 7, 64, 65, 255, 256, 257, 1023, 1024, 1025}) {
        QByteArray b;
        for (int i = 0; i < 6000; ++i)
            b.append(char((i % period) * 7 % 32 == 0 ? 1 : (i % period) % 32));
        add(QStringLiteral("period %1").arg(period), b);
    }
    {
        QByteArray b; // noise with few colours
        for (int i = 0; i < 20000; ++i)
            b.append(char(rng.bounded(3)));
        add(QStringLiteral("noise 3"), b);
    }
    {
        QByteArray b; // noise over 32 colours
        for (int i = 0; i < 20000; ++i)
            b.append(char(rng.bounded(32)));
        add(QStringLiteral("noise 32"), b);
    }
    {
        QByteArray b; // runs of random lengths, some past eight
        while (b.size() < 30000)
            b.append(QByteArray(1 + rng.bounded(rng.bounded(2) ? 12 : 300), char(rng.bounded(4))));
        add(QStringLiteral("random runs"), b);
    }
    {
        QByteArray b; // repeated blocks with mutations: long matches of all lengths
        QByteArray block;
        for (int i = 0; i < 700; ++i)
            block.append(char(rng.bounded(1 + (i / 100) % 5)));
        for (int r = 0; r < 40; ++r) {
            QByteArray copy = block.mid(rng.bounded(200), 200 + rng.bounded(500));
            for (int m = 0; m < 3; ++m)
                copy[rng.bounded(int(copy.size()))] = char(rng.bounded(32));
            b += copy;
        }
        add(QStringLiteral("mutated blocks"), b);
    }
    {
        // A sprite-like shape: transparent border, outlined blob, 1-pixel and 5-pixel-wide images.
        for (int w : {1, 5, 37, 120}) {
            const int h = w == 1 ? 500 : 90;
            QByteArray b(w * h, '\0');
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const int dx = x - w / 2, dy = y - h / 2;
                    const int d = dx * dx * 4 + dy * dy;
                    if (d < w * w + h * h / 8)
                        b[y * w + x] = char(d > w * w ? 1 : 2 + ((x + y) / 3) % 6);
                }
            add(QStringLiteral("blob %1 wide").arg(w), b);
        }
    }
    return cases;
}

// Pixels of a decoded indexed buffer without line padding.
QByteArray unpad(const QByteArray &padded, int w, int h)
{
    const QSpriteSize s{quint16(w), quint16(h)};
    return QSpriteSize::packedPixels(s.toImage(padded));
}

} // namespace

class TestCodecs : public QObject
{
    Q_OBJECT

private slots:
    void handBuiltStreams();
    void handBuiltPcx();
    void roundTrips();
    void lz5FastEncoderMatchesReference();
    void damagedStreamsStayInBounds();
    void sampleSprites();
};

void TestCodecs::handBuiltStreams()
{
    // RLE8: a run, a value that needs the run form, a plain value, a zero-count
    // run, and a run that crosses the line end (width 3, lines of 4 bytes).
    const QRLE8CacheFilter rle8;
    QCOMPARE(rle8.decode(bytes({0x43, 7, 0x41, 0x45, 5, 0x40, 9, 6}), QSpriteSize(3, 2)),
             rows(4, {{7, 7, 7}, {0x45, 5, 6}}));
    QCOMPARE(rle8.decode(bytes({0x45, 9, 0x42, 1}), QSpriteSize(3, 2)), rows(4, {{9, 9, 9}, {9, 9, 1}}));

    // RLE5 at width 5: runs cross the line end without skewing the next line;
    // a head byte without bit 7 means colour 0.
    const QRLE5CacheFilter rle5;
    QCOMPARE(rle5.decode(bytes({6, 0x81, 3, 0x44}), QSpriteSize(5, 2)), rows(8, {{3, 3, 3, 3, 3}, {3, 3, 4, 4, 4}}));
    QCOMPARE(rle5.decode(bytes({1, 0x01, 0x27, 2, 0x80, 0x25}), QSpriteSize(5, 2)),
             rows(8, {{0, 0, 7, 7, 5}, {5, 5, 0, 0, 0}}));

    const QLZ5CacheFilter lz5;
    // LZ5 offset 1 repeats the last byte: 3, 5, then 5 three times, then a run of 7.
    QCOMPARE(lz5.decode(bytes({0x04, 0x23, 0x25, 0x02, 0x00, 0x67}), QSpriteSize(4, 2)),
             rows(4, {{3, 5, 5, 5}, {5, 7, 7, 7}}));
    // Four short LZ packets carry three offset bytes; the fourth offset (210)
    // is rebuilt from the top bits of the four length bytes.
    {
        QByteArray expect = bytes({1, 2, 3}) + QByteArray(200, '\0') + bytes({1, 2, 3, 2, 3, 2, 3, 1, 2, 3});
        expect.append(3, '\0');
        QCOMPARE(lz5.decode(bytes({0xF0, 0x21, 0x22, 0x23, 0x00, 192, 0xC2, 0xCA, 0x41, 0x01, 0x01, 0x03, 0x42}),
                            QSpriteSize(213, 1)),
                 expect);
    }
    // An incomplete last group carries every offset byte.
    QCOMPARE(lz5.decode(bytes({0x0C, 0x21, 0x22, 0x01, 0x01, 0x01, 0x01}), QSpriteSize(6, 1)),
             rows(8, {{1, 2, 1, 2, 1, 2}}));
    // A long LZ packet: offset 262 from two high bits and a byte, length 5.
    {
        QByteArray expect = bytes({9}) + QByteArray(261, '\0') + bytes({9, 0, 0, 0, 0});
        expect.append(1, '\0');
        QCOMPARE(lz5.decode(bytes({0x04, 0x29, 0x00, 253, 0x40, 0x05, 0x02}), QSpriteSize(267, 1)), expect);
    }
    // The encoder produces exactly the short group of the edge case above.
    {
        const QByteArray pixels = bytes({1, 2, 1, 2, 1, 2});
        QCOMPARE(QLZ5CacheFilter::encode(pixels, true), bytes({0x04, 0x21, 0x22, 0x03, 0x01}));
        QCOMPARE(QLZ5CacheFilter::encode(pixels, false), bytes({0x00, 0x21, 0x22, 0x21, 0x22, 0x21, 0x22}));
        QCOMPARE(QLZ5CacheFilter::encode(QByteArray(300, char(2)), false), bytes({0x00, 0x02, 255, 0x02, 29}));
    }
    // RLE8 encoder forms.
    QCOMPARE(QRLE8CacheFilter::encode(bytes({5, 5, 5, 0x41, 0xC0, 7})), bytes({0x43, 5, 0x41, 0x41, 0xC0, 7}));
}

void TestCodecs::handBuiltPcx()
{
    // Lines of an odd width stored with bytesPerLine 3; values of 192 and up need the run form.
    const QByteArray pixels = bytes({0xC2, 5, 7, 0xC1, 0xC8, 2, 3});
    QImage noTail = QPCXCacheFilter::read(pcxHeader(3, 2, 3) + pixels);
    QCOMPARE(noTail.format(), QImage::Format_Indexed8);
    QCOMPARE(noTail.size(), QSize(3, 2));
    QVERIFY(noTail.colorTable().isEmpty());
    QCOMPARE(QSpriteSize::rawBytes(noTail), rows(4, {{5, 5, 7}, {0xC8, 2, 3}}));

    // The 256-colour tail after the byte 12 becomes the colour table.
    QByteArray tail = bytes({12});
    for (int i = 0; i < 256; ++i)
        tail += bytes({i, 0, 255 - i});
    QImage withTail = QPCXCacheFilter::read(pcxHeader(3, 2, 3) + pixels + tail);
    QCOMPARE(withTail.colorCount(), 256);
    QCOMPARE(withTail.color(0xC8), qRgb(0xC8, 0, 255 - 0xC8));
    // A byte other than 12 after the pixels: no colour table.
    QVERIFY(QPCXCacheFilter::read(pcxHeader(3, 2, 3) + pixels + bytes({11}) + tail.mid(1)).colorTable().isEmpty());

    // Padding bytes past the width are dropped, and runs go on into the next line.
    QImage padded = QPCXCacheFilter::read(pcxHeader(3, 2, 4) + bytes({0xC6, 9, 1, 2}));
    QCOMPARE(QSpriteSize::rawBytes(padded), rows(4, {{9, 9, 9}, {9, 9, 1}}));

    // Not a PCX, or a depth that maps to no format: null.
    QVERIFY(QPCXCacheFilter::read(QByteArray()).isNull());
    QByteArray wrong = pcxHeader(3, 2, 4);
    wrong[1] = 3;
    QVERIFY(QPCXCacheFilter::read(wrong).isNull());
    QVERIFY(QPCXCacheFilter::read(pcxHeader(3, 2, 4, 4, 1)).isNull());

    // The filter lays the pixels out in the sprite's size.
    const QPCXCacheFilter pcx;
    QCOMPARE(pcx.decode(pcxHeader(3, 2, 3) + pixels, QSpriteSize(3, 2)), rows(4, {{5, 5, 7}, {0xC8, 2, 3}}));

    // Writer: header fields and the run rules.
    QImage img = indexedImage(3, 1, bytes({200, 4, 4}));
    const QByteArray file = QPCXCacheFilter::write(img);
    QCOMPARE(file.size(), 128 + 5 + 769);
    QCOMPARE(file.mid(0, 4), bytes({10, 5, 1, 8}));
    QCOMPARE(quint8(file.at(65)), quint8(1));
    QCOMPARE(quint8(file.at(66)), quint8(4)); // the image's padded line length
    QCOMPARE(quint8(file.at(68)), quint8(1));
    QCOMPARE(file.mid(128, 5), bytes({0xC1, 200, 0xC2, 4, 0}));
    QCOMPARE(quint8(file.at(133)), quint8(12));
}

void TestCodecs::roundTrips()
{
    const QRLE8CacheFilter rle8;
    const QLZ5CacheFilter lz5;
    const QPNGCacheFilter png;
    const QPCXCacheFilter pcx;
    QRandomGenerator rng(77);
    for (const auto &c : lz5Cases()) {
        const QByteArray px = c.second;
        // Lay each case out as an image whose width divides its size.
        int w = 1;
        for (int cand : {120, 37, 5, 3, 2})
            if (px.size() % cand == 0 && px.size() / cand <= 0xFFFF) {
                w = cand;
                break;
            }
        const int h = int(px.size()) / w;
        if (h > 0xFFFF)
            continue;
        const QSpriteSize size{quint16(w), quint16(h)};
        QCOMPARE(unpad(lz5.decode(QLZ5CacheFilter::encode(px, true), size), w, h), px);
        QCOMPARE(unpad(lz5.decode(QLZ5CacheFilter::encode(px, false), size), w, h), px);

        // RLE8, PCX and PNG keep all eight bits.
        QByteArray wide = px;
        for (char &b : wide)
            b = char(quint8(b) * 9 + (rng.bounded(8) == 0 ? 0x40 : 0));
        QCOMPARE(unpad(rle8.decode(QRLE8CacheFilter::encode(wide), size), w, h), wide);
        const QImage img = indexedImage(w, h, wide);
        const QImage back = QPCXCacheFilter::read(QPCXCacheFilter::write(img));
        QCOMPARE(QSpriteSize::packedPixels(back), wide);
        QCOMPARE(back.colorTable(), img.colorTable());
        QCOMPARE(unpad(png.decode(QPNGCacheFilter::encode(img), size), w, h), wide);
    }

    // 32-bit images through PCX (three and four planes) and PNG.
    for (QImage::Format f : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
        QImage img(7, 5, f);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x)
                img.setPixel(x, y, f == QImage::Format_RGB32 ? qRgb(x * 30, y * 50, 200) : qRgba(x * 30, y * 50, 200, x * 36));
        const QImage back = QPCXCacheFilter::read(QPCXCacheFilter::write(img));
        QCOMPARE(back.format(), f);
        QCOMPARE(back, img);
        const QSpriteSize size = QSpriteSize::of(img);
        QCOMPARE(pcx.decode(QPCXCacheFilter::write(img), size), QSpriteSize::rawBytes(img));
        QCOMPARE(png.decode(QPNGCacheFilter::encode(img), size), QSpriteSize::rawBytes(img));
    }

    // PNG of an indexed image keeps the indices and drops the colours.
    const QImage idx = indexedImage(4, 4, QByteArray(16, char(9)));
    const QImage pngBack = QPNGCacheFilter::read(QPNGCacheFilter::encode(idx));
    QCOMPARE(pngBack.format(), QImage::Format_Indexed8);
    QCOMPARE(pngBack.pixelIndex(2, 2), 9);
    QCOMPARE(pngBack.color(9), qRgb(0, 0, 0));

    // Raw and pass-through.
    QCOMPARE(QByPassCacheFilter().decode(bytes({1, 2, 3}), QSpriteSize(9, 9)), bytes({1, 2, 3}));
    QCOMPARE(QRawCacheFilter().decode(bytes({1, 2, 3}), QSpriteSize(2, 2)), bytes({1, 2, 3, 0, 0, 0, 0, 0}));
    QCOMPARE(QRawCacheFilter().decode(QByteArray(20, 'x'), QSpriteSize(1, 2)).size(), 8);
}

void TestCodecs::lz5FastEncoderMatchesReference()
{
    for (const auto &c : lz5Cases()) {
        const QByteArray fast = QLZ5CacheFilter::encode(c.second, true);
        const QByteArray ref = Lz5Reference::encode(c.second, true);
        if (fast != ref)
            QFAIL(qPrintable(QStringLiteral("%1: %2 bytes against %3").arg(c.first).arg(fast.size()).arg(ref.size())));
        QCOMPARE(QLZ5CacheFilter::encode(c.second, false), Lz5Reference::encode(c.second, false));
    }
    // Many small random images, where every rule of the search gets its turn.
    QRandomGenerator rng(4242);
    for (int t = 0; t < 400; ++t) {
        const int n = 1 + rng.bounded(600);
        const int colours = 1 + rng.bounded(t % 3 == 0 ? 32 : 4);
        QByteArray px;
        while (px.size() < n)
            px.append(QByteArray(1 + rng.bounded(rng.bounded(4) == 0 ? 20 : 3), char(rng.bounded(colours))));
        px.truncate(n);
        if (QLZ5CacheFilter::encode(px, true) != Lz5Reference::encode(px, true))
            QFAIL(qPrintable(QStringLiteral("random case %1 differs: %2").arg(t).arg(QString::fromLatin1(px.toHex()))));
    }
}

void TestCodecs::damagedStreamsStayInBounds()
{
    // Whatever the bytes, every decoder returns exactly the image's buffer.
    const QRLE8CacheFilter rle8;
    const QRLE5CacheFilter rle5;
    const QLZ5CacheFilter lz5;
    const QPCXCacheFilter pcx;
    const QPNGCacheFilter png;
    QRandomGenerator rng(99);
    for (int t = 0; t < 300; ++t) {
        QByteArray junk(rng.bounded(400), '\0');
        for (char &b : junk)
            b = char(rng.bounded(256));
        const QSpriteSize size{quint16(1 + rng.bounded(40)), quint16(1 + rng.bounded(40))};
        QCOMPARE(rle8.decode(junk, size).size(), size.byteCount());
        QCOMPARE(rle8.decode(junk, QSpriteSize(size.width, size.height, QImage::Format_ARGB32)).size(),
                 qsizetype(size.width) * 4 * size.height);
        QCOMPARE(rle5.decode(junk, size).size(), size.byteCount());
        QCOMPARE(lz5.decode(junk, size).size(), size.byteCount());
        QCOMPARE(pcx.decode(pcxHeader(size.width, size.height, rng.bounded(90)) + junk, size).size(), size.byteCount());
        QCOMPARE(png.decode(junk, size).size(), size.byteCount());
    }
    // A back reference before the start of the image reads zeros, and a
    // stream that ends early leaves the rest blank.
    QCOMPARE(lz5.decode(bytes({0x02, 0x21, 0x02, 0x40}), QSpriteSize(6, 1)), rows(8, {{1, 0, 0, 0, 0, 0}}));
    // A run longer than the image stops at its end.
    QCOMPARE(rle8.decode(bytes({0x7F, 3, 0x7F, 4}), QSpriteSize(2, 2)), rows(4, {{3, 3}, {3, 3}}));
    // Empty sizes and empty streams.
    QVERIFY(lz5.decode(bytes({1, 2, 3}), QSpriteSize(0, 5)).isEmpty());
    QCOMPARE(rle5.decode(QByteArray(), QSpriteSize(3, 1)), QByteArray(4, '\0'));
    QVERIFY(QLZ5CacheFilter::encode(QByteArray(), true).isEmpty());
    // A header asking for a huge image with no data behind it: no allocation,
    // no time spent on lines that can only be blank.
    QVERIFY(QPCXCacheFilter::read(pcxHeader(65535, 65535, 65535, 8, 4)).isNull());
    QCOMPARE(QPCXCacheFilter::read(pcxHeader(4000, 4000, 65535, 8, 1) + bytes({0xFF, 1})).pixelIndex(62, 0), 1);
    QVERIFY(QPNGCacheFilter::read(QByteArray("\x89PNG\r\n\x1a\n", 8)).isNull());
}

void TestCodecs::sampleSprites()
{
    BF_REQUIRE_SAMPLE();
    const QList<SffSamples::StoredSprite> all = SffSamples::readAll(TestSupport::sampleDir());
    QVERIFY(all.size() > 100);
    const QPCXCacheFilter pcx;
    const QLZ5CacheFilter lz5;
    const QRLE8CacheFilter rle8;
    int lzCount = 0, rleCount = 0, pcxCount = 0;
    QSet<QByteArray> seen;
    for (const SffSamples::StoredSprite &s : all) {
        const QString where = QStringLiteral("%1 #%2").arg(s.file).arg(s.index);
        QByteArray pixels;
        QSpriteSize size(s.width, s.height);
        if (s.format == 1) {
            const QImage img = QPCXCacheFilter::read(s.bytes);
            QVERIFY2(!img.isNull(), qPrintable(where));
            QCOMPARE(pcx.decode(s.bytes, QSpriteSize::of(img)), QSpriteSize::rawBytes(img));
            pixels = QSpriteSize::packedPixels(img);
            size = QSpriteSize::of(img);
            // Written back and read again, the pixels stay.
            QCOMPARE(QSpriteSize::packedPixels(QPCXCacheFilter::read(QPCXCacheFilter::write(img))), pixels);
            ++pcxCount;
        } else if (s.format == 2) {
            pixels = unpad(rle8.decode(s.bytes, size), s.width, s.height);
            QCOMPARE(unpad(rle8.decode(QRLE8CacheFilter::encode(pixels), size), s.width, s.height), pixels);
            ++rleCount;
        } else if (s.format == 4) {
            pixels = unpad(lz5.decode(s.bytes, size), s.width, s.height);
            ++lzCount;
        } else {
            continue;
        }
        // Every indexed sprite, as 5-bit colours, through both LZ5 encoders
        // (once per distinct image: the sample repeats many).
        for (char &b : pixels)
            b = char(b & 31);
        if (seen.contains(pixels))
            continue;
        seen.insert(pixels);
        const QByteArray fast = QLZ5CacheFilter::encode(pixels, true);
        QVERIFY2(fast == Lz5Reference::encode(pixels, true), qPrintable(where));
        QCOMPARE(unpad(lz5.decode(fast, size), size.width, size.height), pixels);
    }
    QVERIFY(lzCount > 0 && rleCount > 0 && pcxCount > 0);
    qInfo("decoded %d PCX, %d RLE8 and %d LZ5 sprites; %d distinct images encoded both ways", pcxCount,
          rleCount, lzCount, int(seen.size()));
}

QTEST_GUILESS_MAIN(TestCodecs)
#include "tst_codecs.moc"
