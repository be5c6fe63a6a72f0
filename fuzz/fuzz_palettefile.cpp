// Feeds arbitrary bytes to the palette-file loader. The first byte picks the
// file suffix, the rest is the file.
#include "sprites/qpalettefile.h"

#include <QBuffer>
#include <QtGlobal>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // Damaged input makes the library warn on every run; printing it only slows the search.
    static const bool quiet = (qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}), true);
    (void)quiet;
    static const char *const suffixes[] = {"act", "pal", "aco", "ase", "txt", "pcx", "png", "bmp"};
    if (size < 1)
        return 0;
    const QString suffix = QString::fromLatin1(suffixes[data[0] % 8]);
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    if (!buffer.open(QIODevice::ReadOnly))
        return 0;
    QRGBPal colors;
    QString error;
    QPaletteFile::load(buffer, suffix, &colors, &error);
    return 0;
}
