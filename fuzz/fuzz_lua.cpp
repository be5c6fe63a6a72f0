// Any text as a script, with a project at hand through the whole API: no
// crash, no hang (an instruction budget ends every run), no memory beyond the
// state's cap, and the program's objects stay usable after the run.
#include "project/qproject.h"
#include "scripting/qscriptmanager.h"

#include <QCoreApplication>
#include <QString>
#include <QTextDocument>

#include <cstddef>
#include <cstdint>

namespace {

const char *const definitions = "[Info]\nname = \"Fuzz\"\nmugenversion = 1.1\nlocalcoord = 320,240\n"
                                "[Files]\ncmd = f.cmd\ncns = f.cns\nsprite = f.sff\nanim = f.air\n";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_lua";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);

    QProject project;
    project.definitions()->setText(QString::fromLatin1(definitions));
    project.commands()->setText(QStringLiteral("[Statedef -1]\n"));
    project.addState()->setText(QStringLiteral("[Statedef 0]\ntype = S\n"));
    project.sprites()->add();

    QScriptManager scripts{QString()};
    scripts.setSandboxed(true);
    scripts.setInstructionLimit(300000);
    scripts.setMemoryLimit(16 * 1024 * 1024);
    scripts.setProjectSource([&] { return QList<QProject *>{&project}; }, [&] { return &project; });
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    if (scripts.loadText(text) && scripts.hasFunction("main"))
        scripts.call("main", 0, 0);
    scripts.close();
    // Whatever the script did, the project is whole.
    if (project.definitions()->document()->characterCount() < 1 || project.statesCount() < 1)
        __builtin_trap();
    return 0;
}
