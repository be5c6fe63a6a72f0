// Reading and writing animation text: the engine's kfm.air, a generated file of
// 20,000 frames, and the text view's case, where one action is read again on
// every edit and its records come back from the pools.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "animations/qanimations.h"
#include "project/qanimationsfile.h"

#include <malloc.h>

namespace {

QString kfmText()
{
    QFile f(QStringLiteral(BF_TESTDATA_DIR "/engine-sample/chars/kfm/kfm.air"));
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// 400 actions of 50 frames: boxes on every fifth frame, a default per action,
// flips, transparency, scale and angle here and there, as in real files.
QString generated()
{
    QString s;
    int frame = 0;
    for (int a = 0; a < 400; ++a) {
        s += QStringLiteral("; Action %1\r\n[Begin Action %1]\r\nClsn2Default: 2\r\n Clsn2[0] = -10, 0, 10,-79\r\n"
                            " Clsn2[1] = -4,-92, 6,-79\r\n").arg(a);
        for (int f = 0; f < 50; ++f, ++frame) {
            if (f == 10)
                s += QStringLiteral("Loopstart\r\n");
            if (f % 5 == 0)
                s += QStringLiteral("Clsn1: 1\r\n Clsn1[0] = %1,-60, %2,-70\r\n").arg(f).arg(f + 30);
            s += QStringLiteral("%1,%2, %3,0, %4").arg(a).arg(f).arg(f - 25).arg(f % 7 + 1);
            if (f % 4 == 1)
                s += QStringLiteral(", H");
            if (f % 9 == 2)
                s += QStringLiteral(", , AS128D64");
            if (f % 11 == 3)
                s += QStringLiteral(", , , 1.5,2, 45");
            s += QStringLiteral("\r\n");
        }
        s += QStringLiteral("\r\n");
    }
    return s;
}

const QString &big()
{
    static const QString text = generated();
    return text;
}

void parse(benchmark::State &state, const QString &text)
{
    QAnimations store;
    qsizetype frames = 0;
    for (auto _ : state) {
        store.loadText(text, QStringLiteral("bench.air"), false);
        frames = 0;
        for (const AnimAction *a : store.actions())
            frames += a->frames.size();
    }
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
    state.counters["actions"] = store.count();
    state.counters["frames"] = double(frames);
    state.counters["frames_per_s"] = benchmark::Counter(double(frames), benchmark::Counter::kIsIterationInvariantRate);
}

void BM_ParseKfm(benchmark::State &state)
{
    parse(state, kfmText());
}

void BM_Parse20000Frames(benchmark::State &state)
{
    parse(state, big());
}

// From the file: reading, encoding detection, decoding and parsing.
void BM_Load20000Frames(benchmark::State &state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("big.air"));
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(big().toUtf8());
    f.close();
    QAnimations store;
    for (auto _ : state)
        QAnimationsFile::load(store, path);
    state.SetBytesProcessed(state.iterations() * QFile(path).size());
}

void BM_Write20000Frames(benchmark::State &state)
{
    QAnimations store;
    store.loadText(big(), QStringLiteral("bench.air"), false);
    qsizetype size = 0;
    for (auto _ : state)
        size = store.fileText().size();
    state.SetBytesProcessed(state.iterations() * size * 2);
}

// The text view: one action of the big store edited and read again, in the
// middle of the file, alternating two texts so that each pass changes it.
void BM_ReparseOneAction(benchmark::State &state)
{
    QAnimations store;
    store.loadText(big(), QStringLiteral("bench.air"), false);
    const int row = store.count() / 2;
    const QString one = store.actionText(row);
    QString two = one;
    two.replace(QStringLiteral(", H\r\n"), QStringLiteral(", V\r\n"));
    store.updateFromText(row, two); // the pool now holds what a pass gives back
    const AnimPool::Counts before = AnimPool::counts();
    bool flip = false;
    for (auto _ : state) {
        store.updateFromText(row, flip ? one : two);
        flip = !flip;
    }
    const AnimPool::Counts after = AnimPool::counts();
    state.counters["frames_made_during_run"] = double(after.framesMade - before.framesMade);
    state.counters["actions_made_during_run"] = double(after.actionsMade - before.actionsMade);
}

// Heap taken by the loaded store, per frame (boxes included).
void BM_MemoryPerFrame(benchmark::State &state)
{
    double perFrame = 0;
    for (auto _ : state) {
        malloc_trim(0);
        const size_t before = mallinfo2().uordblks;
        {
            auto store = std::make_unique<QAnimations>();
            store->loadText(big(), QStringLiteral("bench.air"), false);
            const size_t after = mallinfo2().uordblks;
            qsizetype frames = 0;
            for (const AnimAction *a : store->actions())
                frames += a->frames.size();
            perFrame = (double(after) - double(before)) / double(frames);
        }
    }
    state.counters["bytes_per_frame"] = perFrame;
    state.counters["text_bytes_per_frame"] = double(big().toUtf8().size()) / 20000.0;
}

} // namespace

BENCHMARK(BM_ParseKfm)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Parse20000Frames)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load20000Frames)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Write20000Frames)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReparseOneAction)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MemoryPerFrame)->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
