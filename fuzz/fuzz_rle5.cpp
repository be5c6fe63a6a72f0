// Feeds arbitrary bytes to the RLE5 decoder: the first three bytes pick the
// image size and format, the rest is the stream.
#include <cstddef>
#include <cstdint>

#include "sprites/qrle5cachefilter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    static const QImage::Format formats[3] = {QImage::Format_Indexed8, QImage::Format_RGB32, QImage::Format_ARGB32};
    const QSpriteSize sprite{quint16(1 + data[0] % 97), quint16(1 + data[1] % 89), formats[data[2] % 3]};
    const QByteArray stream(reinterpret_cast<const char *>(data + 3), qsizetype(size - 3));
    const QByteArray out = QRLE5CacheFilter().decode(stream, sprite);
    const qsizetype expected = QSpriteSize(sprite.width, sprite.height,
        QImage::Format_Indexed8).byteCount();
    if (out.size() != expected)
        __builtin_trap();
    return 0;
}
