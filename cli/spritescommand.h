#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli sprites export|convert|render ...
namespace SpritesCommand {
ExitCode run(const QStringList &words);
ExitCode exportSprites(const QStringList &words);
ExitCode convert(const QStringList &words);
ExitCode render(const QStringList &words);
}
