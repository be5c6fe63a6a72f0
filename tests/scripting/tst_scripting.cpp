// The Lua host and its API as scripts see them, the shipped templates and the
// shipped throw generator.
#include "testsupport.h"

#include "code/qmugensyntaxchecker.h"
#include "code/qsyntaxproperties.h"
#include "project/qproject.h"
#include "scripting/qscriptmanager.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString scriptsRoot()
{
    return QStringLiteral(BF_SOURCE_DIR "/data/scripts");
}

// Runs text and returns what it printed, one entry per print, or "error: ...".
QStringList run(QScriptManager &scripts, const QString &text)
{
    QSignalSpy printed(&scripts, &QScriptManager::printOutput);
    QStringList out;
    const bool ok = scripts.loadText(text);
    for (const QList<QVariant> &args : std::as_const(printed))
        out << args.first().toString();
    if (!ok)
        out << QStringLiteral("error: ") + scripts.errorMessage();
    return out;
}

// Error lines of the checker over a text, "line: message".
QStringList errors(const QString &text)
{
    static QMugenSyntaxProperties syntax;
    if (syntax.stateControllers.isEmpty())
        syntax.load(QStringLiteral(BF_SOURCE_DIR "/data/syntax_mugen.xml"));
    QMugenSyntaxChecker checker(&syntax);
    const QVector<QMugenSyntaxChecker::Line> lines = checker.checkText(text);
    QStringList out;
    for (int i = 0; i < lines.size(); ++i)
        for (const BlockIssue &b : lines.at(i).issues)
            if (b.kind == BlockIssue::Error)
                out << QStringLiteral("%1: %2").arg(i + 1).arg(b.message);
    return out;
}

} // namespace

class TestScripting : public QObject
{
    Q_OBJECT

private slots:
    void hostAndApi();
    void scriptsCannotHarmTheProgram();
    void templatesMakeCleanProjects();
    void throwGenerator();
};

void TestScripting::hostAndApi()
{
    QProject kfm;
    QVERIFY(kfm.fromFile(TestSupport::samplePath("chars/kfm/kfm.def"), 0, false, false));
    QScriptManager scripts(scriptsRoot());
    scripts.setProjectSource([&] { return QList<QProject *>{&kfm}; }, [&] { return &kfm; });

    QCOMPARE(run(scripts, "print(1, nil, 'a')"), QStringList{"1, nil, a"});
    QCOMPARE(run(scripts, "p = project(); print(p.type, p.version)"), QStringList{"1, 16777216"});
    QCOMPARE(run(scripts, "print(TextDocument.EndOfLine == 15, TextDocument.LineUnderCursor, Project.Stage,"
                          " Sprites.Version_101 == 0x01000100, projectCount(), project(0) == project())"),
             QStringList{"true, 2, 4, true, 1, true"});
    QCOMPARE(run(scripts, "local d = project().definitions; d.position = 1e6;"
                          " print(d.atEnd, d.position == #d.text, d.lineNumber == d.lineCount - 1)"),
             QStringList{"true, true, true"});
    QCOMPARE(run(scripts, "local p = project(); print(p.definitions:findValue('Files', 'cmd'),"
                          " p.sprites:count() > 0, p.animations:count() > 0, p.statesCount)"),
             QStringList{"kfm.cmd, true, true, 1"});

    // The script's own cursor edits the text; look-ups see the new text at once.
    QProject fresh;
    scripts.setProjectSource([&] { return QList<QProject *>{&fresh}; }, [&] { return &fresh; });
    QCOMPARE(run(scripts, "local d = project().definitions; d:insertText('[Info]\\nname = \"x\"\\n');"
                          " d:movePosition(TextDocument.Start, TextDocument.MoveAnchor, 1);"
                          " d:select(TextDocument.LineUnderCursor);"
                          " print(d:sectionExists('info'), d:findValue('Info', 'name'), d.selectedText)"),
             QStringList{"true, x, [Info]"});
    QCOMPARE(run(scripts, "p = project(); p.type = Project.Stage; print(p.type)"), QStringList{"4"});

    // Each run starts afresh: the globals of a failed run are gone.
    QVERIFY(run(scripts, "leftover = 1; error('boom')").last().contains("boom"));
    QCOMPARE(run(scripts, "print(leftover)"), QStringList{"nil"});

    // Entry functions by category; a tool without main is an error.
    QTemporaryDir dir;
    QVERIFY(TestSupport::writeAll(dir.filePath("tool/Deep/Nested/Hello.lua"), "function main() print('hi') end"));
    QVERIFY(TestSupport::writeAll(dir.filePath("tool/NoMain.lua"), "x = 1"));
    QVERIFY(TestSupport::writeAll(dir.filePath("tool/upper.LUA"), "x = 1"));
    QVERIFY(TestSupport::writeAll(dir.filePath("tool/.hidden/Skip.lua"), "x = 1"));
    QScriptManager own(dir.path());
    QCOMPARE(own.scripts("tool").keys(), (QStringList{"Deep/Nested/Hello", "NoMain"}));
    QSignalSpy printed(&own, &QScriptManager::printOutput);
    QVERIFY(own.runTool("Deep/Nested/Hello"));
    QCOMPARE(printed.count(), 1);
    QVERIFY(!own.runTool("NoMain"));
    QVERIFY(own.errorMessage().contains("main"));
}

void TestScripting::scriptsCannotHarmTheProgram()
{
    auto *project = new QProject;
    QScriptManager scripts(scriptsRoot());
    scripts.setProjectSource([&] { return QList<QProject *>{project}; }, [&] { return project; });
    scripts.setInstructionLimit(2000000);
    scripts.setMemoryLimit(32 * 1024 * 1024);
    const QStringList refused = {
        "project().definitions:insertText(nil)",
        "project().definitions:insertText()",
        "project(7)",
        "project().sprites:remove(0)",
        "project().type = 3",
        "project().version = 1",
        "local d = project().definitions; d.insertText(5, 'x')",
        "Dialog()",
        "local l = Label(); l.text = 'x'",
        "os.exit(0)",
        "while true do end",
        "local t = {} while true do t[#t + 1] = string.rep('x', 1e6) .. #t end",
    };
    for (const QString &text : refused) {
        const QStringList out = run(scripts, text);
        QVERIFY2(out.size() == 1 && out.first().startsWith("error: "), qPrintable(text));
    }
    QVERIFY(run(scripts, "Dialog()").first().contains("dialogs are not available"));

    // An object whose project is gone is an error to use, not a dangling pointer.
    QVERIFY(scripts.loadText("p = project(); d = p.definitions function later() return d.text end"));
    delete project;
    project = nullptr;
    QVERIFY(!scripts.call("later", 0, 0));
    QVERIFY(scripts.errorMessage().contains("no longer exists"));
    scripts.close();

    // A long run is offered to be stopped.
    scripts.setInstructionLimit(0);
    connect(&scripts, &QScriptManager::runningLong, this, [](bool *stop) { *stop = true; });
    QVERIFY(run(scripts, "while true do end").first().contains("stopped"));
}

void TestScripting::templatesMakeCleanProjects()
{
    QScriptManager scripts(scriptsRoot());
    const QStringList templates = scripts.scripts(QStringLiteral("project")).keys();
    QCOMPARE(templates.size(), 3);
    for (const QString &name : templates) {
        QVERIFY2(QFileInfo::exists(scriptsRoot() + "/project/" + name + ".png"), qPrintable(name));
        QProject project;
        bool keep = false;
        QVERIFY2(scripts.runTemplate(name, &project, &keep), qPrintable(scripts.errorMessage()));
        QVERIFY(keep);
        scripts.close();

        // Saved where the author would, it opens again and checks clean.
        QTemporaryDir dir;
        const QString def = dir.filePath("new.def");
        connect(&project, &QProject::saveFileName, this, [&](QProjectFile kind, const QString &) {
            const QProjectDefFiles named = project.scanDef(def);
            return kind == QProjectFile::States && !named.states.isEmpty() ? dir.filePath(named.states.first())
                                                                           : QString();
        });
        QVERIFY2(project.saveAs(def, false), qPrintable(project.failures().join('\n')));
        QProject again;
        QVERIFY(again.fromFile(def, 0, false, false));
        QCOMPARE(again.type(), project.type());
        QVERIFY2(again.failures().isEmpty(), qPrintable(again.failures().join(QLatin1Char(10))));
        QStringList texts{again.definitions()->text(), again.commands()->text()};
        for (int i = 0; i < again.statesCount(); ++i)
            texts << again.state(i)->text();
        for (const QString &text : std::as_const(texts))
            QVERIFY2(errors(text).isEmpty(), qPrintable(name + ": " + errors(text).join('\n')));
        if (again.type() == QProjectType::Character)
            QCOMPARE(again.statesCount(), 1);
    }
}

void TestScripting::throwGenerator()
{
    QScriptManager scripts(scriptsRoot());
    QString code;
    const QMap<QString, QVariant> values{{"StateDef", 810},  {"P1AnimStart", 800}, {"P1Anim", 810},
                                         {"P2Anim", 820},    {"XVelocity", -3.5},  {"YVelocity", -6},
                                         {"BindCount", 12},  {"SprPriority", 2}};
    QVERIFY2(scripts.runCommon("Throw", "makeThrow", values, &code), qPrintable(scripts.errorMessage()));
    QVERIFY(code.contains("[Statedef 810]") && code.contains("p2stateno = 820") && code.contains("x = -3.50"));
    QCOMPARE(errors(code), QStringList());
}

QTEST_GUILESS_MAIN(TestScripting)
#include "tst_scripting.moc"
