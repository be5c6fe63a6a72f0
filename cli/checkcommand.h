#pragma once

#include "exitcode.h"

#include <QStringList>

// "check": the code editors' syntax checker over text files, with the issues
// placed by line and column.
namespace CheckCommand {
ExitCode run(const QStringList &words);
}
