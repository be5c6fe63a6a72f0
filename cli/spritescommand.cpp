#include "spritescommand.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"
#include "progressmeter.h"
#include "spriteexporter.h"
#include "spritecheck.h"
#include "spritefile.h"

#include <QFileInfo>

#include <QDir>

namespace SpritesCommand {

ExitCode run(const QStringList &words)
{
    return runSubcommand(words, Usage::Topic::Sprites, QStringLiteral("sprites"),
                         {{"export", exportSprites}, {"convert", convert}, {"render", render},
                          {"check", SpriteCheck::run}});
}

} // namespace SpritesCommand

namespace SpritesCommand {

// The versions a sprite file can be saved in, by the names authors use.
static bool parseVersion(const QString &text, quint32 *version)
{
    *version = QSffVersion::fromName(text);
    return *version != 0;
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

    SpriteFile file;
    QString error;
    const bool loaded = file.load(input, start.args.has(QStringLiteral("character")), &error);
    const QString name = QFileInfo(input).fileName();
    int issues = Console::printIssues(file.messages(), name);
    if (!loaded) {
        Console::fail(error);
        return ExitCode::Failure;
    }
    SpriteExporter exporter(file.store(), name);
    if (!exporter.exportTo(outDir, &error)) {
        Console::fail(error);
        return ExitCode::Failure;
    }
    for (const QString &warning : exporter.warnings())
        Console::err(warning + QLatin1Char('\n'));
    issues += int(exporter.warnings().size());
    return issues ? ExitCode::Issues : ExitCode::Ok;
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
    const QFileInfo target(output);
    if (target.isDir()) {
        Console::fail(QStringLiteral("'%1' is a folder, not a file name").arg(QDir::toNativeSeparators(output)));
        return ExitCode::Failure;
    }
    if (!target.absoluteDir().exists()) {
        Console::fail(QStringLiteral("cannot write '%1': its folder does not exist").arg(QDir::toNativeSeparators(output)));
        return ExitCode::Failure;
    }

    const bool isCharacter = start.args.has(QStringLiteral("character"));
    SpriteFile file;
    QString error;
    const bool loaded = file.load(input, isCharacter, &error);
    int issues = Console::printIssues(file.messages(), QFileInfo(input).fileName());
    if (!loaded) {
        Console::fail(error);
        return ExitCode::Failure;
    }

    const QString oversized = file.oversizedSprites();
    if (!oversized.isEmpty()) {
        Console::fail(QStringLiteral("'%1': damaged sprite sizes, not converted: %2")
                          .arg(QDir::toNativeSeparators(input), oversized.left(300)));
        return ExitCode::Failure;
    }

    QSprites &store = file.store();
    const int reportedBefore = int(file.messages().messages().size());
    QStringList misplaced;
    QObject::connect(&store, &QSprites::orderMustBeChanged, [&](const QList<uint> &list) {
        for (uint i : list) {
            if (const QSpriteItem *s = store.item(int(i)))
                misplaced << QStringLiteral("%1,%2").arg(s->info.group).arg(s->info.number);
        }
    });
    // What the version can't hold is said before the file is written, and
    // written all the same: the author asked for that version.
    const QList<uint> changed = store.spritesChangedBy(version, isCharacter);
    if (!changed.isEmpty()) {
        QStringList names;
        for (uint i : changed)
            names << QStringLiteral("%1,%2").arg(store.item(int(i))->info.group).arg(store.item(int(i))->info.number);
        Console::err(QStringLiteral("%1(0): %2 sprites will show other colours in version %3: %4\n")
                         .arg(target.fileName())
                         .arg(changed.size())
                         .arg(QSffVersion::name(version), names.join(QStringLiteral("; "))));
        ++issues;
    }
    ProgressMeter meter(QStringLiteral("Saving %1").arg(target.fileName()));
    QObject::connect(&store, &QSprites::progress, &meter, &ProgressMeter::update);
    const bool saved = store.toFile(output, isCharacter, version, true, false);
    meter.finish();

    // What the writer reported goes out like the reader's issues.
    const QList<QMessages::Message> all = file.messages().messages();
    for (qsizetype i = reportedBefore; i < all.size(); ++i) {
        if (all.at(i).kind != QMessages::Information) {
            Console::err(Console::issueLine(all.at(i).text, target.fileName()) + QLatin1Char('\n'));
            ++issues;
        }
    }
    if (!saved) {
        Console::fail(QStringLiteral("cannot write '%1'").arg(QDir::toNativeSeparators(output)));
        return ExitCode::Failure;
    }
    if (!misplaced.isEmpty()) {
        // The engine gives the character's palette only to sprites that follow
        // one using it: these will show other colours until they are moved.
        Console::err(QStringLiteral("%1(0): Some sprites must be moved to another location to receive the "
                                    "character palette. Affected sprites: %2\n")
                         .arg(target.fileName(), misplaced.join(QStringLiteral("; "))));
        ++issues;
    }
    return issues ? ExitCode::Issues : ExitCode::Ok;
}

} // namespace SpritesCommand
