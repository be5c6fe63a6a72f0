#include <QImage>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include "palettesupport.h"

#include "sprites/qpalettefile.h"
#include "sprites/qrgbpalette.h"

using TestSupport::rgb;


static void be16(QByteArray &out, quint16 v)
{
    out.append(char(v >> 8)).append(char(v & 0xFF));
}

static void be32(QByteArray &out, quint32 v)
{
    be16(out, quint16(v >> 16));
    be16(out, quint16(v & 0xFFFF));
}

static void beFloat(QByteArray &out, float f)
{
    quint32 bits;
    std::memcpy(&bits, &f, 4);
    be32(out, bits);
}

class TestPaletteFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString write(const QString &name, const QByteArray &data)
    {
        const QString path = m_dir.filePath(name);
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(data) != data.size())
            qFatal("cannot write fixture");
        return path;
    }

    // A palette with every byte set, so that a clear is visible.
    static QRGBPal dirty()
    {
        QRGBPal p;
        for (auto &c : p.colors)
            c = rgb(7, 7, 7, 7);
        return p;
    }

private slots:
    void act()
    {
        // File order is entry 255 first.
        QByteArray data;
        for (int i = 0; i < 256; ++i)
            data.append(char(i)).append(char(255 - i)).append(char(i / 2));
        QRGBPal p = dirty();
        QVERIFY(QPaletteFile::load(write("a.act", data), &p));
        QCOMPARE(p[255], rgb(0, 255, 0));
        QCOMPARE(p[0], rgb(255, 0, 127));

        // A trailing count is ignored; any name with 768 bytes is an ACT.
        p = dirty();
        QVERIFY(QPaletteFile::load(write("b.pal", data + QByteArray("\x01\x00\xff\xff", 4)), &p));
        QCOMPARE(p[255], rgb(0, 255, 0));

        // One byte short fails and leaves a cleared palette.
        p = dirty();
        QString error;
        QVERIFY(!QPaletteFile::load(write("c.act", data.left(767)), &p, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(p == QRGBPal::zeroed());

        // Written and read back: same colours, opaque.
        QRGBPal colors;
        for (int i = 0; i < 256; ++i)
            colors[i] = rgb(i, i ^ 0x55, 3, i);
        QRGBPalette worker(&colors);
        const QString out = m_dir.filePath("out.act");
        QVERIFY(worker.saveAct(out));
        QFile f(out);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray written = f.readAll();
        QCOMPARE(written.size(), 768);
        QCOMPARE(written.left(3), QByteArray("\xff\xaa\x03", 3));
        QRGBPal back = dirty();
        QRGBPalette reader(&back);
        QVERIFY(reader.load(out));
        for (int i = 0; i < 256; ++i)
            QCOMPARE(back[i], rgb(i, i ^ 0x55, 3));

        // A write that cannot happen says so and leaves nothing behind.
        QVERIFY(!QPaletteFile::saveAct(m_dir.filePath("missing/dir/x.act"), colors, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!QPaletteFile::load(m_dir.filePath("none.act"), &p, &error));
    }

    void riffAndJasc()
    {
        // 16 colours in file order land reversed at the top of the buffer.
        QByteArray riff("RIFF\0\0\0\0PAL data", 16);
        QByteArray chunk;
        chunk.append(QByteArray("\x00\x03\x10\x00", 4)); // version, count
        for (int i = 0; i < 16; ++i)
            chunk.append(char(i)).append(char(2 * i)).append(char(3 * i)).append(char(0));
        const quint32 size = quint32(chunk.size() - 4 + 8); // the colour bytes plus 8
        riff.append(char(size & 0xFF)).append(char(size >> 8)).append('\0').append('\0');
        riff.append(chunk);
        QRGBPal p = dirty();
        QVERIFY(QPaletteFile::load(write("r.pal", riff), &p));
        QCOMPARE(p[255], rgb(0, 0, 0));
        QCOMPARE(p[254], rgb(1, 2, 3));
        QCOMPARE(p[240], rgb(15, 30, 45));
        QCOMPARE(p[239], rgb(0, 0, 0)); // cleared, made opaque
        QCOMPARE(p[0], rgb(0, 0, 0));

        QByteArray huge = riff;
        huge[16] = char(0x10);
        huge[17] = char(0x04); // 1,040 - 8 > 1,024
        QVERIFY(!QPaletteFile::load(write("h.pal", huge), &p));
        QVERIFY(!QPaletteFile::load(write("t.pal", riff.left(40)), &p));
        QByteArray wrong = riff;
        wrong.replace(8, 8, "WAVEfmt ");
        QVERIFY(!QPaletteFile::load(write("w.pal", wrong), &p));

        const QByteArray jasc("JASC-PAL\r\n0100\r\n3\r\n255 0 0\r\n0 300 0 128\r\n1 2 3\r\n");
        p = dirty();
        QVERIFY(QPaletteFile::load(write("j.pal", jasc), &p));
        QCOMPARE(p[0], rgb(255, 0, 0));
        QCOMPARE(p[1], rgb(0, 255, 0, 128)); // clamped
        QCOMPARE(p[2], rgb(1, 2, 3));
        QCOMPARE(p[3], rgb(0, 0, 0, 0));
        QVERIFY(!QPaletteFile::load(write("j2.pal", "JASC-PAL\n0200\n1\n1 2 3\n"), &p));
        QVERIFY(!QPaletteFile::load(write("j3.pal", "JASC-PAL\n0100\n2\n1 2 3\nred green\n"), &p));
        QVERIFY(!QPaletteFile::load(write("j4.pal", "JASC-PALETTE\n0100\n"), &p));
        // More colours announced than present: what is there is read.
        QVERIFY(QPaletteFile::load(write("j5.pal", "JASC-PAL\n0100\n256\n4 5 6\n"), &p));
        QCOMPARE(p[0], rgb(4, 5, 6));
    }

    void swatches()
    {
        QByteArray aco;
        be16(aco, 1);
        be16(aco, 6);
        const quint16 colours[6][5] = {
            {0, 65535, 0, 32896, 0},          // RGB: 255, 0, 128
            {8, 10000, 0, 0, 0},              // grey, full: black
            {7, 1, 2, 3, 4},                  // unknown space: no colour
            {2, 0xFFFF, 0xFFFF, 0xFFFF, 0},   // CMYK stored inverted: no ink, white
            {1, 0, 65535, 65535, 0},          // HSB: pure red
            {8, 0, 0, 0, 0},                  // grey, none: white
        };
        for (const auto &c : colours)
            for (quint16 w : c)
                be16(aco, w);
        QRGBPal p = dirty();
        QVERIFY(QPaletteFile::load(write("s.aco", aco), &p));
        QCOMPARE(p[0], rgb(255, 0, 128));
        QCOMPARE(p[1], rgb(0, 0, 0));
        QCOMPARE(p[2], rgb(255, 255, 255));
        QCOMPARE(p[3], rgb(255, 0, 0));
        QCOMPARE(p[4], rgb(255, 255, 255));
        QCOMPARE(p[5], rgb(0, 0, 0, 0));
        QVERIFY(!QPaletteFile::load(write("t.aco", aco.left(aco.size() - 3)), &p));
        QByteArray v2 = aco;
        v2[1] = 2;
        QVERIFY(!QPaletteFile::load(write("v.aco", v2), &p));

        QByteArray ase("ASEF\0\1\0\0", 8);
        be32(ase, 6);
        auto block = [&ase](quint16 type, const QByteArray &body) {
            be16(ase, type);
            be32(ase, quint32(body.size()));
            ase.append(body);
        };
        auto colour = [](const char *model, std::initializer_list<float> values) {
            QByteArray b;
            be16(b, 2);
            b.append(QByteArray("A\0\0\0", 4)); // name "A" with its terminator
            b.append(model, 4);
            for (float v : values)
                beFloat(b, v);
            be16(b, 2);
            return b;
        };
        QByteArray group;
        be16(group, 3);
        group.append(QByteArray("G\0p\0\0\0", 6));
        block(0xC001, group);
        block(1, colour("RGB ", {1.0f, 0.5f, 0.0f}));
        block(1, colour("Gray", {0.2f}));
        block(0xC002, QByteArray());
        block(0x1234, QByteArray("junk"));
        block(1, colour("RGB ", {std::nanf(""), 7.0f, -1.0f}));
        p = dirty();
        QVERIFY(QPaletteFile::load(write("s.ase", ase), &p));
        QCOMPARE(p[0], rgb(255, 128, 0)); // 0.5 * 255 + 0.5 = 128
        QCOMPARE(p[1], rgb(51, 51, 51));  // 0.2 * 255 + 0.5 = 51.5
        QCOMPARE(p[2], rgb(0, 255, 0));   // NaN and out-of-range values clamped
        QCOMPARE(p[3], rgb(0, 0, 0, 0));
        QVERIFY(!QPaletteFile::load(write("t.ase", ase.left(ase.size() - 5)), &p));

        const QByteArray painter("ROWS 2\nR: 10, G:20, B: 300\nnoise line\nR:1,G:2,B:3 A: 4\n");
        p = dirty();
        QVERIFY(QPaletteFile::load(write("s.txt", painter), &p));
        QCOMPARE(p[0], rgb(10, 20, 255));
        QCOMPARE(p[1], rgb(1, 2, 3, 4));
        QCOMPARE(p[2], rgb(0, 0, 0, 0));
    }

    void images()
    {
        // An image without a colour table is not a palette, and changes nothing.
        QImage plain(4, 4, QImage::Format_RGB32);
        plain.fill(Qt::red);
        const QString png = m_dir.filePath("plain.png");
        QVERIFY(plain.save(png));
        QRGBPal p = dirty();
        QString error;
        QVERIFY(!QPaletteFile::load(png, &p, &error));
        QVERIFY(p == dirty());
        QVERIFY(!error.isEmpty());

        QImage indexed(4, 4, QImage::Format_Indexed8);
        indexed.setColorTable({qRgb(1, 2, 3), qRgb(4, 5, 6), qRgba(7, 8, 9, 0)});
        indexed.fill(1);
        const QString bmp = m_dir.filePath("i.bmp");
        QVERIFY(indexed.save(bmp));
        QVERIFY(QPaletteFile::load(bmp, &p));
        QCOMPARE(p[1], rgb(4, 5, 6));

        // An 8-bit PCX: header, one run of pixels, then the byte 12 and 256 triples.
        QByteArray pcx(128, '\0');
        pcx[0] = 10;
        pcx[1] = 5;
        pcx[2] = 1;
        pcx[3] = 8;
        pcx[65] = 1;
        pcx.append(char(0xC4)).append(char(0));
        pcx.append(char(12));
        for (int i = 0; i < 256; ++i)
            pcx.append(char(i)).append(char(0)).append(char(255 - i));
        p = dirty();
        QVERIFY(QPaletteFile::load(write("x.pcx", pcx), &p));
        QCOMPARE(p[0], rgb(0, 0, 255));
        QCOMPARE(p[200], rgb(200, 0, 55));
        QByteArray noTail = pcx;
        noTail[noTail.size() - 769] = 11;
        p = dirty();
        QVERIFY(!QPaletteFile::load(write("y.pcx", noTail), &p));
        QVERIFY(p == dirty());
        QVERIFY(!QPaletteFile::load(write("z.pcx", pcx.left(100)), &p));
        QVERIFY(!QPaletteFile::load(write("bad.png", "not a png"), &p));

        QVERIFY(QPaletteFile::openFilter().startsWith("All supported (*.act *.pcx *.png *.bmp *.pal *.aco *.ase *.txt);;"));
        QCOMPARE(QPaletteFile::saveFilter(), QStringLiteral("Adobe Color Table (*.act)"));
    }
};

QTEST_GUILESS_MAIN(TestPaletteFile)
#include "tst_palettefile.moc"
