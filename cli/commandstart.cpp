#include "commandstart.h"

#include "console.h"

ExitCode usageError(Usage::Topic topic, const QString &text)
{
    Console::fail(QStringLiteral("%1 (see '%2 --help')").arg(text, Usage::commandName(topic)));
    return ExitCode::Failure;
}

CommandStart startCommand(const QStringList &words, Usage::Topic topic,
                          const QList<Arguments::Option> &options, const QStringList &positionalNames,
                          bool repeatLast)
{
    CommandStart start;
    QString error;
    if (!start.args.parse(words, options, &error)) {
        start.finished = usageError(topic, error);
        return start;
    }
    if (start.args.wantsHelp()) {
        Console::out(Usage::text(topic));
        start.finished = ExitCode::Ok;
        return start;
    }
    if (start.args.wantsVersion()) {
        Console::out(Usage::versionLine());
        start.finished = ExitCode::Ok;
        return start;
    }
    const qsizetype given = start.args.positional().size();
    if (given < positionalNames.size()) {
        start.finished = usageError(topic, QStringLiteral("missing %1").arg(positionalNames.at(given)));
    } else if (given > positionalNames.size() && !repeatLast) {
        start.finished = usageError(topic, QStringLiteral("unexpected argument '%1'")
                                               .arg(start.args.positional().at(positionalNames.size())));
    }
    return start;
}

ExitCode runSubcommand(const QStringList &words, Usage::Topic topic, const QString &command,
                       const QList<Subcommand> &subcommands)
{
    const QString sub = words.value(0);
    QStringList names;
    for (const Subcommand &s : subcommands) {
        if (sub == QLatin1String(s.name))
            return s.run(words.mid(1));
        names << QLatin1String(s.name);
    }
    if (sub.isEmpty() || sub.startsWith(QLatin1Char('-'))) {
        CommandStart start = startCommand(words, topic, {}, {});
        if (start.finished)
            return *start.finished;
        const QString last = names.takeLast();
        const QString list = names.isEmpty() ? last : names.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last;
        return usageError(topic, QStringLiteral("missing command: %1").arg(list));
    }
    return usageError(topic, QStringLiteral("unknown command '%1 %2'").arg(command, sub));
}
