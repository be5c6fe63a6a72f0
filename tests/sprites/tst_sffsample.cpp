// Every sprite file of the engine's sample content: loads, survives a save in
// its own version unchanged, and keeps its pixels across the other versions.
#include "base/qmessages.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"
#include "testsupport.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool isCharacterFile(const QString &relative)
{
    return relative.startsWith("chars/") && !relative.endsWith("intro.sff") && !relative.endsWith("ending.sff");
}

// Pixels as seen: colour 0 of an indexed sprite is transparent whatever its
// palette says, everything else by its colour without alpha.
QString comparePixels(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.format() != b.format())
        return QString("size or format %1x%2/%3 vs %4x%5/%6")
            .arg(a.width()).arg(a.height()).arg(a.format()).arg(b.width()).arg(b.height()).arg(b.format());
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            if (a.format() == QImage::Format_Indexed8) {
                const int ia = a.pixelIndex(x, y), ib = b.pixelIndex(x, y);
                if ((ia == 0) != (ib == 0))
                    return QString("transparency at %1,%2").arg(x).arg(y);
                if (ia == 0)
                    continue;
                if (ia < a.colorCount() && ib < b.colorCount()
                    && (a.color(ia) & 0xFFFFFF) != (b.color(ib) & 0xFFFFFF))
                    return QString("colour at %1,%2").arg(x).arg(y);
                if ((ia < a.colorCount()) != (ib < b.colorCount()))
                    return QString("colour table at %1,%2").arg(x).arg(y);
            } else if (a.pixel(x, y) != b.pixel(x, y)) {
                return QString("pixel at %1,%2").arg(x).arg(y);
            }
        }
    return QString();
}

} // namespace

class TestSffSample : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void roundTrip_data();
    void roundTrip();
    void rawSpritesShow();
    void versionConversions();

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
    const QString source = TestSupport::samplePath(relative);

    QMessages messages;
    QSprites original, saved, reloaded;
    for (QSprites *s : {&original, &saved, &reloaded})
        s->messages = &messages;
    QVERIFY(original.fromFile(source, character, false));
    QVERIFY(original.count() > 0);
    QCOMPARE(messages.issueCount(), 0);
    const quint32 version = original.version;

    const QString first = dir.filePath("first.sff"), second = dir.filePath("second.sff");
    QVERIFY(saved.fromFile(source, character, false));
    QVERIFY(saved.toFile(first, character, 0, true, false));
    QCOMPARE(saved.version, version);
    QVERIFY(reloaded.fromFile(first, character, false));
    QCOMPARE(reloaded.version, version);
    QCOMPARE(messages.issueCount(), 0);

    // Records as the save left them, palettes, and pixels as first loaded.
    QCOMPARE(reloaded.count(), saved.count());
    for (int i = 0; i < saved.count(); ++i) {
        const QSpriteItem *a = saved.item(i), *b = reloaded.item(i);
        QVERIFY2(a->info == b->info, qPrintable(QString("sprite %1").arg(i)));
        QCOMPARE(b->width, a->width);
        QCOMPARE(b->height, a->height);
        QCOMPARE(b->imageFormat, a->imageFormat);
        const QString diff = comparePixels(original.image(i), reloaded.image(i));
        QVERIFY2(diff.isEmpty(), qPrintable(QString("sprite %1: %2").arg(i).arg(diff)));
    }
    QCOMPARE(reloaded.paletteCount(), saved.paletteCount());
    for (int p = 0; p < saved.paletteCount(); ++p) {
        QVERIFY(saved.paletteInfo(p) == reloaded.paletteInfo(p));
        if (saved.palettes.item(p)->hasColors)
            QVERIFY2(saved.palettes.item(p)->colors == reloaded.palettes.item(p)->colors,
                     qPrintable(QString("palette %1").arg(p)));
    }

    QVERIFY(reloaded.toFile(second, character, 0, true, false));
    QVERIFY(readAll(first) == readAll(second));
    QVERIFY(!reloaded.isModified());
    QCOMPARE(reloaded.fileName, second);
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

// A 2.01 character through 1.01 and 2.00 and back: every pixel shows the
// same colour at every step.
void TestSffSample::versionConversions()
{
    BF_REQUIRE_SAMPLE();
    for (const QString relative : {"chars/kfm/kfm.sff", "stages/kfm.sff", "font/num72.sff"}) {
        QSprites original;
        QVERIFY(original.fromFile(TestSupport::samplePath(relative), isCharacterFile(relative), false));
        bool deep = false;
        for (int i = 0; i < original.count(); ++i)
            deep |= original.item(i)->imageFormat != QImage::Format_Indexed8;
        QSprites current;
        QVERIFY(current.fromFile(TestSupport::samplePath(relative), isCharacterFile(relative), false));
        const quint32 chain[] = {0x01000100, 0x02000000, 0x02000100};
        for (quint32 v : chain) {
            const QString path = dir.filePath(QString("conv-%1.sff").arg(v, 0, 16));
            QVERIFY(current.toFile(path, isCharacterFile(relative), v, false, false));
            QVERIFY(current.fromFile(path, isCharacterFile(relative), false));
            QCOMPARE(current.version, v);
            QCOMPARE(current.count(), original.count());
            for (int i = 0; i < original.count(); ++i) {
                QCOMPARE(current.item(i)->info.group, original.item(i)->info.group);
                if (deep) // 32-bit sprites are reduced to 255 colours: only their size survives
                    QCOMPARE(current.image(i).size(), original.image(i).size());
                else {
                    const QString diff = comparePixels(original.image(i), current.image(i));
                    QVERIFY2(diff.isEmpty(),
                             qPrintable(QString("%1 %2 sprite %3: %4").arg(relative).arg(v, 0, 16).arg(i).arg(diff)));
                }
            }
        }
    }
}

QTEST_GUILESS_MAIN(TestSffSample)
#include "tst_sffsample.moc"
