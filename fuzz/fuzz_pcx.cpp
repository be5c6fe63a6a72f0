// Feeds arbitrary bytes to the PCX reader, as a whole file and through the
// cache filter at a fixed sprite size.
#include <cstddef>
#include <cstdint>

#include "sprites/qpcxcachefilter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file(reinterpret_cast<const char *>(data), qsizetype(size));
    const QSpriteSize sprite{40, 30};
    if (QPCXCacheFilter().decode(file, sprite).size() != sprite.byteCount())
        __builtin_trap();
    // Whole-file reads are bounded by the header; keep them small for speed.
    if (size >= 12) {
        const int w = (data[8] | data[9] << 8) - (data[4] | data[5] << 8);
        const int h = (data[10] | data[11] << 8) - (data[6] | data[7] << 8);
        if (w < 512 && h < 512) {
            const QImage image = QPCXCacheFilter::read(file);
            if (!image.isNull())
                (void)QPCXCacheFilter::read(QPCXCacheFilter::write(image));
        }
    }
    return 0;
}
