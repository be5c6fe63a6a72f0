#include "qspritecache.h"

#include <QAtomicInteger>
#include <QDir>
#include <QMutexLocker>
#include <QRecursiveMutex>
#include <QtEndian>
#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "sprites/qbfcachefilter.h"

namespace {

// Records of all caches, reused so that loading and closing projects with
// thousands of sprites doesn't churn the allocator.
struct RecordPool
{
    QRecursiveMutex lock;
    std::vector<std::unique_ptr<QCacheEntry>> all;
    std::vector<QCacheEntry *> free;

    QCacheEntry *take()
    {
        QMutexLocker locker(&lock);
        if (!free.empty()) {
            QCacheEntry *e = free.back();
            free.pop_back();
            return e;
        }
        all.push_back(std::make_unique<QCacheEntry>());
        return all.back().get();
    }

    void release(QCacheEntry *e)
    {
        e->reset();
        QMutexLocker locker(&lock);
        free.push_back(e);
    }

    void purge()
    {
        QMutexLocker locker(&lock);
        if (free.empty())
            return;
        std::sort(free.begin(), free.end());
        std::erase_if(all, [this](const std::unique_ptr<QCacheEntry> &p) {
            return std::binary_search(free.begin(), free.end(), p.get());
        });
        free.clear();
    }
};

RecordPool &pool()
{
    static RecordPool p;
    return p;
}

// The pool is touched first so that it outlives the undo cache at exit.
std::unique_ptr<QSpriteCache> &undoHolder()
{
    static RecordPool &keepAlive = pool();
    Q_UNUSED(keepAlive);
    static std::unique_ptr<QSpriteCache> holder;
    return holder;
}

QAtomicInteger<quint32> lastId(0);

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

QSpriteCache::QSpriteCache(const QString &stem, int mode, bool compress, int level)
    : m_stem(stem)
{
    pool();
    configure(mode, compress, level);
}

QSpriteCache::~QSpriteCache()
{
    clear();
    if (m_fileOpen)
        m_file.close();
    purge();
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

quint32 QSpriteCache::newId()
{
    quint32 id;
    do {
        id = lastId.fetchAndAddRelaxed(1) + 1;
    } while (id == 0 || m_entries.contains(id));
    return id;
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
    QCacheEntry *e = pool().take();
    e->id = newId();
    store(*e, bytes, compressIt);
    m_entries.insert(e->id, e);
    return e->id;
}

bool QSpriteCache::replace(quint32 id, const QByteArray &bytes, bool compressIt)
{
    QCacheEntry *e = m_entries.value(id);
    if (!e)
        return false;
    store(*e, bytes, compressIt);
    return true;
}

bool QSpriteCache::copyStored(QCacheEntry &e, const QSpriteCache &from, quint32 fromId)
{
    const QCacheEntry *src = from.m_entries.value(fromId);
    if (!src)
        return false;
    const quint32 original = src->originalSize;
    store(e, from.storedBytes(*src), false);
    e.originalSize = original;
    return true;
}

quint32 QSpriteCache::copyEntry(const QSpriteCache &from, quint32 fromId)
{
    if (!from.m_entries.contains(fromId))
        return 0;
    QCacheEntry *e = pool().take();
    e->id = newId();
    copyStored(*e, from, fromId);
    m_entries.insert(e->id, e);
    return e->id;
}

bool QSpriteCache::replaceEntry(quint32 id, const QSpriteCache &from, quint32 fromId)
{
    QCacheEntry *e = m_entries.value(id);
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

bool QSpriteCache::get(quint32 id, QByteArray &out, const QBFCacheFilter *filter, const QSpriteSize &size) const
{
    const QCacheEntry *e = m_entries.value(id);
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

bool QSpriteCache::remove(quint32 id)
{
    QCacheEntry *e = m_entries.take(id);
    if (!e)
        return false;
    pool().release(e);
    return true;
}

void QSpriteCache::clear()
{
    for (QCacheEntry *e : std::as_const(m_entries))
        pool().release(e);
    m_entries.clear();
    if (m_fileOpen) {
        m_file.resize(0);
        m_fileEnd = 0;
    }
}

bool QSpriteCache::same(quint32 idA, quint32 idB) const
{
    const QCacheEntry *a = m_entries.value(idA);
    const QCacheEntry *b = m_entries.value(idB);
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
    for (const QCacheEntry *e : m_entries)
        total += e->storedSize;
    return total;
}

quint64 QSpriteCache::originalTotal() const
{
    quint64 total = 0;
    for (const QCacheEntry *e : m_entries)
        total += e->originalSize;
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

void QSpriteCache::purge()
{
    pool().purge();
}

int QSpriteCache::poolSize()
{
    RecordPool &p = pool();
    QMutexLocker locker(&p.lock);
    return int(p.all.size());
}

int QSpriteCache::poolFree()
{
    RecordPool &p = pool();
    QMutexLocker locker(&p.lock);
    return int(p.free.size());
}

QSpriteCache *QSpriteCache::createUndoCache()
{
    auto &holder = undoHolder();
    if (!holder)
        holder = std::make_unique<QSpriteCache>(QStringLiteral("sprUndo"), TemporaryFile, true, -1);
    return holder.get();
}

QSpriteCache *QSpriteCache::undoCache()
{
    return undoHolder().get();
}

void QSpriteCache::destroyUndoCache()
{
    undoHolder().reset();
}
