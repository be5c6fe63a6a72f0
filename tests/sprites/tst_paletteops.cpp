#include "palettesupport.h"

#include "sprites/qcolorquantizer.h"
#include "sprites/qpaletteops.h"

#include <QSet>
#include <QtTest>

using TestSupport::rgb;

class TestPaletteOps : public QObject
{
    Q_OBJECT

private slots:
    // The octree keeps up to its limit exactly; one colour more folds the
    // closest pair. The optimised palette keeps a sprite's transparency.
    void reducesPicturesToPalettes()
    {
        QList<QRgb> colours;
        for (int i = 0; i < 256; ++i)
            colours << qRgb(i, (i * 97) & 255, (i * 53) & 255);
        QImage full(16, 17, QImage::Format_RGB32);
        for (int k = 0; k < 256; ++k)
            full.setPixel(k % 16, k / 16, colours[k]);
        for (int x = 0; x < 16; ++x)
            full.setPixel(x, 16, colours[100]);
        QColorQuantizer exact(256, 8);
        exact.addImage(full);
        const QList<QRgb> kept = exact.colorTable();
        QCOMPARE(QSet<QRgb>(kept.begin(), kept.end()), QSet<QRgb>(colours.begin(), colours.end()));

        // A 257th colour, one step of blue from a common one, merges into it.
        full.setPixel(0, 16, colours[100] ^ 1);
        QColorQuantizer folded(256, 8);
        folded.addImage(full);
        QCOMPARE(folded.colorCount(), 256);
        QVERIFY(folded.colorTable().contains(colours[100]) || folded.colorTable().contains(colours[100] ^ 1));
        QVERIFY(folded.colorTable().contains(colours[7]));

        // An indexed sprite: index 0 stays transparent on 0, the rest exact.
        QImage sprite(8, 8, QImage::Format_Indexed8);
        QList<QRgb> table(256, qRgb(0, 0, 0));
        table[0] = qRgb(1, 2, 3);
        for (int i = 1; i < 11; ++i)
            table[i * 20] = qRgb(i * 23, 255 - i * 9, i * 5);
        sprite.setColorTable(table);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                sprite.setPixel(x, y, (x + y) % 11 * 20);
        const QPaletteOps::Reduced reduced = QPaletteOps::optimize(sprite);
        QCOMPARE(reduced.colors, 10);
        QCOMPARE(reduced.palette[0], rgb(1, 2, 3, 0));
        QCOMPARE(reduced.palette[11], rgb(0, 0, 0));
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x) {
                const int was = sprite.pixelIndex(x, y), now = reduced.image.pixelIndex(x, y);
                QCOMPARE(now == 0, was == 0);
                if (was)
                    QCOMPARE(reduced.palette[now].rgba(), table[was]);
            }
        QVERIFY(QPaletteOps::optimize(QImage()).image.isNull());
    }

    // Grey scale: one entry per grey level in use, darkest first, the pixels
    // following their colour; the nearest map lands on the closest colour.
    void greysAndNearestColours()
    {
        QRGBPal colors;
        colors[0] = rgb(9, 9, 9, 0);
        colors[1] = rgb(200, 200, 200);
        colors[2] = rgb(10, 10, 10);
        colors[3] = rgb(200, 200, 200, 17); // the same level as 1
        colors[4] = rgb(255, 0, 0);         // not used by the picture
        QImage picture(4, 1, QImage::Format_Indexed8);
        picture.setColorTable(colors.toColorTable());
        for (int x = 0; x < 4; ++x)
            picture.setPixel(x, 0, x);
        const QPaletteOps::Grey grey = QPaletteOps::greyScale(picture, colors);
        QCOMPARE(grey.shades, 2);
        QCOMPARE(grey.palette[0], colors[0]);
        QCOMPARE(grey.palette[1], rgb(10, 10, 10));
        QCOMPARE(grey.palette[2], rgb(200, 200, 200));
        QCOMPARE(grey.palette[3], rgb(0, 0, 0));
        const QImage shown = QPaletteOps::remapped(picture, grey.map);
        QCOMPARE(shown.pixelIndex(0, 0), 0);
        QCOMPARE(shown.pixelIndex(1, 0), 2);
        QCOMPARE(shown.pixelIndex(2, 0), 1);
        QCOMPARE(shown.pixelIndex(3, 0), 2);
        // With no picture the palette's own entries count.
        QCOMPARE(QPaletteOps::greyScale(QImage(), colors).shades, 4);

        QRGBPal target;
        target[5] = rgb(250, 10, 10);
        target[9] = rgb(190, 190, 210);
        const QPaletteOps::IndexMap near = QPaletteOps::nearestMap(colors, target);
        QCOMPARE(int(near[0]), 0);
        QCOMPARE(int(near[1]), 9);
        QCOMPARE(int(near[4]), 5);
        QCOMPARE(int(near[2]), 1); // black: the first of many equal entries
    }
};

QTEST_GUILESS_MAIN(TestPaletteOps)
#include "tst_paletteops.moc"
