// Saving never changes the store: every kind of save (plain, Save As to each
// version, a test copy, cancelled, failed) leaves records, palettes, cached
// bytes, images and the undo stack as they were; a real save only clears
// `modified` and takes the file's name and version.
#include "sprites/qbfcachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qsprites.h"
#include "sprites/sfffile.h"
#include "spritesnapshot.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "testsupport.h"

using namespace Sff;
using TestSupport::SpriteStoreSnapshot;

using TestSupport::readAll;

namespace {

QImage indexedImage(int w, int h, int seed, int colours = 256)
{
    QImage img(w, h, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int i = 0; i < 256; ++i)
        table << qRgb((i * 3 + seed) & 255, (i * 5 + seed * 7) & 255, (i * 11) & 255);
    for (int i = colours; i < 256; ++i)
        table[i] = table[colours - 1];
    img.setColorTable(table);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.scanLine(y)[x] = uchar((x / 2 + y * 3 + seed) % colours);
    return img;
}

QImage trueColourImage(int w, int h, int seed)
{
    QImage img(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.setPixel(x, y, qRgba(x * 40 + seed, y * 30, (x * y * 7) & 255, x == 0 ? 0 : 255));
    return img;
}


} // namespace

class TestSffSave : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void savesLeaveTheStoreAsItWas();
    void damagedSpriteSavesAsItCame();

private:
    QTemporaryDir dir;
};

void TestSffSave::initTestCase()
{
    QBFCacheFilter::createFilters();
    QVERIFY(dir.isValid());
}

void TestSffSave::savesLeaveTheStoreAsItWas()
{
    // A file with what a save could be tempted to change: duplicates on one
    // palette and across two, a link, a 32-colour palette (packed otherwise
    // in some versions), true colour (reduced by the older versions).
    {
        QSprites made;
        for (int i = 0; i < 8; ++i)
            made.add();
        made.changeImage(0, indexedImage(12, 9, 1), 0, false, 0, 0);
        made.changeImage(1, indexedImage(12, 9, 1), 0, false, 0, 0); // same pixels, same palette
        made.changeImage(2, indexedImage(12, 9, 2), 0, false, 0, 0);
        made.changeImage(3, indexedImage(16, 5, 3, 20), 0, false, 0, 0);
        made.changeImage(4, trueColourImage(7, 6, 4), 0, false, 0, 0);
        made.changeImage(5, trueColourImage(7, 6, 4), 0, false, 0, 0);
        made.changeImage(6, indexedImage(12, 9, 1), 0, false, 0, 0);
        made.setInfo(6, 0, QSpriteInfo::pack(6, 0), QSpriteInfo::pack(0, 1), 0); // other palette
        made.setInfo(7, 0, QSpriteInfo::pack(7, 0), QSpriteInfo::pack(2, 0), 0); // link to 2
        QVERIFY(made.toFile(dir.filePath("made.sff"), false, QSffVersion::V201, false, true));
    }
    QSprites s;
    QVERIFY(s.fromFile(dir.filePath("made.sff"), false, false));
    QList<QImage> loaded;
    for (int i = 0; i < s.count(); ++i)
        loaded << s.image(i);
    // Edits since the load, on the undo stack.
    s.changeImage(2, indexedImage(12, 9, 1), 3, false, 0, 0);
    s.changeImage(3, trueColourImage(5, 5, 9), 0, false, 0, 0);
    s.move(5, 1);

    const QString plain = dir.filePath("plain.sff");
    QVERIFY(QFile::copy(dir.filePath("made.sff"), plain));
    s.setFileName(plain);
    SpriteStoreSnapshot expected = SpriteStoreSnapshot::of(s);
    auto unchanged = [&](const char *what) {
        const QString diff = SpriteStoreSnapshot::of(s).differenceFrom(expected);
        QVERIFY2(diff.isEmpty(), qPrintable(QString("%1: %2").arg(what, diff)));
    };

    // Test copies and backups change nothing, not even `modified`.
    for (quint32 v : {QSffVersion::V101, QSffVersion::V200, QSffVersion::V201}) {
        QVERIFY(s.toFile(dir.filePath("copy.sff"), false, v, false, true));
        unchanged("temporary save");
    }
    QVERIFY(s.isModified());

    // Cancelled part way, or refused by the file system: the store is as it
    // was, and so is the file that was there.
    const QByteArray before = readAll(plain);
    for (quint32 v : {QSffVersion::V101, QSffVersion::V200, QSffVersion::V201}) {
        int calls = 0;
        auto c = connect(&s, &QSprites::progress, this, [&](uint, uint, bool &allow) { allow = ++calls < 12; });
        QVERIFY(!s.toFile(plain, false, v, true, false));
        disconnect(c);
        unchanged("cancelled save");
        QCOMPARE(readAll(plain), before);
    }
    QFile blocker(dir.filePath("blocker"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    QSignalSpy errors(&s, &QSprites::fileError);
    QVERIFY(!s.toFile(dir.filePath("blocker/in.sff"), false, QSffVersion::V101, true, false));
    QCOMPARE(errors.count(), 1);
    unchanged("failed save");

    // Real saves: only `modified`, the name and the version move.
    QVERIFY(s.toFile(plain, false, 0, true, false));
    expected.modified = false;
    unchanged("plain save");
    for (quint32 v : {QSffVersion::V101, QSffVersion::V200, QSffVersion::V201, QSffVersion::V200}) {
        const QString path = dir.filePath(QString("as%1.sff").arg(v, 0, 16));
        QVERIFY(s.toFile(path, false, v, true, false));
        expected.fileName = path;
        expected.version = v;
        unchanged("save as");
    }

    // And the history still leads back to what was loaded.
    s.undoStack()->setIndex(0);
    QCOMPARE(s.count(), loaded.size());
    for (int i = 0; i < s.count(); ++i)
        QVERIFY2(s.image(i) == loaded[i], qPrintable(QString("sprite %1 after undo").arg(i)));

    // A 2.01 file of the engine's, saved unchanged as 2.01, keeps its RLE8
    // sprites as stored: the store is untouched and the sprites read back alike.
    if (TestSupport::sampleDir().isEmpty())
        return;
    QSprites stage;
    QVERIFY(stage.fromFile(TestSupport::samplePath("stages/kfm.sff"), false, false));
    const QString resaved = dir.filePath("stage.sff");
    stage.setFileName(resaved);
    expected = SpriteStoreSnapshot::of(stage);
    QVERIFY(stage.toFile(resaved, false, QSffVersion::V201, true, false));
    const QString diff = SpriteStoreSnapshot::of(stage).differenceFrom(expected);
    QVERIFY2(diff.isEmpty(), qPrintable(diff));
    QSprites back;
    QVERIFY(back.fromFile(resaved, false, false));
    QCOMPARE(back.count(), stage.count());
    for (int i = 0; i < back.count(); ++i) {
        QVERIFY2(back.item(i)->filter == stage.item(i)->filter, qPrintable(QString("filter of sprite %1").arg(i)));
        QVERIFY2(back.image(i) == stage.image(i), qPrintable(QString("sprite %1 read back").arg(i)));
    }
}

// The engine takes version 1.01 files with a damaged sprite (here a header
// claiming 65,535 pixels of width); a save in that version writes every
// sprite that wasn't edited with the bytes it came with.
void TestSffSave::damagedSpriteSavesAsItCame()
{
    QByteArray damaged = QPCXCacheFilter::write(indexedImage(6, 4, 5));
    damaged[8] = char(0xFE); // xMax = 65534
    damaged[9] = char(0xFF);
    const QList<QByteArray> pcx = {QPCXCacheFilter::write(indexedImage(9, 7, 1)), damaged,
                                   QPCXCacheFilter::write(indexedImage(9, 7, 2))};
    QByteArray file;
    ByteWriter w(file);
    V1Header h;
    h.images = quint32(pcx.size());
    h.write(w);
    for (int i = 0; i < pcx.size(); ++i) {
        V1Subheader sh;
        sh.group = quint16(i);
        sh.length = quint32(pcx[i].size());
        sh.next = quint32(file.size() + SubheaderSize + pcx[i].size());
        sh.write(w);
        w.bytes(pcx[i]);
    }
    const QString path = dir.filePath("damaged.sff");
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(file);
    f.close();

    QSprites s;
    QVERIFY(s.fromFile(path, false, false));
    QCOMPARE(s.count(), 3);
    QCOMPARE(s.item(1)->width, quint16(65535));
    const QString saved = dir.filePath("damaged-saved.sff");
    QVERIFY(s.toFile(saved, false, 0, true, false));
    QCOMPARE(readAll(saved), file);
}

QTEST_GUILESS_MAIN(TestSffSave)
#include "tst_sffsave.moc"
