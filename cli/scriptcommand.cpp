#include "scriptcommand.h"

#include "commandstart.h"
#include "console.h"
#include "base/qapppaths.h"
#include "project/qproject.h"
#include "scripting/qscriptmanager.h"

#include <QDir>
#include <QFileInfo>

#include <memory>
#include <vector>

namespace ScriptCommand {

ExitCode run(const QStringList &words)
{
    // The script's own words follow "--"; "--project" may come many times,
    // which the common option parser does not allow, so it is taken out first.
    const qsizetype split = words.indexOf(QStringLiteral("--"));
    QStringList own = split < 0 ? words : words.mid(0, split);
    const QStringList scriptArgs = split < 0 ? QStringList() : words.mid(split + 1);
    QStringList defs;
    for (qsizetype i = 0; i < own.size();) {
        const QString &w = own.at(i);
        if (w == QLatin1String("--project")) {
            if (i + 1 >= own.size())
                return usageError(Usage::Topic::Script, QStringLiteral("option '--project' needs a value"));
            defs << own.at(i + 1);
            own.remove(i, 2);
        } else if (w.startsWith(QLatin1String("--project="))) {
            defs << w.mid(10);
            own.remove(i);
        } else {
            ++i;
        }
    }
    CommandStart start = startCommand(own, Usage::Topic::Script, {}, {QStringLiteral("FILE.lua")});
    if (start.finished)
        return *start.finished;
    const QString scriptFile = start.args.positional().first();

    ExitCode code = ExitCode::Ok;
    std::vector<std::unique_ptr<QProject>> projects;
    for (const QString &def : std::as_const(defs)) {
        auto project = std::make_unique<QProject>();
        const bool opened = project->fromFile(def, 0, false, false);
        if (Console::printIssues(*project->messages(), def) > 0)
            code = ExitCode::Issues;
        if (!opened) {
            Console::fail(QStringLiteral("'%1': the project can't be opened").arg(QDir::toNativeSeparators(def)));
            return ExitCode::Failure;
        }
        projects.push_back(std::move(project));
    }

    QScriptManager scripts(QAppPaths::forApplication().dataPath(QStringLiteral("scripts")));
    scripts.setProjectSource(
        [&projects] {
            QList<QProject *> all;
            for (const auto &p : projects)
                all << p.get();
            return all;
        },
        [&projects] { return projects.empty() ? nullptr : projects.front().get(); });
    scripts.setArguments(scriptArgs);
    QObject::connect(&scripts, &QScriptManager::printOutput, [](const QString &text) { Console::line(text); });

    const QString name = QDir::toNativeSeparators(scriptFile);
    bool ok = scripts.loadFile(scriptFile);
    if (ok && scripts.state()) {
        // A tool's work is in main; a plain script has done it already.
        ok = !scripts.hasFunction("main") || scripts.call("main", 0, 0);
    }
    if (!ok) {
        Console::fail(QStringLiteral("%1: %2").arg(name, scripts.errorMessage()));
        scripts.close();
        return ExitCode::Failure;
    }
    scripts.close();
    return code;
}

} // namespace ScriptCommand
