#pragma once

#include "exitcode.h"

#include <QStringList>

// "script": a tool script run on projects, without a window.
namespace ScriptCommand {

ExitCode run(const QStringList &words);

} // namespace ScriptCommand
