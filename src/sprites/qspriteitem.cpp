#include "sprites/qspriteitem.h"

#include <QMutex>
#include <QMutexLocker>
#include <memory>
#include <new>
#include <vector>

namespace {

// Storage for sprite records: chunks that are never handed back, and the
// free places in them. A store that is closed leaves its places for the next
// file to fill.
class ItemPool
{
public:
    static constexpr qsizetype ChunkSize = 1024;

    // Under the lock.
    void *take()
    {
        if (!m_free.empty()) {
            void *p = m_free.back();
            m_free.pop_back();
            return p;
        }
        if (m_used == ChunkSize || m_chunks.empty()) {
            m_chunks.push_back(std::make_unique<Slot[]>(ChunkSize));
            m_used = 0;
        }
        return &m_chunks.back()[m_used++];
    }
    void give(void *p) { m_free.push_back(p); }

    QMutex lock;

private:
    struct alignas(QSpriteItem) Slot
    {
        unsigned char bytes[sizeof(QSpriteItem)];
    };
    std::vector<std::unique_ptr<Slot[]>> m_chunks;
    qsizetype m_used = 0;
    std::vector<void *> m_free;
};

// Never destroyed: a store that outlives the other statics can still end its records.
ItemPool &itemPool()
{
    static ItemPool *pool = new ItemPool;
    return *pool;
}

} // namespace

void *QSpriteItem::operator new(std::size_t size)
{
    if (size != sizeof(QSpriteItem))
        return ::operator new(size);
    ItemPool &pool = itemPool();
    QMutexLocker locker(&pool.lock);
    return pool.take();
}

void QSpriteItem::operator delete(void *p, std::size_t size) noexcept
{
    if (!p)
        return;
    if (size != sizeof(QSpriteItem)) {
        ::operator delete(p);
        return;
    }
    ItemPool &pool = itemPool();
    QMutexLocker locker(&pool.lock);
    pool.give(p);
}

void QSpriteItem::createMany(QSpriteItem **out, qsizetype count)
{
    if (count <= 0)
        return;
    ItemPool &pool = itemPool();
    {
        QMutexLocker locker(&pool.lock);
        for (qsizetype i = 0; i < count; ++i)
            out[i] = static_cast<QSpriteItem *>(pool.take());
    }
    for (qsizetype i = 0; i < count; ++i)
        ::new (static_cast<void *>(out[i])) QSpriteItem;
}

void QSpriteItem::destroyMany(QSpriteItem *const *items, qsizetype count)
{
    if (count <= 0)
        return;
    for (qsizetype i = 0; i < count; ++i)
        if (items[i])
            items[i]->~QSpriteItem();
    ItemPool &pool = itemPool();
    QMutexLocker locker(&pool.lock);
    for (qsizetype i = 0; i < count; ++i)
        if (items[i])
            pool.give(items[i]);
}
