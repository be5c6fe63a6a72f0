// Feeds arbitrary bytes to the sprite-file loader as a file, then looks at
// every sprite it kept and writes the store out again, so that the readers,
// the codecs behind them and the writer all see damaged input.
#include "base/qmessages.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qspritedecoder.h"
#include "sprites/qsprites.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QFile>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_sff";
    static char *argv[] = {name, nullptr};
    static QCoreApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QCoreApplication(argc, argv);
    }();
    static QTemporaryDir dir;
    static bool ready = [] {
        QBFCacheFilter::createFilters();
        return dir.isValid();
    }();
    Q_UNUSED(app);
    if (!ready)
        return 0;

    const QString in = dir.filePath("in.sff");
    {
        QFile f(in);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        f.write(reinterpret_cast<const char *>(data), qint64(size));
    }

    QMessages messages;
    QSprites sprites;
    sprites.setMessages(&messages);
    const bool isCharacter = size > 20 && (data[20] & 1);
    if (!sprites.fromFile(in, isCharacter, false))
        return 0;

    // Decoding is bounded by the image size the nodes claim; keep each run
    // small so that the fuzzer spends its time on structure.
    qint64 pixels = 0;
    for (int i = 0; i < sprites.count(); ++i) {
        const QSpriteItem *item = sprites.item(i);
        pixels += qint64(item->width) * item->height;
    }
    if (pixels > 4 * 1024 * 1024)
        return 0;
    for (int i = 0; i < sprites.count(); ++i)
        (void)sprites.image(i);
    // The same sprites decoded all at once, on every core.
    QSpriteDecoder(sprites, size % 2 ? QSpriteDecoder::Rgba : QSpriteDecoder::AsShown)
        .run({}, [](QSpriteDecoder::Result &) { return true; });

    const quint32 versions[] = {0x01000100, 0x02000000, 0x02000100};
    const QString out = dir.filePath("out.sff");
    if (sprites.toFile(out, isCharacter, versions[size % 3], false, true)) {
        QSprites again;
        again.setMessages(&messages);
        again.fromFile(out, isCharacter, false);
    }
    return 0;
}
