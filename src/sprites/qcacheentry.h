#pragma once

#include <QByteArray>
#include <QtGlobal>

// One stored item of a QSpriteCache. Records are pooled by the process and
// reused; only QSpriteCache makes and reads them.
struct QCacheEntry
{
    // Stored bytes in memory (also in file mode, if the file failed). Entries
    // added together from one block share it: each is a slice of the block,
    // and the block lives as long as any of its slices.
    QByteArray bytes;
    qint64 filePos = 0;      // position in the temporary file
    quint32 storedSize = 0;  // stored length, after compression if any
    quint32 originalSize = 0;// length given by the caller
    // The handle: the record's place in the pool, with a generation count in
    // the top bits so that a stale handle doesn't name the record's next use.
    // Kept while the record is free, so the next use can count on from it.
    quint32 id = 0;
    quint32 slot = 0;        // position in the owning cache's list of handles
    bool inFile = false;     // bytes live in the temporary file

    // Back to a free record; the handle stays for its generation count.
    void reset()
    {
        bytes = QByteArray();
        filePos = 0;
        storedSize = originalSize = slot = 0;
        inFile = false;
    }
};
