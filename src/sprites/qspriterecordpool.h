#pragma once

#include <QMutexLocker>
#include <QRecursiveMutex>
#include <QtGlobal>

#include <algorithm>
#include <atomic>
#include <vector>

#include "sprites/qcacheentry.h"

namespace QSpriteRecords {
constexpr int IndexBits = 22;
constexpr quint32 IndexMask = (1u << IndexBits) - 1;
constexpr int ChunkBits = 10;
constexpr quint32 ChunkSize = 1u << ChunkBits;
constexpr quint32 MaxChunks = (1u << IndexBits) / ChunkSize;
// The last place would make a handle with an empty place part.
constexpr quint32 MaxRecords = MaxChunks * ChunkSize - 1;

} // namespace QSpriteRecords

// The records of cache entries, shared by the caches given the same pool and
// reused, so that loading and closing projects with thousands of sprites
// doesn't churn the allocator. The program has one, owned by its composition
// root; a cache made without one keeps its own. Records are made in chunks,
// and a handle is a record's place in the pool (plus one, so that 0 names
// nothing) with a generation count on top: finding an entry is an array
// lookup, and no cache needs a table of its own.
class QSpriteRecordPool
{
    static constexpr int IndexBits = QSpriteRecords::IndexBits;
    static constexpr quint32 IndexMask = QSpriteRecords::IndexMask;
    static constexpr int ChunkBits = QSpriteRecords::ChunkBits;
    static constexpr quint32 ChunkSize = QSpriteRecords::ChunkSize;
    static constexpr quint32 MaxChunks = QSpriteRecords::MaxChunks;
    static constexpr quint32 MaxRecords = QSpriteRecords::MaxRecords;

public:
    QSpriteRecordPool() = default;
    QSpriteRecordPool(const QSpriteRecordPool &) = delete;
    QSpriteRecordPool &operator=(const QSpriteRecordPool &) = delete;

    // Records made so far, and how many of them are free.
    int size()
    {
        QMutexLocker locker(&lock);
        return int(carvedTotal);
    }
    int freeCount()
    {
        QMutexLocker locker(&lock);
        return int(free.size());
    }

    QRecursiveMutex lock;
    // Written under the lock, read without it by the caches' lookups.
    std::atomic<QCacheEntry *> chunks[MaxChunks] = {};
    quint16 carved[MaxChunks] = {};  // records handed out of each chunk so far
    quint32 epoch[MaxChunks] = {};   // first generation of a chunk made again
    std::vector<quint32> free;       // places of the free records
    quint32 carvedTotal = 0;
    quint32 cursor = 0;              // no chunk below it has room left

    ~QSpriteRecordPool()
    {
        for (auto &c : chunks)
            delete[] c.load(std::memory_order_relaxed);
    }

    QCacheEntry *at(quint32 place) const
    {
        if (place >= MaxRecords)
            return nullptr;
        QCacheEntry *chunk = chunks[place >> ChunkBits].load(std::memory_order_acquire);
        return chunk ? chunk + (place & (ChunkSize - 1)) : nullptr;
    }

    // Under the lock. False when the pool is full.
    bool carve(quint32 &place)
    {
        while (cursor < MaxChunks) {
            QCacheEntry *chunk = chunks[cursor].load(std::memory_order_relaxed);
            if (!chunk) {
                chunk = new QCacheEntry[ChunkSize];
                for (quint32 k = 0; k < ChunkSize; ++k)
                    chunk[k].id = epoch[cursor] << IndexBits;
                chunks[cursor].store(chunk, std::memory_order_release);
                carved[cursor] = 0;
            }
            if (carved[cursor] < ChunkSize) {
                place = cursor * ChunkSize + carved[cursor];
                if (place >= MaxRecords)
                    return false;
                ++carved[cursor];
                ++carvedTotal;
                return true;
            }
            ++cursor;
        }
        return false;
    }

    // Takes up to `count` records and gives each its next handle, written to
    // `ids`. Returns how many it took (fewer only when the pool is full).
    qsizetype take(quint32 *ids, qsizetype count)
    {
        QMutexLocker locker(&lock);
        for (qsizetype i = 0; i < count; ++i) {
            quint32 place;
            if (!free.empty()) {
                place = free.back();
                free.pop_back();
            } else if (!carve(place)) {
                return i;
            }
            QCacheEntry *e = at(place);
            const quint32 generation = (e->id >> IndexBits) + 1;
            e->id = (generation << IndexBits) | (place + 1);
            ids[i] = e->id;
        }
        return count;
    }

    QCacheEntry *take()
    {
        quint32 id = 0;
        return take(&id, 1) == 1 ? at((id & IndexMask) - 1) : nullptr;
    }

    // The records must have been reset.
    void release(const quint32 *ids, qsizetype count)
    {
        QMutexLocker locker(&lock);
        for (qsizetype i = 0; i < count; ++i)
            free.push_back((ids[i] & IndexMask) - 1);
    }

    // Deletes every chunk whose records are all free; a chunk with a record
    // in use keeps its free ones for the next takes.
    void purge()
    {
        QMutexLocker locker(&lock);
        if (free.empty())
            return;
        std::vector<quint16> freeIn(MaxChunks, 0);
        for (quint32 place : free)
            ++freeIn[place >> ChunkBits];
        bool any = false;
        for (quint32 c = 0; c < MaxChunks; ++c) {
            if (carved[c] == 0 || freeIn[c] != carved[c])
                continue;
            QCacheEntry *chunk = chunks[c].exchange(nullptr, std::memory_order_acq_rel);
            // A chunk made here again goes on counting where this one stopped.
            quint32 top = epoch[c];
            for (quint32 k = 0; k < ChunkSize; ++k)
                top = std::max(top, chunk[k].id >> IndexBits);
            epoch[c] = top + 1;
            delete[] chunk;
            carvedTotal -= carved[c];
            carved[c] = 0;
            freeIn[c] = 0xFFFF; // marks the chunk as gone
            cursor = std::min(cursor, c);
            any = true;
        }
        if (any)
            std::erase_if(free, [&freeIn](quint32 place) { return freeIn[place >> ChunkBits] == 0xFFFF; });
    }
};
