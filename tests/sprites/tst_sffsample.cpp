// Every sprite file of the engine's sample content: loads, survives a save in
// its own version unchanged, and keeps what every sprite shows through the
// other versions and back, but for what a version can't hold, which is
// exactly what is reported before the save.
#include "base/qmessages.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qspritedecoder.h"
#include "sprites/qsprites.h"
#include "spritesnapshot.h"
#include "testsupport.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

using TestSupport::readAll;

namespace {


bool isCharacterFile(const QString &relative)
{
    return relative.startsWith("chars/") && !relative.endsWith("intro.sff") && !relative.endsWith("ending.sff");
}

} // namespace

class TestSffSample : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void roundTrip_data();
    void roundTrip();
    void everyVersion_data() { roundTrip_data(); }
    void everyVersion();
    void rawSpritesShow();

private:
    QTemporaryDir dir;
};

void TestSffSample::initTestCase()
{
    QBFCacheFilter::createFilters();
    QVERIFY(dir.isValid());
}

void TestSffSample::roundTrip_data()
{
    QTest::addColumn<QString>("relative");
    if (TestSupport::sampleDir().isEmpty()) {
        QTest::newRow("no sample") << QString();
        return;
    }
    QDirIterator it(TestSupport::sampleDir(), {"*.sff", "*.SFF"}, QDir::Files, QDirIterator::Subdirectories);
    QStringList files;
    while (it.hasNext())
        files << QDir(TestSupport::sampleDir()).relativeFilePath(it.next());
    files.sort();
    for (const QString &f : files)
        QTest::newRow(qPrintable(f)) << f;
}

void TestSffSample::roundTrip()
{
    BF_REQUIRE_SAMPLE();
    QFETCH(QString, relative);
    const bool character = isCharacterFile(relative);

    QMessages messages;
    QSprites original, reloaded;
    for (QSprites *s : {&original, &reloaded})
        s->setMessages(&messages);
    // A load decodes nothing: pixels wait until a sprite is looked at.
    const quint64 decodes = QSpriteCache::decodeCount();
    QVERIFY(original.fromFile(TestSupport::samplePath(relative), character, false));
    QCOMPARE(QSpriteCache::decodeCount(), decodes);
    QVERIFY(original.count() > 0);
    QCOMPARE(messages.issueCount(), 0);
    const quint32 version = original.version();

    // Decoding on every core gives what the store shows, sprite by sprite.
    for (auto output : {QSpriteDecoder::AsShown, QSpriteDecoder::Rgba}) {
        int seen = 0;
        QSpriteDecoder(original, output).run({}, [&](QSpriteDecoder::Result &r) {
            QImage shown = original.image(r.index);
            if (output == QSpriteDecoder::Rgba && !shown.isNull())
                shown = shown.convertToFormat(QImage::Format_ARGB32);
            const bool same = r.intact && r.index == seen++ && r.image == shown
                              && r.image.colorTable() == shown.colorTable();
            if (!same)
                qWarning("sprite %d decodes otherwise (output %d)", r.index, int(output));
            return same;
        });
        QCOMPARE(seen, original.count());
    }

    const QString first = dir.filePath("first.sff"), second = dir.filePath("second.sff");
    QVERIFY(original.toFile(first, character, 0, true, false));
    QVERIFY(reloaded.fromFile(first, character, false));
    QCOMPARE(reloaded.version(), version);
    QCOMPARE(messages.issueCount(), 0);

    // Records (duplicates may have become links), palettes, and pixels.
    QCOMPARE(reloaded.count(), original.count());
    for (int i = 0; i < original.count(); ++i) {
        const QSpriteItem *a = original.item(i), *b = reloaded.item(i);
        QSpriteInfo info = a->info;
        info.hasImage = b->info.hasImage;
        info.link = b->info.link;
        QVERIFY2(info == b->info, qPrintable(QString("sprite %1").arg(i)));
        QVERIFY(a->spriteSize() == b->spriteSize());
        QVERIFY2(TestSupport::shownPixels(original.image(i)) == TestSupport::shownPixels(reloaded.image(i)),
                 qPrintable(QString("sprite %1").arg(i)));
    }
    QCOMPARE(reloaded.paletteCount(), original.paletteCount());
    for (int p = 0; p < original.paletteCount(); ++p) {
        QVERIFY(original.paletteInfo(p) == reloaded.paletteInfo(p));
        if (original.palettes().item(p)->hasColors)
            QVERIFY2(original.palettes().item(p)->colors == reloaded.palettes().item(p)->colors,
                     qPrintable(QString("palette %1").arg(p)));
    }

    QVERIFY(reloaded.toFile(second, character, 0, true, false));
    QVERIFY(readAll(first) == readAll(second));
    QVERIFY(!reloaded.isModified());
    QCOMPARE(reloaded.fileName(), second);
}

// To each version and back to the file's own (character rules on for
// characters): the sprites that show otherwise are exactly those reported
// before the save, and only true colour reduced to 8 bits, or a portrait
// that 1.01 gives the character's palette, may be among them.
void TestSffSample::everyVersion()
{
    BF_REQUIRE_SAMPLE();
    QFETCH(QString, relative);
    const bool character = isCharacterFile(relative);
    const QString source = TestSupport::samplePath(relative);
    QSprites original;
    QVERIFY(original.fromFile(source, character, false));
    const quint32 own = original.version();
    QList<QList<QRgb>> shown;
    for (int i = 0; i < original.count(); ++i)
        shown << TestSupport::shownPixels(original.image(i));
    auto changedIn = [&](const QSprites &s) {
        QList<uint> out;
        for (int i = 0; i < s.count(); ++i)
            if (TestSupport::shownPixels(s.image(i)) != shown[i])
                out << uint(i);
        return out;
    };

    for (quint32 v : {0x01000100u, 0x02000000u, 0x02000100u}) {
        const QString tag = QString("%1 as %2").arg(relative).arg(v, 0, 16);
        QSprites store, there, back;
        QVERIFY(store.fromFile(source, character, false));
        const QList<uint> reported = store.spritesChangedBy(v, character);
        for (uint i : reported) {
            const QSpriteItem *it = store.item(int(i));
            const bool portrait = it->info.number == 0 && (it->info.group == 0 || it->info.group == 9000);
            QVERIFY2(it->imageFormat != QImage::Format_Indexed8 || (character && v == 0x01000100u && portrait),
                     qPrintable(QString("%1: sprite %2").arg(tag).arg(i)));
        }
        if (relative == "chars/kfm720/kfm720.sff" && v == 0x01000100u)
            QCOMPARE(reported, QList<uint>{uint(store.findSprite(0, 9000, 0))});

        QVERIFY(store.toFile(dir.filePath("there.sff"), character, v, false, false));
        QVERIFY(there.fromFile(dir.filePath("there.sff"), character, false));
        QVERIFY2(changedIn(there) == reported, qPrintable(tag));

        // Back again, only true colour may be reduced (a 2.00 file keeps
        // its true colour only as long as it stays 2.00).
        QList<uint> lost = reported;
        for (uint i : there.spritesChangedBy(own, character)) {
            QVERIFY(store.item(int(i))->imageFormat != QImage::Format_Indexed8);
            if (!lost.contains(i))
                lost << i;
        }
        std::sort(lost.begin(), lost.end());
        QVERIFY(there.toFile(dir.filePath("back.sff"), character, own, false, false));
        QVERIFY(back.fromFile(dir.filePath("back.sff"), character, false));
        QCOMPARE(back.version(), own);
        QVERIFY2(changedIn(back) == lost, qPrintable(tag + " and back"));
    }
}

void TestSffSample::rawSpritesShow()
{
    BF_REQUIRE_SAMPLE();
    QSprites s;
    QVERIFY(s.fromFile(TestSupport::samplePath("font/f-4x6.sff"), false, false));
    QCOMPARE(s.count(), 94);
    int lit = 0;
    for (int i = 0; i < s.count(); ++i) {
        const QImage img = s.image(i);
        QVERIFY(!img.isNull());
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                lit += img.pixelIndex(x, y) != 0;
    }
    QVERIFY2(lit > 94, "raw glyphs show no pixels");
}

QTEST_GUILESS_MAIN(TestSffSample)
#include "tst_sffsample.moc"
