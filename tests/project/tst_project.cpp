#include <QtTest>

#include "testsupport.h"

#include "project/qproject.h"
#include "projectstate.h"
#include "wavsupport.h"
#include "sprites/qpalettefile.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextDocument>

using TestSupport::readAll;
using TestSupport::writeAll;

namespace {



QByteArray act(quint8 first)
{
    QByteArray b(768, '\0');
    for (int i = 0; i < 768; ++i)
        b[i] = char(quint8(first + i));
    return b;
}

// A copy of the fixture character (tests/fixtures/hero): the usual pieces, some
// missing, in the layout of the engine's own sample (CR LF, comments after
// values); `extraFiles` go at the end of its [Files].
QString makeCharacter(const QString &dir, const QByteArray &extraFiles = QByteArray())
{
    const QString from = TestSupport::fixturesDir() + QStringLiteral("/hero/");
    for (const char *name : {"hero.cmd", "hero.cns", "states/walk.st", "hero.air", "hero.snd", "hero1.act",
                                "broken.act", "pals/hero4.act"})
        writeAll(dir + QLatin1Char('/') + QLatin1String(name), readAll(from + QLatin1String(name)));
    const QString def = dir + QStringLiteral("/hero.def");
    writeAll(def, readAll(from + QStringLiteral("hero.def")).replace("\r\n[Arcade]", extraFiles + "\r\n[Arcade]"));
    return def;
}

// A 32-colour pattern whose rows repeat shifted: what a match search packs well.
QImage pattern(int size, int shift)
{
    QImage img(size, size, QImage::Format_Indexed8);
    QList<QRgb> table(256, qRgb(0, 0, 0));
    for (int c = 0; c < 32; ++c)
        table[c] = qRgb(c * 8, 255 - c * 8, 128);
    img.setColorTable(table);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            img.scanLine(y)[x] = uchar((x / 3 + y * shift) % 31 + 1);
    return img;
}

// The sprite file makeCharacter() names: three sprites on one 32-colour palette.
void makeSprites(const QString &path)
{
    QSprites s;
    s.addPalette(QRGBPal::fromColorTable(pattern(1, 1).colorTable()), false, 9, 1);
    QPaletteInfo info = s.paletteInfo(0);
    info.colorCount = 32;
    s.setPaletteInfo(0, info);
    for (int i = 0; i < 3; ++i) {
        s.add();
        QVERIFY(s.changeImage(i, pattern(8 + i, i + 1), 2, false, 9, 1));
        QSpriteInfo id = s.item(i)->info;
        id.number = quint16(i);
        s.setInfo(i, id);
    }
    QVERIFY(s.toFile(path, true, QSffVersion::V201, true, false));
}

bool hasFailure(QProject &p, const QString &file, const QString &reason)
{
    for (const QString &f : p.failures())
        if (f.contains(file) && f.contains(reason, Qt::CaseInsensitive))
            return true;
    return false;
}

bool hasMessage(QProject &p, int kind, const QString &part)
{
    for (const QMessages::Message &m : p.messages()->messages())
        if (m.kind == kind && m.text.contains(part))
            return true;
    return false;
}

void setDef(QProject &p, const QString &text)
{
    p.definitions()->setText(text);
    p.definitions()->updateHierarchy();
}

} // namespace

class TestProject : public QObject
{
    Q_OBJECT

private slots:
    // The sound slot: read with the project, copied as it was while
    // unedited, written from memory once edited; copies and backups change
    // nothing in the store, a failed write reaches the failures.
    void soundSlot()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        const QString snd = dir.filePath(QStringLiteral("hero.snd"));
        const QByteArray original = TestSupport::makeSnd({{TestSupport::makeWav(1, 8000, 8, 100, 1, 1), 0, 0},
                                                          {TestSupport::makeWav(2, 11025, 16, 30, 1, 2), 5, 1}},
                                                         QByteArray("\x04\0\0\0", 4));
        QVERIFY(writeAll(snd, original));
        QProject p;
        QVERIFY(p.fromFile(def, 0, false, false));
        QCOMPARE(p.sounds()->count(), 2);
        QCOMPARE(p.sounds()->path(), snd);
        QVERIFY(!p.sounds()->isModified());

        p.sounds()->add(9, 9, TestSupport::makeWav(1, 8000, 8, 10));
        const TestSupport::ProjectState edited = TestSupport::ProjectState::of(p);
        QVERIFY(p.toTemporary(dir.filePath(QStringLiteral("test")), QStringLiteral("bf3_hero")));
        QVERIFY(p.backup());
        BF_VERIFY_UNCHANGED(edited, p, false, "test copy and backup");
        QCOMPARE(readAll(snd), original);
        QSounds copy;
        QVERIFY(copy.load(p.lastBackupFolder() + QStringLiteral("hero.snd"), false));
        QCOMPARE(copy.count(), 3);

        // A Save As into a folder where the sound file can't be written.
        const QString blocked = dir.filePath(QStringLiteral("blocked"));
        QVERIFY(QDir().mkpath(blocked + QStringLiteral("/hero.snd/inside")));
        QVERIFY(!p.saveAs(blocked + QStringLiteral("/hero.def"), false));
        QVERIFY(p.failures().join(QLatin1Char('\n')).contains(QStringLiteral("hero.snd")));
        QVERIFY(p.sounds()->isModified());
        QCOMPARE(p.sounds()->count(), 3);

        // The real save writes what the store holds and binds nothing else.
        QVERIFY(p.fromFile(def, 0, false, false));
        p.sounds()->add(9, 9, TestSupport::makeWav(1, 8000, 8, 10));
        const int undo = p.sounds()->undoStack()->index();
        QVERIFY(p.toFile());
        QVERIFY(!p.sounds()->isModified());
        QCOMPARE(p.sounds()->undoStack()->index(), undo);
        QVERIFY(copy.load(snd, false));
        QCOMPARE(copy.count(), 3);
        QCOMPARE(readAll(snd).mid(12, 4), QByteArray("\x04\0\0\0", 4));
    }

    void versionTypeAndLocalCoord()
    {
        QCOMPARE(QProject::parseVersion(QStringLiteral("1.0")), 0x01000000u);
        QCOMPARE(QProject::parseVersion(QStringLiteral(" 1.1 ")), 0x01010000u);
        QCOMPARE(QProject::parseVersion(QStringLiteral("1.0.1.2")), 0x01000102u);
        QCOMPARE(QProject::parseVersion(QStringLiteral("1.01")), 0x01000100u);
        // Beta patterns and two-digit components fail and give 0.
        QCOMPARE(QProject::parseVersion(QStringLiteral("04,14,2001")), 0u);
        QCOMPARE(QProject::parseVersion(QStringLiteral("10.1")), 0u);
        QCOMPARE(QProject::parseVersion(QString()), 0u);
        QCOMPARE(QProject::versionText(0), QStringLiteral("Beta"));
        QCOMPARE(QProject::versionText(0x01010000), QStringLiteral("1.1"));

        int w = 0, h = 0;
        QVERIFY(QProject::parseLocalCoord(QStringLiteral("1280,720"), &w, &h));
        QCOMPARE(QPoint(w, h), QPoint(1280, 720));
        QVERIFY(QProject::parseLocalCoord(QStringLiteral("320, 240"), &w, &h));
        QCOMPARE(QPoint(w, h), QPoint(320, 240));
        QVERIFY(QProject::parseLocalCoord(QStringLiteral(",720"), &w, &h));
        QCOMPARE(QPoint(w, h), QPoint(0, 720));
        QVERIFY(!QProject::parseLocalCoord(QStringLiteral("1280"), &w, &h));
        QCOMPARE(QPoint(w, h), QPoint(320, 240));

        QProject p;
        QCOMPARE(p.type(), QProjectType::Character);
        QCOMPARE(p.version(), QProject::DefaultVersion);
        QSignalSpy typeSpy(&p, &QProject::typeChanged);
        QSignalSpy versionSpy(&p, &QProject::versionChanged);
        QSignalSpy nameSpy(&p, &QProject::nameChanged);
        QSyntaxTextEditor *state = p.addState();

        setDef(p, QStringLiteral("[Info]\nname = \"Temple\"\nmugenversion = 04,14,2001\nlocalcoord = 1280,720\n[BGdef]\nspr = x.sff\n"));
        QCOMPARE(p.type(), QProjectType::Stage);
        QCOMPARE(p.version(), 0u);
        QCOMPARE(QPoint(p.localWidth(), p.localHeight()), QPoint(1280, 720));
        QCOMPARE(typeSpy.count(), 1);
        QCOMPARE(versionSpy.count(), 1);
        QCOMPARE(nameSpy.count(), 1);
        QCOMPARE(nameSpy.last().at(1).toString(), QStringLiteral("Temple"));
        // A new version reaches every document of the project.
        QCOMPARE(state->engineVersion(), 0u);
        QCOMPARE(p.commands()->engineVersion(), 0u);
        QCOMPARE(p.definitions()->engineVersion(), 0u);

        // [Files] beats [BGdef] whatever the order; no localcoord gives 320 x 240.
        setDef(p, QStringLiteral("[BGdef]\nspr = x.sff\n[Info]\nmugenversion = 1.0\n[Files]\n"));
        QCOMPARE(p.type(), QProjectType::Character);
        QCOMPARE(p.version(), 0x01000000u);
        QCOMPARE(QPoint(p.localWidth(), p.localHeight()), QPoint(320, 240));
        QCOMPARE(typeSpy.count(), 2);

        setDef(p, QStringLiteral("[SceneDef]\nspr = intro.sff\n[Def]\nfile = f.sff"));
        QCOMPARE(p.type(), QProjectType::Storyboard);
        setDef(p, QStringLiteral("[FNT v2]\nname = x\n[Def]\nfile = f.sff"));
        QCOMPARE(p.type(), QProjectType::Font);
        // A stage's coordinate space is read from [StageInfo] when [Info] has none.
        setDef(p, QStringLiteral("[Info]\nmugenversion = 1.1\n[StageInfo]\nlocalcoord = 1280, 720\n[BGdef]\nspr = a.sff"));
        QCOMPARE(QPoint(p.localWidth(), p.localHeight()), QPoint(1280, 720));
        // No known section: the type stays as it was.
        setDef(p, QStringLiteral("[Select Info]\nx = 1"));
        QCOMPARE(p.type(), QProjectType::Stage);
        QCOMPARE(p.version(), 0u);
        // Empty text is a new project: version 1.1.
        setDef(p, QString());
        QCOMPARE(p.version(), QProject::DefaultVersion);
        QCOMPARE(p.name(), QString());
    }

    void scanRules()
    {
        QProject p;
        p.definitions()->setText(QStringLiteral(
            "junk before any section = 1\n"
            "[Info]\nname = \"Hero\"\n"
            "[Files]\ncmd = hero.cmd ;commands\ncns = hero.cns\nst = hero.cns\nst1 = hero.cns\n"
            "stcommon = common1.cns\nst9=nine.st\nsprite = \"hero.sff\"\npal1 = a.act\npal2 = b.act\n"
            "anim = hero.air\nsound = hero.snd\nai = hero.ai\nnoequals hero.x\n= orphan\n"
            "stages = odd.st\n[Unknown]\nsprite = other.sff\n"
            "[BGdef]\nspr = Stages\\kfm.sff\nspr = second.sff\n[SceneDef]\nspr = scenes\\intro.sff\n"));
        const QProjectDefFiles f = p.scanDef(QStringLiteral("/some/where/hero.def"));
        QCOMPARE(f.folder, QStringLiteral("/some/where"));
        QCOMPARE(f.command, QStringLiteral("hero.cmd"));
        QCOMPARE(f.animation, QStringLiteral("hero.air"));
        QCOMPARE(f.sound, QStringLiteral("hero.snd"));
        // st and st1 naming the same file load it once; any key beginning "st" counts.
        QCOMPARE(f.states, (QStringList{QStringLiteral("hero.cns"), QStringLiteral("common1.cns"),
                                        QStringLiteral("nine.st"), QStringLiteral("odd.st")}));
        QCOMPARE(f.palettes, (QStringList{QStringLiteral("a.act"), QStringLiteral("b.act")}));
        // [BGdef] cuts "stages\" and stops at its first spr; the later [SceneDef] doesn't override.
        QCOMPARE(f.sprite, QStringLiteral("kfm.sff"));
        QCOMPARE(f.lines.value(QStringLiteral("hero.cmd")), 4);

        p.definitions()->setText(QStringLiteral("[SceneDef]\nspr = scenes\\intro.sff\n[BGdef]\nspr = stages/kfm.sff"));
        QCOMPARE(p.scanDef(QString()).sprite, QStringLiteral("kfm.sff"));
        p.definitions()->setText(QStringLiteral("[SceneDef]\nspr = scenes\\Stages\\intro.sff\nspr = no.sff"));
        const QProjectDefFiles scene = p.scanDef(QString());
        QCOMPARE(scene.sprite, QStringLiteral("scenes\\Stages\\intro.sff"));
        QCOMPARE(scene.folder, QString());
        p.definitions()->setText(QStringLiteral("[Def]\nType = bitmap\nFile = font.sff\n"));
        QCOMPARE(p.scanDef(QString()).sprite, QStringLiteral("font.sff"));

        // Resolution: back slashes, the DEF's folder, and letter case as a last resort.
        QTemporaryDir dir;
        writeAll(dir.filePath(QStringLiteral("Sub/KFM.sff")), "x");
        QCOMPARE(QProject::resolveFile(dir.path(), QStringLiteral("sub\\kfm.SFF")), dir.filePath(QStringLiteral("Sub/KFM.sff")));
        QCOMPARE(QProject::resolveFile(dir.path(), QStringLiteral("none\\x.sff")), dir.filePath(QStringLiteral("none/x.sff")));

        // Garbage never stops the scan.
        QRandomGenerator rng(3);
        for (int round = 0; round < 100; ++round) {
            QString s;
            for (int i = 0; i < 200; ++i)
                s.append(QChar(char16_t(QStringLiteral("[]=;\n ab\\stfile").at(rng.bounded(15)).unicode())));
            p.definitions()->setText(s);
            p.scanDef(QStringLiteral("x.def"));
        }
    }

    void loadCharacter()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        QProject p;
        QList<uint> positions;
        uint lastTotal = 0;
        connect(&p, &QProject::progress, this, [&](uint pos, uint total, bool &) {
            positions << pos;
            lastTotal = total;
        });
        QVERIFY(p.fromFile(def, 39, true, false));
        QCOMPARE(p.type(), QProjectType::Character);
        QCOMPARE(p.version(), 0x01000000u);
        QCOMPARE(QPoint(p.localWidth(), p.localHeight()), QPoint(640, 480));
        QCOMPARE(p.name(), QStringLiteral("Hero"));
        QCOMPARE(lastTotal, 4u + 4u + 3u); // palettes + states + 4
        QCOMPARE(positions.first(), 0u);
        QCOMPARE(positions.last(), lastTotal);

        // Legacy text read through the fallback code page.
        QVERIFY(p.commands()->text().contains(QStringLiteral("caf\u00E9")));
        QCOMPARE(p.commands()->fileName(), dir.filePath(QStringLiteral("hero.cmd")));
        // States: the file named twice is read once, back slashes resolve.
        QCOMPARE(p.statesCount(), 2);
        QCOMPARE(p.state(0)->objectName(), QStringLiteral("hero.cns"));
        QCOMPARE(p.state(1)->objectName(), QStringLiteral("walk.st"));
        QCOMPARE(p.state(0)->engineVersion(), 0x01000000u);
        QVERIFY(!p.state(0)->isModified());

        // Palettes: palN is 1,N whatever is missing or unreadable before it.
        const QPaletteList &pals = p.sprites()->palettes();
        QCOMPARE(pals.count(), 2);
        QVERIFY(pals.find(0, 1, 1) >= 0);
        QVERIFY(pals.find(0, 1, 2) < 0 && pals.find(0, 1, 3) < 0);
        const int fourth = pals.find(0, 1, 4);
        QVERIFY(fourth >= 0);
        QCOMPARE(QPaletteFile::actBytes(*pals.colors(fourth)), act(4));

        // Missing pieces are information, naming the file and the DEF line, but a
        // missing palette is a warning; the unreadable one is an error in the
        // "file(line): text" form.
        QVERIFY(hasMessage(p, QMessages::Information, QStringLiteral("common1.cns")));
        QVERIFY(hasMessage(p, QMessages::Information, QStringLiteral("hero.def(12): Not found: common1.cns")));
        QVERIFY(hasMessage(p, QMessages::Warning, QStringLiteral("missing.act")));
        QVERIFY(hasMessage(p, QMessages::Information, QStringLiteral("hero.sff")));
        QVERIFY(hasMessage(p, QMessages::Error, QStringLiteral("broken.act(1): ")));
        QVERIFY(hasMessage(p, QMessages::Information, QStringLiteral("Open project - ") + def));
        QCOMPARE(p.messages()->issueCount(), 2);
        QCOMPARE(p.defFiles().sprite, QStringLiteral("hero.sff"));

        // The backup holds the DEF and every file found, under their own names.
        const QString bak = p.lastBackupFolder();
        QVERIFY(bak.startsWith(QFileInfo(def).canonicalPath() + QStringLiteral("/backup/")));
        QCOMPARE(readAll(bak + QStringLiteral("hero.def")), readAll(def));
        QCOMPARE(readAll(bak + QStringLiteral("States/walk.st")), readAll(dir.filePath(QStringLiteral("states/walk.st"))));
        QCOMPARE(readAll(bak + QStringLiteral("pals/hero4.act")), act(4));
        QVERIFY(QFileInfo::exists(bak + QStringLiteral("hero.air")));
        QVERIFY(QFileInfo::exists(bak + QStringLiteral("hero.snd")));

        // A DEF that isn't there fails the load; a fresh project keeps defaults.
        QProject none;
        QVERIFY(!none.fromFile(dir.filePath(QStringLiteral("nothing.def")), 0, true, false));
        QVERIFY(hasMessage(none, QMessages::Error, QStringLiteral("nothing.def(1): ")));
        QVERIFY(!QDir(dir.filePath(QStringLiteral("backup"))).entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty());

        // Bad bytes in a declared UTF-8 text are a warning at their line.
        writeAll(dir.filePath(QStringLiteral("hero.cns")), "\xEF\xBB\xBF[Data]\r\nlife = 1\r\nname = \xFF\xFE\r\n");
        QProject bad;
        QVERIFY(bad.fromFile(def, 0, false, false));
        QVERIFY(hasMessage(bad, QMessages::Warning, QStringLiteral("hero.cns(3): ")));
    }

    void cancellingTheLoad()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        QProject p;
        connect(&p, &QProject::progress, this, [](uint pos, uint, bool &goOn) {
            if (pos == 2)
                goOn = false;
        });
        // Cancelled after the second palette: still a project, with what was read.
        QVERIFY(p.fromFile(def, 0, false, false));
        QCOMPARE(p.sprites()->palettes().count(), 1);
        QVERIFY(p.commands()->isEmpty());
        QCOMPARE(p.statesCount(), 0);
        QCOMPARE(p.name(), QStringLiteral("Hero"));

        QProject q;
        connect(&q, &QProject::progress, this, [](uint, uint, bool &goOn) { goOn = false; });
        QVERIFY(q.fromFile(def, 0, false, false));
        QCOMPARE(q.sprites()->palettes().count(), 0);
    }

    void saveFlows()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        QProject p;
        QVERIFY(p.fromFile(def, 39, false, false));
        const QByteArray defBefore = readAll(def);
        const QByteArray stBefore = readAll(dir.filePath(QStringLiteral("states/walk.st")));

        // Only what changed is written, in the encoding found, with CR LF.
        p.commands()->document()->setPlainText(p.commands()->text() + QStringLiteral("\n; more"));
        QVERIFY(p.toFile());
        QCOMPARE(readAll(def), defBefore);
        QCOMPARE(readAll(dir.filePath(QStringLiteral("states/walk.st"))), stBefore);
        const QByteArray cmd = readAll(dir.filePath(QStringLiteral("hero.cmd")));
        QVERIFY(cmd.startsWith("; commands in a legacy code page: caf\xE9\r\n"));
        QVERIFY(cmd.endsWith("\r\n; more"));
        QVERIFY(!p.commands()->isModified());

        // A cancelled save stops before the next piece: that file stays whole.
        p.commands()->document()->setPlainText(QStringLiteral("[Command]\nname = \"changed\""));
        p.state(1)->document()->setPlainText(QStringLiteral("[Statedef 21]"));
        const QByteArray cmdBefore = readAll(dir.filePath(QStringLiteral("hero.cmd")));
        {
            auto c = connect(&p, &QProject::progress, this, [](uint pos, uint, bool &goOn) {
                if (pos == 1)
                    goOn = false;
            });
            QVERIFY(!p.toFile());
            disconnect(c);
        }
        QCOMPARE(readAll(dir.filePath(QStringLiteral("hero.cmd"))), cmdBefore);
        QCOMPARE(readAll(dir.filePath(QStringLiteral("states/walk.st"))), stBefore);
        QVERIFY(p.commands()->isModified());

        // A target that can't be written leaves the previous file byte-identical
        // (the temporary file beside it can't be made: its name is too long).
        const QString longName = dir.filePath(QString(248, QLatin1Char('s')) + QStringLiteral(".st"));
        writeAll(longName, "previous\r\n");
        p.state(1)->setFileName(longName);
        QVERIFY(!p.toFile());
        QCOMPARE(readAll(longName), QByteArray("previous\r\n"));
        QVERIFY(hasMessage(p, QMessages::Error, QFileInfo(longName).fileName() + QStringLiteral("(1): Can't be saved: ")));
        QVERIFY(hasFailure(p, QFileInfo(longName).fileName(), QStringLiteral("Can't be saved: ")));
        QVERIFY(p.state(1)->isModified());
        // The other changed pieces were still written.
        QVERIFY(readAll(dir.filePath(QStringLiteral("hero.cmd"))).contains("changed"));

        // A DEF without a name can't be saved by toFile (the caller turns to Save As).
        QProject fresh;
        QVERIFY(!fresh.toFile());
        QVERIFY(fresh.failures().isEmpty());
    }

    void saveAsWritesTheWholeProject()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        makeSprites(dir.filePath(QStringLiteral("hero.sff")));
        QProject p;
        QVERIFY(p.fromFile(def, 39, false, false));
        QCOMPARE(p.sprites()->count(), 3);
        p.addState()->setText(QStringLiteral("[Statedef 30]"));

        // Only what the DEF doesn't name is asked for; the sprite version is asked once.
        const QString out = dir.filePath(QStringLiteral("copy"));
        QList<QProjectFile> asked;
        connect(&p, &QProject::saveFileName, this, [&](QProjectFile kind, const QString &) {
            asked << kind;
            return out + QStringLiteral("/extra.st");
        });
        int versionQuestions = 0;
        connect(&p, &QProject::spritesVersionToSave, this, [&](quint32) {
            ++versionQuestions;
            return QSffVersion::V200;
        });
        // Files of someone else's that it would replace are known beforehand.
        writeAll(out + QStringLiteral("/hero.cns"), "[Statedef 0]");
        QCOMPARE(p.filesReplacedBySaveAs(out + QStringLiteral("/renamed.def")), QStringList{out + QStringLiteral("/hero.cns")});
        QVERIFY(p.filesReplacedBySaveAs(def).isEmpty());
        const TestSupport::ProjectState before = TestSupport::ProjectState::of(p);
        QVERIFY(p.saveAs(out + QStringLiteral("/renamed.def"), false));
        QVERIFY(p.failures().isEmpty());
        QCOMPARE(asked, QList<QProjectFile>{QProjectFile::States});
        QCOMPARE(versionQuestions, 1);
        BF_VERIFY_UNCHANGED(before, p, true, "Save As");

        // Every file the project has lies beside the new DEF, under the name the DEF gives it.
        for (const char *name : {"hero.cmd", "hero.cns", "States/walk.st", "hero.sff", "hero.air", "hero.snd",
                                 "hero1.act", "broken.act", "pals/hero4.act", "extra.st"})
            QVERIFY2(QFileInfo::exists(out + QLatin1Char('/') + QLatin1String(name)), name);
        QCOMPARE(readAll(out + QStringLiteral("/hero.air")), readAll(dir.filePath(QStringLiteral("hero.air"))));
        QCOMPARE(readAll(out + QStringLiteral("/hero.snd")), readAll(dir.filePath(QStringLiteral("hero.snd"))));
        // ...and the project now works on them.
        QCOMPARE(p.definitions()->fileName(), out + QStringLiteral("/renamed.def"));
        QCOMPARE(p.commands()->fileName(), out + QStringLiteral("/hero.cmd"));
        QCOMPARE(p.state(1)->fileName(), out + QStringLiteral("/States/walk.st"));
        QCOMPARE(p.sprites()->fileName(), out + QStringLiteral("/hero.sff"));
        QCOMPARE(p.sprites()->version(), QSffVersion::V200);
        QVERIFY(!p.sprites()->isModified() && !p.commands()->isModified());
        QVERIFY(p.filesReplacedBySaveAs(out + QStringLiteral("/renamed.def")).isEmpty());

        // The new DEF opens as a whole project with the same content.
        QProject again;
        QVERIFY(again.fromFile(out + QStringLiteral("/renamed.def"), 39, false, false));
        QVERIFY(!hasMessage(again, QMessages::Information, QStringLiteral("Not found: hero")));
        QCOMPARE(again.statesCount(), 2);
        QCOMPARE(again.state(1)->text(), p.state(1)->text());
        QCOMPARE(again.commands()->text(), p.commands()->text());
        QCOMPARE(again.sprites()->paletteCount(), p.sprites()->paletteCount());
        QCOMPARE(TestSupport::ProjectState::of(*again.sprites()).images, before.images);
    }

    void failuresNameTheFileAndTheReason()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        writeAll(dir.filePath(QStringLiteral("hero.sff")), QByteArray("not a sprite file, but long enough"));
        QProject p;
        QVERIFY(p.fromFile(def, 39, false, false));
        QVERIFY(hasFailure(p, QStringLiteral("hero.sff"), QStringLiteral("signature")));
        QVERIFY(hasFailure(p, QStringLiteral("broken.act"), QStringLiteral("Not a palette")));
        QVERIFY(hasMessage(p, QMessages::Error, QStringLiteral("hero.sff(1): The sprites can't be read: ")));

        // A folder that can't be made (its parent is a file): nothing changes in the project.
        const QString blocked = dir.filePath(QStringLiteral("hero.cmd/sub"));
        const TestSupport::ProjectState before = TestSupport::ProjectState::of(p);
        QVERIFY(!p.toTemporary(blocked, QStringLiteral("bf3_hero")));
        QVERIFY(hasFailure(p, blocked, QStringLiteral("can't be made")));
        QVERIFY(!p.saveAs(blocked + QStringLiteral("/hero.def"), false));
        QVERIFY(hasFailure(p, blocked, QStringLiteral("can't be made")));
        BF_VERIFY_UNCHANGED(before, p, false, "failed copies");

        // One piece that can't be written fails the save by name; the others are written.
        makeSprites(dir.filePath(QStringLiteral("hero.sff")));
        QProject q;
        QVERIFY(q.fromFile(def, 39, false, false));
        QVERIFY(q.sprites()->changeImage(0, pattern(20, 2), 2, false, 9, 1));
        const QString out = dir.filePath(QStringLiteral("out"));
        QVERIFY(QDir().mkpath(out + QStringLiteral("/hero.sff")));
        const TestSupport::ProjectState edited = TestSupport::ProjectState::of(q);
        QVERIFY(!q.saveAs(out + QStringLiteral("/hero.def"), false));
        QCOMPARE(q.failures().size(), 1);
        QVERIFY(hasFailure(q, QStringLiteral("hero.sff: The sprites can't be saved: "), QStringLiteral("directory")));
        QVERIFY(QFileInfo::exists(out + QStringLiteral("/hero.cns")));
        BF_VERIFY_UNCHANGED(edited, q, true, "a Save As that failed in part");
        QVERIFY(q.sprites()->isModified());
        QCOMPARE(q.sprites()->fileName(), dir.filePath(QStringLiteral("hero.sff")));

        // A backup of a project whose folder is gone says so.
        q.definitions()->setFileName(dir.filePath(QStringLiteral("gone/hero.def")));
        QVERIFY(!q.backup());
        QVERIFY(hasFailure(q, QStringLiteral("hero.def"), QStringLiteral("no longer exists")));
    }

    void savesLeaveTheModelAsItWas()
    {
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        const QString sff = dir.filePath(QStringLiteral("hero.sff"));
        makeSprites(sff);
        QProject p;
        QVERIFY(p.fromFile(def, 39, false, false));
        QVERIFY(p.sprites()->changeImage(1, pattern(40, 5), 2, false, 9, 1));
        p.commands()->document()->setPlainText(QStringLiteral("[Command]\nname = \"unsaved\""));
        const QByteArray sffBefore = readAll(sff);
        const TestSupport::ProjectState edited = TestSupport::ProjectState::of(p);

        // Failed saves, a test copy and a backup change nothing at all, so a
        // Save afterwards still writes every edit.
        QVERIFY(!p.saveAs(dir.filePath(QStringLiteral("hero.cmd/x/hero.def")), false));
        BF_VERIFY_UNCHANGED(edited, p, false, "a failed Save As");
        QTemporaryDir run;
        QVERIFY(p.toTemporary(run.filePath(QStringLiteral("bf3_hero")), QStringLiteral("bf3_hero")));
        BF_VERIFY_UNCHANGED(edited, p, false, "a test copy");
        QVERIFY(p.backup());
        BF_VERIFY_UNCHANGED(edited, p, false, "a backup");
        QVERIFY(p.toFile());
        BF_VERIFY_UNCHANGED(edited, p, true, "a save");
        QVERIFY(readAll(sff) != sffBefore);
        QVERIFY(!p.sprites()->isModified() && !p.commands()->isModified());
        QSprites reread;
        QVERIFY(reread.fromFile(sff, true, false));
        QCOMPARE(TestSupport::ProjectState::of(reread).images, edited.images);
        QVERIFY(readAll(dir.filePath(QStringLiteral("hero.cmd"))).contains("unsaved"));
        QVERIFY(p.saveAs(dir.filePath(QStringLiteral("as/hero.def")), true));
        BF_VERIFY_UNCHANGED(edited, p, true, "a Save As");
    }

    void normalSavesSearchForMatches()
    {
        // Two projects with the same edit: the saved file is packed harder than the test copy.
        QTemporaryDir dir;
        const QString def = makeCharacter(dir.path());
        makeSprites(dir.filePath(QStringLiteral("hero.sff")));
        QProject saved, copied;
        for (QProject *p : {&saved, &copied}) {
            QVERIFY(p->fromFile(def, 39, false, false));
            QVERIFY(p->sprites()->changeImage(0, pattern(128, 7), 2, false, 9, 1));
        }
        QVERIFY(copied.toTemporary(dir.filePath(QStringLiteral("run")), QStringLiteral("bf3_hero")));
        QVERIFY(saved.toFile());
        const qint64 quick = QFileInfo(dir.filePath(QStringLiteral("run/hero.sff"))).size();
        const qint64 packed = QFileInfo(dir.filePath(QStringLiteral("hero.sff"))).size();
        QVERIFY2(packed * 5 < quick * 4, qPrintable(QStringLiteral("%1 against %2 bytes").arg(packed).arg(quick)));
    }

    void fontSavesOnlyDefAndSprites()
    {
        QTemporaryDir dir;
        const QString def = dir.filePath(QStringLiteral("f.def"));
        writeAll(def, "[FNT v2]\r\nname = \"F\"\r\n[Def]\r\nType = bitmap\r\nFile = f.sff\r\n");
        QProject p;
        QVERIFY(p.fromFile(def, 0, false, false));
        QCOMPARE(p.type(), QProjectType::Font);
        QCOMPARE(p.defFiles().sprite, QStringLiteral("f.sff"));
        QVERIFY(hasMessage(p, QMessages::Information, QStringLiteral("f.sff")));

        // Even with text in the commands, a font writes DEF and sprites only.
        const QString cmd = dir.filePath(QStringLiteral("f.cmd"));
        p.commands()->setText(QStringLiteral("[Command]"));
        p.commands()->setFileName(cmd);
        p.addState()->setText(QStringLiteral("[Statedef 0]"));
        p.definitions()->document()->setPlainText(p.definitions()->text() + QStringLiteral("\n; edited"));
        QList<QProjectFile> asked;
        connect(&p, &QProject::saveFileName, this, [&](QProjectFile kind, const QString &) {
            asked << kind;
            return dir.filePath(QStringLiteral("x"));
        });
        QVERIFY(p.toFile());
        QVERIFY(readAll(def).endsWith("; edited"));
        QVERIFY(!QFileInfo::exists(cmd));
        QVERIFY(p.saveAs(dir.filePath(QStringLiteral("g.def")), false));
        QVERIFY(asked.isEmpty()); // no sprites: nothing to ask for
        QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("x"))));
    }

    void temporaryCopyAndBackup()
    {
        QTemporaryDir root;
        QDir dir(root.filePath(QStringLiteral("hero")));
        const QString def = makeCharacter(dir.path(), "st2 = ../outside.cns\r\n");
        writeAll(root.filePath(QStringLiteral("outside.cns")), "[Statedef 5]");
        QProject p;
        QVERIFY(p.fromFile(def, 39, false, false));
        p.commands()->document()->setPlainText(QStringLiteral("[Command]\nname = \"unsaved\""));

        QTemporaryDir run;
        const QString copy = run.filePath(QStringLiteral("bf3_hero"));
        QVERIFY(p.toTemporary(copy, QStringLiteral("bf3_hero")));
        // Nothing marked saved, nothing renamed.
        QVERIFY(p.commands()->isModified());
        QCOMPARE(p.commands()->fileName(), dir.filePath(QStringLiteral("hero.cmd")));
        QCOMPARE(p.definitions()->fileName(), def);
        // The pieces land under the DEF's names; the DEF as it stands.
        QVERIFY(readAll(copy + QStringLiteral("/hero.cmd")).contains("unsaved"));
        QCOMPARE(readAll(copy + QStringLiteral("/States/walk.st")), readAll(dir.filePath(QStringLiteral("states/walk.st"))));
        QCOMPARE(readAll(copy + QStringLiteral("/hero1.act")), act(1));
        QCOMPARE(readAll(copy + QStringLiteral("/pals/hero4.act")), act(4));
        QCOMPARE(readAll(copy + QStringLiteral("/hero.air")), readAll(dir.filePath(QStringLiteral("hero.air"))));
        QCOMPARE(readAll(copy + QStringLiteral("/hero.snd")), readAll(dir.filePath(QStringLiteral("hero.snd"))));
        QVERIFY(!QFileInfo::exists(copy + QStringLiteral("/missing.act")));
        // Nothing is written outside the folder.
        QVERIFY(!QFileInfo::exists(run.filePath(QStringLiteral("outside.cns"))));
        QVERIFY(hasMessage(p, QMessages::Warning, QStringLiteral("../outside.cns")));

        // The copy loads again to the same project.
        QProject again;
        QVERIFY(again.fromFile(copy + QStringLiteral("/bf3_hero.def"), 39, false, false));
        QCOMPARE(again.type(), p.type());
        QCOMPARE(again.version(), p.version());
        QCOMPARE(again.localWidth(), p.localWidth());
        QCOMPARE(again.name(), p.name());
        QCOMPARE(p.statesCount(), 3);
        QCOMPARE(again.statesCount(), 2); // the one outside the folder wasn't copied
        QCOMPARE(again.commands()->text(), p.commands()->text());
        QCOMPARE(again.sprites()->palettes().count(), p.sprites()->palettes().count());
        QCOMPARE(again.state(1)->text(), p.state(1)->text());

        // A backup writes the same into a dated folder, under the DEF's own name.
        QVERIFY(p.backup());
        const QString bak = p.lastBackupFolder();
        QVERIFY(bak.contains(QStringLiteral("/backup/")));
        for (const char *name : {"hero.def", "hero.cns", "States/walk.st", "hero.air", "hero.snd", "hero1.act", "pals/hero4.act"})
            QVERIFY2(QFileInfo::exists(bak + QLatin1String(name)), name);
        QVERIFY(readAll(bak + QStringLiteral("/hero.cmd")).contains("unsaved"));
        QVERIFY(p.commands()->isModified());

        // Reading the backup back fills the same documents and keeps their files.
        p.state(0)->document()->setPlainText(QStringLiteral("[Statedef 99]"));
        QSyntaxTextEditor *first = p.state(0);
        QVERIFY(p.fromFile(bak + QStringLiteral("/hero.def"), 39, false, true));
        QCOMPARE(p.statesCount(), 3);
        QCOMPARE(p.state(0), first);
        QCOMPARE(first->fileName(), dir.filePath(QStringLiteral("hero.cns")));
        QVERIFY(first->text().startsWith(QStringLiteral("[Data]")));
        QCOMPARE(p.definitions()->fileName(), def);
        QVERIFY(p.commands()->text().contains(QStringLiteral("unsaved")));
        QCOMPARE(p.commands()->fileName(), dir.filePath(QStringLiteral("hero.cmd")));
        QCOMPARE(p.sprites()->palettes().count(), 2);

        // A project that has no DEF file yet has nowhere to back up.
        QProject fresh;
        QVERIFY(!fresh.backup());
    }

    void lastUsedFolders()
    {
        QProjectSettings s;
        s.paths.insert(QStringLiteral("spr_path"), QStringLiteral("/from/config"));
        QMap<QString, QString> stored;
        s.storePath = [&stored](const QString &k, const QString &v) { stored.insert(k, v); };
        QProject p(s);
        QCOMPARE(p.path(QStringLiteral("spr_path")), QStringLiteral("/from/config"));
        p.setPath(QStringLiteral("spr_path"), QStringLiteral("/mine"));
        QCOMPARE(p.path(QStringLiteral("spr_path")), QStringLiteral("/mine"));
        QCOMPARE(stored.value(QStringLiteral("spr_path")), QStringLiteral("/mine"));
        QCOMPARE(p.path(QStringLiteral("gif_path")), QString());

        QMugenModel config;
        config.set(QStringLiteral("cache_type"), QStringLiteral("1"));
        config.set(QStringLiteral("proj_path"), QStringLiteral("/p"));
        const QProjectSettings fromConfig = QProjectSettings::fromConfig(config);
        QCOMPARE(fromConfig.cacheType, 1);
        QCOMPARE(fromConfig.paths.value(QStringLiteral("proj_path")), QStringLiteral("/p"));
        // Compression is a switch: "true" read from the file and true set in code.
        for (const QVariant &on : {QVariant(QStringLiteral("true")), QVariant(true), QVariant(QStringLiteral("1"))}) {
            config.set(QStringLiteral("cache_compression"), on);
            QCOMPARE(QProjectSettings::fromConfig(config).cacheCompression, 1);
        }
        config.set(QStringLiteral("cache_compression"), QStringLiteral("false"));
        QCOMPARE(QProjectSettings::fromConfig(config).cacheCompression, 0);
    }
};

QTEST_GUILESS_MAIN(TestProject)
#include "tst_project.moc"
