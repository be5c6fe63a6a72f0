#pragma once

#include <QByteArray>
#include <QtGlobal>

// One stored item of a QSpriteCache. Records are pooled by the process and
// reused; only QSpriteCache makes and reads them.
struct QCacheEntry
{
    QByteArray bytes;        // stored bytes in memory (also in file mode, if the file failed)
    qint64 filePos = 0;      // position in the temporary file
    quint32 storedSize = 0;  // stored length, after compression if any
    quint32 originalSize = 0;// length given by the caller
    quint32 id = 0;          // the handle; never 0
    bool inFile = false;     // bytes live in the temporary file

    void reset() { *this = QCacheEntry(); }
};
