// brawlforge-cli: the project's formats from the command line, for batch work and
// continuous integration. It loads and saves through the program's own stores,
// so what it says and writes is what Brawlforge would.
#include "animationscommand.h"
#include "checkcommand.h"
#include "commandstart.h"
#include "console.h"
#include "infocommand.h"
#include "projectcommand.h"
#include "scriptcommand.h"
#include "soundscommand.h"
#include "spritescommand.h"
#include "usage.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <memory>

static ExitCode dispatch(const QStringList &words)
{
    if (words.isEmpty()) {
        Console::err(Usage::text(Usage::Topic::Tool));
        return ExitCode::Failure;
    }
    const QString &command = words.first();
    const QStringList rest = words.mid(1);
    if (command == QLatin1String("info"))
        return InfoCommand::run(rest);
    if (command == QLatin1String("sprites"))
        return SpritesCommand::run(rest);
    if (command == QLatin1String("project"))
        return ProjectCommand::run(rest);
    if (command == QLatin1String("animations"))
        return AnimationsCommand::run(rest);
    if (command == QLatin1String("check"))
        return CheckCommand::run(rest);
    if (command == QLatin1String("sounds"))
        return SoundsCommand::run(rest);
    if (command == QLatin1String("script"))
        return ScriptCommand::run(rest);
    if (command == QLatin1String("help"))
        return startCommand({QStringLiteral("--help")}, Usage::Topic::Tool, {}, {}).finished.value();

    if (command.startsWith(QLatin1Char('-'))) {
        // The tool's own options: --help, --version.
        CommandStart start = startCommand(words, Usage::Topic::Tool, {}, {});
        if (start.finished)
            return *start.finished;
    }
    return usageError(Usage::Topic::Tool, QStringLiteral("unknown command '%1'").arg(command));
}

int main(int argc, char **argv)
{
    // Drawing text needs fonts, and fonts need the GUI application; no display
    // is used, so it runs on the offscreen platform unless told otherwise.
    const bool draws = argc > 2
                       && ((qstrcmp(argv[1], "sprites") == 0 && qstrcmp(argv[2], "render") == 0)
                           || (qstrcmp(argv[1], "animations") == 0 && qstrcmp(argv[2], "render") == 0));
    if (draws && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform's own notes (a missing runtime folder and the like) are not
    // the tool's: standard error carries only what the command reports.
    if (draws)
        QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false\n*.info=false"));
    std::unique_ptr<QCoreApplication> app(draws ? new QGuiApplication(argc, argv) : new QCoreApplication(argc, argv));
    QCoreApplication::setApplicationName(QStringLiteral("brawlforge-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BF_CLI_VERSION));
    return toInt(dispatch(QCoreApplication::arguments().mid(1)));
}
