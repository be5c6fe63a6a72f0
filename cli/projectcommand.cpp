#include "projectcommand.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"

#include <QDir>

namespace ProjectCommand {

ExitCode run(const QStringList &words)
{
    const QString sub = words.value(0);
    if (sub == QLatin1String("info"))
        return info(words.mid(1));
    if (sub.isEmpty() || sub.startsWith(QLatin1Char('-'))) {
        CommandStart start = startCommand(words, Usage::Topic::Project, {}, {});
        if (start.finished)
            return *start.finished;
        return usageError(Usage::Topic::Project, QStringLiteral("missing command: info"));
    }
    return usageError(Usage::Topic::Project, QStringLiteral("unknown command 'project %1'").arg(sub));
}

} // namespace ProjectCommand

namespace ProjectCommand {

ExitCode info(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::ProjectInfo, {{QStringLiteral("json"), false}},
                                      {QStringLiteral("FILE.def")});
    if (start.finished)
        return *start.finished;
    const QString path = start.args.positional().at(0);
    const FileKind kind = FileKinds::detect(path);
    if (kind == FileKind::Missing || kind == FileKind::Unreadable || kind == FileKind::Sprites) {
        Console::fail(kind == FileKind::Sprites
                          ? QStringLiteral("'%1': a sprite file, not a definition file (DEF)")
                                .arg(QDir::toNativeSeparators(path))
                          : FileKinds::problem(kind, path));
        return ExitCode::Failure;
    }
    return ExitCode::Failure;
}

} // namespace ProjectCommand
