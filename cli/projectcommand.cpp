#include "projectcommand.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"
#include "issuesjson.h"
#include "progressmeter.h"
#include "projectreport.h"
#include "project/qproject.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextDocument>

#include <QDir>

namespace ProjectCommand {

ExitCode run(const QStringList &words)
{
    return runSubcommand(words, Usage::Topic::Project, QStringLiteral("project"),
                         {{"info", info}});
}

} // namespace ProjectCommand

namespace ProjectCommand {

namespace {

// One slot of an open project: its file and how much it holds.
struct SlotLine
{
    QString slot;
    QString file;
    int count = 0;
    QString unit;
};

int lineCount(QSyntaxTextEditor *doc)
{
    return doc->isEmpty() ? 0 : doc->document()->blockCount();
}

QList<SlotLine> slotsOf(QProject &project)
{
    QList<SlotLine> out;
    out.append({QStringLiteral("definitions"), project.definitions()->fileName(), lineCount(project.definitions()),
                QStringLiteral("lines")});
    QSprites *sprites = project.sprites();
    out.append({QStringLiteral("sprites"), sprites->fileName(), sprites->count(), QStringLiteral("sprites")});
    out.append({QStringLiteral("palettes"), QString(), sprites->paletteCount(), QStringLiteral("palettes")});
    if (project.type() == QProjectType::Font)
        return out;
    const QProjectDefFiles &files = project.defFiles();
    auto named = [&files](const QString &name) {
        return name.isEmpty() ? QString() : QProject::resolveFile(files.folder, name);
    };
    out.append({QStringLiteral("animations"),
                project.type() == QProjectType::Character ? named(files.animation) : project.definitions()->fileName(),
                project.animations()->count(), QStringLiteral("animations")});
    if (project.type() != QProjectType::Character)
        return out;
    out.append({QStringLiteral("sounds"), named(files.sound), project.sounds()->count(), QStringLiteral("sounds")});
    out.append({QStringLiteral("commands"), project.commands()->fileName(), lineCount(project.commands()),
                QStringLiteral("lines")});
    for (int i = 0; i < project.statesCount(); ++i) {
        QSyntaxTextEditor *doc = project.state(i);
        out.append({QStringLiteral("states"), doc->fileName(), lineCount(doc), QStringLiteral("lines")});
    }
    return out;
}

} // namespace

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
    const bool json = start.args.has(QStringLiteral("json"));

    QProject project;
    ProgressMeter meter(QStringLiteral("Opening %1").arg(QFileInfo(path).fileName()));
    QObject::connect(&project, &QProject::progress, &meter, &ProgressMeter::update);
    // A backup on opening is the program's choice to make, not the tool's: never
    // write beside the author's files.
    const bool opened = project.fromFile(path, 0, false, false);
    meter.finish();
    const int issues = Console::printIssues(*project.messages(), QFileInfo(path).fileName());
    if (!opened) {
        Console::fail(QStringLiteral("'%1': cannot be opened as a project: %2")
                          .arg(QDir::toNativeSeparators(path), project.failures().join(QStringLiteral("; "))));
        return ExitCode::Failure;
    }

    const QList<SlotLine> slotLines = slotsOf(project);
    const QList<ProjectReport::NamedFile> files = ProjectReport::namedFiles(project.defFiles());
    if (json) {
        QJsonObject o = ProjectReport::summaryJson(project, path);
        QJsonArray slotArray;
        for (const SlotLine &s : slotLines) {
            slotArray.append(QJsonObject{{QStringLiteral("slot"), s.slot},
                                         {QStringLiteral("file"), s.file.isEmpty() ? QJsonValue(QJsonValue::Null)
                                                                                   : QJsonValue(s.file)},
                                         {QStringLiteral("count"), s.count},
                                         {QStringLiteral("unit"), s.unit}});
        }
        o.insert(QStringLiteral("slots"), slotArray);
        o.insert(QStringLiteral("files"), ProjectReport::filesJson(files));
        o.insert(QStringLiteral("issues"), IssuesJson::toJson(*project.messages(), QFileInfo(path).fileName()));
        Console::json(QJsonDocument(o));
    } else {
        QString out = ProjectReport::summaryText(project, path);
        out += QStringLiteral("\nSlots\n");
        for (const SlotLine &s : slotLines)
            out += QStringLiteral("  %1 %2 %3\n").arg(s.slot, -11).arg(QStringLiteral("%1 %2").arg(s.count).arg(s.unit), -22)
                       .arg(s.file.isEmpty() ? QStringLiteral("-") : s.file);
        out += ProjectReport::filesText(files);
        out += QStringLiteral("\nIssues\n");
        const QList<QMessages::Message> messages = project.messages()->messages();
        for (const QMessages::Message &m : messages)
            out += QStringLiteral("  %1 %2\n").arg(IssuesJson::kindName(m.kind), -11).arg(m.text);
        Console::out(out);
    }
    // A file the DEF names that is there but can't be read leaves the project incomplete.
    const QStringList failures = project.failures();
    for (const QString &failure : failures)
        Console::fail(failure);
    if (!failures.isEmpty())
        return ExitCode::Failure;
    return issues ? ExitCode::Issues : ExitCode::Ok;
}

} // namespace ProjectCommand
