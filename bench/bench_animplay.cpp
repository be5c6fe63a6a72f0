// What one timer tick of play costs on a 1,000-frame action of the sample
// character: finding the frame for the clock, building it from the store
// (sprite decode, boxes in force) and drawing the stage at 640 x 480.
// Target: a whole tick well under one engine tick (15 ms), so that play
// never falls behind; the lookup alone under a microsecond.
#include "animations/qanimations.h"
#include "animations/qanimplayback.h"
#include "project/qproject.h"
#include "render/qanimationframe.h"
#include "render/qsprrender.h"
#include "sprites/qbfcachefilter.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

namespace {

// 1,000 frames over the stand, walk and punch sprites, boxes on every tenth.
QString longAction()
{
    const char *sprites[] = {"0,0", "0,1", "0,2", "0,3", "20,0", "20,1", "20,2", "200,0", "200,1", "200,2"};
    QString text = QStringLiteral("[Begin Action 9999]\n");
    for (int i = 0; i < 1000; ++i) {
        if (i % 10 == 0)
            text += QStringLiteral("Clsn2: 1\n Clsn2[0] = -10, -80, 10, 0\n");
        text += QStringLiteral("%1, %2,0, %3\n").arg(QLatin1String(sprites[i % 10])).arg(i % 7).arg(1 + i % 4);
    }
    return text;
}

void lookup(benchmark::State &state)
{
    QAnimations store;
    store.loadText(longAction(), QStringLiteral("bench.air"), false);
    QAnimPlayback play;
    play.setAction(store.action(0));
    qint64 ms = 0;
    for (auto _ : state) {
        ms += 7;
        benchmark::DoNotOptimize(play.at(ms));
    }
}

void tick(benchmark::State &state)
{
    QProject project;
    if (!project.fromFile(QStringLiteral(BF_TESTDATA_DIR "/engine-sample/chars/kfm/kfm.def"), 0, false, false)) {
        state.SkipWithError("the sample character did not open");
        return;
    }
    QAnimations store;
    store.loadText(longAction(), QStringLiteral("bench.air"), false);
    QAnimPlayback play;
    play.setAction(store.action(0));
    QSprRender stage;
    stage.setSprites(project.sprites());
    stage.setMode(AnimationMode);
    stage.resizeEvent(QSize(640, 480));
    stage.setOrigin(320, 400);
    QImage target(640, 480, QImage::Format_ARGB32_Premultiplied);
    qint64 ms = 0;
    for (auto _ : state) {
        ms += 16;
        const QAnimPlayback::Position p = play.at(ms);
        stage.setFrame(QAnimationFrame::make(store, project.sprites(), 0, p.frame), p.frame);
        QPainter painter(&target);
        stage.paint(&painter, target.rect());
        painter.end();
        benchmark::DoNotOptimize(target.constBits());
    }
    state.counters["ticks/s"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(lookup)->Unit(benchmark::kNanosecond);
BENCHMARK(tick)->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QBFCacheFilter::createFilters();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
