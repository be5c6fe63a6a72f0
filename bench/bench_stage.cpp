// Frames the stage draws per second: a 320 x 240 indexed frame with ten
// collision boxes, selected with handles, on the gradient with rulers and
// crosses, into a 640 x 480 raster target as the native host paints it.
// Target: at least 500 frames per second on one core at zoom 1 and at zoom 4.
#include "render/qsprrender.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

namespace {

QRenderFrame benchFrame()
{
    QImage img(320, 240, QImage::Format_Indexed8);
    QList<QRgb> table(256);
    for (int i = 0; i < 256; ++i)
        table[i] = qRgb(i, (i * 7) & 255, 255 - i);
    table[0] = 0;
    img.setColorTable(table);
    for (int y = 0; y < img.height(); ++y) {
        uchar *line = img.scanLine(y);
        for (int x = 0; x < img.width(); ++x)
            line[x] = uchar((x ^ y) % 64 < 8 ? 0 : (x + y) & 255);
    }
    QRenderFrame f;
    f.image = img;
    f.axis = QPoint(160, 230);
    f.group = 0;
    for (int i = 0; i < 10; ++i)
        f.clsn[i % 4].append(QRect(-150 + 28 * i, -220 + 15 * i, 40, 60));
    return f;
}

void drawFrames(benchmark::State &state)
{
    const int zoomIndex = int(state.range(0));
    QSprRender stage;
    stage.setMode(AnimationMode);
    stage.resizeEvent(QSize(640, 480));
    stage.setFrame(benchFrame());
    stage.setZoomIndex(zoomIndex);
    stage.setOrigin(320, 400);
    stage.setCrosses(true, true);
    stage.selectAll();
    QImage target(640, 480, QImage::Format_ARGB32_Premultiplied);
    int n = 0;
    for (auto _ : state) {
        // Pans a pixel each frame, as a drag does.
        stage.setOrigin(320 + (n++ & 7), 400);
        QPainter p(&target);
        stage.paint(&p, target.rect());
        p.end();
        benchmark::DoNotOptimize(target.constBits());
    }
    state.counters["frames/s"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(drawFrames)->Arg(2)->ArgName("zoom1")->Unit(benchmark::kMicrosecond);
BENCHMARK(drawFrames)->Arg(5)->ArgName("zoom4")->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
