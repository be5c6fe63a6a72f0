// Runs the built brawlforge-cli as a process, the way scripts and CI use it, and
// checks exit codes, outputs and the files it writes, over the engine's sample
// content and over damaged copies of it.
#include "testsupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Run
{
    int code = -1;
    QByteArray out;
    QByteArray err;
    bool crashed = false;   // signal, sanitizer report or hang
    QString what;           // the command line, for failure messages
};

// Sanitizer reports get exit codes of their own, so that a report can never pass
// for the tool's 1 ("done with issues").
constexpr int kAsanExit = 86;
constexpr int kUbsanExit = 87;

QString toolPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/brawlforge-cli");
}

Run runTool(const QStringList &args, int timeoutMs = 300000)
{
    Run r;
    r.what = QStringLiteral("brawlforge-cli ") + args.join(QLatin1Char(' '));
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0:exitcode=%1").arg(kAsanExit));
    env.insert(QStringLiteral("UBSAN_OPTIONS"),
               QStringLiteral("print_stacktrace=1:halt_on_error=1:exitcode=%1").arg(kUbsanExit));
    p.setProcessEnvironment(env);
    p.start(toolPath(), args);
    if (!p.waitForStarted()) {
        r.crashed = true;
        r.err = "cannot start " + toolPath().toUtf8();
        return r;
    }
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished();
        r.crashed = true;
    }
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    if (p.exitStatus() != QProcess::NormalExit)
        r.crashed = true;
    r.code = p.exitCode();
    if (r.code == kAsanExit || r.code == kUbsanExit || r.err.contains("Sanitizer")
        || r.err.contains("runtime error:"))
        r.crashed = true;
    return r;
}

QString describe(const Run &r)
{
    return QStringLiteral("%1\nexit %2%3\n--- stderr:\n%4")
        .arg(r.what)
        .arg(r.code)
        .arg(r.crashed ? QStringLiteral(" (CRASHED)") : QString())
        .arg(QString::fromUtf8(r.err.left(4000)));
}

#define EXPECT_EXIT(run, expected)                                                                 \
    do {                                                                                           \
        const Run &r_ = (run);                                                                     \
        if (r_.crashed || r_.code != (expected))                                                   \
            QFAIL(qPrintable(describe(r_) + QStringLiteral("\nexpected exit %1").arg(expected)));  \
    } while (0)

} // namespace

class TestCli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void usageHelpAndVersion_data();
    void usageHelpAndVersion();
    void unusableFiles();
};

void TestCli::initTestCase()
{
    QVERIFY2(QFileInfo(toolPath()).isExecutable(), qPrintable(toolPath() + " is not built"));
}

void TestCli::usageHelpAndVersion_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("stdoutHas");   // empty: stdout must be empty
    QTest::addColumn<QString>("stderrHas");   // empty: stderr must be empty

    const QString version = QStringLiteral("<version>"); // one line, checked by pattern below
    QTest::newRow("no arguments") << QStringList{} << 2 << QString() << "Usage: brawlforge-cli COMMAND";
    QTest::newRow("--help") << QStringList{"--help"} << 0 << "sprites convert IN.sff" << QString();
    QTest::newRow("-h") << QStringList{"-h"} << 0 << "project info FILE.def" << QString();
    QTest::newRow("help word") << QStringList{"help"} << 0 << "Exit codes:" << QString();
    QTest::newRow("--version") << QStringList{"--version"} << 0 << version << QString();
    QTest::newRow("info --help") << QStringList{"info", "--help"} << 0 << "Usage: brawlforge-cli info FILE" << QString();
    QTest::newRow("info --version") << QStringList{"info", "--version"} << 0 << version << QString();
    QTest::newRow("sprites --help") << QStringList{"sprites", "--help"} << 0 << "sprites export FILE.sff" << QString();
    QTest::newRow("export --help") << QStringList{"sprites", "export", "-h"} << 0 << "sprites.txt" << QString();
    QTest::newRow("export --version") << QStringList{"sprites", "export", "--version"} << 0 << version << QString();
    QTest::newRow("convert --help") << QStringList{"sprites", "convert", "--help"} << 0 << "--to VERSION" << QString();
    QTest::newRow("project --help") << QStringList{"project", "--help"} << 0 << "project info FILE.def" << QString();
    QTest::newRow("project info --help") << QStringList{"project", "info", "--help"} << 0 << "every issue" << QString();
    QTest::newRow("project info --version") << QStringList{"project", "info", "--version"} << 0 << version << QString();
    // Help wins over missing arguments, as a user trying to find out expects.
    QTest::newRow("help before checks") << QStringList{"info", "--help", "a", "b"} << 0 << "--json" << QString();

    QTest::newRow("unknown command") << QStringList{"frobnicate"} << 2 << QString() << "unknown command 'frobnicate'";
    QTest::newRow("unknown tool option") << QStringList{"--frob"} << 2 << QString() << "unknown option '--frob'";
    QTest::newRow("unknown sprites command") << QStringList{"sprites", "melt"} << 2 << QString()
                                             << "unknown command 'sprites melt'";
    QTest::newRow("sprites alone") << QStringList{"sprites"} << 2 << QString() << "missing command";
    QTest::newRow("project alone") << QStringList{"project"} << 2 << QString() << "missing command";
    QTest::newRow("info without file") << QStringList{"info"} << 2 << QString() << "missing FILE";
    QTest::newRow("info two files") << QStringList{"info", "a", "b"} << 2 << QString() << "unexpected argument 'b'";
    QTest::newRow("info unknown option") << QStringList{"info", "x", "--jsn"} << 2 << QString()
                                         << "unknown option '--jsn'";
    QTest::newRow("flag with value") << QStringList{"info", "x", "--json=yes"} << 2 << QString() << "takes no value";
    QTest::newRow("export without outdir") << QStringList{"sprites", "export", "a.sff"} << 2 << QString()
                                           << "missing OUTDIR";
    QTest::newRow("convert without --to") << QStringList{"sprites", "convert", "a.sff", "b.sff"} << 2 << QString()
                                          << "--to";
    QTest::newRow("convert bad version") << QStringList{"sprites", "convert", "a.sff", "b.sff", "--to=3.00"} << 2
                                         << QString() << "3.00";
    QTest::newRow("project info without file") << QStringList{"project", "info"} << 2 << QString() << "missing FILE.def";
}

void TestCli::usageHelpAndVersion()
{
    QFETCH(QStringList, args);
    QFETCH(int, code);
    QFETCH(QString, stdoutHas);
    QFETCH(QString, stderrHas);

    const Run r = runTool(args);
    EXPECT_EXIT(r, code);
    if (stdoutHas.isEmpty())
        QVERIFY2(r.out.isEmpty(), r.out.constData());
    else if (stdoutHas == QLatin1String("<version>"))
        QVERIFY2(QRegularExpression(QStringLiteral("^brawlforge-cli \\d+\\.\\d+\\.\\d+\n$"))
                     .match(QString::fromUtf8(r.out)).hasMatch(), r.out.constData());
    else
        QVERIFY2(r.out.contains(stdoutHas.toUtf8()), r.out.constData());
    if (stderrHas.isEmpty()) {
        QVERIFY2(r.err.isEmpty(), r.err.constData());
    } else {
        QVERIFY2(r.err.contains(stderrHas.toUtf8()), r.err.constData());
        // A usage error is one clear line; only the bare call shows the whole help.
        if (!args.isEmpty())
            QCOMPARE(r.err.count('\n'), 1);
    }
}

void TestCli::unusableFiles()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString missing = dir.filePath(QStringLiteral("missing.sff"));
    const QString text = dir.filePath(QStringLiteral("notes.txt"));
    const QString empty = dir.filePath(QStringLiteral("empty.sff"));
    {
        QFile f(text);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("just some text\n");
        QFile e(empty);
        QVERIFY(e.open(QIODevice::WriteOnly));
    }

    struct Case { QStringList args; QByteArray says; };
    const QList<Case> cases = {
        {{"info", missing}, "no such file"},
        {{"info", text}, "not a sprite file"},
        {{"info", empty}, "not a sprite file"},
        {{"info", dir.path()}, "cannot be read"},
        {{"sprites", "export", missing, dir.filePath("out")}, "no such file"},
        {{"sprites", "export", text, dir.filePath("out")}, "not a sprite file"},
        {{"sprites", "convert", empty, dir.filePath("o.sff"), "--to", "2.01"}, "not a sprite file"},
        {{"project", "info", missing}, "no such file"},
    };
    for (const Case &c : cases) {
        const Run r = runTool(c.args);
        EXPECT_EXIT(r, 2);
        QVERIFY2(r.err.contains(c.says), qPrintable(describe(r)));
        QCOMPARE(r.err.count('\n'), 1);
        QVERIFY2(r.out.isEmpty(), r.out.constData());
    }
    // Nothing is left behind by a refused run.
    QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("out"))));
    QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("o.sff"))));
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
