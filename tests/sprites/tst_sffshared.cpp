// Sprite files whose stored bytes stay shared with the cache: loading them in
// one piece, saving them unchanged, and the odd layouts that must still load
// sprite by sprite.
#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"
#include "sprites/sfffile.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "testsupport.h"
#include <memory>
#include <set>

using namespace Sff;

using TestSupport::readAll;
using TestSupport::writeAll;

namespace {

QImage indexedImage(int w, int h, int seed)
{
    QImage img(w, h, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int i = 0; i < 256; ++i)
        table << qRgb((i * 3 + seed) & 255, (i * 5) & 255, (i * 11) & 255);
    img.setColorTable(table);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.scanLine(y)[x] = uchar((x / 3 + y * 5 + seed) % 200);
    return img;
}



// Pixels of every sprite, in order.
QList<QByteArray> pixels(const QSprites &s)
{
    QList<QByteArray> out;
    for (int i = 0; i < s.count(); ++i)
        out << s.imageData(i);
    return out;
}

} // namespace

class TestSffShared : public QObject
{
    Q_OBJECT

private slots:
    void init() { QBFCacheFilter::createFilters(); }
    void unchangedSaveIsIdentical_data();
    void unchangedSaveIsIdentical();
    void dataOutsideItsBlock();
    void largeFileProgress();
    void itemPool();

private:
    QTemporaryDir dir;
};

void TestSffShared::unchangedSaveIsIdentical_data()
{
    QTest::addColumn<int>("cacheMode");
    QTest::newRow("memory") << int(QSpriteCache::Memory);
    QTest::newRow("temporary file") << int(QSpriteCache::TemporaryFile);
}

// Sprites in both data blocks, links, and stored bytes big and small: what a
// save wrote, a load then a save writes again byte for byte.
void TestSffShared::unchangedSaveIsIdentical()
{
    QFETCH(int, cacheMode);
    QSprites made;
    for (int i = 0; i < 12; ++i) {
        made.add();
        made.changeImage(i, indexedImage(8 + i * 9, 6 + i * 7, i), 0, false, 0, 0);
        if (i % 3 == 2)
            made.setInfo(i, 0, QSpriteInfo::pack(quint16(i), 0), 0, 1); // tdata
    }
    made.add(); // a link to sprite 4
    made.setInfo(12, 0, QSpriteInfo::pack(40, 0), QSpriteInfo::pack(4, 0), 0);
    const QString first = dir.filePath("first.sff");
    QVERIFY(made.toFile(first, false, QSffVersion::V201, true, false));

    // A store made by hand saves links without their target's size; from a
    // loaded file on, the bytes are settled.
    QSprites settled;
    QVERIFY(settled.fromFile(first, false, false));
    const QString second = dir.filePath("second.sff");
    QVERIFY(settled.toFile(second, false, 0, true, false));

    QSprites loaded(cacheMode, false);
    QVERIFY(loaded.fromFile(second, false, false));
    QCOMPARE(loaded.count(), made.count());
    QCOMPARE(pixels(loaded), pixels(made));
    QVERIFY(loaded.item(5)->info.flags & 1);
    const QString third = dir.filePath("third.sff");
    QVERIFY(loaded.toFile(third, false, 0, true, false));
    QCOMPARE(readAll(third), readAll(second));
    QVERIFY(loaded.toFile(third, false, 0, true, false));
    QCOMPARE(readAll(third), readAll(second));
    // The loaded sprites survive the file going away.
    QVERIFY(QFile::remove(second));
    QCOMPARE(pixels(loaded), pixels(made));
}

// Real files don't always keep a sprite's bytes inside its block, and
// damaged ones cut them short: those are copied one by one, as before.
void TestSffShared::dataOutsideItsBlock()
{
    QSprites made;
    for (int i = 0; i < 3; ++i) {
        made.add();
        made.changeImage(i, indexedImage(20, 10 + i, i), 0, false, 0, 0);
    }
    const QString path = dir.filePath("block.sff");
    QVERIFY(made.toFile(path, false, QSffVersion::V201, true, false));
    QByteArray bytes = readAll(path);
    ByteReader in(reinterpret_cast<const uchar *>(bytes.constData()), bytes.size());
    V2Header h = V2Header::read(in);

    // The block claims less than the last sprite needs: still read in full.
    QByteArray shortBlock = bytes;
    V2Header cut = h;
    cut.ldataLength = h.ldataLength - 10;
    QByteArray header;
    ByteWriter hw(header);
    cut.write(hw, QSffVersion::V201);
    shortBlock.replace(0, HeaderSize, header);
    QVERIFY(writeAll(path, shortBlock));
    QSprites s;
    QVERIFY(s.fromFile(path, false, false));
    QCOMPARE(pixels(s), pixels(made));

    // Cut off inside the last sprite: the others load, the last is padded.
    QVERIFY(writeAll(path, bytes.left(bytes.size() - 10)));
    QSprites cutShort;
    QVERIFY(cutShort.fromFile(path, false, false));
    QCOMPARE(cutShort.count(), 3);
    QCOMPARE(cutShort.imageData(0), made.imageData(0));
    QCOMPARE(cutShort.imageData(1), made.imageData(1));

    // A block placed past the end of the file gives empty sprites, no crash.
    V2Header far = h;
    far.ldataOffset = 0x7FFFFFF0;
    header.clear();
    ByteWriter fw(header);
    far.write(fw, QSffVersion::V201);
    QByteArray farBytes = bytes;
    farBytes.replace(0, HeaderSize, header);
    QVERIFY(writeAll(path, farBytes));
    QSprites gone;
    QVERIFY(gone.fromFile(path, false, false));
    QCOMPARE(gone.count(), 3);
}

// Thousands of sprites: progress comes in about a thousand steps, from the
// first to the last, and the load keeps every sprite.
void TestSffShared::largeFileProgress()
{
    QSprites made;
    made.setUndoEnabled(false);
    const int n = 3000;
    for (int i = 0; i < n; ++i) {
        made.add();
        made.changeImage(i, indexedImage(4 + i % 7, 3 + i % 5, i), i == 0 ? 0 : 3, false, 0, 0);
    }
    const QString path = dir.filePath("large.sff");
    QVERIFY(made.toFile(path, false, QSffVersion::V201, true, false));
    QSprites s;
    QList<uint> seen;
    uint max = 0;
    connect(&s, &QSprites::progress, this, [&](uint pos, uint total, bool &) {
        seen << pos;
        max = total;
    });
    QVERIFY(s.fromFile(path, false, false));
    QCOMPARE(s.count(), made.count());
    QVERIFY2(seen.size() > 500 && seen.size() < 1500, qPrintable(QString::number(seen.size())));
    QCOMPARE(seen.first(), 0u);
    QCOMPARE(seen.last(), max);
    QVERIFY(std::is_sorted(seen.begin(), seen.end()));
    for (int i : {0, 1, 1234, n - 1})
        QCOMPARE(s.imageData(i), made.imageData(i));
}

void TestSffShared::itemPool()
{
    QSpriteItemPool pool;
    std::vector<QSpriteItem *> many(2500);
    pool.createMany(many.data(), qsizetype(many.size()));
    std::set<QSpriteItem *> distinct(many.begin(), many.end());
    QCOMPARE(distinct.size(), many.size());
    for (QSpriteItem *it : many) {
        QCOMPARE(it->cacheId, 0u);
        QVERIFY(!it->info.hasImage);
        it->info.group = 7;
    }
    // Records ended in bulk come back fresh, and no chunk is made for them.
    const qsizetype made = pool.size();
    pool.destroyMany(many.data(), qsizetype(many.size()));
    QCOMPARE(pool.freeCount(), qsizetype(many.size()));
    QSpriteItem *one = pool.create();
    QCOMPARE(one->info.group, quint16(0));
    pool.destroy(one);
    pool.createMany(many.data(), 10);
    for (int i = 0; i < 10; ++i)
        QCOMPARE(many[size_t(i)]->info.group, quint16(0));
    QCOMPARE(pool.size(), made);
    pool.destroyMany(many.data(), 10);
}

QTEST_GUILESS_MAIN(TestSffShared)
#include "tst_sffshared.moc"
