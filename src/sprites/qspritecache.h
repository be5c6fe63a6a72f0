#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QTemporaryFile>
#include <memory>
#include <vector>

#include "sprites/qcacheentry.h"
#include "sprites/qspritesize.h"

class QBFCacheFilter;
class QSpriteRecordPool;

// Process-wide pooled byte store for sprite pixels and sound samples. Items
// are kept in the form they came in (usually compressed by a codec) and are
// named by 32-bit handles, 0 meaning none. In memory mode the bytes stay in
// memory; in temporary-file mode they go to one temporary file per cache,
// which only grows until the cache is cleared.
//
// Rule for callers: bytes that belong to a codec filter are added with
// compressIt false; raw bytes are added with compressIt true.
//
// A cache is used from one thread; only the record pool is shared (and locked).
class QSpriteCache
{
public:
    enum Mode { Memory = 0, TemporaryFile = 1 };

    // `stem` names the temporary file (in QDir::tempPath()). If the file can't
    // be opened the cache quietly works in memory.
    // `pool` holds the records of the entries; without one the cache keeps
    // its own.
    explicit QSpriteCache(const QString &stem = QStringLiteral("mugenspr"), int mode = Memory,
                          bool compress = true, int level = -1, QSpriteRecordPool *pool = nullptr);
    ~QSpriteCache();
    QSpriteCache(const QSpriteCache &) = delete;
    QSpriteCache &operator=(const QSpriteCache &) = delete;

    // Drops every entry and starts over with new settings.
    void configure(int mode, bool compress, int level = -1);

    int mode() const { return m_mode; }
    bool compression() const { return m_compress; }
    int level() const { return m_level; }

    // Stores bytes (through qCompress if compression is on and compressIt is
    // set) and returns the new handle.
    quint32 add(const QByteArray &bytes, bool compressIt);
    // Part of a block given to addSlices(): `length` bytes from `offset`.
    struct Slice
    {
        quint32 offset = 0;
        quint32 length = 0;
    };
    // Stores `count` items at once, item i being the bytes of slices[i] in
    // `block` (cut to the block's end), as they are: no compression. The
    // items share the block instead of copying it, and in file mode the block
    // is written once. Writes the new handles to `ids`. This is how a file's
    // sprites enter the cache: one allocation and one lock for all of them.
    void addSlices(const QByteArray &block, const Slice *slices, qsizetype count, quint32 *ids);
    // Stores new bytes under an existing handle; false if the handle is unknown.
    bool replace(quint32 id, const QByteArray &bytes, bool compressIt);
    // Reads an item back; false only for an unknown handle. With a filter the
    // stored bytes go through it; without one, and with compression on, they
    // are uncompressed (bytes that weren't compressed then come back empty).
    bool get(quint32 id, QByteArray &out, const QBFCacheFilter *filter = nullptr,
             const QSpriteSize &size = QSpriteSize()) const;
    // The stored bytes of an item in memory, without a copy: valid until the
    // item is replaced or removed. False for an unknown handle or an item in
    // the temporary file (get() reads those).
    bool peek(quint32 id, QByteArrayView &out) const;
    bool remove(quint32 id);
    // Copies an entry of `from` (which may be this cache) as it is stored: no
    // decoding, no recompression, the original size kept. Returns the new
    // handle, 0 if `fromId` is unknown.
    quint32 copyEntry(const QSpriteCache &from, quint32 fromId);
    // Overwrites entry `id` with such a copy; false if either handle is unknown.
    bool replaceEntry(quint32 id, const QSpriteCache &from, quint32 fromId);
    void clear();
    // True if both handles exist and their stored bytes are equal.
    bool same(quint32 idA, quint32 idB) const;

    bool contains(quint32 id) const { return entry(id) != nullptr; }
    int count() const { return int(m_ids.size()); }
    quint64 storedTotal() const;
    quint64 originalTotal() const;
    // Size of the temporary file (0 in memory mode).
    qint64 fileSize() const;
    QString fileName() const;


    // Reads that went through anything but the pass-through filter, i.e. that
    // produced pixels or samples, process-wide. Lets tests prove that an
    // operation never looked at image data.
    static quint64 decodeCount();
    // Adds decodes made straight through the filters (see QSpriteDecoder).
    static void countDecodes(quint64 count);

    QSpriteRecordPool *recordPool() const { return m_pool; }

private:
    QCacheEntry *entry(quint32 id) const;
    void attach(QCacheEntry *e);
    QByteArray storedBytes(const QCacheEntry &e) const;
    void store(QCacheEntry &e, const QByteArray &bytes, bool compressIt);
    bool copyStored(QCacheEntry &e, const QSpriteCache &from, quint32 fromId);

    QSpriteRecordPool *m_pool = nullptr;
    std::unique_ptr<QSpriteRecordPool> m_ownPool;
    int m_mode = Memory;
    bool m_compress = true;
    int m_level = -1;
    QString m_stem;
    // Handles of this cache's entries; each record knows its slot here.
    std::vector<quint32> m_ids;
    mutable QTemporaryFile m_file;
    bool m_fileOpen = false;
    qint64 m_fileEnd = 0;
};
