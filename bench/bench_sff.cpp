// Loading and saving a large version 2 sprite file against plain file reads
// and writes of the same bytes, and the memory a loaded sprite costs beyond
// its stored bytes.
#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"
#include "sprites/sfffile.h"

#include <QCoreApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

constexpr int SpriteCount = 10000;

// A version 2.00 file of distinct RLE8 sprites under one 256-colour palette:
// the form that version stores indexed sprites in, so that a save copies.
QByteArray makeFile()
{
    QRandomGenerator rng(42);
    QByteArray ldata;
    Sff::ByteWriter lw(ldata);
    QRGBPal pal;
    for (int i = 0; i < 256; ++i)
        pal[i] = QRGBColor{quint8(i), quint8(255 - i), quint8(i * 7), 255};
    lw.bytes(QByteArray(reinterpret_cast<const char *>(pal.bytes()), 1024));
    std::vector<Sff::V2SpriteNode> nodes(SpriteCount);
    for (int i = 0; i < SpriteCount; ++i) {
        const int w = 24 + int(rng.bounded(40)), h = 24 + int(rng.bounded(40));
        QByteArray pixels(w * h, '\0');
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                pixels[y * w + x] = char((x / 4 + y / 3 + i) % 60);
        const QByteArray packed = [&] {
            QByteArray out;
            for (qsizetype p = 0; p < pixels.size();) {
                int run = 1;
                while (p + run < pixels.size() && run < 63 && pixels[p + run] == pixels[p])
                    ++run;
                out.append(char(0x40 | run));
                out.append(pixels[p]);
                p += run;
            }
            return out;
        }();
        Sff::V2SpriteNode &n = nodes[size_t(i)];
        n.group = quint16(i / 100);
        n.number = quint16(i % 100);
        n.width = quint16(w);
        n.height = quint16(h);
        n.format = Sff::CodeRLE8;
        n.depth = 8;
        n.offset = quint32(ldata.size());
        n.length = quint32(packed.size() + 4);
        lw.u32(quint32(w * h));
        lw.bytes(packed);
    }
    QByteArray file;
    Sff::ByteWriter fw(file);
    Sff::V2Header hd;
    hd.paletteOffset = Sff::HeaderSize;
    hd.paletteCount = 1;
    hd.spriteOffset = Sff::HeaderSize + Sff::PaletteNodeSize;
    hd.spriteCount = SpriteCount;
    hd.ldataOffset = hd.spriteOffset + Sff::SpriteNodeSize * SpriteCount;
    hd.ldataLength = quint32(ldata.size());
    hd.tdataOffset = hd.ldataOffset + hd.ldataLength;
    hd.write(fw, QSffVersion::V200);
    Sff::V2PaletteNode pn;
    pn.colorCount = 256;
    pn.length = 1024;
    pn.write(fw);
    for (const auto &n : nodes)
        n.write(fw);
    fw.bytes(ldata);
    return file;
}

struct Fixture
{
    QTemporaryDir dir;
    QString path;
    QByteArray bytes;
    Fixture()
    {
        bytes = makeFile();
        path = dir.filePath("big.sff");
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
    }
};

Fixture &fixture()
{
    static Fixture f;
    return f;
}

void BM_PlainRead(benchmark::State &state)
{
    Fixture &f = fixture();
    for (auto _ : state) {
        QFile file(f.path);
        file.open(QIODevice::ReadOnly);
        QByteArray all = file.readAll();
        benchmark::DoNotOptimize(all.data());
    }
    state.SetBytesProcessed(state.iterations() * f.bytes.size());
}

void BM_Load(benchmark::State &state)
{
    Fixture &f = fixture();
    QSprites sprites;
    for (auto _ : state) {
        sprites.fromFile(f.path, false, false);
        benchmark::DoNotOptimize(sprites.count());
    }
    state.SetBytesProcessed(state.iterations() * f.bytes.size());
    state.counters["sprites"] = sprites.count();
}

void BM_PlainWrite(benchmark::State &state)
{
    Fixture &f = fixture();
    const QString out = f.dir.filePath("plain.sff");
    for (auto _ : state) {
        QFile file(out);
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write(f.bytes);
        file.close();
    }
    state.SetBytesProcessed(state.iterations() * f.bytes.size());
}

void BM_SaveUnchanged(benchmark::State &state)
{
    Fixture &f = fixture();
    const QString out = f.dir.filePath("saved.sff");
    QSprites sprites;
    sprites.fromFile(f.path, false, false);
    sprites.toFile(out, false, 0, true, false); // settles the stored forms once
    for (auto _ : state)
        sprites.toFile(out, false, 0, true, false);
    state.SetBytesProcessed(state.iterations() * QFile(out).size());
}

// Heap growth of a load, less the stored image bytes, per sprite.
void BM_MemoryPerSprite(benchmark::State &state)
{
    Fixture &f = fixture();
    double overhead = 0;
    for (auto _ : state) {
        malloc_trim(0);
        const size_t before = mallinfo2().uordblks;
        {
            auto sprites = std::make_unique<QSprites>(QSpriteCache::Memory, false);
            sprites->fromFile(f.path, false, false);
            const size_t after = mallinfo2().uordblks;
            overhead = (double(after) - double(before) - double(sprites->cache().storedTotal()))
                       / sprites->count();
        }
        state.PauseTiming();
        state.ResumeTiming();
    }
    state.counters["overhead_bytes_per_sprite"] = overhead;
}

} // namespace

BENCHMARK(BM_PlainRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveUnchanged)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemoryPerSprite)->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QBFCacheFilter::createFilters();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
