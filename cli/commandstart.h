#pragma once

#include "arguments.h"
#include "exitcode.h"
#include "usage.h"

#include <optional>

// The part every command starts with: its options are parsed, "--help" and
// "--version" are answered, and the number of positional arguments is checked.
// When `finished` is set the command has nothing left to do and ends with it.
struct CommandStart
{
    Arguments args;
    std::optional<ExitCode> finished;
};

CommandStart startCommand(const QStringList &words, Usage::Topic topic,
                          const QList<Arguments::Option> &options, const QStringList &positionalNames);

// The one line of a usage error, with the hint where help is, and the exit code.
ExitCode usageError(Usage::Topic topic, const QString &text);
