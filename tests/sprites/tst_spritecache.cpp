#include <QFile>
#include <QSet>
#include <QtTest>

#include "sprites/qbfcachefilter.h"
#include "sprites/qbypasscachefilter.h"
#include "sprites/qrle8cachefilter.h"
#include "sprites/qspritecache.h"
#include "sprites/qspriterecordpool.h"
#include "sprites/qsprites.h"

class TestSpriteCache : public QObject
{
    Q_OBJECT

private slots:
    void storeAndFetch_data();
    void storeAndFetch();
    void compressionRule();
    void fileModeGrowsAndClears();
    void recordPool();
    void slicesOfOneBlock_data();
    void slicesOfOneBlock();
    void handlesStayValid();
    void undoCache();
};

void TestSpriteCache::storeAndFetch_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("compress");
    QTest::newRow("memory") << int(QSpriteCache::Memory) << false;
    QTest::newRow("memory, compressed") << int(QSpriteCache::Memory) << true;
    QTest::newRow("file") << int(QSpriteCache::TemporaryFile) << false;
    QTest::newRow("file, compressed") << int(QSpriteCache::TemporaryFile) << true;
}

void TestSpriteCache::storeAndFetch()
{
    QFETCH(int, mode);
    QFETCH(bool, compress);
    QSpriteCache cache(QStringLiteral("bftest"), mode, compress);
    QCOMPARE(cache.mode(), mode);
    QCOMPARE(cache.fileName().isEmpty(), mode == QSpriteCache::Memory);

    const QByteArray raw(5000, 'a');
    const QByteArray other = QByteArray("some other pixels").repeated(40);
    const quint32 a = cache.add(raw, true);
    const quint32 b = cache.add(other, true);
    const quint32 c = cache.add(raw, true);
    QVERIFY(a != 0 && b != 0 && c != 0 && a != b && b != c && a != c);
    QCOMPARE(cache.count(), 3);

    QByteArray out;
    QVERIFY(cache.get(a, out));
    QCOMPARE(out, raw);
    QVERIFY(cache.get(b, out));
    QCOMPARE(out, other);
    QVERIFY(!cache.get(0, out));
    QVERIFY(!cache.get(a + b + c + 1000, out));

    QCOMPARE(cache.originalTotal(), quint64(2 * raw.size() + other.size()));
    if (compress)
        QVERIFY(cache.storedTotal() < cache.originalTotal());
    else
        QCOMPARE(cache.storedTotal(), cache.originalTotal());

    // Equal contents are the same; a replaced entry no longer is.
    QVERIFY(cache.same(a, c));
    QVERIFY(!cache.same(a, b));
    QVERIFY(!cache.same(a, 0));
    QVERIFY(cache.replace(c, other, true));
    QVERIFY(cache.same(b, c));
    QVERIFY(cache.get(c, out));
    QCOMPARE(out, other);
    QVERIFY(!cache.replace(0, raw, true));

    // Codec bytes are stored as they are and decoded on the way out; the
    // pass-through filter lifts them out untouched.
    const QByteArray rle = QRLE8CacheFilter::encode(QByteArray(12, char(3)));
    const quint32 d = cache.add(rle, false);
    const QRLE8CacheFilter rle8;
    QVERIFY(cache.get(d, out, &rle8, QSpriteSize(4, 3)));
    QCOMPARE(out, QByteArray(12, char(3)));
    QByPassCacheFilter byPass;
    QVERIFY(cache.get(d, out, &byPass));
    QCOMPARE(out, rle);

    QVERIFY(cache.remove(b));
    QVERIFY(!cache.remove(b));
    QVERIFY(!cache.get(b, out));
    QVERIFY(!cache.contains(b));
    QCOMPARE(cache.count(), 3);
    QVERIFY(cache.get(c, out));
    QCOMPARE(out, other);

    cache.clear();
    QCOMPARE(cache.count(), 0);
    QCOMPARE(cache.storedTotal(), quint64(0));
    QVERIFY(!cache.get(a, out));
    const quint32 e = cache.add(QByteArray(), true);
    QVERIFY(cache.get(e, out));
    QVERIFY(out.isEmpty());
}

void TestSpriteCache::compressionRule()
{
    // Raw bytes stored without compressing them, while compression is on, come
    // back blank (they are taken for compressed); with it off they come back.
    const QByteArray raw = QByteArray("\x01\x02\x03\x04\x05\x06\x07\x08", 8).repeated(8);
    QSpriteCache on(QStringLiteral("bftest"), QSpriteCache::Memory, true);
    QByteArray out("x");
    QVERIFY(on.get(on.add(raw, false), out));
    QVERIFY(out.isEmpty());
    // Even bytes that look like a huge compressed block are refused quickly.
    QVERIFY(on.get(on.add(QByteArray("\x7f\xff\xff\xff garbage", 12), false), out));
    QVERIFY(out.isEmpty());

    QSpriteCache off(QStringLiteral("bftest"), QSpriteCache::Memory, false);
    QVERIFY(off.get(off.add(raw, false), out));
    QCOMPARE(out, raw);
    QVERIFY(off.get(off.add(raw, true), out));
    QCOMPARE(out, raw);

    // configure() starts over with new settings.
    off.configure(QSpriteCache::TemporaryFile, true);
    QCOMPARE(off.count(), 0);
    QVERIFY(off.compression());
    QVERIFY(!off.fileName().isEmpty());
    const quint32 id = off.add(raw, true);
    QVERIFY(off.get(id, out));
    QCOMPARE(out, raw);
}

void TestSpriteCache::fileModeGrowsAndClears()
{
    QSpriteCache cache(QStringLiteral("bftest"), QSpriteCache::TemporaryFile, false);
    const QString name = cache.fileName();
    QVERIFY(name.startsWith(QDir::tempPath() + QStringLiteral("/bftest")));
    QVERIFY(QFile::exists(name));

    const quint32 a = cache.add(QByteArray(100, 'a'), true);
    const quint32 b = cache.add(QByteArray(50, 'b'), true);
    QCOMPARE(cache.fileSize(), qint64(150));
    // Replacing appends the new bytes; the old ones stay as dead space.
    QVERIFY(cache.replace(a, QByteArray(300, 'c'), true));
    QCOMPARE(cache.fileSize(), qint64(450));
    QByteArray out;
    QVERIFY(cache.get(a, out));
    QCOMPARE(out, QByteArray(300, 'c'));
    QVERIFY(cache.get(b, out));
    QCOMPARE(out, QByteArray(50, 'b'));
    // Removing doesn't shrink the file; clearing empties it.
    QVERIFY(cache.remove(b));
    QCOMPARE(cache.fileSize(), qint64(450));
    cache.clear();
    QCOMPARE(cache.fileSize(), qint64(0));
    const quint32 c = cache.add(QByteArray(10, 'd'), true);
    QVERIFY(cache.get(c, out));
    QCOMPARE(out, QByteArray(10, 'd'));
    QCOMPARE(cache.fileSize(), qint64(10));
}

void TestSpriteCache::recordPool()
{
    QSpriteRecordPool pool;
    {
        QSpriteCache first(QStringLiteral("bftest"), QSpriteCache::Memory, true, -1, &pool);
        QCOMPARE(first.recordPool(), &pool);
        for (int i = 0; i < 10; ++i)
            first.add(QByteArray(1, char(i)), true);
        QCOMPARE(pool.size(), 10);
        first.clear();
        QCOMPARE(pool.freeCount(), 10);
        // Released records are taken again before new ones are made.
        QSpriteCache second(QStringLiteral("bftest"), QSpriteCache::Memory, true, -1, &pool);
        for (int i = 0; i < 12; ++i)
            second.add(QByteArray(1, char(i)), true);
        QCOMPARE(pool.size(), 12);
        QCOMPARE(pool.freeCount(), 0);
        // Handles are unique across caches.
        const quint32 id = second.add(QByteArray("z"), true);
        QVERIFY(!first.contains(id));
    }
    // Dying caches release their records and purge the free ones.
    QCOMPARE(pool.freeCount(), 0);
    QCOMPARE(pool.size(), 0);
    // A cache made without a pool keeps one of its own.
    QSpriteCache alone;
    QVERIFY(alone.recordPool() && alone.recordPool() != &pool);
}

void TestSpriteCache::slicesOfOneBlock_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("memory") << int(QSpriteCache::Memory);
    QTest::newRow("file") << int(QSpriteCache::TemporaryFile);
}

// Items cut from one block: stored as they are (compression on or not), cut
// at the block's end, independent of the caller's copy and of each other.
void TestSpriteCache::slicesOfOneBlock()
{
    QFETCH(int, mode);
    QSpriteCache cache(QStringLiteral("bftest"), mode, true);
    QByteArray block("0123456789abcdefghij");
    const QSpriteCache::Slice slices[] = {{0, 4}, {4, 6}, {18, 10}, {25, 3}};
    quint32 ids[4] = {};
    cache.addSlices(block, slices, 4, ids);
    QCOMPARE(cache.count(), 4);
    QCOMPARE(QSet<quint32>(std::begin(ids), std::end(ids)).size(), 4);
    QVERIFY(!QSet<quint32>(std::begin(ids), std::end(ids)).contains(0));
    QCOMPARE(cache.storedTotal(), quint64(12));
    QCOMPARE(cache.fileSize(), mode == QSpriteCache::Memory ? 0 : block.size());

    block.fill('x'); // the caller's copy changes, the items don't
    QByPassCacheFilter byPass;
    QByteArray out;
    const QList<QByteArray> expected = {"0123", "456789", "ij", ""};
    for (int i = 0; i < 4; ++i) {
        QVERIFY(cache.get(ids[i], out, &byPass));
        QCOMPARE(out, expected[i]);
    }
    QByteArrayView view;
    QCOMPARE(cache.peek(ids[1], view), mode == QSpriteCache::Memory);
    if (mode == QSpriteCache::Memory)
        QCOMPARE(view, QByteArrayView("456789"));
    QVERIFY(!cache.peek(0, view));

    // Writing into what get() returned leaves the item alone.
    QVERIFY(cache.get(ids[0], out, &byPass));
    out[0] = 'Z';
    QVERIFY(cache.get(ids[0], out, &byPass));
    QCOMPARE(out, QByteArray("0123"));

    QVERIFY(cache.replace(ids[1], QByteArray("new"), false));
    QVERIFY(cache.get(ids[1], out, &byPass));
    QCOMPARE(out, QByteArray("new"));
    QVERIFY(cache.get(ids[2], out, &byPass));
    QCOMPARE(out, QByteArray("ij"));
    const quint32 copy = cache.copyEntry(cache, ids[2]);
    QVERIFY(cache.same(copy, ids[2]));
    QVERIFY(cache.remove(ids[0]));
    QVERIFY(!cache.contains(ids[0]));
    QCOMPARE(cache.count(), 4);
    QVERIFY(cache.get(copy, out, &byPass));
    QCOMPARE(out, QByteArray("ij"));
    cache.clear();
    QCOMPARE(cache.count(), 0);
    QVERIFY(!cache.get(ids[2], out, &byPass));

    // A null block and no slices cost nothing and break nothing.
    cache.addSlices(QByteArray(), slices, 2, ids);
    QVERIFY(cache.get(ids[1], out, &byPass));
    QVERIFY(out.isEmpty());
    cache.addSlices(block, slices, 0, ids);
    QCOMPARE(cache.count(), 2);
}

// Handles stay valid across thousands of adds and removes; a removed handle
// never names the record's next item, also in another cache of the same pool.
void TestSpriteCache::handlesStayValid()
{
    QSpriteRecordPool pool;
    QSpriteCache cache(QStringLiteral("bftest"), QSpriteCache::Memory, false, -1, &pool);
    QSpriteCache other(QStringLiteral("bftest"), QSpriteCache::Memory, false, -1, &pool);
    QList<quint32> ids;
    for (int i = 0; i < 3000; ++i)
        ids << cache.add(QByteArray::number(i), false);
    for (int i = 0; i < 3000; i += 2)
        QVERIFY(cache.remove(ids[i]));
    QCOMPARE(cache.count(), 1500);
    QByteArray out;
    for (int i = 1; i < 3000; i += 2) {
        QVERIFY(cache.get(ids[i], out));
        QCOMPARE(out, QByteArray::number(i));
        QVERIFY(!other.contains(ids[i]));
    }
    const quint32 reused = other.add(QByteArray("again"), false); // takes a freed record
    QVERIFY(!ids.contains(reused));
    QVERIFY(!cache.contains(reused));
    QVERIFY(!other.contains(ids[0]));
}

void TestSpriteCache::undoCache()
{
    // A store without the program's shared undo cache makes its own: a
    // compressed temporary file, gone with the store.
    QString name;
    {
        QSprites own;
        QSpriteCache *undo = own.undoCache();
        QCOMPARE(own.undoCache(), undo);
        QCOMPARE(undo->mode(), int(QSpriteCache::TemporaryFile));
        QVERIFY(undo->compression());
        QVERIFY(QFileInfo(undo->fileName()).fileName().startsWith(QStringLiteral("sprUndo")));
        const quint32 id = undo->add(QByteArray(2000, 'u'), true);
        QVERIFY(undo->fileSize() < 2000);
        QByteArray out;
        QVERIFY(undo->get(id, out));
        QCOMPARE(out, QByteArray(2000, 'u'));
        name = undo->fileName();
        QVERIFY(QFile::exists(name));
    }
    QVERIFY(!QFile::exists(name));
    QSpriteCache shared;
    QSprites given;
    given.setUndoCache(&shared);
    QCOMPARE(given.undoCache(), &shared);
}

QTEST_GUILESS_MAIN(TestSpriteCache)
#include "tst_spritecache.moc"
