// Decode and encode throughput of every sprite codec on the engine sample's
// sprites, and the fast LZ5 encoder against the plain exhaustive search.
#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include "../tests/sprites/lz5reference.h"
#include "../tests/sprites/sffsamples.h"
#include "sprites/qlz5cachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qpngcachefilter.h"
#include "sprites/qrle5cachefilter.h"
#include "sprites/qrle8cachefilter.h"

namespace {

struct Sprite
{
    QSpriteSize size;
    QByteArray pixels;  // without padding
    QByteArray stored;  // as stored in the file
};

struct Corpus
{
    QList<Sprite> pcx, rle8, lz5, png32;
    QList<Sprite> indexed; // every indexed sprite, pixels as 5-bit colours
    qint64 indexedPixels = 0;
};

// Run-length stream of the RLE5 kind, for a codec the sample doesn't use.
QByteArray rle5Stream(const QByteArray &pixels)
{
    QByteArray out;
    for (qsizetype i = 0; i < pixels.size();) {
        const char c = pixels[i];
        qsizetype run = 1;
        while (run < 256 && i + run < pixels.size() && pixels[i + run] == c)
            ++run;
        out.append(char(run - 1));
        if (c) {
            out.append(char(0x80));
            out.append(c);
        } else {
            out.append(char(0));
        }
        i += run;
    }
    return out;
}

const Corpus &corpus()
{
    static const Corpus c = [] {
        Corpus c;
        const QString dir = QStringLiteral(BF_TESTDATA_DIR "/engine-sample");
        for (const SffSamples::StoredSprite &s : SffSamples::readAll(dir)) {
            Sprite sp;
            sp.stored = s.bytes;
            sp.size = QSpriteSize(s.width, s.height);
            if (s.format == 1) {
                const QImage img = QPCXCacheFilter::read(s.bytes);
                sp.size = QSpriteSize::of(img);
                sp.pixels = QSpriteSize::packedPixels(img);
                c.pcx << sp;
            } else if (s.format == 2) {
                sp.pixels = QSpriteSize::packedPixels(sp.size.toImage(QRLE8CacheFilter().decode(s.bytes, sp.size)));
                c.rle8 << sp;
            } else if (s.format == 4) {
                sp.pixels = QSpriteSize::packedPixels(sp.size.toImage(QLZ5CacheFilter().decode(s.bytes, sp.size)));
                c.lz5 << sp;
            } else if (s.format >= 10) {
                const QImage img = QPNGCacheFilter::read(s.bytes);
                sp.size = QSpriteSize::of(img);
                c.png32 << sp;
                continue;
            } else {
                continue;
            }
            Sprite five = sp;
            for (char &b : five.pixels)
                b = char(b & 31);
            c.indexedPixels += five.pixels.size();
            c.indexed << five;
        }
        return c;
    }();
    return c;
}

qint64 pixelsOf(const QList<Sprite> &list)
{
    qint64 n = 0;
    for (const Sprite &s : list)
        n += s.size.byteCount();
    return n;
}

template <typename Fn>
void runOver(benchmark::State &state, const QList<Sprite> &list, Fn fn)
{
    if (list.isEmpty()) {
        state.SkipWithError("engine sample not found");
        return;
    }
    for (auto _ : state)
        for (const Sprite &s : list)
            benchmark::DoNotOptimize(fn(s));
    state.SetBytesProcessed(state.iterations() * pixelsOf(list));
    state.counters["sprites"] = double(list.size());
}

void BM_DecodePCX(benchmark::State &st) { runOver(st, corpus().pcx, [](const Sprite &s) { return QPCXCacheFilter().decode(s.stored, s.size); }); }
void BM_EncodePCX(benchmark::State &st)
{
    QList<QImage> images;
    for (const Sprite &s : corpus().pcx)
        images << QPCXCacheFilter::read(s.stored);
    qsizetype k = 0;
    runOver(st, corpus().pcx, [&](const Sprite &) { return QPCXCacheFilter::write(images[k++ % images.size()]); });
}
void BM_DecodeRLE8(benchmark::State &st) { runOver(st, corpus().rle8, [](const Sprite &s) { return QRLE8CacheFilter().decode(s.stored, s.size); }); }
void BM_EncodeRLE8(benchmark::State &st) { runOver(st, corpus().rle8, [](const Sprite &s) { return QRLE8CacheFilter::encode(s.pixels); }); }
void BM_DecodeRLE5(benchmark::State &st)
{
    QList<Sprite> list = corpus().indexed;
    for (Sprite &s : list)
        s.stored = rle5Stream(s.pixels);
    runOver(st, list, [](const Sprite &s) { return QRLE5CacheFilter().decode(s.stored, s.size); });
}
void BM_DecodeLZ5(benchmark::State &st) { runOver(st, corpus().lz5, [](const Sprite &s) { return QLZ5CacheFilter().decode(s.stored, s.size); }); }
void BM_EncodeLZ5NoSearch(benchmark::State &st) { runOver(st, corpus().indexed, [](const Sprite &s) { return QLZ5CacheFilter::encode(s.pixels, false); }); }
void BM_DecodePNG(benchmark::State &st) { runOver(st, corpus().png32, [](const Sprite &s) { return QPNGCacheFilter().decode(s.stored, s.size); }); }
void BM_EncodePNGIndexed(benchmark::State &st)
{
    runOver(st, corpus().rle8, [](const Sprite &s) { return QPNGCacheFilter::encode(s.size.toImage(s.size.padLines(s.pixels, s.size.width))); });
}

// Both LZ5 encoders over every indexed sprite of the sample; the fast one must
// give the reference's bytes.
void BM_EncodeLZ5Fast(benchmark::State &st)
{
    for (const Sprite &s : corpus().indexed)
        if (QLZ5CacheFilter::encode(s.pixels, true) != Lz5Reference::encode(s.pixels, true)) {
            st.SkipWithError("fast LZ5 encoder differs from the reference");
            return;
        }
    runOver(st, corpus().indexed, [](const Sprite &s) { return QLZ5CacheFilter::encode(s.pixels, true); });
}
void BM_EncodeLZ5Reference(benchmark::State &st)
{
    runOver(st, corpus().indexed, [](const Sprite &s) { return Lz5Reference::encode(s.pixels, true); });
}

} // namespace

BENCHMARK(BM_DecodePCX)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodePCX)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DecodeRLE8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodeRLE8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DecodeRLE5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DecodeLZ5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodeLZ5NoSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DecodePNG)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodePNGIndexed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodeLZ5Fast)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EncodeLZ5Reference)->Unit(benchmark::kMillisecond)->Iterations(2);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
