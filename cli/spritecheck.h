#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli sprites check FILE.sff... [--json]: every sprite of each file
// decoded in memory, each one that can't be named, and a summary per file.
namespace SpriteCheck {
ExitCode run(const QStringList &words);
}
