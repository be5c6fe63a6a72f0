#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli project info FILE.def [--json]
namespace ProjectCommand {
ExitCode run(const QStringList &words);
ExitCode info(const QStringList &words);
}
