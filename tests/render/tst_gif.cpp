// GIF export: the file's structure (tables, delays, loop blocks), and every
// frame of every action of the sample character decoded back to the sprite's
// own indices at its place on the canvas, by a decoder of our own and, where
// python3 with PIL is installed, by PIL.
#include "testsupport.h"

#include "animations/qanimations.h"
#include "render/qgifwriter.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qrgbpal.h"
#include "sprites/qsprites.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct DecodedImage
{
    bool loopBefore = false;
    quint16 delay = 0;
    int transparent = -1;
    int disposal = 0;
    QRect rect;
    bool localTable = false;
    QByteArray indices; // width * height
};

struct DecodedGif
{
    QSize canvas;
    quint8 flags = 0;
    QList<DecodedImage> images;
    bool complete = false;
};

// A plain LZW decoder for minimum code size 8, strictly by the format.
bool lzwDecode(const QByteArray &data, int pixels, QByteArray *out)
{
    const int clear = 256, end = 257;
    QList<QByteArray> table;
    auto reset = [&] {
        table.clear();
        for (int i = 0; i < 256; ++i)
            table.append(QByteArray(1, char(i)));
        table.append(QByteArray());
        table.append(QByteArray());
    };
    reset();
    int bits = 9;
    quint32 acc = 0;
    int count = 0;
    int prev = -1;
    for (char byte : data) {
        acc |= quint32(quint8(byte)) << count;
        count += 8;
        while (count >= bits) {
            const int code = int(acc & ((1u << bits) - 1));
            acc >>= bits;
            count -= bits;
            if (code == clear) {
                reset();
                bits = 9;
                prev = -1;
                continue;
            }
            if (code == end)
                return out->size() == pixels;
            QByteArray entry;
            if (code < table.size())
                entry = table.at(code);
            else if (code == table.size() && prev >= 0)
                entry = table.at(prev) + table.at(prev).left(1);
            else
                return false;
            out->append(entry);
            if (prev >= 0 && table.size() < 4096)
                table.append(table.at(prev) + entry.left(1));
            if (table.size() == (1 << bits) && bits < 12)
                ++bits;
            prev = code;
        }
    }
    return false;
}

DecodedGif decode(const QByteArray &b)
{
    DecodedGif gif;
    if (!b.startsWith("GIF89a") || b.size() < 13)
        return gif;
    auto u16 = [&b](qsizetype at) { return quint16(quint8(b.at(at)) | (quint8(b.at(at + 1)) << 8)); };
    gif.canvas = QSize(u16(6), u16(8));
    gif.flags = quint8(b.at(10));
    qsizetype at = 13 + ((gif.flags & 0x80) ? 768 : 0);
    DecodedImage next;
    while (at < b.size()) {
        const quint8 tag = quint8(b.at(at));
        if (tag == 0x3B) {
            gif.complete = at == b.size() - 1;
            break;
        }
        if (tag == 0x21 && quint8(b.at(at + 1)) == 0xFF) {
            next.loopBefore = b.mid(at + 3, 11) == "NETSCAPE2.0";
            at += 3 + 11 + 5;
        } else if (tag == 0x21 && quint8(b.at(at + 1)) == 0xF9) {
            const quint8 packed = quint8(b.at(at + 3));
            next.disposal = (packed >> 2) & 7;
            next.delay = u16(at + 4);
            next.transparent = (packed & 1) ? quint8(b.at(at + 6)) : -1;
            at += 8;
        } else if (tag == 0x2C) {
            next.rect = QRect(u16(at + 1), u16(at + 3), u16(at + 5), u16(at + 7));
            const quint8 packed = quint8(b.at(at + 9));
            next.localTable = packed & 0x80;
            at += 10 + (next.localTable ? 768 : 0);
            at += 1; // minimum code size
            QByteArray data;
            while (at < b.size() && b.at(at) != 0) {
                const int n = quint8(b.at(at));
                data += b.mid(at + 1, n);
                at += 1 + n;
            }
            ++at;
            if (!lzwDecode(data, next.rect.width() * next.rect.height(), &next.indices))
                return gif;
            gif.images.append(next);
            next = DecodedImage();
        } else {
            return gif;
        }
    }
    return gif;
}

// What a frame must show: its sprite, mirrored, at the place the writer chose.
QByteArray indicesOf(const QImage &image)
{
    QByteArray out;
    for (int y = 0; y < image.height(); ++y)
        out.append(reinterpret_cast<const char *>(image.constScanLine(y)), image.width());
    return out;
}

} // namespace

class TestGif : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QBFCacheFilter::createFilters();
        const QString dir = TestSupport::sampleDir() + QStringLiteral("/chars/kfm/");
        QVERIFY(sprites.fromFile(dir + QStringLiteral("kfm.sff"), true, false));
        QFile air(dir + QStringLiteral("kfm.air"));
        QVERIFY(air.open(QIODevice::ReadOnly));
        kfm.loadText(QString::fromLatin1(air.readAll()), QStringLiteral("kfm.air"), false);
        QVERIFY(kfm.count() > 50);
    }

    void layoutOfTheFile();
    void everyKfmFrameDecodes();
    void pilReadsKfm();

private:
    QSprites sprites;
    QAnimations kfm;
};

void TestGif::layoutOfTheFile()
{
    QCOMPARE(GifWriter::delayOf(1), quint16(1));
    QCOMPARE(GifWriter::delayOf(2), quint16(3));
    QCOMPARE(GifWriter::delayOf(5), quint16(8));
    QCOMPARE(GifWriter::delayOf(-1), quint16(65535));

    // Frames of one palette share the global table; a portrait with its own
    // palette sends every frame to a local one. The loop block stands right
    // before the Loopstart frame, not before the first.
    QAnimations store;
    store.loadText(QStringLiteral("[Begin Action 1]\n0,0, 0,0, 1\n0,1, 0,0, 2\nLoopstart\n0,2, 5,0, 5, H\n0,3, 0,0, -1\n"
                                  "[Begin Action 2]\n0,0, 0,0, 3\n0,1, 0,0, 3\n"
                                  "[Begin Action 3]\n\n"
                                  "[Begin Action 4]\n0,0, 0,0, 4\n0,1, 0,0, 4\n"),
                   QStringLiteral("t.air"), false);
    GifWriter one;
    QVERIFY(AnimationGif::build(store, &sprites, 0, &one));
    DecodedGif g = decode(one.encode());
    QVERIFY(g.complete);
    QCOMPARE(g.flags, quint8(0xF7));
    QCOMPARE(g.images.size(), 4);
    QList<quint16> delays;
    QList<bool> loops;
    for (const DecodedImage &i : g.images) {
        delays << i.delay;
        loops << i.loopBefore;
        QVERIFY(!i.localTable);
        QCOMPARE(i.disposal, 2);
        QCOMPARE(i.transparent, 0);
    }
    QCOMPARE(delays, (QList<quint16>{1, 3, 8, 65535}));
    QCOMPARE(loops, (QList<bool>{false, false, true, false}));

    // Sprite 0,1 on a palette of its own for a moment.
    const int second = sprites.findSprite(0, 0, 1);
    const QSpriteInfo kept = sprites.item(second)->info;
    QRGBPal colours = *sprites.paletteColors(kept.palette);
    colours[1].r ^= 0xff;
    QSpriteInfo own = kept;
    own.palette = quint16(sprites.addPalette(colours, false, 77, 77));
    sprites.setInfo(second, own);
    GifWriter mixed;
    QVERIFY(AnimationGif::build(store, &sprites, 1, &mixed));
    sprites.setInfo(second, kept);
    g = decode(mixed.encode());
    QCOMPARE(g.flags, quint8(0x77));
    QCOMPARE(g.images.size(), 2);
    QVERIFY(g.images.at(0).localTable && g.images.at(1).localTable);
    // Without a Loopstart the loop block opens the file.
    QVERIFY(g.images.at(0).loopBefore && !g.images.at(1).loopBefore);

    // Nothing to show, or more than a GIF can hold: refused with the reason.
    GifWriter none;
    QString why;
    QVERIFY(!AnimationGif::build(store, &sprites, 2, &none, &why));
    QVERIFY(!why.isEmpty());
    QAnimations far;
    far.loadText(QStringLiteral("[Begin Action 1]\n0,0, -2147483647,0, 1\n0,0, 2147483647,0, 1\n"), QStringLiteral("f.air"),
                 false);
    why.clear();
    QVERIFY(!AnimationGif::build(far, &sprites, 0, &none, &why));
    QVERIFY2(why.contains(QLatin1String("more than a GIF can hold")), qPrintable(why));

    // A failed save leaves the old file as it was.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("out.gif"));
    QVERIFY(one.save(path, nullptr));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray saved = file.readAll();
    file.close();
    QCOMPARE(saved, one.encode());
    QString error;
    QVERIFY(!one.save(dir.filePath(QStringLiteral("missing/out.gif")), &error));
    QVERIFY(!error.isEmpty());
}

void TestGif::everyKfmFrameDecodes()
{
    int frames = 0;
    for (int a = 0; a < kfm.count(); ++a) {
        GifWriter gif;
        if (!AnimationGif::build(kfm, &sprites, a, &gif))
            continue;
        const DecodedGif g = decode(gif.encode());
        QVERIFY2(g.complete, qPrintable(QStringLiteral("action %1").arg(kfm.action(a)->number)));
        QCOMPARE(g.images.size(), gif.frames.size());
        QCOMPARE(g.canvas, QSize(gif.width, gif.height));
        for (qsizetype i = 0; i < gif.frames.size(); ++i) {
            const GifFrame &f = gif.frames.at(i);
            QCOMPARE(g.images.at(i).rect, QRect(f.left, f.top, f.image.width(), f.image.height()));
            QVERIFY(QRect(QPoint(), g.canvas).contains(g.images.at(i).rect));
            QCOMPARE(g.images.at(i).indices, indicesOf(f.image));
            ++frames;
        }
    }
    QVERIFY(frames > 500);

    // The stand: the sprite's own pixels, with the axis of every frame on one point.
    GifWriter stand;
    QVERIFY(AnimationGif::build(kfm, &sprites, 0, &stand));
    const QSpriteInfo &info = sprites.item(sprites.findSprite(0, 0, 0))->info;
    QCOMPARE(stand.frames.first().left + info.x, stand.frames.last().left
                                                     + sprites.item(sprites.findSprite(0, 0, 3))->info.x);
    QCOMPARE(indicesOf(stand.frames.first().image), indicesOf(sprites.image(sprites.findSprite(0, 0, 0))));
}

void TestGif::pilReadsKfm()
{
    // The system's own python3 first: that is where the setup's PIL goes.
    QString python = QStandardPaths::findExecutable(QStringLiteral("python3"), {QStringLiteral("/usr/bin")});
    if (python.isEmpty())
        python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        QSKIP("python3 is not installed: the check of the GIF files by PIL did not run");
    if (QProcess::execute(python, {QStringLiteral("-c"), QStringLiteral("import PIL")}) != 0)
        QSKIP("python3 has no PIL: the check of the GIF files by PIL did not run");
    // One GIF per action and, beside it, what each frame must show: its box on
    // the canvas and its indices, for the script to compare with PIL's reading.
    QTemporaryDir dir;
    QStringList files;
    for (int a = 0; a < kfm.count(); ++a) {
        GifWriter gif;
        if (!AnimationGif::build(kfm, &sprites, a, &gif))
            continue;
        const QString base = dir.filePath(QString::number(a));
        QVERIFY(gif.save(base + QStringLiteral(".gif"), nullptr));
        QFile expect(base + QStringLiteral(".txt"));
        QVERIFY(expect.open(QIODevice::WriteOnly));
        for (const GifFrame &f : gif.frames)
            expect.write(QStringLiteral("%1 %2 %3 %4 %5\n")
                             .arg(f.left).arg(f.top).arg(f.image.width()).arg(f.image.height())
                             .arg(QString::fromLatin1(indicesOf(f.image).toHex()))
                             .toLatin1());
        files << base;
    }
    QProcess check;
    check.start(python, QStringList{QStringLiteral(BF_SOURCE_DIR "/tests/render/gifcheck.py")} + files);
    QVERIFY(check.waitForFinished(300000));
    QVERIFY2(check.exitCode() == 0, check.readAllStandardError().constData());
}

QTEST_MAIN(TestGif)
#include "tst_gif.moc"
