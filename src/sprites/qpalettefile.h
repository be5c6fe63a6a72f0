#pragma once

#include "sprites/qrgbpal.h"

#include <QString>

class QIODevice;

// The one door to palette files. Reading picks a reader by the file's suffix
// and first bytes; writing always produces ACT, which is also the format of a
// character's palette files.
class QPaletteFile
{
public:
    // The open and save filters of the palette dialogs.
    static QString openFilter();
    static QString saveFilter();

    // Reads `path` into `colors`. For images (png, pcx, bmp) `colors` is only
    // touched on success; for every other kind it is cleared first, so a short
    // file leaves zeros behind. On failure `error` (if given) says why.
    static bool load(const QString &path, QRGBPal *colors, QString *error = nullptr);
    // As load(), from an open device; `suffix` is the lower-case file suffix.
    static bool load(QIODevice &device, const QString &suffix, QRGBPal *colors, QString *error = nullptr);

    // Writes `colors` as ACT (entry 255 first, no alpha) through a temporary
    // file, so that a failed write leaves the old file as it was.
    static bool saveAct(const QString &path, const QRGBPal &colors, QString *error = nullptr);
    static QByteArray actBytes(const QRGBPal &colors);
};
