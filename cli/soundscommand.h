#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli sounds info FILE.snd|FILE.def [--json]
// brawlforge-cli sounds export FILE.snd OUTDIR
// brawlforge-cli sounds pack IN.def|INDIR OUT.snd
namespace SoundsCommand {
ExitCode run(const QStringList &words);
ExitCode info(const QStringList &words);
ExitCode exportSounds(const QStringList &words);
ExitCode pack(const QStringList &words);
}
