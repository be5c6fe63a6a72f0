#pragma once

#include "exitcode.h"

#include <QStringList>

// brawlforge-cli info FILE [--json]
namespace InfoCommand {
ExitCode run(const QStringList &words);
}
