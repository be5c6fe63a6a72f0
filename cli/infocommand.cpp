#include "infocommand.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"

namespace InfoCommand {

ExitCode run(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::Info, {{QStringLiteral("json"), false}},
                                      {QStringLiteral("FILE")});
    if (start.finished)
        return *start.finished;
    const QString path = start.args.positional().at(0);
    const FileKind kind = FileKinds::detect(path);
    switch (kind) {
    case FileKind::Sprites:
    case FileKind::Definitions:
        Console::fail(QStringLiteral("'%1': reading this kind of file is not wired in yet").arg(path));
        return ExitCode::Failure;
    default:
        Console::fail(FileKinds::problem(kind, path));
        return ExitCode::Failure;
    }
}

} // namespace InfoCommand
