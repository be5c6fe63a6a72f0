// Structural edits of a large sprite store: moves and removals at both ends
// and in the middle, and auto organize, with undo recording on as in the
// editor. None of them may decode an image (the counter is reported).
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QRandomGenerator>

#include "sprites/qbfcachefilter.h"
#include "sprites/qspritecache.h"
#include "sprites/qsprites.h"

namespace {

constexpr int Sprites = 20000;

// 20,000 sprites, a third of them links, over 8 palettes (two of group 1),
// groups and numbers shuffled so that auto organize has work to do.
void build(QSprites &s, quint32 seed)
{
    QRandomGenerator rng(seed);
    s.setUndoEnabled(false);
    for (int p = 0; p < 8; ++p) {
        QRGBPal pal;
        pal[1].r = quint8(p);
        s.addPalette(pal, false, p < 2 ? 1 : 0, p);
    }
    const QByteArray pixels(16 * 16, '\x01');
    for (int k = 0; k < Sprites; ++k) {
        s.add();
        QSpriteItem *it = s.item(k);
        it->info.group = quint16(rng.bounded(k % 50 == 0 ? 9001 : 200));
        if (it->info.group > 200)
            it->info.group = 9000;
        it->info.number = quint16(rng.bounded(100));
        it->info.palette = quint16(rng.bounded(8));
        it->width = 16;
        it->height = 16;
        if (k > 0 && rng.bounded(3) == 0) {
            it->info.link = quint16(s.rootOf(int(rng.bounded(k))));
        } else {
            it->info.hasImage = true;
            it->cacheId = s.cache().add(pixels, true);
        }
    }
    s.setUndoEnabled(true);
}

int position(int where, int count)
{
    return where == 0 ? 0 : where == 1 ? count / 2 : count - 1;
}

void BM_Move(benchmark::State &state)
{
    QSprites s;
    build(s, 1);
    const int from = position(int(state.range(0)), s.count());
    const int to = position(int(state.range(1)), s.count());
    const quint64 decodes = QSpriteCache::decodeCount();
    for (auto _ : state) {
        s.move(from, to);
        s.move(to, from);
        if (s.undoStack()->count() > 20000) {
            state.PauseTiming();
            s.undoStack()->clear();
            state.ResumeTiming();
        }
    }
    state.counters["decodes"] = double(QSpriteCache::decodeCount() - decodes);
    state.SetItemsProcessed(state.iterations() * 2);
}
// 0 front, 1 middle, 2 back
BENCHMARK(BM_Move)->Args({0, 2})->Args({2, 0})->Args({0, 1})->Args({1, 0})->Args({1, 2})
    ->Unit(benchmark::kMicrosecond);

void BM_RemoveThenUndo(benchmark::State &state)
{
    QSprites s;
    build(s, 2);
    const quint64 decodes = QSpriteCache::decodeCount();
    for (auto _ : state) {
        s.remove(position(int(state.range(0)), s.count()));
        s.undoStack()->undo();
    }
    state.counters["decodes"] = double(QSpriteCache::decodeCount() - decodes);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RemoveThenUndo)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_AutoOrganize(benchmark::State &state)
{
    quint64 decodes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto s = std::make_unique<QSprites>();
        build(*s, 3);
        const quint64 before = QSpriteCache::decodeCount();
        state.ResumeTiming();
        s->autoOrganize();
        state.PauseTiming();
        decodes += QSpriteCache::decodeCount() - before;
        s.reset();
        state.ResumeTiming();
    }
    state.counters["decodes"] = double(decodes);
}
BENCHMARK(BM_AutoOrganize)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QBFCacheFilter::createFilters();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    QBFCacheFilter::destroyFilters();
    return 0;
}
