#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli animations info FILE.air|FILE.def [--json]
// brawlforge-cli animations convert IN.air OUT.air
// brawlforge-cli animations gif FILE.def ACTION OUT.gif
// brawlforge-cli animations render FILE.def ACTION OUT.png [--frame K] [--boxes]
namespace AnimationsCommand {
ExitCode run(const QStringList &words);
ExitCode info(const QStringList &words);
ExitCode convert(const QStringList &words);
ExitCode gif(const QStringList &words);
ExitCode render(const QStringList &words);
}
