#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli sprites export|convert ...
namespace SpritesCommand {
ExitCode run(const QStringList &words);
ExitCode exportSprites(const QStringList &words);
ExitCode convert(const QStringList &words);
}
