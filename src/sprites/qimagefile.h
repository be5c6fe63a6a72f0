#pragma once

#include "sprites/qrgbpal.h"

#include <QImage>
#include <QString>

// Sprite images as files: PCX through the sprite codec, PNG and BMP (and
// whatever else Qt reads) through QImage. The sprites and image editors load
// and export through here.
namespace QImageFile {

// The filters of the image dialogs, with "All supported" in front for opening.
QString openFilter();
QString saveFilter();

// The picture in `path`; null if it is missing or unreadable. A suffix of
// exactly "pcx" goes through the PCX reader, anything else through QImage.
QImage read(const QString &path);
// Writes `image` through a temporary file, so that a failed write leaves an
// old file as it was. False for a null image; `error` then says why.
bool write(const QString &path, const QImage &image, QString *error = nullptr);

// `image` mapped onto the 256 colours of `colors` as an indexed image. The
// colours keep their alpha if the image has any (32-bit with alpha, or an
// indexed table with an entry below 255); otherwise they are opaque.
QImage adapt(const QImage &image, const QRGBPal &colors);

} // namespace QImageFile
