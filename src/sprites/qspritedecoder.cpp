#include "qspritedecoder.h"

#include "sprites/qbfcachefilter.h"
#include "sprites/qsprites.h"

#include <QHash>
#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

namespace {

// One sprite's stored bytes and what they decode to.
struct Job
{
    QByteArray stored;
    const QBFCacheFilter *filter = nullptr; // null: raw pixels
    QSpriteSize size;
    QByteArray raw;
    bool intact = true;
};

// One image asked for.
struct Wanted
{
    int index = -1;
    int job = -1; // -1: nothing to decode
    QImage image;
    QRgb table[256];
    bool intact = true;
};

// Indexed pixels through a colour table, a line at a time.
void expand(const uchar *from, QRgb *to, int width, const QRgb *table)
{
    for (int x = 0; x < width; ++x)
        to[x] = table[from[x]];
}

} // namespace

QSpriteDecoder::QSpriteDecoder(const QSprites &store, Output output) : m_store(store), m_output(output)
{
}

void QSpriteDecoder::parallelFor(qsizetype count, const std::function<void(qsizetype)> &work)
{
    if (count <= 0)
        return;
    std::atomic<qsizetype> next{0};
    auto drain = [&] {
        for (qsizetype i = next.fetch_add(1); i < count; i = next.fetch_add(1))
            work(i);
    };
    // Helpers from the shared pool as far as it has threads free right now;
    // the calling thread works too, so that the work gets done even with none.
    QThreadPool *pool = QThreadPool::globalInstance();
    const int wanted = int(qMin<qsizetype>(count, QThread::idealThreadCount())) - 1;
    QSemaphore finished;
    int started = 0;
    for (int h = 0; h < wanted; ++h) {
        if (!pool->tryStart([&] {
                drain();
                finished.release();
            }))
            break;
        ++started;
    }
    drain();
    finished.acquire(started);
}

bool QSpriteDecoder::run(const QList<int> &indices, const std::function<bool(Result &)> &take) const
{
    QBFCacheFilter::createFilters();
    const QSprites &s = m_store;
    const QSpriteCache &cache = s.cache();
    const QBFCacheFilter *byPass = QBFCacheFilter::byPass();
    const qsizetype total = indices.isEmpty() ? s.count() : indices.size();
    auto indexAt = [&](qsizetype k) { return indices.isEmpty() ? int(k) : indices.at(k); };

    QRgb grey[256];
    for (int c = 0; c < 256; ++c)
        grey[c] = qRgb(c, c, c);

    for (qsizetype from = 0; from < total;) {
        // The batch: the images are made here, the jobs gather the stored
        // bytes; a sprite shown by several asked for is decoded once.
        std::vector<Job> jobs;
        std::vector<Wanted> outs;
        QHash<int, int> jobOfRoot;
        qsizetype bytes = 0;
        qsizetype to = from;
        for (; to < total && (to == from || bytes < BatchBytes); ++to) {
            Wanted out;
            out.index = indexAt(to);
            const QSpriteItem *item = s.item(out.index);
            const int root = item ? s.rootOf(out.index) : -1;
            const QSpriteItem *owner = root >= 0 ? s.item(root) : nullptr;
            if (owner && owner->cacheId && owner->spriteSize().isEmpty()) {
                // Data whose size couldn't be read.
                out.intact = false;
            } else if (owner && owner->cacheId && item->width && item->height) {
                const QSpriteSize size = owner->spriteSize();
                const qint64 claimed =
                    qint64(size.width) * size.height * (size.imageFormat == QImage::Format_Indexed8 ? 1 : 4);
                if (claimed > MaxSpriteBytes || size.bitsPerPixel() == 0) {
                    out.intact = false;
                } else {
                    auto found = jobOfRoot.constFind(root);
                    if (found == jobOfRoot.constEnd()) {
                        Job job;
                        job.size = size;
                        job.filter = QBFCacheFilter::filter(owner->filter);
                        if (!cache.get(owner->cacheId, job.stored, job.filter ? byPass : nullptr))
                            job.stored.clear();
                        found = jobOfRoot.insert(root, int(jobs.size()));
                        jobs.push_back(std::move(job));
                        bytes += claimed;
                    }
                    out.job = *found;
                    const bool indexed = size.imageFormat == QImage::Format_Indexed8;
                    const QImage::Format format = m_output == Rgba ? QImage::Format_ARGB32 : size.imageFormat;
                    out.image = QImage(size.width, size.height, format);
                    bytes += out.image.sizeInBytes();
                    if (indexed) {
                        const QRGBPal *colours = s.paletteColors(s.remapPalette(item->info.palette));
                        if (m_output == AsShown && colours)
                            out.image.setColorTable(colours->toColorTable());
                        for (int c = 0; c < 256; ++c)
                            out.table[c] = colours ? colours->colors[c].rgba() : grey[c];
                    }
                }
            }
            outs.push_back(std::move(out));
        }

        QSpriteCache::countDecodes(jobs.size());
        parallelFor(qsizetype(jobs.size()), [&jobs](qsizetype k) {
            Job &job = jobs[size_t(k)];
            if (job.filter) {
                job.raw = job.filter->decodeChecked(job.stored, job.size, &job.intact);
            } else {
                job.raw = job.stored;
                job.intact = job.raw.size() >= job.size.byteCount();
            }
            job.stored.clear();
        });
        parallelFor(qsizetype(outs.size()), [&](qsizetype k) {
            Wanted &out = outs[size_t(k)];
            if (out.job < 0 || out.image.isNull())
                return;
            const Job &job = jobs[size_t(out.job)];
            out.intact = job.intact;
            const QSpriteSize &size = job.size;
            const qsizetype stride = size.bytesPerLine();
            const bool expanding = m_output == Rgba && size.imageFormat == QImage::Format_Indexed8;
            const qsizetype line = expanding ? size.width : qMin<qsizetype>(stride, out.image.bytesPerLine());
            for (int y = 0; y < size.height; ++y) {
                uchar *dst = out.image.scanLine(y);
                const qsizetype at = qsizetype(y) * stride;
                const qsizetype have = qBound<qsizetype>(0, job.raw.size() - at, line);
                const uchar *src = reinterpret_cast<const uchar *>(job.raw.constData()) + at;
                if (expanding) {
                    QRgb *px = reinterpret_cast<QRgb *>(dst);
                    expand(src, px, int(have), out.table);
                    for (qsizetype x = have; x < size.width; ++x)
                        px[x] = out.table[0];
                } else {
                    if (have > 0)
                        std::memcpy(dst, src, size_t(have));
                    if (have < out.image.bytesPerLine())
                        std::memset(dst + have, 0, size_t(out.image.bytesPerLine() - have));
                }
            }
        });

        for (Wanted &out : outs) {
            Result result{out.index, std::move(out.image), out.intact};
            if (!take(result))
                return false;
        }
        from = to;
    }
    return true;
}

QList<QImage> QSpriteDecoder::decodeAll(const QSprites &store)
{
    QList<QImage> images;
    images.reserve(store.count());
    QSpriteDecoder(store, Rgba).run({}, [&images](Result &r) {
        images.append(std::move(r.image));
        return true;
    });
    return images;
}
