// The sounds page driven the way the author drives it: through its actions,
// its panel widgets and the QAskUser seam; and the player, for real, through
// an audio server whose output is recorded.
#include <QtTest>

#include "appdriver.h"
#include "testsupport.h"
#include "wavsupport.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "sounds/ui/qsoundseditor.h"

#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QProcess>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace TestSupport;

namespace {

// The sounds page of a started program, with `def` open when given.
struct Page : AppDriver
{
    QSoundsEditor *editor = nullptr;
    QWidget *panel = nullptr;

    explicit Page(const QString &def = QString())
        : AppDriver(QSize(1000, 700))
    {
        if (!def.isEmpty())
            ui()->openProject(def);
        editor = showEditor<QSoundsEditor>(5);
        panel = registry().editorPanel(QStringLiteral("sounds"));
    }
    QString info() const { return panel->findChild<QLabel *>(QStringLiteral("snd_info"))->text(); }
    QListView *list() const { return panel->findChild<QListView *>(QStringLiteral("snd_sel")); }
    QSpinBox *field(const char *name) const { return panel->findChild<QSpinBox *>(QString::fromLatin1(name)); }
};

QStringList shown(const QSounds *s)
{
    QStringList out;
    for (int i = 0; i < s->count(); ++i)
        out << s->data(s->index(i)).toString();
    return out;
}

} // namespace

class TestSoundsEditor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    // kfm's sounds on their page: the list, the information box, the fields
    // that rename a sound, find with wrap, undo and redo.
    void sampleCharacterPage()
    {
        BF_REQUIRE_SAMPLE();
        Page p(samplePath(QStringLiteral("chars/kfm/kfm.def")));
        AskRecorder &answers = p.ask;
        QSounds *s = p.editor->store();
        QCOMPARE(s->count(), 12);
        QCOMPARE(p.list()->model(), s);
        QCOMPARE(p.editor->current(), 0);
        QVERIFY(p.info().startsWith(QStringLiteral("Channels: 1 (Mono)\nSample rate: ")));
        QVERIFY(p.info().contains(QStringLiteral(" Hz\nBits per sample: ")));
        QCOMPARE(p.panel->findChild<QLabel *>(QStringLiteral("snd_pos"))->text(), QStringLiteral("1 / 12"));

        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (!shots.isEmpty()) {
            p.editor->find(QStringLiteral("11"), {});
            QTest::qWait(200);
            QVERIFY(p.root->window()->grab().save(shots + QStringLiteral("/sounds-kfm.png")));
        }

        // Find "g,n", "g" or ",n", from the row after the current one, wrapping.
        p.editor->find(QStringLiteral("5, 0"), {});
        QCOMPARE(s->data(s->index(p.editor->current())).toString(), QStringLiteral("5, 0"));
        p.editor->find(QStringLiteral("0"), {});
        QCOMPARE(p.editor->current(), 0);
        p.editor->find(QStringLiteral(",4"), {});
        QCOMPARE(p.editor->current(), 4);
        QVERIFY(answers.texts.isEmpty());
        p.editor->find(QStringLiteral("123,456"), {});
        p.editor->find(QStringLiteral("not a sound"), {});
        QCOMPARE(answers.texts, QStringList({QStringLiteral("No sound found!"), QStringLiteral("No sound found!")}));
        QCOMPARE(p.editor->current(), 4);

        // The fields rename the current sound; undo and redo go through the edit menu.
        p.field("snd_grp")->setValue(77);
        p.field("snd_num")->setValue(3);
        QCOMPARE(s->data(s->index(4)).toString(), QStringLiteral("77, 3"));
        QVERIFY(p.editor->isModified());
        p.trigger("edit_undo");
        p.trigger("edit_undo");
        QCOMPARE(s->data(s->index(4)).toString(), QStringLiteral("0, 4"));
        QCOMPARE(p.field("snd_grp")->value(), 0);
        p.trigger("edit_redo");
        QCOMPARE(p.field("snd_grp")->value(), 77);
        p.trigger("snd_nextgrp");
        QCOMPARE(p.editor->current(), 5);
        p.trigger("snd_prevgrp");
        QCOMPARE(p.editor->current(), 4);
    }

    // Adding files numbers them by 1 or by 10 under one undo step, with or
    // without the question; delete, duplicate, group commands and saving WAVs.
    void addDeleteAndSave()
    {
        Page p;
        AskRecorder &answers = p.ask;
        QSounds *s = p.editor->store();
        QVERIFY(s);
        QCOMPARE(p.info(), QStringLiteral("Channels: ---\nSample rate: ---\nBits per sample: ---\nDuration: ---"));
        QStringList wavs;
        for (int i = 0; i < 3; ++i) {
            wavs << m_dir.filePath(QStringLiteral("w%1.wav").arg(i));
            QVERIFY(writeAll(wavs.last(), makeWav(2, 44100, 16, 4410, 1, i)));
        }
        answers.files << wavs.join(QLatin1Char('\n'));
        answers.fill = [](QDialog *d) {
            d->findChild<QSpinBox *>(QStringLiteral("group"))->setValue(4);
            d->findChild<QSpinBox *>(QStringLiteral("number"))->setValue(10);
            d->findChild<QRadioButton *>(QStringLiteral("TenInc"))->setChecked(true);
        };
        p.trigger("snd_add");
        QCOMPARE(answers.dialogs, QStringList(QStringLiteral("AddSom")));
        QCOMPARE(shown(s), QStringList({QStringLiteral("4, 10"), QStringLiteral("4, 20"), QStringLiteral("4, 30")}));
        QCOMPARE(s->sample(2), readAll(wavs.at(2)));
        QCOMPARE(p.info(), QStringLiteral("Channels: 2 (Stereo)\nSample rate: 44100 Hz\nBits per sample: 16 bits\n"
                                          "Duration: 0.10 seconds"));
        p.trigger("edit_undo");
        QCOMPARE(s->count(), 0);
        p.trigger("edit_redo");
        QCOMPARE(s->count(), 3);

        // Without the question the files follow the current sound, by one.
        p.root->objects().config->map[QStringLiteral("show_addsound_dialog")] = false;
        answers.dialogs.clear();
        answers.files << wavs.mid(0, 2).join(QLatin1Char('\n'));
        p.trigger("snd_add");
        QVERIFY(answers.dialogs.isEmpty());
        QCOMPARE(shown(s).mid(3), QStringList({QStringLiteral("4, 11"), QStringLiteral("4, 12")}));

        p.editor->selPosChanged(0);
        p.trigger("snd_duplicate");
        QCOMPARE(shown(s).at(1), QStringLiteral("4, 13"));
        p.trigger("snd_del");
        QCOMPARE(answers.texts.last(), QStringLiteral("Do you really want to delete the sound?"));
        QCOMPARE(s->count(), 5);

        // Save WAVs: the current sound under the name given, a group by its numbers.
        const QString one = m_dir.filePath(QStringLiteral("out/one.wav"));
        QDir().mkpath(QFileInfo(one).absolutePath());
        answers.fill = nullptr;
        answers.files << one;
        p.trigger("snd_savewav");
        QCOMPARE(readAll(one), s->sample(p.editor->current()));
        answers.fill = [](QDialog *d) { d->findChild<QRadioButton *>(QStringLiteral("group"))->setChecked(true); };
        answers.files << m_dir.filePath(QStringLiteral("out/ignored.wav"));
        p.trigger("snd_savewav");
        QCOMPARE(readAll(m_dir.filePath(QStringLiteral("out/4-30.wav"))), readAll(wavs.at(2)));
        QVERIFY(!QFileInfo::exists(m_dir.filePath(QStringLiteral("out/ignored.wav"))));

        answers.fill = [](QDialog *d) { d->findChild<QSpinBox *>(QStringLiteral("group"))->setValue(9); };
        p.trigger("snd_renamegroup");
        QCOMPARE(s->find(0, 4, -1), -1);
        p.trigger("snd_delgroup");
        QCOMPARE(s->count(), 0);
        p.trigger("edit_undo");
        QCOMPARE(s->count(), 5);

        // The page's own save: refused for nothing, written atomically otherwise.
        const QString snd = m_dir.filePath(QStringLiteral("out/new.snd"));
        answers.files << snd;
        p.trigger("editor_saveas");
        QVERIFY(!s->isModified());
        QSounds back;
        QVERIFY(back.load(snd, false));
        QCOMPARE(shown(&back), shown(s));

        // Import from another open project: its sounds, with their bytes, as one step.
        if (sampleDir().isEmpty())
            return;
        p.ui()->openProject(samplePath(QStringLiteral("chars/kfm/kfm.def")));
        QSounds *kfm = p.editor->store();
        QVERIFY(kfm != s);
        answers.fill = [](QDialog *d) { d->findChild<QListWidget *>(QStringLiteral("projects"))->setCurrentRow(0); };
        p.trigger("snd_projimport");
        QCOMPARE(kfm->count(), 12 + s->count());
        QCOMPARE(kfm->sample(12), s->sample(0));
        QCOMPARE(answers.texts.last(), QStringLiteral("5 sound(s) were imported!"));
        answers.fill = [](QDialog *d) { d->findChild<QListWidget *>(QStringLiteral("projects"))->setCurrentRow(1); };
        p.trigger("snd_projimport");
        QCOMPARE(answers.texts.last(), QStringLiteral("You can't import from the destination project!"));
        p.trigger("edit_undo");
        QCOMPARE(kfm->count(), 12);
    }

    // The player's temporary WAV lives exactly as long as the playing, under
    // a name of its own; the stop timer resets the buttons.
    void playerLifecycle()
    {
        Page p;
        QSounds *s = p.editor->store();
        s->add(1, 1, makeWav(1, 8000, 8, 400)); // 0.05 s
        p.editor->selPosChanged(0);
        QSoundPlayer *player = p.editor->player();
        QCOMPARE(QSoundPlayer::stopInterval(0.05f), 1050);
        QCOMPARE(QSoundPlayer::stopInterval(0), 1000);

        QAction *stop = p.action("snd_stop");
        p.trigger("snd_play");
        const QString file = player->fileName();
        QVERIFY(QFileInfo(file).fileName().startsWith(QStringLiteral("ZCC9-")));
        QCOMPARE(readAll(file), s->sample(0));
        QVERIFY(!stop->isChecked());
        QVERIFY(player->timer().isActive());
        QTRY_VERIFY_WITH_TIMEOUT(stop->isChecked(), 5000);
        QVERIFY(!QFileInfo::exists(file));

        // Looping runs without a timer until stopped; stopping twice is harmless.
        p.trigger("snd_playloop");
        const QString looped = player->fileName();
        QVERIFY(QFileInfo::exists(looped));
        QVERIFY(looped != file || !player->timer().isActive());
        QVERIFY(!player->timer().isActive());
        p.trigger("snd_stop");
        QVERIFY(!QFileInfo::exists(looped));
        player->stop();
        QVERIFY(!player->isPlaying());
    }

    // Sound comes out: an audio server with a null sink takes the player's
    // output, and a recording of the sink's monitor holds a tone about as
    // long as the sample.
    void soundComesOut()
    {
        const QString server = QStandardPaths::findExecutable(QStringLiteral("pulseaudio"));
        const QString recorder = QStandardPaths::findExecutable(QStringLiteral("parec"));
        if (server.isEmpty() || recorder.isEmpty())
            QSKIP("no PulseAudio server or parec on this system: playback not checked");
        QTemporaryDir runtime;
        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
        qputenv("PULSE_RUNTIME_PATH", runtime.filePath(QStringLiteral("pulse")).toLocal8Bit());
        qputenv("PULSE_SERVER", ("unix:" + runtime.filePath(QStringLiteral("pulse/native"))).toLocal8Bit());
        // The server's own files (cookie, state) stay in the temporary folder.
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), runtime.path());
        QProcess pulse;
        pulse.setProcessEnvironment(env);
        pulse.setStandardOutputFile(QProcess::nullDevice());
        pulse.setStandardErrorFile(QProcess::nullDevice());
        pulse.start(server, {QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--exit-idle-time=-1"),
                             QStringLiteral("--use-pid-file=no"), QStringLiteral("--disable-shm=yes"),
                             QStringLiteral("--load=module-native-protocol-unix"),
                             QStringLiteral("--load=module-null-sink sink_name=bf_null"),
                             QStringLiteral("--load=module-always-sink")});
        if (!pulse.waitForStarted(5000))
            QSKIP("the PulseAudio server can't be started: playback not checked");
        bool up = false;
        for (int i = 0; i < 50 && !up; ++i) {
            QTest::qWait(100);
            up = QFileInfo::exists(runtime.filePath(QStringLiteral("pulse/native")));
        }
        if (!up) {
            pulse.kill();
            pulse.waitForFinished();
            QSKIP("the PulseAudio server didn't come up: playback not checked");
        }

        QProcess rec;
        rec.setProcessEnvironment(env);
        rec.start(recorder, {QStringLiteral("-d"), QStringLiteral("bf_null.monitor"), QStringLiteral("--raw"),
                             QStringLiteral("--format=s16le"), QStringLiteral("--rate=8000"), QStringLiteral("--channels=1"),
                             QStringLiteral("--latency-msec=20")});
        QVERIFY(rec.waitForStarted(5000));
        QTest::qWait(300);

        QSoundPlayer player;
        // A server just started holds its first stream back for about a
        // second, then drops what came late: a short silence opens the way.
        QVERIFY(player.play(makeWav(1, 44100, 16, 4410, 1, 0, 0), 0.1f, false));
        QTest::qWait(2500);
        player.stop();
        const float seconds = 0.6f;
        QVERIFY(player.play(makeWav(1, 44100, 16, quint32(44100 * seconds), 1, 0, 440), seconds, false));
        QTest::qWait(int(seconds * 1000) + 1400);
        player.stop();
        QTest::qWait(200);
        rec.terminate();
        rec.waitForFinished(3000);
        pulse.terminate();
        pulse.waitForFinished(3000);

        const QByteArray pcm = rec.readAllStandardOutput();
        const auto *v = reinterpret_cast<const qint16 *>(pcm.constData());
        const qsizetype n = pcm.size() / 2;
        qsizetype first = -1, last = -1;
        for (qsizetype i = 0; i < n; ++i) {
            if (qAbs(int(v[i])) > 2000) {
                if (first < 0)
                    first = i;
                last = i;
            }
        }
        QVERIFY2(first >= 0, qPrintable(QStringLiteral("silence: %1 samples recorded, player said '%2'")
                                            .arg(n)
                                            .arg(player.errorString())));
        const double heard = double(last - first) / 8000;
        QVERIFY2(heard > seconds * 0.6 && heard < seconds * 1.6,
                 qPrintable(QStringLiteral("%1 s of sound in %2 s recorded (from %3 s)").arg(heard).arg(double(n) / 8000).arg(double(first) / 8000)));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_MAIN(TestSoundsEditor)
#include "tst_soundseditor.moc"
