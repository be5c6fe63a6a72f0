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

// With `repeatLast`, the last positional argument may be given any number of
// times (once at least).
CommandStart startCommand(const QStringList &words, Usage::Topic topic,
                          const QList<Arguments::Option> &options, const QStringList &positionalNames,
                          bool repeatLast = false);

// The one line of a usage error, with the hint where help is, and the exit code.
ExitCode usageError(Usage::Topic topic, const QString &text);

// A command made of subcommands ("sprites export", "animations info"...): the
// first word picks one, which runs on the words after it; no word, or an
// option first, is answered as the command's own help, version or usage error.
struct Subcommand
{
    const char *name;
    ExitCode (*run)(const QStringList &words);
};
ExitCode runSubcommand(const QStringList &words, Usage::Topic topic, const QString &command,
                       const QList<Subcommand> &subcommands);
