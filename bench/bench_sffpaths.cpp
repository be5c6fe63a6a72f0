// The three paths of a sprite file measured against the disk, on every sample
// SFF, grouped by version: loading against reading the bytes, saving the
// loaded store unchanged against writing the same bytes atomically, and
// decoding every sprite to RGBA against reading the bytes. The ratios are the
// figures that matter; the counters give them for the whole group and for the
// worst file in it.
#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"
#include "sprites/qspritedecoder.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <benchmark/benchmark.h>
#include <chrono>

namespace {

struct Sample
{
    QString path;
    QByteArray bytes;
    bool isCharacter = false;
};

QList<Sample> samples(quint32 version)
{
    QList<Sample> out;
    QDirIterator it(QStringLiteral(BF_TESTDATA_DIR), {QStringLiteral("*.sff"), QStringLiteral("*.SFF")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        Sample s;
        s.path = it.next();
        QFile f(s.path);
        if (!f.open(QIODevice::ReadOnly))
            continue;
        s.bytes = f.readAll();
        if (s.bytes.size() < 16 || qFromLittleEndian<quint32>(s.bytes.constData() + 12) != version)
            continue;
        s.isCharacter = s.path.contains(QStringLiteral("/chars/"));
        out << s;
    }
    std::sort(out.begin(), out.end(), [](const Sample &a, const Sample &b) { return a.path < b.path; });
    return out;
}

using Clock = std::chrono::steady_clock;

template <typename F> double seconds(F &&work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The bytes read in one call into an array of the file's size: the least
// any reader of the whole file can do.
QByteArray readBytes(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    QByteArray bytes(qsizetype(file.size()), Qt::Uninitialized);
    bytes.resize(qsizetype(qMax<qint64>(0, file.read(bytes.data(), bytes.size()))));
    return bytes;
}

void BM_SffPaths(benchmark::State &state)
{
    const quint32 version = quint32(state.range(0));
    const QList<Sample> files = samples(version);
    if (files.isEmpty()) {
        state.SkipWithError("no sample of this version");
        return;
    }
    QTemporaryDir dir;
    const QString saved = dir.filePath(QStringLiteral("saved.sff"));
    const QString plain = dir.filePath(QStringLiteral("plain.sff"));
    const qsizetype n = files.size();
    const size_t count = static_cast<size_t>(n);
    std::vector<double> read(count), load(count), save(count), write(count), decode(count);
    qint64 bytes = 0;
    for (auto _ : state) {
        for (qsizetype i = 0; i < n; ++i) {
            const Sample &f = files[i];
            const size_t k = size_t(i);
            QByteArray got; // let go after the timing, as the store lets its bytes go
            read[k] += seconds([&] { got = readBytes(f.path); });
            QSprites store(QSpriteCache::Memory, false);
            load[k] += seconds([&] { store.fromFile(f.path, f.isCharacter, false); });
            save[k] += seconds([&] { store.toFile(saved, f.isCharacter, 0, true, false); });
            write[k] += seconds([&] {
                QSaveFile out(plain);
                out.open(QIODevice::WriteOnly);
                out.write(f.bytes);
                out.commit();
            });
            decode[k] += seconds([&] {
                const QList<QImage> images = QSpriteDecoder::decodeAll(store);
                benchmark::DoNotOptimize(images.size());
            });
            bytes += f.bytes.size();
        }
    }
    double r = 0, l = 0, s = 0, w = 0, d = 0, worstLoad = 0, worstSave = 0;
    QString worstLoadFile, worstSaveFile;
    for (size_t k = 0; k < count; ++k) {
        r += read[k];
        l += load[k];
        s += save[k];
        w += write[k];
        d += decode[k];
        if (load[k] / read[k] > worstLoad) {
            worstLoad = load[k] / read[k];
            worstLoadFile = QFileInfo(files[qsizetype(k)].path).fileName();
        }
        if (save[k] / write[k] > worstSave) {
            worstSave = save[k] / write[k];
            worstSaveFile = QFileInfo(files[qsizetype(k)].path).fileName();
        }
    }
    state.SetLabel(QStringLiteral("worst load %1, worst save %2").arg(worstLoadFile, worstSaveFile).toStdString());
    state.SetBytesProcessed(bytes);
    state.counters["files"] = double(n);
    state.counters["load_vs_read"] = l / r;
    state.counters["load_vs_read_worst"] = worstLoad;
    state.counters["save_vs_write"] = s / w;
    state.counters["save_vs_write_worst"] = worstSave;
    state.counters["decode_vs_read"] = d / r;
}

} // namespace

BENCHMARK(BM_SffPaths)->Arg(QSffVersion::V101)->Arg(QSffVersion::V200)->Arg(QSffVersion::V201)
    ->Unit(benchmark::kMillisecond)->MinTime(2.0);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QBFCacheFilter::createFilters();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
