#include <QtTest>

#include "testsupport.h"
#include "wavsupport.h"

#include "base/qmessages.h"
#include "sounds/qsounds.h"

#include <QDirIterator>
#include <QTemporaryDir>

using namespace TestSupport;

namespace {

// Group, number and bytes of every sound, in order: what must survive a save,
// an export or an undo.
struct Sound
{
    int group;
    int number;
    QByteArray bytes;
    bool operator==(const Sound &o) const { return group == o.group && number == o.number && bytes == o.bytes; }
};

QList<Sound> sounds(const QSounds &s)
{
    QList<Sound> out;
    for (int i = 0; i < s.count(); ++i)
        out.append({s.record(i).group, s.record(i).number, s.sample(i)});
    return out;
}

QStringList sampleSnds()
{
    QStringList files;
    QDirIterator it(sampleDir(), {QStringLiteral("*.snd")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    return files;
}

} // namespace

class TestSounds : public QObject
{
    Q_OBJECT

private slots:
    // Every SND of the engine's sample loads whole, without a word, and a
    // save gives back the very same file; the sounds are the samples the
    // chain says, with what their WAV headers say.
    void sampleFilesLoadAndSaveUnchanged()
    {
        BF_REQUIRE_SAMPLE();
        const QStringList files = sampleSnds();
        QVERIFY(files.size() >= 4);
        QTemporaryDir dir;
        for (const QString &file : files) {
            QMessages messages;
            QSounds s;
            s.setMessages(&messages);
            QString error;
            QVERIFY2(s.load(file, false, &error), qPrintable(file + QStringLiteral(": ") + error));
            QVERIFY2(messages.messages().isEmpty(), qPrintable(file));
            QVERIFY(s.count() > 0);
            QCOMPARE(s.path(), file);
            const QString out = dir.filePath(QStringLiteral("copy.snd"));
            QVERIFY(s.save(out, true, &error));
            QVERIFY2(readAll(out) == readAll(file), qPrintable(file));
            QCOMPARE(s.path(), file); // a copy binds nothing
        }
        QSounds kfm;
        QVERIFY(kfm.load(samplePath(QStringLiteral("chars/kfm/kfm.snd")), false));
        QCOMPARE(kfm.count(), 12);
        const SoundRecord last = kfm.record(11);
        QCOMPARE(last.group, quint16(800));
        QCOMPARE(kfm.sample(11).size(), 4653);
        QVERIFY(kfm.sample(11).startsWith("RIFF"));
        for (int i = 0; i < kfm.count(); ++i) {
            const QWavInfo info = kfm.info(i);
            QCOMPARE(info.kind, QWavInfo::Pcm);
            QCOMPARE(kfm.record(i).sampleRate, info.sampleRate);
            QVERIFY(info.duration > 0 && info.duration < 5);
        }
    }

    // Files that disagree with the textbook: chains without next offsets,
    // empty sounds, other version bytes, offsets that point backwards or out
    // of the file, lengths and counts larger than the file, samples that
    // aren't WAVs. All load what is whole, say what isn't, and never read or
    // allocate past the file.
    void damagedAndUnusualFiles()
    {
        const QByteArray a = makeWav(1, 11025, 8, 2205, 1, 1);
        const QByteArray b = makeWav(2, 22050, 16, 100, 1, 2);
        const QByteArray notWav("OggS just some bytes that are no RIFF");
        QTemporaryDir dir;
        struct Case
        {
            const char *name;
            QByteArray file;
            QList<Sound> expected;
            bool warns;
        };
        const QList<Case> cases = {
            {"no next offsets", makeSnd({{a, 1, 0, 0}, {b, 1, 1, 0}}), {{1, 0, a}, {1, 1, b}}, false},
            {"empty sound kept", makeSnd({{a, 1, 0}, {{}, 2, 0}, {b, 3, 0}}), {{1, 0, a}, {2, 0, {}}, {3, 0, b}}, false},
            {"version 02 00 00 00", makeSnd({{a, 5, 5}}, QByteArray("\x02\x00\x00\x00", 4)), {{5, 5, a}}, false},
            {"version 00 01 00 01", makeSnd({{a, 5, 5}}, QByteArray("\x00\x01\x00\x01", 4)), {{5, 5, a}}, false},
            {"next offset backwards", makeSnd({{a, 1, 0, 3}, {b, 1, 1}}), {{1, 0, a}, {1, 1, b}}, true},
            {"next offset past the end", makeSnd({{a, 1, 0, 1u << 30}, {b, 1, 1}}), {{1, 0, a}, {1, 1, b}}, true},
            {"length past the end", makeSnd({{a, 7, 0, 0, 1u << 31}}), {{7, 0, a}}, true},
            {"count larger than the file", makeSnd({{a, 1, 0}}, QByteArray("\x04\0\0\0", 4), 0xFFFFFFF), {{1, 0, a}}, true},
            {"not a WAV kept", makeSnd({{notWav, 9, 1}}), {{9, 1, notWav}}, false},
            {"header only", QByteArray("ElecbyteSnd\0\4\0\0\0\3\0\0\0", 20), {}, true},
        };
        for (const Case &c : cases) {
            const QString path = dir.filePath(QStringLiteral("case.snd"));
            QVERIFY(writeAll(path, c.file));
            QMessages messages;
            QSounds s;
            s.setMessages(&messages);
            QVERIFY2(s.load(path, false), c.name);
            QVERIFY2(sounds(s) == c.expected, c.name);
            QVERIFY2(messages.messages().isEmpty() != c.warns, c.name);
            QVERIFY2(s.cache().originalTotal() <= quint64(c.file.size()), c.name);
        }

        // Zero info for what isn't PCM, and the real info for PCM.
        QSounds s;
        QVERIFY(writeAll(dir.filePath(QStringLiteral("x.snd")),
                         makeSnd({{a, 0, 0}, {b, 0, 1}, {makeWav(2, 44100, 16, 10, 2), 0, 2}, {notWav, 0, 3}})));
        QVERIFY(s.load(dir.filePath(QStringLiteral("x.snd")), false));
        QCOMPARE(s.record(0).channels, quint8(1));
        QCOMPARE(s.record(0).bits, quint8(8));
        QCOMPARE(s.record(0).duration, 0.2f);
        QCOMPARE(s.record(1).channels, quint8(2));
        QCOMPARE(s.record(1).sampleRate, 22050u);
        QCOMPARE(s.info(2).kind, QWavInfo::OtherWav);
        QCOMPARE(s.record(2).sampleRate, 0u);
        QCOMPARE(s.info(3).kind, QWavInfo::NotWav);

        // Refused files leave the store as it was.
        const QList<Sound> before = sounds(s);
        QString error;
        QVERIFY(writeAll(dir.filePath(QStringLiteral("bad.snd")), QByteArray("ElecbyteSpr\0rest", 16)));
        QVERIFY(!s.load(dir.filePath(QStringLiteral("bad.snd")), false, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!s.load(dir.filePath(QStringLiteral("missing.snd")), false, &error));
        QVERIFY(sounds(s) == before);
    }

    // Every edit can be undone and redone as a whole; macros undo together;
    // saves touch neither the sounds nor the undo stack, and a failed save
    // leaves the old file byte for byte.
    void editsUndoAndSaves()
    {
        QTemporaryDir dir;
        QSounds s;
        const QByteArray a = makeWav(1, 8000, 8, 80, 1, 1);
        const QByteArray b = makeWav(1, 8000, 8, 160, 1, 2);
        const QByteArray c = makeWav(2, 8000, 16, 40, 1, 3);
        s.add(5, 0, a);
        s.add(1, 2, b);
        s.add(1, 1, c);
        const QList<Sound> start = sounds(s);
        const int baseline = s.undoStack()->index();

        s.duplicate(1);              // 1,3 after 1,2
        s.setInfo(0, 2, 9);
        QVERIFY(writeAll(dir.filePath(QStringLiteral("new.wav")), c));
        QVERIFY(s.setSample(0, dir.filePath(QStringLiteral("new.wav"))));
        QCOMPARE(s.record(0).channels, quint8(2));
        QVERIFY(!s.setSample(0, dir.filePath(QStringLiteral("none.wav"))));
        s.organize();
        QCOMPARE(s.data(s.index(0)).toString(), QStringLiteral("1, 1"));
        QCOMPARE(s.data(s.index(3)).toString(), QStringLiteral("2, 9"));
        s.renameGroup(1, 7);
        s.remove(0);
        s.removeGroup(7);
        QCOMPARE(s.count(), 1);
        const QList<Sound> end = sounds(s);

        while (s.undoStack()->index() > baseline)
            s.undo();
        QVERIFY(sounds(s) == start);
        QCOMPARE(s.record(0).channels, quint8(1));
        while (s.canRedo())
            s.redo();
        QVERIFY(sounds(s) == end);

        // Saves: a copy binds nothing, a real save clears the flag and takes
        // the name; neither touches the sounds or the undo stack.
        const QString file = dir.filePath(QStringLiteral("out.snd"));
        const int undoIndex = s.undoStack()->index();
        QVERIFY(s.isModified());
        QVERIFY(s.save(file, true));
        QVERIFY(s.isModified());
        QVERIFY(s.path().isEmpty());
        QVERIFY(s.save(file, false));
        QVERIFY(!s.isModified());
        QCOMPARE(s.path(), file);
        QCOMPARE(s.undoStack()->index(), undoIndex);
        QVERIFY(sounds(s) == end);
        const QByteArray saved = readAll(file);
        QVERIFY(saved.mid(24, 14) == "Made in Orvane");

        // A save that can't be written: the old file stays, the store too.
        s.add(3, 3, a);
        QVERIFY(QFile::setPermissions(dir.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        QString error;
        const bool wrote = s.save(file, false, &error);
        QFile::setPermissions(dir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        if (!wrote) { // root may write anyway
            QVERIFY(!error.isEmpty());
            QCOMPARE(readAll(file), saved);
            QVERIFY(s.isModified());
        }
        QSounds back;
        QVERIFY(back.load(file, false));
        QVERIFY(back.count() >= 1);
    }

    // Both definition texts carry every sound with its bytes: SndMaker's
    // script and the program's own export read back to the same sounds, and
    // an import is one undo step.
    void definitionTexts()
    {
        QTemporaryDir dir;
        QSounds s;
        s.add(0, 0, makeWav(1, 8000, 8, 50, 1, 1));
        s.add(12, 34, makeWav(2, 11025, 16, 20, 1, 2));
        s.add(3, 4, QByteArray("not a wav"));
        s.add(9, 9, QByteArray()); // nothing to write, nothing to list
        const QList<Sound> all = sounds(s).mid(0, 3);
        for (const QString &name : {QStringLiteral("snd/pack.def"), QStringLiteral("bfe/pack.bfe")}) {
            const QString def = dir.filePath(name);
            QDir().mkpath(QFileInfo(def).absolutePath());
            QString error;
            QVERIFY2(s.exportDef(def, &error), qPrintable(error));
            QVERIFY(QFileInfo::exists(QFileInfo(def).absolutePath() + QStringLiteral("/12-34.wav")));
            QSounds in;
            in.add(1, 1, QByteArray("kept"));
            const int before = in.undoStack()->index();
            QStringList problems;
            QVERIFY(in.importDef(def, &error, &problems));
            QVERIFY(problems.isEmpty());
            QVERIFY2(sounds(in).mid(1) == all, qPrintable(name));
            QCOMPARE(in.undoStack()->index(), before + 1);
            in.undo();
            QCOMPARE(in.count(), 1);
        }
        QCOMPARE(readAll(dir.filePath(QStringLiteral("snd/pack.def"))),
                 QByteArray("pack\n0-0.wav\n0\n0\n12-34.wav\n12\n34\n3-4.wav\n3\n4\n"));

        // A missing WAV is reported and skipped; a missing definition fails.
        QVERIFY(writeAll(dir.filePath(QStringLiteral("gap.bfe")),
                         "[SoundDef]\nGroup = 1\nNumber = 2\nfile = snd/0-0.wav\n\n[SoundDef]\ngroup=1\nsample=3\n"
                         "file=nowhere.wav\n"));
        QSounds in;
        QStringList problems;
        QVERIFY(in.importDef(dir.filePath(QStringLiteral("gap.bfe")), nullptr, &problems));
        QCOMPARE(in.count(), 1);
        QCOMPARE(in.record(0).number, quint16(2));
        QCOMPARE(problems.size(), 1);
        QVERIFY(!in.importDef(dir.filePath(QStringLiteral("none.bfe"))));
    }
};

QTEST_GUILESS_MAIN(TestSounds)
#include "tst_sounds.moc"
