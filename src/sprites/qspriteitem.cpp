#include "sprites/qspriteitem.h"

#include <QMutexLocker>
#include <new>

void *QSpriteItemPool::take()
{
    if (!m_free.empty()) {
        void *p = m_free.back();
        m_free.pop_back();
        return p;
    }
    if (m_chunks.empty() || m_used == ChunkSize) {
        m_chunks.push_back(std::make_unique<Slot[]>(ChunkSize));
        m_used = 0;
    }
    return &m_chunks.back()[m_used++];
}

QSpriteItem *QSpriteItemPool::create()
{
    QSpriteItem *item = nullptr;
    createMany(&item, 1);
    return item;
}

void QSpriteItemPool::destroy(QSpriteItem *item)
{
    destroyMany(&item, 1);
}

void QSpriteItemPool::createMany(QSpriteItem **out, qsizetype count)
{
    if (count <= 0)
        return;
    {
        QMutexLocker locker(&m_lock);
        for (qsizetype i = 0; i < count; ++i)
            out[i] = static_cast<QSpriteItem *>(take());
    }
    for (qsizetype i = 0; i < count; ++i)
        ::new (static_cast<void *>(out[i])) QSpriteItem;
}

void QSpriteItemPool::destroyMany(QSpriteItem *const *items, qsizetype count)
{
    if (count <= 0)
        return;
    for (qsizetype i = 0; i < count; ++i)
        if (items[i])
            items[i]->~QSpriteItem();
    QMutexLocker locker(&m_lock);
    for (qsizetype i = 0; i < count; ++i)
        if (items[i])
            m_free.push_back(items[i]);
}

qsizetype QSpriteItemPool::size() const
{
    QMutexLocker locker(&m_lock);
    return qsizetype(m_chunks.size()) * ChunkSize - (m_chunks.empty() ? 0 : ChunkSize - m_used);
}

qsizetype QSpriteItemPool::freeCount() const
{
    QMutexLocker locker(&m_lock);
    return qsizetype(m_free.size());
}
