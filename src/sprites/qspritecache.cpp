#include "qspritecache.h"

#include <QAtomicInteger>
#include <QDir>
#include <QMutexLocker>
#include <QRecursiveMutex>
#include <QtEndian>
#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <vector>

#include "sprites/qbfcachefilter.h"
#include "sprites/qspriterecordpool.h"

using namespace QSpriteRecords;

namespace {



// qUncompress of bytes that weren't compressed by us: the 4-byte size header
// must name the length the caller stored, otherwise the result is empty (and
// no allocation is attempted for whatever size garbage claims).
QByteArray uncompressEntry(const QByteArray &data, quint32 originalSize)
{
    if (data.size() < 4)
        return QByteArray();
    if (qFromBigEndian<quint32>(data.constData()) != originalSize)
        return QByteArray();
    if (originalSize == 0)
        return QByteArray();
    return qUncompress(data);
}

} // namespace

QSpriteCache::QSpriteCache(const QString &stem, int mode, bool compress, int level, QSpriteRecordPool *pool)
    : m_stem(stem)
{
    if (!pool) {
        m_ownPool = std::make_unique<QSpriteRecordPool>();
        pool = m_ownPool.get();
    }
    m_pool = pool;
    configure(mode, compress, level);
}

QSpriteCache::~QSpriteCache()
{
    clear();
    if (m_fileOpen)
        m_file.close();
    m_pool->purge();
}

void QSpriteCache::configure(int mode, bool compress, int level)
{
    clear();
    m_mode = mode == TemporaryFile ? TemporaryFile : Memory;
    m_compress = compress;
    m_level = level;
    if (m_mode == TemporaryFile && !m_fileOpen) {
        m_file.setFileTemplate(QDir::tempPath() + QLatin1Char('/') + m_stem + QStringLiteral(".XXXXXX"));
        m_fileOpen = m_file.open();
        m_fileEnd = 0;
    } else if (m_mode == Memory && m_fileOpen) {
        m_file.close();
        m_file.remove();
        m_fileOpen = false;
        m_fileEnd = 0;
    }
}

QCacheEntry *QSpriteCache::entry(quint32 id) const
{
    const quint32 place = id & IndexMask;
    if (place == 0)
        return nullptr;
    QCacheEntry *e = m_pool->at(place - 1);
    if (!e || e->id != id || e->slot >= m_ids.size() || m_ids[e->slot] != id)
        return nullptr;
    return e;
}

void QSpriteCache::attach(QCacheEntry *e)
{
    e->slot = quint32(m_ids.size());
    m_ids.push_back(e->id);
}

void QSpriteCache::store(QCacheEntry &e, const QByteArray &bytes, bool compressIt)
{
    const QByteArray data = (m_compress && compressIt) ? qCompress(bytes, m_level) : bytes;
    e.originalSize = quint32(bytes.size());
    e.storedSize = quint32(data.size());
    if (m_fileOpen) {
        // Appended at the end; whatever it replaces stays as dead space until clear().
        if (m_file.seek(m_fileEnd) && m_file.write(data) == data.size()) {
            e.filePos = m_fileEnd;
            e.inFile = true;
            e.bytes = QByteArray();
            m_fileEnd += data.size();
            return;
        }
        // A full disk must not lose the item: keep it in memory instead.
        m_file.resize(m_fileEnd);
    }
    e.inFile = false;
    e.filePos = 0;
    e.bytes = data;
}

quint32 QSpriteCache::add(const QByteArray &bytes, bool compressIt)
{
    QCacheEntry *e = m_pool->take();
    if (!e)
        return 0; // millions of items: the pool is full
    store(*e, bytes, compressIt);
    attach(e);
    return e->id;
}

void QSpriteCache::addSlices(const QByteArray &block, const Slice *slices, qsizetype count, quint32 *ids)
{
    if (count <= 0)
        return;
    QSpriteRecordPool &p = *m_pool;
    const qsizetype taken = p.take(ids, count);
    std::fill(ids + taken, ids + count, 0u);
    m_ids.reserve(m_ids.size() + size_t(taken));

    const qsizetype blockSize = block.size();
    auto cut = [blockSize](const Slice &s, qsizetype &from, qsizetype &length) {
        from = qMin<qsizetype>(s.offset, blockSize);
        length = qMin<qsizetype>(s.length, blockSize - from);
    };

    // In file mode the block goes to the file once, in one write.
    qint64 base = -1;
    if (m_fileOpen) {
        if (m_file.seek(m_fileEnd) && m_file.write(block) == blockSize) {
            base = m_fileEnd;
            m_fileEnd += blockSize;
        } else {
            m_file.resize(m_fileEnd);
        }
    }

    // Every slice holds a reference to the block: taken all at once.
    QByteArray shared = block;
    QByteArray::DataPointer &whole = shared.data_ptr();
    QArrayData *header = whole.d_ptr();
    if (base < 0 && header)
        header->ref_.fetchAndAddRelaxed(int(taken));

    for (qsizetype i = 0; i < taken; ++i) {
        QCacheEntry *e = p.at((ids[i] & IndexMask) - 1);
        qsizetype from, length;
        cut(slices[i], from, length);
        e->originalSize = e->storedSize = quint32(length);
        if (base >= 0) {
            e->inFile = true;
            e->filePos = base + from;
        } else if (header) {
            e->bytes = QByteArray(QByteArray::DataPointer(whole.d_ptr(), whole.data() + from, length));
        } else {
            // Bytes not owned by any block (raw data): copied.
            e->bytes = QByteArray(block.constData() + from, length);
        }
        attach(e);
    }
}

bool QSpriteCache::replace(quint32 id, const QByteArray &bytes, bool compressIt)
{
    QCacheEntry *e = entry(id);
    if (!e)
        return false;
    store(*e, bytes, compressIt);
    return true;
}

bool QSpriteCache::copyStored(QCacheEntry &e, const QSpriteCache &from, quint32 fromId)
{
    const QCacheEntry *src = from.entry(fromId);
    if (!src)
        return false;
    const quint32 original = src->originalSize;
    store(e, from.storedBytes(*src), false);
    e.originalSize = original;
    return true;
}

quint32 QSpriteCache::copyEntry(const QSpriteCache &from, quint32 fromId)
{
    if (!from.entry(fromId))
        return 0;
    QCacheEntry *e = m_pool->take();
    if (!e)
        return 0;
    copyStored(*e, from, fromId);
    attach(e);
    return e->id;
}

bool QSpriteCache::replaceEntry(quint32 id, const QSpriteCache &from, quint32 fromId)
{
    QCacheEntry *e = entry(id);
    return e && copyStored(*e, from, fromId);
}

QByteArray QSpriteCache::storedBytes(const QCacheEntry &e) const
{
    if (!e.inFile)
        return e.bytes;
    if (!m_file.seek(e.filePos))
        return QByteArray();
    return m_file.read(e.storedSize);
}

namespace {
std::atomic<quint64> s_decodes{0};
}

quint64 QSpriteCache::decodeCount()
{
    return s_decodes.load(std::memory_order_relaxed);
}

void QSpriteCache::countDecodes(quint64 count)
{
    s_decodes.fetch_add(count, std::memory_order_relaxed);
}

bool QSpriteCache::get(quint32 id, QByteArray &out, const QBFCacheFilter *filter, const QSpriteSize &size) const
{
    const QCacheEntry *e = entry(id);
    if (!e)
        return false;
    if (!filter || filter != QBFCacheFilter::byPass())
        s_decodes.fetch_add(1, std::memory_order_relaxed);
    out = storedBytes(*e);
    if (filter)
        out = filter->decode(out, size);
    else if (m_compress)
        out = uncompressEntry(out, e->originalSize);
    return true;
}

bool QSpriteCache::peek(quint32 id, QByteArrayView &out) const
{
    const QCacheEntry *e = entry(id);
    if (!e || e->inFile)
        return false;
    out = QByteArrayView(e->bytes);
    return true;
}

bool QSpriteCache::remove(quint32 id)
{
    QCacheEntry *e = entry(id);
    if (!e)
        return false;
    // The last handle takes the freed slot.
    const quint32 last = m_ids.back();
    m_ids[e->slot] = last;
    m_pool->at((last & IndexMask) - 1)->slot = e->slot;
    m_ids.pop_back();
    e->reset();
    m_pool->release(&id, 1);
    return true;
}

void QSpriteCache::clear()
{
    QSpriteRecordPool &p = *m_pool;
    // Slices of one block follow each other: their references to it are
    // handed back with one atomic operation per run, the run's first entry
    // keeping the block alive until the count is settled.
    QCacheEntry *runFirst = nullptr;
    QArrayData *runBlock = nullptr;
    int dropped = 0;
    auto endRun = [&] {
        if (runBlock && dropped)
            runBlock->ref_.fetchAndSubRelaxed(dropped);
        if (runFirst)
            runFirst->reset();
        runFirst = nullptr;
        runBlock = nullptr;
        dropped = 0;
    };
    for (quint32 id : m_ids) {
        QCacheEntry *e = p.at((id & IndexMask) - 1);
        QByteArray::DataPointer &d = e->bytes.data_ptr();
        QArrayData *block = d.d_ptr();
        if (block && block == runBlock) {
            // Forgotten without the release: counted in `dropped`.
            new (&d) QByteArray::DataPointer();
            ++dropped;
            e->reset();
            continue;
        }
        endRun();
        if (block) {
            runFirst = e;
            runBlock = block;
        } else {
            e->reset();
        }
    }
    endRun();
    p.release(m_ids.data(), qsizetype(m_ids.size()));
    m_ids.clear();
    if (m_fileOpen) {
        m_file.resize(0);
        m_fileEnd = 0;
    }
}

bool QSpriteCache::same(quint32 idA, quint32 idB) const
{
    const QCacheEntry *a = entry(idA);
    const QCacheEntry *b = entry(idB);
    if (!a || !b)
        return false;
    if (a == b)
        return true;
    if (a->storedSize != b->storedSize)
        return false;
    return storedBytes(*a) == storedBytes(*b);
}

quint64 QSpriteCache::storedTotal() const
{
    quint64 total = 0;
    for (quint32 id : m_ids)
        total += m_pool->at((id & IndexMask) - 1)->storedSize;
    return total;
}

quint64 QSpriteCache::originalTotal() const
{
    quint64 total = 0;
    for (quint32 id : m_ids)
        total += m_pool->at((id & IndexMask) - 1)->originalSize;
    return total;
}

qint64 QSpriteCache::fileSize() const
{
    return m_fileOpen ? m_file.size() : 0;
}

QString QSpriteCache::fileName() const
{
    return m_fileOpen ? m_file.fileName() : QString();
}

