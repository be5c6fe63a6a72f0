// Loading sprite files whose counts claim 2,147,483,647 sprites or palettes:
// the load must cost time and memory in proportion to the bytes present.
// Each case reports the file size, the issues listed, the heap the loaded
// store holds and the peak heap during the load (by malloc statistics).
#include "base/qmessages.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qsprites.h"
#include "sprites/sfffile.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

constexpr quint32 Claimed = 0x7FFFFFFF;

// A version 2.01 file of `sprites` small LZ5-free RLE8 sprites under one
// palette, laid out as the program writes it; `tableLast` moves the sprite
// table behind the data and follows it with `damaged` nodes whose data
// lies past the end of the file.
QByteArray version2(int sprites, bool tableLast, int damaged)
{
    QByteArray ldata;
    Sff::ByteWriter lw(ldata);
    QRGBPal pal;
    for (int i = 0; i < 256; ++i)
        pal[i] = QRGBColor{quint8(i), quint8(255 - i), quint8(i * 7), 255};
    lw.bytes(QByteArray(reinterpret_cast<const char *>(pal.bytes()), 1024));
    std::vector<Sff::V2SpriteNode> nodes;
    for (int i = 0; i < sprites + damaged; ++i) {
        Sff::V2SpriteNode n;
        n.group = quint16(i / 100);
        n.number = quint16(i % 100);
        n.width = n.height = 16;
        n.format = Sff::CodeRLE8;
        n.depth = 8;
        if (i < sprites) {
            n.offset = quint32(ldata.size());
            const QByteArray packed = QByteArray(16, char(0x40 | 16)) + QByteArray(16, char(i & 63));
            lw.u32(256);
            lw.bytes(packed);
            n.length = quint32(packed.size() + 4);
        } else {
            n.offset = 0x7FFF0000;
            n.length = 64;
        }
        nodes.push_back(n);
    }
    Sff::V2Header h;
    h.paletteOffset = Sff::HeaderSize;
    h.paletteCount = Claimed;
    h.ldataOffset = Sff::HeaderSize + Sff::PaletteNodeSize + (tableLast ? 0 : Sff::SpriteNodeSize * sprites);
    h.ldataLength = quint32(ldata.size());
    h.spriteOffset = tableLast ? h.ldataOffset + h.ldataLength : Sff::HeaderSize + Sff::PaletteNodeSize;
    h.spriteCount = Claimed;
    h.tdataOffset = h.ldataOffset + h.ldataLength;
    QByteArray file;
    Sff::ByteWriter fw(file);
    h.write(fw, QSffVersion::V201);
    Sff::V2PaletteNode pn;
    pn.length = 1024;
    pn.write(fw);
    if (!tableLast)
        for (int i = 0; i < sprites; ++i)
            nodes[size_t(i)].write(fw);
    fw.bytes(ldata);
    if (tableLast)
        for (const auto &n : nodes)
            n.write(fw);
    return file;
}

// A version 1.01 file claiming 2^31 - 1 images, holding `sprites` PCX
// sprites whose headers claim 65,535 x 4,000 pixels over a few bytes.
QByteArray version1(int sprites)
{
    QImage img(8, 8, QImage::Format_Indexed8);
    img.setColorTable(QList<QRgb>(256, qRgb(1, 2, 3)));
    img.fill(3);
    QByteArray pcx = QPCXCacheFilter::write(img);
    qToLittleEndian<quint16>(65534, pcx.data() + 8);
    qToLittleEndian<quint16>(3999, pcx.data() + 10);
    QByteArray file;
    Sff::ByteWriter w(file);
    Sff::V1Header h;
    h.images = Claimed;
    h.write(w);
    for (int i = 0; i < sprites; ++i) {
        Sff::V1Subheader sh;
        sh.group = quint16(i);
        sh.length = quint32(pcx.size());
        sh.next = quint32(file.size() + Sff::SubheaderSize + pcx.size());
        sh.write(w);
        w.bytes(pcx);
    }
    return file;
}

void load(benchmark::State &state, const QByteArray &bytes)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("damaged.sff");
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
    f.close();
    qint64 peak = 0, held = 0;
    int issues = 0, count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        const qint64 before = qint64(mallinfo2().uordblks);
        auto heap = [before] { return qint64(mallinfo2().uordblks) - before; };
        state.ResumeTiming();
        {
            QMessages messages;
            QSprites sprites;
            sprites.setMessages(&messages);
            // The heap is sampled at every progress step of the load.
            QObject::connect(&sprites, &QSprites::progress, [&](uint, uint, bool &) {
                peak = std::max(peak, heap());
            });
            sprites.fromFile(path, false, false);
            held = heap();
            peak = std::max(peak, held);
            issues = int(messages.messages().size());
            count = sprites.count();
        }
        state.PauseTiming();
        state.ResumeTiming();
    }
    state.counters["file_kb"] = double(bytes.size()) / 1024;
    state.counters["sprites"] = count;
    state.counters["issues"] = issues;
    state.counters["held_kb"] = double(held) / 1024;
    state.counters["peak_kb"] = double(peak) / 1024;
}

void BM_CountsClaimed(benchmark::State &state)
{
    static const QByteArray bytes = version2(20000, false, 0);
    load(state, bytes);
}

void BM_TableOverDamagedNodes(benchmark::State &state)
{
    static const QByteArray bytes = version2(20000, true, 115000);
    load(state, bytes);
}

void BM_Version1ClaimedImages(benchmark::State &state)
{
    static const QByteArray bytes = version1(2000);
    load(state, bytes);
}

} // namespace

BENCHMARK(BM_CountsClaimed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TableOverDamagedNodes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Version1ClaimedImages)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QBFCacheFilter::createFilters();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
