#include "infocommand.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"
#include "projectreport.h"
#include "project/qproject.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include "soundscommand.h"
#include "spritesinfo.h"

namespace InfoCommand {

// Only the DEF is read, as the program reads it when a project opens: its
// outline gives type, version and local coordinates, its scan the file names.
static ExitCode definitionsInfo(const QString &path, bool json)
{
    QProject project;
    if (!project.definitions()->loadFile(path, 0)) {
        Console::fail(QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(path),
                                                      project.definitions()->errorString()));
        return ExitCode::Failure;
    }
    const QList<ProjectReport::NamedFile> files = ProjectReport::namedFiles(project.scanDef(path));
    if (json) {
        QJsonObject o = ProjectReport::summaryJson(project, path);
        o.insert(QStringLiteral("files"), ProjectReport::filesJson(files));
        Console::json(QJsonDocument(o));
    } else {
        Console::out(ProjectReport::summaryText(project, path) + ProjectReport::filesText(files));
    }
    return Console::printIssues(*project.messages(), QFileInfo(path).fileName()) ? ExitCode::Issues : ExitCode::Ok;
}

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
        return SpritesInfo::run(path, start.args.has(QStringLiteral("json")));
    case FileKind::Definitions:
        return definitionsInfo(path, start.args.has(QStringLiteral("json")));
    case FileKind::Sounds:
        return SoundsCommand::info(words);
    default:
        Console::fail(FileKinds::problem(kind, path));
        return ExitCode::Failure;
    }
}

} // namespace InfoCommand
