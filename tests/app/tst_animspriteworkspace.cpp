// The stage workspace: its host widget, zoom by actions and wheel, panning
// by mouse, view settings kept across sessions, and the OpenGL host drawing
// what the native host draws.
#include "testsupport.h"

#include "animations/ui/qanimspriteworkspace.h"
#include "animations/ui/qoglrenderwidget.h"
#include "shell/qappobjects.h"
#include "base/qmugenmodel.h"
#include "render/qsprrender.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"

#include <QAction>
#include <QDir>
#include <QOpenGLWidget>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>

#include <memory>

namespace {

// A frame of the sample character with its boxes, one of them selected.
void showSampleFrame(QAnimSpriteWorkspace &w, QSprites &store)
{
    w.showForAnimations();
    QRenderFrame frame;
    const int index = store.findSprite(0, 0, 0);
    frame.image = store.image(index);
    frame.axis = QPoint(store.item(index)->info.x, store.item(index)->info.y);
    frame.group = 0;
    frame.clsn[Clsn2] = {QRect(QPoint(-13, -79), QPoint(16, 0))};
    frame.clsn[Clsn1] = {QRect(QPoint(10, -70), QPoint(40, -55))};
    frame.clsn[Clsn2Default] = {QRect(QPoint(-20, -90), QPoint(20, -60))};
    w.renderer()->setFrame(frame);
    w.action(QStringLiteral("view_anim_cross"))->setChecked(true);
    w.renderer()->setOrigin(w.host()->width() / 2, w.host()->height() * 3 / 4);
    w.renderer()->setZoomIndex(3);
    // A click on the Clsn1 box selects it: handles show.
    const QPointF at(w.renderer()->origin() + QPoint(2 * 25, 2 * -62));
    QMouseEvent press(QEvent::MouseButtonPress, at, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    w.renderer()->mousePressEvent(&press);
    QMouseEvent release(QEvent::MouseButtonRelease, at, at, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    w.renderer()->mouseReleaseEvent(&release);
}

} // namespace

class TestAnimSpriteWorkspace : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QBFCacheFilter::createFilters();
        config = std::make_unique<QMugenModel>();
        config->setDefaults();
        objects.config = config.get();
    }
    void cleanupTestCase()
    {
        config.reset();
    }
    void zoomPanAndSettings();
    void openGLHostMatchesNative();

private:
    std::unique_ptr<QMugenModel> config;
    QAppObjects objects;
};

void TestAnimSpriteWorkspace::zoomPanAndSettings()
{
    config->map[QStringLiteral("use_opengl")] = QStringLiteral("true");
    config->map[QStringLiteral("zoom_level")] = QStringLiteral("4");
    config->map[QStringLiteral("show_rulers")] = QStringLiteral("false");
    auto w = std::make_unique<QAnimSpriteWorkspace>(objects);
    // No OpenGL without a display: the native host serves, and says so.
    if (!QOGLRenderWidget::available()) {
        QVERIFY(!w->isOpenGL());
        QCOMPARE(w->widget()->findChild<QToolButton *>(QStringLiteral("stageMode"))->text(), QStringLiteral("Native mode"));
        QVERIFY(!w->widget()->findChild<QOpenGLWidget *>());
    }
    QSprRender *stage = w->renderer();
    QCOMPARE(stage->zoomIndex(), 4);
    QVERIFY(!stage->rulers());
    w->widget()->resize(500, 400);
    w->widget()->show();
    QVERIFY(QTest::qWaitForWindowExposed(w->widget()));

    w->action(QStringLiteral("view_zoomin"))->trigger();
    QCOMPARE(stage->zoom(), 4.0);
    w->action(QStringLiteral("view_zoomreset"))->trigger();
    QCOMPARE(stage->zoomIndex(), 2);
    QWheelEvent wheel(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, -240), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(w->host(), &wheel);
    QCOMPARE(stage->zoom(), 0.25);

    // A drag on empty stage pans it.
    w->action(QStringLiteral("view_center_axis"))->trigger();
    const QPoint origin = stage->origin();
    QCOMPARE(origin, QPoint(w->host()->width() / 2, w->host()->height() / 2));
    QTest::mousePress(w->host(), Qt::LeftButton, Qt::NoModifier, QPoint(40, 300));
    QMouseEvent drag(QEvent::MouseMove, QPointF(70, 280), QPointF(), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(w->host(), &drag);
    QTest::mouseRelease(w->host(), Qt::LeftButton, Qt::NoModifier, QPoint(70, 280));
    QCOMPARE(stage->origin(), origin + QPoint(30, -20));

    // What the user left is what the next session starts with.
    w->action(QStringLiteral("view_guide_lines"))->setChecked(true);
    w->action(QStringLiteral("view_clsn2"))->setChecked(false);
    w.reset();
    QCOMPARE(config->map.value(QStringLiteral("main_axis_x")).toInt(), origin.x() + 30);
    QCOMPARE(config->map.value(QStringLiteral("zoom_level")).toInt(), 0);
    w = std::make_unique<QAnimSpriteWorkspace>(objects);
    QVERIFY(w->renderer()->guides());
    QVERIFY(!w->renderer()->clsnVisible(Clsn2));
    QCOMPARE(w->renderer()->origin(), origin + QPoint(30, -20));
}

void TestAnimSpriteWorkspace::openGLHostMatchesNative()
{
    BF_REQUIRE_SAMPLE();
    if (!QOGLRenderWidget::available())
        QSKIP("no OpenGL on this platform (offscreen): run under xvfb-run with QT_QPA_PLATFORM=xcb");
    QSprites store;
    QVERIFY(store.fromFile(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.sff")), true, false));
    const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
    QImage pictures[2];
    for (bool gl : {false, true}) {
        config->setDefaults();
        config->map[QStringLiteral("use_opengl")] = gl;
        QAnimSpriteWorkspace w(objects);
        QCOMPARE(w.isOpenGL(), gl);
        QCOMPARE(w.widget()->findChild<QToolButton *>(QStringLiteral("stageMode"))->text(),
                 gl ? QStringLiteral("OpenGL mode") : QStringLiteral("Native mode"));
        w.renderer()->setSprites(&store);
        w.widget()->resize(640, 480);
        w.widget()->show();
        QVERIFY(QTest::qWaitForWindowExposed(w.widget()));
        showSampleFrame(w, store);
        QTest::qWait(50);
        pictures[gl] = gl ? static_cast<QOpenGLWidget *>(w.host())->grabFramebuffer() : w.host()->grab().toImage();
        if (!shots.isEmpty()) {
            QDir().mkpath(shots);
            w.widget()->grab().save(QDir(shots).filePath(gl ? QStringLiteral("stage-opengl.png") : QStringLiteral("stage-native.png")));
        }
    }
    const int difference = TestSupport::imageDifference(pictures[0].convertToFormat(QImage::Format_RGB32),
                                                        pictures[1].convertToFormat(QImage::Format_RGB32));
    QVERIFY2(difference >= 0 && difference <= 8, qPrintable(QStringLiteral("difference %1").arg(difference)));
}

QTEST_MAIN(TestAnimSpriteWorkspace)
#include "tst_animspriteworkspace.moc"
