#include "commandstart.h"

#include "console.h"

ExitCode usageError(Usage::Topic topic, const QString &text)
{
    Console::fail(QStringLiteral("%1 (see '%2 --help')").arg(text, Usage::commandName(topic)));
    return ExitCode::Failure;
}

CommandStart startCommand(const QStringList &words, Usage::Topic topic,
                          const QList<Arguments::Option> &options, const QStringList &positionalNames)
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
    } else if (given > positionalNames.size()) {
        start.finished = usageError(topic, QStringLiteral("unexpected argument '%1'")
                                               .arg(start.args.positional().at(positionalNames.size())));
    }
    return start;
}
