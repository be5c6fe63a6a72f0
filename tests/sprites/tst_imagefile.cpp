// Sprite images as files: PNG, PCX and BMP written and read back, the failures
// of both, and an image mapped onto a palette.
#include "testsupport.h"

#include "sprites/qimagefile.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

QImage indexedPicture()
{
    QImage image(13, 7, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int i = 0; i < 256; ++i)
        table << qRgb(i, 255 - i, (i * 7) & 0xff);
    image.setColorTable(table);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, uint((x * 19 + y * 5) & 0xff));
    return image;
}

} // namespace

class TestImageFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void roundTripsEveryFormat()
    {
        // Indexed pictures keep their indices and colours in every format;
        // true colour keeps its pixels where the format holds them.
        const QImage indexed = indexedPicture();
        QImage rgb(9, 5, QImage::Format_RGB32);
        for (int y = 0; y < rgb.height(); ++y)
            for (int x = 0; x < rgb.width(); ++x)
                rgb.setPixel(x, y, qRgb(x * 25, y * 50, 200));
        for (const char *suffix : {"png", "pcx", "bmp"}) {
            const QString path = m_dir.filePath(QStringLiteral("indexed.") + QLatin1String(suffix));
            QString error;
            QVERIFY2(QImageFile::write(path, indexed, &error), qPrintable(error));
            const QImage back = QImageFile::read(path);
            QCOMPARE(back.format(), QImage::Format_Indexed8);
            QCOMPARE(back.size(), indexed.size());
            for (int y = 0; y < back.height(); ++y)
                for (int x = 0; x < back.width(); ++x)
                    QCOMPARE(back.pixel(x, y), indexed.pixel(x, y));
            QCOMPARE(back.pixelIndex(4, 3), indexed.pixelIndex(4, 3));

            const QString truePath = m_dir.filePath(QStringLiteral("rgb.") + QLatin1String(suffix));
            QVERIFY(QImageFile::write(truePath, rgb));
            QCOMPARE(TestSupport::imageDifference(QImageFile::read(truePath).convertToFormat(QImage::Format_RGB32), rgb), 0);
        }
        // The codec is picked by the exact suffix: an upper-case name is left to Qt.
        QVERIFY(QImageFile::write(m_dir.filePath("UPPER.PNG"), indexed));
        QCOMPARE(QImageFile::read(m_dir.filePath("UPPER.PNG")).size(), indexed.size());
        QVERIFY(QImageFile::openFilter().startsWith("All supported (*.pcx *.png *.bmp);;Personal Computer eXchange (*.pcx)"));
        QVERIFY(QImageFile::saveFilter().startsWith("Portable Network Graphic (*.png)"));
    }

    void failuresLeaveFilesAlone()
    {
        QVERIFY(QImageFile::read(m_dir.filePath("missing.pcx")).isNull());
        QVERIFY(QImageFile::read(m_dir.filePath("missing.png")).isNull());
        QVERIFY(TestSupport::writeAll(m_dir.filePath("broken.pcx"), QByteArray(40, '\x0a')));
        QVERIFY(QImageFile::read(m_dir.filePath("broken.pcx")).isNull());

        const QString kept = m_dir.filePath("kept.png");
        QVERIFY(QImageFile::write(kept, indexedPicture()));
        const QByteArray before = TestSupport::readAll(kept);
        QString error;
        QVERIFY(!QImageFile::write(kept, QImage(), &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!QImageFile::write(m_dir.filePath("no/such/folder/x.png"), indexedPicture(), &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!QImageFile::write(m_dir.filePath("kept.unknownformat"), indexedPicture(), &error));
        QCOMPARE(TestSupport::readAll(kept), before);
    }

    void adaptsToAPalette()
    {
        QRGBPal colors = QRGBPal::zeroed();
        colors[0] = QRGBColor{0, 0, 0, 0};
        colors[1] = QRGBColor{250, 0, 0, 128};
        colors[2] = QRGBColor{0, 0, 250, 255};
        QImage rgb(2, 1, QImage::Format_RGB32);
        rgb.setPixel(0, 0, qRgb(240, 10, 10));
        rgb.setPixel(1, 0, qRgb(5, 5, 240));
        const QImage opaque = QImageFile::adapt(rgb, colors);
        QCOMPARE(opaque.format(), QImage::Format_Indexed8);
        QCOMPARE(opaque.pixelIndex(0, 0), 1);
        QCOMPARE(opaque.pixelIndex(1, 0), 2);
        QCOMPARE(qAlpha(opaque.color(1)), 255);

        // An image with alpha keeps the palette's alpha.
        const QImage withAlpha = QImageFile::adapt(rgb.convertToFormat(QImage::Format_ARGB32), colors);
        QCOMPARE(qAlpha(withAlpha.color(1)), 128);
        QVERIFY(QImageFile::adapt(QImage(), colors).isNull());
    }
};

QTEST_MAIN(TestImageFile)
#include "tst_imagefile.moc"
