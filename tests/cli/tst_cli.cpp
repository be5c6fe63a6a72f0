// Runs the built brawlforge-cli as a process, the way scripts and CI use it, and
// checks exit codes, outputs and the files it writes, over the engine's sample
// content and over damaged copies of it.
#include "testsupport.h"

#include "base/qmessages.h"
#include "sounds/qsounds.h"
#include "sprites/qspriteitem.h"
#include "sprites/qsprites.h"
#include "wavsupport.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QtEndian>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using TestSupport::readAll;
using TestSupport::writeAll;

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


// Every sprite file of the engine sample, relative to its folder.
QStringList sampleSpriteFiles()
{
    QStringList files;
    QDirIterator it(TestSupport::sampleDir(), {QStringLiteral("*.sff")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    return files;
}



quint32 word32(const QByteArray &b, qsizetype at)
{
    return at + 4 <= b.size() ? qFromLittleEndian<quint32>(b.constData() + at) : 0;
}

void putWord32(QByteArray &b, qsizetype at, quint32 v)
{
    if (at + 4 <= b.size())
        qToLittleEndian<quint32>(v, b.data() + at);
}

void putWord16(QByteArray &b, qsizetype at, quint16 v)
{
    if (at + 2 <= b.size())
        qToLittleEndian<quint16>(v, b.data() + at);
}

// Pixels of two images, compared exactly: same format, same size, same colour
// indices and colour table for indexed images, same ARGB words otherwise.
QString imageDifference(const QImage &exported, const QImage &expected, bool colourAlpha = true)
{
    if (exported.size() != expected.size())
        return QStringLiteral("size %1x%2, expected %3x%4")
            .arg(exported.width()).arg(exported.height()).arg(expected.width()).arg(expected.height());
    if (exported.format() != expected.format())
        return QStringLiteral("format %1, expected %2").arg(exported.format()).arg(expected.format());
    const bool indexed = expected.format() == QImage::Format_Indexed8;
    if (indexed) {
        const QList<QRgb> a = exported.colorTable();
        const QList<QRgb> b = expected.colorTable();
        for (qsizetype i = 0; i < b.size(); ++i) {
            const QRgb mask = colourAlpha ? 0xFFFFFFFFu : 0x00FFFFFFu;
            if (i >= a.size() || (a.at(i) & mask) != (b.at(i) & mask))
                return QStringLiteral("colour %1 differs").arg(i);
        }
    }
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const uint a = indexed ? uint(exported.pixelIndex(x, y)) : exported.pixel(x, y);
            const uint b = indexed ? uint(expected.pixelIndex(x, y)) : expected.pixel(x, y);
            if (a != b)
                return QStringLiteral("pixel %1,%2 is %3, expected %4").arg(x).arg(y).arg(a, 0, 16).arg(b, 0, 16);
        }
    }
    return QString();
}

} // namespace

class TestCli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void usageHelpAndVersion_data();
    void usageHelpAndVersion();
    void unusableFiles();
    void infoOverSample();
    void exportMatchesStore();
    void exportFailures();
    void convertVersions();
    void damagedSpriteFiles_data();
    void damagedSpriteFiles();
    void checkSprites();
    void definitionsInfo();
    void projectInfo();
    void renderSprites();
    void animationsOverSample();
    void animationsGifAndRender();
    void checkSampleAndFaults();
    void soundsOverSample();
    void scriptTools();
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

    // Help goes to stdout with exit 0, even before other checks; a usage
    // error is one line on stderr with exit 2; only the bare call shows the
    // whole help there.
    const QString version = QStringLiteral("<version>"); // one line, checked by pattern below
    QTest::newRow("no arguments") << QStringList{} << 2 << QString() << "Usage: brawlforge-cli COMMAND";
    QTest::newRow("--help") << QStringList{"--help"} << 0 << "sprites convert IN.sff" << QString();
    QTest::newRow("--version") << QStringList{"--version"} << 0 << version << QString();
    QTest::newRow("export --help") << QStringList{"sprites", "export", "-h"} << 0 << "sprites.txt" << QString();
    QTest::newRow("project info --version") << QStringList{"project", "info", "--version"} << 0 << version << QString();
    QTest::newRow("help before checks") << QStringList{"info", "--help", "a", "b"} << 0 << "--json" << QString();
    QTest::newRow("unknown command") << QStringList{"frobnicate"} << 2 << QString() << "unknown command 'frobnicate'";
    QTest::newRow("unknown sprites command") << QStringList{"sprites", "melt"} << 2 << QString()
                                             << "unknown command 'sprites melt'";
    QTest::newRow("info two files") << QStringList{"info", "a", "b"} << 2 << QString() << "unexpected argument 'b'";
    QTest::newRow("flag with value") << QStringList{"info", "x", "--json=yes"} << 2 << QString() << "takes no value";
    QTest::newRow("convert bad version") << QStringList{"sprites", "convert", "a.sff", "b.sff", "--to=3.00"} << 2
                                         << QString() << "3.00";
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

void TestCli::infoOverSample()
{
    BF_REQUIRE_SAMPLE();
    const QStringList files = sampleSpriteFiles();
    QVERIFY(files.size() >= 3);
    for (const QString &path : files) {
        QMessages messages;
        QSprites store;
        store.setMessages(&messages);
        QVERIFY2(store.fromFile(path, false, true), qPrintable(path));

        const Run r = runTool({QStringLiteral("info"), path, QStringLiteral("--json")});
        EXPECT_EXIT(r, messages.issueCount() ? 1 : 0);
        QJsonParseError parseError;
        const QJsonObject o = QJsonDocument::fromJson(r.out, &parseError).object();
        QVERIFY2(parseError.error == QJsonParseError::NoError, qPrintable(path + ": " + parseError.errorString()));

        // The version as the header states it, not as the store says.
        const quint32 word = word32(readAll(path), 12);
        QCOMPARE(o.value("version").toString(), QStringLiteral("%1.%2%3").arg(word >> 24)
                                                     .arg((word >> 16) & 0xFF).arg((word >> 8) & 0xFF));
        QCOMPARE(o.value("kind").toString(), QStringLiteral("sprites"));
        QCOMPARE(o.value("spriteCount").toInt(), store.count());
        QCOMPARE(o.value("paletteCount").toInt(), store.paletteCount());
        QCOMPARE(o.value("palettes").toArray().size(), store.paletteCount());

        const QJsonArray sprites = o.value("sprites").toArray();
        QCOMPARE(sprites.size(), store.count());
        int linked = 0;
        for (int i = 0; i < store.count(); ++i) {
            const QSpriteItem &item = *store.item(i);
            const QJsonObject js = sprites.at(i).toObject();
            const QJsonObject pal = js.value("palette").toObject();
            linked += item.isLink();
            QVERIFY2(js.value("index").toInt() == i && js.value("group").toInt() == item.info.group
                         && js.value("number").toInt() == item.info.number && js.value("x").toInt() == item.info.x
                         && js.value("y").toInt() == item.info.y && js.value("width").toInt() == item.width
                         && js.value("height").toInt() == item.height
                         && js.value("link").toInt(-1) == (item.isLink() ? item.info.link : -1)
                         && (item.info.palette < store.paletteCount()
                                 ? pal.value("group").toInt() == store.paletteInfo(item.info.palette).group
                                 : js.value("palette").isNull()),
                     qPrintable(QStringLiteral("%1 sprite %2").arg(path).arg(i)));
        }
        QCOMPARE(o.value("linkedCount").toInt(), linked);
    }

    // The text form: a summary, then one line per palette and per sprite.
    const QString kfm = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.sff"));
    QSprites store;
    QVERIFY(store.fromFile(kfm, false, true));
    const Run t = runTool({QStringLiteral("info"), kfm});
    EXPECT_EXIT(t, 0);
    QVERIFY2(t.err.isEmpty(), t.err.constData()); // no progress drawn when stderr isn't a terminal
    QVERIFY(t.out.contains("Version:   2.01 (2.0.1.0)\n"));
    QVERIFY(t.out.contains(QStringLiteral("Sprites:   %1\n").arg(store.count()).toUtf8()));
    const QList<QByteArray> lines = t.out.split('\n');
    const qsizetype spritesAt = lines.indexOf("Sprites");
    QVERIFY(spritesAt > 0);
    QCOMPARE(lines.size() - spritesAt - 3, qsizetype(store.count())); // title, column heads, final newline
    const QList<QByteArray> first = lines.at(spritesAt + 2).simplified().split(' ');
    QCOMPARE(first.at(0), QByteArray("0"));
    QCOMPARE(first.at(1).toInt(), int(store.item(0)->info.group));
    QCOMPARE(first.at(2).toInt(), int(store.item(0)->info.number));
}

void TestCli::exportMatchesStore()
{
    BF_REQUIRE_SAMPLE();
    QStringList files = sampleSpriteFiles();
    QVERIFY(!files.isEmpty());
    // A version 1 file loaded as a character too: its palettes are shared.
    const QString character = TestSupport::samplePath(QStringLiteral("chars/kfm/intro.sff"));
    files << QStringLiteral("--character ") + character;

    for (const QString &entry : std::as_const(files)) {
        const bool isCharacter = entry.startsWith(QLatin1String("--character "));
        const QString path = isCharacter ? character : entry;
        QTemporaryDir out;
        QVERIFY(out.isValid());
        QMessages messages;
        QSprites store;
        store.setMessages(&messages);
        QVERIFY2(store.fromFile(path, isCharacter, true), qPrintable(path));

        QStringList args{QStringLiteral("sprites"), QStringLiteral("export"), path, out.path()};
        if (isCharacter)
            args << QStringLiteral("--character");
        const Run r = runTool(args);
        EXPECT_EXIT(r, messages.issueCount() ? 1 : 0);
        QVERIFY2(r.out.isEmpty(), r.out.constData());

        const QList<QByteArray> lines = readAll(out.filePath(QStringLiteral("sprites.txt"))).split('\n');
        QCOMPARE(lines.size(), qsizetype(store.count()) + 1);
        QVERIFY(lines.last().isEmpty());
        QStringList pngs = QDir(out.path()).entryList({QStringLiteral("*.png")}, QDir::Files);
        for (int i = 0; i < store.count(); ++i) {
            const QSpriteItem &item = *store.item(i);
            const QString where = QStringLiteral("%1 sprite %2").arg(entry).arg(i);
            const QList<QByteArray> f = lines.at(i).split('\t');
            QVERIFY2(f.size() == 9, qPrintable(where + ": " + lines.at(i)));
            QVERIFY2(f.at(0).toInt() == i && f.at(1).toInt() == item.info.group && f.at(2).toInt() == item.info.number
                         && f.at(3).toInt() == item.info.x && f.at(4).toInt() == item.info.y,
                     qPrintable(where + ": " + lines.at(i)));
            QVERIFY2(f.at(5) == (item.isLink() ? QByteArray::number(item.info.link) : QByteArray("-")),
                     qPrintable(where + ": " + lines.at(i)));
            if (item.info.palette < store.paletteCount()) {
                const QPaletteInfo pi = store.paletteInfo(item.info.palette);
                QVERIFY2(f.at(6).toInt() == pi.group && f.at(7).toInt() == pi.number, qPrintable(where));
            } else {
                QVERIFY2(f.at(6) == "-" && f.at(7) == "-", qPrintable(where));
            }

            const QImage expected = store.image(i);
            if (expected.isNull()) {
                QVERIFY2(f.at(8) == "-", qPrintable(where));
                continue;
            }
            const QString name = QStringLiteral("%1_%2-%3.png").arg(i, 5, 10, QLatin1Char('0'))
                                     .arg(item.info.group).arg(item.info.number);
            QVERIFY2(f.at(8) == name.toUtf8(), qPrintable(where + ": " + f.at(8)));
            QVERIFY2(pngs.removeOne(name), qPrintable(where + ": no " + name));
            const QImage exported(out.filePath(name), "png");
            const QString diff = imageDifference(exported, expected);
            QVERIFY2(diff.isEmpty(), qPrintable(where + ": " + diff));
        }
        QVERIFY2(pngs.isEmpty(), qPrintable(QStringLiteral("files not listed: ") + pngs.join(' ')));
    }
}

void TestCli::exportFailures()
{
    BF_REQUIRE_SAMPLE();
    const QString sff = TestSupport::samplePath(QStringLiteral("stages/stage0.sff"));
    QTemporaryDir dir;
    QVERIFY(dir.isValid());

    // OUTDIR is a file.
    const QString plain = dir.filePath(QStringLiteral("plain"));
    QVERIFY(writeAll(plain, "x"));
    Run r = runTool({QStringLiteral("sprites"), QStringLiteral("export"), sff, plain});
    EXPECT_EXIT(r, 2);
    QVERIFY2(r.err.contains("cannot create the folder"), r.err.constData());

    // A folder in the way of one PNG: the run stops with one line and exit 2.
    QSprites store;
    QVERIFY(store.fromFile(sff, false, true));
    QVERIFY(store.count() > 0);
    const QString firstName = QStringLiteral("00000_%1-%2.png").arg(store.item(0)->info.group).arg(store.item(0)->info.number);
    const QString blocked = dir.filePath(QStringLiteral("blocked"));
    QVERIFY(QDir().mkpath(blocked + QLatin1Char('/') + firstName));
    r = runTool({QStringLiteral("sprites"), QStringLiteral("export"), sff, blocked});
    EXPECT_EXIT(r, 2);
    QVERIFY2(r.err.contains("cannot write") && r.err.count('\n') == 1, r.err.constData());
    QVERIFY(!QFileInfo::exists(blocked + QStringLiteral("/sprites.txt")));

    // An earlier export is replaced file by file, never left half-written.
    const QString again = dir.filePath(QStringLiteral("again"));
    r = runTool({QStringLiteral("sprites"), QStringLiteral("export"), sff, again});
    EXPECT_EXIT(r, 0);
    const QByteArray list = readAll(again + QStringLiteral("/sprites.txt"));
    r = runTool({QStringLiteral("sprites"), QStringLiteral("export"), sff, again});
    EXPECT_EXIT(r, 0);
    QCOMPARE(readAll(again + QStringLiteral("/sprites.txt")), list);
    QCOMPARE(QDir(again).entryList(QDir::Files).size(), list.count('\n') - list.count("\t-\n") + 1);
}

void TestCli::convertVersions()
{
    BF_REQUIRE_SAMPLE();
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString source = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.sff"));
    const QByteArray sourceBytes = readAll(source);
    QSprites original;
    QVERIFY(original.fromFile(source, false, true));

    const QList<QPair<QString, quint32>> targets = {
        {QStringLiteral("1.01"), QSffVersion::V101},
        {QStringLiteral("2.00"), QSffVersion::V200},
        {QStringLiteral("2.01"), QSffVersion::V201},
        {QStringLiteral("2.0.1.0"), QSffVersion::V201},
    };
    for (const auto &[name, word] : targets) {
        const QString out = dir.filePath(QStringLiteral("kfm-%1.sff").arg(name));
        const Run r = runTool({QStringLiteral("sprites"), QStringLiteral("convert"), source, out,
                               QStringLiteral("--to"), name});
        EXPECT_EXIT(r, 0);
        QCOMPARE(word32(readAll(out), 12), word);
        QSprites converted;
        QVERIFY2(converted.fromFile(out, false, true), qPrintable(out));
        QCOMPARE(converted.count(), original.count());
        for (int i = 0; i < original.count(); ++i) {
            const QImage a = original.image(i);
            const QImage b = converted.image(i);
            QCOMPARE(b.size(), a.size());
            // Indexed sprites keep their indices and colours in every version.
            // (The 8-bit versions give colour 0 of a palette no alpha of its own.)
            if (a.format() == QImage::Format_Indexed8) {
                const QString diff = imageDifference(b, a, word == QSffVersion::V201);
                QVERIFY2(diff.isEmpty(), qPrintable(QStringLiteral("%1 sprite %2: %3").arg(name).arg(i).arg(diff)));
            }
        }
        // Converting the result again in its own version changes nothing.
        const QString twice = out + QStringLiteral(".twice.sff");
        EXPECT_EXIT(runTool({QStringLiteral("sprites"), QStringLiteral("convert"), out, twice,
                             QStringLiteral("--to=") + name}), 0);
        QCOMPARE(readAll(twice), readAll(out));
    }
    QCOMPARE(readAll(source), sourceBytes);

    // Over itself: allowed when OUT names IN, and the file is whole afterwards.
    const QString copy = dir.filePath(QStringLiteral("inplace.sff"));
    QVERIFY(writeAll(copy, sourceBytes));
    EXPECT_EXIT(runTool({QStringLiteral("sprites"), QStringLiteral("convert"), copy, copy,
                         QStringLiteral("--to"), QStringLiteral("2.00")}), 0);
    QSprites inplace;
    QVERIFY(inplace.fromFile(copy, false, true));
    QCOMPARE(inplace.version(), QSffVersion::V200);
    QCOMPARE(inplace.count(), original.count());

    // What a version can't hold is said before the file is written, and the
    // file is written all the same.
    const QString reduced = dir.filePath(QStringLiteral("num72.sff"));
    const Run lossy = runTool({QStringLiteral("sprites"), QStringLiteral("convert"),
                               TestSupport::samplePath(QStringLiteral("font/num72.sff")), reduced,
                               QStringLiteral("--to"), QStringLiteral("1.01")});
    EXPECT_EXIT(lossy, 1);
    QVERIFY2(lossy.err.contains("num72.sff(0): 22 sprites will show other colours in version 1.01: 0,48; "),
             qPrintable(lossy.err));
    QSprites lossyBack;
    QVERIFY(lossyBack.fromFile(reduced, false, true));
    QCOMPARE(lossyBack.count(), 22);

    // Targets that can't be written: one line, exit 2, and nothing created.
    const QString plain = dir.filePath(QStringLiteral("plain"));
    QVERIFY(writeAll(plain, "keep"));
    for (const QString &bad : {dir.path(), plain + QStringLiteral("/x.sff"),
                               dir.filePath(QStringLiteral("no/such/folder/x.sff"))}) {
        const Run r = runTool({QStringLiteral("sprites"), QStringLiteral("convert"), source, bad,
                               QStringLiteral("--to"), QStringLiteral("2.01")});
        EXPECT_EXIT(r, 2);
        QCOMPARE(r.err.count('\n'), 1);
    }
    QCOMPARE(readAll(plain), QByteArray("keep"));
}

void TestCli::damagedSpriteFiles_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("1.01") << QStringLiteral("data/kfm/gameover.sff");
    QTest::newRow("2.00") << QStringLiteral("stages/stage0.sff");
}

// The readers themselves are held to damage by their own tests and the fuzz
// corpora; here the tool must turn any of it into an exit code and words.
void TestCli::damagedSpriteFiles()
{
    BF_REQUIRE_SAMPLE();
    QFETCH(QString, source);
    QTemporaryDir dir;
    const QByteArray good = readAll(TestSupport::samplePath(source));
    QVERIFY2(good.size() > 600, qPrintable(source));
    struct Damaged
    {
        QString name;
        QByteArray bytes;
        int code; // -1: 1 or 2 will do
    };
    QList<Damaged> cases;
    for (qsizetype cut : {qsizetype(40), qsizetype(530), good.size() / 2})
        cases.append({QStringLiteral("cut at %1").arg(cut), good.left(cut), -1});
    if (word32(good, 12) == QSffVersion::V101) {
        QByteArray forward = good; // the first sprite linked to a later one
        putWord32(forward, 512 + 4, 0);
        putWord16(forward, 512 + 16, 5);
        cases.append({QStringLiteral("forward link"), forward, 2});
    } else {
        const quint32 table = word32(good, 36);
        QByteArray big = good;
        putWord32(big, table + 20, 0x7FFFFFFF);
        putWord16(big, table + 4, 0xFFFF);
        putWord16(big, table + 6, 0xFFFF);
        cases.append({QStringLiteral("huge sprite"), big, 1});
        QByteArray cycle = good; // two sprites linked to each other
        putWord32(cycle, table + 20, 0);
        putWord16(cycle, table + 12, 1);
        putWord32(cycle, table + 28 + 20, 0);
        putWord16(cycle, table + 28 + 12, 0);
        cases.append({QStringLiteral("link cycle"), cycle, 2});
    }
    for (qsizetype n = 0; n < cases.size(); ++n) {
        const Damaged &c = cases.at(n);
        const QString path = dir.filePath(QStringLiteral("damaged%1.sff").arg(n));
        QVERIFY(writeAll(path, c.bytes));
        const QString out = dir.filePath(QStringLiteral("out%1").arg(n));
        const Run info = runTool({QStringLiteral("info"), path, QStringLiteral("--json")});
        const Run exported = runTool({QStringLiteral("sprites"), QStringLiteral("export"), path, out});
        const Run converted = runTool({QStringLiteral("sprites"), QStringLiteral("convert"), path,
                                       out + QStringLiteral(".sff"), QStringLiteral("--to"), QStringLiteral("2.01")});
        const Run checked = runTool({QStringLiteral("sprites"), QStringLiteral("check"), path});
        QVERIFY2((checked.code == 2) == (info.code == 2), qPrintable(c.name + "\n" + describe(checked)));
        for (const Run *r : {&info, &exported, &converted, &checked}) {
            QVERIFY2(!r->crashed && r->code >= 0 && r->code <= 2, qPrintable(c.name + "\n" + describe(*r)));
            // Refused as a whole: a line that says so.
            QVERIFY2(r->code != 2 || r->err.contains("brawlforge-cli: "), qPrintable(describe(*r)));
        }
        // What info says of the file, export says too; convert may refuse more.
        QVERIFY2((exported.code == 2) == (info.code == 2), qPrintable(c.name + "\n" + describe(exported)));
        QVERIFY2(info.code != 2 || converted.code == 2, qPrintable(c.name + "\n" + describe(converted)));
        QVERIFY2(c.code < 0 || info.code == c.code, qPrintable(c.name + "\n" + describe(info)));
        QCOMPARE(QFileInfo::exists(out + QStringLiteral("/sprites.txt")), info.code != 2);
        if (c.name == QLatin1String("huge sprite"))
            QVERIFY2(exported.err.contains("claims 65535x65535 pixels"), qPrintable(describe(exported)));
    }
}

// Every sample decodes whole; a copy cut inside its last sprite names that
// sprite, and the other files of the same call still get their summary.
void TestCli::checkSprites()
{
    BF_REQUIRE_SAMPLE();
    const QStringList files = sampleSpriteFiles();
    QVERIFY(!files.isEmpty());
    const Run all = runTool(QStringList{QStringLiteral("sprites"), QStringLiteral("check")} + files);
    EXPECT_EXIT(all, 0);
    QCOMPARE(all.out.count("all intact\n"), files.size());
    QVERIFY2(all.err.isEmpty(), all.err.constData());

    QTemporaryDir dir;
    for (const QString &source : {QStringLiteral("data/fight.sff"), QStringLiteral("stages/stage0-720.sff")}) {
        const QByteArray good = readAll(TestSupport::samplePath(source));
        const QString cut = dir.filePath(QFileInfo(source).fileName());
        QVERIFY(writeAll(cut, good.left(good.size() - 1000)));
        const QStringList args{QStringLiteral("sprites"), QStringLiteral("check"), cut,
                               TestSupport::samplePath(QStringLiteral("font/f-4x6.sff")), QStringLiteral("--json")};
        const Run json = runTool(args);
        EXPECT_EXIT(json, 1);
        const QJsonArray reports = QJsonDocument::fromJson(json.out).object().value("files").toArray();
        QCOMPARE(reports.size(), 2);
        const QJsonArray broken = reports.at(0).toObject().value("broken").toArray();
        QVERIFY2(!broken.isEmpty(), json.out.constData());
        QVERIFY(reports.at(1).toObject().value("broken").toArray().isEmpty());
        const Run text = runTool(args.mid(0, 4));
        EXPECT_EXIT(text, 1);
        for (const QJsonValue &b : broken)
            QVERIFY2(text.err.contains(QStringLiteral("): sprite %1 (").arg(b.toObject().value("index").toInt()).toUtf8()),
                     text.err.constData());
        QVERIFY2(text.out.contains(QStringLiteral("%1 broken").arg(broken.size()).toUtf8()), text.out.constData());
    }
}

void TestCli::definitionsInfo()
{
    // What the model makes of every DEF is the project tests' business; here
    // the two forms the tool shows it in.
    BF_REQUIRE_SAMPLE();
    const QString def = TestSupport::samplePath(QStringLiteral("chars/kfm720/kfm720.def"));
    const Run r = runTool({QStringLiteral("info"), def, QStringLiteral("--json")});
    EXPECT_EXIT(r, 0);
    const QJsonObject o = QJsonDocument::fromJson(r.out).object();
    QCOMPARE(o.value("kind").toString(), QStringLiteral("definitions"));
    QCOMPARE(o.value("type").toString(), QStringLiteral("Character"));
    QCOMPARE(o.value("localCoord").toObject().value("width").toInt(), 1280);
    for (const QJsonValue &v : o.value("files").toArray()) {
        const QJsonObject f = v.toObject();
        QCOMPARE(f.value("exists").toBool(), QFileInfo(f.value("path").toString()).isFile());
    }

    // The character's files: found ones and the common states the engine keeps elsewhere.
    const Run t = runTool({QStringLiteral("info"), TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def"))});
    EXPECT_EXIT(t, 0);
    for (const char *line : {"Type:      Character\n", "Version:   1.0 (1.0.0.0)\n", "Local:     320x240\n",
                             "  sprites     found   kfm.sff\n", "  states      missing common1.cns\n"})
        QVERIFY2(t.out.contains(line), qPrintable(QString::fromUtf8(t.out) + "\nlacks: " + line));
    QCOMPARE(t.out.count("kfm.cns\n"), 1); // named twice in the DEF, listed once
}

void TestCli::projectInfo()
{
    BF_REQUIRE_SAMPLE();
    const QString def = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def"));
    QSprites sprites;
    QVERIFY(sprites.fromFile(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.sff")), true, true));

    Run r = runTool({QStringLiteral("project"), QStringLiteral("info"), def, QStringLiteral("--json")});
    QVERIFY2(!r.crashed && (r.code == 0 || r.code == 1), qPrintable(describe(r)));
    QJsonObject o = QJsonDocument::fromJson(r.out).object();
    QCOMPARE(o.value("type").toString(), QStringLiteral("Character"));
    QCOMPARE(o.value("version").toString(), QStringLiteral("1.0"));
    QHash<QString, QJsonObject> slotsByName;
    for (const QJsonValue &v : o.value("slots").toArray())
        slotsByName.insert(v.toObject().value("slot").toString(), v.toObject());
    QCOMPARE(slotsByName.value("sprites").value("count").toInt(), sprites.count());
    QVERIFY(slotsByName.value("sprites").value("file").toString().endsWith(QLatin1String("kfm.sff")));
    QVERIFY(slotsByName.value("commands").value("count").toInt() > 10);
    QVERIFY(slotsByName.value("commands").value("file").toString().endsWith(QLatin1String("kfm.cmd")));
    QVERIFY(slotsByName.contains("states") && slotsByName.value("states").value("count").toInt() > 10);
    // Every issue of the load is listed; errors and warnings also go to stderr.
    const QJsonArray issues = o.value("issues").toArray();
    QVERIFY(!issues.isEmpty());
    QVERIFY(issues.first().toObject().value("text").toString().startsWith(QLatin1String("Open project - ")));
    int serious = 0;
    for (const QJsonValue &v : issues) {
        if (v.toObject().value("kind").toString() != QLatin1String("information")) {
            ++serious;
            QVERIFY2(r.err.contains(v.toObject().value("text").toString().toUtf8()), r.err.constData());
        }
    }
    QCOMPARE(r.code, serious ? 1 : 0);

    // A project whose sprite file can't be read is still listed, but the run
    // fails, naming the file and the reason.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString folder = dir.path();
    QVERIFY(QFile::copy(def, folder + QStringLiteral("/kfm.def")));
    QByteArray sff = readAll(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.sff")));
    putWord32(sff, 12, 0x03000000); // a version no reader knows
    QVERIFY(writeAll(folder + QStringLiteral("/kfm.sff"), sff));
    r = runTool({QStringLiteral("project"), QStringLiteral("info"), folder + QStringLiteral("/kfm.def")});
    EXPECT_EXIT(r, 2);
    QVERIFY2(r.err.contains("kfm.sff(0): "), r.err.constData());
    QVERIFY2(r.err.contains("kfm.sff: The sprites can't be read: SFF version '3.0.0.0' not supported"), r.err.constData());
    QVERIFY(r.out.contains("Type:      Character\n"));
    QVERIFY(r.out.contains("\nIssues\n"));
    sff.replace(0, 11, "NotASprite!");
    QVERIFY(writeAll(folder + QStringLiteral("/kfm.sff"), sff));
    r = runTool({QStringLiteral("project"), QStringLiteral("info"), folder + QStringLiteral("/kfm.def")});
    EXPECT_EXIT(r, 2);
    QVERIFY2(r.err.contains("kfm.sff: The sprites can't be read: not a sprite file (SFF)"), r.err.constData());

    // Files that are no project at all never crash it.
    QByteArray noise(4096, '\0');
    QRandomGenerator random(7);
    for (char &c : noise)
        c = char(random.bounded(256));
    const QString noisy = folder + QStringLiteral("/noise.def");
    QVERIFY(writeAll(noisy, noise));
    const QString brackets = folder + QStringLiteral("/brackets.def");
    QVERIFY(writeAll(brackets, "[[[\n[files\nsprite = = =\n[info]\nmugenversion=9.9.9.9.9\nlocalcoord=,\n"
                               "[bgdef]\nspr=stages\\\\\n[files]\npal1=../../../../etc/passwd\nst=\nst=\n"));
    for (const QString &path : {noisy, brackets}) {
        for (const QStringList &args : {QStringList{QStringLiteral("project"), QStringLiteral("info"), path},
                                        QStringList{QStringLiteral("info"), path, QStringLiteral("--json")}}) {
            r = runTool(args);
            QVERIFY2(!r.crashed && r.code >= 0 && r.code <= 2, qPrintable(describe(r)));
        }
    }
}

void TestCli::renderSprites()
{
    BF_REQUIRE_SAMPLE();
    const QString sff = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.sff"));
    const QString def = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def"));
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QSprites store;
    QVERIFY(store.fromFile(sff, true, true));
    const QSpriteItem *stand = store.item(store.findSprite(0, 0, 0));
    const QSize size(stand->width, stand->height);

    // The sprite alone: its own size times the zoom, with transparency.
    const QString alone = dir.filePath(QStringLiteral("alone.png"));
    Run r = runTool({QStringLiteral("sprites"), QStringLiteral("render"), sff, QStringLiteral("0,0"), alone});
    EXPECT_EXIT(r, 0);
    QVERIFY2(r.err.isEmpty(), r.err.constData());
    QImage picture(alone);
    QCOMPARE(picture.size(), size);
    QVERIFY(picture.hasAlphaChannel());
    QCOMPARE(qAlpha(picture.pixel(0, 0)), 0);
    r = runTool({QStringLiteral("sprites"), QStringLiteral("render"), def, QStringLiteral("0,0"), alone,
                 QStringLiteral("--zoom"), QStringLiteral("2"), QStringLiteral("--palette"), QStringLiteral("1,1")});
    EXPECT_EXIT(r, 0);
    QCOMPARE(QImage(alone).size(), size * 2);

    // On the stage: background everywhere, larger than the sprite.
    const QString staged = dir.filePath(QStringLiteral("stage.png"));
    r = runTool({QStringLiteral("sprites"), QStringLiteral("render"), def, QStringLiteral("0,0"), staged, QStringLiteral("--stage")});
    EXPECT_EXIT(r, 0);
    picture = QImage(staged);
    QVERIFY(picture.width() >= 320 && picture.height() > size.height());
    QCOMPARE(qAlpha(picture.pixel(picture.width() - 1, picture.height() - 1)), 255);

    // Failures leave the output as it was.
    const QByteArray before = readAll(alone);
    const QList<QStringList> bad = {
        {sff, QStringLiteral("9999,9"), alone},
        {sff, QStringLiteral("0,0"), alone, QStringLiteral("--palette"), QStringLiteral("77,77")},
        {sff, QStringLiteral("0,0"), alone, QStringLiteral("--zoom"), QStringLiteral("9")},
        {sff, QStringLiteral("zero"), alone},
    };
    for (const QStringList &args : bad) {
        r = runTool(QStringList{QStringLiteral("sprites"), QStringLiteral("render")} + args);
        EXPECT_EXIT(r, 2);
        QVERIFY2(r.err.count('\n') <= 2 && !r.err.isEmpty(), r.err.constData());
    }
    QCOMPARE(readAll(alone), before);
}

// The actions of `animations info --json`, or an empty array with the failure.
QJsonArray animationActions(const QString &path, Run *run = nullptr)
{
    const Run r = runTool({QStringLiteral("animations"), QStringLiteral("info"), path, QStringLiteral("--json")});
    if (run)
        *run = r;
    return QJsonDocument::fromJson(r.out).object().value(QStringLiteral("actions")).toArray();
}

void TestCli::animationsOverSample()
{
    BF_REQUIRE_SAMPLE();
    // Every AIR, and every DEF that holds its own actions (stages, storyboards).
    QStringList files;
    static const QRegularExpression ownActions(QStringLiteral("^\\s*\\[\\s*(bgdef|scenedef)\\s*\\]"),
                                               QRegularExpression::CaseInsensitiveOption
                                                   | QRegularExpression::MultilineOption);
    QDirIterator it(TestSupport::sampleDir(), {QStringLiteral("*.air"), QStringLiteral("*.def")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (path.endsWith(QLatin1String(".air")) || ownActions.match(QString::fromLatin1(readAll(path))).hasMatch())
            files << path;
    }
    files.sort();
    QTemporaryDir dir;
    int airs = 0;
    int defs = 0;
    for (const QString &path : std::as_const(files)) {
        Run r;
        const QJsonArray original = animationActions(path, &r);
        QVERIFY2(!r.crashed && (r.code == 0 || r.code == 1), qPrintable(describe(r)));
        const QString suffix = QFileInfo(path).suffix();
        const QString once = dir.filePath(QStringLiteral("once.") + suffix);
        const QString twice = dir.filePath(QStringLiteral("twice.") + suffix);
        EXPECT_EXIT(runTool({QStringLiteral("animations"), QStringLiteral("convert"), path, once}), r.code);
        QVERIFY2(animationActions(once) == original, qPrintable(path));
        EXPECT_EXIT(runTool({QStringLiteral("animations"), QStringLiteral("convert"), once, twice}), 0);
        QVERIFY2(readAll(twice) == readAll(once), qPrintable(path));
        // A DEF's actions also make an AIR of their own.
        if (suffix == QLatin1String("def")) {
            const QString air = dir.filePath(QStringLiteral("actions.air"));
            EXPECT_EXIT(runTool({QStringLiteral("animations"), QStringLiteral("convert"), path, air}), r.code);
            QVERIFY2(animationActions(air) == original, qPrintable(path));
        }
        ++(suffix == QLatin1String("air") ? airs : defs);
    }
    QVERIFY(airs >= 3 && defs >= 9);
    qInfo("%d AIR files and %d stage and storyboard DEFs: converted, read again, converted twice", airs, defs);

    // The documented shape, on the engine's own character.
    const QString kfm = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.air"));
    Run r;
    const QJsonArray actions = animationActions(kfm, &r);
    EXPECT_EXIT(r, 0);
    const QJsonObject doc = QJsonDocument::fromJson(r.out).object();
    QCOMPARE(doc.keys(), (QStringList{"actions", "warnings"}));
    QVERIFY(doc.value("warnings").toArray().isEmpty());
    QCOMPARE(actions.size(), 117);
    const QJsonObject stand = actions.first().toObject();
    QCOMPARE(stand.keys(), (QStringList{"frames", "loopstart", "name", "number"}));
    QCOMPARE(stand.value("name").toString(), QStringLiteral("Standing Animation"));
    QVERIFY(stand.value("loopstart").isNull());
    const QJsonObject first = stand.value("frames").toArray().first().toObject();
    QCOMPARE(first.keys(), (QStringList{"angle", "clsn1", "clsn2", "flip", "group", "number", "time", "trans", "x",
                                        "xscale", "y", "yscale"}));
    QCOMPARE(QJsonDocument(first.value("clsn2").toArray()).toJson(QJsonDocument::Compact),
             QByteArray("[[-13,0,16,-79],[5,-79,-7,-93]]"));
    QVERIFY(first.value("xscale").isNull() && first.value("flip").toString().isEmpty());
    // 1020: "Clsn1: 1" over a "Clsn2[0]" line is an attack box, as the engine reads it.
    for (const QJsonValue &v : actions) {
        if (v.toObject().value("number").toInt() == 1020) {
            const QJsonArray frames = v.toObject().value("frames").toArray();
            QCOMPARE(QJsonDocument(frames.at(5).toObject().value("clsn1").toArray()).toJson(QJsonDocument::Compact),
                     QByteArray("[[66,-66,9,-44]]"));
            QCOMPARE(frames.at(5).toObject().value("clsn2").toArray().size(), 4); // the default in force
        }
    }
    // The project counts them too.
    r = runTool({QStringLiteral("project"), QStringLiteral("info"),
                 TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def")), QStringLiteral("--json")});
    bool counted = false;
    for (const QJsonValue &v : QJsonDocument::fromJson(r.out).object().value("slots").toArray())
        counted = counted || (v.toObject().value("slot") == QLatin1String("animations")
                              && v.toObject().value("count").toInt() == 117);
    QVERIFY2(counted, r.out.constData());
    // A character's DEF stands for its AIR, which it can't be converted in place of.
    QCOMPARE(animationActions(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def"))), actions);
    r = runTool({QStringLiteral("animations"), QStringLiteral("convert"),
                 TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def")), dir.filePath(QStringLiteral("x.air"))});
    EXPECT_EXIT(r, 2);
    QVERIFY(r.err.contains("convert that file"));

    // Damage is reported with its line, never a crash; a failed write leaves the old file.
    const QString bad = dir.filePath(QStringLiteral("bad.air"));
    QByteArray damage("[Begin Action 1]\n1,2, 3,4\n");
    damage.append('\0').append("\xff\xfe garbage\n");
    QVERIFY(writeAll(bad, damage));
    const QJsonArray damaged = animationActions(bad, &r);
    EXPECT_EXIT(r, 1);
    QCOMPARE(damaged.size(), 1);
    QVERIFY2(r.err.contains("bad.air(2): The line has no time"), r.err.constData());
    const QJsonObject warning = QJsonDocument::fromJson(r.out).object().value("warnings").toArray().first().toObject();
    QCOMPARE(warning.keys(), (QStringList{"line", "text"}));
    QVERIFY(writeAll(dir.filePath(QStringLiteral("keep.air")), "old"));
    EXPECT_EXIT(runTool({QStringLiteral("animations"), QStringLiteral("convert"), bad,
                         dir.filePath(QStringLiteral("missing/out.air"))}), 2);
    EXPECT_EXIT(runTool({QStringLiteral("animations"), QStringLiteral("convert"), dir.filePath(QStringLiteral("none.air")),
                         dir.filePath(QStringLiteral("keep.air"))}), 2);
    QCOMPARE(readAll(dir.filePath(QStringLiteral("keep.air"))), QByteArray("old"));
    EXPECT_EXIT(runTool({QStringLiteral("animations")}), 2);
    EXPECT_EXIT(runTool({QStringLiteral("animations"), QStringLiteral("info"), QStringLiteral("--help")}), 0);
}

void TestCli::animationsGifAndRender()
{
    BF_REQUIRE_SAMPLE();
    const QString def = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def"));
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // The stand as a GIF: one palette, so one global table; kfm's stand has 15 frames.
    const QString gif = dir.filePath(QStringLiteral("stand.gif"));
    Run r = runTool({QStringLiteral("animations"), QStringLiteral("gif"), def, QStringLiteral("0"), gif});
    QVERIFY2(r.code == 0 || r.code == 1, r.err.constData());
    const QByteArray bytes = readAll(gif);
    QVERIFY(bytes.startsWith("GIF89a"));
    QCOMPARE(quint8(bytes.at(10)), quint8(0xF7));
    QCOMPARE(bytes.back(), char(0x3B));
    QVERIFY(bytes.count("\x21\xF9\x04\x09") >= 10);

    // A frame on the stage, with and without its boxes.
    const QString plain = dir.filePath(QStringLiteral("plain.png"));
    const QString boxed = dir.filePath(QStringLiteral("boxed.png"));
    r = runTool({QStringLiteral("animations"), QStringLiteral("render"), def, QStringLiteral("0"), plain,
                 QStringLiteral("--frame"), QStringLiteral("2")});
    QVERIFY2(r.code == 0 || r.code == 1, r.err.constData());
    r = runTool({QStringLiteral("animations"), QStringLiteral("render"), def, QStringLiteral("0"), boxed,
                 QStringLiteral("--frame"), QStringLiteral("2"), QStringLiteral("--boxes")});
    QVERIFY2(r.code == 0 || r.code == 1, r.err.constData());
    const QImage a(plain), b(boxed);
    QVERIFY(!a.isNull() && a.size() == b.size());
    QVERIFY(a != b);

    // Failures: no such action, frame or file; the output stays as it was.
    const QList<QStringList> bad = {
        {QStringLiteral("gif"), def, QStringLiteral("424242"), gif},
        {QStringLiteral("gif"), def, QStringLiteral("stand"), gif},
        {QStringLiteral("gif"), dir.filePath(QStringLiteral("none.def")), QStringLiteral("0"), gif},
        {QStringLiteral("render"), def, QStringLiteral("0"), plain, QStringLiteral("--frame"), QStringLiteral("99")},
        {QStringLiteral("render"), def, QStringLiteral("0"), dir.filePath(QStringLiteral("missing/x.png"))},
    };
    const QByteArray kept = readAll(plain);
    for (const QStringList &args : bad) {
        r = runTool(QStringList{QStringLiteral("animations")} + args);
        EXPECT_EXIT(r, 2);
        QVERIFY2(!r.err.isEmpty(), qPrintable(args.join(QLatin1Char(' '))));
    }
    QCOMPARE(readAll(gif), bytes);
    QCOMPARE(readAll(plain), kept);
}

void TestCli::checkSampleAndFaults()
{
    BF_REQUIRE_SAMPLE();
    // Every text file of the engine's sample: warnings at most.
    QStringList files{QStringLiteral("check")};
    QDirIterator it(TestSupport::sampleDir(), {QStringLiteral("*.def"), QStringLiteral("*.cns"), QStringLiteral("*.cmd"),
                                               QStringLiteral("*.air"), QStringLiteral("*.st")},
                    QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    QVERIFY(files.size() > 40);
    Run r = runTool(files);
    EXPECT_EXIT(r, 0);
    QVERIFY2(!r.out.contains(": error: "), r.out.constData());

    // A character's DEF stands for its files, checked with its engine version.
    r = runTool({QStringLiteral("check"), TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def")), QStringLiteral("--json")});
    EXPECT_EXIT(r, 0);
    const QJsonObject o = QJsonDocument::fromJson(r.out).object();
    QCOMPARE(o.value(QStringLiteral("errors")).toInt(), 0);
    const QJsonArray list = o.value(QStringLiteral("issues")).toArray();
    const auto has = [&list](const QString &file, int line, const QString &text) {
        return std::any_of(list.begin(), list.end(), [&](const QJsonValue &v) {
            const QJsonObject i = v.toObject();
            return i.value(QStringLiteral("file")).toString().endsWith(file) && i.value(QStringLiteral("line")).toInt() == line
                   && i.value(QStringLiteral("kind")).toString() == QLatin1String("warning")
                   && i.value(QStringLiteral("text")).toString() == text;
        });
    };
    QVERIFY(has(QStringLiteral("kfm.cns"), 25, QStringLiteral("Parameter deprecated in the M.U.G.E.N 1.0")));
    QVERIFY(has(QStringLiteral("common1.cns"), 372, QStringLiteral("State controller deprecated in the M.U.G.E.N 1.0")));

    // Faults: placed by line and columns from 1, exit code 1.
    QTemporaryDir dir;
    const QString bad = dir.filePath(QStringLiteral("bad.cns"));
    QVERIFY(writeAll(bad, "[Statedef 200]\r\n[State 200, 1]\r\ntype = ChangeState\r\ntrigger1 = tme = 0\r\nvalue = 0\r\n"));
    r = runTool({QStringLiteral("check"), bad});
    EXPECT_EXIT(r, 1);
    QVERIFY2(r.out.contains("bad.cns(4:12-14): error: Unknown trigger 'tme'"), r.out.constData());
    EXPECT_EXIT(runTool({QStringLiteral("check"), bad, QStringLiteral("--mugen-version"), QStringLiteral("2.0")}), 2);
    EXPECT_EXIT(runTool({QStringLiteral("check"), dir.filePath(QStringLiteral("missing.cns"))}), 2);
}

// Every sample SND: its info agrees with the store, an export packs back into
// a file of the same sounds byte for byte, and packing is repeatable; damage
// and missing samples are reported, never a crash.
void TestCli::soundsOverSample()
{
    BF_REQUIRE_SAMPLE();
    QTemporaryDir dir;
    QDirIterator it(TestSupport::sampleDir(), {QStringLiteral("*.snd")}, QDir::Files, QDirIterator::Subdirectories);
    int files = 0;
    while (it.hasNext()) {
        const QString snd = it.next();
        QSounds store;
        QVERIFY(store.load(snd, false));
        Run r = runTool({QStringLiteral("sounds"), QStringLiteral("info"), snd, QStringLiteral("--json")});
        EXPECT_EXIT(r, 0);
        const QJsonArray list = QJsonDocument::fromJson(r.out).object().value("sounds").toArray();
        QCOMPARE(list.size(), store.count());
        const QJsonObject first = list.first().toObject();
        QCOMPARE(first.value("length").toInt(), store.sample(0).size());
        QCOMPARE(first.value("rate").toInt(), int(store.record(0).sampleRate));

        const QString out = dir.filePath(QStringLiteral("x%1").arg(files++));
        EXPECT_EXIT(runTool({QStringLiteral("sounds"), QStringLiteral("export"), snd, out}), 0);
        const QString def = out + QLatin1Char('/') + QFileInfo(snd).completeBaseName() + QStringLiteral(".def");
        for (const QString &source : {def, out}) {
            const QString a = out + QStringLiteral("/a.snd");
            const QString b = out + QStringLiteral("/b.snd");
            EXPECT_EXIT(runTool({QStringLiteral("sounds"), QStringLiteral("pack"), source, a}), 0);
            EXPECT_EXIT(runTool({QStringLiteral("sounds"), QStringLiteral("pack"), source, b}), 0);
            QCOMPARE(readAll(a), readAll(b));
            QSounds back;
            QVERIFY(back.load(a, false));
            QCOMPARE(back.count(), store.count());
            for (int i = 0; i < store.count(); ++i) {
                QCOMPARE(back.record(i).group, store.record(i).group);
                QCOMPARE(back.record(i).number, store.record(i).number);
                QVERIFY(back.sample(i) == store.sample(i));
            }
        }
    }
    QVERIFY(files >= 4);

    // A character's DEF stands for its SND; the text lists every sound.
    Run r = runTool({QStringLiteral("sounds"), QStringLiteral("info"), TestSupport::samplePath("chars/kfm/kfm.def")});
    EXPECT_EXIT(r, 0);
    QVERIFY(r.out.contains("Sounds: 12\n"));

    // Damage: a count the file can't hold is a warning; a lost WAV too.
    const QString bad = dir.filePath(QStringLiteral("bad.snd"));
    QVERIFY(writeAll(bad, TestSupport::makeSnd({{TestSupport::makeWav(1, 8000, 8, 10), 1, 2}}, QByteArray(4, 0), 5000000)));
    r = runTool({QStringLiteral("sounds"), QStringLiteral("info"), bad});
    EXPECT_EXIT(r, 1);
    QVERIFY2(r.err.contains("bad.snd(0): "), r.err.constData());
    QVERIFY(writeAll(dir.filePath(QStringLiteral("ok.wav")), TestSupport::makeWav(1, 8000, 8, 10)));
    QVERIFY(writeAll(dir.filePath(QStringLiteral("lost.def")), "lost\nnone.wav\n1\n1\nok.wav\n0\n0\n"));
    r = runTool({QStringLiteral("sounds"), QStringLiteral("pack"), dir.filePath(QStringLiteral("lost.def")),
                 dir.filePath(QStringLiteral("lost.snd"))});
    EXPECT_EXIT(r, 1);
    QVERIFY(r.err.contains("none.wav"));
    EXPECT_EXIT(runTool({QStringLiteral("sounds"), QStringLiteral("pack"), dir.filePath(QStringLiteral("nothing")),
                         dir.filePath(QStringLiteral("n.snd"))}), 2);
    EXPECT_EXIT(runTool({QStringLiteral("sounds"), QStringLiteral("info"), TestSupport::samplePath("chars/kfm/kfm.sff")}), 2);
}


// The shipped tool scripts on the sample character, as the Tools menu would
// run them; nothing of the project is written unless the script writes.
void TestCli::scriptTools()
{
    BF_REQUIRE_SAMPLE();
    const QString def = TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.def"));
    const QByteArray cmd = readAll(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.cmd")));
    const QString tools = QCoreApplication::applicationDirPath() + QStringLiteral("/scripts/tool/");
    auto script = [&](const QString &tool, const QStringList &args = {}) {
        Run r = runTool(QStringList{"script", tools + tool + ".lua", "--project", def} + args);
        [&] { QVERIFY2(!r.crashed, r.err.constData()); }();
        return r;
    };
    Run r = script("Sprites/List unused sprites");
    QCOMPARE(r.code, 0);
    QVERIFY(r.out.startsWith("Unused sprite ") && r.out.endsWith("\n39 of 281 sprites are unused\n"));
    QCOMPARE(script("Animations/Actions with missing sprites").out,
             QByteArray("0 frames in 0 actions show a missing sprite\n"));
    QCOMPARE(script("Code/Insert header comment").out, QByteArray("Header added to kfm.cmd\n"));
    QCOMPARE(readAll(TestSupport::samplePath(QStringLiteral("chars/kfm/kfm.cmd"))), cmd);

    QTemporaryDir dir;
    const QString out = dir.filePath("renumbered.sff");
    r = script("Sprites/Renumber a group", {"--", "5000", "7000", out});
    QCOMPARE(r.out, QByteArray("5 sprites moved from group 5000 to group 7000\nWritten to " + out.toUtf8() + "\n"));
    QSprites sprites;
    QVERIFY(sprites.fromFile(out, true, false));
    QList<int> groups;
    for (int i = 0; i < sprites.count(); ++i)
        groups << sprites.item(i)->info.group;
    QCOMPARE(groups.count(7000), 5);
    QCOMPARE(groups.count(5000), 0);

    // Without its numbers the tool would ask in a dialog, which a script run refuses.
    r = script("Sprites/Renumber a group");
    QCOMPARE(r.code, 2);
    QVERIFY(r.err.contains("dialogs are not available"));
    r = runTool({"script", dir.filePath("none.lua")});
    QCOMPARE(r.code, 2);
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
