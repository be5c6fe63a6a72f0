#pragma once

#include "exitcode.h"

#include <QJsonObject>
#include <QString>

class SpriteFile;

// `info` for a sprite file: version, counts, and one record per sprite and per
// palette, as text or as one JSON document.
namespace SpritesInfo {

ExitCode run(const QString &path, bool json);

// The stored form of a sprite by its filter, as the file formats name it.
QString formatName(int filter, bool isLink);
// Colour depth of an image format: 8, 24 or 32 (0 for anything else).
int depthOf(int imageFormat);

QJsonObject toJson(const SpriteFile &file, const QString &path);
QString toText(const SpriteFile &file, const QString &path);

} // namespace SpritesInfo
