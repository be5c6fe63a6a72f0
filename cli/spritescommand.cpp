#include "spritescommand.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"

#include <QDir>

namespace SpritesCommand {

ExitCode run(const QStringList &words)
{
    const QString sub = words.value(0);
    if (sub == QLatin1String("export"))
        return exportSprites(words.mid(1));
    if (sub == QLatin1String("convert"))
        return convert(words.mid(1));
    if (sub.isEmpty() || sub.startsWith(QLatin1Char('-'))) {
        CommandStart start = startCommand(words, Usage::Topic::Sprites, {}, {});
        if (start.finished)
            return *start.finished;
        return usageError(Usage::Topic::Sprites, QStringLiteral("missing command: export or convert"));
    }
    return usageError(Usage::Topic::Sprites, QStringLiteral("unknown command 'sprites %1'").arg(sub));
}

} // namespace SpritesCommand

namespace SpritesCommand {

// The versions a sprite file can be saved in, by the names authors use.
static bool parseVersion(const QString &text, quint32 *version)
{
    static const struct { const char *name; const char *dotted; quint32 value; } known[] = {
        {"1.01", "1.0.1.0", 0x01000100u},
        {"2.00", "2.0.0.0", 0x02000000u},
        {"2.01", "2.0.1.0", 0x02000100u},
    };
    for (const auto &k : known) {
        if (text == QLatin1String(k.name) || text == QLatin1String(k.dotted)) {
            *version = k.value;
            return true;
        }
    }
    return false;
}

// Refuses, with the one line of the failure, a file that isn't a sprite file.
static bool isSpriteFile(const QString &path)
{
    const FileKind kind = FileKinds::detect(path);
    if (kind == FileKind::Sprites)
        return true;
    Console::fail(kind == FileKind::Definitions || kind == FileKind::Unknown
                      ? QStringLiteral("'%1': not a sprite file (SFF)").arg(QDir::toNativeSeparators(path))
                      : FileKinds::problem(kind, path));
    return false;
}

ExitCode exportSprites(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SpritesExport, {{QStringLiteral("character"), false}},
                                      {QStringLiteral("FILE.sff"), QStringLiteral("OUTDIR")});
    if (start.finished)
        return *start.finished;
    const QString input = start.args.positional().at(0);
    const QString outDir = start.args.positional().at(1);
    if (!isSpriteFile(input))
        return ExitCode::Failure;
    return ExitCode::Failure;
}

ExitCode convert(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SpritesConvert,
                                      {{QStringLiteral("to"), true}, {QStringLiteral("character"), false}},
                                      {QStringLiteral("IN.sff"), QStringLiteral("OUT.sff")});
    if (start.finished)
        return *start.finished;
    if (!start.args.has(QStringLiteral("to")))
        return usageError(Usage::Topic::SpritesConvert, QStringLiteral("missing --to 1.01|2.00|2.01"));
    quint32 version = 0;
    if (!parseVersion(start.args.value(QStringLiteral("to")), &version))
        return usageError(Usage::Topic::SpritesConvert,
                          QStringLiteral("unknown version '%1' for --to: use 1.01, 2.00 or 2.01")
                              .arg(start.args.value(QStringLiteral("to"))));
    const QString input = start.args.positional().at(0);
    const QString output = start.args.positional().at(1);
    if (!isSpriteFile(input))
        return ExitCode::Failure;
    return ExitCode::Failure;
}

} // namespace SpritesCommand
