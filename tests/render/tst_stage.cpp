// The stage drawn into images with fixed settings, compared with stored
// pictures and probed pixel by pixel; the mouse work on boxes and axes; and
// the command-line pictures of every sample sprite against the store.
#include "testsupport.h"

#include "render/qspritepicture.h"
#include "render/qsprrender.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"

#include <QDirIterator>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QColor kBack(40, 80, 120);

// A 16 x 12 sprite, asymmetric so that flips and turns show: a red frame,
// green and blue stripes, a yellow corner at the top left, colour 0 holes.
QImage testSprite()
{
    QImage img(16, 12, QImage::Format_Indexed8);
    img.setColorTable({qRgba(0, 0, 0, 0), qRgb(220, 40, 40), qRgb(40, 200, 60), qRgb(60, 80, 230),
                       qRgb(250, 230, 40), qRgb(200, 100, 50)});
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            int c = (x == 0 || y == 0 || x == 15 || y == 11) ? 1 : ((x / 2) % 2 ? 2 : 3);
            if (x < 5 && y < 4)
                c = 4;
            if (x >= 10 && x <= 11 && y >= 5 && y <= 7)
                c = 0;
            img.setPixel(x, y, uint(c));
        }
    return img;
}

// A stage of fixed settings on a plain background.
void setUpStage(QSprRender &stage, QRenderMode mode, int zoomIndex = 2)
{
    stage.setBackground(kBack, kBack, 0, 0, 0, QString());
    stage.setMode(mode);
    stage.setZoomIndex(zoomIndex);
    stage.setClsnVisible(true, true, true, true, false);
    stage.setCrosses(false, false);
    stage.resizeEvent(QSize(200, 160));
    stage.setOrigin(100, 90);
}

QRenderFrame testFrame()
{
    QRenderFrame f;
    f.image = testSprite();
    f.axis = QPoint(8, 11);
    f.group = 0;
    return f;
}

void press(QSprRender &s, QPoint at, Qt::KeyboardModifiers mods = Qt::NoModifier, Qt::MouseButton b = Qt::LeftButton)
{
    QMouseEvent e(QEvent::MouseButtonPress, at, at, b, b, mods);
    s.mousePressEvent(&e);
}
void move(QSprRender &s, QPoint at)
{
    QMouseEvent e(QEvent::MouseMove, at, at, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    s.mouseMoveEvent(&e);
}
void release(QSprRender &s, QPoint at, Qt::MouseButton b = Qt::LeftButton)
{
    QMouseEvent e(QEvent::MouseButtonRelease, at, at, b, Qt::NoButton, Qt::NoModifier);
    s.mouseReleaseEvent(&e);
}

#define BF_VERIFY_FIXTURE(image, name)                                                             \
    do {                                                                                           \
        QString why;                                                                               \
        QVERIFY2(TestSupport::matchesFixture(image, QStringLiteral("stage/") + name, 0, &why),     \
                 qPrintable(why));                                                                 \
    } while (0)

} // namespace

class TestStage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QBFCacheFilter::createFilters(); }
    void rulersAndCrosses();
    void spritesAndFrames();
    void blendingOverTheBackground();
    void boxesAndMouse();
    void picturesOfEverySampleSprite();
};

void TestStage::rulersAndCrosses()
{
    for (int zoom : {2, 4}) {
        QSprRender stage;
        setUpStage(stage, SpriteMode, zoom);
        stage.setClsnVisible(true, true, true, true, true);
        BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("rulers-zoom%1.png").arg(zoom == 2 ? 1 : 3));
    }

    // Set 2 takes the files given, and the first set for a file that is missing.
    QTemporaryDir dir;
    QImage own(9, 9, QImage::Format_ARGB32);
    own.fill(qRgb(255, 0, 255));
    own.save(dir.filePath(QStringLiteral("own.png")));
    for (int set = 0; set < 3; ++set) {
        QSprRender stage;
        setUpStage(stage, AnimationMode, 3);
        stage.setCrossImages(set, dir.filePath(QStringLiteral("own.png")), dir.filePath(QStringLiteral("none.png")),
                             dir.filePath(QStringLiteral("own.png")));
        QRenderFrame frame;
        frame.offset = QPoint(12, -8);
        stage.setFrame(frame);
        stage.setExtraAxis(QPoint(-15, 10));
        stage.setCrosses(true, true);
        stage.setExtraCross(true);
        BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("crosses-set%1.png").arg(set));
    }
}

void TestStage::spritesAndFrames()
{
    // Onion skin: sprite 1 grey at half opacity under sprite 0.
    QSprites store;
    store.setUndoEnabled(false);
    for (int i = 0; i < 2; ++i) {
        store.add();
        QImage img = testSprite();
        if (i == 1)
            img = img.mirrored(true, false);
        QVERIFY(store.changeImage(i, img, 0, false, 1, 1));
        QSpriteInfo info = store.item(i)->info;
        info.x = qint16(i ? 4 : 8);
        info.y = 11;
        store.setInfo(i, info);
    }
    {
        QSprRender stage;
        setUpStage(stage, SpriteMode, 4);
        stage.setSprites(&store);
        stage.setSpriteIndex(0);
        stage.setOnionSprite(1);
        stage.setOnion(true, QSprRender::OnionGrey, 50);
        stage.setGuides(true);
        stage.setGuide(QPoint(-10, 5));
        BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("onion.png"));
        // The sprite sits with its axis on the origin, at three times its size.
        QCOMPARE(stage.spriteRect(), QRect(100 - 3 * 8, 90 - 3 * 11, 48, 36));
    }

    QSprRender stage;
    setUpStage(stage, AnimationMode, 4);
    QRenderFrame frame = testFrame();
    frame.flip = 3;
    frame.offset = QPoint(-5, 3);
    stage.setFrame(frame);
    stage.setCrosses(true, true);
    BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("frame-flipped.png"));
    // Flipped both ways, the axis mirrors inside the sprite, then the offset applies.
    QCOMPARE(stage.spriteRect().topLeft(), QPoint(100 - 3 * (16 - 1 - 8 + 5), 90 - 3 * (12 - 1 - 11 - 3)));

    frame = testFrame();
    frame.angle = 30;
    frame.scaleX = 2;
    frame.scaleY = 1.5f;
    stage.setFrame(frame);
    BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("frame-rotated.png"));

    frame = QRenderFrame();
    frame.group = 200;
    frame.number = 7;
    frame.missing = true;
    frame.clsn[Clsn2] = {QRect(QPoint(-10, -30), QPoint(10, 0))};
    stage.setFrame(frame);
    BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("missing-sprite.png"));
}

void TestStage::blendingOverTheBackground()
{
    // Colour 5 (200, 100, 50) fills the sprite; the background is kBack.
    QImage solid = testSprite();
    solid.fill(5);
    solid.setPixel(0, 0, 0);
    struct Case { const char *name; quint8 trans; quint16 src, dst; int r, g, b; };
    auto add = [](int d, int s, int sa, int da) { return qMin(255, d * da / 256 + s * sa / 256); };
    const Case cases[] = {
        {"none", 0, 256, 256, 200, 100, 50},
        {"A", 1, 256, 256, add(40, 200, 256, 256), add(80, 100, 256, 256), add(120, 50, 256, 256)},
        {"A1", 1, 256, 128, add(40, 200, 256, 128), add(80, 100, 256, 128), add(120, 50, 256, 128)},
        {"S", 2, 256, 256, 0, 0, 120 - 50},
        {"AS128D64", 1, 128, 64, add(40, 200, 128, 64), add(80, 100, 128, 64), add(120, 50, 128, 64)},
    };
    for (const Case &c : cases) {
        for (bool colour0 : {false, true}) {
            QSprRender stage;
            setUpStage(stage, AnimationMode, 4);
            stage.setShowColour0(colour0);
            QRenderFrame frame = testFrame();
            frame.image = solid;
            frame.trans = c.trans;
            frame.src = c.src;
            frame.dst = c.dst;
            stage.setFrame(frame);
            const QImage out = stage.render(QSize(200, 160));
            const QRect r = stage.spriteRect();
            const QColor inside = out.pixelColor(r.center());
            const QString what = QStringLiteral("%1 (colour 0 %2): %3,%4,%5").arg(QLatin1String(c.name))
                                     .arg(colour0).arg(inside.red()).arg(inside.green()).arg(inside.blue());
            QVERIFY2(qAbs(inside.red() - c.r) <= 2 && qAbs(inside.green() - c.g) <= 2 && qAbs(inside.blue() - c.b) <= 2,
                     qPrintable(what));
            // Colour 0 shows as the background, or as its own opaque colour.
            const QColor hole = out.pixelColor(r.topLeft() + QPoint(1, 1));
            QCOMPARE(hole, colour0 ? QColor(Qt::black) : kBack);
            QCOMPARE(out.pixelColor(r.topLeft() - QPoint(2, 2)), kBack);
        }
    }
}

void TestStage::boxesAndMouse()
{
    QSprRender stage;
    setUpStage(stage, AnimationMode, 4); // zoom 3
    QRenderFrame frame = testFrame();
    frame.clsn[Clsn1] = {QRect(QPoint(0, -20), QPoint(15, -5))};
    frame.clsn[Clsn2] = {QRect(QPoint(-10, -25), QPoint(5, 0)), QRect(QPoint(-5, -15), QPoint(10, -2))};
    frame.clsn[Clsn1Default] = {QRect(QPoint(-25, -10), QPoint(-15, 5))};
    frame.clsn[Clsn2Default] = {QRect(QPoint(12, 2), QPoint(25, 8))};
    stage.setFrame(frame);
    QSignalSpy changes(&stage, &QSprRender::clsnChanged);

    // Two clicks on the overlap of the two Clsn2 boxes select one, then the other.
    const QPoint overlap(100 + 3 * 0, 90 + 3 * -10);
    auto selected = [&stage]() {
        QList<int> picked;
        for (const RenderClsnBox &b : stage.boxes())
            if (b.selected)
                picked << b.type * 100 + b.index;
        return picked;
    };
    press(stage, overlap);
    release(stage, overlap);
    const QList<int> first = selected();
    press(stage, overlap);
    release(stage, overlap);
    QCOMPARE(first.size(), 1);
    QCOMPARE(selected().size(), 1);
    QVERIFY(selected() != first);
    QCOMPARE(changes.size(), 0); // clicks alone change nothing

    // Copy as text lists the selection in the frame's own format.
    stage.selectAll();
    QCOMPARE(stage.selectedClsnText(),
             QStringLiteral("Clsn1Default: 1\r\n  Clsn1[0] = -25, -10, -15, 5\r\n"
                            "Clsn2Default: 1\r\n  Clsn2[0] = 12, 2, 25, 8\r\n"
                            "Clsn1: 1\r\n  Clsn1[0] = 0, -20, 15, -5\r\n"
                            "Clsn2: 2\r\n  Clsn2[0] = -10, -25, 5, 0\r\n  Clsn2[1] = -5, -15, 10, -2\r\n"));
    BF_VERIFY_FIXTURE(stage.render(QSize(200, 160)), QStringLiteral("boxes.png"));

    // The bottom-right handle doubles the selection's size from its top-left.
    stage.clearSelection();
    press(stage, QPoint(100 + 3 * 20, 90 + 3 * 5)); // the Clsn2Default box
    release(stage, QPoint(100 + 3 * 20, 90 + 3 * 5));
    const QPoint corner = stage.handle(7);
    const int w = stage.boxes().last().screen.width();
    press(stage, corner);
    move(stage, corner + QPoint(w, 0));
    release(stage, corner + QPoint(w, 0));
    QCOMPARE(stage.frame().clsn[Clsn2Default].at(0), QRect(QPoint(12, 2), QPoint(39, 8)));
    QCOMPARE(changes.size(), 1);

    // A click while adding stores nothing; a stroke stores one box in sprite units.
    stage.setAdding(true, Clsn1);
    press(stage, QPoint(30, 140));
    release(stage, QPoint(30, 140));
    QCOMPARE(stage.frame().clsn[Clsn1].size(), 1);
    press(stage, QPoint(100 - 30, 90 + 3));
    move(stage, QPoint(100 - 30 + 14, 90 + 3 + 8));
    release(stage, QPoint(100 - 30 + 14, 90 + 3 + 8));
    QCOMPARE(stage.frame().clsn[Clsn1].size(), 2);
    QCOMPARE(stage.frame().clsn[Clsn1].at(1), QRect(-10, 1, 5, 3));
    QSignalSpy exits(&stage, &QSprRender::clsnModeExit);
    press(stage, QPoint(10, 10), Qt::NoModifier, Qt::RightButton);
    release(stage, QPoint(10, 10), Qt::RightButton);
    QCOMPARE(exits.size(), 1);
    QVERIFY(!stage.isAdding());

    // Swap turns the selection into the other kind; delete removes it.
    stage.clearSelection();
    press(stage, QPoint(100 + 3 * -20, 90));
    release(stage, QPoint(100 + 3 * -20, 90));
    stage.swapSelected(true);
    QCOMPARE(stage.frame().clsn[Clsn1Default].size(), 0);
    QCOMPARE(stage.frame().clsn[Clsn1].size(), 3);
    stage.selectAll();
    stage.deleteSelected();
    for (const QList<QRect> &list : stage.frame().clsn)
        QVERIFY(list.isEmpty());

    // Far more boxes than an author draws: all shown, all editable.
    QRenderFrame crowded = testFrame();
    for (int i = 0; i < 300; ++i)
        crowded.clsn[i % 4].append(QRect(i % 40 - 20, -(i % 30), 4, 4));
    stage.setFrame(crowded);
    QCOMPARE(stage.boxes().size(), 300);
    stage.selectAll();
    stage.moveSelected(1, 1);
    QCOMPARE(stage.frame().clsn[3].last(), QRect(299 % 40 - 19, -(299 % 30) + 1, 4, 4));
    QVERIFY(!stage.render(QSize(200, 160)).isNull());

    // Ctrl pans even over a box; at a quarter an axis drag moves one unit a pixel.
    QRenderFrame single = testFrame();
    single.clsn[Clsn1] = {QRect(-5, -5, 10, 10)};
    stage.setFrame(single);
    press(stage, QPoint(100, 90), Qt::ControlModifier);
    move(stage, QPoint(110, 95));
    release(stage, QPoint(110, 95));
    QCOMPARE(stage.origin(), QPoint(110, 95));
    stage.setZoomIndex(0);
    stage.setCrosses(false, true);
    QSignalSpy axes(&stage, &QSprRender::axisChanged);
    const QPoint cross = stage.origin() + QPoint(6, 6); // beside the box
    press(stage, cross);
    move(stage, cross + QPoint(7, -3));
    release(stage, cross + QPoint(7, -3));
    QCOMPARE(stage.frame().offset, QPoint(7, -3));
    QCOMPARE(axes.last().at(1).toPoint(), QPoint(7, -3));
}

void TestStage::picturesOfEverySampleSprite()
{
    BF_REQUIRE_SAMPLE();
    int sprites = 0;
    QDirIterator it(TestSupport::sampleDir(), {QStringLiteral("*.sff")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QSprites store;
        QVERIFY2(store.fromFile(path, false, false), qPrintable(path));
        for (int i = 0; i < store.count(); ++i) {
            QImage expected = store.image(i);
            const QImage drawn = QSpritePicture::alone(&store, i, -1, 2);
            if (expected.isNull()) {
                QVERIFY(drawn.isNull());
                continue;
            }
            if (expected.format() == QImage::Format_Indexed8) {
                QList<QRgb> table = expected.colorTable();
                table.resize(256, 0);
                table[0] &= 0x00ffffffu;
                expected.setColorTable(table);
            }
            expected = expected.convertToFormat(QImage::Format_ARGB32);
            const int difference = TestSupport::imageDifference(drawn, expected);
            QVERIFY2(difference == 0, qPrintable(QStringLiteral("%1 sprite %2: difference %3").arg(path).arg(i).arg(difference)));
            ++sprites;
        }
        // The stage picture is larger than the sprite and holds its colours.
        if (store.count() > 0 && !store.image(0).isNull()) {
            const QImage stagePicture = QSpritePicture::onStage(&store, 0, -1, 3);
            QVERIFY(stagePicture.width() >= 320 && stagePicture.height() >= 240);
        }
    }
    QVERIFY(sprites > 100);
}

QTEST_MAIN(TestStage)
#include "tst_stage.moc"
