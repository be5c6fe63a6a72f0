// Feeds arbitrary bytes to the PNG filter at a fixed sprite size.
#include <cstddef>
#include <cstdint>

#include <QImageReader>

#include "sprites/qpngcachefilter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QImageReader::setAllocationLimit(64);
    const QByteArray file(reinterpret_cast<const char *>(data), qsizetype(size));
    for (QImage::Format f : {QImage::Format_Indexed8, QImage::Format_ARGB32}) {
        const QSpriteSize sprite{33, 17, f};
        if (QPNGCacheFilter().decode(file, sprite).size() != sprite.byteCount())
            __builtin_trap();
    }
    return 0;
}
