#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli animations info FILE.air|FILE.def [--json]
// brawlforge-cli animations convert IN.air OUT.air
namespace AnimationsCommand {
ExitCode run(const QStringList &words);
ExitCode info(const QStringList &words);
ExitCode convert(const QStringList &words);
}
