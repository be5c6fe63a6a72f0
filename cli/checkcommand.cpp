#include "checkcommand.h"

#include "commandstart.h"
#include "console.h"
#include "deffile.h"
#include "issuesjson.h"
#include "base/qapppaths.h"
#include "base/qmessages.h"
#include "code/qmugensyntaxchecker.h"
#include "code/qsyntaxproperties.h"
#include "code/qtextencoding.h"
#include "project/qproject.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace CheckCommand {

namespace {

struct Issue
{
    QString file;
    int line = 0;
    BlockIssue issue;
};

struct Run
{
    const QMugenSyntaxProperties *syntax = nullptr;
    quint32 forcedVersion = 0;
    QList<Issue> issues;
    QStringList seen; // canonical paths of the files checked
};

bool readText(const QString &path, QString *text, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    *text = QTextEncoding::decode(bytes, QTextEncoding::detectCodec(bytes, 0));
    return true;
}

void checkText(Run &run, const QString &path, const QString &text, quint32 version, bool freeSections)
{
    // A file named twice (given, and named by a DEF given too) is checked once.
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (run.seen.contains(canonical))
        return;
    run.seen << canonical;
    QMugenSyntaxChecker checker(run.syntax);
    checker.setEngineVersion(run.forcedVersion ? run.forcedVersion : version);
    checker.setFreeSections(freeSections);
    const QVector<QMugenSyntaxChecker::Line> lines = checker.checkText(text);
    const QString name = QDir::toNativeSeparators(path);
    for (int i = 0; i < lines.size(); ++i) {
        for (const BlockIssue &b : lines.at(i).issues)
            run.issues.append({name, i + 1, b});
    }
}

bool checkFile(Run &run, const QString &path, quint32 version, bool freeSections = false)
{
    QString text;
    QString error;
    if (!readText(path, &text, &error)) {
        Console::fail(error);
        return false;
    }
    checkText(run, path, text, version, freeSections);
    return true;
}

// A DEF: its kind decides which sections it may hold; a character's also
// stands for the text files it names.
bool checkDefinitions(Run &run, const QString &path)
{
    QProject project;
    QSyntaxTextEditor *def = project.definitions();
    if (!DefFile::load(project, path))
        return false;
    const QString versionText = def->findValue(QStringLiteral("info"), QStringLiteral("mugenversion"));
    const quint32 version = versionText.isEmpty() ? QProject::DefaultVersion : QProject::parseVersion(versionText);
    auto named = [def](const char *key) {
        return !def->findValue(QStringLiteral("files"), QLatin1String(key)).isEmpty();
    };
    const bool character = named("cns") || named("st") || named("cmd") || named("anim");
    const bool known = character || def->sectionExists(QStringLiteral("bgdef"))
                       || def->sectionExists(QStringLiteral("scenedef")) || def->sectionExists(QStringLiteral("fnt v2"))
                       || def->sectionExists(QStringLiteral("def"));
    checkText(run, path, def->text(), version, !known);
    if (!character)
        return true;

    const QProjectDefFiles files = project.scanDef(path);
    QStringList names = files.states;
    names << files.command << files.animation
          << def->findValue(QStringLiteral("arcade"), QStringLiteral("intro.storyboard"))
          << def->findValue(QStringLiteral("arcade"), QStringLiteral("ending.storyboard"));
    bool ok = true;
    for (const QString &name : std::as_const(names)) {
        if (name.isEmpty())
            continue;
        QString file = QProject::resolveFile(files.folder, name);
        // Common states come from the engine's data folder when the
        // character has no copy of its own: they are the engine's, written
        // for the engine's own version and not the character's.
        quint32 fileVersion = version;
        if (!QFileInfo::exists(file)) {
            file = QProject::resolveFile(files.folder + QStringLiteral("/../../data"), name);
            fileVersion = QProject::DefaultVersion;
        }
        file = QFileInfo(file).absoluteFilePath();
        if (!QFileInfo::exists(file)) {
            Console::fail(QStringLiteral("'%1': no such file (named by %2)")
                              .arg(QDir::toNativeSeparators(name), QFileInfo(path).fileName()));
            ok = false;
            continue;
        }
        ok = checkFile(run, QDir::cleanPath(file), fileVersion) && ok;
    }
    return ok;
}

QString kindName(const BlockIssue &b)
{
    return IssuesJson::kindName(b.kind == BlockIssue::Error ? QMessages::Error : QMessages::Warning);
}

} // namespace

ExitCode run(const QStringList &words)
{
    // Any number of files: the common start checks a fixed count, so the
    // options are read here.
    Arguments args;
    QString error;
    if (!args.parse(words, {{QStringLiteral("json"), false}, {QStringLiteral("mugen-version"), true}}, &error))
        return usageError(Usage::Topic::Check, error);
    if (args.wantsHelp()) {
        Console::out(Usage::text(Usage::Topic::Check));
        return ExitCode::Ok;
    }
    if (args.wantsVersion()) {
        Console::out(Usage::versionLine());
        return ExitCode::Ok;
    }
    const QStringList paths = args.positional();
    if (paths.isEmpty())
        return usageError(Usage::Topic::Check, QStringLiteral("missing FILE"));

    Run run;
    if (args.has(QStringLiteral("mugen-version"))) {
        const QString v = args.value(QStringLiteral("mugen-version"));
        if (v != QLatin1String("1.0") && v != QLatin1String("1.1"))
            return usageError(Usage::Topic::Check, QStringLiteral("unknown engine version '%1'").arg(v));
        run.forcedVersion = QMugenSyntaxProperties::parseVersion(v);
    }
    QMugenSyntaxProperties syntax;
    const QString syntaxFile = QAppPaths::forApplication().dataPath(QStringLiteral("syntax_mugen.xml"));
    if (!syntax.load(syntaxFile)) {
        Console::fail(QStringLiteral("'%1': the language definition can't be read").arg(QDir::toNativeSeparators(syntaxFile)));
        return ExitCode::Failure;
    }
    run.syntax = &syntax;

    bool ok = true;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (!info.exists() || info.isDir()) {
            Console::fail(QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(path),
                                                          info.isDir() ? QStringLiteral("is a folder")
                                                                       : QStringLiteral("no such file")));
            ok = false;
            continue;
        }
        if (info.suffix().compare(QLatin1String("def"), Qt::CaseInsensitive) == 0)
            ok = checkDefinitions(run, path) && ok;
        else
            ok = checkFile(run, path, QProject::DefaultVersion) && ok;
    }

    int errors = 0;
    for (const Issue &i : std::as_const(run.issues))
        errors += i.issue.kind == BlockIssue::Error ? 1 : 0;
    if (args.has(QStringLiteral("json"))) {
        QJsonArray list;
        for (const Issue &i : std::as_const(run.issues)) {
            list.append(QJsonObject{{QStringLiteral("file"), i.file},
                                    {QStringLiteral("line"), i.line},
                                    {QStringLiteral("first"), i.issue.start + 1},
                                    {QStringLiteral("last"), i.issue.end + 1},
                                    {QStringLiteral("kind"), kindName(i.issue)},
                                    {QStringLiteral("text"), i.issue.message}});
        }
        Console::json(QJsonDocument(QJsonObject{{QStringLiteral("issues"), list},
                                                {QStringLiteral("errors"), errors},
                                                {QStringLiteral("warnings"), int(run.issues.size()) - errors}}));
    } else {
        for (const Issue &i : std::as_const(run.issues))
            Console::line(QStringLiteral("%1(%2:%3-%4): %5: %6")
                              .arg(i.file)
                              .arg(i.line)
                              .arg(i.issue.start + 1)
                              .arg(i.issue.end + 1)
                              .arg(kindName(i.issue), i.issue.message));
    }
    if (!ok)
        return ExitCode::Failure;
    return errors ? ExitCode::Issues : ExitCode::Ok;
}

} // namespace CheckCommand
