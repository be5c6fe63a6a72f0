#include "sprites/qcolorquantizer.h"

#include <QRandomGenerator>
#include <QSet>
#include <QtTest>

class TestColorQuantizer : public QObject
{
    Q_OBJECT

private slots:
    void fewColoursStayExact();
    void reductionKeepsTheLimitAndMeans();
    void mappingAndIndexedImages();
};

// An image with no more colours than the limit must come out unchanged: the
// 8-bit conversion of the sprite writer relies on it to keep such sprites
// pixel for pixel.
void TestColorQuantizer::fewColoursStayExact()
{
    QImage img(40, 30, QImage::Format_RGB32);
    QList<QRgb> colours;
    for (int i = 0; i < 200; ++i)
        colours << qRgb((i * 37) & 255, (i * 91) & 255, (i * 13 + 7) & 255);
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            img.setPixel(x, y, colours[(x + y * 7) % colours.size()]);

    QColorQuantizer q(256, 8);
    q.addImage(img);
    const QSet<QRgb> distinct(colours.begin(), colours.end());
    QCOMPARE(q.colorCount(), distinct.size());
    const QList<QRgb> table = q.colorTable();
    QCOMPARE(QSet<QRgb>(table.begin(), table.end()), distinct);

    // Tree order: entries sorted by the interleaved bits of red, green, blue.
    auto key = [](QRgb c) {
        quint32 k = 0;
        for (int bit = 7; bit >= 0; --bit)
            k = k << 3 | ((qRed(c) >> bit) & 1) << 2 | ((qGreen(c) >> bit) & 1) << 1 | ((qBlue(c) >> bit) & 1);
        return k;
    };
    for (int i = 1; i < table.size(); ++i)
        QVERIFY(key(table[i - 1]) < key(table[i]));

    // The palette buffer is zero past the last leaf, opaque before it, and
    // `first` shifts it.
    const QRGBPal pal = q.palette(1);
    QCOMPARE(pal[0].a, quint8(0));
    QCOMPARE(qRgb(pal[1].r, pal[1].g, pal[1].b), table[0]);
    QCOMPARE(pal[1].a, quint8(255));
    QCOMPARE(pal[int(distinct.size())].a, quint8(255));
    QCOMPARE(pal[int(distinct.size()) + 1].a, quint8(0));
    QCOMPARE(pal[255].r, quint8(0));

    const QImage indexed = q.toIndexed(img, 1);
    QCOMPARE(indexed.format(), QImage::Format_Indexed8);
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            QCOMPARE(indexed.pixel(x, y), img.pixel(x, y));
}

void TestColorQuantizer::reductionKeepsTheLimitAndMeans()
{
    // Many colours: the leaf count never exceeds the maximum, however they come.
    QColorQuantizer q(16, 8);
    QRandomGenerator rng(1234);
    for (int i = 0; i < 20000; ++i)
        q.addColor(rng.generate() | 0xFF000000u);
    QVERIFY(q.colorCount() <= 16);
    QVERIFY(q.colorCount() >= 8);
    QCOMPARE(q.colorTable().size(), q.colorCount());

    // Two close shades folded into one leaf give their weighted mean.
    QColorQuantizer two(1, 8);
    for (int i = 0; i < 3; ++i)
        two.addColor(qRgb(100, 0, 0));
    two.addColor(qRgb(104, 0, 0));
    QCOMPARE(two.colorCount(), 1);
    QCOMPARE(two.colorTable().constFirst(), qRgb(101, 0, 0));

    // Far apart colours under a limit of two: the rare one is folded with the
    // other rare one, the common one survives exactly.
    QColorQuantizer three(2, 8);
    for (int i = 0; i < 50; ++i)
        three.addColor(qRgb(10, 10, 10));
    three.addColor(qRgb(250, 250, 250));
    three.addColor(qRgb(250, 250, 240));
    const QList<QRgb> t = three.colorTable();
    QCOMPARE(t.size(), 2);
    QVERIFY(t.contains(qRgb(10, 10, 10)));
    QVERIFY(t.contains(qRgb(250, 250, 245)));

    // Depth limits the tree: at depth 1 colours group by their top bit only.
    QColorQuantizer shallow(256, 1);
    shallow.addColor(qRgb(0, 0, 0));
    shallow.addColor(qRgb(100, 100, 100));
    shallow.addColor(qRgb(200, 200, 200));
    QCOMPARE(shallow.colorCount(), 2);
}

void TestColorQuantizer::mappingAndIndexedImages()
{
    QColorQuantizer empty;
    QCOMPARE(empty.colorCount(), 0);
    QCOMPARE(empty.indexOf(qRgb(1, 2, 3)), 0);
    QVERIFY(empty.colorTable().isEmpty());

    QColorQuantizer q(4, 8);
    const QRgb red = qRgb(255, 0, 0), green = qRgb(0, 255, 0), blue = qRgb(0, 0, 255);
    q.addColor(red);
    q.addColor(green);
    q.addColor(blue);
    const QList<QRgb> t = q.colorTable();
    QCOMPARE(t[q.indexOf(red)], red);
    QCOMPARE(t[q.indexOf(blue)], blue);
    // An unseen colour lands on a close existing one.
    QCOMPARE(t[q.indexOf(qRgb(250, 5, 3))], red);

    // Transparent pixels take the reserved index; others are shifted by `first`.
    QImage img(3, 1, QImage::Format_ARGB32);
    img.setPixel(0, 0, qRgba(0, 0, 0, 0));
    img.setPixel(1, 0, red);
    img.setPixel(2, 0, blue);
    const QImage out = q.toIndexed(img, 1, 0);
    QCOMPARE(out.pixelIndex(0, 0), 0);
    QCOMPARE(out.pixelIndex(1, 0), 1 + q.indexOf(red));
    QCOMPARE(out.pixelIndex(2, 0), 1 + q.indexOf(blue));
    QCOMPARE(out.colorTable().size(), 256);
    QVERIFY(q.toIndexed(QImage()).isNull());
}

QTEST_GUILESS_MAIN(TestColorQuantizer)
#include "tst_colorquantizer.moc"
